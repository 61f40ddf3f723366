// Capture files, read without libpcap, which Debian does not have for WebAssembly: the formats of pcap and pcapng, as
// much of them as says what the packets are. There are no filters.
#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <optional>
#include <vector>

#include "capture_source.hpp"
#include "failure.hpp"

namespace inspect {
namespace {

// The numbers that both formats have for link layers.
std::optional<link_layer> link_layer_of_number(std::uint32_t number) {
  constexpr std::uint32_t first_user = 147, last_user = 162;
  if (number >= first_user && number <= last_user) return link_layer::payload;
  switch (number) {
    case 0:
    case 108:
      return link_layer::loopback;
    case 1:
      return link_layer::ethernet;
    case 101:
    case 228:
    case 229:
      return link_layer::ip;
    case 113:
      return link_layer::cooked;
    case 276:
      return link_layer::cooked_2;
    default:
      return std::nullopt;
  }
}

// "2026-11-22T12:00:01.500000Z".
std::string time_text(std::uint64_t microseconds) {
  using namespace std::chrono;
  const std::uint64_t seconds = microseconds / 1000000, day = 86400;
  const year_month_day date{sys_days{days{static_cast<int>(seconds / day)}}};
  return fmt::format("{:04}-{:02}-{:02}T{:02}:{:02}:{:02}.{:06}Z", static_cast<int>(date.year()),
                     static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()), seconds % day / 3600,
                     seconds % 3600 / 60, seconds % 60, microseconds % 1000000);
}

class capture_reader : public packet_source {
 public:
  explicit capture_reader(input_file &from) : from_(from) {
    from_.read_all();
    left_ = from_.ahead();
    if (left_.size() >= 4 && number(left_, 0) == section_block) return;
    begin_pcap();
  }

  bool next(captured_packet &packet) override { return is_pcap_ ? next_pcap(packet) : next_pcapng(packet); }

 private:
  static constexpr std::uint32_t section_block = 0x0a0d0d0a, interface_block = 1, simple_block = 3, packet_block = 6;

  struct interface {
    link_layer link;
    std::uint32_t snapshot;
    std::uint64_t ticks;  // in a second
  };

  [[noreturn]] void fail(std::string_view why) const { throw input_error(fmt::format("{}: {}", from_.name(), why)); }

  std::uint32_t number(byte_view bytes, std::size_t at, std::size_t size = 4) const {
    std::uint32_t value = 0;
    for (std::size_t index = 0; index < size; ++index) {
      value = value << 8 | bytes[at + (is_swapped_ ? index : size - 1 - index)];
    }
    return value;
  }

  byte_view taken(std::size_t size) {
    if (size > left_.size()) fail("the capture is cut off");
    const byte_view bytes = left_.first(size);
    left_ = left_.subspan(size);
    return bytes;
  }

  link_layer link_of(std::uint32_t given) const {
    const auto link = link_layer_of_number(given);
    if (!link) fail(fmt::format("the link layer {} is none of those that are read", given));
    return *link;
  }

  std::string time_of(std::uint64_t ticks, std::uint64_t per_second) const {
    return time_text(ticks / per_second * 1000000 + static_cast<std::uint64_t>(static_cast<double>(ticks % per_second) *
                                                                               1e6 / static_cast<double>(per_second)));
  }

  // --- pcap: a header, and one for each packet ---

  void begin_pcap() {
    constexpr std::uint32_t in_microseconds = 0xa1b2c3d4, in_nanoseconds = 0xa1b23c4d;
    const byte_view header = taken(24);
    is_pcap_ = true;
    for (const bool swapped : {false, true}) {
      is_swapped_ = swapped;
      const std::uint32_t magic = number(header, 0);
      if (magic != in_microseconds && magic != in_nanoseconds) continue;
      const std::uint64_t ticks = magic == in_microseconds ? 1000000 : 1000000000;
      interfaces_.push_back({link_of(number(header, 20) & 0xffff), 0, ticks});
      return;
    }
    fail("neither pcap's nor pcapng's format");
  }

  bool next_pcap(captured_packet &packet) {
    if (left_.empty()) return false;
    const byte_view header = taken(16);
    const std::uint64_t ticks = interfaces_[0].ticks;
    packet.link = interfaces_[0].link;
    packet.time = time_of(number(header, 0) * ticks + number(header, 4), ticks);
    packet.length = number(header, 12);
    packet.bytes = taken(number(header, 8));
    return true;
  }

  // --- pcapng: blocks, of which those of other types are left out ---

  bool next_pcapng(captured_packet &packet) {
    while (!left_.empty()) {
      if (left_.size() < 12) fail("the capture is cut off");
      // This type is the same in both orders of bytes.
      if (number(left_, 0) == section_block) begin_section();
      const std::uint32_t type = number(left_, 0);
      const std::uint32_t size = number(left_, 4);
      if (size < 12 || size % 4 != 0) fail("a block of the capture has a length that cannot be");
      const byte_view block = taken(size);
      const byte_view body = block.subspan(8, size - 12);
      if (type == interface_block) add_interface(body);
      if (type == packet_block || type == simple_block) {
        read_packet(body, type == simple_block, packet);
        return true;
      }
    }
    return false;
  }

  void begin_section() {
    constexpr std::uint32_t order = 0x1a2b3c4d;
    is_swapped_ = false;
    is_swapped_ = number(left_, 8) != order;
    if (number(left_, 8) != order) fail("a section of the capture does not say its byte order");
    interfaces_.clear();
  }

  void add_interface(byte_view body) {
    if (body.size() < 8) fail("the description of an interface is cut off");
    interface added {
      link_of(number(body, 0, 2)), number(body, 4), 1000000
    };
    constexpr std::uint32_t resolution = 9;
    for (std::size_t at = 8; at + 4 <= body.size();) {
      const std::uint32_t option = number(body, at, 2), size = number(body, at + 2, 2);
      if (option == 0) break;
      if (option == resolution && size == 1 && at + 4 < body.size()) added.ticks = ticks_of(body[at + 4]);
      at += 4 + (size + 3) / 4 * 4;
    }
    interfaces_.push_back(added);
  }

  // A power of ten, or of two if the highest bit is set.
  std::uint64_t ticks_of(unsigned char given) const {
    const unsigned power = given & 0x7f;
    if (power > ((given & 0x80) != 0 ? 63u : 19u)) fail("the resolution of an interface's clock cannot be");
    std::uint64_t ticks = 1;
    for (unsigned each = 0; each < power; ++each) ticks *= (given & 0x80) != 0 ? 2 : 10;
    return ticks;
  }

  void read_packet(byte_view body, bool is_simple, captured_packet &packet) const {
    const std::size_t header = is_simple ? 4 : 20;
    if (body.size() < header) fail("a packet's header is cut off");
    const std::size_t which = is_simple ? 0 : number(body, 0);
    if (which >= interfaces_.size()) fail("a packet is of an interface that is not described");
    const interface &here = interfaces_[which];
    packet.link = here.link;
    packet.length = number(body, is_simple ? 0 : 16);
    std::size_t size = is_simple ? packet.length : number(body, 12);
    if (is_simple && here.snapshot != 0) size = std::min<std::size_t>(size, here.snapshot);
    if (size > body.size() - header) fail("a packet is longer than its block");
    packet.bytes = body.subspan(header, size);
    packet.time = is_simple ? "" : time_of(std::uint64_t{number(body, 4)} << 32 | number(body, 8), here.ticks);
  }

  input_file &from_;
  byte_view left_;
  bool is_pcap_ = false;
  bool is_swapped_ = false;  // from the order of this processor, which has the lowest byte first
  std::vector<interface> interfaces_;
};

}  // namespace

std::unique_ptr<packet_source> open_capture(input_file &from, const std::string &filter) {
  if (!filter.empty()) throw usage_error("there are no filters without libpcap");
  return std::make_unique<capture_reader>(from);
}

}  // namespace inspect
