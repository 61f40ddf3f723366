// Writes and reads addresses.
#include "address.hpp"

#include <arpa/inet.h>
#include <fmt/format.h>

namespace inspect {

std::string address_text(byte_view bytes) {
  std::string text;
  const auto append = [&](std::string_view piece) { text += piece; };
  zorv::detail::put_address(append, bytes);
  return text;
}

std::string address_text(std::uint32_t address) {
  return fmt::format("{}.{}.{}.{}", address >> 24, address >> 16 & 0xff, address >> 8 & 0xff, address & 0xff);
}

std::optional<byte_string> parse_address(std::string_view text) {
  const std::string ended(text);
  if (ended.find('\0') != ended.npos) return std::nullopt;
  const bool is_long = ended.find(':') != ended.npos;
  byte_string bytes(is_long ? 16 : 4);
  if (inet_pton(is_long ? AF_INET6 : AF_INET, ended.c_str(), bytes.data()) != 1) return std::nullopt;
  return bytes;
}

bool is_address_name(std::string_view member) { return member == "address"; }

}  // namespace inspect
