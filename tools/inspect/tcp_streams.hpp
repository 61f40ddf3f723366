// The messages in TCP streams: segments put in order, and cut at the length prefixes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <list>
#include <map>
#include <optional>
#include <string>
#include <utility>

#include "bytes.hpp"
#include "capture_packet.hpp"
#include "stream.hpp"

namespace inspect {

class tcp_streams {
 public:
  using message_handler = std::function<void(const packet &last_segment, byte_view message)>;
  using problem_handler = std::function<void(const std::string &problem)>;

  // How much is kept. What exceeds it is a problem, and the stream is left out from there on.
  struct limits {
    std::size_t streams = 65536;                  // the least recently used one is forgotten
    std::size_t waiting = std::size_t{4} << 20;   // bytes of a stream that came too early
    std::size_t message = std::size_t{64} << 20;  // bytes of a message
    std::size_t total = std::size_t{256} << 20;   // bytes of all streams
  };

  tcp_streams(prefix_form form, message_handler on_message, problem_handler on_problem, limits bounds)
      : form_(form), on_message_(std::move(on_message)), on_problem_(std::move(on_problem)), limits_(bounds) {}

  tcp_streams(const tcp_streams &) = delete;
  tcp_streams &operator=(const tcp_streams &) = delete;

  void add(const packet &segment);

  // After the last segment: what has not become a message is a problem.
  void finish();

 private:
  using ends = std::pair<endpoint, endpoint>;

  struct stream {
    ends between;
    std::optional<std::uint32_t> first;  // the sequence number of its first byte, if its beginning was captured
    std::uint32_t next = 0;              // the sequence number of the byte after `bytes`
    std::uint64_t position = 0;          // of that byte in the stream
    bool is_closed = false;  // after its end, or a problem: the rest is left out until another stream begins
    bool is_midway = false;  // its beginning was not captured
    byte_string bytes;       // in order, not yet a message
    std::map<std::uint64_t, byte_string> early;  // by their position
    std::size_t early_size = 0;                  // with what keeping them takes
    std::uint64_t end = UINT64_MAX;              // its position, once it is known
  };
  using streams = std::list<stream>;

  stream &stream_of(const packet &segment);
  void begin(stream &here, std::uint32_t first);
  void add_bytes(stream &here, const packet &segment);
  void append(stream &here, byte_view bytes);
  void append_early(stream &here);
  void cut(stream &here, const packet &segment);
  void close(stream &here);
  void fail(stream &here, const std::string &problem);
  void drop(stream &here);

  prefix_form form_;
  message_handler on_message_;
  problem_handler on_problem_;
  limits limits_;
  streams streams_;  // the most recently used one first
  std::map<ends, streams::iterator> by_ends_;
  std::size_t total_ = 0;  // bytes in all streams
};

}  // namespace inspect
