// Encoding agrees with the naive encoder for every record that a caller may build: the length, every byte of a buffer
// that is too short, long enough or null, and every entry of a segment table. The record is what the naive decoder
// makes of the input, then altered: presence bits without members and members without bits, numbers and flags of any
// value, bytes with a length and no block; or all numbers and nothing else; and one string, list or block so long that
// the encoding ends near a size that matters.
#include <algorithm>

#include "harness.hpp"
#include "naive/encoder.hpp"
#include "random.hpp"
#include "wire_bytes.hpp"

namespace fuzz {

namespace {

// What altered records point to. They are only encoded, so blocks may be shared and constant.
naive::storage &blocks() {
  static naive::storage memory(8 << 20);
  return memory;
}

constexpr std::size_t longest_text = 80 << 10;

// A string of this length, with its NUL.
const unsigned char *text_of(std::size_t length) {
  static const std::vector<unsigned char> all = [] {
    std::vector<unsigned char> bytes(longest_text + 1);
    for (std::size_t i = 0; i < longest_text; ++i) bytes[i] = static_cast<unsigned char>(1 + i % 255);
    return bytes;
  }();
  return all.data() + longest_text - std::min(length, longest_text);
}

// A member of a record that can be made arbitrarily long.
struct growing {
  view record;
  const member *field;
};

class alteration {
 public:
  explicit alteration(const trial &trial)
      : random_(trial.number | std::uint64_t{trial.extra} << 16 | std::uint64_t{trial.fill} << 24), trial_(trial) {}

  void alter(view record) {
    std::uint32_t bits = record.presence();
    for (const member &member : record.type().members) {
      if (member.kind == kind::nested) alter(record.nested(member));
      if (member.kind == kind::message_list) {
        for (std::uint64_t i = 0; i < record.count(member); ++i) alter(record.element(member, i));
      }
      if (!random_.percent(trial_.extra % 64)) continue;
      if (random_.percent(50)) bits ^= member.presence_bit();
      if (member.is_scalar()) record.set_number(member, random_.number());
      if (member.kind == kind::string) {
        record.set_pointer(member, random_.percent(30) ? nullptr : text_of(random_.below(200)));
      }
      if (member.kind == kind::bytes) {
        const bool is_null = random_.percent(60);
        const std::uint64_t length = is_null ? length_of_null_bytes() : random_.below(200);
        record.set_pointer(member, is_null ? nullptr : text_of(static_cast<std::size_t>(length)));
        record.set_count(member, length);
      }
      // The pointer of a list without its presence bit is not read.
      if (member.is_list() && (bits & member.presence_bit()) == 0 && random_.percent(50)) {
        record.set_pointer(member, nullptr);
        record.set_count(member, random_.any());
      }
    }
    record.set_presence(bits ^ (static_cast<std::uint32_t>(random_.any()) & ~record.type().mask()));
  }

  // All numbers, each as large as possible, and nothing else: the most that is written without reserving space.
  void fill(view record) {
    std::uint32_t bits = 0;
    for (const member &member : record.type().members) {
      if (member.kind == kind::nested) fill(record.nested(member));
      if (member.is_scalar()) record.set_number(member, UINT64_MAX);
      if (member.is_scalar() || member.kind == kind::nested) bits |= member.presence_bit();
    }
    record.set_presence(bits);
  }

  // Encoding goes backwards: the last member that can grow is written before all others.
  void lengthen(view record) {
    std::vector<growing> places;
    find(record, places);
    if (places.empty()) return;
    const growing &place = random_.percent(40) ? places.back() : places[random_.below(places.size())];
    // A list without its bit may have a count and no array.
    if (place.field->is_list() && place.record.pointer(*place.field) == nullptr)
      place.record.set_count(*place.field, 0);
    place.record.set_has(*place.field, true);
    const std::uint64_t now = naive::encoding(record, trial_.referenced).length();
    const std::size_t goal = this->goal();
    // The goal is the length of the whole encoding, or of this member alone.
    const std::size_t besides = random_.percent(60) ? static_cast<std::size_t>(std::min<std::uint64_t>(now, goal)) : 0;
    lengthen(place.record, *place.field, goal - besides);
  }

 private:
  // Near the sizes at which a length varint becomes longer, near 2^32 and 2^64, and in between.
  std::uint64_t length_of_null_bytes() {
    if (random_.percent(60)) return random_.below(20000);
    const std::uint64_t power = std::uint64_t{2} << random_.below(64);
    return random_.percent(50) ? power - random_.below(12) : random_.any() >> random_.below(64);
  }

  // Around the longest encoding that is written by scratch, around 64 KB, and between.
  std::size_t goal() {
    const std::size_t near = random_.below(64);
    if (random_.percent(60)) return 8192 + near - 48;
    return random_.percent(70) ? random_.below(20000) : 65536 + near - 48;
  }

  void find(view record, std::vector<growing> &out) {
    for (const member &member : record.type().members) {
      if (member.kind == kind::nested) find(record.nested(member), out);
      if (!member.is_scalar() && member.kind != kind::nested) out.push_back({record, &member});
      if (member.kind != kind::message_list || !record.has(member)) continue;
      for (std::uint64_t i = 0; i < record.count(member) && i < 4; ++i) find(record.element(member, i), out);
    }
  }

  static std::size_t varint_size(std::uint64_t value) { return test::varint(value).size(); }

  void lengthen(view record, const member &member, std::size_t more) {
    if (member.kind == kind::string) return record.set_pointer(member, text_of(more));
    if (member.kind == kind::bytes) {
      record.set_pointer(member, text_of(more));
      return record.set_count(member, std::min(more, longest_text));
    }
    const std::size_t key = test::key(member.number, member.wire_type()).size(), element = member.element_size();
    std::size_t count;
    if (member.kind == kind::integer_list) {
      const std::uint64_t value = member.width == 1 ? random_.byte() : random_.number() & 0xffffffff;
      const bool alike = random_.percent(70);
      count = more / (key + varint_size(value)) + random_.below(3);
      record.set_pointer(member, blocks().take(count * element));
      for (std::size_t i = 0; i < count; ++i) {
        record.set_element_number(member, i, alike || random_.percent(95) ? value : random_.number());
      }
    } else {
      const std::vector<unsigned char> empty(element);
      const unsigned char *const one = record.count(member) != 0 ? record.pointer(member) : empty.data();
      const std::uint64_t inner = naive::encoding({*member.nested, one}, trial_.referenced).length();
      if (inner > more) return;
      count = more / (key + varint_size(inner) + static_cast<std::size_t>(inner)) + random_.below(3);
      unsigned char *const array = blocks().take(count * element);
      for (std::size_t i = 0; i < count; ++i) std::memcpy(array + i * element, one, element);
      record.set_pointer(member, array);
    }
    record.set_count(member, count);
  }

  test::random_numbers random_;
  const trial &trial_;
};

constexpr unsigned char untouched = 0xc7;

// A call with a buffer of some length or without one, and a table of some capacity or without one.
struct call {
  static constexpr std::size_t no_buffer = SIZE_MAX;
  static constexpr std::uint32_t no_count = UINT32_MAX;
  std::size_t length;
  std::uint32_t capacity;
};

void check(const trial &trial, view record, const naive::encoding &expected, const call &how, std::uint32_t options) {
  const bool has_buffer = how.length != call::no_buffer, has_count = how.capacity != call::no_count;
  const auto fill = static_cast<unsigned char>(trial.fill ^ 0x3f);
  const std::size_t length = has_buffer ? how.length : 0;
  const std::size_t before = 32;
  unsigned char *const start = output_room().last(before + length);
  unsigned char *const buffer = start + before;
  std::memset(start, fill, before + length);
  const std::size_t table_size = (has_count ? how.capacity : 0) * sizeof(pavo_zorv_segment);
  unsigned char *const table = table_room().last(table_size);
  std::memset(table, untouched, table_size);

  std::uint32_t count = how.capacity;
  const std::size_t size = trial.type->functions->encode(
      record.data(), has_buffer ? buffer : nullptr, has_buffer ? length : trial.number,
      table_size != 0 ? reinterpret_cast<pavo_zorv_segment *>(table) : nullptr, has_count ? &count : nullptr, options);

  FUZZ_CHECK(trial, size == (expected.has_size() ? expected.length() : SIZE_MAX));
  FUZZ_CHECK(trial, !has_count || count == expected.entries());
  for (std::size_t i = 0; i < before; ++i) FUZZ_CHECK(trial, start[i] == fill);
  const std::size_t written = expected.has_size() ? length : 0;
  FUZZ_CHECK(trial, expected.in_buffer(std::vector(written, fill)) == std::vector(buffer, buffer + written));
  for (std::size_t i = written; i < length; ++i) FUZZ_CHECK(trial, buffer[i] == fill);
  for (std::size_t i = 0; i < table_size / sizeof(pavo_zorv_segment); ++i) {
    pavo_zorv_segment seen;
    std::memcpy(&seen, table + i * sizeof seen, sizeof seen);
    if (expected.has_size() && i < expected.entries()) {
      const pavo_zorv_segment right = expected.in_table(i, has_buffer ? buffer : nullptr, length);
      FUZZ_CHECK(trial, seen.start == right.start && seen.length == right.length);
    } else {
      const auto *const bytes = reinterpret_cast<const unsigned char *>(&seen);
      FUZZ_CHECK(trial, std::count(bytes, bytes + sizeof seen, untouched) == sizeof seen);
    }
  }
}

}  // namespace

void run(const trial &trial) {
  const unsigned char *const input = placed(input_room(), trial, trial.bytes, trial.length);
  expected source(trial, input, trial.length);
  const view record = source.record;
  blocks().reset();
  alteration alteration(trial);
  if ((trial.choice & 2) != 0) alteration.fill(record);
  if ((trial.choice & 1) != 0) alteration.alter(record);
  if (trial.choice >= 12) alteration.lengthen(record);
  const test::record_block before = source.block;

  const naive::encoding expected(record, trial.referenced);
  // The other bits of the options word are ignored.
  const std::uint32_t options = trial.options() | (trial.extra * 0x01010101u & ~std::uint32_t{PAVO_ZORV_REFERENCE});
  const auto entries = static_cast<std::uint32_t>(expected.entries());
  const std::uint32_t some = (trial.number >> 4) % (entries + 2);
  // A buffer that is long enough, or one that cuts off the end.
  const auto most = static_cast<std::size_t>(std::min<std::uint64_t>(expected.length(), 100000));
  const std::size_t cut = trial.number % (most + 9);
  const std::size_t by_scratch = std::min<std::size_t>(most, 8192 - trial.extra % 32);

  const call calls[] = {
      {call::no_buffer, call::no_count},
      {call::no_buffer, 0},
      {call::no_buffer, some},
      {most, call::no_count},
      {most + trial.extra, call::no_count},
      {most, entries + 1},
      {most, 0},
      {most - (most != 0), call::no_count},
      {by_scratch, call::no_count},
      {cut, call::no_count},
      {cut, some},
  };
  for (const call &how : calls) check(trial, record, expected, how, options);
  FUZZ_CHECK(trial, std::memcmp(before.data(), record.data(), trial.type->size) == 0);
}

}  // namespace fuzz
