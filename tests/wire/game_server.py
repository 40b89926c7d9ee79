"""A scripted game server on loopback, for tests that look at the console from outside.

It shares nothing with the simulated server that the console brings along, so that a fault of both does not go unseen.

    with GameServer(password='secret', variables={'house_greeting': 'hello'}, players=['Ann', 'Old Tom']) as server:
        ...start the program, and let it connect to server.port...
        assert server.wait_for(lambda requests: any(r.command == 'teamstatus' for r in requests), 5)

What it answers follows from the request and from what the test sets, never from chance. Every attribute that stands in
the list of the class may be set while it runs; the next request goes by it. Times are those of time.monotonic(), which
on one machine is the steady clock of all programs.
"""
import heapq
import itertools
import re
import select
import socket
import threading
import time
import typing

OUT_OF_BAND = b'\xff\xff\xff\xff'
REQUEST_HEAD = OUT_OF_BAND + b'\x00'
REPLY_HEAD = OUT_OF_BAND + b'\x01print\n'

MOST_REQUESTS = 20_000  # the server ends with the last of them
MOST_WAITING = 20_000   # datagrams that wait for their time; more are lost

MODES = {'unranked': ('0', '0'), 'playlists': ('0', '1'), 'ranked': ('2', '0')}  # sv_ranked, playlist_enabled

REFUSAL = OUT_OF_BAND + b'\x0a'
PART_BYTES = 1000  # the longest text that one datagram of an answer by default takes

TITLE = (b'num score ping guid       name                   team      lastmsg address               qport rate\n'
         b'--- ----- ---- ---------- ---------------------- --------- ------- --------------------- ----- -----\n')


class Request(typing.NamedTuple):
    """One datagram that came. Of one that is no request, password and command are empty."""
    time: float
    address: str
    port: int
    password: str  # of a wrong one the first word
    command: str
    outcome: str   # 'answered', 'refused', 'throttled', 'silent', 'unanswered' (so says the script) or 'malformed'


class Sent(typing.NamedTuple):
    """One datagram that was sent. `source` is None for the server's own socket."""
    time: float
    port: int
    datagram: bytes
    source: typing.Optional[str]


class Player(typing.NamedTuple):
    number: int
    name: str

    def line(self) -> bytes:
        return (f'{self.number:3}     0   48 {200_000_000 + self.number:10} {self.name + "^7":22} lamps          0 '
                f'198.51.100.{1 + self.number}:50000       4000 25000\n').encode('latin-1')


def latin1(text) -> bytes:
    return text.encode('latin-1') if isinstance(text, str) else bytes(text)


class GameServer:
    """See the top of the file. Every public function may be called from any thread.

    answer      answer(command, count) -> [(delay_ms, payload, source), ...], or None for the answer by default. `count`
                is 1 for the first time that this command came with the right password. An empty list answers nothing.
                A payload becomes a reply datagram. `source` is None for the server's own socket, else an address of
                loopback: a socket of its own there sends the datagram, for '127.0.0.1' another port of the server's
                address.
    variables   name -> value; what a console cannot connect without is there from the start
    players     of type Player; given to the constructor as names, numbered from 0
    delay_ms    how much later every answer comes
    throttle_ms ignores requests with the right password that come sooner after the last answered one of that address
    silent      records, and answers nothing
    dump_counts whether the list of all variables ends with their number

    A server that is forgotten ends by itself after `life` seconds.
    """

    def __init__(self, port=0, password='secret', variables=None, players=(), mode='unranked', answer=None, life=300.0):
        self.answer = answer
        self.delay_ms = 0
        self.throttle_ms = 0
        self.silent = False
        self.dump_counts = True

        self._start = {'password': password, 'mode': mode, 'variables': dict(variables or {}), 'players': list(players)}
        self._begin_game()
        self._changed = threading.Condition()  # guards the four below
        self._requests = []
        self._sent = []
        self._restarts = []  # (seconds away, changes) that are asked for
        self._is_away = False
        self._error = None

        # The server's thread alone uses these once it runs.
        self._counts = {}
        self._answered = {}
        self._waiting = []
        self._order = itertools.count()
        self._sources = {}
        self._socket = self._open(port)
        self.port = self._socket.getsockname()[1]

        self._ending = False
        self._end = time.monotonic() + life
        self._wake_end, self._wake_start = socket.socketpair()
        self._wake_end.setblocking(False)
        self._wake_start.setblocking(False)
        self._thread = threading.Thread(target=self._run, name='game server', daemon=True)
        self._thread.start()

    # What tests ask for

    def __enter__(self):
        return self

    def __exit__(self, kind, error, trace):
        self.stop(raises=kind is None)

    @property
    def password(self) -> str:
        return self.variables['rcon_password']

    @property
    def requests(self) -> list:
        """All that came so far, oldest first."""
        with self._changed:
            return list(self._requests)

    @property
    def sent(self) -> list:
        """All that was sent so far, oldest first."""
        with self._changed:
            return list(self._sent)

    def commands(self) -> list:
        """The commands that were answered, oldest first."""
        return [request.command for request in self.requests if request.outcome == 'answered']

    def wait_for(self, predicate, timeout):
        """Waits until predicate(requests) holds; asked anew whenever something came or was sent.

        Returns what the predicate gave last, which is false when the time is up or the server has ended.
        """
        with self._changed:
            self._changed.wait_for(lambda: predicate(list(self._requests)) or self._ending, timeout)
            return predicate(list(self._requests))

    def restart(self, away=0.0, password=None, mode=None, variables=None, players=None):
        """Closes the port, and opens it again after `away` seconds with a new game.

        The new game begins as the first one did, with what is given here in its place. What waited to be sent is lost,
        records and counts stay. Returns at once.
        """
        given = {'password': password, 'mode': mode, 'variables': variables, 'players': players}
        changes = {key: value for key, value in given.items() if value is not None}
        with self._changed:
            self._restarts.append((away, changes))
        self._wake()

    def wait_until_away(self, timeout) -> bool:
        """Whether the port is closed within `timeout` seconds; until then a request may still be answered."""
        with self._changed:
            return self._changed.wait_for(lambda: self._is_away or self._ending, timeout) and not self._ending

    def stop(self, raises=True):
        """Ends the server at once. Raises what went wrong in `answer`, if anything did."""
        self._ending = True
        self._wake()
        self._thread.join(5)
        if self._thread.is_alive():
            raise RuntimeError('the game server does not end')
        if raises and self._error is not None:
            raise self._error

    # The answers by default

    def default_answer(self, command) -> list:
        """[(delay_ms, payload, source), ...] for one command; carries the command out."""
        text = self._execute(command)
        parts = [text[at:at + PART_BYTES] for at in range(0, len(text), PART_BYTES)] or [b'']
        return [(0, part, None) for part in parts]

    def _begin_game(self):
        ranked, playlists = MODES[self._start['mode']]
        self.variables = {
            'rcon_password': self._start['password'], 'sv_hostname': 'Scripted Server', 'sv_ranked': ranked,
            'playlist_enabled': playlists, 'playlist_excludeMap': '', 'playlist_excludeGametype': '',
            'playlist_excludeGametypeMap': '', 'g_gametype': 'crews', 'mapname': 'ward_saltworks',
            'sv_mapRotation': 'gametype crews map ward_saltworks map ward_tramyard', 'sv_mapRotationCurrent': '',
            **self._start['variables']}
        self.players = [Player(number, name) for number, name in enumerate(self._start['players'])]

    def _execute(self, command) -> bytes:
        words = command.split()
        if not words:
            return b''
        carry_out = {
            'dvardump': self._dump, 'teamstatus': self._team_status, 'setadmindvar': self._set, 'say': self._say,
            'clientkick': self._kick,
        }.get(words[0].lower())
        if carry_out:
            return carry_out(command, words)
        name = self._known(words[0])
        if name is None:
            return latin1(f'Unknown command "{words[0]}"\n')
        value = self.variables[name]
        return latin1(f'"{name}" is: "{value}"^7 in force: "{value}"^7\n')

    def _known(self, name):
        return next((known for known in self.variables if known.lower() == name.lower()), None)

    def _dump(self, _command, _words) -> bytes:
        lines = [f'S       {name} "{value}"\n' for name, value in list(self.variables.items())]
        count = f'\n{len(lines)} total dvars\n' if self.dump_counts else ''
        return latin1(''.join(lines) + count)

    def _set(self, command, words) -> bytes:
        parts = re.match(r'\S+\s+(\S+)\s*(?:"(.*)"|(.*))$', command, re.DOTALL)
        if not parts:
            return b'Usage: setadmindvar <name> "<value>"\n'
        name = self._known(parts[1])
        if name is None:
            return latin1(f"There is no variable '{words[1]}'\n")
        self.variables[name] = parts[2] if parts[2] is not None else parts[3]
        return b''

    def _team_status(self, _command, _words) -> bytes:
        return TITLE + b''.join(player.line() for player in list(self.players))

    def _say(self, command, _words) -> bytes:
        return latin1('tower: ' + command[len('say'):].strip().strip('"') + '\n')

    def _kick(self, _command, words) -> bytes:
        number = words[1] if len(words) > 1 else ''
        found = next((player for player in self.players if str(player.number) == number), None)
        if found is None:
            return latin1(f'Client {number} is not active\n')
        self.players = [player for player in self.players if player is not found]
        return latin1(f'{found.name}^7 was kicked\n')

    # The server's thread

    @staticmethod
    def _open(port, host='127.0.0.1'):
        opened = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
        opened.setblocking(False)
        opened.setsockopt(socket.SOL_SOCKET, socket.SO_RCVBUF, 1 << 20)
        try:
            opened.bind((host, port))
        except OSError:
            opened.close()
            raise
        return opened

    def _wake(self):
        try:
            self._wake_start.send(b'\0')
        except OSError:
            pass  # it is awake, or over

    def _run(self):
        try:
            self._serve()
        except BaseException as error:  # told by stop()
            self._error = error
        finally:
            self._ending = True
            for each in [self._socket, self._wake_end, self._wake_start, *self._sources.values()]:
                each.close()
            with self._changed:
                self._changed.notify_all()

    def _serve(self):
        while not self._ending and time.monotonic() < self._end and len(self._requests) < MOST_REQUESTS:
            due = min(self._waiting[0][0] if self._waiting else self._end, self._end)
            readable, _, _ = select.select([self._socket, self._wake_end], [], [], max(0, due - time.monotonic()))
            if self._wake_end in readable:
                self._wake_end.recv(4096)
            if self._socket in readable:
                self._receive()
            self._send_due()
            with self._changed:
                restart = self._restarts[0] if self._restarts else None
            if restart:
                self._go_and_come_back(*restart)

    def _go_and_come_back(self, away, changes):
        self._socket.close()
        self._waiting.clear()
        with self._changed:
            self._is_away = True
            self._changed.notify_all()
        back = min(time.monotonic() + away, self._end)
        while not self._ending and time.monotonic() < back:
            readable, _, _ = select.select([self._wake_end], [], [], max(0, back - time.monotonic()))
            if readable:
                self._wake_end.recv(4096)
        if self._ending:
            return
        self._start.update(changes)
        self._begin_game()
        self._answered.clear()
        self._socket = self._open(self.port)
        with self._changed:
            self._is_away = False
            self._restarts.pop(0)
            self._changed.notify_all()

    def _receive(self):
        try:
            datagram, sender = self._socket.recvfrom(65536)
        except OSError:
            return  # the system's word about a datagram that nobody took
        now = time.monotonic()
        password, command = self._taken_apart(datagram)
        outcome, answers = self._judge(password, command, sender, now)
        with self._changed:
            self._requests.append(Request(now, *sender, password or '', command or '', outcome))
            self._changed.notify_all()
        for delay_ms, payload, source in answers:
            if len(self._waiting) < MOST_WAITING:
                due = now + (self.delay_ms + delay_ms) / 1000
                heapq.heappush(self._waiting, (due, next(self._order), sender, self._framed(payload), source))

    def _taken_apart(self, datagram):
        if not datagram.startswith(REQUEST_HEAD):
            return None, None
        text = datagram[len(REQUEST_HEAD):].split(b'\0', 1)[0].decode('latin-1')
        # A password may hold blanks, so that only knowing it tells where the command begins.
        if text == self.password or text.startswith(self.password + ' '):
            return self.password, text[len(self.password) + 1:]
        return (text.split(' ', 1) + [''])[:2]

    def _judge(self, password, command, sender, now):
        """What becomes of a request, and its answers."""
        if password is None:
            return 'malformed', []
        if self.silent:
            return 'silent', []
        if password != self.password:
            return 'refused', [(0, None, None)]
        last = self._answered.get(sender[0])
        if last is not None and now - last < self.throttle_ms / 1000:
            return 'throttled', []
        self._counts[command] = count = self._counts.get(command, 0) + 1
        answers = self.answer(command, count) if self.answer else None
        if answers is None:
            answers = self.default_answer(command)
        if not answers:
            return 'unanswered', []
        self._answered[sender[0]] = now
        return 'answered', answers

    def _framed(self, payload) -> bytes:
        return REFUSAL if payload is None else REPLY_HEAD + latin1(payload)

    def _send_due(self):
        while self._waiting and self._waiting[0][0] <= time.monotonic():
            _, _, receiver, datagram, source = heapq.heappop(self._waiting)
            # Under the lock, so that who has received a datagram finds it among those that were sent.
            with self._changed:
                now = time.monotonic()
                try:
                    self._source(source).sendto(datagram, receiver)
                except (BlockingIOError, ConnectionRefusedError):
                    continue  # lost, as on any line
                self._sent.append(Sent(now, receiver[1], datagram, source))
                self._changed.notify_all()

    def _source(self, address):
        if address is None:
            return self._socket
        if not address.startswith('127.'):
            raise ValueError(f'{address} is no address of loopback')
        if address not in self._sources:
            self._sources[address] = self._open(0, address)
        return self._sources[address]
