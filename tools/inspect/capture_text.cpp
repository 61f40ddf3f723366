// Packets in text, and what tells captures from other input.
#include <algorithm>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "byte_forms.hpp"
#include "capture_source.hpp"
#include "failure.hpp"

namespace inspect {
namespace {

struct packet_text {
  std::string time;
  byte_string bytes;
};

class packets_of_text : public packet_source {
 public:
  explicit packets_of_text(std::vector<packet_text> packets) : packets_(std::move(packets)) {}

  bool next(captured_packet &packet) override {
    if (next_ == packets_.size()) return false;
    const packet_text &here = packets_[next_++];
    // What is no IP packet stays none.
    packet.link = link_layer_of(here.bytes).value_or(link_layer::ip);
    packet.bytes = here.bytes;
    packet.length = here.bytes.size();
    packet.time = here.time;
    return true;
  }

 private:
  std::vector<packet_text> packets_;
  std::size_t next_ = 0;
};

bool is_hex_digit(char each) { return std::string_view("0123456789abcdefABCDEF").find(each) != std::string_view::npos; }

// The offset at the beginning of a line, as tcpdump ("\t0x0010:  ") or tshark ("0010  ") prints it.
std::optional<std::string_view> offset_digits(std::string_view line) {
  while (line.starts_with('\t') || line.starts_with(' ')) line.remove_prefix(1);
  const bool is_prefixed = line.starts_with("0x");
  if (is_prefixed) line.remove_prefix(2);
  const auto size = static_cast<std::size_t>(std::ranges::find_if_not(line, is_hex_digit) - line.begin());
  if (size < 4 || size > 5 || !line.substr(size).starts_with(is_prefixed ? ":  " : "  ")) return std::nullopt;
  return line.substr(0, size);
}

// "12:00:01.500000", perhaps after a date, at the beginning of the line before a packet.
std::string time_in(std::string_view headline) {
  const auto is_part = [](char each) {
    return (each >= '0' && each <= '9') || std::string_view(":.-").find(each) != std::string_view::npos;
  };
  std::string time;
  while (true) {
    const std::string_view word = headline.substr(0, headline.find(' '));
    if (word.size() < 8 || !std::ranges::all_of(word, is_part)) return time;
    time += (time.empty() ? "" : " ") + std::string(word);
    if (word.size() == headline.size() || word.find(':') != word.npos) return time;
    headline.remove_prefix(word.size() + 1);
  }
}

bool is_zero(std::string_view digits) { return digits.find_first_not_of('0') == digits.npos; }

// Whether bytes are what a magic number says, as far as there are any.
bool matches(byte_view bytes, std::size_t at, byte_view magic, bool may_be_short) {
  if (bytes.size() < at + magic.size() && !may_be_short) return false;
  const byte_view there = bytes.subspan(std::min(at, bytes.size()));
  const std::size_t size = std::min(there.size(), magic.size());
  return std::ranges::equal(there.first(size), magic.first(size));
}

bool matches_magic(byte_view bytes, bool may_be_short) {
  static constexpr unsigned char magics[][4] = {
      {0xa1, 0xb2, 0xc3, 0xd4}, {0xd4, 0xc3, 0xb2, 0xa1}, {0xa1, 0xb2, 0x3c, 0x4d}, {0x4d, 0x3c, 0xb2, 0xa1}};
  for (const auto &each : magics) {
    if (matches(bytes, 0, each, may_be_short)) return true;
  }
  static constexpr unsigned char section[] = {0x0a, 0x0d, 0x0d, 0x0a};
  static constexpr unsigned char orders[][4] = {{0x1a, 0x2b, 0x3c, 0x4d}, {0x4d, 0x3c, 0x2b, 0x1a}};
  for (const auto &each : orders) {
    if (matches(bytes, 0, section, may_be_short) && matches(bytes, 8, each, may_be_short)) return true;
  }
  return false;
}

}  // namespace

bool is_capture(byte_view beginning) { return matches_magic(beginning, false); }

bool may_be_capture(byte_view beginning) { return matches_magic(beginning, true); }

std::unique_ptr<packet_source> packets_in_text(byte_view input) {
  std::string_view text(reinterpret_cast<const char *>(input.data()), input.size());
  if (text.find('\0') != text.npos) return nullptr;
  std::vector<packet_text> packets;
  std::string dump, headline;
  bool has_ip = false, is_possible = true;
  const auto end_packet = [&] {
    if (dump.empty() || !is_possible) return;
    try {
      const byte_string dumped(dump.begin(), dump.end());
      packets.push_back({time_in(headline), parse_bytes(dumped, byte_form::dump)});
      has_ip = has_ip || link_layer_of(packets.back().bytes).has_value();
    } catch (const input_error &) {
      is_possible = false;
    }
    dump.clear();
  };
  while (!text.empty() && is_possible) {
    const std::string_view line = text.substr(0, text.find('\n'));
    text.remove_prefix(std::min(line.size() + 1, text.size()));
    const auto offset = offset_digits(line);
    if (!offset || is_zero(*offset)) end_packet();
    if (offset) {
      dump += std::string(line) + '\n';
    } else if (!line.starts_with(' ') && line.find_first_not_of(" \t\r") != line.npos) {
      headline = line;
    }
  }
  end_packet();
  if (!has_ip || !is_possible) return nullptr;
  return std::make_unique<packets_of_text>(std::move(packets));
}

}  // namespace inspect
