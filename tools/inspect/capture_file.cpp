// Capture files, read by libpcap.
#include <pcap/pcap.h>

#include <fmt/chrono.h>
#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <exception>
#include <optional>

#include "capture_source.hpp"
#include "failure.hpp"

namespace inspect {
namespace {

std::optional<link_layer> link_layer_of_number(int number) {
  constexpr int first_user = 147, last_user = 162;  // DLT_USER0 to DLT_USER15
  if (number >= first_user && number <= last_user) return link_layer::payload;
  switch (number) {
    case DLT_EN10MB:
      return link_layer::ethernet;
    case DLT_LINUX_SLL:
      return link_layer::cooked;
    case DLT_LINUX_SLL2:
      return link_layer::cooked_2;
    case DLT_NULL:
    case DLT_LOOP:
      return link_layer::loopback;
    case DLT_RAW:
    case DLT_IPV4:
    case DLT_IPV6:
      return link_layer::ip;
    default:
      return std::nullopt;
  }
}

// "2026-11-22T12:00:01.500000Z".
std::string time_text(const timeval &time) {
  return fmt::format("{:%Y-%m-%dT%H:%M:%S}.{:06}Z", fmt::gmtime(time.tv_sec),
                     std::clamp<long>(static_cast<long>(time.tv_usec), 0, 999999));
}

class capture_file : public packet_source {
 public:
  capture_file(input_file &from, const std::string &filter) : from_(from) {
    std::FILE *const file = fopencookie(this, "rb", {&read, nullptr, nullptr, nullptr});
    if (file == nullptr) throw input_error(fmt::format("{}: {}", from.name(), std::strerror(errno)));
    char error[PCAP_ERRBUF_SIZE] = "";
    capture_ = pcap_fopen_offline(file, error);
    if (capture_ == nullptr) {
      std::fclose(file);
      fail(error);
    }
    try {
      begin(filter);
    } catch (...) {
      pcap_close(capture_);
      throw;
    }
  }

  ~capture_file() override {
    if (has_filter_) pcap_freecode(&filter_);
    pcap_close(capture_);
  }

  bool next(captured_packet &packet) override {
    while (true) {
      pcap_pkthdr *header = nullptr;
      const unsigned char *bytes = nullptr;
      const int result = pcap_next_ex(capture_, &header, &bytes);
      if (result == PCAP_ERROR_BREAK) {
        rethrow();
        return false;
      }
      if (result != 1) fail(pcap_geterr(capture_));
      if (has_filter_ && pcap_offline_filter(&filter_, header, bytes) == 0) continue;
      packet.link = link_;
      packet.bytes = byte_view(bytes, header->caplen);
      packet.length = header->len;
      packet.time = time_text(header->ts);
      return true;
    }
  }

 private:
  void begin(const std::string &filter) {
    const int number = pcap_datalink(capture_);
    const auto link = link_layer_of_number(number);
    if (!link) {
      const char *const name = pcap_datalink_val_to_name(number);
      fail(fmt::format("the link layer {} is none of those that are read",
                       name != nullptr ? name : std::to_string(number)));
    }
    link_ = *link;
    if (filter.empty()) return;
    if (pcap_compile(capture_, &filter_, filter.c_str(), 1, PCAP_NETMASK_UNKNOWN) != 0) {
      throw usage_error(fmt::format("--filter={}: {}", filter, pcap_geterr(capture_)));
    }
    has_filter_ = true;
  }

  [[noreturn]] void fail(std::string_view why) const {
    rethrow();
    throw input_error(fmt::format("{}: {}", from_.name(), why));
  }

  void rethrow() const {
    if (thrown_ != nullptr) std::rethrow_exception(thrown_);
  }

  // For the C library; exceptions wait until its functions have returned.
  static ssize_t read(void *self, char *into, std::size_t size) {
    auto *const here = static_cast<capture_file *>(self);
    try {
      if (here->from_.ahead().empty() && !here->from_.read_more()) return 0;
    } catch (...) {
      here->thrown_ = std::current_exception();
      return -1;
    }
    const byte_view ahead = here->from_.ahead();
    const std::size_t taken = std::min(size, ahead.size());
    std::memcpy(into, ahead.data(), taken);
    here->from_.consume(taken);
    return static_cast<ssize_t>(taken);
  }

  input_file &from_;
  std::exception_ptr thrown_;
  pcap_t *capture_ = nullptr;
  bpf_program filter_{};
  bool has_filter_ = false;
  link_layer link_ = link_layer::payload;
};

}  // namespace

std::unique_ptr<packet_source> open_capture(input_file &from, const std::string &filter) {
  return std::make_unique<capture_file>(from, filter);
}

}  // namespace inspect
