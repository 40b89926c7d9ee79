#!/usr/bin/env python3
"""What is asked for in the background, and what gets in between."""
import unittest

from console import WireTest


def times_of(server, names, outcome=None):
    return [request.time for request in server.requests
            if request.command in names and outcome in (None, request.outcome)]


class FetchingTest(WireTest):
    def test_a_server_that_knows_no_catalogued_variable(self):
        server = self.serve(players=['Ann', 'Old Tom', 'Kim', 'Lee', 'Max'])
        console = self.start()
        connected = console.connect(server)
        unknown = [name for name in connected['catalogued'] if name not in server.variables]
        kicks = []
        for number, share in enumerate([0.2, 0.4, 0.6, 0.8]):
            console.wait_until(
                lambda: any(event['done'] >= share * event['total'] for event in console.all('progress')), 20)
            asked = console.tell(f'send clientkick {number}')
            server.wait_for(lambda requests: any(r.command == f'clientkick {number}' for r in requests), 5)
            kicks.append(times_of(server, [f'clientkick {number}'])[0] - asked)
            console.wait_for('done', 5, asked)
        self.assertLessEqual(sorted(kicks)[len(kicks) // 2], 0.15, kicks)
        finished = console.wait_for('fetch finished', 30)
        self.assertEqual((finished['unknown'], finished['total']), (len(unknown), len(connected['catalogued'])))

        commands = [request.command for request in server.requests]
        required = [name for name, value in server.variables.items()
                    if name.startswith('playlist_exclude') and not value]  # listed without a value
        begin = ['dvardump', *sorted(required), 'teamstatus']
        self.assertEqual(sorted(commands[1:len(begin) - 1]), begin[1:-1])
        self.assertEqual([commands[0], commands[len(begin) - 1]], [begin[0], begin[-1]])
        players = console.wait_for('players', 1)
        self.assertEqual(players['names'], ['Ann', 'Old Tom', 'Kim', 'Lee', 'Max'])
        self.assertLess(players.time, min(times_of(server, unknown)))
        self.assertEqual(sorted(command for command in commands if command in unknown), sorted(unknown))
        self.assertEqual(console.all('alert'), [])
        self.assertEqual(console.all('fault'), [])

    def test_a_server_that_ignores_haste(self):
        names = [f'v_{number}' for number in range(60)]
        server, console = self.connected()
        server.throttle_ms = 100
        asked = console.tell('fetch ' + ' '.join(names))
        finished = console.wait_for('fetch finished', 15, asked)
        self.assertLessEqual(finished.time - asked, 12)
        self.assertLessEqual(len(times_of(server, names)), 80)
        self.assertEqual(len(times_of(server, names, 'answered')), len(names))

        server.throttle_ms = 0
        more = [f'w_{number}' for number in range(1200)]
        asked = console.tell('fetch ' + ' '.join(more))

        def keeps_a_short_distance(_requests):
            times = times_of(server, more)[-5:]
            return len(times) == 5 and max(after - before for before, after in zip(times, times[1:])) < 0.075
        self.assertTrue(server.wait_for(keeps_a_short_distance, 60), 'it stays slow')


if __name__ == '__main__':
    unittest.main()
