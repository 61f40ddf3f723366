// The sources of messages.
#include "messages.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <string_view>
#include <utility>

#include "capture.hpp"
#include "failure.hpp"
#include "text_encodings.hpp"

namespace inspect {
namespace {

byte_string owned(byte_view bytes) { return byte_string(bytes.begin(), bytes.end()); }

// What the input stands for, if it is text from beginning to end.
void decode_text(input_file &from, byte_form form, const input_options &options) {
  from.read_all();
  if (form != byte_form::raw) from.replace(parse_bytes(owned(from.ahead()), form, {from.name(), options.raw_choice}));
}

std::string beyond_the_end(std::size_t skip, std::size_t size) {
  return fmt::format("--skip={} exceeds its {}", skip, byte_count(size));
}

// Decodes text, and leaves out what is to be skipped. Bytes that cannot be text end the wait for more that might be.
void begin(input_file &from, const input_options &options) {
  if (options.input == byte_form::automatic) {
    std::size_t seen = 0;
    while (is_text(from.ahead().subspan(seen))) {
      seen = from.ahead().size();
      if (from.read_more()) continue;
      decode_text(from, byte_form::automatic, options);
      break;
    }
  } else if (options.input != byte_form::raw) {
    decode_text(from, options.input, options);
  }
  for (std::size_t left = options.skip; left != 0;) {
    if (from.ahead().empty() && !from.read_more()) {
      throw input_error(fmt::format("{}: {}", from.name(), beyond_the_end(options.skip, options.skip - left)));
    }
    const std::size_t size = std::min(left, from.ahead().size());
    from.consume(size);
    left -= size;
  }
}

class whole_input : public message_source {
 public:
  whole_input(std::unique_ptr<input_file> from, const input_options &options)
      : from_(std::move(from)), options_(options) {}

  bool next(input_message &message) override {
    if (is_read_) return false;
    is_read_ = true;
    begin(*from_, options_);
    message.bytes = from_->read_up_to(options_.length);
    message.name = from_->name();
    return true;
  }

 private:
  std::unique_ptr<input_file> from_;
  input_options options_;
  bool is_read_ = false;
};

class prefixed_stream : public message_source {
 public:
  prefixed_stream(std::unique_ptr<input_file> from, const input_options &options)
      : from_(std::move(from)), options_(options) {}

  bool next(input_message &message) override {
    if (std::exchange(is_new_, false)) begin(*from_, options_);
    from_->consume(std::exchange(last_size_, 0));
    while (true) {
      const byte_view stream = from_->ahead().first(std::min(from_->ahead().size(), options_.length - at_));
      const first_message found = first_message_of(stream, options_.stream);
      if (found.state == first_message::complete) {
        take(message, found, stream);
        return true;
      }
      if (found.state != first_message::invalid && at_ + stream.size() < options_.length && from_->read_more())
        continue;
      if (stream.empty()) return false;
      fail(found, stream.size());
    }
  }

 private:
  void take(input_message &message, const first_message &found, byte_view stream) {
    const auto length = static_cast<std::size_t>(found.length);
    message.bytes = stream.subspan(found.start, length);
    message.is_single = false;
    message.number = number_++;
    message.name = fmt::format("{}[{}]", from_->name(), message.number);
    message.offset = options_.skip + at_;
    last_size_ = found.start + length;
    at_ += last_size_;
  }

  [[noreturn]] void fail(const first_message &found, std::size_t size) const {
    const std::string which =
        fmt::format("{}: message {} of the stream, at offset {}", from_->name(), number_, options_.skip + at_);
    if (found.state != first_message::incomplete) {
      throw input_error(fmt::format("{}: the length prefix is cut off or invalid", which));
    }
    throw input_error(
        fmt::format("{}: length {} exceeds the {} left", which, found.length, byte_count(size - found.start)));
  }

  std::unique_ptr<input_file> from_;
  input_options options_;
  bool is_new_ = true;
  std::size_t last_size_ = 0;  // of the last message with its prefix, which its reader may still look at
  std::size_t number_ = 0;
  std::size_t at_ = 0;  // of the next message, after what is skipped
};

// Empty lines and comments are no messages.
class lines_of_text : public message_source {
 public:
  lines_of_text(std::unique_ptr<input_file> from, const input_options &options)
      : from_(std::move(from)), options_(options) {}

  bool next(input_message &message) override {
    while (const auto line = next_line()) {
      ++line_;
      try {
        content_ = parse_line(*line, options_.input);
      } catch (const input_error &error) {
        throw input_error(fmt::format("{}: line {}: {}", from_->name(), line_, error.what()));
      }
      from_->consume(std::min(line->size() + 1, from_->ahead().size()));
      if (!content_) continue;
      const auto part = limited(*content_, options_);
      if (!part) {
        const std::string problem = beyond_the_end(options_.skip, content_->size());
        throw input_error(fmt::format("{}: line {}: {}", from_->name(), line_, problem));
      }
      message.bytes = *part;
      message.is_single = false;
      message.number = number_++;
      message.name = fmt::format("{}[{}]", from_->name(), message.number);
      return true;
    }
    return false;
  }

 private:
  std::optional<std::string_view> next_line() {
    std::size_t seen = 0;
    while (true) {
      const byte_view ahead = from_->ahead();
      const std::string_view text(reinterpret_cast<const char *>(ahead.data()), ahead.size());
      if (const std::size_t end = text.find('\n', seen); end != text.npos) return text.substr(0, end);
      seen = text.size();
      if (from_->read_more()) continue;
      if (text.empty()) return std::nullopt;
      return text;
    }
  }

  std::unique_ptr<input_file> from_;
  input_options options_;
  std::optional<byte_string> content_;
  std::size_t line_ = 0;
  std::size_t number_ = 0;
};

// Whether there is a dump in the first lines. Most messages have a control character in their first bytes, and are not
// waited for.
bool begins_like_packet_text(input_file &from) {
  constexpr std::size_t enough = 4096;
  const auto is_control = [](unsigned char each) { return each < ' ' && each != '\t' && each != '\n' && each != '\r'; };
  while (std::ranges::none_of(from.ahead(), is_control) && from.ahead().size() < enough && from.read_more()) {
  }
  const byte_view beginning = from.ahead().first(std::min(enough, from.ahead().size()));
  if (std::ranges::any_of(beginning, is_control)) return false;
  const std::string_view text(reinterpret_cast<const char *>(beginning.data()), beginning.size());
  return text.find("0x0000:  ") != text.npos || text.starts_with("0000  ") || text.find("\n0000  ") != text.npos;
}

// Null if the input is no capture. More of it is read only while it may still be one.
std::unique_ptr<packet_source> packets_of(input_file &from, const input_options &options) {
  const bool is_chosen = options.input == byte_form::pcap;
  if (!is_chosen && options.input != byte_form::automatic) return nullptr;
  constexpr std::size_t longest_magic = 12;
  while (from.ahead().size() < longest_magic && may_be_capture(from.ahead()) && from.read_more()) {
  }
  if (is_chosen || is_capture(from.ahead())) return open_capture(from, options.filter);
  if (options.stream == prefix_form::lines || !begins_like_packet_text(from)) return nullptr;
  from.read_all();
  return packets_in_text(from.ahead());
}

}  // namespace

std::optional<byte_view> limited(byte_view bytes, const input_options &options) {
  if (options.skip > bytes.size()) return std::nullopt;
  const byte_view rest = bytes.subspan(options.skip);
  return rest.first(std::min(options.length, rest.size()));
}

std::string to_string(const packet_origin &origin) {
  std::string text;
  if (!origin.time.empty()) text += ' ' + origin.time;
  if (!origin.from.empty()) text += fmt::format(" {} > {}", origin.from, origin.to);
  return text;
}

std::unique_ptr<message_source> open_messages(const std::string &file, const input_options &options) {
  return open_messages(std::make_unique<input_file>(file), options);
}

std::unique_ptr<message_source> open_messages(std::unique_ptr<input_file> from, const input_options &options) {
  if (auto packets = packets_of(*from, options)) {
    return messages_of_capture(std::move(from), std::move(packets), options);
  }
  if (!options.filter.empty() || options.port)
    throw usage_error(from->name() + ": --filter and --port are for captures");
  switch (options.stream) {
    case prefix_form::none:
      return std::make_unique<whole_input>(std::move(from), options);
    case prefix_form::lines:
      return std::make_unique<lines_of_text>(std::move(from), options);
    default:
      return std::make_unique<prefixed_stream>(std::move(from), options);
  }
}

}  // namespace inspect
