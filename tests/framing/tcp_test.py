#!/usr/bin/env python3
"""The example server on TCP, over the loopback: with the example client, and with peers that cut, merge and delay what
they send, send what is no message, or do not read. Every step waits for what the server does, never for time to pass.

tcp_test.py [EMULATOR...] SERVER CLIENT
"""

import socket
import subprocess
import sys
import unittest

*EMULATOR, SERVER, CLIENT = sys.argv[1:]
TIMEOUT = 30


def varint(number):
    result = b""
    while number >= 0x80:
        result += bytes([number & 0x7F | 0x80])
        number >>= 7
    return result + bytes([number])


def delimited(field, content):
    return bytes([field << 3 | 2]) + varint(len(content)) + content


def framed(message):
    return varint(len(message)) + message


def request(number, name, labels=()):
    """A request for a policy, in its envelope, with its prefix."""
    stack = b"".join(b"\x08" + varint(label) for label in labels)
    policy = delimited(1, name) + (delimited(7, stack) if labels else b"")
    return framed(b"\x08" + varint(number) + delimited(8, delimited(1, policy)))


def answer(number, name, labels=None):
    """What the server answers: the labels that it knew before."""
    notification = delimited(1, name)
    if labels is not None:
        notification += delimited(10, b"".join(b"\x08" + varint(label) for label in labels))
    return framed(b"\x08" + varint(number) + delimited(9, delimited(1, notification)))


class Peer:
    """A connection that is written by hand."""

    def __init__(self, port):
        self.socket = socket.create_connection(("127.0.0.1", port), timeout=TIMEOUT)
        self.socket.setsockopt(socket.IPPROTO_TCP, socket.TCP_NODELAY, 1)

    def send(self, data):
        self.socket.sendall(data)

    def receive(self, count):
        data = b""
        while len(data) < count:
            piece = self.socket.recv(count - len(data))
            if not piece:
                break
            data += piece
        return data

    def is_closed(self):
        """Whether the server has closed the connection without sending anything else."""
        try:
            return self.socket.recv(1) == b""
        except ConnectionResetError:
            return True

    def close(self):
        self.socket.close()


class Tcp(unittest.TestCase):
    def setUp(self):
        self.server = subprocess.Popen([*EMULATOR, SERVER], stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True)
        self.addCleanup(self.end)
        word, port = self.server.stdout.readline().split()
        self.assertEqual(word, "port")
        self.port = int(port)

    def end(self):
        """Ends the server; returns what it has said since. Nothing may be left of the memory of any connection."""
        if self.server.stdin.closed:
            return ""
        self.server.stdin.close()
        said = self.server.stdout.read()
        self.server.stdout.close()
        self.assertEqual(self.server.wait(TIMEOUT), 0)
        for line in said.splitlines():
            self.assertRegex(line, r", 0 bytes not released$")
        return said

    def peer(self):
        peer = Peer(self.port)
        self.addCleanup(peer.close)
        return peer

    def said(self):
        line = self.server.stdout.readline()
        self.assertRegex(line, r", 0 bytes not released$")
        return line.split(": ", 1)[1].rsplit(", 0 bytes", 1)[0]

    def check_alive(self):
        """Another client is served."""
        other = self.peer()
        other.send(request(1, b"a"))
        self.assertEqual(other.receive(len(answer(1, b"a"))), answer(1, b"a"))
        other.close()
        self.assertEqual(self.said(), "closed after 1 messages, 1 policies")

    def test_answers_have_the_bytes_of_the_wire_format(self):
        peer = self.peer()
        peer.send(bytes.fromhex("0b 08 01 42 07 0a 05 0a 01 61 3a 00"))
        self.assertEqual(peer.receive(10), bytes.fromhex("09 08 01 4a 05 0a 03 0a 01 61"))
        peer.send(bytes.fromhex("0d 08 02 42 09 0a 07 0a 01 61 3a 02 08 10"))
        self.assertEqual(peer.receive(12), bytes.fromhex("0b 08 02 4a 07 0a 05 0a 01 61 52 00"))
        peer.send(bytes.fromhex("0b 08 03 42 07 0a 05 0a 01 61 3a 00"))
        self.assertEqual(peer.receive(14), bytes.fromhex("0d 08 03 4a 09 0a 07 0a 01 61 52 02 08 10"))

    def test_the_example_client_is_served_on_many_connections(self):
        for connections in (1, 60):
            done = subprocess.run([*EMULATOR, CLIENT, str(self.port), str(connections)], capture_output=True,
                                  text=True, timeout=TIMEOUT, check=False)
            self.assertEqual((done.returncode, done.stderr), (0, ""))
            self.assertEqual(done.stdout, f"{connections} connections, {3 * connections} answers\n")
            for _ in range(connections):
                self.assertEqual(self.said(), "closed after 3 messages, 1 policies")

    def test_messages_may_arrive_in_pieces_of_any_size(self):
        sent = request(1, b"to-node-51", [16, 24001]) + request(2, b"to-node-51") + request(300, b"x" * 200, [1] * 100)
        expected = answer(1, b"to-node-51") + answer(2, b"to-node-51", [16, 24001]) + answer(300, b"x" * 200)
        for size in (1, 2, 3, 7, 40, len(sent) - 1, len(sent)):
            peer = self.peer()
            for at in range(0, len(sent), size):
                peer.send(sent[at : at + size])
            self.assertEqual(peer.receive(len(expected)), expected, size)
            peer.close()
            self.assertEqual(self.said(), "closed after 3 messages, 2 policies")

    def test_a_message_may_be_cut_anywhere_with_others_served_between_the_pieces(self):
        sent, expected = request(7, b"one", [16]), answer(7, b"one")
        for cut in range(1, len(sent)):
            peer = self.peer()
            peer.send(sent[:cut])
            if cut % 5 == 0:
                self.check_alive()
            peer.send(sent[cut:])
            self.assertEqual(peer.receive(len(expected)), expected, cut)
            peer.close()
            self.assertEqual(self.said(), "closed after 1 messages, 1 policies")

    def test_a_stream_that_ends_inside_a_message_is_reported(self):
        sent = request(7, b"one", [16])
        for cut in range(1, len(sent)):
            peer = self.peer()
            peer.send(sent + sent[:cut])
            peer.socket.shutdown(socket.SHUT_WR)
            expected = answer(7, b"one")
            self.assertEqual(peer.receive(len(expected)), expected)
            self.assertTrue(peer.is_closed())
            self.assertEqual(self.said(), "cut off after 1 messages, 1 policies")

    def test_what_is_no_message_closes_the_connection_but_no_other(self):
        good = request(1, b"a")
        bomb = delimited(11, delimited(2, b"\x1a\x00" * 1500))
        for hostile, why in (
            (b"\xff\xff\xff\xff\x0f", "a message is too long"),
            (b"\xff\xff\xff\xff\xff\xff\xff\xff\xff\x01", "a message is too long"),
            (varint(4097), "a message is too long"),
            (b"\x80" * 10, "a message is too long"),
            (b"\x02\x08\xff", "a message cannot be decoded"),
            (b"\x01\x0b", "a message cannot be decoded"),
            (framed(b"\x42\x7f\x0a"), "a message cannot be decoded"),
            (b"\x00", "not a request for a policy"),
            (b"\x02\x08\x01", "not a request for a policy"),
            (framed(bomb), "a message takes too much memory"),
        ):
            peer = self.peer()
            peer.send(good)
            self.assertEqual(peer.receive(len(answer(1, b"a"))), answer(1, b"a"))
            peer.send(hostile)
            self.assertTrue(peer.is_closed(), hostile)
            self.assertRegex(self.said(), f"^refused: {why} after [12] messages, 1 policies$")
            self.check_alive()

    def test_the_longest_message_is_accepted(self):
        name = b"x" * (4096 - 11)
        sent = request(1, name)
        self.assertEqual(len(sent), 2 + 4096)
        peer = self.peer()
        peer.send(sent)
        self.assertEqual(peer.receive(2 + 4096), answer(1, name))
        peer.send(request(2, name + b"x"))
        self.assertTrue(peer.is_closed())
        self.assertEqual(self.said(), "refused: a message is too long after 1 messages, 1 policies")

    def test_what_a_client_makes_the_server_remember_is_limited(self):
        peer = self.peer()
        for number in range(1, 15):
            name = b"%03d" % number + b"x" * 300
            peer.send(request(number, name))
            self.assertEqual(peer.receive(len(answer(number, name))), answer(number, name))
        self.assertTrue(peer.is_closed())
        self.assertEqual(self.said(), "refused: its policies take too much memory after 14 messages, 13 policies")
        self.check_alive()

    def test_the_number_of_policies_is_limited(self):
        peer = self.peer()
        for number in range(1, 34):
            peer.send(request(number, b"%03d" % number))
            self.assertEqual(peer.receive(len(answer(number, b"001"))), answer(number, b"%03d" % number))
        self.assertTrue(peer.is_closed())
        self.assertEqual(self.said(), "refused: too many policies after 33 messages, 32 policies")

    def test_a_client_that_does_not_read_is_not_read_from_and_delays_nobody(self):
        peer = self.peer()
        peer.socket.setblocking(False)
        name = b"a" * 2000
        many = request(1, name) * 50
        sent = 0
        try:
            while sent < 1 << 28:
                sent += peer.socket.send(many[sent % len(many) :])
        except BlockingIOError:
            pass
        self.assertLess(sent, 1 << 28, "the server has read all of it, although nobody takes its answers")
        self.check_alive()
        peer.socket.settimeout(TIMEOUT)
        # It goes on when the client reads.
        one = len(request(1, name))
        expected = answer(1, name) + answer(1, name, []) * (sent // one - 1)
        self.assertEqual(peer.receive(len(expected)), expected)
        peer.send(many[sent % one : one])
        self.assertEqual(peer.receive(len(answer(1, name, []))), answer(1, name, []))

    def test_more_connections_than_there_is_room_for_are_served_one_after_the_other(self):
        peers = [self.peer() for _ in range(103)]
        for number, peer in enumerate(peers):
            peer.send(request(number, b"a"))
        for number, peer in enumerate(peers):
            self.assertEqual(peer.receive(len(answer(number, b"a"))), answer(number, b"a"))
            peer.close()
            self.assertEqual(self.said(), "closed after 1 messages, 1 policies")

    def test_the_end_releases_what_connections_hold(self):
        peers = [self.peer() for _ in range(3)]
        for peer in peers:
            peer.send(request(1, b"a"))
            self.assertEqual(peer.receive(len(answer(1, b"a"))), answer(1, b"a"))
        self.assertEqual(self.end().count(": ended after 1 messages, 1 policies, 0 bytes not released\n"), 3)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
