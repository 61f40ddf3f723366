// Laws of encodings longer than memory: records with random bytes members of any 64-bit length, held against a model
// that counts and never copies.
#include <algorithm>

#include "laws.hpp"

namespace test {

namespace {

// An encoding as numbers, and the bytes of it that stand in a short buffer.
class counted_encoding {
 public:
  struct entry {
    std::uint64_t message_start;  // of the message, or of the one whose rest this is
    std::uint64_t position;       // of the rest within its message
    const unsigned char *block;   // referenced bytes, or null
    std::uint64_t length;
  };

  // At a position of the outermost encoding.
  counted_encoding(view record, bool referenced, std::size_t room, std::uint64_t start = 0)
      : start_(start), room_(room) {
    std::uint64_t split = 0;
    bool is_split = false;
    for (const field &field : record.type().fields) {
      const bool present = record.has(field);
      switch (field.kind) {
        case kind::flag:
          if (!present) break;
          key(field.number, 0);
          put(static_cast<unsigned char>(record.number(field)));
          break;
        case kind::integer:
          if (!present) break;
          key(field.number, 0);
          varint(record.number(field));
          break;
        case kind::string:
          if (!present || record.pointer(field) == nullptr) break;
          key(field.number, 2);
          varint(std::strlen(record.text(field)));
          block(record.pointer(field), std::strlen(record.text(field)));
          break;
        case kind::bytes:
          if (!present) break;
          key(field.number, 2);
          varint(static_cast<std::uint32_t>(record.count(field)));
          if (!referenced) {
            block(record.pointer(field), record.count(field));
          } else if (record.count(field) != 0) {
            is_split = true;
            split = length;
            entries.push_back({start_, 0, nullptr, split});
            entries.push_back({0, 0, record.pointer(field), record.count(field)});
          }
          break;
        case kind::nested:
          nested(field.number, record.nested(field), referenced, present);
          break;
        case kind::integer_list:
          for (std::uint64_t i = 0; present && i < record.count(field); ++i) {
            key(field.number, 0);
            varint(record.element_number(field, i));
          }
          break;
        case kind::message_list:
          for (std::uint64_t i = 0; present && i < record.count(field); ++i)
            nested(field.number, record.element(field, i), referenced, true);
          break;
      }
    }
    const bool is_empty = length == 0 && !overflows;
    if (!is_split && !is_empty) entries.push_back({start_, 0, nullptr, length});
    if (is_split && length != split) entries.push_back({start_, split, nullptr, length - split});
  }

  bool fits_size() const { return !overflows && length <= SIZE_MAX; }

  std::uint64_t length = 0;
  bool overflows = false;  // 64 bits
  std::vector<std::pair<std::size_t, unsigned char>> written;
  std::vector<entry> entries;

 private:
  void add(std::uint64_t size) {
    length += size;
    overflows = overflows || length < size;
  }
  void put(unsigned char byte) {
    if (start_ + length < room_) written.emplace_back(static_cast<std::size_t>(start_ + length), byte);
    add(1);
  }
  void varint(std::uint64_t value) {
    for (; value >= 128; value /= 128) put(static_cast<unsigned char>(value % 128 + 128));
    put(static_cast<unsigned char>(value));
  }
  void key(unsigned number, unsigned wire_type) { varint(number * 8 + wire_type); }

  // Whole or not at all.
  void block(const unsigned char *from, std::uint64_t size) {
    const std::uint64_t position = start_ + length;
    if (from == nullptr || position > room_ || size > room_ - position) return add(size);
    for (std::uint64_t i = 0; i < size; ++i) put(from[i]);
  }

  void nested(unsigned number, view record, bool referenced, bool present) {
    const counted_encoding measured(record, referenced, 0);
    if (!present && measured.length == 0 && !measured.overflows) return;
    key(number, 2);
    varint(static_cast<std::uint32_t>(measured.length));
    const counted_encoding inner(record, referenced, room_, start_ + length);
    written.insert(written.end(), inner.written.begin(), inner.written.end());
    entries.insert(entries.end(), inner.entries.begin(), inner.entries.end());
    overflows = overflows || inner.overflows;
    add(inner.length);
  }

  std::uint64_t start_;
  std::size_t room_;
};

bool holds_bytes(const message_type &type) {
  return std::any_of(type.fields.begin(), type.fields.end(), [](const field &field) {
    return field.kind == kind::bytes || (field.nested != nullptr && holds_bytes(*field.nested));
  });
}

std::vector<const message_type *> subjects_with_bytes() {
  std::vector<const message_type *> result;
  for (const message_type *const type : subjects()) {
    if (holds_bytes(*type)) result.push_back(type);
  }
  return result;
}

// Lengths near those at which sums and casts wrap, with 32 bits and with 64.
std::uint64_t any_length(dice &dice) {
  constexpr std::uint64_t halves[] = {0, std::uint64_t{1} << 31, std::uint64_t{1} << 32, std::uint64_t{1} << 62,
                                      std::uint64_t{1} << 63};
  const std::uint64_t few = dice.below(80);
  switch (dice.below(5)) {
    case 0:
      return dice.number();
    case 1:
      return halves[dice.below(std::size(halves))] - few;
    case 2:
      return halves[dice.below(std::size(halves))] + few;
    case 3:
      return SIZE_MAX - dice.below(16);
    default:
      return few % 12;
  }
}

// Gives every bytes member a length, and a block as long only where memory may hold it.
void make_huge(view record, dice &dice, arena &arena) {
  for (const field &field : record.type().fields) {
    if (field.kind == kind::bytes) {
      const std::uint64_t length = any_length(dice);
      // What may fit into the scratch buffer is read, whatever becomes of it.
      const std::size_t size = length < 20000 ? static_cast<std::size_t>(length) : 1;
      auto *const block = arena.array<unsigned char>(size);
      for (std::size_t i = 0; i < size; ++i) block[i] = dice.byte();
      record.set_has(field, dice.percent(90));
      record.set_count(field, length);
      record.set_pointer(field, dice.percent(40) ? nullptr : block);
    } else if (field.kind == kind::nested) {
      make_huge(record.nested(field), dice, arena);
    } else if (field.kind == kind::message_list && record.pointer(field) != nullptr) {
      for (std::uint64_t i = 0; i < record.count(field); ++i) make_huge(record.element(field, i), dice, arena);
    }
  }
}

}  // namespace

class huge_laws : public law {};
INSTANTIATE_TEST_SUITE_P(every, huge_laws, testing::ValuesIn(subjects_with_bytes()), name_of_subject);

TEST_P(huge_laws, totals_are_exact_or_nothing_is_touched) {
  std::uint64_t beyond = 0, large = 0;
  for_seeds(3000, [&](dice &dice) {
    const random_record record(*GetParam(), dice, recipes::encodable);
    arena blocks;
    make_huge(record, dice, blocks);
    const std::size_t room = static_cast<std::size_t>(dice.below(80));
    for (const std::uint32_t options : GetParam()->modes()) {
      const counted_encoding model(record, is_referenced(options), room);
      const std::size_t length = model.fits_size() ? static_cast<std::size_t>(model.length) : SIZE_MAX;
      beyond += !model.fits_size();
      large += model.fits_size() && model.length > SIZE_MAX / 2;
      ASSERT_EQ(measured(record, options), length);

      byte_string expected(room, 0xc7);
      for (const auto &[position, byte] : model.written) expected[position] = byte;
      if (!model.fits_size()) expected.assign(room, 0xc7);
      const fenced_block plain(room), listed(room);
      ASSERT_EQ(GetParam()->encode(record.data(), plain.data(), room, nullptr, nullptr, options), length);
      EXPECT_EQ(plain.content(), expected);

      const auto capacity = static_cast<std::uint32_t>(dice.below(model.entries.size() + 2));
      table segments(capacity);
      ASSERT_EQ(GetParam()->encode(record.data(), listed.data(), room, segments.entries(), &segments.count, options),
                length);
      EXPECT_EQ(listed.content(), expected);
      EXPECT_EQ(segments.count, model.entries.size());
      const std::size_t filled = model.fits_size() ? std::min<std::size_t>(capacity, model.entries.size()) : 0;
      for (std::size_t i = 0; i < filled; ++i) {
        const counted_encoding::entry &entry = model.entries[i];
        const bool in_buffer = entry.message_start == 0 || entry.message_start < room;
        const auto base = in_buffer ? reinterpret_cast<std::uintptr_t>(listed.data()) + entry.message_start : 0;
        const auto *const start =
            entry.block != nullptr
                ? entry.block
                : reinterpret_cast<const unsigned char *>(static_cast<std::uintptr_t>(base + entry.position));
        // A referenced block that is null looks like a message at 0.
        if (entry.block != nullptr || segments.entries()[i].start != nullptr) {
          EXPECT_EQ(segments.entries()[i].start, start) << "entry " << i;
        }
        EXPECT_EQ(segments.entries()[i].length, entry.length) << "entry " << i;
      }
      EXPECT_TRUE(segments.untouched_from(static_cast<std::uint32_t>(filled)));
    }
  });
  if (is_tried_in_full()) {
    EXPECT_GT(beyond, 20u) << "totals that size_t cannot hold";
    EXPECT_GT(large, 20u) << "totals of more than half of what it holds";
  }
}

}  // namespace test
