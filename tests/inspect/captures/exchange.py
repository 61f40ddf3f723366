"""Sends files as messages: exchange.py FORM ADDRESS PORT FILE...

FORM is udp for a datagram each; or varint, be32 or le32 for a TCP connection in which each message follows its length,
in pieces of a few hundred bytes that do not begin where messages do.
"""
import socket
import sys
import time

PIECE = 230


def varint(number: int) -> bytes:
    written = bytearray()
    while number > 0x7F:
        written.append(number & 0x7F | 0x80)
        number >>= 7
    return bytes(written + bytes([number]))


def framed(form: str, message: bytes) -> bytes:
    if form == "varint":
        return varint(len(message)) + message
    return len(message).to_bytes(4, "big" if form == "be32" else "little") + message


def main() -> None:
    form, address, port, files = sys.argv[1], sys.argv[2], int(sys.argv[3]), sys.argv[4:]
    family = socket.AF_INET6 if ":" in address else socket.AF_INET
    messages = []
    for name in files:
        with open(name, "rb") as file:
            messages.append(file.read())
    with socket.socket(family, socket.SOCK_DGRAM if form == "udp" else socket.SOCK_STREAM) as receiver, \
            socket.socket(family, receiver.type) as sender:
        receiver.bind((address, port))
        if form == "udp":
            for message in messages:
                sender.sendto(message, (address, port))
            return
        receiver.listen()
        sender.setsockopt(socket.IPPROTO_TCP, socket.TCP_NODELAY, 1)
        sender.connect((address, port))
        accepted, _ = receiver.accept()
        stream = b"".join(framed(form, each) for each in messages)
        for at in range(0, len(stream), PIECE):
            sender.sendall(stream[at:at + PIECE])
            time.sleep(0.01)
        sender.close()
        while accepted.recv(65536):
            pass
        accepted.close()


main()
