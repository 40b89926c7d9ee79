"""The console without its window, in a process of its own, for tests that look at it from outside.

    with Console() as console:
        console.connect(server)
        console.tell('send house_greeting')
        event = console.wait_for('done', 2)

Commands and events are those of wire_driver.cpp. Times are in seconds, on the clock of time.monotonic().
"""
import functools
import json
import os
import subprocess
import tempfile
import threading
import time
import unittest

from game_server import GameServer

RESOURCES = os.path.join(os.path.dirname(os.path.abspath(__file__)), '..', '..', 'resources')
LONGEST_CONNECT = 30  # seconds


class Event(dict):
    """One thing that happened. `name` says what, `time` when; what else is known of it stands under its keys."""

    @property
    def name(self):
        return self['event']

    @property
    def time(self):
        return self['ms'] / 1000


class Console:
    def __init__(self):
        self._folder = tempfile.TemporaryDirectory()
        self._changed = threading.Condition()
        self._events = []
        self._is_over = False
        self._process = subprocess.Popen([os.environ['FERROW_WIRE_DRIVER'], RESOURCES, self._folder.name],
                                         stdin=subprocess.PIPE, stdout=subprocess.PIPE, cwd=self._folder.name)
        self._reader = threading.Thread(target=self._read, name='console', daemon=True)
        self._reader.start()
        self.wait_for('ready', 10)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.close()

    def close(self):
        """Ends the console whatever it is at. Harmless when it has ended."""
        if self._process.poll() is None:
            self._process.kill()
        self._process.wait(10)
        self._reader.join(10)
        self._process.stdin.close()
        self._process.stdout.close()
        self._folder.cleanup()

    def tell(self, *lines):
        """Commands that the console gets at once. Returns when; what they bring about comes later."""
        now = time.monotonic()
        self._process.stdin.write(''.join(line + '\n' for line in lines).encode())
        self._process.stdin.flush()
        return now

    @property
    def events(self):
        with self._changed:
            return list(self._events)

    def all(self, name, since=0.0):
        return [event for event in self.events if event.name == name and event.time >= since]

    def wait_for(self, name, timeout, since=0.0, **details):
        """The first event of this name, not before `since`, that holds these details."""
        return self.wait_until(lambda: self._first(name, since, details), timeout,
                               lambda: f'no {name} {details} within {timeout} s')

    def wait_until(self, predicate, timeout, complaint=lambda: 'it does not happen'):
        """What `predicate` gives once it is true; asked anew with every event."""
        with self._changed:
            self._changed.wait_for(lambda: predicate() or self._is_over, timeout)
            found = predicate()
            if not found:
                latest = [{key: str(value)[:60] for key, value in event.items()} for event in self._events[-8:]]
                raise AssertionError(f'{complaint()}; the latest events: {latest}')
            return found

    def connect(self, server, host='127.0.0.1', password=None):
        """Connects, and returns the event of it once the players are there."""
        asked = self.tell(f'connect {host} {server.port} {password or server.password}')
        connected = self.wait_for('connected', LONGEST_CONNECT, asked)
        self.wait_for('players', LONGEST_CONNECT, asked)
        return connected

    def connect_and_fetch(self, server):
        """Connects, and waits until every catalogued variable has been asked for."""
        connected = self.connect(server)
        self.wait_for('fetch finished', LONGEST_CONNECT, connected.time)
        return connected

    def quit(self, timeout=5):
        """Closes the console as its window would. Returns how many seconds that took."""
        asked = self.tell('quit')
        self._process.wait(timeout)
        return time.monotonic() - asked

    def _first(self, name, since, details):
        return next((event for event in self._events if event.name == name and event.time >= since
                     and all(event.get(key) == value for key, value in details.items())), None)

    def _read(self):
        for line in self._process.stdout:
            event = Event(json.loads(line))
            with self._changed:
                self._events.append(event)
                self._changed.notify_all()
        with self._changed:
            self._is_over = True
            self._changed.notify_all()


class WireTest(unittest.TestCase):
    """Starts servers and consoles, and ends them with the test."""

    def serve(self, **options):
        server = GameServer(**options)
        self.addCleanup(server.stop)
        return server

    def serve_all(self, **options):
        """A server that lists every catalogued variable, so that nothing is asked for by name."""
        return self.serve(variables={**every_variable(), **options.pop('variables', {})}, **options)

    def start(self):
        console = Console()
        self.addCleanup(console.close)
        return console

    def connected(self, **options):
        """Such a server, and a console that is connected to it."""
        server = self.serve_all(**options)
        console = self.start()
        console.connect(server)
        return server, console

    def wait_for_command(self, server, command):
        self.assertTrue(server.wait_for(lambda requests: any(r.command == command for r in requests), 5), command)

    def best_of_three(self, measure, most):
        """What takes its time is measured until it is short enough, at most three times: the machine may be busy."""
        tries = []
        while len(tries) < 3 and (not tries or min(tries) > most):
            tries.append(measure())
        self.assertLessEqual(min(tries), most, f'tries: {tries}')


def answers(table):
    """An answer function for GameServer: what is not in the table is answered by default."""
    return lambda command, _count: table.get(command)


def told(name, value):
    return f'"{name}" is: "{value}"^7 in force: "{value}"^7\n'


@functools.cache
def _catalogued():
    with GameServer() as server, Console() as console:
        names = console.connect(server)['catalogued']
        return tuple(name for name in names if name not in server.variables)


def every_variable():
    """What the console's catalogues name for an unranked server, and what it cannot connect without, with values."""
    empty_ones = {f'playlist_exclude{what}': 'none' for what in ('Map', 'Gametype', 'GametypeMap')}
    return {name: '1' for name in _catalogued()} | empty_ones
