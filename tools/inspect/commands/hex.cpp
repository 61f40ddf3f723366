// `hex`: every byte of a message with its meaning, as text or as a page for a browser.
#include <fmt/format.h>

#include "../annotate.hpp"
#include "../colour.hpp"
#include "../commands.hpp"
#include "../hex_html.hpp"
#include "../hex_text.hpp"
#include "../input.hpp"
#include "../target.hpp"
#include "../text_encodings.hpp"

namespace inspect {
namespace {

constexpr std::size_t shown_rest = 192;  // bytes after a failure
constexpr std::size_t chunk = 1 << 16;   // what is printed at once

}  // namespace

exit_status hex(const command_options &options) {
  const auto [type, file] = single_target_of(options);
  const painter paint(has_colours(options.colours));
  exit_status status = ok;
  std::string page;
  for_each_message(options, file, [&, type = type](const input_message &each) {
    const std::string &name = each.name;
    const byte_view message = each.bytes;
    const decoded read(type_of(type, name, message), message);
    if (options.html) {
      const std::vector<annotation> rows = annotate(message, walk_message(read.type, message));
      page += html_section({name, read.type.name, message, rows});
    } else {
      if (!each.is_single) {
        print(paint(colour::bold, fmt::format("{}: {}, {}", name, read.type.name, byte_count(message.size()))) + '\n');
      }
      std::string text;
      annotate(read.type, message, [&](const annotation &row) {
        append_hex(text, message, row, paint, options.all ? SIZE_MAX : shown_rest);
        if (text.size() < chunk) return;
        print(text);
        text.clear();
      });
      print(text);
    }
    status = worse(status, read.report(name));
  });
  if (options.html) print(html_page(page));
  return status;
}

}  // namespace inspect
