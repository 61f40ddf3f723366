// Random inputs for decoding: messages put together from keys and values, most of them as the schema has them, in any
// order and of any length; and damage done to bytes.
#pragma once

#include <algorithm>

#include "random_record.hpp"

namespace test {

class bytes_maker {
 public:
  explicit bytes_maker(random_numbers &random) : random_(random) {}

  // Deep messages are short ones, or the envelope would never end.
  byte_string message(const naive::message &type, unsigned longest = 6, unsigned depth = 0) {
    byte_string result;
    for (std::uint64_t count = random_.from(0, longest); count-- != 0;) {
      if (random_.percent(88)) {
        known(result, type.members[static_cast<std::size_t>(random_.below(type.members.size()))], depth);
      } else {
        unknown(result, type.members.size());
      }
    }
    return result;
  }

  // Some bytes changed, left out, put in, or a slice of them moved, doubled or cut off.
  void damage(byte_string &bytes) {
    const std::size_t size = bytes.size();
    const auto at = [&](std::size_t position) { return bytes.begin() + static_cast<std::ptrdiff_t>(position); };
    const auto first = static_cast<std::size_t>(random_.from(0, size));
    const std::size_t last =
        std::min(size, first + static_cast<std::size_t>(random_.from(1, random_.percent(70) ? 4 : size + 1)));
    const byte_string slice(at(first), at(last));
    const auto elsewhere = static_cast<std::size_t>(random_.from(0, size));
    switch (random_.below(7)) {
      case 0:
        if (first < size) bytes[first] ^= static_cast<unsigned char>(1u << random_.below(8));
        break;
      case 1:
        if (first < size) bytes[first] = random_.byte();
        break;
      case 2:
        bytes.insert(at(first), random_.byte());
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
    std::size_t extra = random_.percent(longer) ? static_cast<std::size_t>(random_.from(1, 12)) : 0;
    unsigned shift = 0;
    do {
      unsigned char byte = value & 0x7f;
      if (shift + 7 > width && shift < 70 && extra != 0) {
        const unsigned used = shift < width ? width - shift : 0;
        byte = static_cast<unsigned char>((byte & ((1u << used) - 1)) | (random_.byte() & 0x7fu & (0xffu << used)));
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
  void known(byte_string &out, const member &member, unsigned depth) {
    // Of a run, all elements are the same, or take three bytes as most labels do, or none resembles the next.
    const std::uint64_t style = random_.below(4);
    const std::uint64_t bits = random_.from(0, 32);
    for (std::uint64_t elements = member.is_list() ? run_length(member, depth) : 1; elements-- != 0;) {
      varint(out, member.number * 8 + (random_.percent(98) ? member.wire_type() : random_.below(8)), 32,
             style == 1 ? 1 : 5);
      switch (member.wire()) {
        case naive::wire::varint:
          if (style == 0) {
            varint(out, (std::uint64_t{1} << bits) - 1, 64, 0);
          } else if (style == 1 && random_.percent(98)) {
            varint(out, random_.label(), 64, 0);
          } else {
            varint(out, random_.number(), 64);
          }
          break;
        case naive::wire::delimited:
          delimited(out, member, depth);
          break;
      }
    }
  }

  void delimited(byte_string &out, const member &member, unsigned depth) {
    byte_string content;
    if (member.nested != nullptr) {
      content = message(*member.nested, depth < 2 ? 4 : 2, depth + 1);
    } else {
      content.resize(static_cast<std::size_t>(random_.percent(95) ? random_.below(9) : random_.below(140)));
      for (unsigned char &byte : content) byte = random_.byte();
    }
    std::uint64_t length = content.size();
    if (random_.percent(3)) length = random_.percent(50) ? length + 1 : random_.number() & 0xffffffff;
    varint(out, length, 32, 5);
    out.insert(out.end(), content.begin(), content.end());
  }

  std::uint64_t run_length(const member &member, unsigned depth) {
    if (member.kind == kind::integer_list && random_.percent(10)) return random_.from(1, depth < 2 ? 90 : 20);
    return random_.from(1, depth < 2 ? 4 : 2);
  }

  void unknown(byte_string &out, std::uint64_t last_known) {
    static constexpr unsigned types[] = {0, 0, 0, 1, 1, 2, 2, 2, 5, 5, 3, 7};
    const std::uint64_t type = types[random_.below(std::size(types))];
    varint(out, (random_.percent(30) ? 0 : last_known + random_.from(1, 2000)) * 8 + type);
    if (type == 0) varint(out, random_.number(), 64);
    const std::uint64_t size = type == 1 ? 8 : type == 5 ? 4 : type == 2 ? random_.below(12) : 0;
    if (type == 2) varint(out, size);
    for (std::uint64_t i = 0; i < size; ++i) out.push_back(random_.byte());
  }

  random_numbers &random_;
};

}  // namespace test
