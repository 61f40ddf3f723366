// Records in words: one line for a log, in a buffer of any size, and JSON as zorv-inspect writes and reads it.
#include <cstdio>
#include <vector>

#include "pavo_zorv.hpp"
#include "pavo_zorv_text.hpp"

namespace {

//! [line]
// Takes no memory, and no more time than the buffer deserves, whatever the peer has sent.
void log(const char *what, const api_msg &message) {
  char buffer[100];
  const zorv::line line = zorv::write_line(message, buffer, sizeof buffer);
  std::printf("%s: %.*s\n", what, static_cast<int>(line.text.size()), line.text.data());
}
//! [line]

}  // namespace

int main() {
  using request = api_msg_p2p_auto_policy_request;
  using policy = api_msg_p2p_auto_policy;
  auto message = zorv::try_make<api_msg>(
      zorv::field<&api_msg::field1> = 1u,
      zorv::field<&api_msg::p2p_auto_policy_request, &request::policy, &policy::field1> = "to-node-51");
  if (!message) return 1;
  log("sent", **message);
  const std::vector<std::uint32_t> labels(1000, 24001);
  if (message->set<&api_msg::p2p_auto_policy_request, &request::policy, &policy::label_stack, &api_lbl_stack::labels>(
          labels) != CODEC_OK) {
    return 1;
  }
  log("sent", **message);

  //! [json]
  const std::string json = zorv::to_json((*message)->p2p_auto_policy_request.policy.label_stack);
  char start[20];
  const std::size_t length = zorv::write_json(**message, start, sizeof start);
  const zorv::json_options compact{zorv::json_layout::one_line};
  //! [json]
  std::printf("%zu characters, of which the first are %.*s\n", length, static_cast<int>(sizeof start), start);
  std::printf("%zu characters for the labels\n", json.size());
  message->clear<&api_msg::p2p_auto_policy_request>();
  message->clear<&api_msg::p2p_auto_policy_request, &request::policy>();
  std::printf("%s\n", zorv::to_json(**message, compact).c_str());

  //! [json_writer]
  zorv::json_writer to([](std::string_view piece) { std::fwrite(piece.data(), 1, piece.size(), stdout); }, compact);
  to.begin_object();
  to.name("peer");
  to.string("192.0.2.1");
  to.name("message");
  to.record(**message);
  to.end_object();
  //! [json_writer]
  std::printf("\n");
  return 0;
}
