"""A server for many clients with asyncio. What a client may send is bounded, and one that sends nonsense is cut off."""

import asyncio

import pavo_zorv


async def serve(reader: asyncio.StreamReader, writer: asyncio.StreamWriter) -> None:
    splitter = pavo_zorv.Splitter("varint", limit=4096)
    try:
        while piece := await reader.read(4096):
            for data in splitter.feed(piece):
                message = pavo_zorv.api_msg.from_bytes(data, limit=36 * 4096)
                writer.write(pavo_zorv.framed(pavo_zorv.api_msg(field1=message.field1).to_bytes()))
                await writer.drain()
        splitter.close()
    except (pavo_zorv.DecodeError, pavo_zorv.StreamError) as error:
        print("server:", error)
    finally:
        writer.close()


async def ask(port: int, stream: bytes) -> "list[int | None]":
    """The numbers of the answers."""
    reader, writer = await asyncio.open_connection("127.0.0.1", port)
    writer.write(stream)
    writer.write_eof()
    splitter = pavo_zorv.Splitter("varint", limit=4096)
    answers = [pavo_zorv.api_msg.from_bytes(data).field1 for data in splitter.feed(await reader.read())]
    writer.close()
    return answers


async def main() -> None:
    server = await asyncio.start_server(serve, "127.0.0.1", 0)
    port = server.sockets[0].getsockname()[1]
    async with server:
        streams = [
            b"".join(pavo_zorv.framed(pavo_zorv.api_msg(field1=10 * client + i).to_bytes()) for i in range(3))
            for client in range(1, 5)
        ]
        for numbers in await asyncio.gather(*(ask(port, stream) for stream in streams)):
            print(numbers)
        for nonsense in (b"\x02\x62\x05", b"\xff\xff\x03", b"\x05\x08"):
            print(await ask(port, nonsense))


asyncio.run(main())
