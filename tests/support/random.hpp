// Random numbers that are the same everywhere for the same seed.
#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <type_traits>

namespace test {

class random_numbers {
 public:
  explicit random_numbers(std::uint64_t seed) : state_(seed * 0x9e3779b97f4a7c15 + 1) {}

  std::uint64_t any() {
    state_ ^= state_ << 13;
    state_ ^= state_ >> 7;
    state_ ^= state_ << 17;
    return state_ * 0x2545f4914f6cdd1d;
  }
  template <std::integral Limit>
  std::make_unsigned_t<Limit> below(Limit limit) {
    return static_cast<std::make_unsigned_t<Limit>>((any() >> 16) % static_cast<std::make_unsigned_t<Limit>>(limit));
  }
  template <std::integral First, std::integral Last>
  auto from(First first, Last last) {
    using both = std::make_unsigned_t<std::common_type_t<First, Last>>;
    return static_cast<both>(static_cast<both>(first) + below(static_cast<both>(last) - static_cast<both>(first) + 1));
  }
  bool percent(unsigned chance) { return below(100u) < chance; }
  unsigned char byte() { return static_cast<unsigned char>(any() >> 24); }

  // Of any number of bits, and often one where a varint grows.
  std::uint64_t number() {
    const unsigned bits = below(65u);
    if (bits == 0) return 0;
    return percent(30) ? (std::uint64_t{1} << (7 * below(10u))) - below(2u) : any() >> (64 - bits);
  }

  // A number of three varint bytes, as most labels are.
  std::uint64_t label() { return from(0x4000u, 0x1fffffu); }

 private:
  std::uint64_t state_;
};

}  // namespace test
