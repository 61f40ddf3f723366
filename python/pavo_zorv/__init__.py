"""The messages of a segment-routing policy component, over the shared library libpavo_zorv.

Each message is a class of its C name:

    >>> import pavo_zorv
    >>> stack = pavo_zorv.api_lbl_stack(labels=[16])
    >>> stack.labels.append(24001)
    >>> stack.to_bytes().hex(" ")
    '08 10 08 c1 bb 01'
    >>> pavo_zorv.api_lbl_stack.from_bytes(stack.to_bytes()) == stack
    True

A field that is absent is None, or an empty list. Nested messages always exist; one is present once it has content:

    >>> message = pavo_zorv.api_msg()
    >>> message.to_zorv.intf.field2 = "eth0"
    >>> message.to_dict()
    {'to_zorv': {'intf': {'field2': 'eth0'}}}

The library is searched for beside this package, where the dynamic loader looks, and in /usr/local. The environment
variable PAVO_ZORV_LIBRARY may name it.
"""

from ._messages import CLASSES, DecodeError, Message
from ._streams import Splitter, StreamError, framed
from ._version import __version__

globals().update(CLASSES)

__all__ = ["DecodeError", "Message", "Splitter", "StreamError", "__version__", "framed", *CLASSES]
