#!/usr/bin/env python3
"""What ends a connection ends it at once, whatever is under way, and nothing of it goes to another server."""
import socket
import unittest

from console import WireTest, answers

AT_ONCE = 0.05


class LeavingTest(WireTest):
    def other_server(self):
        return self.serve_all(password='another')

    def leave_and_move_on(self, server, console):
        """Disconnects now, connects to another server, and looks at what both of them got."""
        asked = console.tell('disconnect')
        begun = console.wait_for('disconnecting', 5, asked)
        disconnected = console.wait_for('disconnected', 5, asked)
        idle = disconnected if disconnected['isIdle'] else console.wait_for('idle', 5, begun.time)
        self.assertLessEqual(idle.time - begun.time, AT_ONCE)
        other = self.other_server()
        connected = console.tell(f'connect 127.0.0.1 {other.port} {other.password}', 'send v_hello')
        console.wait_for('players', 10, connected)
        console.tell('send v_hello')
        console.wait_for('done', 10, connected, command='v_hello')
        self.assertEqual([r.command for r in server.requests if r.time > disconnected.time], [])
        self.assertEqual({r.outcome for r in other.requests}, {'answered'}, other.requests)
        self.assertEqual({r.password for r in other.requests}, {other.password})
        self.assertEqual([r.command for r in other.requests], ['dvardump', 'teamstatus', 'v_hello'])
        self.assertEqual(console.all('alert', asked), [])
        self.assertEqual(console.all('fault'), [])

    def connecting(self, unanswered):
        """A server that leaves a request unanswered, and a console that waits for it."""
        server = self.serve(answer=answers({unanswered: []}))
        console = self.start()
        console.tell(f'connect 127.0.0.1 {server.port} secret')
        self.wait_for_command(server, unanswered)
        return server, console

    def test_while_the_name_is_looked_up(self):
        server = self.serve()
        console = self.start()
        asked = console.tell(f'connect never.example.org {server.port} secret')
        console.wait_for('looking up', 5, asked)
        self.leave_and_move_on(server, console)
        self.assertEqual(server.requests, [])

    def test_while_the_variables_are_listed(self):
        self.leave_and_move_on(*self.connecting('dvardump'))

    def test_while_a_required_variable_is_asked_for(self):
        self.leave_and_move_on(*self.connecting('playlist_excludeGametype'))

    def test_while_the_players_are_asked_for(self):
        self.leave_and_move_on(*self.connecting('teamstatus'))

    def test_while_a_variable_is_fetched(self):
        server, console = self.connected(answer=answers({'v_old_2': []}))
        console.tell('fetch v_old_1 v_old_2 v_old_3')
        self.wait_for_command(server, 'v_old_2')
        self.leave_and_move_on(server, console)

    def test_between_two_variables(self):
        server, console = self.connected()
        asked = console.tell('fetch v_old_1 v_old_2 v_old_3')
        self.wait_for_command(server, 'v_old_1')
        console.wait_for('idle', 5, asked)
        self.leave_and_move_on(server, console)

    def test_while_commands_are_under_way_and_wait(self):
        server, console = self.connected(answer=answers({'status': []}))
        console.tell('send status', 'send say old', 'fetch v_old_1')
        self.wait_for_command(server, 'status')
        self.leave_and_move_on(server, console)

    def test_while_a_reply_comes(self):
        server, console = self.connected(answer=answers({'status': [(0, 'a\n', None), (100, 'b\n', None)]}))
        asked = console.tell('send status', 'send say old')
        console.wait_for('arrived', 5, asked)
        self.leave_and_move_on(server, console)

    def test_while_a_silent_server_is_looked_for(self):
        server, console = self.connected()
        server.silent = True
        asked = console.tell('send status')
        console.wait_for('link', 5, asked, kind='Silent')
        console.wait_for('idle', 5, asked)
        self.assertTrue(server.wait_for(lambda requests: requests[-1].command == 'sv_hostname', 5))
        self.leave_and_move_on(server, console)

    def test_while_nothing_is_under_way(self):
        self.leave_and_move_on(*self.connected())

    def test_closing(self):
        def looking_up():
            server, console = self.serve(), self.start()
            asked = console.tell(f'connect never.example.org {server.port} secret')
            console.wait_for('looking up', 5, asked)
            return console

        def listing():
            return self.connecting('dvardump')[1]

        def fetching():
            server, console = self.connected(answer=answers({'v_old': []}))
            console.tell('fetch v_old')
            self.wait_for_command(server, 'v_old')
            return console
        for begin in (looking_up, listing, fetching):
            with self.subTest(begin.__name__):
                self.best_of_three(lambda: begin().quit(), AT_ONCE)


class AddressesTest(WireTest):
    def test_one_after_the_other(self):
        server = self.serve()
        third = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
        self.addCleanup(third.close)
        third.bind(('127.0.0.3', server.port))
        console = self.start()
        console.tell('name play.example.org 127.0.0.2 127.0.0.1 127.0.0.3')
        console.connect(server, host='play.example.org')
        console.connect(server, host='play.example.org')
        self.assertEqual(server.requests[0].command, 'dvardump')
        third.setblocking(False)
        with self.assertRaises(BlockingIOError):
            third.recv(1)


if __name__ == '__main__':
    unittest.main()
