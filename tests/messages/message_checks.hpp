// What every message is put through in the same way: the kinds of its fields on the wire, their bytes one by one and
// together, short buffers and tables, memory that is not to be had, and the order of comparison. What is expected is
// written out by each message's own tests.
#pragma once

#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

#include "message_table.hpp"
#include "naive/encoder.hpp"
#include "naive/view.hpp"
#include "support.hpp"

namespace test::checks {

// What fails here is a check of every message; this names the test that made it.
class names_the_test : public testing::EmptyTestEventListener {
  void OnTestEnd(const testing::TestInfo &test) override {
    if (test.result()->Failed()) std::printf("%s:%d: this test has failed\n", test.file(), test.line());
  }
};
inline const bool tests_are_named = (testing::UnitTest::GetInstance()->listeners().Append(new names_the_test), true);

// --- Presence ---

// How many fields tests/naive/messages.hpp states for a message: there is a word for each.
constexpr unsigned stated_fields(std::string_view message) {
  for (const naive::statement &one : naive::statements) {
    const std::string_view fields = one.fields;
    if (message == one.message) return 1 + static_cast<unsigned>(std::count(fields.begin(), fields.end(), ' '));
  }
  return 0;
}

template <class Record>
inline constexpr unsigned field_count = stated_fields(operations<Record>::name);

// The presence bits that belong to fields; a decoded record has rubbish in the others.
template <class Record>
std::uint32_t bits(const Record &record) {
  static_assert(field_count<Record> != 0, "a message that tests/naive/messages.hpp does not state");
  return record.presence & static_cast<std::uint32_t>((std::uint64_t{1} << field_count<Record>)-1);
}

template <class Record>
void set_bits(Record &record, std::uint32_t value) {
  record.presence = static_cast<decltype(record.presence)>(value);
}

template <class Record>
constexpr std::uint32_t all_bits() {
  return static_cast<std::uint32_t>((std::uint64_t{1} << field_count<Record>)-1);
}

// --- Comparing as the C library does, at run time: the compiler must not fold these. What they give, but for its sign,
// may depend on where the bytes lie, so they get those that the library has. ---

inline int (*volatile string_order)(const char *, const char *) = std::strcmp;
inline int (*volatile byte_order)(const void *, const void *, std::size_t) = std::memcmp;

// --- Calls ---

// One encoding call with a buffer of a size and a table of a capacity.
struct encoding_call {
  encoding_call(naive::view record, std::size_t size, std::uint32_t capacity, std::uint32_t options = 0)
      : buffer(size),
        segments(capacity),
        length(record.type().functions->encode(record.data(), buffer.data(), size, segments.entries(), &segments.count,
                                               options)) {}

  const unsigned char *at(std::size_t position) const { return buffer.data() + position; }

  fenced_block buffer;
  table segments;
  std::size_t length;
};

template <class Record>
struct encoding : encoding_call {
  encoding(const Record &record, std::size_t size, std::uint32_t capacity, std::uint32_t options = 0)
      : encoding_call(naive::view_of(record), size, capacity, options) {}
};

// Notes what is released, without releasing it: for records that a test made by hand.
struct notebook {
  std::vector<void *> released;
  static void note(void *block, void *context) { static_cast<notebook *>(context)->released.push_back(block); }
};

// --- Records of any message, known by the naive statement of it: what follows is compiled once, not for each ---

inline std::uint32_t bits(naive::view record) { return record.presence() & record.type().mask(); }

inline const calls &functions_of(naive::view record) { return *record.type().functions; }

inline int compare(naive::view a, naive::view b) { return functions_of(a).compare(a.data(), b.data()); }

inline byte_string encoded(naive::view record, std::uint32_t options = 0) {
  const auto encode = functions_of(record).encode;
  const std::size_t length = encode(record.data(), nullptr, 0, nullptr, nullptr, options);
  const fenced_block buffer(length);
  EXPECT_EQ(encode(record.data(), buffer.data(), length, nullptr, nullptr, options), length);
  return buffer.content();
}

// A record that is decoded or copied, as a view.
struct filled_record : owned_record {
  filled_record(const naive::message &type, const byte_string &bytes, std::uint32_t options = 0)
      : owned_record(*type.functions, options), view(type, data()) {
    decode(bytes);
  }
  explicit filled_record(naive::view source, const failing_requests &failing = {})
      : owned_record(functions_of(source)), view(source.type(), data()) {
    memory.fail(failing);
    copy(source.data());
  }
  naive::view view;
};

// A record that is only bytes, and owns nothing.
struct plain_record : record_block {
  explicit plain_record(const naive::message &type, unsigned char fill = 0x5a)
      : record_block(type.size, fill), view(type, data()) {}
  explicit plain_record(naive::view source) : plain_record(source.type()) {
    std::memcpy(data(), source.data(), size());
  }
  naive::view view;
};

inline int result_of(const naive::message &type, const byte_string &bytes) { return filled_record(type, bytes).result; }

inline int result_without_memory(const naive::message &type, const byte_string &bytes) {
  const fenced_block input(bytes);
  plain_record record(type);
  return type.functions->decode(record.data(), input.data(), input.size(), nullptr, nullptr, 0);
}

// --- Fields ---

// Where a member is in the record.
struct place {
  std::size_t offset, size;
};

// A field of a message under test: the places of its members, and its bytes in a record of which every field is known.
struct field {
  std::vector<place> places;
  byte_string bytes;

  void take(naive::view to, naive::view from) const {
    for (const place &each : places) std::memcpy(to.data() + each.offset, from.data() + each.offset, each.size);
  }
};

template <class Record>
using fields = std::vector<field>;

template <class Record, class... Members>
std::vector<place> take(Members Record::*...members) {
  static const Record record{};
  const auto offset_of = [](const void *member) {
    return static_cast<std::size_t>(static_cast<const char *>(member) - reinterpret_cast<const char *>(&record));
  };
  return {{offset_of(&(record.*members)), sizeof(Members)}...};
}

inline byte_string together(const std::vector<field> &all) {
  byte_string result;
  for (const field &each : all) result = result + each.bytes;
  return result;
}

inline bool needs_memory(const naive::member &member) {
  return !member.is_scalar() && member.kind != naive::kind::nested;
}

// Of this value each width keeps another part: 64 bits all of it, 32 bits 0xffffff2c, 8 bits 0x2c; a flag only that it
// is not 0.
constexpr std::uint64_t too_wide = 0xffffffffffffff2c;

// What is written of it again, by the member that it was read into.
inline std::uint64_t kept_by(const naive::member &member) {
  if (member.kind == naive::kind::flag) return 1;
  return member.width == 1 ? 0x2c : member.width == 4 ? 0xffffff2c : too_wide;
}

// The wire types of the fields, of their second occurrences and of unknown fields, with and without memory. What each
// field is, the statement of the messages says that is kept by hand.
inline void fields_are_of_kinds(const naive::message &type) {
  const byte_string unknown = varint_field(30, 0);
  for (const naive::member &member : type.members) {
    const unsigned number = member.number;
    SCOPED_TRACE("field " + std::to_string(number));
    for (unsigned wire_type = 0; wire_type < 8; ++wire_type) {
      if (wire_type == member.wire_type()) continue;
      SCOPED_TRACE("wire type " + std::to_string(wire_type));
      EXPECT_EQ(result_of(type, key(number, wire_type)), CODEC_ERR_WRONG_WIRE_TYPE);
      EXPECT_EQ(result_without_memory(type, key(number, wire_type)), CODEC_ERR_WRONG_WIRE_TYPE);
    }
    const byte_string own = key(number, member.wire_type());
    EXPECT_EQ(result_of(type, own), CODEC_ERR_TRUNCATED);
    EXPECT_EQ(result_without_memory(type, own), needs_memory(member) ? CODEC_ERR_NO_MEMORY : CODEC_ERR_TRUNCATED);
    EXPECT_EQ(result_of(type, own + hex("80")), CODEC_ERR_TRUNCATED);
    EXPECT_EQ(result_of(type, own + hex("00")), CODEC_OK);
    switch (member.wire()) {
      case naive::wire::varint: {
        const filled_record record(type, own + varint(too_wide));
        EXPECT_EQ(record.result, CODEC_OK);
        EXPECT_EQ(show(encoded(record.view)), show(own + varint(kept_by(member))));
        break;
      }
      case naive::wire::delimited:
        EXPECT_EQ(result_of(type, own + hex("01")), CODEC_ERR_TRUNCATED);
        EXPECT_EQ(result_of(type, own + hex("ff ff ff ff 0f 00")), CODEC_ERR_TRUNCATED);
        break;
    }
    const byte_string twice = own + hex("00") + unknown + own + hex("00");
    EXPECT_EQ(result_of(type, twice), needs_memory(member) ? CODEC_ERR_TRUNCATED : CODEC_OK);
    const byte_string next = own + hex("00") + own + hex("00");
    EXPECT_EQ(result_of(type, next), needs_memory(member) && !member.is_list() ? CODEC_ERR_TRUNCATED : CODEC_OK);
    EXPECT_EQ(result_of(type, own + hex("00") + unknown + key(number, 5)), CODEC_ERR_WRONG_WIRE_TYPE);
  }
  for (const unsigned number : {0u, static_cast<unsigned>(type.members.size()) + 1, 100u}) {
    SCOPED_TRACE("unknown field " + std::to_string(number));
    for (const unsigned wire_type : {3u, 4u, 6u, 7u}) {
      EXPECT_EQ(result_without_memory(type, key(number, wire_type)), CODEC_ERR_BAD_WIRE_TYPE);
    }
    for (const byte_string &skipped : {key(number, 0) + hex("80 01"), key(number, 1) + 8 * hex("ff"),
                                       key(number, 2) + hex("02 ff ff"), key(number, 5) + 4 * hex("ff")}) {
      EXPECT_EQ(result_without_memory(type, skipped), CODEC_OK);
      const filled_record record(type, skipped);
      EXPECT_EQ(bits(record.view), 0u);
      EXPECT_EQ(show(encoded(record.view)), "");
      EXPECT_EQ(record.memory.requests(), 0u);
    }
  }
}

template <class Record>
void fields_are_of_kinds() {
  ASSERT_EQ(naive::message_of<Record>().members.size(), field_count<Record>);
  fields_are_of_kinds(naive::message_of<Record>());
}

// Each field alone, all together and in reverse, written and read; without its bit only a nested message is written.
inline void goes_to_the_wire_and_back(naive::view whole, const std::vector<field> &all) {
  const naive::message &type = whole.type();
  ASSERT_EQ(all.size(), type.members.size());
  byte_string reversed, nested;
  for (std::size_t index = 0; index < all.size(); ++index) {
    SCOPED_TRACE("field " + std::to_string(index + 1));
    const std::uint32_t bit = std::uint32_t{1} << index;
    const plain_record alone(type, 0);
    all[index].take(alone.view, whole);
    alone.view.set_presence(bit);
    EXPECT_EQ(show(encoded(alone.view)), show(all[index].bytes));
    const filled_record read(type, all[index].bytes);
    EXPECT_EQ(read.result, CODEC_OK);
    EXPECT_EQ(bits(read.view), bit);
    EXPECT_EQ(show(encoded(read.view)), show(all[index].bytes));
    alone.view.set_presence(0);
    const bool is_nested = type.members[index].kind == naive::kind::nested;
    EXPECT_EQ(show(encoded(alone.view)), is_nested ? show(all[index].bytes) : "");
    if (is_nested) nested = nested + all[index].bytes;
    reversed = all[index].bytes + reversed;
  }
  EXPECT_EQ(bits(whole), type.mask());
  EXPECT_EQ(show(encoded(whole)), show(together(all)));
  for (const byte_string &bytes : {together(all), reversed}) {
    const filled_record read(type, bytes);
    EXPECT_EQ(read.result, CODEC_OK);
    EXPECT_EQ(bits(read.view), type.mask());
    EXPECT_EQ(compare(read.view, whole), 0);
    EXPECT_EQ(show(encoded(read.view)), show(together(all)));
  }
  const plain_record unmarked(whole);
  unmarked.view.set_presence(0);
  EXPECT_EQ(show(encoded(unmarked.view)), show(nested));
}

template <class Record>
void goes_to_the_wire_and_back(const Record &whole, const fields<Record> &all) {
  goes_to_the_wire_and_back(naive::view_of(whole), all);
}

// --- Memory ---

// One request for memory, made when a whole record is decoded and when it is copied.
struct request {
  std::size_t size;
  std::size_t field;           // the field that it is for, from 1
  byte_string copied_without;  // what is written of that field when a copy does not get it
  byte_string read_without;    // what is written of that field when decoding ends there
  std::size_t inner = 0;       // the requests after it that are then not made
};

inline std::vector<std::size_t> sizes_of(const std::vector<request> &requests) {
  std::vector<std::size_t> result;
  for (const request &each : requests) result.push_back(each.size);
  return result;
}

// Which memory decoding and copying ask for, in which order, and what is left when one request, or every one, fails.
inline void asks_for_memory(naive::view whole, const std::vector<field> &all, const std::vector<request> &requests,
                            const byte_string &copied_without_memory) {
  const naive::message &type = whole.type();
  const calls &functions = *type.functions;
  const byte_string bytes = together(all);
  {
    const filled_record read(type, bytes);
    EXPECT_EQ(read.memory.sizes, sizes_of(requests));
    EXPECT_EQ(read.memory.live(), requests.size());
    const filled_record copy(whole);
    EXPECT_EQ(copy.result, CODEC_OK);
    EXPECT_EQ(copy.memory.sizes, sizes_of(requests));
    EXPECT_EQ(copy.memory.live(), requests.size());
    EXPECT_EQ(bits(copy.view), bits(whole));
    EXPECT_EQ(show(encoded(copy.view)), show(bytes));
    EXPECT_EQ(compare(copy.view, whole), 0);
  }
  for (std::size_t index = 0; index < requests.size(); ++index) {
    SCOPED_TRACE("request " + std::to_string(index));
    const request &failing = requests[index];
    byte_string before, copied_bytes;
    for (std::size_t i = 0; i < all.size(); ++i) {
      if (i + 1 < failing.field) before = before + all[i].bytes;
      copied_bytes = copied_bytes + (i + 1 == failing.field ? failing.copied_without : all[i].bytes);
    }

    accountant memory;
    memory.fail_at = index;
    const fenced_block input(bytes);
    plain_record record(type);
    EXPECT_EQ(functions.decode(record.data(), input.data(), input.size(), accountant::allocate, &memory, 0),
              CODEC_ERR_NO_MEMORY);
    EXPECT_EQ(memory.requests(), index + 1);
    EXPECT_EQ(bits(record.view), (std::uint32_t{1} << (failing.field - 1)) - 1);
    EXPECT_EQ(show(encoded(record.view)), show(before + failing.read_without));
    functions.free(record.data(), accountant::release, &memory, 0);
    EXPECT_EQ(memory.live(), 0u);

    const filled_record copy(whole, {.fail_at = index});
    EXPECT_EQ(copy.result, CODEC_ERR_NO_MEMORY);
    std::vector<std::size_t> sizes = sizes_of(requests);
    const auto after = sizes.begin() + static_cast<std::ptrdiff_t>(index) + 1;
    sizes.erase(after, after + static_cast<std::ptrdiff_t>(failing.inner));
    EXPECT_EQ(copy.memory.sizes, sizes);
    EXPECT_EQ(show(encoded(copy.view)), show(copied_bytes));
  }
  {
    const filled_record copy(whole, {.fail_from = 0});
    EXPECT_EQ(copy.result, requests.empty() ? CODEC_OK : CODEC_ERR_NO_MEMORY);
    EXPECT_EQ(show(encoded(copy.view)), show(copied_without_memory));
    plain_record without(type);
    EXPECT_EQ(functions.duplicate(without.data(), whole.data(), nullptr, nullptr), copy.result);
    EXPECT_EQ(show(encoded(without.view)), show(copied_without_memory));
    EXPECT_EQ(bits(without.view), bits(copy.view));
  }
}

template <class Record>
void asks_for_memory(const Record &whole, const fields<Record> &all, const std::vector<request> &requests,
                     const byte_string &copied_without_memory) {
  asks_for_memory(naive::view_of(whole), all, requests, copied_without_memory);
}

// --- Buffers and tables ---

// Where a string or bytes value lies in an encoding.
struct block {
  std::string name;  // the way to the field, as of an entry
  std::size_t position, length;
};

// The names of those in a record that are not empty, in order.
inline std::vector<std::string> block_names(naive::view record, bool is_referenced, const std::string &way = "") {
  const pavo_zorv::message_info &schema = *pavo_zorv::find_message(record.type().name);
  std::vector<std::string> names;
  const auto add = [&](naive::view inner, const std::string &step) {
    const std::vector<std::string> more = block_names(inner, is_referenced, step + ".");
    names.insert(names.end(), more.begin(), more.end());
  };
  for (const naive::member &member : record.type().members) {
    const std::string name = way + schema.fields[member.number - 1].name;
    if (member.kind == naive::kind::nested) add(record.nested(member), name);
    if (!record.has(member)) continue;
    for (std::uint64_t i = 0; member.kind == naive::kind::message_list && i < record.count(member); ++i) {
      add(record.element(member, i), name + "[" + std::to_string(i) + "]");
    }
    const bool is_text = member.kind == naive::kind::string && record.text(member) != nullptr;
    const bool is_bytes = member.kind == naive::kind::bytes && !is_referenced && record.pointer(member) != nullptr;
    if ((is_text && *record.text(member) != '\0') || (is_bytes && record.count(member) != 0)) names.push_back(name);
  }
  return names;
}

// Into a short buffer goes what fits; a string or bytes value that does not fit whole is left out.
inline void fills_short_buffers(naive::view record, const byte_string &bytes, const std::vector<block> &blocks,
                                std::uint32_t options) {
  std::vector<std::string> names;
  for (const block &each : blocks) names.push_back(each.name);
  EXPECT_EQ(names, block_names(record, options != 0));
  for (std::size_t size = 0; size <= bytes.size() + 1 && !testing::Test::HasFailure(); ++size) {
    SCOPED_TRACE("buffer of " + std::to_string(size));
    const fenced_block buffer(size);
    EXPECT_EQ(functions_of(record).encode(record.data(), buffer.data(), size, nullptr, nullptr, options), bytes.size());
    byte_string expected = bytes;
    expected.resize(size, 0xc7);
    for (const block &each : blocks) {
      const std::size_t end = each.position + each.length;
      if (end <= size) continue;
      for (std::size_t i = each.position; i < size; ++i) {
        if (i < end) expected[i] = 0xc7;
      }
    }
    EXPECT_EQ(show(buffer.content()), show(expected));
  }
}

template <class Record>
void fills_short_buffers(const Record &record, const byte_string &bytes, const std::vector<block> &blocks,
                         std::uint32_t options = 0) {
  fills_short_buffers(naive::view_of(record), bytes, blocks, options);
}

// An entry of the table: which message it is of, its position in the encoding, or a block outside of it, and a length.
// The entry of what follows a referenced block has that many bytes of its message before it.
struct entry {
  std::string name;  // of the whole message its type, of those in it the way there: "policies[0].prefixes[1]"
  std::size_t position;
  std::uint64_t length;
  const unsigned char *outside = nullptr;
  std::size_t before = 0;
};

inline entry referenced(const std::string &name, const unsigned char *block, std::uint64_t length) {
  return {name, 0, length, block};
}
inline entry rest(const std::string &name, std::size_t position, std::uint64_t length, std::size_t before) {
  return {"rest of " + name, position, length, nullptr, before};
}

// The names that the entries of a record have, by the naive encoder and the names of the fields.
inline std::vector<std::string> entry_names(naive::view record, bool is_referenced, const std::string &way = "") {
  const pavo_zorv::message_info &schema = *pavo_zorv::find_message(record.type().name);
  const std::string name = way.empty() ? schema.name : way;
  const std::size_t all = naive::encoding(record, is_referenced).entries();
  std::vector<std::string> names;
  const auto add = [&](naive::view inner, const std::string &step) {
    const std::vector<std::string> more = entry_names(inner, is_referenced, way.empty() ? step : way + "." + step);
    names.insert(names.end(), more.begin(), more.end());
  };
  for (const naive::member &member : record.type().members) {
    const std::string step = schema.fields[member.number - 1].name;
    if (member.kind == naive::kind::nested) add(record.nested(member), step);
    for (std::uint64_t i = 0; member.kind == naive::kind::message_list && i < record.count(member); ++i) {
      if (record.has(member)) add(record.element(member, i), step + "[" + std::to_string(i) + "]");
    }
    if (member.kind == naive::kind::bytes && is_referenced && record.has(member) && record.count(member) != 0) {
      names.push_back(name);
      names.push_back(way.empty() ? step : way + "." + step);
    }
  }
  const bool is_split = std::find(names.begin(), names.end(), name) != names.end();
  if (names.size() < all) names.push_back(is_split ? "rest of " + name : name);
  return names;
}

// What an entry says for a buffer of a size: a message after its end has no start.
inline piece expected_piece(const entry &each, const unsigned char *buffer, std::size_t size) {
  if (each.outside != nullptr) return {each.outside, each.length};
  const std::size_t message = each.position - each.before;
  const unsigned char *const start = message == 0 || message < size ? buffer : nullptr;
  const std::size_t offset = start != nullptr ? each.position : each.before;
  return {reinterpret_cast<const unsigned char *>(reinterpret_cast<std::uintptr_t>(start) + offset), each.length};
}

// The entries of an encoding, whatever the capacity of the table and the size of the buffer.
inline void takes_entries(naive::view record, const std::vector<entry> &entries, std::uint32_t options) {
  std::vector<std::string> names;
  for (const entry &each : entries) names.push_back(each.name);
  EXPECT_EQ(names, entry_names(record, options != 0));
  const auto encode = functions_of(record).encode;
  const auto needed = static_cast<std::uint32_t>(entries.size());
  const byte_string bytes = encoded(record, options);
  // What is wrong for one capacity or one buffer is wrong for most, and shown once.
  for (std::uint32_t capacity = 0; capacity <= needed + 1 && !testing::Test::HasFailure(); ++capacity) {
    SCOPED_TRACE("capacity " + std::to_string(capacity));
    const encoding_call call(record, bytes.size(), capacity, options);
    EXPECT_EQ(call.length, bytes.size());
    EXPECT_EQ(show(call.buffer.content()), show(bytes));
    EXPECT_EQ(call.segments.count, needed);
    const std::uint32_t written = std::min(needed, capacity);
    std::vector<piece> pieces;
    for (std::uint32_t i = 0; i < written; ++i) {
      pieces.push_back(expected_piece(entries[i], call.buffer.data(), bytes.size()));
    }
    EXPECT_EQ(call.segments.pieces(), pieces);
    EXPECT_TRUE(call.segments.untouched_from(written));
  }
  for (std::size_t size = 0; size < bytes.size() && !testing::Test::HasFailure(); ++size) {
    SCOPED_TRACE("buffer of " + std::to_string(size));
    const encoding_call call(record, size, needed, options);
    std::vector<piece> pieces;
    for (const entry &each : entries) pieces.push_back(expected_piece(each, call.buffer.data(), size));
    EXPECT_EQ(call.segments.pieces(), pieces);
  }

  table measured(needed);
  EXPECT_EQ(encode(record.data(), nullptr, 0, measured.entries(), &measured.count, options), bytes.size());
  EXPECT_EQ(measured.count, needed);
  std::vector<piece> pieces;
  for (const entry &each : entries) pieces.push_back(expected_piece(each, nullptr, 0));
  EXPECT_EQ(measured.pieces(), pieces);

  const fenced_block buffer(bytes.size());
  std::uint32_t count = 99;
  EXPECT_EQ(encode(record.data(), buffer.data(), bytes.size(), nullptr, &count, options), bytes.size());
  EXPECT_EQ(count, needed);
  const table unused(needed + 1);
  EXPECT_EQ(encode(record.data(), buffer.data(), bytes.size(), unused.entries(), nullptr, options), bytes.size());
  EXPECT_TRUE(unused.untouched_from(0));
  EXPECT_EQ(show(buffer.content()), show(bytes));
}

template <class Record>
void takes_entries(const Record &record, const std::vector<entry> &entries, std::uint32_t options = 0) {
  takes_entries(naive::view_of(record), entries, options);
}

// --- Order ---

// Every field of `higher` is greater than that of `lower`; the first that differs decides, presence before values, and
// fields absent on both sides are not looked at.
inline void orders_field_by_field(naive::view lower, naive::view higher, const std::vector<field> &all) {
  EXPECT_EQ(compare(lower, lower), 0);
  EXPECT_LT(compare(lower, higher), 0);
  for (std::size_t index = 0; index < all.size(); ++index) {
    SCOPED_TRACE("field " + std::to_string(index + 1));
    const plain_record greater(lower), later_greater(lower);
    all[index].take(greater.view, higher);
    for (std::size_t later = index + 1; later < all.size(); ++later) all[later].take(later_greater.view, higher);
    EXPECT_GT(compare(greater.view, later_greater.view), 0);
    EXPECT_LT(compare(later_greater.view, greater.view), 0);

    const std::uint32_t without = lower.type().mask() & ~(std::uint32_t{1} << index);
    const plain_record absent(later_greater.view);
    all[index].take(absent.view, higher);
    absent.view.set_presence(without);
    EXPECT_EQ(compare(lower, absent.view), 1);
    EXPECT_EQ(compare(absent.view, lower), -1);

    const plain_record absent_too(lower);
    absent_too.view.set_presence(without);
    greater.view.set_presence(without);
    EXPECT_EQ(compare(absent_too.view, greater.view), 0);
  }
}

template <class Record>
void orders_field_by_field(const Record &lower, const Record &higher, const fields<Record> &all) {
  orders_field_by_field(naive::view_of(lower), naive::view_of(higher), all);
}

// --- Presence bits of no field ---

// A record of one byte repeated, after decoding nothing into it.
template <class Record>
Record cleared_from(unsigned char fill) {
  Record record;
  std::memset(static_cast<void *>(&record), fill, sizeof record);
  EXPECT_EQ(operations<Record>::decode(&record, nullptr, 0, nullptr, nullptr), CODEC_OK);
  return record;
}

// A record of one byte repeated, after copying another into it.
template <class Record>
Record overwritten(unsigned char fill, const Record &source) {
  Record record;
  std::memset(static_cast<void *>(&record), fill, sizeof record);
  EXPECT_EQ(operations<Record>::duplicate(&record, &source, nullptr, nullptr), CODEC_OK);
  return record;
}

}  // namespace test::checks
