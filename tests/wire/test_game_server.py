#!/usr/bin/env python3
"""Tries the scripted game server itself, without the console."""
import socket
import time
import unittest

from game_server import OUT_OF_BAND, PART_BYTES, REFUSAL, REPLY_HEAD, REQUEST_HEAD, GameServer


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
            ('house_greeting', '"house_greeting" is: "hi"^7 in force: "hi"^7\n'),
            ('HOUSE_GREETING', '"house_greeting" is: "hi"^7 in force: "hi"^7\n'),
            ('sv_ranked', '"sv_ranked" is: "2"^7 in force: "2"^7\n'),
            ('h_unheardOf', 'Unknown command "h_unheardOf"\n'),
            ('setadmindvar house_greeting "a "b" c"', ''),
            ('setadmindvar house_greeting ""', ''),
            ('setadmindvar h_unheardOf "1"', "There is no variable 'h_unheardOf'\n"),
            ('say "hello \xfc"', 'tower: hello \xfc\n'),
            ('clientkick 0', 'Old Tom^7 was kicked\n'),
            ('clientkick 8', 'Client 8 is not active\n'),
            ('', ''),
        ]
        for command, expected in rows:
            with self.subTest(command), \
                    GameServer(variables={'house_greeting': 'hi'}, players=['Old Tom'], mode='ranked') as server, \
                    Client(server) as client:
                self.assertEqual(client.ask(f'secret {command}'.rstrip()), expected)

    def test_what_is_written_is_kept(self):
        server = self.serve(variables={'house_greeting': 'hi'})
        client = self.meet(server)
        client.ask('secret setadmindvar house_greeting "a "b" c"')
        self.assertEqual(client.ask('secret house_greeting').split('^7')[0], '"house_greeting" is: "a "b" c"')
        client.ask('secret setadmindvar rcon_password "new one"')
        self.assertEqual(client.ask('new one say hi'), 'tower: hi\n')
        self.assertEqual(server.requests[-1][3:], ('new one', 'say hi', 'answered'))

    def test_dump_comes_in_parts(self):
        server = self.serve(variables={f'v_{number}': 'x' * 40 for number in range(100)})
        client = self.meet(server)
        client.send('secret dvardump')
        text, parts = '', 0
        while not text.endswith(' dvars\n'):
            datagram, _ = client.receive()
            self.assertLessEqual(len(datagram), len(REPLY_HEAD) + PART_BYTES)
            text += datagram[len(REPLY_HEAD):].decode()
            parts += 1
        self.assertGreater(parts, 3)
        self.assertEqual(int(text.splitlines()[-1].split()[0]), sum('"' in line for line in text.splitlines()))
        self.assertIn('rcon_password "secret"', text)

    def test_team_status(self):
        title, dashes, ann, tom = self.meet(self.serve(players=['Ann', 'Old Tom'])).ask('secret teamstatus').splitlines()
        self.assertEqual(title.split()[-2:], ['qport', 'rate'])
        self.assertEqual(set(dashes), {'-', ' '})
        self.assertEqual(ann.split()[:5], ['0', '0', '48', '200000000', 'Ann^7'])
        self.assertEqual(len(tom.split()), 11)

    def test_refusal(self):
        server = self.serve(password='two words')
        client = self.meet(server)
        for request in ['two wordsay hi', 'wrong say hi', '']:
            client.send(request)
            self.assertEqual(client.receive()[0], REFUSAL)
        self.assertEqual([request.outcome for request in server.requests], ['refused'] * 3)

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
        self.assertEqual(server.sent[1][1:], (second.port, REPLY_HEAD + b'tower: two\n', None))

    def test_a_script_decides(self):
        def answer(command, count):
            if command != 'status':
                return None
            if count == 1:
                return [(60, b'late', None), (0, b'false', '127.0.0.2'), (30, b'other port', '127.0.0.1')]
            return []

        server = self.serve(answer=answer)
        client = self.meet(server)
        began = time.monotonic()
        client.send('secret status')
        came = [client.receive() for _ in range(3)]
        self.assertGreaterEqual(time.monotonic() - began, 0.06)
        self.assertEqual([datagram for datagram, _ in came],
                         [REPLY_HEAD + b'false', REPLY_HEAD + b'other port', REPLY_HEAD + b'late'])
        own = ('127.0.0.1', server.port)
        self.assertEqual(came[2][1], own)
        self.assertEqual(came[0][1][0], '127.0.0.2')
        self.assertEqual(came[1][1][0], '127.0.0.1')
        self.assertNotEqual(came[1][1][1], server.port)
        client.send('secret status')
        self.assertEqual(client.ask('secret say hi'), 'tower: hi\n')  # as by default, and nothing before it
        self.assertEqual([request.outcome for request in server.requests], ['answered', 'unanswered', 'answered'])

    def test_throttle(self):
        server = self.serve()
        server.throttle_ms = 60_000
        client = self.meet(server)
        client.ask('secret say one')
        client.send('secret say two')
        self.assertEqual(self.meet(server, '127.0.0.3').ask('secret say three'), 'tower: three\n')
        server.throttle_ms = 0
        self.assertEqual(client.ask('secret say four'), 'tower: four\n')
        self.assertEqual([request.outcome for request in server.requests],
                         ['answered', 'throttled', 'answered', 'answered'])

    def test_silence(self):
        server = self.serve()
        server.silent = True
        client = self.meet(server)
        client.send('secret clientkick 0')
        self.assertTrue(server.wait_for(lambda requests: [r.outcome for r in requests] == ['silent'], 2))
        server.silent = False
        self.assertEqual(client.ask('secret say hi'), 'tower: hi\n')

    def test_restart(self):
        server = self.serve(variables={'house_greeting': 'hi'}, players=['Ann'])
        client = self.meet(server)
        port = server.port
        client.ask('secret setadmindvar house_greeting "old"')
        client.ask('secret clientkick 0')
        server.restart(away=0.2, password='new', mode='playlists', variables={'body_pace': '190'})
        self.assertTrue(server.wait_until_away(2))
        with socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as taken:
            taken.bind(('127.0.0.1', port))
        client.socket.settimeout(0.1)
        answer = None
        for _ in range(50):
            try:
                answer = client.ask('new house_greeting')
                break
            except OSError:
                continue
        self.assertEqual(answer, 'Unknown command "house_greeting"\n')
        self.assertIn('"190"', client.ask('new body_pace'))
        self.assertIn('"1"', client.ask('new playlist_enabled'))
        self.assertEqual([player.name for player in server.players], ['Ann'])

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
