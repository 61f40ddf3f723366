// The sources of messages.
#include "messages.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <string_view>
#include <utility>

#include "failure.hpp"
#include "text_encodings.hpp"

namespace inspect {
namespace {

byte_view limited(byte_view bytes, const input_options &options) {
  const byte_view rest = bytes.subspan(std::min(options.skip, bytes.size()));
  return rest.first(std::min(options.length, rest.size()));
}

byte_string owned(byte_view bytes) { return byte_string(bytes.begin(), bytes.end()); }

// What the input stands for, if it is text from beginning to end.
void decode_text(input_file &from, byte_form form) {
  from.read_all();
  if (form != byte_form::raw) from.replace(parse_bytes(owned(from.ahead()), form));
}

class whole_input : public message_source {
 public:
  whole_input(std::unique_ptr<input_file> from, const input_options &options)
      : from_(std::move(from)), options_(options) {}

  bool next(input_message &message) override {
    if (is_read_) return false;
    is_read_ = true;
    from_->read_all();
    if (options_.input != byte_form::raw && !(options_.input == byte_form::automatic && !is_text(from_->ahead()))) {
      decode_text(*from_, options_.input);
    }
    message.bytes = limited(from_->ahead(), options_);
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
    if (std::exchange(is_new_, false)) begin();
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
  // Bytes that cannot be text end the wait for more that might be.
  void begin() {
    if (options_.input == byte_form::automatic) {
      std::size_t seen = 0;
      while (is_text(from_->ahead().subspan(seen))) {
        seen = from_->ahead().size();
        if (from_->read_more()) continue;
        decode_text(*from_, byte_form::automatic);
        break;
      }
    } else if (options_.input != byte_form::raw) {
      decode_text(*from_, options_.input);
    }
    std::size_t left = options_.skip;
    while (left != 0 && (!from_->ahead().empty() || from_->read_more())) {
      const std::size_t size = std::min(left, from_->ahead().size());
      from_->consume(size);
      left -= size;
    }
  }

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
      message.bytes = limited(*content_, options_);
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

}  // namespace

std::unique_ptr<message_source> open_messages(const std::string &file, const input_options &options) {
  return open_messages(std::make_unique<input_file>(file), options);
}

std::unique_ptr<message_source> open_messages(std::unique_ptr<input_file> from, const input_options &options) {
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
