#!/usr/bin/env python3
"""Tries the scripted game server itself, without the console."""
import socket
import time
import unittest

from game_server import OUT_OF_BAND, REFUSALS, REPLY_HEAD, REQUEST_HEAD, GameServer, Player, Raw


class Client:
    """A socket that asks a server; each has a port of its own."""

    def __init__(self, server, host='127.0.0.1'):
        self.server = ('127.0.0.1', server.port)
        self.socket = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
        self.socket.bind((host, 0))
        self.socket.settimeout(2)
        self.port = self.socket.getsockname()[1]

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.socket.close()

    def send(self, text):
        self.send_bytes(REQUEST_HEAD + text.encode('latin-1') + b'\0')

    def send_bytes(self, datagram):
        self.socket.sendto(datagram, self.server)

    def receive(self):
        datagram, sender = self.socket.recvfrom(65536)
        return datagram, sender

    def ask(self, text):
        """The text of a reply of one datagram."""
        self.send(text)
        datagram, _ = self.receive()
        assert datagram.startswith(REPLY_HEAD), datagram
        return datagram[len(REPLY_HEAD):].decode('latin-1')


class GameServerTest(unittest.TestCase):
    def serve(self, **options):
        server = GameServer(**options)
        self.addCleanup(server.stop)
        return server

    def meet(self, server, host='127.0.0.1'):
        client = Client(server, host)
        self.addCleanup(client.socket.close)
        return client

    def test_answers(self):
        rows = [
            ('g_motd', '"g_motd" is: "hi"^7 in force: "hi"^7\n'),
            ('G_MOTD', '"g_motd" is: "hi"^7 in force: "hi"^7\n'),
            ('sv_ranked', '"sv_ranked" is: "2"^7 in force: "2"^7\n'),
            ('g_unheardOf', 'Unknown command "g_unheardOf"\n'),
            ('setadmindvar g_motd "a "b" c"', ''),
            ('setadmindvar g_motd ""', ''),
            ('setadmindvar g_unheardOf "1"', "dvar 'g_unheardOf' does not exist\n"),
            ('say "hello \xfc"', 'console: hello \xfc\n'),
            ('clientkick 7', 'Old Tom^7 was kicked\n'),
            ('banclient 7', 'Old Tom^7 was banned\n'),
            ('clientkick 8', 'Client 8 is not active\n'),
            ('map mp_ropeway', 'Loading map mp_ropeway\n'),
            ('map_rotate', 'Loading map mp_tramyard\n'),
            ('fast_restart', ''),
            ('', ''),
        ]
        for command, expected in rows:
            with self.subTest(command), \
                    GameServer(variables={'g_motd': 'hi'}, players=[Player(7, 'Old Tom')], mode='ranked') as server, \
                    Client(server) as client:
                self.assertEqual(client.ask(f'secret {command}'.rstrip()), expected)

    def test_what_is_written_is_kept(self):
        server = self.serve(variables={'g_motd': 'hi'})
        client = self.meet(server)
        client.ask('secret setadmindvar g_motd "a "b" c"')
        self.assertEqual(client.ask('secret g_motd').split('^7')[0], '"g_motd" is: "a "b" c"')
        client.ask('secret setadmindvar rcon_password "new one"')
        self.assertEqual(client.ask('new one say hi'), 'console: hi\n')
        self.assertEqual(server.requests[-1][3:], ('new one', 'say hi', 'answered'))

    def test_dump_comes_in_parts(self):
        server = self.serve(variables={f'v_{number}': 'x' * 40 for number in range(100)})
        server.undumped = {'v_7'}
        client = self.meet(server)

        def dump():
            text = b''
            parts = 0
            client.send('secret dvardump')
            while b' "' not in text or not text.endswith((b' dvars\n', b'v_99 "' + b'x' * 40 + b'"\n')):
                datagram, _ = client.receive()
                self.assertLessEqual(len(datagram), len(REPLY_HEAD) + server.part_bytes)
                text += datagram[len(REPLY_HEAD):]
                parts += 1
            return text.decode(), parts

        whole, parts = dump()
        self.assertGreater(parts, 3)
        lines = whole.splitlines()
        self.assertEqual(int(lines[-1].split()[0]), sum('"' in line for line in lines))
        self.assertIn('rcon_password "secret"', whole)
        self.assertNotIn('v_7 ', whole)
        server.dump_counts = False
        server.part_bytes = 500
        uncounted, more_parts = dump()
        self.assertTrue(whole.startswith(uncounted + '\n'))
        self.assertGreater(more_parts, parts)

    def test_team_status(self):
        server = self.serve(players=['Ann', Player(12, 'Old Tom', score=30, team='axis')])
        title, dashes, ann, tom = self.meet(server).ask('secret teamstatus').splitlines()
        self.assertEqual(title.split()[-2:], ['qport', 'rate'])
        self.assertEqual(set(dashes), {'-', ' '})
        self.assertEqual(ann.split()[:5], ['0', '0', '48', '200000000', 'Ann^7'])
        self.assertEqual(tom.split()[4:7], ['Old', 'Tom^7', 'axis'])
        self.assertEqual(len(tom.split()), 11)

    def test_refusals(self):
        server = self.serve(password='two words')
        client = self.meet(server)
        for form, request in [('short', 'two wordsay hi'), ('text', 'wrong say hi'), ('closed', '')]:
            with self.subTest(form):
                server.refusal = form
                client.send(request)
                expected = REFUSALS[form]
                self.assertEqual(client.receive()[0],
                                 expected if isinstance(expected, Raw) else REPLY_HEAD + expected)
        server.refuse_all = True
        client.send('two words say hi')
        client.receive()
        self.assertEqual([request.outcome for request in server.requests], ['refused'] * 4)
        self.assertEqual([request.command for request in server.requests], ['wordsay hi', 'say hi', '', 'say hi'])

    def test_requests_are_recorded(self):
        server = self.serve()
        first, second = self.meet(server), self.meet(server, '127.0.0.3')
        before = time.monotonic()
        first.send_bytes(OUT_OF_BAND + b'\x02getstatus')
        first.ask('secret say one')
        second.ask('secret say two')
        stray, one, two = server.requests
        self.assertEqual(stray[1:], ('127.0.0.1', first.port, '', '', 'malformed'))
        self.assertEqual(one[1:], ('127.0.0.1', first.port, 'secret', 'say one', 'answered'))
        self.assertEqual(two[1:], ('127.0.0.3', second.port, 'secret', 'say two', 'answered'))
        self.assertTrue(before <= stray.time <= one.time <= two.time <= time.monotonic())
        self.assertEqual(server.commands(), ['say one', 'say two'])
        self.assertEqual(server.sent[1][1:], (second.port, REPLY_HEAD + b'console: two\n', None))

    def test_a_script_decides(self):
        def answer(command, count):
            if command != 'status':
                return None
            if count == 1:
                return [(60, b'late', None), (0, b'false', '127.0.0.2'), (30, b'other port', '127.0.0.1'),
                        (0, Raw(b'rubbish'), None)]
            return []

        server = self.serve(answer=answer)
        client = self.meet(server)
        began = time.monotonic()
        client.send('secret status')
        came = [client.receive() for _ in range(4)]
        self.assertGreaterEqual(time.monotonic() - began, 0.06)
        self.assertEqual([datagram for datagram, _ in came],
                         [REPLY_HEAD + b'false', b'rubbish', REPLY_HEAD + b'other port', REPLY_HEAD + b'late'])
        own = ('127.0.0.1', server.port)
        self.assertEqual([came[1][1], came[3][1]], [own, own])
        self.assertEqual(came[0][1][0], '127.0.0.2')
        self.assertEqual(came[2][1][0], '127.0.0.1')
        self.assertNotEqual(came[2][1][1], server.port)
        client.send('secret status')
        self.assertEqual(client.ask('secret say hi'), 'console: hi\n')  # as by default, and nothing before it
        self.assertEqual([request.outcome for request in server.requests], ['answered', 'unanswered', 'answered'])

    def test_delay_gap_and_closing_zero(self):
        server = self.serve(players=['Ann'])
        server.delay_ms, server.gap_ms, server.part_bytes, server.closing_zero = 60, 40, 250, True
        client = self.meet(server)
        began = time.monotonic()
        client.send('secret teamstatus')
        first, _ = client.receive()
        between = time.monotonic()
        second, _ = client.receive()
        self.assertGreaterEqual(between - began, 0.06)
        self.assertGreaterEqual(server.sent[-1].time - server.requests[0].time, 0.1)
        self.assertTrue(first.endswith(b'\0') and second.endswith(b'\0'))

    def test_throttle(self):
        server = self.serve()
        server.throttle_ms = 60_000
        client = self.meet(server)
        client.ask('secret say one')
        client.send('secret say two')
        self.assertEqual(self.meet(server, '127.0.0.3').ask('secret say three'), 'console: three\n')
        server.throttle_ms = 0
        self.assertEqual(client.ask('secret say four'), 'console: four\n')
        self.assertEqual([request.outcome for request in server.requests],
                         ['answered', 'throttled', 'answered', 'answered'])

    def test_silence(self):
        server = self.serve()
        server.silent = True
        client = self.meet(server)
        client.send('secret clientkick 0')
        self.assertTrue(server.wait_for(lambda requests: [r.outcome for r in requests] == ['silent'], 2))
        server.silent = False
        self.assertEqual(client.ask('secret say hi'), 'console: hi\n')

    def test_restart(self):
        server = self.serve(variables={'g_motd': 'hi'}, players=['Ann'])
        client = self.meet(server)
        port = server.port
        client.ask('secret setadmindvar g_motd "old"')
        client.ask('secret clientkick 0')
        server.restart(away=0.05, password='new', mode='playlists', variables={'g_speed': '190'})
        self.assertTrue(server.wait_until_back(2))
        self.assertEqual(server.port, port)
        self.assertEqual(client.ask('new g_motd'), 'Unknown command "g_motd"\n')
        self.assertIn('"190"', client.ask('new g_speed'))
        self.assertIn('"1"', client.ask('new playlist_enabled'))
        self.assertEqual([player.name for player in server.players], ['Ann'])
        self.assertEqual(len(server.requests), 5)

    def test_port_is_closed_while_away(self):
        server = self.serve()
        server.restart(away=60)
        taken = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
        self.addCleanup(taken.close)
        deadline = time.monotonic() + 2
        while True:
            try:
                taken.bind(('127.0.0.1', server.port))
                break
            except OSError:
                self.assertLess(time.monotonic(), deadline, 'the port stays taken')
        began = time.monotonic()
        self.assertFalse(server.wait_until_back(0.02))
        server.stop()
        self.assertLess(time.monotonic() - began, 1)

    def test_waiting_ends(self):
        server = self.serve()
        began = time.monotonic()
        self.assertFalse(server.wait_for(lambda requests: requests, 0.05))
        self.assertGreaterEqual(time.monotonic() - began, 0.05)
        server.stop()
        self.assertFalse(server.wait_for(lambda requests: requests, 60))
        self.assertLess(time.monotonic() - began, 5)
        server.stop()  # again does nothing

    def test_a_forgotten_server_ends(self):
        server = self.serve(life=0.05)
        self.assertFalse(server.wait_for(lambda requests: requests, 10))

    def test_a_fault_of_the_script_is_told(self):
        def answer(_command, _count):
            return [(0, b'x', '192.0.2.1')]

        server = GameServer(answer=answer)
        self.meet(server).send('secret say hi')
        server.wait_for(lambda _: False, 2)
        with self.assertRaises(ValueError):
            server.stop()

    def test_taken_port(self):
        server = self.serve()
        with self.assertRaises(OSError):
            GameServer(port=server.port)


if __name__ == '__main__':
    unittest.main()
