// The first program in C++: fill, encode, decode, compare; nothing to release by hand.
#include <cstdio>
#include <vector>

#include "pavo_zorv.hpp"

int main() {
  //! [record]
  zorv::owned<api_msg> message;
  message.set<&api_msg::field1>(1u);
  using request = api_msg_p2p_auto_policy_request;
  using policy = api_msg_p2p_auto_policy;
  if (message.set<&api_msg::p2p_auto_policy_request, &request::policy, &policy::field1>("to-node-51") != CODEC_OK ||
      message.set<&api_msg::p2p_auto_policy_request, &request::policy, &policy::label_stack, &api_lbl_stack::labels>(
          std::vector<std::uint32_t>{16, 24001}) != CODEC_OK) {
    return 1;
  }
  //! [record]

  //! [encode]
  const std::vector<unsigned char> bytes = zorv::encode(*message);
  //! [encode]
  std::printf("%zu bytes:", bytes.size());
  for (const unsigned char byte : bytes) std::printf(" %02x", byte);
  std::printf("\n");

  //! [decode]
  const auto received = zorv::decode<api_msg>(bytes);
  if (!received.ok()) {
    std::printf("%s\n", pavo_zorv_result_text(received.result()));
    return 1;
  }
  if (received.has<&api_msg::p2p_auto_policy_request, &request::policy, &policy::field1>()) {
    std::printf("policy %s\n", received->p2p_auto_policy_request.policy.field1);
  }
  //! [decode]
  std::printf("%s\n", received == message ? "the same message" : "something else");
  return received == message ? 0 : 1;
}
