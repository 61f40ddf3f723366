// What decoding must give, in the plainest words: one field after another, with the rules in the order in which they
// count.
#pragma once

#include <cstring>
#include <vector>

#include "model_memory.hpp"

namespace test {

class decoding_model {
 public:
  bool has_allocator = true;
  bool referenced = false;
  std::size_t fail_at = accountant::never;
  std::size_t fail_from = accountant::never;

  std::vector<std::size_t> sizes;  // what was asked for, in order
  std::size_t dropped = 0;         // blocks that nested messages owned before they came again

  int decode(view record, const unsigned char *input, std::size_t length) {
    clear(record);
    const unsigned char *at = input;
    const unsigned char *const end = input + length;
    while (at < end) {
      std::uint64_t key = 0;
      if (!varint(at, end, 5, key)) return CODEC_ERR_TRUNCATED;
      const auto number = static_cast<std::size_t>(key / 8);
      const unsigned wire_type = key % 8;
      const std::vector<field> &fields = record.type().fields;
      const bool known = number >= 1 && number <= fields.size();
      const int result = known ? value(record, fields[number - 1], at, end, wire_type) : skip(at, end, wire_type);
      if (result != CODEC_OK) return result;
      if (known) record.set_has(fields[number - 1], true);
    }
    return CODEC_OK;
  }

 private:
  // The presence bits of no field stay, at every depth.
  static void clear(view record) {
    record.set_presence(record.presence() & ~record.type().mask());
    for (const field &field : record.type().fields) {
      if (field.kind == kind::nested) {
        clear(record.nested(field));
      } else if (field.is_number()) {
        record.set_number(field, 0);
      } else {
        record.set_pointer(field, nullptr);
        if (field.kind != kind::string) record.set_count(field, 0);
      }
    }
  }

  // Of a varint the first five or ten bytes count; of those after them only the end is looked for.
  static bool varint(const unsigned char *&at, const unsigned char *end, int counting, std::uint64_t &value) {
    value = 0;
    for (int i = 0; at < end; ++i) {
      const unsigned char byte = *at++;
      if (i < counting) value |= std::uint64_t{byte & 0x7fu} << 7 * i;
      if (byte < 128) {
        if (counting == 5) value &= 0xffffffff;
        return true;
      }
    }
    return false;
  }

  static int skip(const unsigned char *&at, const unsigned char *end, unsigned wire_type) {
    std::uint64_t size = 0;
    if (wire_type == 0) return varint(at, end, 5, size) ? CODEC_OK : CODEC_ERR_TRUNCATED;
    if (wire_type == 1) {
      size = 8;
    } else if (wire_type == 5) {
      size = 4;
    } else if (wire_type == 2) {
      if (!varint(at, end, 5, size)) return CODEC_ERR_TRUNCATED;
    } else {
      return CODEC_ERR_BAD_WIRE_TYPE;
    }
    at = size > static_cast<std::uint64_t>(end - at) ? end : at + size;
    return CODEC_OK;
  }

  static bool delimited(const unsigned char *&at, const unsigned char *end, std::uint64_t &length) {
    return varint(at, end, 5, length) && length <= static_cast<std::uint64_t>(end - at);
  }

  bool granted(std::size_t size) {
    sizes.push_back(size);
    return sizes.size() - 1 != fail_at && sizes.size() - 1 < fail_from;
  }

  int value(view record, const field &field, const unsigned char *&at, const unsigned char *end, unsigned wire_type) {
    if (wire_type != (field.is_varint() ? 0 : 2)) return CODEC_ERR_WRONG_WIRE_TYPE;
    std::uint64_t read = 0;
    if (field.is_number()) {
      if (!varint(at, end, field.width == 8 ? 10 : 5, read)) return CODEC_ERR_TRUNCATED;
      record.set_number(field, field.kind == kind::flag ? read != 0 : read);
      return CODEC_OK;
    }
    if (field.kind == kind::nested) {
      if (!delimited(at, end, read)) return CODEC_ERR_TRUNCATED;
      dropped += owned_blocks(record.nested(field), referenced).size();
      at += read;
      return decode(record.nested(field), at - read, static_cast<std::size_t>(read));
    }

    if (record.pointer(field) != nullptr) return CODEC_ERR_TRUNCATED;
    const bool borrowed = field.kind == kind::bytes && referenced;
    if (!borrowed && !has_allocator) return CODEC_ERR_NO_MEMORY;
    if (field.is_list()) return list(record, field, at, end);
    if (!delimited(at, end, read)) return CODEC_ERR_TRUNCATED;
    const std::size_t length = static_cast<std::size_t>(read), size = length + (field.kind == kind::string ? 1 : 0);
    if (!borrowed && !granted(size)) return CODEC_ERR_NO_MEMORY;
    auto *const block = borrowed ? const_cast<unsigned char *>(at) : memory_.array<unsigned char>(size);
    if (!borrowed) std::memcpy(block, at, length);
    if (field.kind == kind::string) block[length] = '\0';
    if (field.kind == kind::bytes) record.set_count(field, read);
    record.set_pointer(field, block);
    at += read;
    return CODEC_OK;
  }

  // Counts the elements from the first value on; 0 when something is cut off.
  static std::size_t count_run(const field &field, const unsigned char *at, const unsigned char *end) {
    for (std::size_t count = 1;; ++count) {
      std::uint64_t read = 0;
      if (field.kind == kind::message_list ? !delimited(at, end, read) : !varint(at, end, 5, read)) return 0;
      if (field.kind == kind::message_list) at += read;
      if (at == end) return count;
      if (!varint(at, end, 5, read)) return 0;
      if (read / 8 != field.number) return count;
    }
  }

  int list(view record, const field &field, const unsigned char *&at, const unsigned char *end) {
    const std::size_t count = count_run(field, at, end);
    if (count == 0) return CODEC_ERR_TRUNCATED;
    const std::size_t size = count * field.element_size();
    if (!granted(size)) return CODEC_ERR_NO_MEMORY;
    record.set_pointer(field, memory_.block(size));
    record.set_count(field, count);
    std::memset(record.pointer(field), 0, size);
    for (std::size_t i = 0; i < count; ++i) {
      std::uint64_t read = 0;
      if (i != 0) varint(at, end, 5, read);  // the key, whatever it is
      if (field.kind == kind::integer_list) {
        varint(at, end, 5, read);
        record.set_element_number(field, i, read);
      } else {
        delimited(at, end, read);
        const int result = decode(record.element(field, i), at, static_cast<std::size_t>(read));
        if (result != CODEC_OK) return result;
        at += read;
      }
    }
    return CODEC_OK;
  }

  arena memory_;
};

}  // namespace test
