"""The messages of a segment-routing policy component, over the shared library libpavo_zorv.

Each of the 31 messages is a class of its C name:

    >>> import pavo_zorv
    >>> stack = pavo_zorv.api_lbl_stack(labels=[16, 24001])
    >>> stack.to_bytes().hex(" ")
    '08 10 08 c1 bb 01'
    >>> pavo_zorv.api_lbl_stack.from_bytes(stack.to_bytes()) == stack
    True

Fields are properties: None while absent. Nested messages are there always, and setting a field of one marks the way to
it as present:

    >>> message = pavo_zorv.api_msg()
    >>> message.to_zorv.intf.field2 = "eth0"
    >>> message.to_dict()
    {'to_zorv': {'intf': {'field2': 'eth0'}}}

The library is found as the dynamic loader finds libpavo_zorv.so.1, or at PAVO_ZORV_LIBRARY; its header beside this
package, or at PAVO_ZORV_HEADER.
"""

from ._messages import CLASSES, REFERENCE, DecodeError, Message

globals().update(CLASSES)

__all__ = ["DecodeError", "Message", "REFERENCE", *CLASSES]
