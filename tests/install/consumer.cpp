// A user's program in C++17: decodes the envelope that consumer.c encodes, copies it, and encodes it again.
#include <pavo_zorv.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <new>

int main() {
  constexpr std::array<unsigned char, 12> bytes = {0x08, 0x07, 0x1a, 0x08, 0x3a, 0x06,
                                                   0x08, 0x10, 0x08, 0xc1, 0xbb, 0x01};
  const pavo_zorv_allocate take = [](std::size_t size, void *) { return ::operator new(size, std::nothrow); };
  const pavo_zorv_release give = [](void *block, void *) { ::operator delete(block); };

  api_msg message, copy;
  const int decoded = pavo_zorv_api_msg_decode_ext(&message, bytes.data(), bytes.size(), take, nullptr, 0);
  const int copied = pavo_zorv_api_msg_duplicate(&copy, &message, take, nullptr);
  const int difference = pavo_zorv_api_msg_compare(&message, &copy);
  std::array<unsigned char, 32> again{};
  const auto length = pavo_zorv_api_msg_encode_ext(&copy, again.data(), again.size(), nullptr, nullptr, 0);
  pavo_zorv_api_msg_free_ext(&message, give, nullptr, 0);
  pavo_zorv_api_msg_free_ext(&copy, give, nullptr, 0);
  if (decoded != CODEC_OK || copied != CODEC_OK || difference != 0 || length > again.size()) return 1;
  for (std::size_t i = 0; i < length; ++i) std::printf("%02x", unsigned{again[i]});
  return 0;
}
