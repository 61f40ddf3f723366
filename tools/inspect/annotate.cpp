// The meaning of bytes, from a walk.
#include "annotate.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <string_view>

#include "core/wire.hpp"
#include "pavo_zorv_memory.h"
#include "results.hpp"
#include "text_forms.hpp"

namespace inspect {
namespace {

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
std::string quoted(byte_view characters) {
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

class annotator {
 public:
  annotator(byte_view input, const walk &walked) : input_(input), walked_(walked) {}

  std::vector<annotation> rows() {
    for (const walked_field &field : walked_.fields) rows_.push_back(row(field));
    if (walked_.failure) rest(*walked_.failure);
    return std::move(rows_);
  }

 private:
  annotation row(const walked_field &here) {
    annotation made;
    made.is_container = here.field != nullptr && here.field->nested != nullptr;
    made.depth = here.depth;
    made.start = here.start;
    made.end = made.is_container ? here.content : here.end;
    made.whole_end = here.end;
    made.around = around(here);
    made.name = here.field == nullptr ? fmt::format("unknown field {}", here.key >> 3)
                                      : to_string(path{{here.field, here.index}});
    made.key = fmt::format("{} {}", here.key >> 3, wire_type_name(here.key));
    if (here.field != nullptr) made.kind = describe_element(*here.field);
    made.meaning = meaning(here);
    made.roles.assign(made.end - made.start, role::value);
    mark_varints(here, made);
    made.remarks += other_remarks(here);
    made.stands = here.field == nullptr                       ? standing::unknown
                  : made.remarks.empty() && !is_changed(here) ? standing::plain
                                                              : standing::tolerated;
    shown_ = made.end;
    return made;
  }

  // The way to the message that a field lies in: the containers above it.
  std::string around(const walked_field &here) {
    way_.resize(here.depth);
    std::string text = to_string(way_);
    if (!text.empty()) text += '.';
    way_.push_back({here.field, here.index});
    return text;
  }

  byte_view content(const walked_field &here) const { return input_.subspan(here.content, here.end - here.content); }

  std::string meaning(const walked_field &here) const {
    if (here.field == nullptr) return skipped(here);
    switch (here.field->kind) {
      case kind::string:
        return " = " + quoted(content(here));
      case kind::bytes:
        return " = " + counted(content(here).size());
      case kind::nested:
      case kind::message_list:
        return ": " + counted(content(here).size());
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

  // Whether the member holds another value than was sent.
  static bool is_changed(const walked_field &here) {
    return (here.field->kind == kind::flag && here.number > 1) || (here.field->bits == 8 && here.number > 0xff);
  }

  // Which bytes are the key, the length and the value, and which of them a shorter varint would not have.
  void mark_varints(const walked_field &here, annotation &row) const {
    mark(row, here.start, here.value, role::key, pavo_zorv::varint_size(here.key), "key");
    const bool has_length = here.content != here.value;
    const bool is_varint = !has_length && (here.field != nullptr || (here.key & 7) == 0);
    const std::size_t shortest = pavo_zorv::varint_size(here.number);
    if (has_length) mark(row, here.value, here.content, role::length, shortest, "length");
    if (is_varint) mark(row, here.value, here.end, role::value, shortest, "value");
  }

  static void mark(annotation &row, std::size_t from, std::size_t to, role role, std::size_t shortest,
                   const char *what) {
    const auto first = row.roles.begin() + static_cast<std::ptrdiff_t>(from - row.start);
    const std::size_t size = to - from;
    std::fill_n(first, size, role);
    if (size <= shortest) return;
    std::fill_n(first + static_cast<std::ptrdiff_t>(shortest), size - shortest, role::excess);
    row.remarks += fmt::format(", over-long {}", what);
  }

  std::string other_remarks(const walked_field &here) const {
    std::string text;
    if (here.again) text += ", replaces the earlier one";
    if (here.field == nullptr) return text;
    if ((here.key & 7) != static_cast<unsigned>(here.field->wire)) {
      text += fmt::format(", read as {}: inside a run only the number counts",
                          wire_type_name(static_cast<unsigned>(here.field->wire)));
    }
    if (here.field->kind == kind::string && std::ranges::find(content(here), 0) != content(here).end()) {
      text += ", ends at its first NUL";
    }
    return text;
  }

  // What the walk did not get to, in two parts: before the place of the failure, and from there on.
  void rest(const walk_failure &failure) {
    if (shown_ < failure.offset) {
      rows_.push_back(left_over(standing::unread, shown_, failure.offset, failure.depth, "not stored"));
    }
    rows_.push_back(left_over(standing::failed, failure.offset, input_.size(), failure.depth,
                              fmt::format("<-- {}: {}", pavo_zorv_result_name(failure.result), failure.reason)));
  }

  static annotation left_over(standing stands, std::size_t start, std::size_t end, unsigned depth, std::string text) {
    annotation made;
    made.stands = stands;
    made.depth = depth;
    made.start = start;
    made.end = made.whole_end = end;
    made.meaning = std::move(text);
    made.roles.assign(end - start, role::value);
    return made;
  }

  byte_view input_;
  const walk &walked_;
  std::vector<annotation> rows_;
  path way_;
  std::size_t shown_ = 0;  // the bytes before this one stand in rows
};

}  // namespace

std::vector<annotation> annotate(byte_view input, const walk &walked) { return annotator(input, walked).rows(); }

}  // namespace inspect
