// What encoding must give, in the plainest words: bytes appended one by one, nested messages encoded apart and copied
// in.
#pragma once

#include <algorithm>
#include <cstring>
#include <vector>

#include "description.hpp"

namespace test {

// What an encoding is: its bytes, and what the table says about it. Positions count from the message's first byte.
struct encoding_model {
  // Bytes that are written in one piece or, where a short buffer cannot hold them or there are none, not at all.
  struct whole {
    std::size_t first, last;
    bool missing;
  };
  struct entry {
    enum { message, rest, referenced } what;
    std::size_t message_start;   // of the message, or of the message whose rest this is
    std::size_t position;        // of the rest within its message
    const unsigned char *block;  // referenced bytes
    std::uint64_t length;
  };

  byte_string bytes;
  std::vector<whole> wholes;
  std::vector<entry> entries;
  std::vector<std::size_t> field_ends;  // of the outermost message's fields, list elements each for itself

  void varint(std::uint64_t value) {
    for (; value >= 128; value /= 128) bytes.push_back(static_cast<unsigned char>(value % 128 + 128));
    bytes.push_back(static_cast<unsigned char>(value));
  }

  void key(unsigned number, unsigned wire_type) { varint(number * 8 + wire_type); }

  void block(const void *start, std::size_t length) {
    const std::size_t first = bytes.size();
    bytes.resize(first + length);
    if (start != nullptr && length != 0) std::memcpy(bytes.data() + first, start, length);
    wholes.push_back({first, first + length, start == nullptr});
  }

  void nested(unsigned number, const encoding_model &inner) {
    key(number, 2);
    varint(inner.bytes.size());
    const std::size_t start = bytes.size();
    bytes.insert(bytes.end(), inner.bytes.begin(), inner.bytes.end());
    for (const whole &part : inner.wholes) wholes.push_back({start + part.first, start + part.last, part.missing});
    for (entry part : inner.entries) {
      part.message_start += start;
      entries.push_back(part);
    }
  }

  // The entries as they stand in the table after a call with a buffer, null or not, and its length.
  std::vector<piece> pieces(const unsigned char *buffer, std::size_t length) const {
    std::vector<piece> result;
    for (const entry &part : entries) {
      if (part.what == entry::referenced) {
        result.push_back({part.block, part.length});
        continue;
      }
      const bool has_buffer = buffer != nullptr && (part.message_start == 0 || part.message_start < length);
      const auto base = has_buffer ? reinterpret_cast<std::uintptr_t>(buffer) + part.message_start : 0;
      const std::uintptr_t start = base + (part.what == entry::rest ? part.position : 0);
      result.push_back({reinterpret_cast<const unsigned char *>(start), part.length});
    }
    return result;
  }

  // Which bytes a call with a buffer of a length writes.
  std::vector<bool> written(std::size_t length) const {
    std::vector<bool> result(std::min(length, bytes.size()), true);
    for (const whole &part : wholes) {
      if (!part.missing && part.last <= length) continue;
      for (std::size_t i = part.first; i < part.last && i < result.size(); ++i) result[i] = false;
    }
    return result;
  }
};

inline encoding_model model_encode(view record, bool referenced) {
  encoding_model out;
  bool is_split = false;
  std::size_t split = 0;
  for (const field &field : record.type().fields) {
    const bool present = record.has(field);
    const std::size_t before = out.bytes.size();
    if (field.kind == kind::nested) {
      const encoding_model inner = model_encode(record.nested(field), referenced);
      if (present || !inner.bytes.empty()) out.nested(field.number, inner);
    } else if (!present) {
      continue;
    } else if (field.kind == kind::flag) {
      out.key(field.number, 0);
      out.bytes.push_back(static_cast<unsigned char>(record.number(field)));
    } else if (field.kind == kind::integer) {
      out.key(field.number, 0);
      out.varint(record.number(field));
    } else if (field.kind == kind::string && record.text(field) != nullptr) {
      out.key(field.number, 2);
      out.varint(std::strlen(record.text(field)));
      out.block(record.text(field), std::strlen(record.text(field)));
    } else if (field.kind == kind::bytes) {
      const std::uint64_t length = record.count(field);
      out.key(field.number, 2);
      out.varint(length);
      if (!referenced) {
        out.block(record.pointer(field), static_cast<std::size_t>(length));
      } else if (length != 0) {
        is_split = true;
        split = out.bytes.size();
        out.entries.push_back({encoding_model::entry::message, 0, 0, nullptr, split});
        out.entries.push_back({encoding_model::entry::referenced, 0, 0, record.pointer(field), length});
      }
    } else if (field.is_list()) {
      for (std::uint64_t i = 0; i < record.count(field); ++i) {
        if (field.kind == kind::integer_list) {
          out.key(field.number, 0);
          out.varint(record.element_number(field, i));
        } else {
          out.nested(field.number, model_encode(record.element(field, i), referenced));
        }
        out.field_ends.push_back(out.bytes.size());
      }
    }
    if (!field.is_list() && out.bytes.size() != before) out.field_ends.push_back(out.bytes.size());
  }
  const std::size_t length = out.bytes.size();
  if (!is_split && length != 0) out.entries.push_back({encoding_model::entry::message, 0, 0, nullptr, length});
  if (is_split && length != split) {
    out.entries.push_back({encoding_model::entry::rest, 0, split, nullptr, length - split});
  }
  return out;
}

}  // namespace test
