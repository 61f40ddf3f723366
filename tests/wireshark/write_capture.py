"""Writes a capture with one UDP datagram for each file: write_capture.py PORT CAPTURE FILE..."""
import struct
import sys


def checksum(words: bytes) -> int:
    total = sum(struct.unpack(f"!{len(words) // 2}H", words))
    while total > 0xFFFF:
        total = (total & 0xFFFF) + (total >> 16)
    return total ^ 0xFFFF


def datagram(payload: bytes, port: int) -> bytes:
    """An IP packet from 127.0.0.1 to 127.0.0.2, without the optional UDP checksum."""
    udp = struct.pack("!HHHH", 40000, port, 8 + len(payload), 0) + payload
    head = struct.pack("!BBHHHBBH4s4s", 0x45, 0, 20 + len(udp), 0, 0, 64, 17, 0, bytes([127, 0, 0, 1]), bytes([127, 0, 0, 2]))
    return head[:10] + struct.pack("!H", checksum(head)) + head[12:] + udp


def main() -> None:
    port, capture, files = int(sys.argv[1]), sys.argv[2], sys.argv[3:]
    raw_ip = 101
    with open(capture, "wb") as out:
        out.write(struct.pack("<IHHiIII", 0xA1B2C3D4, 2, 4, 0, 0, 65535, raw_ip))
        for second, name in enumerate(files):
            with open(name, "rb") as file:
                packet = datagram(file.read(), port)
            out.write(struct.pack("<IIII", second, 0, len(packet), len(packet)) + packet)


main()
