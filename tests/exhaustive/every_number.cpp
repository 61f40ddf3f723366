// Numbers through the writers and the readers, compared with a plain writer and the naive reader:
//
//   every_number all        every number of 32 bits there and back, every input of up to 4 bytes to the 32-bit reader,
//                           and the boundaries of 64 bits
//   every_number some       every 65537th of the first two, and the boundaries of 64 bits
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "core/wire.hpp"
#include "fence.hpp"
#include "naive/decoder.hpp"
#include "wire_bytes.hpp"

namespace {

using test::byte_string;

[[noreturn]] void fail(const char *what, std::uint64_t number) {
  test::broken(std::string(what) + " is wrong for " + std::to_string(number));
}

// The C library's memcmp loads whole vectors, which is very slow if they reach into an inaccessible page.
bool same(const unsigned char *a, const unsigned char *b, std::size_t size) {
  bool result = true;
  for (std::size_t i = 0; i < size; ++i) result &= a[i] == b[i];
  return result;
}

// A number as the only member of a message: encoded in the fewest bytes, and decoded again.
std::uint64_t numbers_of_32_bits(std::uint64_t step) {
  const test::fence room(16);
  std::uint64_t tried = 0;
  for (std::uint64_t number = 0; number <= UINT32_MAX; number += step, ++tried) {
    unsigned char expected[16] = {0x08};
    const std::size_t size = 1 + test::write_varint(number, expected + 1);
    api_addr out = {};
    out.address = static_cast<std::uint32_t>(number);
    out.presence = API_ADDR_HAS_ADDRESS;
    unsigned char *const buffer = room.last(size);
    if (pavo_zorv_api_addr_encode_ext(&out, buffer, size, nullptr, nullptr) != size) fail("the size written", number);
    if (!same(buffer, expected, size)) fail("what is written", number);
    api_addr in = {};
    if (pavo_zorv_api_addr_decode_ext(&in, buffer, size, nullptr, nullptr) != CODEC_OK) fail("the result", number);
    if (in.address != number || in.presence != API_ADDR_HAS_ADDRESS) fail("what is read", number);
  }
  return tried;
}

// Reads every input of a length, at the end of a page: checks the value and the position after it, or the failure.
std::uint64_t inputs_of_length(std::size_t length, std::uint64_t step) {
  const test::fence room(length);
  unsigned char *const input = room.last(length), *const end = input + length;
  std::uint64_t tried = 0;
  for (std::uint64_t number = 0; number >> 8 * length == 0; number += step, ++tried) {
    for (std::size_t i = 0; i < length; ++i) input[i] = static_cast<unsigned char>(number >> 8 * i);
    const auto [next, value] = pavo_zorv::read_varint<std::uint32_t>(input, end);
    std::size_t position = 0;
    std::uint32_t expected = 0;
    const bool whole = naive::decoder::read_32(input, length, position, expected);
    if (whole != (next != nullptr)) fail("the failure", number);
    if (whole && (next != input + position || value != expected)) fail("the value", number);
    if (pavo_zorv::skip_varint(input, end) != (whole ? input + position : nullptr)) fail("the step over it", number);
  }
  return tried;
}

// An input of the 64-bit reader, as the member of a message.
void read_64(const byte_string &varint) {
  static const test::fence room(16);
  unsigned char *const input = room.last(varint.size() + 1);
  input[0] = 0x18;
  std::copy(varint.begin(), varint.end(), input + 1);
  api_msg_internal in = {};
  const int result = pavo_zorv_api_msg_internal_decode_ext(&in, input, varint.size() + 1, nullptr, nullptr);
  std::size_t position = 0;
  std::uint64_t expected = 0;
  const bool whole = naive::decoder::read_64(varint.data(), varint.size(), position, expected);
  if (whole && position != varint.size()) test::broken("a varint with something after it");
  if (result != (whole ? CODEC_OK : CODEC_ERR_TRUNCATED)) fail("the result of 64 bits", expected);
  if (in.field3 != (whole ? expected : 0)) fail("what is read of 64 bits", expected);
  if (in.presence != (whole ? API_MSG_INTERNAL_HAS_FIELD3 : 0)) fail("the presence of 64 bits", expected);
}

// Two numbers on either side of every power of two, also truncated and over-long.
std::uint64_t boundaries_of_64_bits() {
  std::uint64_t tried = 0;
  for (unsigned bits = 0; bits <= 64; ++bits) {
    const std::uint64_t power = bits == 64 ? 0 : std::uint64_t{1} << bits;
    for (std::uint64_t offset = 0; offset < 5; ++offset) {
      const std::uint64_t number = power - 2 + offset;
      unsigned char expected[16] = {0x18};
      const std::size_t size = 1 + test::write_varint(number, expected + 1);
      api_msg_internal out = {};
      out.field3 = number;
      out.presence = API_MSG_INTERNAL_HAS_FIELD3;
      unsigned char written[16];
      if (pavo_zorv_api_msg_internal_encode_ext(&out, written, size, nullptr, nullptr) != size ||
          std::memcmp(written, expected, size) != 0) {
        fail("what is written of 64 bits", number);
      }
      byte_string varint(expected + 1, expected + size);
      for (std::size_t cut = 0; cut < varint.size(); ++cut) {
        read_64(byte_string(varint.begin(), varint.begin() + static_cast<std::ptrdiff_t>(cut)));
        ++tried;
      }
      while (varint.size() <= 14) {
        read_64(varint);
        ++tried;
        varint.back() |= 0x80;
        varint.push_back(0);
      }
    }
  }
  return tried;
}

// The tenth byte adds one bit, whatever its value; the bytes after it add nothing.
std::uint64_t tenth_bytes() {
  std::uint64_t tried = 0;
  for (unsigned ninth = 0x80; ninth <= 0xff; ++ninth) {
    for (unsigned tenth = 0; tenth <= 0xff; ++tenth) {
      byte_string varint(8, 0xd5);
      varint.push_back(static_cast<unsigned char>(ninth));
      varint.push_back(static_cast<unsigned char>(tenth));
      for (; varint.back() >= 0x80 && varint.size() < 13; ++tried) {
        read_64(varint);
        varint.push_back(varint.size() == 12 ? 0x7f : 0xff);
      }
      read_64(varint);
      ++tried;
    }
  }
  return tried;
}

}  // namespace

int main(int count, char **arguments) {
  std::setvbuf(stdout, nullptr, _IOLBF, 0);
  const std::string how = count == 2 ? arguments[1] : "";
  if (how != "all" && how != "some") test::broken("usage: every_number all|some");
  const std::uint64_t step = how == "all" ? 1 : 65537;
  const auto print = [](const char *what, std::uint64_t number) {
    std::printf("%s: %llu\n", what, static_cast<unsigned long long>(number));
  };
  print("numbers of 32 bits written and read again", numbers_of_32_bits(step));
  std::uint64_t inputs = 0;
  for (std::size_t length = 0; length <= 4; ++length) inputs += inputs_of_length(length, length < 3 ? 1 : step);
  print("inputs of up to 4 bytes read and stepped over", inputs);
  print("boundaries of 64 bits in all forms", boundaries_of_64_bits());
  print("ninth and tenth bytes of 64 bits", tenth_bytes());
  return 0;
}
