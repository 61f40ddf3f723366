// Reads fields by their wire types alone.
#include "raw_text.hpp"

#include <fmt/format.h>

#include <cstdint>
#include <utility>

#include "core/wire.hpp"
#include "text_format.hpp"

namespace inspect {
namespace {

using pavo_zorv::wire_type;

// What is nested more deeply is shown as a string. A group is nested like a message.
constexpr unsigned max_raw_depth = 10;
constexpr unsigned max_group_depth = 100;

constexpr unsigned group_start = 3;
constexpr unsigned group_end = 4;

class raw_reader {
 public:
  explicit raw_reader(byte_view input) : input_(input) {}

  // Appends the fields up to the end, or up to the end of a group with this number if it is not 0. False on failure.
  bool fields(std::size_t end, std::uint32_t group, unsigned depth, unsigned budget) {
    while (at_ != end) {
      const std::size_t start = at_;
      std::uint64_t key = 0;
      if (!varint(end, key)) return fail(start, "a key that does not end");
      const auto number = static_cast<std::uint32_t>(key >> 3);
      if (key >> 32 != 0 || number == 0) return fail(start, "no key");
      if ((key & 7) == group_end) {
        return number == group || fail(start, "the end of a group that did not begin");
      }
      if (!value(end, start, static_cast<unsigned>(key & 7), number, depth, budget)) return false;
    }
    return group == 0 || fail(at_, "a group that does not end");
  }

  raw_text done;

 private:
  bool fail(std::size_t offset, const char *reason) {
    if (!done.failure) done.failure = {offset, reason};
    return false;
  }

  bool varint(std::size_t end, std::uint64_t &value) {
    value = 0;
    for (unsigned shift = 0; at_ != end && shift < 70; shift += 7) {
      const unsigned char byte = input_[at_++];
      value |= shift < 64 ? std::uint64_t{byte & 0x7fu} << shift : 0;
      if (byte < 0x80) return true;
    }
    return false;
  }

  bool fixed(std::size_t end, std::size_t size, std::uint64_t &value) {
    if (end - at_ < size) return false;
    value = 0;
    for (std::size_t index = size; index != 0; --index) value = value << 8 | input_[at_ + index - 1];
    at_ += size;
    return true;
  }

  void line(unsigned depth, std::uint32_t number, const std::string &text) {
    done.text.append(2 * depth, ' ');
    done.text += fmt::format("{}{}\n", number, text);
  }

  void close(unsigned depth) {
    done.text.append(2 * depth, ' ');
    done.text += "}\n";
  }

  bool value(std::size_t end, std::size_t start, unsigned type, std::uint32_t number, unsigned depth, unsigned budget) {
    std::uint64_t read = 0;
    switch (static_cast<wire_type>(type)) {
      case wire_type::varint:
        if (!varint(end, read)) return fail(start, "a number that does not end");
        line(depth, number, fmt::format(": {}", read));
        return true;
      case wire_type::fixed64:
        if (!fixed(end, 8, read)) return fail(start, "a number of 8 bytes that is cut off");
        line(depth, number, fmt::format(": {:#018x}", read));
        return true;
      case wire_type::fixed32:
        if (!fixed(end, 4, read)) return fail(start, "a number of 4 bytes that is cut off");
        line(depth, number, fmt::format(": {:#010x}", read));
        return true;
      case wire_type::delimited:
        if (!varint(end, read)) return fail(start, "a length that does not end");
        if (read > end - at_) return fail(start, "a length beyond the end");
        block(at_ + static_cast<std::size_t>(read), number, depth, budget);
        return true;
    }
    if (type != group_start) return fail(start, "a wire type that does not exist");
    if (depth == max_group_depth) return fail(start, "groups nested too deeply");
    line(depth, number, " {");
    if (!fields(end, number, depth + 1, budget)) return false;
    close(depth);
    return true;
  }

  // A message if it can be read as one, else a string.
  void block(std::size_t end, std::uint32_t number, unsigned depth, unsigned budget) {
    const byte_view content = input_.subspan(at_, end - at_);
    if (!content.empty() && budget != 0) {
      raw_reader inside(input_.first(end));
      inside.at_ = at_;
      if (inside.fields(end, 0, depth + 1, budget - 1)) {
        line(depth, number, " {");
        done.text += inside.done.text;
        close(depth);
        at_ = end;
        return;
      }
    }
    line(depth, number, ": " + quoted(content));
    at_ = end;
  }

  byte_view input_;
  std::size_t at_ = 0;
};

}  // namespace

raw_text to_raw_text(byte_view input) {
  raw_reader reader(input);
  reader.fields(input.size(), 0, 0, max_raw_depth);
  return std::move(reader.done);
}

}  // namespace inspect
