/** @file
 *  Records in words for C++17: as JSON, in the form that `zorv-inspect` reads, and itself writes with this header, and
 *  as one line for a log.
 *
 *  Optional and header-only. `write_json` and `write_line` take no memory and do not throw; they write into a buffer of
 *  the caller's, of any size, without a NUL at the end. zorv::json_writer takes no memory either: it hands its text on
 *  piece by piece. All of them only read the record, so any number of threads may do so at once. Records must be as for
 *  `compare`: zeroed before they were filled, or the output of `decode_ext` or `duplicate`. A null pointer counts as an
 *  empty string, block or list.
 *
 *  @code{.cpp}
 *  char line[256];
 *  std::clog << "received " << zorv::write_line(message, line, sizeof line).text << '\n';
 *  // received field1: 1 to_zorv { intf { field1: 7 field2: "eth0" } }
 *
 *  const std::string json = zorv::to_json(message);
 *
 *  zorv::json_writer to([&](std::string_view piece) { file << piece; });
 *  to.begin_object();
 *  to.name("peer");
 *  to.string(peer);
 *  to.name("message");
 *  to.record(message);
 *  to.end_object();
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

/** How lists of 8-bit numbers are written in JSON. Most of them are addresses. */
enum class json_byte_lists {
  numbers, /**< As a list of numbers, like other lists. */
  hex, /**< As a string of hexadecimal digits. */
  address /**< As a string like "192.0.2.1" or "2001:db8::51" if there are 4 or 16 numbers, else as a list. */
};

/** Options of JSON. */
struct json_options {
  json_layout layout = json_layout::lines; /**< Where lines are broken. */
  json_bytes bytes = json_bytes::base64; /**< How bytes are written. */
  json_byte_lists byte_lists = json_byte_lists::numbers; /**< How lists of 8-bit numbers are written. */
};

/** @cond */
namespace detail {

// Writes what fits into a buffer, and counts all of it.
class counted_output {
 public:
  counted_output(char *buffer, std::size_t size) noexcept : buffer_(buffer), size_(buffer != nullptr ? size : 0) {}

  void operator()(std::string_view piece) noexcept {
    const std::size_t left = length_ < size_ ? size_ - length_ : 0;
    const std::size_t fits = piece.size() < left ? piece.size() : left;
    if (fits != 0) std::memcpy(buffer_ + length_, piece.data(), fits);
    length_ += piece.size();
  }
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

  void operator()(std::string_view piece) noexcept {
    const std::size_t left = size_ - length_;
    const std::size_t fits = piece.size() < left ? piece.size() : left;
    if (fits != 0) std::memcpy(buffer_ + length_, piece.data(), fits);
    length_ += fits;
    is_full_ = is_full_ || fits != piece.size();
  }
  bool is_full() const noexcept { return is_full_; }
  std::size_t length() const noexcept { return length_; }

 private:
  char *buffer_;
  std::size_t size_;
  std::size_t length_ = 0;
  bool is_full_ = false;
};

// Appends a number to characters that have room for the 20 that 2^64 - 1 has, and -2^63 with its sign.
template <class Number>
char *append_number(char *to, Number number) noexcept {
  return std::to_chars(to, to + 20, number).ptr;
}

template <class Sink, class Number>
void put_number(Sink &to, Number number) {
  char digits[20];
  to(std::string_view(digits, static_cast<std::size_t>(append_number(digits, number) - digits)));
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

template <class Sink>
void put_hex(Sink &to, bytes content) {
  constexpr std::string_view digits = "0123456789abcdef";
  for (const unsigned char byte : content) {
    const char both[] = {digits[byte >> 4], digits[byte & 15]};
    to(std::string_view(both, sizeof both));
  }
}

template <class Sink>
void put_base64(Sink &to, bytes content) {
  constexpr std::string_view digits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  for (std::size_t at = 0; at < content.size(); at += 3) {
    const std::size_t count = content.size() - at < 3 ? content.size() - at : 3;
    unsigned group = 0;
    for (std::size_t index = 0; index < 3; ++index) group = group << 8 | (index < count ? content[at + index] : 0u);
    char text[4];
    for (std::size_t index = 0; index < 4; ++index) {
      text[index] = index <= count ? digits[group >> (18 - 6 * index) & 63] : '=';
    }
    to(std::string_view(text, sizeof text));
  }
}

// The name of a field and what is around it, for one piece.
template <class Field>
class quoted_name {
 public:
  constexpr quoted_name() {
    characters_[0] = '"';
    for (std::size_t index = 0; index < length; ++index) characters_[1 + index] = Field::name[index];
    characters_[1 + length] = '"';
    characters_[2 + length] = ':';
    characters_[3 + length] = ' ';
  }
  constexpr std::string_view text() const { return {characters_, sizeof characters_}; }

 private:
  static constexpr std::size_t length = std::char_traits<char>::length(Field::name);
  char characters_[length + 4] = {};
};
template <class Field>
inline constexpr quoted_name<Field> name_in_json;

// --- Addresses ---

constexpr bool is_address_size(std::size_t size) noexcept { return size == 4 || size == 16; }

template <class Sink>
void put_dotted(Sink &to, bytes four) {
  for (std::size_t index = 0; index < 4; ++index) {
    if (index != 0) to(".");
    put_number(to, four[index]);
  }
}

// Eight groups of 16 bits, without those from a first one on, which are zero: the longest run of such groups, of two at
// least, and the first of several. The last two groups are written as an IPv4 address if nothing but such a run is
// before them, or "::ffff".
template <class Sink>
void put_colons(Sink &to, bytes sixteen) {
  unsigned groups[8];
  for (std::size_t index = 0; index < 8; ++index) groups[index] = sixteen[2 * index] * 256u + sixteen[2 * index + 1];
  std::size_t zeros = 8, count = 1;
  for (std::size_t first = 0; first < 8; ++first) {
    std::size_t end = first;
    while (end < 8 && groups[end] == 0) ++end;
    if (end - first > count) zeros = first, count = end - first;
  }
  const bool is_version_4 = zeros == 0 && (count == 6 || (count == 5 && groups[5] == 0xffff));
  for (std::size_t index = 0; index < 8; ++index) {
    if (index == zeros) {
      to("::");
      index += count - 1;
      continue;
    }
    if (index != 0 && index != zeros + count) to(":");
    if (is_version_4 && index == 6) return put_dotted(to, bytes(sixteen.data() + 12, 4));
    char digits[4];
    const auto end = std::to_chars(digits, digits + sizeof digits, groups[index], 16).ptr;
    to(std::string_view(digits, static_cast<std::size_t>(end - digits)));
  }
}

// Of 4 or 16 bytes.
template <class Sink>
void put_address(Sink &to, bytes content) {
  if (content.size() == 4) {
    put_dotted(to, content);
  } else {
    put_colons(to, content);
  }
}

}  // namespace detail
/** @endcond */

// --- JSON ---

/** What zorv::json_writer writes of a record: every member that is present, and all elements of lists. A class of your
 *  own with the same three functions chooses otherwise: it can leave out what is not for a log, or end long lists. */
struct present_members {
  /** Whether a member is written; @p field is its zorv::field_info. */
  template <class Field, class Record>
  constexpr bool has(Field, const Record &record) const noexcept {
    return Field::is_in(record);
  }
  /** How many elements of a list are written; it has @p size. */
  template <class Field>
  constexpr std::size_t count(Field, std::size_t size) const noexcept {
    return size;
  }
  /** What is written of the nested message in a member, or of an element of the list in it. */
  template <class Field>
  constexpr present_members inside(Field, std::size_t) const noexcept {
    return {};
  }
};

/** Writes JSON: records, and whatever a program puts around them. What it writes is JSON if each begin has its end, and
 *  each value in an object comes after its name.
 *
 *  It takes no memory. The text goes to a sink, a function that is called with each piece of it, a `std::string_view`,
 *  in turn; there are many small ones. A sink is copied, like the functions that algorithms take: it refers to what it
 *  writes to. Nothing but the sink throws. */
template <class Sink>
class json_writer {
 public:
  /** Writes to @p sink. */
  explicit json_writer(Sink sink, const json_options &options = {})
      : to_(static_cast<Sink &&>(sink)), options_(options) {}

  /** Begins an object: for each value in it, json_writer::name and then the value. */
  void begin_object() { begin('{', true); }
  /** Ends an object. */
  void end_object() { end('}'); }

  /** Begins a list. */
  void begin_list() { begin('[', true); }
  /** Begins a list that is on one line also in zorv::json_layout::lines. There must be no lists or objects in it. */
  void begin_short_list() { begin('[', false); }
  /** Ends a list. */
  void end_list() { end(']'); }

  /** Writes the name of the next value in an object; in UTF-8. */
  void name(std::string_view name) {
    separate();
    quoted(name);
    to_(": ");
    is_named_ = true;
  }

  /** Writes an integer, as a number whatever its size. */
  template <class Integer>
  void number(Integer value) {
    before_value();
    detail::put_number(to_, value);
  }
  /** Writes `true` or `false`. */
  void flag(bool value) {
    before_value();
    to_(value ? "true" : "false");
  }
  /** Writes a string; in UTF-8. */
  void string(std::string_view value) {
    before_value();
    quoted(value);
  }

  /** Writes a record as an object: see zorv::write_json. @p members chooses what is written of it. */
  template <class Record, class Members = present_members>
  void record(const Record &record, const Members &members = {}) {
    begin_object();
    for_each_field<Record>([&](auto field) {
      if (!members.has(field, record)) return;
      separate();
      to_(detail::name_in_json<decltype(field)>.text());
      is_named_ = true;
      member(field, field.get(record), members);
    });
    end_object();
  }

 private:
  void put(char character) { to_(std::string_view(&character, 1)); }

  void begin(char bracket, bool has_lines) {
    before_value();
    put(bracket);
    ++depth_;
    is_first_ = true;
    has_lines_ = has_lines && options_.layout == json_layout::lines;
  }

  // What is around a list on one line has lines again.
  void end(char bracket) {
    --depth_;
    if (has_lines_ && !is_first_) break_line(false);
    put(bracket);
    is_first_ = false;
    has_lines_ = options_.layout == json_layout::lines;
  }

  // A name has written what comes before its value.
  void before_value() {
    if (is_named_) {
      is_named_ = false;
    } else if (depth_ != 0) {
      separate();
    }
  }

  // Between two values of the same object or list, or before the first.
  void separate() {
    if (has_lines_) {
      break_line(!is_first_);
    } else if (!is_first_) {
      to_(", ");
    }
    is_first_ = false;
  }

  // Begins a line: as one piece, if the depth is usual.
  void break_line(bool is_after_comma) {
    constexpr std::string_view text = ",\n                                ";
    constexpr std::size_t most = text.size() - 2;
    std::size_t left = 2 * depth_;
    const std::size_t blanks = left < most ? left : most;
    to_(is_after_comma ? text.substr(0, 2 + blanks) : text.substr(1, 1 + blanks));
    for (left -= blanks; left != 0; left -= left < most ? left : most) to_(text.substr(2, left));
  }

  template <class Field, class Value, class Members>
  void member(Field field, const Value &value, const Members &members) {
    if constexpr (Field::kind == kind::flag) {
      flag(value);
    } else if constexpr (Field::kind == kind::integer) {
      integer(value);
    } else if constexpr (Field::kind == kind::string) {
      characters(value);
    } else if constexpr (Field::kind == kind::bytes) {
      block(value);
    } else if constexpr (Field::kind == kind::integer_list) {
      integers(value, members.count(field, value.size()));
    } else if constexpr (Field::kind == kind::message_list) {
      const std::size_t count = members.count(field, value.size());
      begin_list();
      for (std::size_t index = 0; index < count; ++index) record(value[index], members.inside(field, index));
      end_list();
    } else {
      record(value, members.inside(field, 0));
    }
  }

  template <class Number>
  void integer(Number value) {
    before_value();
    char text[22];
    to_(std::string_view(text, static_cast<std::size_t>(append_integer(text, value) - text)));
  }

  // Many readers of JSON would round a number of 64 bits.
  template <class Number>
  static char *append_integer(char *to, Number value) {
    if (sizeof value == 8) *to++ = '"';
    to = detail::append_number(to, value);
    if (sizeof value == 8) *to++ = '"';
    return to;
  }

  template <class Element>
  void integers(span<Element> elements, std::size_t count) {
    if constexpr (sizeof(Element) == 1) {
      if (byte_list(bytes(elements.data(), count))) return;
    }
    before_value();
    put('[');
    for (std::size_t index = 0; index < count; ++index) {
      char text[24] = {',', ' '};
      const char *const end = append_integer(text + 2, elements[index]);
      const char *const begin = index == 0 ? text + 2 : text;
      to_(std::string_view(begin, static_cast<std::size_t>(end - begin)));
    }
    put(']');
  }

  // Whether a list of 8-bit numbers is written as a string.
  bool byte_list(bytes elements) {
    const bool is_address = options_.byte_lists == json_byte_lists::address && detail::is_address_size(elements.size());
    if (!is_address && options_.byte_lists != json_byte_lists::hex) return false;
    before_value();
    put('"');
    if (is_address) {
      detail::put_address(to_, elements);
    } else {
      detail::put_hex(to_, elements);
    }
    put('"');
    return true;
  }

  void characters(std::string_view text) {
    if (detail::is_utf8(text)) {
      string(text);
      return;
    }
    static constexpr std::string_view names[] = {"base64", "hex", "length"};
    begin_object();
    name(names[static_cast<std::size_t>(options_.bytes)]);
    block(detail::as_bytes(text));
    end_object();
  }

  void block(bytes content) {
    before_value();
    put('"');
    switch (options_.bytes) {
      case json_bytes::base64:
        detail::put_base64(to_, content);
        break;
      case json_bytes::hex:
        detail::put_hex(to_, content);
        break;
      case json_bytes::length:
        detail::put_number(to_, content.size());
        to_(content.size() == 1 ? " byte" : " bytes");
        break;
    }
    put('"');
  }

  void quoted(std::string_view text) {
    put('"');
    std::size_t plain = 0;
    for (std::size_t at = 0; at < text.size(); ++at) {
      const auto byte = static_cast<unsigned char>(text[at]);
      if (byte >= ' ' && byte != '"' && byte != '\\') continue;
      to_(text.substr(plain, at - plain));
      plain = at + 1;
      escape(byte);
    }
    to_(text.substr(plain));
    put('"');
  }

  void escape(unsigned char byte) {
    constexpr std::string_view controls = "\b\f\n\r\t", letters = "bfnrt";
    const std::size_t known = controls.find(static_cast<char>(byte));
    put('\\');
    if (byte == '"' || byte == '\\') {
      put(static_cast<char>(byte));
    } else if (known != controls.npos) {
      put(letters[known]);
    } else {
      to_("u00");
      detail::put_hex(to_, bytes(&byte, 1));
    }
  }

  Sink to_;
  json_options options_;
  std::size_t depth_ = 0;
  bool is_first_ = true;  // in the innermost object or list
  bool has_lines_ = false;  // it
  bool is_named_ = false;
};

/** @cond */
namespace detail {

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
      to_(": ");
      if constexpr (Kind == kind::flag) {
        to_(given ? "true" : "false");
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
    if (!is_empty) to_(" ");
    is_empty = false;
    to_(name);
  }

  template <class Record>
  void message(std::string_view name, const Record &record, bool &is_empty) {
    named(name, is_empty);
    to_(" {");
    fields(record, false);
    to_(" }");
  }

  template <class Element>
  void integers(span<Element> elements) {
    to_("[");
    bool is_first = true;
    for (const auto element : elements) {
      if (to_.is_full()) return;
      if (!is_first) to_(", ");
      is_first = false;
      put_number(to_, element);
    }
    to_("]");
  }

  // Printable characters of ASCII alone: nothing that a terminal obeys gets into a log.
  void quoted(bytes content) {
    to_("\"");
    for (const unsigned char byte : content) {
      if (to_.is_full()) return;
      if (byte == '"' || byte == '\\' || byte == '\'') {
        const char escaped[] = {'\\', static_cast<char>(byte)};
        to_(std::string_view(escaped, sizeof escaped));
      } else if (byte >= ' ' && byte <= '~') {
        const auto character = static_cast<char>(byte);
        to_(std::string_view(&character, 1));
      } else {
        const char octal[] = {
            '\\', static_cast<char>('0' + (byte >> 6)), static_cast<char>('0' + (byte >> 3 & 7)),
            static_cast<char>('0' + (byte & 7))};
        to_(std::string_view(octal, sizeof octal));
      }
    }
    to_("\"");
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
 *  64 bits are strings, because many readers of JSON round them. Bytes are base64, and lists of 8-bit numbers are
 *  lists, unless the options say otherwise. A string that is not UTF-8 is an object like `{"base64": "/w=="}`. */
template <class Record>
[[nodiscard]] std::size_t write_json(
    const Record &record, char *buffer, std::size_t size, const json_options &options = {}) noexcept {
  detail::counted_output output(buffer, size);
  json_writer([&](std::string_view piece) { output(piece); }, options).record(record);
  return output.length();
}

/** Returns a record as JSON: see zorv::write_json. Throws what a `std::string` throws without memory. */
template <class Record>
[[nodiscard]] std::string to_json(const Record &record, const json_options &options = {}) {
  std::string text;
  json_writer([&](std::string_view piece) { text += piece; }, options).record(record);
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
