// The page: all bytes on the left, the fields as a tree on the right.
#include "hex_html.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "text_encodings.hpp"

namespace inspect {
namespace {

constexpr std::string_view page_head = R"(<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<meta name="viewport" content="width=device-width">
<title>zorv-inspect</title>
<style>
:root { color-scheme: light dark; --background: #fff; --foreground: #1c2330; --faint: #687284; --line: #e3e7ee; --highlight: #fff1b8;
  --key: #0b7285; --length: #3b5bdb; --excess: #b35900; --unknown: #a61e8c; --failed: #c92a2a; }
@media (prefers-color-scheme: dark) { :root { --background: #14181f; --foreground: #dde3ee; --faint: #8c99af; --line: #2a3140;
  --highlight: #4a4216; --key: #3bc9db; --length: #91a7ff; --excess: #ffa94d; --unknown: #e599f7; --failed: #ff8787; } }
body { margin: 1.5rem; background: var(--background); color: var(--foreground); font: 14px/1.5 system-ui, sans-serif; }
h1 { font-size: 1.15rem; margin: 0 0 .75rem; overflow-wrap: anywhere; }
h1 small { color: var(--faint); font-weight: normal; }
section { display: grid; grid-template-columns: max-content minmax(0, 1fr); gap: 2rem; margin-bottom: 2.5rem; }
.hex, .fields { font: 13px/1.6 ui-monospace, monospace; }
.hex { position: sticky; top: 1rem; align-self: start; max-height: calc(100vh - 2rem); overflow: auto; display: flex; gap: 1em;
  padding-right: 1rem; border-right: 1px solid var(--line); white-space: pre; }
.offsets, .at { color: var(--faint); user-select: none; }
i { font-style: normal; }
.fields details > :not(summary) { margin-left: 1.4em; }
.row, summary { padding: .05em .4em; border-radius: 4px; overflow-wrap: anywhere; }
.row { padding-left: 1.45em; }
summary { cursor: pointer; }
.k { color: var(--key); } .l { color: var(--length); } .x, .note { color: var(--excess); } .meta { color: var(--faint); }
.unknown, .unknown .name { color: var(--unknown); } .failed, .unread { color: var(--failed); }
i.failed { background: var(--failed); color: var(--background); }
.name { font-weight: 600; }
.values { overflow-wrap: anywhere; padding-left: 1.45em; }
.highlight { background: var(--highlight); }
.legend { display: flex; flex-wrap: wrap; gap: 0 1.2em; }
@media (max-width: 56rem) {
  body { margin: .5rem; }
  section { grid-template-columns: minmax(0, 1fr); gap: .75rem; }
  .hex { top: 0; max-height: 35vh; padding: 0 0 .5rem; border-right: 0; border-bottom: 1px solid var(--line); gap: .6em;
    background: var(--background); font-size: min(13px, 2.55vw); }
  .fields details > :not(summary) { margin-left: .7em; }
}
</style>
</head>
<body>
<p class="legend"><span class="k">key</span><span class="l">length</span><span class="v">value</span><span class="x">superfluous,
or would be written differently</span><span class="unknown">unknown field</span><span class="failed">cannot be read</span></p>
)";

constexpr std::string_view page_foot = R"(<script>
// Highlights on both sides what is under the pointer. The rows are in the order of their bytes.
for (const section of document.querySelectorAll("section")) {
  const bytes = [...section.querySelectorAll(".bytes > span")];
  const rows = [...section.querySelectorAll(".r")];
  const places = new Map([...bytes.entries(), ...rows.entries()].map(([at, element]) => [element, at]));
  let lit = [];
  section.addEventListener("pointerover", event => {
    for (const element of lit) element.classList.remove("highlight");
    const at = places.get(event.target.closest(".bytes > span, .r"));
    lit = at === undefined ? [] : [rows[at], ...bytes.slice(at, at + 1 + +(rows[at].dataset.inside ?? 0))];
    for (const element of lit) element.classList.add("highlight");
  });
}
</script>
</body>
</html>
)";

std::string escaped(std::string_view text) {
  std::string result;
  for (const char each : text) {
    switch (each) {
      case '&':
        result += "&amp;";
        break;
      case '<':
        result += "&lt;";
        break;
      case '>':
        result += "&gt;";
        break;
      case '"':
        result += "&quot;";
        break;
      default:
        result += each;
    }
  }
  return result;
}

const char *class_of(row_state state) {
  switch (state) {
    case row_state::unknown:
      return "unknown";
    case row_state::unread:
      return "unread";
    case row_state::failed:
      return "failed";
    case row_state::plain:
    case row_state::tolerated:
      break;
  }
  return "";
}

// All bytes of an unknown, unread or failed row look the same, except the first byte of a failure.
const char *class_of(const annotation &row, std::size_t index) {
  if (row.state == row_state::failed && index != 0) return "unread";
  if (*class_of(row.state) != '\0') return class_of(row.state);
  switch (row.roles[index]) {
    case role::key:
      return "k";
    case role::length:
      return "l";
    case role::excess:
      return "x";
    case role::value:
      break;
  }
  return "";
}

// Rows that are shown as one: a single one, or the elements of a long list of numbers.
using rows_view = std::span<const annotation>;

constexpr std::size_t longest_open_list = 16;
constexpr std::size_t open_elements = 8;  // of a list of messages

// "labels" of "labels[7]"; empty for what is no element of a list.
std::string_view list_name(const annotation &row) {
  const std::size_t bracket = row.name.find('[');
  return bracket == row.name.npos ? std::string_view() : std::string_view(row.name).substr(0, bracket);
}

bool is_in_same_list(const annotation &a, const annotation &b) {
  return a.depth == b.depth && a.parent == b.parent && list_name(a) == list_name(b);
}

bool may_be_folded(const annotation &row) {
  return row.state == row_state::plain && !row.is_container && !row.is_address && !list_name(row).empty();
}

std::vector<rows_view> folded(rows_view rows) {
  std::vector<rows_view> groups;
  while (!rows.empty()) {
    std::size_t count = 0;
    while (count < rows.size() && may_be_folded(rows[count]) && is_in_same_list(rows[0], rows[count])) ++count;
    if (count <= longest_open_list) count = 1;
    groups.push_back(rows.first(count));
    rows = rows.subspan(count);
  }
  return groups;
}

constexpr std::size_t html_bytes_per_line = 16;

// The bytes of a row, those of the same kind together. In a long list all look alike.
void append_bytes(std::string &text, const html_message &message, rows_view group) {
  const annotation &row = group.front();
  const std::size_t end = group.back().end;
  const std::string_view plain = class_of(row_state::plain);
  text += "<span>";
  std::string_view open = plain;
  for (std::size_t at = row.start; at < end; ++at) {
    const std::string_view own = group.size() > 1 ? plain : class_of(row, at - row.start);
    if (own != open) {
      if (!open.empty()) text += "</i>";
      if (!own.empty()) text += fmt::format("<i class=\"{}\">", own);
      open = own;
    }
    text += fmt::format("{:02x}{}", message.bytes[at], (at + 1) % html_bytes_per_line == 0 ? '\n' : ' ');
  }
  if (!open.empty()) text += "</i>";
  text += "</span>";
}

std::string offsets_column(std::size_t size) {
  std::string text;
  for (std::size_t at = 0; at < size; at += html_bytes_per_line) text += fmt::format("{:06x}\n", at);
  return text;
}

std::string row_content(const annotation &row, std::string_view meaning) {
  const std::string meta =
      row.key.empty() ? "" : fmt::format(" ({}{}{})", row.key, row.kind.empty() ? "" : ", ", row.kind);
  return fmt::format(
      "<span class=\"at\">{:06x}</span> <span class=\"name\">{}</span><span class=\"meta\">{}</span>{}{}", row.start,
      escaped(row.name), escaped(meta), escaped(meaning),
      row.remarks.empty() ? "" : fmt::format("<span class=\"note\">{}</span>", escaped(row.remarks)));
}

// All classes of a row; "r" has the place for the script.
std::string classes(const annotation &row, std::string_view class_name) {
  const std::string_view state = class_of(row.state);
  return fmt::format("class=\"r {}{}{}\"", class_name, state.empty() ? "" : " ", state);
}

// Where a field is, for whoever points at it.
std::string title(const annotation &row, std::size_t end) {
  return fmt::format("title=\"offset {} ({:#x}), {}: {}{}\"", row.start, row.start, byte_count(end - row.start),
                     escaped(row.parent), escaped(row.name));
}

std::string long_list(rows_view group) {
  std::string values;
  for (const annotation &each : group) {
    const std::string_view meaning(each.meaning);
    values += meaning.substr(meaning.starts_with(" = ") ? 3 : 0);
    values += ' ';
  }
  annotation first = group.front();
  first.name = list_name(group.front());
  return fmt::format("<details><summary {} {}>{}</summary><div class=\"values\">{}</div></details>\n",
                     classes(first, "line"), title(first, group.back().end),
                     row_content(first, fmt::format(": {} elements", group.size())), escaped(values));
}

// How many of the groups after this one are inside its message.
std::size_t count_inside(std::span<const rows_view> groups) {
  const std::size_t end = groups.front().front().field_end;
  const auto is_after = [&](const rows_view &each) { return each.front().start >= end; };
  const auto rest = groups.subspan(1);
  return static_cast<std::size_t>(std::ranges::find_if(rest, is_after) - rest.begin());
}

// Whether a message is one of the first elements of its list, or of no list.
bool is_open(const annotation &row) {
  const std::size_t bracket = row.name.find('[');
  return bracket == row.name.npos || std::stoull(row.name.substr(bracket + 1)) < open_elements;
}

std::string fields_column(std::span<const rows_view> groups) {
  std::string text;
  unsigned open = 0;
  for (std::size_t index = 0; index < groups.size(); ++index) {
    const annotation &row = groups[index].front();
    for (; open > row.depth; --open) text += "</details>\n";
    if (groups[index].size() > 1) {
      text += long_list(groups[index]);
    } else if (row.is_container) {
      text += fmt::format("<details{}><summary {} data-inside=\"{}\" {}>{}</summary>\n", is_open(row) ? " open" : "",
                          classes(row, "line"), count_inside(groups.subspan(index)), title(row, row.field_end),
                          row_content(row, row.meaning));
      ++open;
    } else {
      text += fmt::format("<div {} {}>{}</div>\n", classes(row, "row"), title(row, row.field_end),
                          row_content(row, row.meaning));
    }
  }
  for (; open != 0; --open) text += "</details>\n";
  return text;
}

}  // namespace

std::string html_section(const html_message &message) {
  const std::vector<rows_view> groups = folded(message.rows);
  std::string bytes;
  for (const rows_view &group : groups) append_bytes(bytes, message, group);
  return fmt::format(
      "<h1>{} <small>{}, {}</small></h1>\n<section>\n<div class=\"hex\"><div class=\"offsets\">{}</div>"
      "<div class=\"bytes\">{}</div></div>\n<div class=\"fields\">\n{}</div>\n</section>\n",
      escaped(message.type), escaped(message.name), byte_count(message.bytes.size()),
      offsets_column(message.bytes.size()), bytes, fields_column(groups));
}

std::string html_page(std::string_view sections) { return fmt::format("{}{}{}", page_head, sections, page_foot); }

}  // namespace inspect
