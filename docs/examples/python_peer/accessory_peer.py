#!/usr/bin/env python3
"""A peer of the message pipe, in Python and for Linux, as docs/protocol.md tells how to write one. It needs a running update
service.

    accessory_peer.py list          prints the accessories that have an update
    accessory_peer.py update KEY    starts an update and prints its progress until it has ended

Exit code 0 when that went well, 1 with a line on standard error when not, 2 when the command line is wrong.
"""
import argparse
import glob
import os
import socket
import stat
import struct
import sys
import time

PIPE = "iKorvelAssistant"
PAGE = 0x270000
SERVICE = 0xB20001
LIST = 0xB20027  # in both directions: asked for without a payload, and answered
START = 0xB20022
PROGRESS = 0xB20023
FINISHED = 0xB20024
FAILED = 0xB20026

HELLO = struct.pack("<4sI", b"BPIP", 2)
MESSAGE, ANNOUNCEMENT, INTRODUCTION, DELIVERY, ACKNOWLEDGEMENT, REFUSAL = 1, 2, 4, 5, 6, 7
QUESTION, ANSWER, FAREWELL, SKIP, WAITING = 9, 10, 11, 12, 13
FRAME_HEAD = struct.Struct("<IB")  # length of the body, type
MESSAGE_HEAD = struct.Struct("<7iB2I")  # to, from, id, four header words, flag, lengths of text and payload
INTRODUCTION_BODY = struct.Struct("<II16s16sQQ")  # features, connection, life, known life, first, received
DELIVERY_HEAD = struct.Struct("<16sQQII")  # life of the sender, number, event, process, user
RANGE = struct.Struct("<QQ")  # of numbers: first, behind
MOST_TEXT, MOST_PAYLOAD = 65_536, 16_777_216
MOST_BODY = DELIVERY_HEAD.size + MESSAGE_HEAD.size + MOST_TEXT + MOST_PAYLOAD

PATIENCE = 5  # seconds for the handshake, for the list, and for a broker that says nothing
FIRST_PAUSE, LONGEST_PAUSE = 0.02, 1  # seconds, before each attempt to connect again; each is twice as long as the last one
ABSENCE = 30  # seconds, after which a broker is not expected back


class PeerError(Exception):
    """What went wrong, for the user."""


class ConnectionLost(PeerError):
    """The broker has gone, or does not answer; it may come back."""


class NoBroker(ConnectionLost):
    """There is none."""


def pipe_folders():
    folder = os.environ.get("BRINDLE_PIPE_DIR")
    if folder:
        return [folder]
    run = os.environ.get("XDG_RUNTIME_DIR", "")
    if os.path.isabs(run) and os.path.isdir(run) and os.stat(run).st_uid == os.geteuid():
        return [os.path.join(run, "brindle")]
    folder = f"/tmp/brindle-{os.geteuid()}"
    return [folder] + sorted(glob.glob(folder + "-*"))


def is_private(folder):
    try:
        info = os.lstat(folder)
    except OSError:
        return False
    return stat.S_ISDIR(info.st_mode) and info.st_uid == os.geteuid() and info.st_mode & 0o077 == 0


def connected_socket():
    """The socket and its path."""
    folders = pipe_folders()
    reason = f"{folders[0]}: no folder that is this user's alone"
    for folder in filter(is_private, folders):
        path = os.path.join(folder, PIPE + ".sock")
        connection = socket.socket(socket.AF_UNIX, socket.SOCK_STREAM)
        connection.settimeout(PATIENCE)
        try:
            connection.connect(path)
            return connection, path
        except OSError as error:
            connection.close()
            reason = f"{path}: {error.strerror}"
    raise NoBroker(f"{reason}: is the update service running?")


class Connection:
    """One connection to the broker, and the frames on it."""

    def __init__(self):
        self.socket, path = connected_socket()
        self.check_user(path)
        self.write(HELLO)
        hello = self.read(len(HELLO))
        if hello != HELLO:
            raise PeerError(f"{path}: the other side speaks another protocol: {hello.hex(' ')}")

    def check_user(self, path):
        credentials = struct.Struct("=iII")  # process, user, group
        answer = self.socket.getsockopt(socket.SOL_SOCKET, socket.SO_PEERCRED, credentials.size)
        if credentials.unpack(answer)[1] != os.geteuid():
            raise PeerError(f"{path}: the broker belongs to another user")

    def read(self, count, on_silence=None):
        data = bytearray()
        while len(data) < count:
            try:
                piece = self.socket.recv(min(count - len(data), 65_536))
            except socket.timeout as error:
                if on_silence is None:
                    raise ConnectionLost(f"nothing came within {PATIENCE} seconds") from error
                on_silence()
                continue
            except OSError:
                piece = b""
            if not piece:
                raise ConnectionLost("the broker has closed the connection")
            data += piece
        return bytes(data)

    def read_frame(self, on_silence=None):
        length, kind = FRAME_HEAD.unpack(self.read(FRAME_HEAD.size, on_silence))
        if not MESSAGE <= kind <= WAITING or length > MOST_BODY:
            raise PeerError(f"the broker has sent a wrong frame: type {kind}, {length} bytes")
        body = self.read(length, on_silence)
        if kind == REFUSAL:
            raise PeerError(f"the broker refuses this peer: {body[4:].decode('utf-8', 'replace')}")
        return kind, body

    def write(self, data):
        try:
            self.socket.sendall(data)
        except OSError as error:
            raise ConnectionLost("the broker takes nothing more") from error

    def write_frame(self, kind, body=b""):
        self.write(frame(kind, body))


def frame(kind, body):
    return FRAME_HEAD.pack(len(body), kind) + body


class Pipe:
    """This process's life on the pipe, over all its connections: what it has sent takes effect once, also when the connection
    breaks or another service takes the broker's place."""

    def __init__(self):
        self.life = os.urandom(16)
        self.broker = bytes(16)  # the life of the last one
        self.connections = 0
        self.routes = set()
        self.posted = {}  # messages that are not done: frame by number
        self.next_number = 0
        self.received = 0  # deliveries
        self.is_read = True  # by the broker
        self.was_asked = False
        try:
            self.connect()
        except NoBroker:
            raise
        except ConnectionLost:
            self.connect_again()

    def connect(self):
        self.connections += 1
        self.connection = Connection()
        first = min(self.posted, default=self.next_number)
        self.connection.write_frame(
            INTRODUCTION, INTRODUCTION_BODY.pack(0, self.connections, self.life, self.broker, first, self.received)
        )
        kind, body = self.connection.read_frame()
        if kind != INTRODUCTION or len(body) != INTRODUCTION_BODY.size:
            raise PeerError(f"the broker has sent a wrong frame: type {kind}, {len(body)} bytes")
        _, _, self.broker, _, first_delivery, expected = INTRODUCTION_BODY.unpack(body)
        self.received = max(self.received, first_delivery)  # what the broker has given up
        self.is_read, self.was_asked = True, False
        self.write_routes()
        self.acknowledge(first_delivery)
        for number in range(expected, self.next_number):
            self.connection.write(self.posted.get(number) or frame(SKIP, struct.pack("<Q", 1)))

    def connect_again(self):
        pause, until = FIRST_PAUSE, time.monotonic() + ABSENCE
        while True:
            time.sleep(pause)
            try:
                return self.connect()
            except ConnectionLost:
                if time.monotonic() >= until:
                    raise
            pause = min(2 * pause, LONGEST_PAUSE)

    def write_routes(self):
        """The first announcement of a connection stands for all routes."""
        self.connection.write_frame(ANNOUNCEMENT, b"".join(struct.pack("<2i", PAGE, message) for message in self.routes))

    def acknowledge(self, first):
        """All deliveries from that one on: what has been read before is handled."""
        if first < self.received:
            self.connection.write_frame(ACKNOWLEDGEMENT, RANGE.pack(first, self.received))

    def announce(self, messages):
        """This peer takes these messages to the page from now on."""
        self.routes.update(messages)
        self.try_to(self.write_routes)

    def ask_service(self, message, payload=b""):
        head = MESSAGE_HEAD.pack(SERVICE, PAGE, message, 0, -1, 0, 0, 0, 0, len(payload))
        self.posted[self.next_number] = frame(MESSAGE, head + payload)
        self.next_number += 1
        self.try_to(self.connection.write, self.posted[self.next_number - 1])

    @staticmethod
    def try_to(write, *arguments):
        """When the connection is lost, reading finds that, too, and connects again."""
        try:
            write(*arguments)
        except ConnectionLost:
            pass

    def next_message(self, patience=None):
        """Id and payload of the next message; the one before is handled with that."""
        until = None if patience is None else time.monotonic() + patience
        while True:
            try:
                self.acknowledge(max(self.received - 1, 0))
                kind, body = self.connection.read_frame(lambda: self.on_silence(until))
                while kind != DELIVERY:
                    self.take_news(kind, body)
                    kind, body = self.connection.read_frame(lambda: self.on_silence(until))
                self.received += 1
                self.was_asked = False
                return read_message(body)
            except ConnectionLost:
                self.connect_again()

    def take_news(self, kind, body):
        self.was_asked = False
        if kind == ACKNOWLEDGEMENT:
            for first, behind in RANGE.iter_unpack(body):
                for number in [number for number in self.posted if first <= number < behind]:
                    del self.posted[number]
        elif kind == ANSWER:
            self.is_read = body == b"\1"
        elif kind != WAITING:
            raise PeerError(f"the broker has sent a wrong frame: type {kind}, {len(body)} bytes")

    def on_silence(self, until):
        if until is not None and time.monotonic() >= until:
            raise PeerError(f"nothing came within {PATIENCE} seconds")
        if not self.posted:
            return
        if self.was_asked and self.is_read:
            raise ConnectionLost("the broker does not answer")
        self.connection.write_frame(QUESTION)
        self.was_asked = True

    def close(self):
        self.try_to(self.acknowledge, max(self.received - 1, 0))
        self.try_to(self.connection.write_frame, FAREWELL)


def read_message(body):
    length = len(body) - DELIVERY_HEAD.size
    if length < MESSAGE_HEAD.size:
        raise PeerError(f"the broker has sent a wrong frame: type {DELIVERY}, {len(body)} bytes")
    _, _, message, *_, text, payload = MESSAGE_HEAD.unpack_from(body, DELIVERY_HEAD.size)
    if text > MOST_TEXT or payload > MOST_PAYLOAD or MESSAGE_HEAD.size + text + payload != length:
        raise PeerError(f"the broker has sent a wrong message: {text} and {payload} bytes in a body of {length}")
    return message, body[len(body) - payload :]


class Fields:
    """The fields of a payload, one behind the other."""

    def __init__(self, payload):
        self.payload = payload
        self.position = 0

    def bytes(self, count):
        field = self.payload[self.position : self.position + count]
        if len(field) != count:
            raise PeerError("the service has sent a payload that ends too early")
        self.position += count
        return field

    def number(self, form):
        return struct.unpack(form, self.bytes(struct.calcsize(form)))[0]

    def narrow_text(self):
        return self.bytes(self.number("<I"))

    def wide_text(self):
        return self.bytes(2 * self.number("<I")).decode("utf-16-le", "replace")


def read_list(payload):
    fields = Fields(payload)
    if fields.number("<I") != 1:
        return []
    accessories = []
    for _ in range(fields.number("<I")):
        key, model, _, version = fields.narrow_text(), fields.wide_text(), fields.wide_text(), fields.wide_text()
        lines = [fields.wide_text() for _ in range(fields.number("<I"))]
        fields.bytes(8)
        is_driver = fields.number("<B") != 0
        accessories.append((key, model, version, lines, is_driver))
    return accessories


def read_progress(payload):
    """Key and percentage; none when there are none."""
    fields = Fields(payload)
    if fields.number("<I") != 1:
        return None, None
    return fields.narrow_text(), fields.number("<i")


def read_key(payload):
    return payload.split(b"\0")[0]


def shown(key):
    return key.decode("utf-8", "replace")


def print_list(pipe):
    pipe.announce([LIST])
    pipe.ask_service(LIST)
    _, payload = pipe.next_message(PATIENCE)
    accessories = read_list(payload)
    for key, model, version, lines, is_driver in accessories:
        print(f"{shown(key)}: {model}, {'firmware' if is_driver else 'app'} {version}")
        for line in lines:
            print(f"    {line}")
    if not accessories:
        print("everything is up to date")


def update(pipe, key):
    pipe.announce([PROGRESS, FINISHED, FAILED])
    pipe.ask_service(START, key + b"\0")
    while True:
        message, payload = pipe.next_message()
        if message == PROGRESS:
            of, percent = read_progress(payload)
            if of == key:
                print(f"{shown(key)}: {'installing' if percent >= 100 else f'{percent} %'}", flush=True)
        elif read_key(payload) == key:
            if message == FAILED:
                raise PeerError(f"{shown(key)}: the update has failed")
            print(f"{shown(key)}: up to date")
            return


def main():
    parser = argparse.ArgumentParser(description="A peer of the update service's message pipe.")
    commands = parser.add_subparsers(dest="command", required=True)
    commands.add_parser("list", help="print the accessories that have an update")
    commands.add_parser("update", help="start an update and follow it").add_argument("key", metavar="KEY")
    options = parser.parse_args()
    try:
        pipe = Pipe()
        if options.command == "list":
            print_list(pipe)
        else:
            update(pipe, os.fsencode(options.key))
        pipe.close()
    except (PeerError, OSError) as error:
        print(f"accessory_peer: {error}", file=sys.stderr)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
