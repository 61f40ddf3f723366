"""What can go wrong in Python: input that is not a message, and a message that needs more memory than it may have."""

import pavo_zorv

#! [decode]
for data in (b"\x08\x07\x12\x04eth0", b"\x08\x07\x12\x04et", b"\x08\x07\x1b"):
    try:
        print(pavo_zorv.api_intf.from_bytes(data, limit=64).to_dict())
    except pavo_zorv.DecodeError as error:
        print(error)
        print("  read before:", error.partial.to_dict())
#! [decode]

# Two bytes of input for each policy of 72 bytes: what an attacker would send.
try:
    pavo_zorv.api_aa_list.from_bytes(b"\x1a\x00" * 1000, limit=4096)
except pavo_zorv.DecodeError as error:
    print(error)
