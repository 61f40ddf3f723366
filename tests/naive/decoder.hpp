// A second decoder, deliberately naive: positions in a buffer, one field after another, every rule where it comes.
// It knows the messages from their statement in messages.hpp, and nothing of the library but its header. It fills a
// record of its own and notes what it would have asked an allocator for.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>
#include <vector>

#include "accountant.hpp"
#include "view.hpp"

namespace naive {

// Memory that is handed out from the start again after each trial.
class storage {
 public:
  explicit storage(std::size_t size) : size_(size), start_(std::make_unique<unsigned char[]>(size)) {}
  void reset() { used_ = 0; }
  unsigned char *take(std::size_t size) {
    const std::size_t at = (used_ + 15) / 16 * 16;
    if (at > size_ || size > size_ - at) broken("the naive decoder has too little memory");
    used_ = at + size;
    return start_.get() + at;
  }

 private:
  std::size_t size_, used_ = 0;
  std::unique_ptr<unsigned char[]> start_;
};

class decoder {
 public:
  explicit decoder(storage &memory) : memory_(memory) {}

  bool has_allocator = true;
  bool referenced = false;
  test::failing_requests failing;

  std::vector<std::size_t> sizes;     // what was asked for, in order
  std::size_t dropped = 0;            // blocks that nested messages owned before they were repeated
  bool run_of_other_types = false;    // a run went on over a key of another wire type
  bool unknown_past_the_end = false;  // the input ended inside an unknown field of known size

  void reset() {
    sizes.clear();
    dropped = 0;
    run_of_other_types = unknown_past_the_end = false;
  }

  int decode(view record, const unsigned char *buffer, std::size_t length) {
    clear(record);
    std::size_t position = 0;
    while (position < length) {
      std::uint32_t key;
      if (!read_32(buffer, length, position, key)) return CODEC_ERR_TRUNCATED;
      const std::uint32_t number = key >> 3;
      const bool known = number >= 1 && number <= record.type().members.size();
      const int result = known ? field(record, record.type().members[number - 1], key & 7, buffer, length, position)
                               : skip(key & 7, buffer, length, position);
      if (result != CODEC_OK) return result;
    }
    return CODEC_OK;
  }

  // Five bytes count, of the fifth four bits; of those after it only the one without the top bit is looked for.
  static bool read_32(const unsigned char *buffer, std::size_t length, std::size_t &position, std::uint32_t &value) {
    value = 0;
    for (unsigned taken = 0; position < length; ++taken) {
      const unsigned byte = buffer[position++];
      if (taken < 4) value |= (byte & 0x7f) << (7 * taken);
      if (taken == 4) value |= byte << 28;
      if ((byte & 0x80) == 0) return true;
    }
    return false;
  }

  // Ten bytes count, of the tenth one bit.
  static bool read_64(const unsigned char *buffer, std::size_t length, std::size_t &position, std::uint64_t &value) {
    value = 0;
    for (unsigned taken = 0; position < length; ++taken) {
      const std::uint64_t byte = buffer[position++];
      if (taken < 9) value |= (byte & 0x7f) << (7 * taken);
      if (taken == 9) value |= byte << 63;
      if ((byte & 0x80) == 0) return true;
    }
    return false;
  }

 private:
  // The presence bits of no field stay, at every depth.
  static void clear(view record) {
    for (const member &member : record.type().members) {
      if (member.kind == kind::nested) {
        clear(record.nested(member));
      } else if (member.is_scalar()) {
        record.set_number(member, 0);
      } else {
        record.set_pointer(member, nullptr);
        if (member.has_count()) record.set_count(member, 0);
      }
    }
    record.set_presence(record.presence() & ~record.type().mask());
  }

  // Skipped bytes need not be there.
  int skip(unsigned wire_type, const unsigned char *buffer, std::size_t length, std::size_t &position) {
    std::uint32_t size = 0;
    switch (wire_type) {
      case 0:
        return read_32(buffer, length, position, size) ? CODEC_OK : CODEC_ERR_TRUNCATED;
      case 1:
        size = 8;
        break;
      case 5:
        size = 4;
        break;
      case 2:
        if (!read_32(buffer, length, position, size)) return CODEC_ERR_TRUNCATED;
        break;
      default:
        return CODEC_ERR_BAD_WIRE_TYPE;
    }
    if (size > length - position) unknown_past_the_end = true;
    position = size > length - position ? length : position + size;
    return CODEC_OK;
  }

  int field(view record, const member &member, unsigned wire_type, const unsigned char *buffer, std::size_t length,
            std::size_t &position) {
    if (wire_type != member.wire_type()) return CODEC_ERR_WRONG_WIRE_TYPE;
    int result = CODEC_OK;
    if (member.is_scalar()) {
      result = scalar(record, member, buffer, length, position);
    } else if (member.kind == kind::nested) {
      result = nested(record.nested(member), buffer, length, position);
    } else {
      if (record.pointer(member) != nullptr) return CODEC_ERR_TRUNCATED;
      if (!has_allocator && !(referenced && member.kind == kind::bytes)) return CODEC_ERR_NO_MEMORY;
      result = member.is_list() ? run(record, member, buffer, length, position)
                                : block(record, member, buffer, length, position);
    }
    if (result == CODEC_OK) record.set_has(member, true);
    return result;
  }

  static int scalar(view record, const member &member, const unsigned char *buffer, std::size_t length,
                    std::size_t &position) {
    std::uint64_t wide = 0;
    std::uint32_t narrow = 0;
    if (member.width == 8) {
      if (!read_64(buffer, length, position, wide)) return CODEC_ERR_TRUNCATED;
    } else {
      if (!read_32(buffer, length, position, narrow)) return CODEC_ERR_TRUNCATED;
      wide = member.kind == kind::flag ? narrow != 0 : narrow;
    }
    record.set_number(member, wide);
    return CODEC_OK;
  }

  // A length, whose bytes must all be there.
  static bool delimited(const unsigned char *buffer, std::size_t length, std::size_t &position, std::uint32_t &size) {
    return read_32(buffer, length, position, size) && size <= length - position;
  }

  int nested(view record, const unsigned char *buffer, std::size_t length, std::size_t &position) {
    std::uint32_t size;
    if (!delimited(buffer, length, position, size)) return CODEC_ERR_TRUNCATED;
    dropped += blocks_owned(record, referenced);
    const unsigned char *const content = buffer + position;
    position += size;
    return decode(record, content, size);
  }

  // Null when there is no memory. No request is made for what cannot be said in a size, or counted in 32 bits.
  unsigned char *memory_for(std::uint64_t count, std::uint64_t element_size, std::uint64_t extra) {
    if (count > UINT32_MAX || count * element_size + extra > SIZE_MAX) return nullptr;
    const auto size = static_cast<std::size_t>(count * element_size + extra);
    sizes.push_back(size);
    return failing.fails(sizes.size() - 1) ? nullptr : memory_.take(size);
  }

  int block(view record, const member &member, const unsigned char *buffer, std::size_t length, std::size_t &position) {
    std::uint32_t size;
    if (!delimited(buffer, length, position, size)) return CODEC_ERR_TRUNCATED;
    const unsigned char *content = buffer + position;
    if (member.kind == kind::string || !referenced) {
      unsigned char *const copy = memory_for(size, 1, member.kind == kind::string ? 1 : 0);
      if (copy == nullptr) return CODEC_ERR_NO_MEMORY;
      std::copy(content, content + size, copy);
      if (member.kind == kind::string) copy[size] = '\0';
      content = copy;
    }
    record.set_pointer(member, content);
    if (member.kind == kind::bytes) record.set_count(member, size);
    position += size;
    return CODEC_OK;
  }

  // Counts the values from a position on, up to a key of another field or the end; 0 when something is cut off.
  std::uint64_t count_run(const member &member, const unsigned char *buffer, std::size_t length, std::size_t position) {
    std::uint32_t read;
    for (std::uint64_t count = 1;; ++count) {
      if (member.kind == kind::integer_list) {
        if (!read_32(buffer, length, position, read)) return 0;
      } else {
        if (!delimited(buffer, length, position, read)) return 0;
        position += read;
      }
      if (position == length) return count;
      if (!read_32(buffer, length, position, read)) return 0;
      if (read >> 3 != member.number) return count;
      if ((read & 7) != member.wire_type()) run_of_other_types = true;
    }
  }

  int run(view record, const member &member, const unsigned char *buffer, std::size_t length, std::size_t &position) {
    const std::uint64_t count = count_run(member, buffer, length, position);
    if (count == 0) return CODEC_ERR_TRUNCATED;
    unsigned char *const array = memory_for(count, member.element_size(), 0);
    if (array == nullptr) return CODEC_ERR_NO_MEMORY;
    if (member.kind == kind::message_list) std::memset(array, 0, sizes.back());
    record.set_pointer(member, array);
    record.set_count(member, count);
    for (std::uint64_t i = 0; i < count; ++i) {
      std::uint32_t value;
      if (i != 0) read_32(buffer, length, position, value);  // the key, whatever its wire type
      if (member.kind == kind::integer_list) {
        read_32(buffer, length, position, value);
        record.set_element_number(member, i, value);
      } else {
        const int result = nested(record.element(member, i), buffer, length, position);
        if (result != CODEC_OK) return result;
      }
    }
    return CODEC_OK;
  }

  storage &memory_;
};

}  // namespace naive
