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

PIPE = "iKorvelAssistant"
PAGE = 0x270000
SERVICE = 0xB20001
LIST = 0xB20027  # in both directions: asked for without a payload, and answered
START = 0xB20022
PROGRESS = 0xB20023
FINISHED = 0xB20024
FAILED = 0xB20026

HELLO = struct.pack("<4sI", b"BPIP", 2)
MESSAGE, ANNOUNCEMENT = 1, 2
FRAME_HEAD = struct.Struct("<IB")  # length of the body, type
MESSAGE_HEAD = struct.Struct("<7iB2I")  # to, from, id, four header words, flag, lengths of text and payload
MOST_TEXT, MOST_PAYLOAD = 65_536, 16_777_216
MOST_BODY = MESSAGE_HEAD.size + MOST_TEXT + MOST_PAYLOAD

PATIENCE = 5  # seconds for the handshake, and for the list


class PeerError(Exception):
    """What went wrong, for the user."""


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
    raise PeerError(f"{reason}: is the update service running?")


class Pipe:
    """One connection to the broker."""

    def __init__(self):
        self.socket, path = connected_socket()
        self.check_user(path)
        self.socket.sendall(HELLO)
        hello = self.read(len(HELLO))
        if hello != HELLO:
            raise PeerError(f"{path}: the other side speaks another protocol: {hello.hex(' ')}")

    def check_user(self, path):
        credentials = struct.Struct("=iII")  # process, user, group
        answer = self.socket.getsockopt(socket.SOL_SOCKET, socket.SO_PEERCRED, credentials.size)
        if credentials.unpack(answer)[1] != os.geteuid():
            raise PeerError(f"{path}: the broker belongs to another user")

    def read(self, count):
        data = bytearray()
        while len(data) < count:
            try:
                piece = self.socket.recv(min(count - len(data), 65_536))
            except socket.timeout as error:
                raise PeerError(f"nothing came within {PATIENCE} seconds") from error
            if not piece:
                raise PeerError("the broker has closed the connection")
            data += piece
        return bytes(data)

    def write_frame(self, kind, body):
        self.socket.sendall(FRAME_HEAD.pack(len(body), kind) + body)

    def announce(self, messages):
        """This connection takes these messages to the page from now on."""
        self.write_frame(ANNOUNCEMENT, b"".join(struct.pack("<2i", PAGE, message) for message in messages))

    def ask_service(self, message, payload=b""):
        self.write_frame(MESSAGE, MESSAGE_HEAD.pack(SERVICE, PAGE, message, 0, -1, 0, 0, 0, 0, len(payload)) + payload)

    def next_message(self):
        """Id and payload of the next message."""
        length, kind = FRAME_HEAD.unpack(self.read(FRAME_HEAD.size))
        if kind != MESSAGE or not MESSAGE_HEAD.size <= length <= MOST_BODY:
            raise PeerError(f"the broker has sent a wrong frame: type {kind}, {length} bytes")
        body = self.read(length)
        _, _, message, *_, text, payload = MESSAGE_HEAD.unpack_from(body)
        if text > MOST_TEXT or payload > MOST_PAYLOAD or MESSAGE_HEAD.size + text + payload != length:
            raise PeerError(f"the broker has sent a wrong message: {text} and {payload} bytes in a body of {length}")
        return message, body[MESSAGE_HEAD.size + text :]


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
    _, payload = pipe.next_message()
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
    pipe.socket.settimeout(None)  # an update takes as long as it takes
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
    except (PeerError, OSError) as error:
        print(f"accessory_peer: {error}", file=sys.stderr)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
