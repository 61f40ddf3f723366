// Addresses in the notation for people: "192.0.2.1", "2001:db8::51".
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "bytes.hpp"
#include "pavo_zorv_text.hpp"

namespace inspect {

// Lists of 8-bit numbers are addresses if there are 4 or 16 of them.
using zorv::detail::is_address_size;

// Of 4 or 16 bytes, as JSON has them.
std::string address_text(byte_view bytes);
std::string address_text(std::uint32_t address);

// Empty unless the text is an address.
std::optional<byte_string> parse_address(std::string_view text);

// Whether a member of 32 bits is an address.
bool is_address_name(std::string_view member);

}  // namespace inspect
