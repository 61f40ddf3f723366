"""What the values are: lists that are lists, JSON, copies, and mistakes that are named."""

import copy
import pickle

import pavo_zorv

policy = pavo_zorv.api_policy(field1="blue", field2=100)
policy.prefixes.append(pavo_zorv.api_prefix(octets=[198, 51, 100], field2=24))
policy.prefixes += [pavo_zorv.api_prefix(octets=[203, 0, 113])]
policy.prefixes[1].field2 = 24
print(policy)
print(policy.to_json())
print("from JSON:", pavo_zorv.api_policy.from_json(policy.to_json()) == policy)

other = copy.copy(policy)
other.prefixes.pop()
print("copied:", len(policy.prefixes), len(other.prefixes))
print("pickled:", pickle.loads(pickle.dumps(policy)) == policy)
print("in order:", sorted([policy, other], reverse=True) == [policy, other])

try:
    pavo_zorv.api_aa_list(policies=[{"prefixes": [{"octets": [198, 510]}]}])
except OverflowError as error:
    print(error)
