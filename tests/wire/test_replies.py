#!/usr/bin/env python3
"""When a reply is shown, and when it is over."""
import unittest

from console import WireTest, answers, told

SILENCE = 0.5  # seconds without a datagram that end a reply
AT_ONCE = 0.03
IMPRECISION = 0.005  # of two programs' timers


class RepliesTest(WireTest):
    def sent(self, server, text):
        """When the server sent the newest datagram that ends with this text."""
        ending = text.encode('latin-1')
        return max(sent.time for sent in server.sent if sent.datagram.rstrip(b'\0').endswith(ending))

    def arrival(self, server, command, since):
        """When the request came."""
        def first(requests):
            return next((each.time for each in requests if each.command == command and each.time >= since), None)
        time = server.wait_for(first, 10)
        self.assertIsNotNone(time, command)
        return time

    def test_each_datagram_is_shown_when_it_comes(self):
        parts = ['first part\n', 'second part\n', 'third part\n']
        server, console = self.connected(answer=answers(
            {'status': [(200 * number, part, None) for number, part in enumerate(parts)]}))

        def slowest():
            asked = console.tell('send status')
            done = console.wait_for('done', 5, asked)
            shown = [event for event in console.all('shown', asked) if event['text'] in parts]
            self.assertEqual([event['text'] for event in shown], parts)
            self.assertEqual(done['text'], ''.join(parts))
            self.assertGreaterEqual(done.time - self.sent(server, parts[-1]), SILENCE - IMPRECISION)
            self.assertLess(done.time - shown[-1].time, SILENCE + 0.1)
            return max(event.time - self.sent(server, event['text']) for event in shown)
        self.best_of_three(slowest, AT_ONCE)

    def test_a_variables_reply_is_over_with_its_end(self):
        rows = [
            ('whole', ['"{}" is: "hi"^7 in force: "hi"^7\n'], True),
            ('other case', ['"V_OTHER_CASE" is: "hi"^7 in force: "hi"^7\n'], True),
            ('unknown', ['Unknown command "{}"\n'], True),
            ('in two parts', ['"{}" is: "hi"^7 in for', 'ce: "hi"^7\n'], True),
            ('cut inside the line feed', ['"{}" is: "hi"^7 in force: "hi"^7', '\n'], True),
            ('no line feed', ['"{}" is: "hi"^7 in force: "hi"^7'], False),
            ('other name', ['"v_else" is: "hi"^7 in force: "hi"^7\n'], False),
            ('two fields', ['"{}" is: "hi"^7\n'], False),
            ('cut behind the third quote', ['"{}" is: "'], False),
            ('cut behind the third field', ['"{}" is: "hi"^7 in force: "hi"'], False),
            ('quote inside a value', ['"{}" is: "a\n"b"^7 in force: "a\n', '"b"^7\n'], False),
        ]
        server, console = self.connected()
        for title, parts, is_known in rows:
            name = 'v_' + title.replace(' ', '_')
            texts = [part.format(name) for part in parts]
            server.answer = answers({name: [(60 * number, text, None) for number, text in enumerate(texts)]})

            def distance():
                """From the last datagram of the reply to the next request."""
                asked = console.tell(f'send {name}', 'send v_next')
                following = self.arrival(server, 'v_next', asked)
                console.wait_for('done', 5, asked, command='v_next')
                reply = console.wait_for('done', 5, asked, command=name)
                self.assertEqual(reply['text'], ''.join(texts).replace('^7', ''))
                return following - self.sent(server, texts[-1])
            with self.subTest(title):
                if is_known:
                    self.best_of_three(distance, AT_ONCE)
                else:
                    self.assertGreaterEqual(distance(), SILENCE - IMPRECISION)

    def test_what_comes_late_is_shown_and_learnt_from(self):
        late = 'what was still missing\n'
        server, console = self.connected(variables={'v_known': 'hi'}, answer=answers(
            {'v_late': [(0, told('v_late', 'hi'), None), (300, late, None)]}))
        asked = console.tell('send v_late')
        done = console.wait_for('done', 2, asked)
        self.assertLess(done.time - asked, 0.3, 'the reply was not taken for whole')
        shown = console.wait_for('shown', 2, asked, text=late)
        self.assertGreater(shown.time, done.time)
        note = console.wait_for('note', 1, asked)
        self.assertIn('came late, to “v_late”', note['text'])
        self.assertLessEqual(note.time, shown.time)
        asked = console.tell('send v_known', 'send v_next')
        following = self.arrival(server, 'v_next', asked)
        self.assertGreaterEqual(following - self.sent(server, told('v_known', 'hi')), SILENCE - IMPRECISION)
        console.wait_for('done', 2, asked, command='v_next')
        asked = console.tell('figures')
        self.assertEqual(console.wait_for('figures', 1, asked)['late'], 1)

    def test_what_comes_once_more_is_counted(self):
        reply = told('v_twice', 'hi')
        server, console = self.connected(variables={'v_known': 'hi'}, answer=answers(
            {'v_twice': [(0, reply, None), (300, reply, None)], 'v_later': [(450, told('v_later', 'hi'), None)]}))
        console.tell('figures')
        self.assertEqual(console.wait_for('figures', 1)['doubled'], 0)
        asked = console.tell('send v_twice', 'send v_later')
        console.wait_for('done', 5, asked, command='v_later')
        shown = [event['text'] for event in console.all('shown', asked)]
        self.assertEqual(shown.count(reply.replace('^7', '')), 1)
        self.assertEqual(console.all('note', asked), [])
        figures = console.tell('figures')
        self.assertEqual(console.wait_for('figures', 1, figures)['doubled'], 1)
        asked = console.tell('send v_known', 'send v_next')
        console.wait_for('done', 2, asked, command='v_next')
        following = self.arrival(server, 'v_next', asked)
        self.assertLess(following - self.sent(server, told('v_known', 'hi')), SILENCE - 0.1, 'it was learnt from')

    def test_strangers_are_not_believed(self):
        false, true = told('v_asked', 'false'), told('v_asked', 'true')
        server, console = self.connected(answer=answers({
            'v_asked': [(0, false, '127.0.0.2'), (50, true, None)],
            'v_translated': [(0, told('v_translated', 'true'), '127.0.0.1')],
        }))
        asked = console.tell('send v_asked', 'send v_translated')
        self.assertEqual(console.wait_for('done', 5, asked, command='v_asked')['text'], true.replace('^7', ''))
        self.assertEqual([event['text'] for event in console.all('shown', asked) if 'false' in event['text']], [])
        translated = console.wait_for('done', 5, asked, command='v_translated')
        self.assertEqual(translated['text'], told('v_translated', 'true').replace('^7', ''))
        self.assertEqual(translated['sends'], 1)
        figures = console.tell('figures')
        self.assertEqual(console.wait_for('figures', 1, figures)['strangers'], 1)

    def test_the_alert_names_who_answered_instead(self):
        server = self.serve(answer=answers({'dvardump': [(0, 'S  sv_ranked "0"\n', '127.0.0.2')]}))
        console = self.start()
        asked = console.tell(f'connect 127.0.0.1 {server.port} secret')
        alert = console.wait_for('alert', 5, asked)
        self.assertIn('127.0.0.2 answered instead', alert['text'])
        self.assertAlmostEqual(alert.time - server.requests[0].time, 3.25, delta=0.15)
        self.assertEqual([request.command for request in server.requests], ['dvardump'] * 3)

    def test_a_held_up_loop_sends_once(self):
        server, console = self.connected(answer=answers({'v_asked': [(100, told('v_asked', 'hi'), None)]}))
        asked = console.tell('send v_asked', 'block 600')
        done = console.wait_for('done', 5, asked)
        self.assertGreaterEqual(done.time - asked, 0.6)
        self.assertEqual((done['text'], done['sends']), (told('v_asked', 'hi').replace('^7', ''), 1))
        self.assertEqual(done['roundTrip'], -1, 'it is no measure of the line')
        console.tell('send v_next')
        console.wait_for('done', 5, asked, command='v_next')
        self.assertEqual(server.commands().count('v_asked'), 1)


class SlowLineTest(WireTest):
    def test_a_line_slower_than_the_first_wait_is_learnt(self):
        server = self.serve_all()
        server.delay_ms = 600
        console = self.start()
        console.connect(server)
        asked = console.tell(*['send say hello'] * 5)
        console.wait_until(lambda: len(console.all('done', asked)) == 5, 20)
        self.assertEqual([event['sends'] for event in console.all('done', asked)], [1] * 5)
        self.assertEqual(server.commands().count('say hello'), 5)


if __name__ == '__main__':
    unittest.main()
