// Takes packets apart, and counts what is left out.
#include "capture.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cstdio>
#include <deque>
#include <utility>

#include "failure.hpp"
#include "tcp_streams.hpp"

namespace inspect {
namespace {

class capture : public message_source {
 public:
  capture(std::unique_ptr<input_file> file, std::unique_ptr<packet_source> packets, const input_options &options)
      : file_(std::move(file)),
        packets_(std::move(packets)),
        options_(options),
        streams_(
            options.stream, [this](const packet &last, byte_view message) { add(last, message); },
            [this](const std::string &problem) { report(problem); }, {}) {
    if (options_.stream == prefix_form::lines) {
      throw usage_error(file_->name() + ": --stream=lines is not for captures");
    }
  }

  bool next(input_message &message) override {
    if (is_begun_) ready_.pop_front();
    is_begun_ = false;
    while (ready_.empty()) {
      if (!read_packet()) {
        end();
        return false;
      }
    }
    is_begun_ = true;
    const pending &first = ready_.front();
    message.bytes = first.bytes;
    message.is_single = false;
    message.number = number_++;
    message.packet = first.origin;
    message.name = fmt::format("{}[{}]{}", file_->name(), message.number, to_string(first.origin));
    return true;
  }

 private:
  struct pending {
    byte_string bytes;
    packet_origin origin;
  };

  // False at the end.
  bool read_packet() {
    if (is_at_end_) return false;
    captured_packet captured;
    if (packets_->next(captured)) {
      ++count_;
      time_ = std::move(captured.time);
      add(parse_packet(captured.link, captured.bytes, captured.length));
      return true;
    }
    is_at_end_ = true;
    streams_.finish();
    return !ready_.empty();
  }

  void add(const packet &found) {
    const bool has_port = found.what == packet::content::datagram || found.what == packet::content::segment;
    if (options_.port && has_port && found.from.port != *options_.port && found.to.port != *options_.port) return;
    switch (found.what) {
      case packet::content::payload:
      case packet::content::datagram:
        if (found.missing != 0) {
          ++cut_off_;
        } else if (const auto part = limited(found.bytes, options_)) {
          add(found, *part);
        } else {
          ++too_short_;
        }
        break;
      case packet::content::segment:
        if (options_.stream != prefix_form::none) {
          streams_.add(found);
        } else if (!found.bytes.empty()) {
          ++segments_;
        }
        break;
      case packet::content::fragment:
        ++fragments_;
        break;
      case packet::content::damaged:
        ++damaged_;
        break;
      case packet::content::other:
        break;
    }
  }

  void add(const packet &from, byte_view message) {
    packet_origin origin{time_, {}, {}};
    if (from.what != packet::content::payload) {
      origin.from = inspect::to_string(from.from);
      origin.to = inspect::to_string(from.to);
    }
    ready_.push_back({byte_string(message.begin(), message.end()), std::move(origin)});
  }

  void report(const std::string &problem) {
    ++problems_;
    flush_output();
    fmt::print(stderr, "zorv-inspect: {}: {}\n", file_->name(), problem);
  }

  // Says what was left out. Messages that could not be put together are an error.
  void end() const {
    std::string text;
    const auto append = [&](std::size_t count, std::string_view one, std::string_view many) {
      if (count != 0) text += fmt::format("{} {} {}", text.empty() ? "left out:" : ",", count, count == 1 ? one : many);
    };
    append(problems_, "TCP stream in part", "TCP streams in part");
    append(fragments_, "fragment of an IP packet", "fragments of IP packets");
    append(cut_off_, "datagram cut off by the capture", "datagrams cut off by the capture");
    append(too_short_, "datagram shorter than --skip", "datagrams shorter than --skip");
    append(damaged_, "damaged packet", "damaged packets");
    const bool is_error = !text.empty();
    append(segments_, "TCP segment with data (--stream says how they are cut)",
           "TCP segments with data (--stream says how they are cut)");
    if (text.empty() && number_ == 0) text = fmt::format("no message in {} packets", count_);
    if (text.empty()) return;
    text = fmt::format("{}: {}", file_->name(), text);
    if (is_error) throw input_error(text);
    flush_output();
    fmt::print(stderr, "zorv-inspect: {}\n", text);
  }

  std::unique_ptr<input_file> file_;
  std::unique_ptr<packet_source> packets_;
  input_options options_;
  tcp_streams streams_;
  std::deque<pending> ready_;
  std::string time_;       // of the last packet
  bool is_begun_ = false;  // the first message has been handed out
  bool is_at_end_ = false;
  std::size_t count_ = 0;   // of packets
  std::size_t number_ = 0;  // of the next message
  std::size_t problems_ = 0, fragments_ = 0, cut_off_ = 0, too_short_ = 0, damaged_ = 0, segments_ = 0;
};

}  // namespace

std::unique_ptr<message_source> messages_of_capture(std::unique_ptr<input_file> file,
                                                    std::unique_ptr<packet_source> packets,
                                                    const input_options &options) {
  return std::make_unique<capture>(std::move(file), std::move(packets), options);
}

}  // namespace inspect
