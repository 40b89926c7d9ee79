#!/usr/bin/env python3
"""A server that goes away and comes back, as it was or as another one."""
import unittest

from console import WireTest, every_variable

RANKED, MAPS, PLAYLISTS = 1, 2, 4  # sets of tabs


class ComingBackTest(WireTest):
    def test_with_another_mode(self):
        for mode, tabs in [('playlists', PLAYLISTS), ('ranked', RANKED)]:
            with self.subTest(mode):
                server = self.serve_all(players=['Ann'])
                server.dump_counts = False  # so that coming back cannot lean on it
                console = self.start()
                console.connect(server)
                server.restart(away=3, mode=mode, players=['Old Tom', 'Kim'],
                               variables={**every_variable(), 'ledger_file': 'other.log'})
                self.assertTrue(server.wait_until_away(2))
                asked = console.tell('send v_asked')
                silent = console.wait_for('link', 5, asked, kind='Silent')
                back = console.wait_for('connected again', 8, silent.time)
                self.assertGreater(back['silence'], 3000)
                self.assertGreaterEqual(back['differences'], 1)
                console.wait_for('tabs', 1, silent.time, set=tabs)
                players = console.wait_for('players', 5, back.time)
                self.assertEqual(players['names'], ['Old Tom', 'Kim'])
                shown = [event['text'] for event in console.all('shown')]
                self.assertIn('] teamstatus\n', shown)
                self.assertEqual(console.all('alert'), [])
                self.assertEqual([e['kind'] for e in console.all('link')], ['Answering', 'Silent', 'Answering'])
                self.assertNotIn('refused', {request.outcome for request in server.requests})

    def test_with_another_password(self):
        # A refused password is never tried again by itself. Half a minute would prove it better; probes come after 1, 2,
        # 4 and 8 s, so that a second refused one would come within these 12 s.
        server = self.serve_all(password='first')
        server.dump_counts = False
        console = self.start()
        console.connect(server)
        server.restart(away=3, password='another')
        self.assertTrue(server.wait_until_away(2))
        asked = console.tell('send v_asked')
        console.wait_for('link', 5, asked, kind='Silent')

        def refused(requests):
            return [request for request in requests if request.outcome == 'refused']
        console.wait_for('link', 8, asked, kind='Refused')
        first = len(refused(server.requests))
        self.assertEqual(first, 1)
        more = server.wait_for(lambda requests: len(refused(requests)) > first, 12)
        self.assertFalse(more, refused(server.requests))
        again = console.tell('password another')
        console.wait_for('connected again', 5, again)
        self.assertEqual(len(refused(server.requests)), 1)
        self.assertEqual(console.all('alert'), [])

    def test_try_now(self):
        server, console = self.connected(players=['Ann'])
        server.silent = True
        asked = console.tell('send v_asked')
        console.wait_for('link', 5, asked, kind='Silent')
        self.assertTrue(server.wait_for(lambda requests: requests[-1].command == 'sv_hostname', 5))
        server.silent = False
        console.wait_for('idle', 5, server.requests[-1].time)
        pressed = console.tell('trynow')
        back = console.wait_for('connected again', 5, pressed)
        self.assertLess(back.time - pressed, 1)


if __name__ == '__main__':
    unittest.main()
