// The readers of bytes in their forms, for a fuzzer: any input is refused, or gives bytes that come back from every
// form; a stream is cut into pieces that lie one after the other; and of each piece the walk says what the library
// says, with every byte in one row. The last byte of the input says which form, which prefix and which message.
#include <algorithm>
#include <string>

#include "annotate.hpp"
#include "colour.hpp"
#include "failure.hpp"
#include "hex_text.hpp"
#include "property.hpp"
#include "results.hpp"
#include "stream.hpp"
#include "types.hpp"
#include "walk.hpp"
#include "wire_forms.hpp"

namespace {

using namespace inspect;

byte_string owned(const std::string &text) { return byte_string(text.begin(), text.end()); }

void try_message(const message_type &type, byte_view message) {
  const walk walked = walk_message(type, message);
  require(agree(record(type).decode(message), walked), "the walk agrees with the library");
  const auto rows = annotate(message, walked);
  std::size_t at = 0;
  for (const annotation &row : rows) {
    require(row.start == at && row.roles.size() == row.end - row.start, "every byte stands in one row");
    at = row.end;
  }
  require(at == message.size(), "every byte stands in a row");
  if (message.empty()) return;
  const byte_string again = bytes_of(owned(hex_text(message, rows, painter(false))), wire_form::dump);
  require(std::ranges::equal(again, message), "annotated bytes can be read again");
}

void try_forms(const byte_string &content) {
  for (const wire_form form : {wire_form::hex, wire_form::base64}) {
    require(bytes_of(owned(in_form(content, form)), form) == content, "bytes come back from their form");
  }
  if (content.empty()) return;
  require(bytes_of(owned(in_form(content, wire_form::dump)), wire_form::detected) == content, "a dump is detected");
}

void try_stream(const message_type &type, const byte_string &content, prefix_form form) {
  const frames found = split(content, form);
  std::size_t at = 0;
  for (const frame &each : found.whole) {
    require(each.offset == at && each.start >= at && each.start + each.length <= content.size(),
            "pieces do not overlap");
    at = each.start + each.length;
    try_message(type, byte_view(content).subspan(each.start, each.length));
  }
  require(found.failure.has_value() || at == content.size(), "a stream without a failure is read to its end");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, std::size_t size) {
  if (size == 0) return 0;
  const unsigned choice = data[size - 1];
  const auto types = inspect::all_types();
  const message_type &type = *types[choice % types.size()];
  try {
    const byte_string content = bytes_of(byte_string(data, data + size - 1), static_cast<wire_form>(choice % 5));
    try_forms(content);
    try_stream(type, content, static_cast<prefix_form>(choice / 5 % 4));
  } catch (const refused &) {
  }
  return 0;
}
