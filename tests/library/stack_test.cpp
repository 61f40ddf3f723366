// Stack use: each operation on the deepest message stays below 4 KB, and encoding, which writes short messages aside,
// below 12 KB; measured on a painted stack.
#include <pthread.h>

#include <algorithm>
#include <functional>

#include "support.hpp"

namespace {

using namespace test;

constexpr unsigned char paint = 0x6b;

constexpr std::size_t stack_size = 256 * 1024;
alignas(4096) unsigned char stack[stack_size];

struct measurement {
  std::function<void()> work;
  std::size_t used = 0;
};

// On the painted stack: paints all that lies below this frame, works, and looks how far down the paint is gone. What
// memset itself needs stays unpainted, and is counted as used.
void *measure(void *argument) {
  auto *const what = static_cast<measurement *>(argument);
  auto *const here = static_cast<unsigned char *>(__builtin_frame_address(0)) - 512;
  std::memset(stack, paint, static_cast<std::size_t>(here - stack));
  what->work();
  what->used =
      static_cast<std::size_t>(here - std::find_if(stack, here, [](unsigned char c) { return c != paint; })) + 512;
  return nullptr;
}

// The octets of stack that work uses, or a little more.
std::size_t stack_used(std::function<void()> work) {
  measurement what{std::move(work)};
  pthread_attr_t attributes;
  pthread_t thread;
  pthread_attr_init(&attributes);
  EXPECT_EQ(pthread_attr_setstack(&attributes, stack, stack_size), 0);
  EXPECT_EQ(pthread_create(&thread, &attributes, measure, &what), 0);
  pthread_join(thread, nullptr);
  pthread_attr_destroy(&attributes);
  return what.used;
}

// An envelope whose to_igp member holds a policy with a prefix, its oam_res a micro-SID: the two deepest branches.
const octets deepest =
    hex("5a 0e 12 0c 1a 0a 2a 06 08 01 08 02 10 18 50 01"
        "72 12 3a 10 0a 0e 1a 06 0a 02 aa bb 10 05 22 04 08 01 18 07");

void *take(std::size_t size, void *) { return std::malloc(size + 1); }
void give(void *block, void *) { std::free(block); }

// Something that certainly uses more, so that the measurement is known to measure.
[[gnu::noinline]] void use_8_kilobytes() {
  volatile unsigned char block[8192];
  for (auto &octet : block) octet = 1;
}

TEST(stack, the_measurement_sees_8_kilobytes) { EXPECT_GE(stack_used(use_8_kilobytes), 8192u); }

TEST(stack, every_operation_on_the_deepest_message_stays_below_4_kilobytes_and_encoding_below_12) {
  api_msg message, copy;
  int result = -9, difference = -9;
  std::size_t length = 0, clipped_length = 0;
  unsigned char buffer[64];
  pavo_zorv_segment segments[16];
  std::uint32_t count = 16, clipped_count = 16;
  // Once before measuring: the dynamic linker binds each function on its first call, on the same stack.
  for (int round = 0; round < 2; ++round) {
    const auto measured = [&](const char *name, std::function<void()> work, std::size_t most = 4096) {
      const std::size_t used = stack_used(work);
      if (round == 1) {
        EXPECT_LT(used, most) << name;
        ::testing::Test::RecordProperty(name, static_cast<int>(used));
      }
    };
    count = clipped_count = 16;
    measured("decode", [&] {
      result = pavo_zorv_api_msg_decode_ext(&message, deepest.data(), deepest.size(), take, nullptr, 0);
    });
    ASSERT_EQ(result, CODEC_OK);
    measured("measure", [&] { length = pavo_zorv_api_msg_encode_ext(&message, nullptr, 0, nullptr, nullptr, 0); });
    EXPECT_EQ(length, deepest.size());
    measured("encode",
             [&] { length = pavo_zorv_api_msg_encode_ext(&message, buffer, sizeof buffer, segments, &count, 0); });
    EXPECT_EQ(octets(buffer, buffer + length), deepest);
    measured("encode_clipped",
             [&] { clipped_length = pavo_zorv_api_msg_encode_ext(&message, buffer, 20, segments, &clipped_count, 0); });
    EXPECT_EQ(clipped_length, deepest.size());
    std::fill(std::begin(buffer), std::end(buffer), 0xc7);
    const auto encode = [&](std::size_t size) {
      return [&, size] { clipped_length = pavo_zorv_api_msg_encode_ext(&message, buffer, size, nullptr, nullptr, 0); };
    };
    measured("encode_aside", encode(sizeof buffer), 12288);
    EXPECT_EQ(octets(buffer, buffer + clipped_length), deepest);
    clipped_length = 0;
    measured("encode_aside_in_vain", encode(20), 12288);
    EXPECT_EQ(clipped_length, deepest.size());
    measured("duplicate", [&] { result = pavo_zorv_api_msg_duplicate(&copy, &message, take, nullptr); });
    ASSERT_EQ(result, CODEC_OK);
    measured("compare", [&] { difference = pavo_zorv_api_msg_compare(&message, &copy); });
    EXPECT_EQ(difference, 0);
    measured("free", [&] { pavo_zorv_api_msg_free_ext(&message, give, nullptr, 0); });
    pavo_zorv_api_msg_free_ext(&copy, give, nullptr, 0);
  }
}

}  // namespace
