/** @file
 *  Records in words for C++17: as JSON, in the form that `zorv-inspect` writes and reads, and as one line for a log.
 *
 *  Optional and header-only. `write_json` and `write_line` take no memory and do not throw; they write into a buffer of
 *  the caller's, of any size, without a NUL at the end. They only read the record, so any number of threads may do so
 *  at once. Records must be as for `compare`: zeroed before they were filled, or the output of `decode_ext` or
 *  `duplicate`. A null pointer counts as an empty string, block or list.
 *
 *  @code{.cpp}
 *  char line[256];
 *  std::clog << "received " << zorv::write_line(message, line, sizeof line).text << '\n';
 *  // received field1: 1 to_zorv { intf { field1: 7 field2: "eth0" } }
 *
 *  const std::string json = zorv::to_json(message);
 *  @endcode
 */
#ifndef PAVO_ZORV_TEXT_HPP
#define PAVO_ZORV_TEXT_HPP

#if (defined(_MSVC_LANG) ? _MSVC_LANG : __cplusplus) < 201703L
#error "pavo_zorv_text.hpp needs C++17 or later: compile with -std=c++17"
#else

#include <charconv>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

#include "pavo_zorv_fields.hpp"

namespace zorv {

/** Where lines of JSON are broken. */
enum class json_layout {
  lines, /**< One member to a line, indented; lists of integers on one line. */
  one_line /**< All of it on one line. */
};

/** How bytes, and strings that are not UTF-8, are written in JSON. */
enum class json_bytes {
  base64, /**< As base64, with padding. */
  hex, /**< As hexadecimal digits. */
  length /**< As "7 bytes": not what they are. */
};

/** Options of JSON. */
struct json_options {
  json_layout layout = json_layout::lines; /**< Where lines are broken. */
  json_bytes bytes = json_bytes::base64; /**< How bytes are written. */
};

/** @cond */
namespace detail {

// Writes what fits into a buffer, and counts all of it.
class counted_output {
 public:
  counted_output(char *buffer, std::size_t size) noexcept : buffer_(buffer), size_(buffer != nullptr ? size : 0) {}

  void put(std::string_view text) noexcept {
    const std::size_t left = length_ < size_ ? size_ - length_ : 0;
    const std::size_t fits = text.size() < left ? text.size() : left;
    if (fits != 0) std::memcpy(buffer_ + length_, text.data(), fits);
    length_ += text.size();
  }
  static constexpr bool is_full() noexcept { return false; }
  std::size_t length() const noexcept { return length_; }

 private:
  char *buffer_;
  std::size_t size_;
  std::size_t length_ = 0;
};

// Writes what fits into a buffer. What comes after is not even looked at.
class bounded_output {
 public:
  bounded_output(char *buffer, std::size_t size) noexcept : buffer_(buffer), size_(buffer != nullptr ? size : 0) {}

  void put(std::string_view text) noexcept {
    const std::size_t left = size_ - length_;
    const std::size_t fits = text.size() < left ? text.size() : left;
    if (fits != 0) std::memcpy(buffer_ + length_, text.data(), fits);
    length_ += fits;
    is_full_ = is_full_ || fits != text.size();
  }
  bool is_full() const noexcept { return is_full_; }
  std::size_t length() const noexcept { return length_; }

 private:
  char *buffer_;
  std::size_t size_;
  std::size_t length_ = 0;
  bool is_full_ = false;
};

template <class Output>
void put(Output &to, char character) noexcept(noexcept(to.put({}))) {
  to.put(std::string_view(&character, 1));
}

template <class Output, class Number>
void put_number(Output &to, Number number) noexcept(noexcept(to.put({}))) {
  char digits[20];  // as many as 2^64 - 1 has, and -2^63 with its sign
  const auto end = std::to_chars(digits, digits + sizeof digits, number).ptr;
  to.put(std::string_view(digits, static_cast<std::size_t>(end - digits)));
}

// The length of the UTF-8 character that begins with this byte; 0 if none does.
constexpr std::size_t utf8_length(unsigned char first) noexcept {
  return first < 0x80 ? 1 : first < 0xc2 ? 0 : first < 0xe0 ? 2 : first < 0xf0 ? 3 : first < 0xf5 ? 4 : 0;
}

// Whether the second byte excludes over-long forms, surrogates and characters above U+10FFFF.
constexpr bool second_fits(unsigned char first, unsigned char second) noexcept {
  return first == 0xe0   ? second >= 0xa0
         : first == 0xed ? second < 0xa0
         : first == 0xf0 ? second >= 0x90
         : first == 0xf4 ? second < 0x90
                         : true;
}

constexpr bool is_utf8(std::string_view text) noexcept {
  for (std::size_t at = 0; at < text.size();) {
    const auto first = static_cast<unsigned char>(text[at]);
    const std::size_t length = utf8_length(first);
    if (length == 0 || length > text.size() - at) return false;
    for (std::size_t index = 1; index < length; ++index) {
      if ((static_cast<unsigned char>(text[at + index]) & 0xc0) != 0x80) return false;
    }
    if (length > 1 && !second_fits(first, static_cast<unsigned char>(text[at + 1]))) return false;
    at += length;
  }
  return true;
}

inline bytes as_bytes(std::string_view text) noexcept {
  return {reinterpret_cast<const unsigned char *>(text.data()), text.size()};
}

// JSON of a record, appended to an output: anything with put(std::string_view) and is_full().
template <class Output>
class json_writer {
 public:
  json_writer(Output &to, const json_options &options) noexcept : to_(to), options_(options) {}

  template <class Record>
  void object(const Record &record) noexcept(noexcept(std::declval<Output &>().put({}))) {
    bool is_empty = true;
    put(to_, '{');
    ++depth_;
    for_each_field<Record>([&](auto field) {
      if (!field.is_in(record) || to_.is_full()) return;
      if (!is_empty) put(to_, ',');
      separate(!is_empty);
      is_empty = false;
      put(to_, '"');
      to_.put(field.name);
      to_.put("\": ");
      value<decltype(field)::kind>(field.get(record));
    });
    --depth_;
    if (!is_empty) break_line();
    put(to_, '}');
  }

 private:
  template <kind Kind, class Value>
  void value(const Value &given) {
    if constexpr (Kind == kind::flag) {
      to_.put(given ? "true" : "false");
    } else if constexpr (Kind == kind::integer) {
      integer(given);
    } else if constexpr (Kind == kind::string) {
      string(given);
    } else if constexpr (Kind == kind::bytes) {
      quoted_bytes(given);
    } else if constexpr (Kind == kind::integer_list) {
      integers(given);
    } else if constexpr (Kind == kind::message_list) {
      objects(given);
    } else {
      object(given);
    }
  }

  // Many readers of JSON would round a number of 64 bits.
  template <class Number>
  void integer(Number number) {
    if (sizeof number == 8) put(to_, '"');
    put_number(to_, number);
    if (sizeof number == 8) put(to_, '"');
  }

  template <class Element>
  void integers(span<Element> elements) {
    put(to_, '[');
    bool is_first = true;
    for (const auto element : elements) {
      if (to_.is_full()) return;
      if (!is_first) to_.put(", ");
      is_first = false;
      integer(element);
    }
    put(to_, ']');
  }

  template <class Element>
  void objects(span<Element> elements) {
    bool is_empty = true;
    put(to_, '[');
    ++depth_;
    for (const Element &element : elements) {
      if (to_.is_full()) return;
      if (!is_empty) put(to_, ',');
      separate(!is_empty);
      is_empty = false;
      object(element);
    }
    --depth_;
    if (!is_empty) break_line();
    put(to_, ']');
  }

  void string(std::string_view text) {
    if (is_utf8(text)) {
      quoted(text);
      return;
    }
    static constexpr const char *names[] = {"\"base64\": ", "\"hex\": ", "\"length\": "};
    put(to_, '{');
    ++depth_;
    separate(false);
    to_.put(names[static_cast<std::size_t>(options_.bytes)]);
    quoted_bytes(as_bytes(text));
    --depth_;
    break_line();
    put(to_, '}');
  }

  void quoted(std::string_view text) {
    put(to_, '"');
    std::size_t plain = 0;
    for (std::size_t at = 0; at < text.size(); ++at) {
      const auto byte = static_cast<unsigned char>(text[at]);
      if (byte >= ' ' && byte != '"' && byte != '\\') continue;
      to_.put(text.substr(plain, at - plain));
      plain = at + 1;
      escape(byte);
    }
    to_.put(text.substr(plain));
    put(to_, '"');
  }

  void escape(unsigned char byte) {
    constexpr std::string_view controls = "\b\f\n\r\t", letters = "bfnrt";
    const std::size_t known = controls.find(static_cast<char>(byte));
    put(to_, '\\');
    if (byte == '"' || byte == '\\') {
      put(to_, static_cast<char>(byte));
    } else if (known != controls.npos) {
      put(to_, letters[known]);
    } else {
      to_.put("u00");
      hex_digits(byte);
    }
  }

  void hex_digits(unsigned char byte) {
    constexpr std::string_view digits = "0123456789abcdef";
    put(to_, digits[byte >> 4]);
    put(to_, digits[byte & 15]);
  }

  void quoted_bytes(bytes content) {
    put(to_, '"');
    if (options_.bytes == json_bytes::length) {
      put_number(to_, content.size());
      to_.put(content.size() == 1 ? " byte" : " bytes");
    } else if (options_.bytes == json_bytes::hex) {
      for (const unsigned char byte : content) {
        if (to_.is_full()) return;
        hex_digits(byte);
      }
    } else {
      base64(content);
    }
    put(to_, '"');
  }

  void base64(bytes content) {
    constexpr std::string_view digits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    for (std::size_t at = 0; at < content.size() && !to_.is_full(); at += 3) {
      const std::size_t count = content.size() - at < 3 ? content.size() - at : 3;
      unsigned group = 0;
      for (std::size_t index = 0; index < 3; ++index) group = group << 8 | (index < count ? content[at + index] : 0u);
      char text[4];
      for (std::size_t index = 0; index < 4; ++index) {
        text[index] = index <= count ? digits[group >> (18 - 6 * index) & 63] : '=';
      }
      to_.put(std::string_view(text, sizeof text));
    }
  }

  // What comes before a member or an element.
  void separate(bool is_after_another) {
    if (options_.layout == json_layout::lines) {
      break_line();
    } else if (is_after_another) {
      put(to_, ' ');
    }
  }

  void break_line() {
    if (options_.layout != json_layout::lines) return;
    put(to_, '\n');
    for (unsigned level = 0; level < depth_; ++level) to_.put("  ");
  }

  Output &to_;
  json_options options_;
  unsigned depth_ = 0;
};

// A record on one line, in the text form of Protocol Buffers.
template <class Output>
class line_writer {
 public:
  explicit line_writer(Output &to) noexcept : to_(to) {}

  template <class Record>
  void fields(const Record &record, bool is_empty = true) {
    for_each_field<Record>([&](auto field) {
      if (!field.is_in(record) || to_.is_full()) return;
      value<decltype(field)::kind>(field.name, field.get(record), is_empty);
    });
  }

 private:
  template <kind Kind, class Value>
  void value(std::string_view name, const Value &given, bool &is_empty) {
    if constexpr (Kind == kind::message_list) {
      for (const auto &element : given) {
        if (to_.is_full()) return;
        message(name, element, is_empty);
      }
    } else if constexpr (Kind == kind::nested) {
      message(name, given, is_empty);
    } else {
      named(name, is_empty);
      to_.put(": ");
      if constexpr (Kind == kind::flag) {
        to_.put(given ? "true" : "false");
      } else if constexpr (Kind == kind::integer) {
        put_number(to_, given);
      } else if constexpr (Kind == kind::string) {
        quoted(as_bytes(given));
      } else if constexpr (Kind == kind::bytes) {
        quoted(given);
      } else {
        integers(given);
      }
    }
  }

  void named(std::string_view name, bool &is_empty) {
    if (!is_empty) put(to_, ' ');
    is_empty = false;
    to_.put(name);
  }

  template <class Record>
  void message(std::string_view name, const Record &record, bool &is_empty) {
    named(name, is_empty);
    to_.put(" {");
    fields(record, false);
    to_.put(" }");
  }

  template <class Element>
  void integers(span<Element> elements) {
    put(to_, '[');
    bool is_first = true;
    for (const auto element : elements) {
      if (to_.is_full()) return;
      if (!is_first) to_.put(", ");
      is_first = false;
      put_number(to_, element);
    }
    put(to_, ']');
  }

  // Printable characters of ASCII alone: nothing that a terminal obeys gets into a log.
  void quoted(bytes content) {
    put(to_, '"');
    for (const unsigned char byte : content) {
      if (to_.is_full()) return;
      if (byte == '"' || byte == '\\' || byte == '\'') {
        put(to_, '\\');
        put(to_, static_cast<char>(byte));
      } else if (byte >= ' ' && byte <= '~') {
        put(to_, static_cast<char>(byte));
      } else {
        const char octal[] = {
            '\\', static_cast<char>('0' + (byte >> 6)), static_cast<char>('0' + (byte >> 3 & 7)),
            static_cast<char>('0' + (byte & 7))};
        to_.put(std::string_view(octal, sizeof octal));
      }
    }
    put(to_, '"');
  }

  Output &to_;
};

}  // namespace detail
/** @endcond */

/** Writes a record as JSON into @p buffer, as much of it as fits into @p size characters, and returns the length of all
 *  of it: it was cut if that is more than @p size. A null buffer measures. The time is that of all of the text, however
 *  much of it fits.
 *
 *  There is one member for each field that is present, with the field's name. Flags are `true` or `false`; numbers of
 *  64 bits are strings, because many readers of JSON round them. Bytes are base64, unless the options say otherwise. A
 *  string that is not UTF-8 is an object like `{"base64": "/w=="}`. */
template <class Record>
[[nodiscard]] std::size_t write_json(
    const Record &record, char *buffer, std::size_t size, const json_options &options = {}) noexcept {
  detail::counted_output output(buffer, size);
  detail::json_writer<detail::counted_output>(output, options).object(record);
  return output.length();
}

/** Returns a record as JSON: see zorv::write_json. Throws what a `std::string` throws without memory. */
template <class Record>
[[nodiscard]] std::string to_json(const Record &record, const json_options &options = {}) {
  std::string text(write_json(record, nullptr, 0, options), '\0');
  static_cast<void>(write_json(record, text.data(), text.size(), options));
  return text;
}

/** What zorv::write_line has written. */
struct line {
  std::string_view text; /**< The line, in the caller's buffer. */
  bool is_cut; /**< Whether there is more than fitted. */
};

/** Writes a record as one line into @p buffer, at most @p size characters of printable ASCII without a line break, in
 *  the text form of Protocol Buffers: `field1: 7 field2: "eth0"`. If it does not fit, the line ends with `...`, or as
 *  many of these dots as fit, and what does not fit is not looked at: the time depends on the buffer, not on the
 *  record. A null buffer counts as one of size 0.
 *
 *  A line that was not cut can be read by `protoc --encode` and `zorv-inspect`. */
template <class Record>
[[nodiscard]] line write_line(const Record &record, char *buffer, std::size_t size) noexcept {
  detail::bounded_output output(buffer, size);
  detail::line_writer<detail::bounded_output>(output).fields(record);
  const std::size_t length = output.length();
  const std::size_t dots = output.is_full() ? (length < 3 ? length : 3) : 0;
  if (dots != 0) std::memset(buffer + length - dots, '.', dots);
  return {std::string_view(buffer, length), output.is_full()};
}

}  // namespace zorv

#endif  // C++17

#endif  // PAVO_ZORV_TEXT_HPP
