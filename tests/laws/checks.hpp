// One trial of a law each: a call, and everything that can be seen of it compared with what the plain model says.
#pragma once

#include <algorithm>
#include <set>

#include "laws.hpp"
#include "model_decode.hpp"
#include "model_encode.hpp"

namespace test {

// What a call writes into a buffer of a length, checked byte by byte. The buffer starts as the opposite of what
// belongs there, so that every byte shows whether it was written.
inline void check_written(view record, const encoding_model &model, const fence &room, std::size_t length,
                          std::uint32_t options) {
  constexpr std::size_t before = 16;
  constexpr unsigned char rubbish = 0xe9;
  const std::size_t size = model.bytes.size();
  unsigned char *const buffer = room.last(length);
  for (std::size_t i = 0; i < length; ++i) buffer[i] = static_cast<unsigned char>(i < size ? ~model.bytes[i] : rubbish);
  std::memset(buffer - before, rubbish, before);
  ASSERT_EQ(record.type().encode(record.data(), buffer, length, nullptr, nullptr, options), size);
  const std::vector<bool> written = model.written(length);
  for (std::size_t i = 0; i < length; ++i) {
    const int expected = i >= size ? rubbish : written[i] ? model.bytes[i] : 255 - model.bytes[i];
    if (buffer[i] == expected) continue;
    FAIL() << "byte " << i << " of " << length << " is " << int{buffer[i]} << " instead of " << expected << ", options "
           << options;
  }
  for (std::size_t i = 1; i <= before; ++i) ASSERT_EQ(*(buffer - i), rubbish) << "before a buffer of " << length;
}

// What a call writes into a table of a capacity.
inline void check_table(view record, const encoding_model &model, const fence &room, std::uint32_t capacity,
                        unsigned char *buffer, std::size_t length, std::uint32_t options) {
  const std::vector<piece> expected = model.pieces(buffer, length);
  const piece untouched{reinterpret_cast<const unsigned char *>(0xc7c7c7c7c7c7c7c7), 0xc7c7c7c7c7c7c7c7};
  auto *const entries = reinterpret_cast<pavo_zorv_segment *>(room.last(capacity * sizeof(pavo_zorv_segment)));
  for (std::uint32_t i = 0; i < capacity; ++i) entries[i] = {untouched.start, untouched.length};
  std::uint32_t count = capacity;
  ASSERT_EQ(record.type().encode(record.data(), buffer, length, entries, &count, options), model.bytes.size());
  ASSERT_EQ(count, expected.size()) << "capacity " << capacity << ", options " << options;
  for (std::uint32_t i = 0; i < capacity; ++i) {
    const piece seen{entries[i].start, entries[i].length};
    const piece right = i < count ? expected[i] : untouched;
    if (seen == right) continue;
    FAIL() << "entry " << i << " of " << capacity << ", buffer of " << length << ", options " << options << ": "
           << testing::PrintToString(seen) << " instead of " << testing::PrintToString(right);
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
inline std::size_t memory_per_byte(const message_type &type) {
  std::size_t most = 2;
  for (const field &field : type.fields) {
    if (field.kind == kind::message_list) most = std::max(most, field.nested->size / 2);
    if (field.nested != nullptr) most = std::max(most, memory_per_byte(*field.nested));
  }
  return most;
}

// A record that starts with the same bytes as another.
class twin {
 public:
  explicit twin(view other) : record(other.type(), storage_.block(other.type().size)) {
    std::memcpy(record.data(), other.data(), other.type().size);
  }

 private:
  arena storage_;

 public:
  view record;
};

// Decodes and compares everything that can be seen of it with the model. Every record is released, whatever the result.
inline void check_decoding(const message_type &type, const fence &room, const byte_string &bytes, dice &dice,
                           std::uint32_t options, int &result) {
  on_trial() = bytes;
  const unsigned char *const input = dice.percent(70) ? room.holding(bytes) : room.holding_at_start(bytes);
  decoding seen(type, dice, options);
  decoding_model model;
  model.referenced = is_referenced(options);
  const twin expected(seen.record);

  result = seen.decode(input, bytes.size());
  ASSERT_EQ(result, model.decode(expected.record, input, bytes.size()));
  ASSERT_TRUE(result <= CODEC_OK && result >= CODEC_ERR_WRONG_WIRE_TYPE) << result;
  ASSERT_EQ(difference(seen.record, expected.record, model.referenced), "");
  ASSERT_EQ(seen.memory.sizes, model.sizes);
  seen.dropped = model.dropped;
  ASSERT_EQ(wrong_blocks(seen.record, seen.memory, model.referenced), 0u);
  ASSERT_EQ(seen.memory.live(), owned_blocks(seen.record, model.referenced).size() + model.dropped);
  ASSERT_TRUE(std::equal(bytes.begin(), bytes.end(), input)) << "the input was changed";
  std::size_t asked = 0;
  for (const std::size_t size : seen.memory.sizes) asked += size;
  ASSERT_LE(asked, memory_per_byte(type) * bytes.size());
}

// One request, or all from one on, that fails.
struct failing {
  std::size_t at = accountant::never;
  std::size_t from = accountant::never;
};

// Decodes with failing requests. The model says what is left in the record.
inline void check_failing_decode(const message_type &type, const byte_string &bytes, const fence &room, dice &dice,
                                 std::uint32_t options, failing request,
                                 const std::vector<std::size_t> &sizes_of_success) {
  decoding seen(type, dice, options);
  const twin expected(seen.record);
  seen.memory.fail_at = request.at;
  seen.memory.fail_from = request.from;
  decoding_model model;
  model.referenced = is_referenced(options);
  model.fail_at = request.at;
  model.fail_from = request.from;
  const unsigned char *const input = room.holding(bytes);
  const std::size_t failed = std::min(request.at, request.from);

  ASSERT_EQ(seen.decode(input, bytes.size()), CODEC_ERR_NO_MEMORY);
  ASSERT_EQ(model.decode(expected.record, input, bytes.size()), CODEC_ERR_NO_MEMORY);
  ASSERT_EQ(difference(seen.record, expected.record, model.referenced), "") << "request " << failed;
  ASSERT_EQ(seen.memory.sizes, std::vector<std::size_t>(sizes_of_success.data(), sizes_of_success.data() + failed + 1));
  ASSERT_EQ(seen.memory.live(), owned_blocks(seen.record, model.referenced).size()) << "request " << failed;
}

inline void check_every_failing_decode(const message_type &type, const byte_string &bytes, dice &dice,
                                       std::uint32_t options) {
  on_trial() = bytes;
  const fence room(bytes.size());
  decoding good(type, dice, options);
  ASSERT_EQ(good.decode(bytes), CODEC_OK);
  for (std::size_t request = 0; request < good.memory.requests(); ++request) {
    check_failing_decode(type, bytes, room, dice, options, {.at = request}, good.memory.sizes);
    check_failing_decode(type, bytes, room, dice, options, {.from = request}, good.memory.sizes);
    if (testing::Test::HasFatalFailure()) return;
  }
}

// Copies with failing requests, or none. The model follows what is asked for and what is left in the copy. The number
// of requests is handed back.
inline void check_copying(view source, dice &dice, failing request, std::size_t &requests) {
  const message_type &type = source.type();
  const twin copy(source);
  litter(copy.record, dice);
  const std::vector<std::uint32_t> bits = unowned_bits(copy.record);
  accountant memory;
  memory.fail_at = request.at;
  memory.fail_from = request.from;
  copying_model model;
  model.fail_at = request.at;
  model.fail_from = request.from;

  const int result = type.duplicate(copy.record.data(), source.data(), accountant::allocate, &memory);
  ASSERT_EQ(model.check(source, copy.record), "") << "request " << std::min(request.at, request.from);
  ASSERT_EQ(result, model.complete ? CODEC_OK : CODEC_ERR_NO_MEMORY);
  ASSERT_EQ(memory.sizes, model.sizes);
  ASSERT_EQ(unowned_bits(copy.record), bits);
  ASSERT_EQ(wrong_blocks(copy.record, memory, false), 0u);
  const std::vector<void *> blocks = owned_blocks(copy.record);
  ASSERT_EQ(blocks.size(), memory.live());
  requests = memory.requests();

  type.free(copy.record.data(), accountant::release, &memory, 0);
  ASSERT_EQ(memory.released, blocks);
  ASSERT_EQ(memory.live(), 0u);
}

inline void check_every_failing_copy(view source, dice &dice) {
  std::size_t requests = 0;
  std::size_t ignored = 0;
  check_copying(source, dice, {}, requests);
  for (std::size_t request = 0; request < requests && !testing::Test::HasFatalFailure(); ++request) {
    check_copying(source, dice, {.at = request}, ignored);
    check_copying(source, dice, {.from = request}, ignored);
  }
}

}  // namespace test
