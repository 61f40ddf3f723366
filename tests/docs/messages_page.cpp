// Writes docs/messages.md: every message with its fields, from the schema.
#include <cstdio>
#include <string_view>

#include "describe.hpp"
#include "pavo_zorv_messages.h"

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
    "This page is written by `tests/docs/messages_page.cpp`; a test checks it against the schema.\n";

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

bool takes_options(std::string_view message) {
#define PLAIN(name)
#define WITH_OPTIONS(name) \
  if (message == #name) return true;
  PAVO_ZORV_EVERY_MESSAGE(PLAIN, WITH_OPTIONS)
#undef WITH_OPTIONS
#undef PLAIN
  return false;
}

void write_message(const pavo_zorv::message_info &message) {
  std::printf("\n## %s\n\n", message.name);
  if (takes_options(message.name)) std::printf("Takes the options word.\n\n");
  std::printf("| Field | Member | Kind | Key | Presence |\n|---|---|---|---|---|\n");
  for (const pavo_zorv::field_info &field : message.fields) {
    std::printf("| %u | `%s` | %s | `%s` | `%s` |\n", field.number, field.name, docs::kind_text(field).c_str(),
                key_text(field.number, field.wire).c_str(), docs::presence_text(message, field).c_str());
  }
}

}  // namespace

int main() {
  std::printf("%s", introduction);
  for (const pavo_zorv::message_info *const message : pavo_zorv::message_table()) write_message(*message);
  return 0;
}
