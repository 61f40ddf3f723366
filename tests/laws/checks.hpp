// One trial of a law each: a call, and everything that can be seen of it compared with what the naive codec says.
#pragma once

#include <algorithm>
#include <set>

#include "laws.hpp"
#include "naive/copy.hpp"

namespace test {

// What a call writes into a buffer of a length, checked byte by byte. The buffer starts as the opposite of what belongs
// there, so that every byte shows whether it was written.
inline void check_written(view record, const naive::encoding &encoding, const fence &room, std::size_t length,
                          std::uint32_t options) {
  constexpr std::size_t before = 16;
  constexpr unsigned char rubbish = 0xe9;
  byte_string buffer_before = encoding.bytes();
  for (unsigned char &byte : buffer_before) byte = static_cast<unsigned char>(~byte);
  buffer_before.resize(length, rubbish);
  unsigned char *const buffer = room.holding(buffer_before);
  std::memset(buffer - before, rubbish, before);
  ASSERT_EQ(record.type().functions->encode(record.data(), buffer, length, nullptr, nullptr, options), encoding.size());
  const byte_string expected = encoding.in_buffer(buffer_before);
  for (std::size_t i = 0; i < length; ++i) {
    if (buffer[i] == expected[i]) continue;
    FAIL() << "byte " << i << " of " << length << " is " << int{buffer[i]} << " instead of " << int{expected[i]}
           << ", options " << options;
  }
  for (std::size_t i = 1; i <= before; ++i) ASSERT_EQ(*(buffer - i), rubbish) << "before a buffer of " << length;
}

// What a call writes into a table of a capacity.
inline void check_table(view record, const naive::encoding &encoding, const fence &room, std::uint32_t capacity,
                        unsigned char *buffer, std::size_t length, std::uint32_t options) {
  const piece untouched{reinterpret_cast<const unsigned char *>(0xc7c7c7c7c7c7c7c7), 0xc7c7c7c7c7c7c7c7};
  auto *const entries = reinterpret_cast<pavo_zorv_segment *>(room.last(capacity * sizeof(pavo_zorv_segment)));
  for (std::uint32_t i = 0; i < capacity; ++i) entries[i] = {untouched.start, untouched.length};
  std::uint32_t count = capacity;
  ASSERT_EQ(record.type().functions->encode(record.data(), buffer, length, entries, &count, options), encoding.size());
  ASSERT_EQ(count, encoding.entries()) << "capacity " << capacity << ", options " << options;
  for (std::uint32_t i = 0; i < capacity; ++i) {
    const pavo_zorv_segment right = i < count ? encoding.in_table(i, buffer, length) : pavo_zorv_segment{};
    const piece expected = i < count ? piece{right.start, right.length} : untouched;
    const piece seen{entries[i].start, entries[i].length};
    if (seen == expected) continue;
    FAIL() << "entry " << i << " of " << capacity << ", buffer of " << length << ", options " << options << ": "
           << testing::PrintToString(seen) << " instead of " << testing::PrintToString(expected);
  }
}

// Blocks that a record owns and that are not out, or that it owns twice.
inline std::size_t wrong_blocks(view record, const accountant &memory, bool referenced) {
  std::size_t wrong = 0;
  std::set<void *> seen;
  for (void *const block : owned_blocks(record, referenced)) wrong += !memory.owns(block) || !seen.insert(block).second;
  return wrong;
}

// How much memory decoding may ask for, for each byte of input: that of the element that is the largest for its size.
// Without content it takes two bytes, an integer of 32 bits as well, a string one more than its own.
inline std::size_t memory_per_byte(const naive::message &type) {
  std::size_t most = 2;
  for (const member &member : type.members) {
    if (member.kind == kind::message_list) most = std::max(most, member.nested->size / 2);
    if (member.nested != nullptr) most = std::max(most, memory_per_byte(*member.nested));
  }
  return most;
}

// Decodes and compares everything that can be seen of it with what the naive decoder does. Every record is released,
// whatever the result.
inline void check_decoding(const naive::message &type, const fence &room, const byte_string &bytes,
                           random_numbers &random, std::uint32_t options, int &result) {
  tried() = bytes;
  const unsigned char *const input = room.holding(bytes, random.percent(30));
  decoding seen(type, random, options);
  naive::decoder reference(naive_memory());
  reference.referenced = is_referenced(options);
  const shallow_copy expected(seen.record);

  result = seen.decode(input, bytes.size());
  ASSERT_EQ(result, reference.decode(expected.record, input, bytes.size()));
  ASSERT_TRUE(result <= CODEC_OK && result >= CODEC_ERR_WRONG_WIRE_TYPE) << result;
  ASSERT_EQ(difference(seen.record, expected.record, seen.memory, reference.referenced), "");
  ASSERT_EQ(seen.memory.sizes, reference.sizes);
  seen.dropped = reference.dropped;
  ASSERT_EQ(wrong_blocks(seen.record, seen.memory, reference.referenced), 0u);
  ASSERT_EQ(seen.memory.live(), owned_blocks(seen.record, reference.referenced).size() + reference.dropped);
  ASSERT_TRUE(std::equal(bytes.begin(), bytes.end(), input)) << "the input was changed";
  ASSERT_LE(seen.memory.asked(), memory_per_byte(type) * bytes.size());
}

// Decodes with failing requests. The naive decoder says what is left in the record.
inline void check_failing_decode(const naive::message &type, const byte_string &bytes, const fence &room,
                                 random_numbers &random, std::uint32_t options, failing_requests failing,
                                 const std::vector<std::size_t> &sizes_of_success) {
  decoding seen(type, random, options);
  const shallow_copy expected(seen.record);
  seen.memory.fail(failing);
  naive::decoder reference(naive_memory());
  reference.referenced = is_referenced(options);
  reference.failing = failing;
  const unsigned char *const input = room.holding(bytes);
  const std::size_t failed = failing.first();

  ASSERT_EQ(seen.decode(input, bytes.size()), CODEC_ERR_NO_MEMORY);
  ASSERT_EQ(reference.decode(expected.record, input, bytes.size()), CODEC_ERR_NO_MEMORY);
  ASSERT_EQ(difference(seen.record, expected.record, seen.memory, reference.referenced), "") << "request " << failed;
  ASSERT_EQ(seen.memory.sizes, std::vector<std::size_t>(sizes_of_success.data(), sizes_of_success.data() + failed + 1));
  ASSERT_EQ(seen.memory.live(), owned_blocks(seen.record, reference.referenced).size()) << "request " << failed;
}

inline void check_every_failing_decode(const naive::message &type, const byte_string &bytes, random_numbers &random,
                                       std::uint32_t options) {
  tried() = bytes;
  const fence room(bytes.size());
  decoding good(type, random, options);
  ASSERT_EQ(good.decode(bytes), CODEC_OK);
  for (std::size_t request = 0; request < good.memory.requests(); ++request) {
    check_failing_decode(type, bytes, room, random, options, {.fail_at = request}, good.memory.sizes);
    check_failing_decode(type, bytes, room, random, options, {.fail_from = request}, good.memory.sizes);
    if (testing::Test::HasFatalFailure()) return;
  }
}

// Copies with failing requests, or none. The naive copying follows what is asked for and what is left in the copy. The
// number of requests is handed back.
inline void check_copying(view source, random_numbers &random, failing_requests failing, std::size_t &requests) {
  const naive::message &type = source.type();
  const shallow_copy copy(source);
  fill_with_rubbish(copy.record, random);
  const std::vector<std::uint32_t> bits = spare_bits(copy.record);
  accountant memory;
  memory.fail(failing);
  naive::copying reference;
  reference.failing = failing;

  const int result = type.functions->duplicate(copy.record.data(), source.data(), accountant::allocate, &memory);
  ASSERT_EQ(reference.check(source, copy.record), "") << "request " << failing.first();
  ASSERT_EQ(result, reference.complete ? CODEC_OK : CODEC_ERR_NO_MEMORY);
  ASSERT_EQ(memory.sizes, reference.sizes);
  ASSERT_EQ(spare_bits(copy.record), bits);
  ASSERT_EQ(wrong_blocks(copy.record, memory, false), 0u);
  const std::vector<void *> blocks = owned_blocks(copy.record);
  ASSERT_EQ(blocks.size(), memory.live());
  requests = memory.requests();

  type.functions->free(copy.record.data(), accountant::release, &memory, 0);
  ASSERT_EQ(memory.released, blocks);
  ASSERT_EQ(memory.live(), 0u);
}

inline void check_every_failing_copy(view source, random_numbers &random) {
  std::size_t requests = 0;
  std::size_t ignored = 0;
  check_copying(source, random, {}, requests);
  for (std::size_t request = 0; request < requests && !testing::Test::HasFatalFailure(); ++request) {
    check_copying(source, random, {.fail_at = request}, ignored);
    check_copying(source, random, {.fail_from = request}, ignored);
  }
}

}  // namespace test
