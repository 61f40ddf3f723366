// Looks at how an input begins.
#include "message_form.hpp"

#include <string_view>

#include "byte_forms.hpp"
#include "types.hpp"

namespace inspect {

message_form detect(byte_view input) {
  const std::string_view text(reinterpret_cast<const char *>(input.data()), input.size());
  const std::string_view begin = after_comments(text);
  if (begin.empty()) return message_form::raw;
  if (begin.front() == '{') return message_form::as_json;
  const std::size_t mark = begin.find_first_of(":{<");
  if (mark == begin.npos) return message_form::automatic;
  const std::string_view name = begin.substr(0, begin.substr(0, mark).find_last_not_of(" \t") + 1);
  for (const message_type *type : all_types()) {
    if (field_of(*type, name) != nullptr) return message_form::as_text;
  }
  return message_form::automatic;
}

}  // namespace inspect
