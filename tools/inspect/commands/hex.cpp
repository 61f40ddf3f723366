// `hex`: every byte of a message with its meaning, as text or as a page.
#include <fmt/format.h>

#include "../annotate.hpp"
#include "../colour.hpp"
#include "../commands.hpp"
#include "../hex_html.hpp"
#include "../hex_text.hpp"
#include "../input.hpp"
#include "../subject.hpp"
#include "../text_forms.hpp"

namespace inspect {
namespace {

bool has_colours(colour_choice choice) {
  return choice == colour_choice::always || (choice == colour_choice::when_terminal && terminal_has_colours());
}

}  // namespace

exit_status hex(const request &asked) {
  const auto [type, file] = single_subject_of(asked);
  const painter paint(has_colours(asked.colours));
  exit_status status = all_well;
  std::string page;
  for_each_message(asked, file, [&, type = type](const std::string &name, byte_view message) {
    const decoded read(type_of(type, name, message), message);
    const std::vector<annotation> rows = annotate(message, read.walked);
    if (asked.html) {
      page += html_section({name, read.type.name, message, rows});
    } else {
      if (asked.stream != prefix_form::none) {
        print(paint(colour::bold, fmt::format("{}: {}, {}", name, read.type.name, counted(message.size()))) + '\n');
      }
      print(hex_text(message, rows, paint));
    }
    status = worse(status, read.report());
  });
  if (asked.html) print(html_page(page));
  return status;
}

}  // namespace inspect
