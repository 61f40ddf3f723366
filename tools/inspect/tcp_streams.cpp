// Reassembles TCP streams in bounded memory.
#include "tcp_streams.hpp"

#include <fmt/format.h>

#include <algorithm>

#include "text_encodings.hpp"

namespace inspect {
namespace {

// What it takes to keep a segment that came too early, besides its bytes.
constexpr std::size_t overhead = 96;

}  // namespace

void tcp_streams::add(const packet &segment) {
  stream &here = stream_of(segment);
  if (segment.begins_stream) begin(here, segment.sequence + 1);
  if (here.is_closed) return;
  if (!segment.bytes.empty() || segment.missing != 0) add_bytes(here, segment);
  if (here.is_closed) return;
  if (segment.ends_stream) {
    const std::uint32_t last = segment.sequence + (segment.begins_stream ? 1u : 0u) +
                               static_cast<std::uint32_t>(segment.bytes.size() + segment.missing);
    here.end = here.position + static_cast<std::uint32_t>(last - here.next);
    if (static_cast<std::int32_t>(last - here.next) < 0) here.end = here.position;
  }
  if (segment.resets_stream || here.position >= here.end) close(here);
}

void tcp_streams::finish() {
  for (stream &each : streams_) {
    if (!each.is_closed) close(each);
  }
}

// A stream whose beginning was not captured is taken to begin with its first bytes.
tcp_streams::stream &tcp_streams::stream_of(const packet &segment) {
  const ends between(segment.from, segment.to);
  if (const auto found = by_ends_.find(between); found != by_ends_.end()) {
    streams_.splice(streams_.begin(), streams_, found->second);
    return *found->second;
  }
  if (streams_.size() == limits_.streams) {
    if (!streams_.back().is_closed) close(streams_.back());
    by_ends_.erase(streams_.back().between);
    streams_.pop_back();
  }
  stream &added = streams_.emplace_front();
  by_ends_[between] = streams_.begin();
  added.between = between;
  added.next = segment.sequence;
  added.is_midway = !segment.begins_stream;
  return added;
}

// The first segment may be repeated; otherwise the ends are used by another stream.
void tcp_streams::begin(stream &here, std::uint32_t first) {
  if (here.first == first) return;
  const ends between = here.between;
  if (!here.is_closed && (!here.bytes.empty() || !here.early.empty())) close(here);
  drop(here);
  here = stream();
  here.between = between;
  here.first = here.next = first;
}

void tcp_streams::add_bytes(stream &here, const packet &segment) {
  const std::uint32_t first = segment.sequence + (segment.begins_stream ? 1u : 0u);
  const auto distance = static_cast<std::int32_t>(first - here.next);
  byte_view bytes = segment.bytes;
  std::size_t missing = segment.missing;
  if (distance < 0) {
    // Sent again, perhaps with more at the end.
    const std::size_t known = static_cast<std::size_t>(-std::int64_t{distance});
    if (known >= bytes.size() + missing) return;
    missing -= known > bytes.size() ? known - bytes.size() : 0;
    bytes = bytes.subspan(std::min(known, bytes.size()));
  }
  if (distance > 0) {
    const std::uint64_t position = here.position + static_cast<std::uint64_t>(distance);
    if (bytes.empty()) return;
    const auto [place, is_new] = here.early.try_emplace(position);
    byte_string &kept = place->second;
    if (kept.size() >= bytes.size()) return;
    const std::size_t more = bytes.size() - kept.size() + (is_new ? overhead : 0);
    here.early_size += more;
    total_ += more;
    kept.assign(bytes.begin(), bytes.end());
    if (here.early_size > limits_.waiting || total_ > limits_.total) {
      fail(here, fmt::format("{} missing at offset {} of the stream",
                             byte_count(here.early.begin()->first - here.position), here.position));
    }
    return;
  }
  append(here, bytes);
  if (missing == 0) append_early(here);
  cut(here, segment);
  if (missing != 0 && !here.is_closed) {
    fail(here, fmt::format("{} not captured at offset {} of the stream", byte_count(missing), here.position));
  }
}

void tcp_streams::append(stream &here, byte_view bytes) {
  here.bytes.insert(here.bytes.end(), bytes.begin(), bytes.end());
  here.next += static_cast<std::uint32_t>(bytes.size());
  here.position += bytes.size();
  total_ += bytes.size();
}

void tcp_streams::append_early(stream &here) {
  while (!here.early.empty() && here.early.begin()->first <= here.position) {
    const auto node = here.early.extract(here.early.begin());
    const byte_string &bytes = node.mapped();
    const std::size_t known = std::min<std::size_t>(here.position - node.key(), bytes.size());
    here.early_size -= bytes.size() + overhead;
    total_ -= bytes.size() + overhead;
    append(here, byte_view(bytes).subspan(known));
  }
}

void tcp_streams::cut(stream &here, const packet &segment) {
  std::size_t at = 0;
  first_message found{first_message::cut_prefix};
  while (at != here.bytes.size()) {
    found = first_message_of(byte_view(here.bytes).subspan(at), form_);
    if (found.state != first_message::complete) break;
    on_message_(segment, byte_view(here.bytes).subspan(at + found.start, static_cast<std::size_t>(found.length)));
    at += found.start + static_cast<std::size_t>(found.length);
  }
  here.bytes.erase(here.bytes.begin(), here.bytes.begin() + static_cast<std::ptrdiff_t>(at));
  total_ -= at;
  if (here.bytes.empty()) return;
  const std::uint64_t offset = here.position - here.bytes.size();
  if (found.state == first_message::invalid) {
    fail(here, fmt::format("no length prefix at offset {} of the stream", offset));
  } else if (found.state == first_message::incomplete && found.length > limits_.message) {
    fail(here, fmt::format("a length of {} at offset {} of the stream, which is too great", found.length, offset));
  } else if (total_ > limits_.total) {
    fail(here, "too many streams wait for the rest of a message");
  }
}

// At its end, or that of the capture.
void tcp_streams::close(stream &here) {
  if (!here.early.empty()) {
    fail(here, fmt::format("{} missing at offset {} of the stream",
                           byte_count(here.early.begin()->first - here.position), here.position));
  } else if (here.end != UINT64_MAX && here.end > here.position) {
    fail(here,
         fmt::format("{} missing at offset {} of the stream", byte_count(here.end - here.position), here.position));
  } else if (!here.bytes.empty()) {
    fail(here, fmt::format("it ends within a message, {} after its beginning at offset {} of the stream",
                           byte_count(here.bytes.size()), here.position - here.bytes.size()));
  } else {
    drop(here);
  }
}

void tcp_streams::fail(stream &here, const std::string &problem) {
  on_problem_(fmt::format("TCP {} > {}: {}{}", to_string(here.between.first), to_string(here.between.second), problem,
                          here.is_midway ? " (whose beginning was not captured)" : ""));
  drop(here);
}

// Ends a stream and releases its memory. It stays known, so that what is sent again is not taken for another.
void tcp_streams::drop(stream &here) {
  total_ -= here.bytes.size() + here.early_size;
  here.bytes = {};
  here.early.clear();
  here.early_size = 0;
  here.is_closed = true;
}

}  // namespace inspect
