// Parses the headers of packets. Every read is of bytes that were captured; what is not there is no header.
#include "capture_packet.hpp"

#include <arpa/inet.h>
#include <fmt/format.h>

#include <algorithm>

namespace inspect {
namespace {

constexpr unsigned version_4 = 0x0800, version_6 = 0x86dd;

unsigned big_endian_16(byte_view bytes, std::size_t at) { return unsigned{bytes[at]} << 8 | bytes[at + 1]; }

std::uint32_t big_endian_32(byte_view bytes, std::size_t at) {
  return std::uint32_t{big_endian_16(bytes, at)} << 16 | big_endian_16(bytes, at + 2);
}

// A part of a packet: the bytes of it that were captured, and how many there were.
struct part {
  byte_view bytes;
  std::size_t length;

  bool has(std::size_t size) const { return bytes.size() >= size; }

  // Without its header, which must have been captured.
  part after(std::size_t header) const { return {bytes.subspan(header), length - header}; }

  // Not longer than a length field says.
  part limited(std::size_t size) const { return {bytes.first(std::min(bytes.size(), size)), std::min(length, size)}; }
};

packet of(packet::content what) {
  packet result;
  result.what = what;
  return result;
}

// A header that was not captured as a whole is damaged only if the packet had no more on the wire.
packet without_header(const part &from, std::size_t size) {
  return of(from.length < size ? packet::content::damaged : packet::content::other);
}

void set_content(packet &result, packet::content what, const part &content) {
  result.what = what;
  result.bytes = content.bytes;
  result.missing = content.length - content.bytes.size();
}

packet udp(packet result, const part &from) {
  constexpr std::size_t header = 8;
  if (!from.has(header)) return without_header(from, header);
  result.from.port = static_cast<std::uint16_t>(big_endian_16(from.bytes, 0));
  result.to.port = static_cast<std::uint16_t>(big_endian_16(from.bytes, 2));
  const std::size_t length = big_endian_16(from.bytes, 4);
  result.what = packet::content::damaged;
  // No length: the packet is longer than a length can say.
  if (length != 0 && (length < header || length > from.length)) return result;
  const part whole = length == 0 ? from : from.limited(length);
  set_content(result, packet::content::datagram, whole.after(header));
  return result;
}

packet tcp(packet result, const part &from) {
  constexpr std::size_t shortest = 20;
  if (!from.has(shortest)) return without_header(from, shortest);
  result.from.port = static_cast<std::uint16_t>(big_endian_16(from.bytes, 0));
  result.to.port = static_cast<std::uint16_t>(big_endian_16(from.bytes, 2));
  result.sequence = big_endian_32(from.bytes, 4);
  const std::size_t header = std::size_t{from.bytes[12]} >> 4 << 2;
  result.what = packet::content::damaged;
  if (header < shortest || header > from.length) return result;
  const unsigned flags = from.bytes[13];
  result.ends_stream = (flags & 1) != 0;
  result.begins_stream = (flags & 2) != 0;
  result.resets_stream = (flags & 4) != 0;
  if (!from.has(header)) {
    // Options that were not captured; all of the content is missing, too.
    set_content(result, packet::content::segment, {{}, from.length - header});
  } else {
    set_content(result, packet::content::segment, from.after(header));
  }
  return result;
}

packet transport(const packet &addressed, unsigned protocol, const part &from) {
  if (protocol == 17) return udp(addressed, from);
  if (protocol == 6) return tcp(addressed, from);
  return of(packet::content::other);
}

packet ip_4(const part &from) {
  constexpr std::size_t shortest = 20;
  if (!from.has(shortest)) return without_header(from, shortest);
  const std::size_t header = std::size_t{from.bytes[0] & 15u} * 4;
  const std::size_t length = big_endian_16(from.bytes, 2);
  // No length: the network card was to cut the packet into pieces, and fill it in.
  if (header < shortest || header > from.length || (length != 0 && (length < header || length > from.length))) {
    return of(packet::content::damaged);
  }
  if (!from.has(header)) return of(packet::content::other);
  if ((big_endian_16(from.bytes, 6) & 0x3fff) != 0) return of(packet::content::fragment);
  packet result;
  std::copy_n(from.bytes.begin() + 12, 4, result.from.address.begin());
  std::copy_n(from.bytes.begin() + 16, 4, result.to.address.begin());
  return transport(result, from.bytes[9], (length == 0 ? from : from.limited(length)).after(header));
}

packet ip_6(const part &from) {
  constexpr std::size_t header = 40;
  if (!from.has(header)) return without_header(from, header);
  const std::size_t length = big_endian_16(from.bytes, 4);
  if (length > from.length - header) return of(packet::content::damaged);
  packet result;
  result.from.is_version_6 = result.to.is_version_6 = true;
  std::copy_n(from.bytes.begin() + 8, 16, result.from.address.begin());
  std::copy_n(from.bytes.begin() + 24, 16, result.to.address.begin());
  unsigned next = from.bytes[6];
  part rest = length == 0 ? from.after(header) : from.after(header).limited(length);
  while (true) {
    constexpr unsigned hop_by_hop = 0, routing = 43, fragment = 44, authentication = 51, destination = 60;
    if (next != hop_by_hop && next != routing && next != fragment && next != authentication && next != destination) {
      return transport(result, next, rest);
    }
    if (!rest.has(8)) return without_header(rest, 8);
    std::size_t size = 8;
    if (next == fragment) {
      if ((big_endian_16(rest.bytes, 2) & 0xfff9) != 0) return of(packet::content::fragment);
    } else {
      size = next == authentication ? (rest.bytes[1] + std::size_t{2}) * 4 : (rest.bytes[1] + std::size_t{1}) * 8;
    }
    if (!rest.has(size)) return without_header(rest, size);
    next = rest.bytes[0];
    rest = rest.after(size);
  }
}

packet ip(const part &from) {
  if (!from.has(1)) return of(packet::content::other);
  const unsigned version = from.bytes[0] >> 4;
  return version == 4 ? ip_4(from) : version == 6 ? ip_6(from) : of(packet::content::other);
}

// What follows a number of a protocol, which may be that of a VLAN tag.
packet after_type(unsigned type, part rest) {
  while (type == 0x8100 || type == 0x88a8 || type == 0x9100) {
    if (!rest.has(4)) return without_header(rest, 4);
    type = big_endian_16(rest.bytes, 2);
    rest = rest.after(4);
  }
  if (type == version_4) return ip_4(rest);
  if (type == version_6) return ip_6(rest);
  return of(packet::content::other);
}

// A header of the link layer with the number of the protocol at a place in it.
packet after_link(const part &whole, std::size_t header, std::size_t type_at) {
  if (!whole.has(header)) return without_header(whole, header);
  return after_type(big_endian_16(whole.bytes, type_at), whole.after(header));
}

// --- Guessing the link layer ---

bool has_ip_checksum(byte_view header) {
  std::uint32_t sum = 0;
  for (std::size_t at = 0; at < header.size(); at += 2) sum += big_endian_16(header, at);
  while (sum > 0xffff) sum = (sum & 0xffff) + (sum >> 16);
  return sum == 0xffff;
}

bool is_ip(byte_view bytes) {
  if (bytes.size() >= 20 && bytes[0] >> 4 == 4) {
    const std::size_t header = std::size_t{bytes[0] & 15u} * 4, length = big_endian_16(bytes, 2);
    return header >= 20 && length >= header && length <= bytes.size() && has_ip_checksum(bytes.first(header));
  }
  if (bytes.size() < 40 || bytes[0] >> 4 != 6 || big_endian_16(bytes, 4) > bytes.size() - 40) return false;
  static constexpr unsigned char protocols[] = {0, 6, 17, 43, 44, 51, 58, 60};
  return std::ranges::find(protocols, bytes[6]) != std::end(protocols);
}

// The IP packet in a frame; empty if there is none.
byte_view ip_in(byte_view bytes, std::size_t header, std::size_t type_at) {
  if (bytes.size() < header) return {};
  unsigned type = big_endian_16(bytes, type_at);
  byte_view rest = bytes.subspan(header);
  while (type == 0x8100 && rest.size() >= 4) {
    type = big_endian_16(rest, 2);
    rest = rest.subspan(4);
  }
  return type == version_4 || type == version_6 ? rest : byte_view{};
}

}  // namespace

std::string to_string(const endpoint &end) {
  char text[INET6_ADDRSTRLEN] = "";
  inet_ntop(end.is_version_6 ? AF_INET6 : AF_INET, end.address.data(), text, sizeof text);
  return end.is_version_6 ? fmt::format("[{}]:{}", text, end.port) : fmt::format("{}:{}", text, end.port);
}

packet parse_packet(link_layer link, byte_view bytes, std::size_t length) {
  const part whole{bytes, std::max(length, bytes.size())};
  switch (link) {
    case link_layer::ethernet:
      return after_link(whole, 14, 12);
    case link_layer::cooked:
      return after_link(whole, 16, 14);
    case link_layer::cooked_2:
      return after_link(whole, 20, 0);
    case link_layer::loopback:
      return whole.has(4) ? ip(whole.after(4)) : without_header(whole, 4);
    case link_layer::ip:
      return ip(whole);
    case link_layer::payload:
      break;
  }
  packet result;
  set_content(result, packet::content::payload, whole);
  return result;
}

std::optional<link_layer> link_layer_of(byte_view bytes) {
  if (is_ip(bytes)) return link_layer::ip;
  if (is_ip(ip_in(bytes, 14, 12))) return link_layer::ethernet;
  if (is_ip(ip_in(bytes, 16, 14))) return link_layer::cooked;
  if (is_ip(ip_in(bytes, 20, 0))) return link_layer::cooked_2;
  if (bytes.size() > 4 && is_ip(bytes.subspan(4))) return link_layer::loopback;
  return std::nullopt;
}

}  // namespace inspect
