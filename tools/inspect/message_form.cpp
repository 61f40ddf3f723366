// Looks at how an input begins.
#include "message_form.hpp"

#include <string_view>

#include "types.hpp"

namespace inspect {

message_form detect(byte_view input) {
  const std::string_view text(reinterpret_cast<const char *>(input.data()), input.size());
  std::size_t first = text.find_first_not_of(" \t\r\n");
  while (first < text.size() && text[first] == '#') first = text.find_first_not_of(" \t\r\n", text.find('\n', first));
  if (first == text.npos) return message_form::raw;
  if (text[first] == '{') return message_form::as_json;
  const std::size_t mark = text.find_first_of(":{<", first);
  if (mark == text.npos) return message_form::automatic;
  const std::string_view name = text.substr(first, text.find_last_not_of(" \t", mark - 1) + 1 - first);
  for (const message_type *type : all_types()) {
    if (field_of(*type, name) != nullptr) return message_form::as_text;
  }
  return message_form::automatic;
}

}  // namespace inspect
