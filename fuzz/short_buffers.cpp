// Encoding into a buffer of any length with a table of any capacity: exactly what fits is written, and the returned
// size and counts are the same.
#include <algorithm>

#include "harness.hpp"

namespace fuzz {

namespace {

using byte_string = std::vector<unsigned char>;
using segments = std::vector<pavo_zorv_segment>;

// The part of an encoding that is one string, or one block of bytes: written whole or not at all.
struct whole {
  std::size_t first, last;
};

// Finds these parts in an encoding, which does not contain referenced bytes.
void add_wholes(const message &type, const byte_string &bytes, std::size_t first, std::size_t last, bool referenced,
                std::vector<whole> &out) {
  const auto number = [&](std::size_t &at) {
    std::uint32_t value = 0;
    naive::decoder::read_32(bytes.data(), last, at, value);
    return value;
  };
  while (first < last) {
    const std::uint32_t key = number(first);
    const std::uint32_t value = number(first);
    const member &field = type.members.at((key >> 3) - 1);
    switch (field.wire()) {
      case naive::wire::varint:
        continue;
      case naive::wire::delimited:
        break;
    }
    if (field.kind == kind::bytes && referenced) continue;
    if (field.nested != nullptr) add_wholes(*field.nested, bytes, first, first + value, referenced, out);
    if (field.nested == nullptr) out.push_back({first, first + value});
    first += value;
  }
}

// Members without their presence bit, bits without a member, flags with any one-byte value: what a caller may encode
// but no decoder produces.
void make_inconsistent(const trial &trial, view record) {
  std::uint32_t bits = record.presence();
  for (std::size_t i = 0; i < trial.type->members.size(); ++i) {
    const member &field = trial.type->members[i];
    if (((trial.extra >> (i % 8)) & 1) == 0) continue;
    bits ^= std::uint32_t{1} << i;
    if (field.kind == kind::flag) record.set_number(field, (trial.fill + i) & 0x7f);
  }
  record.set_presence(bits);
}

struct outcome {
  std::size_t size;
  std::uint32_t count;
  byte_string written;
  segments entries;
  const unsigned char *buffer;
};

constexpr unsigned char untouched = 0xc7;

// Calls `encode` with a filled buffer, and checks that the bytes before the buffer are not written.
template <class Encode>
unsigned char *in_buffer(const trial &trial, std::size_t length, unsigned char fill, Encode encode) {
  unsigned char *const buffer = output_room().last(length);
  unsigned char *const before =
      buffer - std::min<std::size_t>(16, static_cast<std::size_t>(buffer - output_room().first()));
  std::memset(before, fill, static_cast<std::size_t>(buffer - before) + length);
  encode(buffer);
  for (const unsigned char *at = before; at != buffer; ++at) FUZZ_CHECK(trial, *at == fill);
  return buffer;
}

outcome encode(const trial &trial, const unsigned char *record, std::size_t length, std::uint32_t capacity,
               unsigned char fill) {
  unsigned char *const table = table_room().last(capacity * sizeof(pavo_zorv_segment));
  if (capacity != 0) std::memset(table, untouched, capacity * sizeof(pavo_zorv_segment));
  outcome result;
  result.count = capacity;
  result.buffer = in_buffer(trial, length, fill, [&](unsigned char *buffer) {
    result.size = trial.type->functions->encode(record, buffer, length, reinterpret_cast<pavo_zorv_segment *>(table),
                                                &result.count, trial.options());
  });
  result.written.assign(result.buffer, result.buffer + length);
  result.entries.resize(capacity);
  if (capacity != 0) std::memcpy(result.entries.data(), table, capacity * sizeof(pavo_zorv_segment));
  return result;
}

// Without a table the encoder takes another path, but writes the same bytes.
void check_without_table(const trial &trial, const unsigned char *record, const outcome &with, unsigned char fill) {
  const std::size_t length = with.written.size();
  std::size_t size = 0;
  const unsigned char *const buffer = in_buffer(trial, length, fill, [&](unsigned char *to) {
    size = trial.type->functions->encode(record, to, length, nullptr, nullptr, trial.options());
  });
  FUZZ_CHECK(trial, size == with.size);
  FUZZ_CHECK(trial, std::equal(with.written.begin(), with.written.end(), buffer));
}

void check_written(const trial &trial, const outcome &full, const outcome &cut, unsigned char fill) {
  std::vector<whole> wholes;
  add_wholes(*trial.type, full.written, 0, full.size, trial.referenced, wholes);
  byte_string expected(cut.written.size(), fill);
  const std::size_t fitting = std::min(cut.written.size(), full.size);
  std::copy_n(full.written.begin(), fitting, expected.begin());
  for (const whole &part : wholes) {
    if (part.last <= fitting || part.first >= fitting) continue;
    std::fill(expected.begin() + static_cast<std::ptrdiff_t>(part.first),
              expected.begin() + static_cast<std::ptrdiff_t>(fitting), fill);
  }
  FUZZ_CHECK(trial, cut.written == expected);
}

// Where an entry of the whole encoding must start in a shorter buffer. Past the end of the buffer the start is null or,
// in reference mode after referenced bytes, the position as a number.
bool starts_right(const trial &trial, const outcome &full, const outcome &cut, const unsigned char *right,
                  const unsigned char *seen) {
  if (right < full.buffer || right > full.buffer + full.size) return seen == right;
  const auto position = static_cast<std::size_t>(right - full.buffer);
  const bool is_in = position == 0 || position < cut.written.size();
  if (seen == cut.buffer + position) return is_in || trial.referenced;
  return !is_in && (seen == nullptr || (trial.referenced && reinterpret_cast<std::uintptr_t>(seen) <= position));
}

}  // namespace

void run(const trial &trial) {
  const unsigned char *const input = placed(input_room(), trial, trial.bytes, trial.length);
  decoded source(trial, input, trial.length, trial.referenced);
  test::record_block altered = source.block;
  if ((trial.choice & 1) != 0) make_inconsistent(trial, {*trial.type, altered.data()});

  std::uint32_t needed = 0;
  const std::size_t size = trial.type->functions->encode(altered.data(), nullptr, 0, nullptr, &needed, trial.options());
  const outcome full = encode(trial, altered.data(), size, needed, trial.fill);
  FUZZ_CHECK(trial, full.size == size && full.count == needed);

  const std::size_t length = trial.number % (size + 9);
  const std::uint32_t capacity = (trial.number >> 4) % (needed + 2);
  const auto fill = static_cast<unsigned char>(trial.fill ^ 0x3f);
  const outcome cut = encode(trial, altered.data(), length, capacity, fill);
  FUZZ_CHECK(trial, cut.size == size && cut.count == needed);
  check_written(trial, full, cut, fill);
  check_without_table(trial, altered.data(), full, trial.fill);
  check_without_table(trial, altered.data(), cut, fill);
  for (std::uint32_t i = 0; i < capacity; ++i) {
    const auto *const byte = reinterpret_cast<const unsigned char *>(&cut.entries[i]);
    if (i >= needed) {
      FUZZ_CHECK(trial, std::count(byte, byte + sizeof cut.entries[i], untouched) == sizeof cut.entries[i]);
      continue;
    }
    FUZZ_CHECK(trial, cut.entries[i].length == full.entries[i].length);
    FUZZ_CHECK(trial, starts_right(trial, full, cut, full.entries[i].start, cut.entries[i].start));
  }
}

}  // namespace fuzz
