// Where packets come from: a capture file, or the text that a tool has printed of one.
#pragma once

#include <cstddef>
#include <memory>
#include <string>

#include "bytes.hpp"
#include "capture_packet.hpp"
#include "input.hpp"

namespace inspect {

struct captured_packet {
  link_layer link = link_layer::payload;
  byte_view bytes;         // valid until the next packet is asked for
  std::size_t length = 0;  // on the wire
  std::string time;        // empty if unknown
};

class packet_source {
 public:
  packet_source() = default;
  packet_source(const packet_source &) = delete;
  packet_source &operator=(const packet_source &) = delete;
  virtual ~packet_source() = default;

  // False at the end. Throws `input_error` if the rest cannot be read.
  virtual bool next(captured_packet &packet) = 0;
};

// Whether a file that begins with these bytes is a capture, in pcap's or pcapng's format; and whether it may be one, if
// these are fewer than twelve.
bool is_capture(byte_view beginning);
bool may_be_capture(byte_view beginning);

// A capture file. The filter is an expression of libpcap's; all packets if it is empty.
std::unique_ptr<packet_source> open_capture(input_file &from, const std::string &filter);

// The packets in the text that `tcpdump -x` or `tshark -x` prints: dumps of packets with IP headers. Null if the text
// is something else.
std::unique_ptr<packet_source> packets_in_text(byte_view text);

}  // namespace inspect
