// One packet of a capture: what its headers say, from the link layer to UDP or TCP.
#pragma once

#include <array>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "bytes.hpp"

namespace inspect {

enum class link_layer {
  ethernet,  // with any number of VLAN tags
  cooked,    // Linux's for captures on all interfaces, in its first and second version
  cooked_2,
  loopback,  // four bytes with the address family
  ip,        // version 4 or 6, without a header before it
  payload,   // the packet is the message: captures of Unix sockets, for example
};

struct endpoint {
  std::array<unsigned char, 16> address{};  // the first four for version 4
  bool is_version_6 = false;
  std::uint16_t port = 0;

  auto operator<=>(const endpoint &) const = default;
};

// "192.0.2.1:4711", "[2001:db8::1]:4711".
std::string to_string(const endpoint &end);

// What a packet carries.
struct packet {
  enum class content {
    payload,   // all of it
    datagram,  // of UDP
    segment,   // of TCP
    fragment,  // of an IP packet
    other,     // another protocol
    damaged,   // lengths that contradict each other
  };

  content what = content::other;
  endpoint from, to;
  byte_view bytes;
  std::size_t missing = 0;  // bytes after these that were not captured

  std::uint32_t sequence = 0;  // of a segment
  bool begins_stream = false;  // SYN
  bool ends_stream = false;    // FIN
  bool resets_stream = false;  // RST
};

// `length` is that of the packet on the wire, of which the bytes may be only the beginning.
packet parse_packet(link_layer link, byte_view bytes, std::size_t length);

// The link layer that makes sense of a packet of which only the bytes are known: an IP header, and lengths and a
// checksum that fit. Empty if none does.
std::optional<link_layer> link_layer_of(byte_view bytes);

}  // namespace inspect
