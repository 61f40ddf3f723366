// The page: all bytes on the left, the fields as a tree on the right.
#include "hex_html.hpp"

#include <fmt/format.h>

#include <algorithm>

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
:root { color-scheme: light dark; --background: #fff; --foreground: #1c2330; --faint: #7a8496; --line: #e3e7ee; --highlight: #fff1b8;
  --key: #0b7285; --length: #3b5bdb; --excess: #b35900; --unknown: #a61e8c; --failed: #c92a2a; }
@media (prefers-color-scheme: dark) { :root { --background: #14181f; --foreground: #dde3ee; --faint: #8390a6; --line: #2a3140;
  --highlight: #4a4216; --key: #3bc9db; --length: #91a7ff; --excess: #ffa94d; --unknown: #e599f7; --failed: #ff8787; } }
body { margin: 1.5rem; background: var(--background); color: var(--foreground); font: 14px/1.5 system-ui, sans-serif; }
h1 { font-size: 1.15rem; margin: 0 0 .75rem; }
h1 small { color: var(--faint); font-weight: normal; }
section { display: grid; grid-template-columns: max-content minmax(0, 1fr); gap: 2rem; margin-bottom: 2.5rem; }
.bytes, .fields { font: 13px/1.6 ui-monospace, monospace; }
.bytes { position: sticky; top: 1rem; align-self: start; max-height: calc(100vh - 2rem); overflow: auto;
  padding-right: 1rem; border-right: 1px solid var(--line); white-space: pre; }
.bytes b, .at { color: var(--faint); font-weight: normal; user-select: none; }
.bytes i { font-style: normal; padding: .1em .22em; border-radius: 3px; }
.fields details > :not(summary) { margin-left: 1.4em; }
.row, summary { padding: .05em .4em; border-radius: 4px; overflow-wrap: anywhere; }
.row { padding-left: 1.45em; text-indent: 0; }
summary { cursor: pointer; }
.k { color: var(--key); } .l { color: var(--length); } .x, .note { color: var(--excess); } .meta { color: var(--faint); }
.unknown, .unknown .name { color: var(--unknown); } .failed, .unread { color: var(--failed); }
i.failed { background: var(--failed); color: var(--background); }
.name { font-weight: 600; }
.highlight { background: var(--highlight); }
.legend { color: var(--faint); } .legend span { margin-right: 1.2em; }
</style>
</head>
<body>
<p class="legend"><span class="k">key</span><span class="l">length</span><span>value</span><span class="x">superfluous,
or would be written differently</span><span class="unknown">unknown field</span><span class="failed">cannot be read</span></p>
)";

constexpr std::string_view page_foot = R"(<script>
// Highlights on both sides what is under the pointer.
for (const section of document.querySelectorAll("section")) {
  const bytes = [...section.querySelectorAll(".bytes i")];
  const rows = [...section.querySelectorAll("[data-start]")];
  const highlight = (start, end, row) => {
    bytes.forEach((byte, at) => byte.classList.toggle("highlight", at >= start && at < end));
    rows.forEach(each => each.classList.toggle("highlight", each === row));
  };
  section.addEventListener("pointerover", event => {
    const byte = event.target.closest(".bytes i");
    const at = bytes.indexOf(byte);
    const row = byte ? rows.findLast(each => each.dataset.start <= at && at < each.dataset.own)
                      : event.target.closest("[data-start]");
    if (row) highlight(+row.dataset.start, +row.dataset.end, row);
    else highlight(0, 0, null);
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
  return "v";
}

std::string bytes_column(const html_message &message) {
  constexpr std::size_t bytes_per_line = 16;
  std::string text;
  for (const annotation &row : message.rows) {
    for (std::size_t at = row.start; at < row.end; ++at) {
      if (at % bytes_per_line == 0) text += fmt::format("{}<b>{:06x}</b> ", at == 0 ? "" : "\n", at);
      text += fmt::format("<i class=\"{}\">{:02x}</i>", class_of(row, at - row.start), message.bytes[at]);
    }
  }
  return text;
}

// The attributes and text of a row. `own` is the end of its own bytes, without the fields inside.
std::string row_content(const annotation &row, std::string_view class_name) {
  const std::string meta =
      row.key.empty() ? "" : fmt::format(" ({}{}{})", row.key, row.kind.empty() ? "" : ", ", row.kind);
  return fmt::format(
      "class=\"{} {}\" data-start=\"{}\" data-own=\"{}\" data-end=\"{}\" title=\"offset {} ({:#x}), {}: {}{}\">"
      "<span class=\"at\">{:06x}</span> <span class=\"name\">{}</span><span class=\"meta\">{}</span>{}"
      "<span class=\"note\">{}</span>",
      class_name, class_of(row.state), row.start, row.end, row.field_end, row.start, row.start,
      byte_count(row.field_end - row.start), escaped(row.parent), escaped(row.name), row.start, escaped(row.name),
      escaped(meta), escaped(row.meaning), escaped(row.remarks));
}

std::string fields_column(const html_message &message) {
  std::string text;
  unsigned open = 0;
  for (const annotation &row : message.rows) {
    for (; open > row.depth; --open) text += "</details>\n";
    if (row.is_container) {
      text += fmt::format("<details open><summary {}</summary>\n", row_content(row, "line"));
      ++open;
    } else {
      text += fmt::format("<div {}</div>\n", row_content(row, "row"));
    }
  }
  for (; open != 0; --open) text += "</details>\n";
  return text;
}

}  // namespace

std::string html_section(const html_message &message) {
  return fmt::format(
      "<h1>{} <small>{}, {}</small></h1>\n<section>\n<div class=\"bytes\">{}</div>\n<div class=\"fields\">\n{}"
      "</div>\n</section>\n",
      escaped(message.type), escaped(message.name), byte_count(message.bytes.size()), bytes_column(message),
      fields_column(message));
}

std::string html_page(std::string_view sections) { return fmt::format("{}{}{}", page_head, sections, page_foot); }

}  // namespace inspect
