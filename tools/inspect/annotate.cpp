// Makes the rows from a walk.
#include "annotate.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <string_view>

#include "core/wire.hpp"
#include "pavo_zorv_memory.h"
#include "results.hpp"
#include "text_encodings.hpp"

namespace inspect {
namespace {

// The value as stored in the member.
std::string number_text(const field_info &field, std::uint64_t number) {
  if (field.kind == kind::flag) {
    return number == 0 ? "false" : number == 1 ? "true" : fmt::format("true (sent as {})", number);
  }
  if (field.is_signed) {
    return field.width == 8 ? fmt::format("{}", static_cast<std::int64_t>(number))
                            : fmt::format("{}", static_cast<std::int32_t>(number));
  }
  const std::uint64_t kept = field.width == 1 ? number & 0xff : number;
  return kept == number ? fmt::format("{}", kept) : fmt::format("{} (sent as {}, truncated to 8 bits)", kept, number);
}

// In quotes, with escapes for what is not printable ASCII; only the beginning of a long string.
std::string quoted(byte_view characters) {
  constexpr std::size_t max_size = 60;
  std::string text = "\"";
  for (const unsigned char character : characters.first(std::min(max_size, characters.size()))) {
    if (character == '"' || character == '\\') {
      text += fmt::format("\\{}", static_cast<char>(character));
    } else if (character >= ' ' && character <= '~') {
      text += static_cast<char>(character);
    } else {
      text += fmt::format("\\x{:02x}", character);
    }
  }
  return text + (characters.size() > max_size ? "\"..." : "\"");
}

class annotator {
 public:
  annotator(byte_view input, const walk &walked) : input_(input), walked_(walked) {}

  std::vector<annotation> rows() {
    for (const walked_field &field : walked_.fields) rows_.push_back(row_of(field));
    if (walked_.failure) add_rest(*walked_.failure);
    return std::move(rows_);
  }

 private:
  annotation row_of(const walked_field &here) {
    annotation row;
    row.is_container = here.field != nullptr && here.field->nested != nullptr;
    row.depth = here.depth;
    row.start = here.start;
    row.end = row.is_container ? here.content : here.end;
    row.field_end = here.end;
    row.parent = parent_path(here);
    row.name = here.field == nullptr ? fmt::format("unknown field {}", here.key >> 3)
                                     : to_string(path{{here.field, here.index}});
    row.key = fmt::format("{} {}", here.key >> 3, wire_type_name(here.key));
    if (here.field != nullptr) row.kind = describe_element(*here.field);
    row.meaning = meaning(here);
    row.roles.assign(row.end - row.start, role::value);
    mark_varints(here, row);
    row.remarks += other_remarks(here);
    row.state = here.field == nullptr                      ? row_state::unknown
                : row.remarks.empty() && !is_changed(here) ? row_state::plain
                                                           : row_state::tolerated;
    covered_ = row.end;
    return row;
  }

  // The path to the message that contains a field.
  std::string parent_path(const walked_field &here) {
    path_.resize(here.depth);
    std::string text = to_string(path_);
    if (!text.empty()) text += '.';
    path_.push_back({here.field, here.index});
    return text;
  }

  byte_view content(const walked_field &here) const { return input_.subspan(here.content, here.end - here.content); }

  std::string meaning(const walked_field &here) const {
    if (here.field == nullptr) return skipped(here);
    switch (here.field->kind) {
      case kind::string:
        return " = " + quoted(content(here));
      case kind::bytes:
        return " = " + byte_count(content(here).size());
      case kind::nested:
      case kind::message_list:
        return ": " + byte_count(content(here).size());
      default:
        return " = " + number_text(*here.field, here.number);
    }
  }

  static std::string skipped(const walked_field &here) {
    const std::size_t size = here.end - here.content;
    if (static_cast<wire_type>(here.key & 7) == wire_type::varint) return fmt::format(", skipped: {}", here.number);
    if (size == here.number) return fmt::format(", skipped: {}", byte_count(size));
    return fmt::format(", skipped: {} of {}, runs past the end", size, byte_count(here.number));
  }

  // Whether the member holds a different value than was sent.
  static bool is_changed(const walked_field &here) {
    return (here.field->kind == kind::flag && here.number > 1) || (here.field->width == 1 && here.number > 0xff);
  }

  // Marks which bytes are the key, the length and the value, and which of them a shorter varint would not have.
  void mark_varints(const walked_field &here, annotation &row) const {
    mark(row, here.start, here.value, role::key, pavo_zorv::varint_size(here.key), "key");
    const bool has_length = here.content != here.value;
    const wire_type type = here.field != nullptr ? here.field->wire : static_cast<wire_type>(here.key & 7);
    const std::size_t shortest = pavo_zorv::varint_size(here.number);
    if (has_length) mark(row, here.value, here.content, role::length, shortest, "length");
    if (type == wire_type::varint) mark(row, here.value, here.end, role::value, shortest, "value");
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
    if (here.is_repeated) text += ", replaces the earlier occurrence";
    if (here.field == nullptr) return text;
    if ((here.key & 7) != static_cast<unsigned>(here.field->wire)) {
      text += fmt::format(", read as {}: within a run only the field number matters",
                          wire_type_name(static_cast<unsigned>(here.field->wire)));
    }
    if (here.field->kind == kind::string && std::ranges::find(content(here), 0) != content(here).end()) {
      text += ", ends at its first NUL";
    }
    return text;
  }

  // What the walk did not read, in two rows: up to the failure, and from there to the end.
  void add_rest(const walk_failure &failure) {
    if (covered_ < failure.offset) {
      rows_.push_back(rest_row(row_state::unread, covered_, failure.offset, failure.depth, "not stored"));
    }
    rows_.push_back(rest_row(row_state::failed, failure.offset, input_.size(), failure.depth,
                             fmt::format("<-- {}: {}", pavo_zorv_result_name(failure.result), failure.reason)));
  }

  static annotation rest_row(row_state state, std::size_t start, std::size_t end, unsigned depth, std::string text) {
    annotation row;
    row.state = state;
    row.depth = depth;
    row.start = start;
    row.end = row.field_end = end;
    row.meaning = std::move(text);
    row.roles.assign(end - start, role::value);
    return row;
  }

  byte_view input_;
  const walk &walked_;
  std::vector<annotation> rows_;
  path path_;
  std::size_t covered_ = 0;  // the end of the last row
};

}  // namespace

std::vector<annotation> annotate(byte_view input, const walk &walked) { return annotator(input, walked).rows(); }

}  // namespace inspect
