"""The first program in Python: fill, encode, decode, compare."""

import pavo_zorv

#! [record]
message = pavo_zorv.api_msg(field1=1)
policy = message.p2p_auto_policy_request.policy
policy.field1 = "to-node-51"
policy.label_stack.labels = [16, 24001]
#! [record]

#! [encode]
data = message.to_bytes()
#! [encode]
print(f"{len(data)} bytes: {data.hex(' ')}")

#! [decode]
received = pavo_zorv.api_msg.from_bytes(data)
if received.has("p2p_auto_policy_request"):
    print(received.to_dict())
#! [decode]
print("the same message" if received == message else "something else")
