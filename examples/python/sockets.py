"""A server and a client with plain sockets: each message follows its length, and arrives in pieces of any size."""

import socket
import threading

import pavo_zorv


def messages(connection: socket.socket) -> "list[pavo_zorv.api_msg]":
    """All messages that arrive until the other side has finished."""
    splitter = pavo_zorv.Splitter("be32", limit=65536)
    received = []
    while piece := connection.recv(7):  # few bytes at a time, so that messages are cut
        for data in splitter.feed(piece):
            received.append(pavo_zorv.api_msg.from_bytes(data, limit=1 << 20))
    splitter.close()
    return received


def serve(listener: socket.socket) -> None:
    """Answers each message with its number doubled."""
    connection, _ = listener.accept()
    with connection:
        for message in messages(connection):
            answer = pavo_zorv.api_msg(field1=2 * (message.field1 or 0))
            connection.sendall(pavo_zorv.framed(answer.to_bytes(), "be32"))


with socket.create_server(("127.0.0.1", 0)) as listener:
    server = threading.Thread(target=serve, args=(listener,))
    server.start()
    with socket.create_connection(listener.getsockname()) as client:
        for number in (1, 200, 70000):
            request = pavo_zorv.api_msg(field1=number, to_zorv={"intf": {"field2": "eth0"}})
            client.sendall(pavo_zorv.framed(request.to_bytes(), "be32"))
        client.shutdown(socket.SHUT_WR)
        for answer in messages(client):
            print(answer)
    server.join()
