// Random numbers that are the same everywhere for the same seed.
#pragma once

#include <cstddef>
#include <cstdint>

namespace fuzz {

class dice {
 public:
  explicit dice(std::uint64_t seed) : state_(seed * 0x9e3779b97f4a7c15 + 1) {}
  std::uint64_t any() {
    state_ ^= state_ << 13;
    state_ ^= state_ >> 7;
    state_ ^= state_ << 17;
    return state_ * 0x2545f4914f6cdd1d;
  }
  std::size_t below(std::size_t limit) { return static_cast<std::size_t>((any() >> 16) % limit); }
  bool percent(unsigned chance) { return below(100) < chance; }
  unsigned char byte() { return static_cast<unsigned char>(any() >> 24); }
  // Of any number of bits, and often one where a varint grows.
  std::uint64_t number() {
    const std::size_t bits = below(65);
    if (bits == 0) return 0;
    return percent(30) ? (std::uint64_t{1} << (7 * below(10))) - below(2) : any() >> (64 - bits);
  }

 private:
  std::uint64_t state_;
};

}  // namespace fuzz
