"""The messages of a segment-routing policy component, over the shared library libpavo_zorv.

Each message is a class of its C name:

    >>> import pavo_zorv
    >>> stack = pavo_zorv.api_lbl_stack(labels=[16, 24001])
    >>> stack.to_bytes().hex(" ")
    '08 10 08 c1 bb 01'
    >>> pavo_zorv.api_lbl_stack.from_bytes(stack.to_bytes()) == stack
    True

Fields are properties, None if absent. Nested messages always exist; setting a field of one marks it and the messages
around it as present:

    >>> message = pavo_zorv.api_msg()
    >>> message.to_zorv.intf.field2 = "eth0"
    >>> message.to_dict()
    {'to_zorv': {'intf': {'field2': 'eth0'}}}

The environment variables PAVO_ZORV_LIBRARY and PAVO_ZORV_HEADER may name the library and its header. Otherwise the
dynamic loader searches for libpavo_zorv.so.1, and the header is searched for beside this package, in the source tree
and in /usr/include.
"""

from ._messages import CLASSES, REFERENCE, DecodeError, Message

globals().update(CLASSES)

__all__ = ["DecodeError", "Message", "REFERENCE", *CLASSES]
