// A second decoder, deliberately naive: positions in a buffer, one field after another, every rule where it comes.
// It knows the messages from their statement in messages.hpp, and nothing of the library but its header. It fills a
// record of its own and notes what it would have asked an allocator for.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>
#include <vector>

#include "messages.hpp"

namespace naive {

// Members of a record at its place in memory.
inline std::uint64_t load(const unsigned char *at, unsigned width) {
  std::uint8_t one;
  std::uint16_t two;
  std::uint32_t four;
  std::uint64_t eight;
  switch (width) {
    case 1:
      return std::memcpy(&one, at, 1), one;
    case 2:
      return std::memcpy(&two, at, 2), two;
    case 4:
      return std::memcpy(&four, at, 4), four;
    default:
      return std::memcpy(&eight, at, 8), eight;
  }
}

inline void store(unsigned char *at, unsigned width, std::uint64_t value) {
  const auto one = static_cast<std::uint8_t>(value);
  const auto two = static_cast<std::uint16_t>(value);
  const auto four = static_cast<std::uint32_t>(value);
  switch (width) {
    case 1:
      std::memcpy(at, &one, 1);
      break;
    case 2:
      std::memcpy(at, &two, 2);
      break;
    case 4:
      std::memcpy(at, &four, 4);
      break;
    default:
      std::memcpy(at, &value, 8);
  }
}

inline unsigned char *pointer_at(const unsigned char *at) {
  unsigned char *result;
  std::memcpy(&result, at, sizeof result);
  return result;
}

inline void set_pointer(unsigned char *at, const void *pointer) { std::memcpy(at, &pointer, sizeof pointer); }

inline std::uint64_t count_of(const member &field, const unsigned char *record) {
  return load(record + field.count_offset, field.what == sort::bytes ? 8 : 4);
}

inline std::uint32_t presence_of(const message &type, const unsigned char *record) {
  return static_cast<std::uint32_t>(load(record + type.presence_offset, type.presence_width));
}

inline void set_presence(const message &type, unsigned char *record, std::uint32_t bits) {
  store(record + type.presence_offset, type.presence_width, bits);
}

// The blocks that a record owns, itself not counted.
inline std::size_t blocks_owned(const message &type, const unsigned char *record, bool referenced) {
  std::size_t count = 0;
  for (const member &field : type.members) {
    if (field.is_scalar()) continue;
    if (field.what == sort::message) {
      count += blocks_owned(*field.nested, record + field.offset, referenced);
      continue;
    }
    const unsigned char *const block = pointer_at(record + field.offset);
    if (block == nullptr || (field.what == sort::bytes && referenced)) continue;
    ++count;
    if (field.what != sort::messages) continue;
    for (std::uint64_t i = 0; i < count_of(field, record); ++i) {
      count += blocks_owned(*field.nested, block + i * field.nested->size, referenced);
    }
  }
  return count;
}

// Memory that is handed out from the start again after each trial.
class scratch {
 public:
  explicit scratch(std::size_t size) : size_(size), start_(std::make_unique<unsigned char[]>(size)) {}
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
  explicit decoder(scratch &memory) : memory_(memory) {}

  bool has_allocator = true;
  bool referenced = false;
  bool (*grants)(std::size_t request, const void *schedule) = nullptr;  // null: every request is granted
  const void *schedule = nullptr;

  std::vector<std::size_t> sizes;     // what was asked for, in order
  std::size_t dropped = 0;            // blocks that nested messages owned before they came again
  bool run_of_other_types = false;    // a run went on over a key of another wire type
  bool unknown_past_the_end = false;  // the input ended inside an unknown field of known size

  void reset() {
    sizes.clear();
    dropped = 0;
    run_of_other_types = unknown_past_the_end = false;
  }

  int decode(const message &type, unsigned char *record, const unsigned char *buffer, std::size_t length) {
    clear(type, record);
    std::size_t position = 0;
    while (position < length) {
      std::uint32_t key;
      if (!read_32(buffer, length, position, key)) return CODEC_ERR_TRUNCATED;
      const int result = known(type, key) ? field_of(type, record, key, buffer, length, position)
                                          : skip(key & 7, buffer, length, position);
      if (result != CODEC_OK) return result;
    }
    return CODEC_OK;
  }

  // Five bytes count, of the fifth four bits; of those after only the one without the top bit is looked for.
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
  static bool known(const message &type, std::uint32_t key) { return key >> 3 >= 1 && key >> 3 <= type.members.size(); }

  static void clear(const message &type, unsigned char *record) {
    for (const member &field : type.members) {
      if (field.what == sort::message) {
        clear(*field.nested, record + field.offset);
      } else if (field.is_scalar()) {
        store(record + field.offset, field.width, 0);
      } else {
        set_pointer(record + field.offset, nullptr);
        if (field.is_list()) store(record + field.count_offset, 4, 0);
        if (field.what == sort::bytes) store(record + field.count_offset, 8, 0);
      }
    }
    set_presence(type, record, presence_of(type, record) & ~type.mask());
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

  int field_of(const message &type, unsigned char *record, std::uint32_t key, const unsigned char *buffer,
               std::size_t length, std::size_t &position) {
    const unsigned index = (key >> 3) - 1;
    const member &field = type.members[index];
    if ((key & 7) != (field.is_varint() ? 0u : 2u)) return CODEC_ERR_WRONG_WIRE_TYPE;
    int result = CODEC_OK;
    if (field.is_scalar()) {
      result = scalar(field, record, buffer, length, position);
    } else if (field.what == sort::message) {
      result = nested(field, record + field.offset, buffer, length, position);
    } else {
      if (pointer_at(record + field.offset) != nullptr) return CODEC_ERR_TRUNCATED;
      if (!has_allocator && !(referenced && field.what == sort::bytes)) return CODEC_ERR_NO_MEMORY;
      result = field.is_list() ? run(field, index + 1, record, buffer, length, position)
                               : block(field, record, buffer, length, position);
    }
    if (result == CODEC_OK) set_presence(type, record, presence_of(type, record) | std::uint32_t{1} << index);
    return result;
  }

  static int scalar(const member &field, unsigned char *record, const unsigned char *buffer, std::size_t length,
                    std::size_t &position) {
    std::uint64_t wide = 0;
    std::uint32_t narrow = 0;
    if (field.width == 8) {
      if (!read_64(buffer, length, position, wide)) return CODEC_ERR_TRUNCATED;
    } else {
      if (!read_32(buffer, length, position, narrow)) return CODEC_ERR_TRUNCATED;
      wide = field.what == sort::flag ? narrow != 0 : narrow;
    }
    store(record + field.offset, field.width, wide);
    return CODEC_OK;
  }

  // A length, whose bytes must all be there.
  static bool delimited(const unsigned char *buffer, std::size_t length, std::size_t &position, std::uint32_t &size) {
    return read_32(buffer, length, position, size) && size <= length - position;
  }

  int nested(const member &field, unsigned char *record, const unsigned char *buffer, std::size_t length,
             std::size_t &position) {
    std::uint32_t size;
    if (!delimited(buffer, length, position, size)) return CODEC_ERR_TRUNCATED;
    dropped += blocks_owned(*field.nested, record, referenced);
    const unsigned char *const content = buffer + position;
    position += size;
    return decode(*field.nested, record, content, size);
  }

  // Null when there is no memory. No request is made for what cannot be said in a size, or counted in 32 bits.
  unsigned char *memory_for(std::uint64_t count, std::uint64_t element_size, std::uint64_t extra) {
    if (count > UINT32_MAX || count * element_size + extra > SIZE_MAX) return nullptr;
    const auto size = static_cast<std::size_t>(count * element_size + extra);
    sizes.push_back(size);
    if (grants != nullptr && !grants(sizes.size() - 1, schedule)) return nullptr;
    return memory_.take(size);
  }

  int block(const member &field, unsigned char *record, const unsigned char *buffer, std::size_t length,
            std::size_t &position) {
    std::uint32_t size;
    if (!delimited(buffer, length, position, size)) return CODEC_ERR_TRUNCATED;
    const unsigned char *content = buffer + position;
    if (field.what == sort::text || !referenced) {
      unsigned char *const copy = memory_for(size, 1, field.what == sort::text ? 1 : 0);
      if (copy == nullptr) return CODEC_ERR_NO_MEMORY;
      std::copy(content, content + size, copy);
      if (field.what == sort::text) copy[size] = '\0';
      content = copy;
    }
    set_pointer(record + field.offset, content);
    if (field.what == sort::bytes) store(record + field.count_offset, 8, size);
    position += size;
    return CODEC_OK;
  }

  // Counts the values from a position on, up to a key of another field or the end; 0 when something is cut off.
  std::uint64_t count_run(const member &field, unsigned number, const unsigned char *buffer, std::size_t length,
                          std::size_t position) {
    std::uint32_t read;
    for (std::uint64_t count = 1;; ++count) {
      if (field.what == sort::numbers) {
        if (!read_32(buffer, length, position, read)) return 0;
      } else {
        if (!delimited(buffer, length, position, read)) return 0;
        position += read;
      }
      if (position == length) return count;
      if (!read_32(buffer, length, position, read)) return 0;
      if (read >> 3 != number) return count;
      if ((read & 7) != (field.what == sort::numbers ? 0u : 2u)) run_of_other_types = true;
    }
  }

  int run(const member &field, unsigned number, unsigned char *record, const unsigned char *buffer, std::size_t length,
          std::size_t &position) {
    const std::uint64_t count = count_run(field, number, buffer, length, position);
    if (count == 0) return CODEC_ERR_TRUNCATED;
    unsigned char *const array = memory_for(count, field.element_size(), 0);
    if (array == nullptr) return CODEC_ERR_NO_MEMORY;
    if (field.what == sort::messages) std::memset(array, 0, sizes.back());
    set_pointer(record + field.offset, array);
    store(record + field.count_offset, 4, count);
    for (std::uint64_t i = 0; i < count; ++i) {
      std::uint32_t value;
      if (i != 0) read_32(buffer, length, position, value);  // the key, whatever it is
      unsigned char *const element = array + i * field.element_size();
      if (field.what == sort::numbers) {
        read_32(buffer, length, position, value);
        store(element, field.width, value);
      } else {
        const int result = nested(field, element, buffer, length, position);
        if (result != CODEC_OK) return result;
      }
    }
    return CODEC_OK;
  }

  scratch &memory_;
};

// Where two records are not the same: a member, or nothing. All presence bits count, those of no field too. What
// pointers lead to must be the same. `size_of` gives the size of a block of the first record, or a negative number
// when it is none.
template <class SizeOf>
class comparison {
 public:
  comparison(bool referenced, SizeOf size_of) : referenced_(referenced), size_of_(size_of) {}

  std::string difference(const message &type, const unsigned char *a, const unsigned char *b) const {
    for (std::size_t i = 0; i < type.members.size(); ++i) {
      const member &field = type.members[i];
      if (field.what == sort::message) {
        std::string inner = difference(*field.nested, a + field.offset, b + field.offset);
        if (!inner.empty()) return inner;
      } else if (field.is_scalar()) {
        if (load(a + field.offset, field.width) != load(b + field.offset, field.width)) return named(type, i, "");
      } else {
        std::string inner = blocks(type, i, a, b);
        if (!inner.empty()) return inner;
      }
    }
    return presence_of(type, a) == presence_of(type, b) ? "" : std::string(type.name) + ": the presence flags";
  }

 private:
  static std::string named(const message &type, std::size_t index, const char *what) {
    return std::string(type.name) + ", field " + std::to_string(index + 1) + what;
  }

  std::string blocks(const message &type, std::size_t index, const unsigned char *a, const unsigned char *b) const {
    const member &field = type.members[index];
    const unsigned char *const left = pointer_at(a + field.offset);
    const unsigned char *const right = pointer_at(b + field.offset);
    if (field.what != sort::text && count_of(field, a) != count_of(field, b)) return named(type, index, ": the count");
    if (left == nullptr || right == nullptr || (field.what == sort::bytes && referenced_)) {
      return left == right ? "" : named(type, index, ": the pointer");
    }
    const std::int64_t seen = size_of_(left);
    const std::uint64_t size = field.what == sort::text    ? static_cast<std::uint64_t>(seen)
                               : field.what == sort::bytes ? count_of(field, b)
                                                           : count_of(field, b) * field.element_size();
    if (seen < 0 || static_cast<std::uint64_t>(seen) != size) return named(type, index, ": the block");
    if (field.what != sort::messages) {
      return size == 0 || std::memcmp(left, right, static_cast<std::size_t>(size)) == 0
                 ? ""
                 : named(type, index, ": the content");
    }
    for (std::uint64_t at = 0; at < size; at += field.nested->size) {
      std::string inner = difference(*field.nested, left + at, right + at);
      if (!inner.empty()) return inner;
    }
    return "";
  }

  bool referenced_;
  SizeOf size_of_;
};

}  // namespace naive
