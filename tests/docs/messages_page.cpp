// Writes docs/messages.md: every message with its fields, from the schema.
#include <cstdio>

#include "describe.hpp"

namespace {

constexpr const char *introduction =
    "# The messages\n"
    "\n"
    "Every message with its fields: the number, the member of the record, its kind, the bytes of its key on the "
    "wire,\n"
    "and the constant of its presence bit, which is bit 0 for field 1 and so on. What a kind means is said in\n"
    "[wire_format.md](wire_format.md). Messages that are marked so take the options word: see\n"
    "[reference_mode.md](reference_mode.md).\n"
    "\n"
    "This page is written by `tests/docs/messages_page.cpp`; a test holds it against the schema.\n";

std::string key_text(unsigned number, pavo_zorv::wire_type wire) {
  std::string text;
  unsigned key = number << 3 | static_cast<unsigned>(wire);
  do {
    char byte[4];
    std::snprintf(byte, sizeof byte, "%02x", (key & 0x7f) | (key > 0x7f ? 0x80 : 0));
    text += text.empty() ? byte : std::string(" ") + byte;
    key >>= 7;
  } while (key != 0);
  return text;
}

template <class Record>
void write_message() {
  std::printf("\n## %s\n\n", pavo_zorv::message_name<Record>);
  if (zorv::takes_options<Record>) std::printf("Takes the options word.\n\n");
  std::printf("| Field | Member | Kind | Key | Presence |\n|---|---|---|---|---|\n");
  pavo_zorv::for_each_row<Record>([](auto index) {
    constexpr auto &row = pavo_zorv::row_at<Record, index>;
    std::printf("| %u | `%s` | %s | `%s` | `%s` |\n", row.number, row.name, docs::kind_text<Record, index>().c_str(),
                key_text(row.number, row.wire).c_str(), docs::presence_text<Record, index>().c_str());
  });
}

}  // namespace

int main() {
  std::printf("%s", introduction);
  pavo_zorv::for_each_message([](auto message) { write_message<typename decltype(message)::type>(); });
  return 0;
}
