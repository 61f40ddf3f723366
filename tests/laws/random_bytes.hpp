// Random inputs for decoding: messages put together from keys and values, mostly such as the schema wants them, in any
// order and of any length; and damage done to bytes.
#pragma once

#include <algorithm>

#include "random_record.hpp"

namespace test {

class bytes_maker {
 public:
  explicit bytes_maker(dice &dice) : dice_(dice) {}

  // Deep messages are short ones, or the envelope would never end.
  byte_string message(const message_type &type, unsigned longest = 6, unsigned depth = 0) {
    byte_string result;
    for (std::uint64_t count = dice_.from(0, longest); count-- != 0;) {
      if (dice_.percent(88)) {
        known(result, type.fields[static_cast<std::size_t>(dice_.below(type.fields.size()))], depth);
      } else {
        unknown(result, type.fields.size());
      }
    }
    return result;
  }

  // Some bytes changed, left out, put in, or a slice of them moved, doubled or cut off.
  void damage(byte_string &bytes) {
    const std::size_t size = bytes.size();
    const auto at = [&](std::size_t position) { return bytes.begin() + static_cast<std::ptrdiff_t>(position); };
    const auto first = static_cast<std::size_t>(dice_.from(0, size));
    const std::size_t last =
        std::min(size, first + static_cast<std::size_t>(dice_.from(1, dice_.percent(70) ? 4 : size + 1)));
    const byte_string slice(at(first), at(last));
    const auto elsewhere = static_cast<std::size_t>(dice_.from(0, size));
    switch (dice_.below(7)) {
      case 0:
        if (first < size) bytes[first] ^= static_cast<unsigned char>(1u << dice_.below(8));
        break;
      case 1:
        if (first < size) bytes[first] = dice_.byte();
        break;
      case 2:
        bytes.insert(at(first), dice_.byte());
        break;
      case 3:
        bytes.erase(at(first), at(last));
        break;
      case 4:
        bytes.insert(at(elsewhere), slice.begin(), slice.end());
        break;
      case 5:
        for (std::size_t i = first; i < last; ++i) bytes[i] |= 0x80;
        break;
      default:
        bytes.resize(static_cast<std::size_t>(first));
    }
  }

  // A varint of its fewest bytes or, now and then, of more; what lies beyond its width may be anything.
  void varint(byte_string &out, std::uint64_t value, unsigned width = 32, unsigned longer = 10) {
    std::size_t extra = dice_.percent(longer) ? static_cast<std::size_t>(dice_.from(1, 12)) : 0;
    unsigned shift = 0;
    do {
      unsigned char byte = value & 0x7f;
      if (shift + 7 > width && shift < 70 && extra != 0) {
        const unsigned used = shift < width ? width - shift : 0;
        byte = static_cast<unsigned char>((byte & ((1u << used) - 1)) | (dice_.byte() & 0x7fu & (0xffu << used)));
      }
      value >>= 7;
      shift += 7;
      const bool more = value != 0 || extra != 0;
      if (value == 0 && extra != 0) --extra;
      out.push_back(static_cast<unsigned char>(byte | (more ? 0x80 : 0)));
      if (!more) return;
    } while (true);
  }

 private:
  void known(byte_string &out, const field &field, unsigned depth) {
    // Of a run, all elements are the same, or take three bytes as most labels do, or none resembles the next.
    const std::uint64_t style = dice_.below(4);
    const std::uint64_t bits = dice_.from(0, 32);
    for (std::uint64_t elements = field.is_list() ? run_length(field, depth) : 1; elements-- != 0;) {
      const std::uint64_t right_type = field.is_varint() ? 0 : 2;
      varint(out, field.number * 8 + (dice_.percent(98) ? right_type : dice_.below(8)), 32, style == 1 ? 1 : 5);
      if (!field.is_varint()) {
        delimited(out, field, depth);
      } else if (style == 0) {
        varint(out, (std::uint64_t{1} << bits) - 1, 64, 0);
      } else if (style == 1 && dice_.percent(98)) {
        varint(out, dice_.label(), 64, 0);
      } else {
        varint(out, dice_.number(), 64);
      }
    }
  }

  void delimited(byte_string &out, const field &field, unsigned depth) {
    byte_string content;
    if (field.nested != nullptr) {
      content = message(*field.nested, depth < 2 ? 4 : 2, depth + 1);
    } else {
      content.resize(static_cast<std::size_t>(dice_.percent(95) ? dice_.below(9) : dice_.below(140)));
      for (unsigned char &byte : content) byte = dice_.byte();
    }
    std::uint64_t length = content.size();
    if (dice_.percent(3)) length = dice_.percent(50) ? length + 1 : dice_.number() & 0xffffffff;
    varint(out, length, 32, 5);
    out.insert(out.end(), content.begin(), content.end());
  }

  std::uint64_t run_length(const field &field, unsigned depth) {
    if (field.kind == kind::integer_list && dice_.percent(10)) return dice_.from(1, depth < 2 ? 90 : 20);
    return dice_.from(1, depth < 2 ? 4 : 2);
  }

  void unknown(byte_string &out, std::uint64_t last_known) {
    static constexpr unsigned types[] = {0, 0, 0, 1, 1, 2, 2, 2, 5, 5, 3, 7};
    const std::uint64_t type = types[dice_.below(std::size(types))];
    varint(out, (dice_.percent(30) ? 0 : last_known + dice_.from(1, 2000)) * 8 + type);
    if (type == 0) varint(out, dice_.number(), 64);
    const std::uint64_t size = type == 1 ? 8 : type == 5 ? 4 : type == 2 ? dice_.below(12) : 0;
    if (type == 2) varint(out, size);
    for (std::uint64_t i = 0; i < size; ++i) out.push_back(dice_.byte());
  }

  dice &dice_;
};

}  // namespace test
