// Encoding agrees with the naive encoder, whatever a caller may put into a record: the length, every byte of a buffer
// that is too short, long enough or not there, and every entry of a table. The record is what the naive decoder makes
// of the input, then altered: bits without members and members without bits, numbers and flags of any value, bytes with
// a length and no block; or all numbers there are and nothing else; and one string, list or block made so long that the
// encoding ends near a size that matters.
#include <algorithm>

#include "dice.hpp"
#include "harness.hpp"
#include "naive/encoder.hpp"

namespace fuzz {

namespace {

// What altered records lead to. Only encoding sees them, so blocks may be shared, and constant.
naive::scratch &blocks() {
  static naive::scratch memory(8 << 20);
  return memory;
}

constexpr std::size_t longest_text = 80 << 10;

// So many bytes, and a NUL after them.
const unsigned char *text_of(std::size_t length) {
  static const std::vector<unsigned char> all = [] {
    std::vector<unsigned char> bytes(longest_text + 1);
    for (std::size_t i = 0; i < longest_text; ++i) bytes[i] = static_cast<unsigned char>(1 + i % 255);
    return bytes;
  }();
  return all.data() + longest_text - std::min(length, longest_text);
}

// A place in a record that can be made as long as one likes.
struct growing {
  const message *type;
  std::size_t index;
  unsigned char *record;

  const member &field() const { return type->members[index]; }
  unsigned char *at() const { return record + field().offset; }
};

class alteration {
 public:
  explicit alteration(const trial &trial)
      : dice_(trial.number | std::uint64_t{trial.extra} << 16 | std::uint64_t{trial.fill} << 24), trial_(trial) {}

  void alter(const message &type, unsigned char *record) {
    std::uint32_t bits = naive::presence_of(type, record);
    for (std::size_t i = 0; i < type.members.size(); ++i) {
      const member &field = type.members[i];
      unsigned char *const at = record + field.offset;
      if (field.what == sort::message) alter(*field.nested, at);
      if (field.what == sort::messages) alter_elements(field, record);
      if (!dice_.percent(trial_.extra % 64)) continue;
      if (dice_.percent(50)) bits ^= std::uint32_t{1} << i;
      if (field.is_scalar()) naive::store(at, field.width, dice_.number());
      if (field.what == sort::text) naive::set_pointer(at, dice_.percent(30) ? nullptr : text_of(dice_.below(200)));
      if (field.what == sort::bytes) {
        const bool gap = dice_.percent(60);
        const std::uint64_t length = gap ? length_of_gap() : dice_.below(200);
        naive::set_pointer(at, gap ? nullptr : text_of(static_cast<std::size_t>(length)));
        naive::store(record + field.count_offset, 8, length);
      }
      // Of a list without its bit, nothing is looked at.
      if (field.is_list() && (bits >> i & 1) == 0 && dice_.percent(50)) {
        naive::set_pointer(at, nullptr);
        naive::store(record + field.count_offset, 4, dice_.any());
      }
    }
    naive::set_presence(type, record, bits ^ (static_cast<std::uint32_t>(dice_.any()) & ~type.mask()));
  }

  // Every number, as large as it gets, and nothing else: the most that is written where nothing asks for room.
  void fill(const message &type, unsigned char *record) {
    std::uint32_t bits = 0;
    for (std::size_t i = 0; i < type.members.size(); ++i) {
      const member &field = type.members[i];
      unsigned char *const at = record + field.offset;
      if (field.what == sort::message) fill(*field.nested, at);
      if (field.is_scalar()) naive::store(at, field.width, UINT64_MAX);
      if (field.is_scalar() || field.what == sort::message) bits |= std::uint32_t{1} << i;
    }
    naive::set_presence(type, record, bits);
  }

  // The last member that can grow is written first, before all the others.
  void lengthen(const message &type, unsigned char *record) {
    std::vector<growing> places;
    find(type, record, places);
    if (places.empty()) return;
    const growing &place = dice_.percent(40) ? places.back() : places[dice_.below(places.size())];
    // A list without its bit may have a count and no array.
    if (place.field().is_list() && naive::pointer_at(place.at()) == nullptr) {
      naive::store(place.record + place.field().count_offset, 4, 0);
    }
    const std::uint32_t bits = naive::presence_of(*place.type, place.record);
    naive::set_presence(*place.type, place.record, bits | std::uint32_t{1} << place.index);
    const std::uint64_t now = naive::encoding::of(type, record, trial_.referenced).length();
    const std::size_t goal = this->goal();
    // The whole is to be so long, or this member alone.
    const std::size_t besides = dice_.percent(60) ? static_cast<std::size_t>(std::min<std::uint64_t>(now, goal)) : 0;
    lengthen(place, goal - besides);
  }

 private:
  void alter_elements(const member &field, unsigned char *record) {
    const std::uint64_t count = naive::count_of(field, record);
    unsigned char *const array = naive::pointer_at(record + field.offset);
    for (std::uint64_t i = 0; i < count; ++i) alter(*field.nested, array + i * field.nested->size);
  }

  // Where a varint grows, where 32 bits end, where the numbers end, and between.
  std::uint64_t length_of_gap() {
    if (dice_.percent(60)) return dice_.below(20000);
    const std::uint64_t power = std::uint64_t{2} << dice_.below(64);
    return dice_.percent(50) ? power - dice_.below(12) : dice_.any() >> dice_.below(64);
  }

  // Around the longest encoding that is written by scratch, around 64 KB, and between.
  std::size_t goal() {
    const std::size_t near = dice_.below(64);
    if (dice_.percent(60)) return 8192 + near - 48;
    return dice_.percent(70) ? dice_.below(20000) : 65536 + near - 48;
  }

  void find(const message &type, unsigned char *record, std::vector<growing> &out) {
    for (std::size_t i = 0; i < type.members.size(); ++i) {
      const member &field = type.members[i];
      if (field.what == sort::message) find(*field.nested, record + field.offset, out);
      if (!field.is_scalar() && field.what != sort::message) out.push_back({&type, i, record});
      if (field.what != sort::messages || (naive::presence_of(type, record) >> i & 1) == 0) continue;
      const std::uint64_t count = naive::count_of(field, record);
      unsigned char *const array = naive::pointer_at(record + field.offset);
      for (std::uint64_t e = 0; e < count && e < 4; ++e) find(*field.nested, array + e * field.nested->size, out);
    }
  }

  static std::size_t varint_size(std::uint64_t value) { return value < 128 ? 1 : 1 + varint_size(value / 128); }

  void lengthen(const growing &place, std::size_t more) {
    const member &field = place.field();
    if (field.what == sort::text) return naive::set_pointer(place.at(), text_of(more));
    if (field.what == sort::bytes) {
      naive::set_pointer(place.at(), text_of(more));
      return naive::store(place.record + field.count_offset, 8, std::min(more, longest_text));
    }
    const std::size_t key = varint_size((place.index + 1) * 8), element = field.element_size();
    std::size_t count;
    unsigned char *array;
    if (field.what == sort::numbers) {
      const std::uint64_t value = field.width == 1 ? dice_.byte() : dice_.number() & 0xffffffff;
      const bool alike = dice_.percent(70);
      count = more / (key + varint_size(value)) + dice_.below(3);
      array = blocks().take(count * element);
      for (std::size_t i = 0; i < count; ++i) {
        naive::store(array + i * element, field.width, alike || dice_.percent(95) ? value : dice_.number());
      }
    } else {
      const bool some = naive::count_of(field, place.record) != 0;
      const std::vector<unsigned char> empty(element);
      const unsigned char *const one = some ? naive::pointer_at(place.at()) : empty.data();
      const std::uint64_t inner = naive::encoding::of(*field.nested, one, trial_.referenced).length();
      if (inner > more) return;
      count = more / (key + varint_size(inner) + static_cast<std::size_t>(inner)) + dice_.below(3);
      array = blocks().take(count * element);
      for (std::size_t i = 0; i < count; ++i) std::memcpy(array + i * element, one, element);
    }
    naive::set_pointer(place.at(), array);
    naive::store(place.record + field.count_offset, 4, count);
  }

  dice dice_;
  const trial &trial_;
};

constexpr unsigned char untouched = 0xc7;

// A call with a buffer of a length, or none, and a table of a capacity, or without a count.
struct call {
  static constexpr std::size_t no_buffer = SIZE_MAX;
  static constexpr std::uint32_t no_count = UINT32_MAX;
  std::size_t length;
  std::uint32_t capacity;
};

void check(const trial &trial, const unsigned char *record, const naive::encoding &expected, const call &how,
           std::uint32_t options) {
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
      record, has_buffer ? buffer : nullptr, has_buffer ? length : trial.number,
      table_size != 0 ? reinterpret_cast<pavo_zorv_segment *>(table) : nullptr, has_count ? &count : nullptr, options);

  FUZZ_CHECK(trial, size == (expected.has_size() ? expected.length() : SIZE_MAX));
  FUZZ_CHECK(trial, !has_count || count == expected.entries());
  for (std::size_t i = 0; i < before; ++i) FUZZ_CHECK(trial, start[i] == fill);
  const std::size_t written = expected.has_size() ? length : 0;
  FUZZ_CHECK(trial, expected.in_buffer(written, fill) == std::vector<unsigned char>(buffer, buffer + written));
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
  const unsigned char *const input = input_room().holding(trial, trial.bytes, trial.length);
  expected source(trial, input, trial.length);
  unsigned char *const record = source.record.data();
  blocks().reset();
  alteration alteration(trial);
  if ((trial.choice & 2) != 0) alteration.fill(*trial.type, record);
  if ((trial.choice & 1) != 0) alteration.alter(*trial.type, record);
  if (trial.choice >= 12) alteration.lengthen(*trial.type, record);
  const fuzz::record before = source.record;

  const naive::encoding expected = naive::encoding::of(*trial.type, record, trial.referenced);
  // Of the options, the other bits mean nothing.
  const std::uint32_t options = trial.options() | (trial.extra * 0x01010101u & ~std::uint32_t{PAVO_ZORV_REFERENCE});
  const auto entries = static_cast<std::uint32_t>(expected.entries());
  const std::uint32_t some = (trial.number >> 4) % (entries + 2);
  // A buffer that is long enough, or one of which nothing is missed but its end.
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
  FUZZ_CHECK(trial, std::memcmp(before.data(), source.record.data(), trial.type->size) == 0);
}

}  // namespace fuzz
