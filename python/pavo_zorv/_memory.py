"""The memory that records lead to: blocks that live as long as the message that owns them."""

from ._library import ffi


class Arena:
    """Blocks for one message. They go when the message goes; nothing is released before."""

    def __init__(self, limit=None):
        self.limit = limit
        self.bytes = 0
        self.requests = 0
        self.blocks = []
        self.handle = ffi.new_handle(self)

    def take(self, size):
        """A block of zeroes, or null beyond the limit."""
        self.requests += 1
        if self.limit is not None and self.bytes + size > self.limit:
            return ffi.NULL
        block = ffi.new("unsigned char[]", max(size, 1))
        self.bytes += size
        self.blocks.append(block)
        return block

    def array(self, element, count):
        """An array of zeroed elements of a C type."""
        block = ffi.new(element + "[]", count)
        self.blocks.append(block)
        return block


@ffi.callback("void *(size_t, void *)", error=ffi.NULL)
def allocate(size, context):
    return ffi.from_handle(context).take(size)
