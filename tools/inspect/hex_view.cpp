// The annotated octets, from a walk.
#include "hex_view.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cstdint>
#include <string_view>

#include "results.hpp"

namespace inspect {
namespace {

constexpr std::size_t octets_in_row = 12;

// The value as the member holds it.
std::string number_text(const field_type &field, std::uint64_t number) {
  if (field.kind == kind::flag) {
    return number == 0 ? "false" : number == 1 ? "true" : fmt::format("true (sent as {})", number);
  }
  if (field.is_signed) {
    return field.bits == 64 ? fmt::format("{}", static_cast<std::int64_t>(number))
                            : fmt::format("{}", static_cast<std::int32_t>(number));
  }
  const std::uint64_t kept = field.bits == 8 ? number & 0xff : number;
  return kept == number ? fmt::format("{}", kept) : fmt::format("{} (sent as {}, cut to 8 bits)", kept, number);
}

// In quotes; a backslash before what is not printable ASCII, and in long texts only the beginning.
std::string quoted(octet_view characters) {
  constexpr std::size_t shown = 60;
  std::string text = "\"";
  for (const unsigned char character : characters.first(std::min(shown, characters.size()))) {
    if (character == '"' || character == '\\') {
      text += fmt::format("\\{}", static_cast<char>(character));
    } else if (character >= ' ' && character <= '~') {
      text += static_cast<char>(character);
    } else {
      text += fmt::format("\\x{:02x}", character);
    }
  }
  return text + (characters.size() > shown ? "\"..." : "\"");
}

std::string counted(std::uint64_t octets) { return fmt::format("{} octet{}", octets, octets == 1 ? "" : "s"); }

// Whether octets of a varint add nothing to a number of so many bits.
bool is_overlong(octet_view varint, unsigned bits = 32) {
  return varint.size() > (bits == 64 ? 10 : 5) || (varint.size() > 1 && varint.back() == 0);
}

class view {
 public:
  view(octet_view input, const walk &walked) : input_(input), walked_(walked) {}

  std::string text() {
    for (const walked_field &field : walked_.fields) {
      const bool is_container = field.field != nullptr && field.field->nested != nullptr;
      rows(field.start, is_container ? field.content : field.end, field.depth, line(field));
    }
    if (walked_.failure) rest(*walked_.failure);
    return std::move(text_);
  }

 private:
  std::string line(const walked_field &here) const {
    const std::string head = here.field == nullptr ? fmt::format("unknown field {}", here.key >> 3) : name(here);
    return fmt::format("{} ({}, {}){}{}", head, here.key >> 3, wire_type_name(here.key), meaning(here), remarks(here));
  }

  static std::string name(const walked_field &here) { return to_string(path{{here.field, here.index}}); }

  std::string meaning(const walked_field &here) const {
    if (here.field == nullptr) return skipped(here);
    const octet_view content = input_.subspan(here.content, here.end - here.content);
    switch (here.field->kind) {
      case kind::string:
        return " = " + quoted(content) + shortened(content);
      case kind::bytes:
        return " = " + counted(content.size());
      case kind::message:
      case kind::messages:
        return fmt::format(": {}, {}", here.field->nested->name, counted(content.size()));
      default:
        return " = " + number_text(*here.field, here.number);
    }
  }

  static std::string skipped(const walked_field &here) {
    const std::size_t size = here.end - here.content;
    if (static_cast<wire_type>(here.key & 7) == wire_type::varint) return fmt::format(", skipped: {}", here.number);
    if (size == here.number) return fmt::format(", skipped: {}", counted(size));
    return fmt::format(", skipped: {} of {}, runs past the end", size, counted(here.number));
  }

  static const char *shortened(octet_view characters) {
    return std::ranges::find(characters, 0) != characters.end() ? ", ends at its first NUL" : "";
  }

  std::string remarks(const walked_field &here) const {
    std::string text;
    if (here.again) text += ", replaces the earlier one";
    if (here.field != nullptr && (here.key & 7) != static_cast<unsigned>(here.field->wire)) {
      text += fmt::format(", read as {}: inside a run only the number counts",
                          wire_type_name(static_cast<unsigned>(here.field->wire)));
    }
    if (is_overlong(input_.subspan(here.start, here.value - here.start))) text += ", over-long key";
    const bool has_length = here.content != here.value;
    const bool is_varint = !has_length && (here.field != nullptr || (here.key & 7) == 0);
    if (has_length && is_overlong(input_.subspan(here.value, here.content - here.value))) text += ", over-long length";
    const unsigned bits = here.field != nullptr ? here.field->bits : 64;
    if (is_varint && is_overlong(input_.subspan(here.value, here.end - here.value), bits)) text += ", over-long value";
    return text;
  }

  // What the walk did not get to, in two parts: before the place of the failure, and from there on.
  void rest(const walk_failure &failure) {
    if (shown_ < failure.offset) rows(shown_, failure.offset, failure.depth, "not stored");
    const std::string mark = fmt::format("<-- {}: {}", result_name(failure.result), failure.reason);
    rows(failure.offset, input_.size(), failure.depth, mark);
  }

  // The octets of one line, wrapped into rows; the text stands beside the first.
  void rows(std::size_t start, std::size_t end, unsigned depth, std::string_view text) {
    std::size_t at = start;
    do {
      const std::size_t stop = std::min(end, at + octets_in_row);
      std::string digits;
      for (std::size_t index = at; index < stop; ++index) digits += fmt::format("{:02x} ", input_[index]);
      text_ += at == start ? fmt::format("{:06x}  {:<{}} {:{}}{}\n", at, digits, 3 * octets_in_row, "", 2 * depth, text)
                           : fmt::format("{:06x}  {}\n", at, digits.substr(0, digits.size() - 1));
      at = stop;
    } while (at < end);
    shown_ = end;
  }

  octet_view input_;
  const walk &walked_;
  std::string text_;
  std::size_t shown_ = 0;  // the octets before this one stand in the text
};

}  // namespace

std::string hex_view(octet_view input, const walk &walked) { return view(input, walked).text(); }

}  // namespace inspect
