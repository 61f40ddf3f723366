// Makes the rows from a walk.
#include "annotate.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <concepts>
#include <cstdint>
#include <string_view>
#include <unordered_map>

#include "address.hpp"
#include "core/wire.hpp"
#include "pavo_zorv_memory.h"
#include "results.hpp"
#include "text_encodings.hpp"

namespace inspect {
namespace {

void append_number(std::string &text, std::integral auto number) {
  const fmt::format_int digits(number);
  text.append(digits.data(), digits.size());
}

// The value as stored in the member.
void append_value(std::string &text, const field_info &field, std::uint64_t number) {
  if (field.kind == kind::flag) {
    text += number == 0 ? "false" : "true";
    if (number > 1) text += fmt::format(" (sent as {})", number);
  } else if (field.is_signed && field.width == 8) {
    append_number(text, static_cast<std::int64_t>(number));
  } else if (field.is_signed) {
    append_number(text, static_cast<std::int32_t>(number));
  } else {
    const std::uint64_t kept = field.width == 1 ? number & 0xff : number;
    append_number(text, kept);
    if (kept != number) text += fmt::format(" (sent as {}, truncated to 8 bits)", number);
    if (is_address_name(field.name)) text += ", " + address_text(static_cast<std::uint32_t>(number));
  }
}

// In quotes, with escapes for what is not printable ASCII; only the beginning of a long string.
void append_quoted(std::string &text, byte_view characters) {
  constexpr std::size_t max_size = 60;
  text += '"';
  for (const unsigned char character : characters.first(std::min(max_size, characters.size()))) {
    if (character == '"' || character == '\\') text += '\\';
    if (character >= ' ' && character <= '~') {
      text += static_cast<char>(character);
    } else {
      text += fmt::format("\\x{:02x}", character);
    }
  }
  text += characters.size() > max_size ? "\"..." : "\"";
}

class annotator {
 public:
  annotator(byte_view input, const row_visitor &visit) : input_(input), visit_(visit) {}

  // The elements of a list of 4 or 16 bytes are one row. Up to 16 are kept until it is known how many there are.
  void add(const walked_field &here) {
    const bool is_element = here.field != nullptr && here.field->kind == kind::integer_list && here.field->width == 1;
    const bool goes_on = is_element && !run_.empty() && here.field == run_.back().field && here.index == run_.size();
    if (!goes_on) add_run();
    if (!is_element || here.index != run_.size()) return add_single(here);
    run_.push_back(here);
    if (run_.size() > max_address) add_run();
  }

  // At the end of what the walk has read.
  void add_run() {
    const bool is_address = is_address_size(run_.size()) && std::ranges::all_of(run_, is_plain_element);
    if (is_address) add_address();
    if (!is_address) {
      for (const walked_field &each : run_) add_single(each);
    }
    run_.clear();
  }

  // The memory of a row is used again for the next one.
  void add_single(const walked_field &here) {
    set_row(here);
    if (row_.is_container) note_parent(here.depth);
    visit_(row_);
  }

  // What the walk did not read, in two rows: up to the failure, and from there to the end.
  void add_rest(const walk_failure &failure) {
    if (covered_ < failure.offset) {
      visit_(rest_row(row_state::unread, covered_, failure.offset, failure.depth, "not stored"));
    }
    visit_(rest_row(row_state::failed, failure.offset, input_.size(), failure.depth,
                    fmt::format("<-- {}: {}", pavo_zorv_result_name(failure.result), failure.reason)));
  }

 private:
  static constexpr std::size_t max_address = 16;

  static bool is_plain_element(const walked_field &here) {
    return !here.is_repeated && (here.key & 7) == static_cast<unsigned>(wire_type::varint) && here.number <= 0xff &&
           here.value - here.start == pavo_zorv::varint_size(here.key) &&
           here.end - here.value == pavo_zorv::varint_size(here.number);
  }

  // "octets[0..3] (1 varint, unsigned 8-bit) = c0 00 02 01, 192.0.2.1"
  void add_address() {
    const std::size_t first = run_.front().start;
    std::vector<role> roles;
    byte_string bytes;
    for (const walked_field &each : run_) {
      roles.insert(roles.end(), each.value - each.start, role::key);
      roles.insert(roles.end(), each.end - each.value, role::value);
      bytes.push_back(static_cast<unsigned char>(each.number));
    }
    set_row(run_.back());
    row_.start = first;
    row_.roles = std::move(roles);
    row_.name = fmt::format("{}[0..{}]", run_.back().field->name, run_.size() - 1);
    row_.meaning = " =";
    for (const unsigned char each : bytes) row_.meaning += fmt::format(" {:02x}", each);
    row_.meaning += ", " + address_text(bytes);
    row_.is_address = true;
    visit_(row_);
  }

  void set_row(const walked_field &here) {
    row_.is_address = false;
    row_.is_container = here.field != nullptr && here.field->nested != nullptr;
    row_.depth = here.depth;
    row_.start = here.start;
    row_.end = row_.is_container ? here.content : here.end;
    row_.field_end = here.end;
    row_.parent = here.depth == 0 ? std::string_view() : std::string_view(parents_[here.depth - 1]);
    set_name(here);
    set_key(here);
    row_.kind.clear();
    if (here.field != nullptr) row_.kind = described(*here.field);
    row_.meaning.clear();
    append_meaning(here);
    row_.remarks.clear();
    row_.roles.assign(row_.end - row_.start, role::value);
    mark_varints(here);
    add_other_remarks(here);
    row_.state = here.field == nullptr                       ? row_state::unknown
                 : row_.remarks.empty() && !is_changed(here) ? row_state::plain
                                                             : row_state::tolerated;
    covered_ = row_.end;
  }

  void set_name(const walked_field &here) {
    if (here.field == nullptr) {
      row_.name = "unknown field ";
      append_number(row_.name, here.key >> 3);
      return;
    }
    row_.name = here.field->name;
    if (!here.index) return;
    row_.name += '[';
    append_number(row_.name, *here.index);
    row_.name += ']';
  }

  void set_key(const walked_field &here) {
    row_.key.clear();
    append_number(row_.key, here.key >> 3);
    row_.key += ' ';
    row_.key += wire_type_name(here.key);
  }

  // The same field often comes many times, one after the other.
  const std::string &described(const field_info &field) {
    std::string &text = descriptions_[&field];
    if (text.empty()) text = describe_element(field);
    return text;
  }

  // For the rows inside a message: the path to it.
  void note_parent(std::size_t depth) {
    if (parents_.size() <= depth) parents_.resize(depth + 1);
    parents_[depth] = row_.parent;
    parents_[depth] += row_.name;
    parents_[depth] += '.';
  }

  byte_view content(const walked_field &here) const { return input_.subspan(here.content, here.end - here.content); }

  void append_meaning(const walked_field &here) {
    std::string &text = row_.meaning;
    if (here.field == nullptr) {
      text = skipped(here);
      return;
    }
    switch (here.field->kind) {
      case kind::string:
        text += " = ";
        append_quoted(text, content(here));
        break;
      case kind::bytes:
        text += " = ";
        text += byte_count(content(here).size());
        break;
      case kind::nested:
      case kind::message_list:
        text += ": ";
        text += byte_count(content(here).size());
        break;
      default:
        text += " = ";
        append_value(text, *here.field, here.number);
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
  void mark_varints(const walked_field &here) {
    mark(here.start, here.value, role::key, pavo_zorv::varint_size(here.key), "key");
    const bool has_length = here.content != here.value;
    const wire_type type = here.field != nullptr ? here.field->wire : static_cast<wire_type>(here.key & 7);
    const std::size_t shortest = pavo_zorv::varint_size(here.number);
    if (has_length) mark(here.value, here.content, role::length, shortest, "length");
    if (type == wire_type::varint) mark(here.value, here.end, role::value, shortest, "value");
  }

  void mark(std::size_t from, std::size_t to, role role, std::size_t shortest, const char *what) {
    const auto first = row_.roles.begin() + static_cast<std::ptrdiff_t>(from - row_.start);
    const std::size_t size = to - from;
    std::fill_n(first, size, role);
    if (size <= shortest) return;
    std::fill_n(first + static_cast<std::ptrdiff_t>(shortest), size - shortest, role::excess);
    row_.remarks += fmt::format(", over-long {}", what);
  }

  void add_other_remarks(const walked_field &here) {
    std::string &text = row_.remarks;
    if (here.field == nullptr) return;
    if (here.is_repeated) text += ", replaces the earlier occurrence";
    if (is_out_of_order(here)) text += ", not in the order of the numbers";
    if ((here.key & 7) != static_cast<unsigned>(here.field->wire)) {
      text += fmt::format(", read as {}: within a run only the field number matters",
                          wire_type_name(static_cast<unsigned>(here.field->wire)));
    }
    if (here.field->kind == kind::string && std::ranges::find(content(here), 0) != content(here).end()) {
      text += ", ends at its first NUL";
    }
  }

  // Fields are written in the order of their numbers.
  bool is_out_of_order(const walked_field &here) {
    last_.resize(here.depth + 1);  // a message has ended, or begun
    unsigned &last = last_[here.depth];
    const bool result = here.field->number < last;
    last = std::max(last, here.field->number);
    return result;
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
  const row_visitor &visit_;
  annotation row_;
  std::vector<walked_field> run_;     // elements that may be an address
  std::vector<unsigned> last_;        // for each depth, the highest number of a field so far
  std::vector<std::string> parents_;  // for each depth, the path to the last message there
  std::unordered_map<const field_info *, std::string> descriptions_;
  std::size_t covered_ = 0;  // the end of the last row
};

}  // namespace

std::vector<annotation> annotate(byte_view input, const walk &walked) {
  std::vector<annotation> rows;
  const row_visitor keep = [&](const annotation &row) { rows.push_back(row); };
  annotator annotator(input, keep);
  for (const walked_field &field : walked.fields) annotator.add(field);
  annotator.add_run();
  if (walked.failure) annotator.add_rest(*walked.failure);
  return rows;
}

void annotate(const message_type &type, byte_view input, const row_visitor &visit) {
  annotator annotator(input, visit);
  const walk_outcome walked = walk_message(type, input, [&](const walked_field &field) { annotator.add(field); });
  annotator.add_run();
  if (walked.failure) annotator.add_rest(*walked.failure);
}

}  // namespace inspect
