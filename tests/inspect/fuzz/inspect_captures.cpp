// A fuzzing target for captures, as files and as text: whatever headers and lengths say, packets are read within their
// bytes; messages are numbered, and are no more than what was captured. The last byte of the input selects the link
// layer, the length prefix, and whether the input is announced as a capture.
#include <memory>
#include <string>

#include "capture_packet.hpp"
#include "failure.hpp"
#include "input.hpp"
#include "messages.hpp"
#include "property.hpp"

namespace {

using namespace inspect;

void try_packet(byte_view bytes, unsigned choice) {
  const std::size_t length = bytes.size() + choice / 8;
  const packet found = parse_packet(static_cast<link_layer>(choice % 6), bytes, length);
  require(found.bytes.size() + found.missing <= length, "a packet carries no more than there was");
  if (!found.bytes.empty()) {
    require(
        found.bytes.data() >= bytes.data() && found.bytes.data() + found.bytes.size() <= bytes.data() + bytes.size(),
        "what a packet carries was captured");
  }
  if (found.what == packet::content::other || found.what == packet::content::damaged ||
      found.what == packet::content::fragment) {
    require(found.bytes.empty(), "only messages and segments are carried");
  }
  link_layer_of(bytes);
}

void try_capture(byte_view content, unsigned choice) {
  input_options options;
  options.input = choice % 2 == 0 ? byte_form::automatic : byte_form::pcap;
  options.stream = static_cast<prefix_form>(choice / 2 % 4);
  std::size_t count = 0, size = 0;
  try {
    const auto source = open_messages(std::make_unique<input_file>("input", content), options);
    for (input_message message; source->next(message); ++count) {
      if (!message.packet) return;
      require(!message.is_single && message.number == count, "no message is missing");
      require(message.name == "input[" + std::to_string(count) + "]" + to_string(*message.packet),
              "a message is called by its packet");
      size += message.bytes.size();
      require(size <= content.size(), "no byte is in two messages");
    }
  } catch (const input_error &) {
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, std::size_t size) {
  if (size == 0) return 0;
  const unsigned choice = data[size - 1];
  try_packet({data, size - 1}, choice);
  try_capture({data, size - 1}, choice);
  return 0;
}
