"""The memory that records point to: blocks that live as long as the message that owns them."""

from ._library import ffi


class Arena:
    """The blocks of one message. They are released together with the message, not before."""

    def __init__(self, limit=None):
        self.limit = limit
        self.bytes = 0
        self.requests = 0
        self.blocks = []
        self.handle = ffi.new_handle(self)

    def allocate(self, size):
        """A zeroed block, or null if it would exceed the limit."""
        self.requests += 1
        if self.limit is not None and self.bytes + size > self.limit:
            return ffi.NULL
        block = ffi.new("unsigned char[]", max(size, 1))
        self.bytes += size
        self.blocks.append(block)
        return block

    def array(self, element, count):
        """A zeroed array of elements of a C type."""
        block = ffi.new(element + "[]", count)
        self.blocks.append(block)
        return block


@ffi.callback("void *(size_t, void *)", error=ffi.NULL)
def allocate(size, context):
    return ffi.from_handle(context).allocate(size)
