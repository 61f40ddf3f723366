"""Counts the messages of a stream by payload: with descriptors at run time, without generated code.

payloads.py DESCRIPTORS STREAM
"""
import collections
import sys

from google.protobuf import descriptor_pb2, descriptor_pool, message_factory


def messages(stream: bytes):
    """Each after its length, a varint."""
    at = 0
    while at < len(stream):
        length = shift = 0
        while True:
            length |= (stream[at] & 0x7f) << shift
            shift += 7
            at += 1
            if stream[at - 1] < 0x80:
                break
        yield stream[at:at + length]
        at += length


descriptors, stream = (open(name, "rb").read() for name in sys.argv[1:])
pool = descriptor_pool.DescriptorPool()
for file in descriptor_pb2.FileDescriptorSet.FromString(descriptors).file:
    pool.Add(file)
api_msg = message_factory.MessageFactory(pool).GetPrototype(pool.FindMessageTypeByName("zorv.api_msg"))

counts = collections.Counter()
for message in messages(stream):
    counts.update(field.name for field, _ in api_msg.FromString(message).ListFields() if field.message_type)
for name, count in sorted(counts.items()):
    print(count, name)
