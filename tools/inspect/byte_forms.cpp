// Reads and writes bytes as text.
#include "byte_forms.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <optional>
#include <string_view>
#include <vector>

#include "failure.hpp"
#include "hex_forms.hpp"
#include "text_encodings.hpp"

namespace inspect {
namespace {

std::string_view text_of(byte_view input) { return {reinterpret_cast<const char *>(input.data()), input.size()}; }

bool is_blank(char character) { return character == ' ' || character == '\t' || character == '\r'; }

std::string_view trimmed(std::string_view line) {
  while (!line.empty() && is_blank(line.front())) line.remove_prefix(1);
  while (!line.empty() && is_blank(line.back())) line.remove_suffix(1);
  return line;
}

// Removes the next line from the text.
std::string_view next_line(std::string_view &text) {
  const std::size_t end = std::min(text.find('\n'), text.size());
  const std::string_view line = text.substr(0, end);
  text.remove_prefix(std::min(end + 1, text.size()));
  return line;
}

// --- Dumps ---

// One line of a dump: its offset, not yet converted, and what follows.
struct dump_line {
  std::string_view offset;
  std::string_view rest;
  bool has_colon = false;
  bool is_repeated = false;  // up to the next line's offset: there was a line with only an asterisk
};

// So that a short text does not stand for gigabytes.
constexpr std::size_t max_repeated = 1 << 24;

std::optional<dump_line> dump_line_of(std::string_view line) {
  line = trimmed(line);
  if (line.starts_with("0x") || line.starts_with("0X")) line.remove_prefix(2);
  const auto is_digit = [](char each) { return digit_value(static_cast<unsigned char>(each)) >= 0; };
  const auto digits = static_cast<std::size_t>(std::ranges::find_if_not(line, is_digit) - line.begin());
  if (digits < 4 || digits > 16) return std::nullopt;
  dump_line found{line.substr(0, digits), line.substr(digits)};
  // A mark of the command `hex`, or the colon that other tools print.
  if (!found.rest.empty() && std::string_view(":!?~").find(found.rest.front()) != std::string_view::npos) {
    found.has_colon = found.rest.front() == ':';
    found.rest.remove_prefix(1);
  }
  if (!found.rest.empty() && !is_blank(found.rest.front())) return std::nullopt;
  return found;
}

std::optional<std::size_t> offset_of(const dump_line &line, int base) {
  std::size_t value = 0;
  const char *const end = line.offset.data() + line.offset.size();
  const auto [rest, error] = std::from_chars(line.offset.data(), end, value, base);
  if (rest != end || error != std::errc{}) return std::nullopt;
  return value;
}

// The bytes of a line, without the text column, which begins with a bar, after a gap, or with the first word that is
// not pairs of digits. `size` is the number of bytes in the line, if the next offset tells.
byte_string bytes_of_line(const dump_line &line, std::optional<std::size_t> size) {
  byte_string found;
  std::string_view rest = line.rest.substr(0, line.rest.find('|'));
  const std::size_t gap = line.has_colon ? 2 : 3;
  while (!rest.empty() && (!size || found.size() < *size)) {
    const std::size_t blanks = std::min(rest.find_first_not_of(" \t\r"), rest.size());
    if (!size && !found.empty() && blanks >= gap) break;
    rest.remove_prefix(blanks);
    const std::string_view word = rest.substr(0, rest.find_first_of(" \t\r"));
    const auto pairs = from_hex(word);
    // Longer words may be numbers in the byte order of the machine; after a colon they are not.
    if (!pairs || (word.size() > 2 && !line.has_colon)) break;
    found.insert(found.end(), pairs->begin(), pairs->end());
    rest.remove_prefix(word.size());
  }
  return found;
}

// Empty unless every offset is the number of bytes before it, so that no other text is taken for a dump.
std::optional<byte_string> bytes_of_dump(std::string_view text, int base) {
  std::vector<dump_line> lines;
  while (!text.empty()) {
    const std::string_view line = next_line(text);
    if (trimmed(line).empty()) continue;
    if (trimmed(line) == "*" && !lines.empty()) {
      lines.back().is_repeated = true;
      continue;
    }
    const auto found = dump_line_of(line);
    if (!found) return std::nullopt;
    lines.push_back(*found);
  }
  byte_string result;
  for (std::size_t index = 0; index < lines.size(); ++index) {
    if (offset_of(lines[index], base) != result.size()) return std::nullopt;
    std::optional<std::size_t> size;
    if (index + 1 < lines.size()) {
      const auto next = offset_of(lines[index + 1], base);
      if (!next || *next < result.size()) return std::nullopt;
      size = *next - result.size();
    }
    const bool is_repeated = lines[index].is_repeated;
    const byte_string more = bytes_of_line(lines[index], is_repeated ? std::nullopt : size);
    if (size && !is_repeated && more.size() != *size) return std::nullopt;
    result.insert(result.end(), more.begin(), more.end());
    if (!is_repeated) continue;
    if (!size || more.empty() || *size > max_repeated) return std::nullopt;
    for (std::size_t at = more.size(); at < *size; ++at) result.push_back(more[at % more.size()]);
  }
  if (result.empty()) return std::nullopt;
  return result;
}

std::optional<byte_string> bytes_of_dump(std::string_view text) {
  auto result = bytes_of_dump(text, 16);
  return result ? result : bytes_of_dump(text, 8);
}

// --- Base64 ---

std::optional<byte_string> bytes_of_base64(std::string_view text) {
  std::string digits;
  std::ranges::copy_if(text, std::back_inserter(digits), [](char each) { return !is_blank(each) && each != '\n'; });
  return from_base64(digits);
}

bool begins_with_name(std::string_view text) {
  if (text.empty() || (text.front() >= '0' && text.front() <= '9')) return false;
  const std::size_t end = text.find_first_not_of("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ_0123456789");
  return end != 0 && end != text.npos && (text[end] == ':' || text.substr(end).starts_with(" {"));
}

std::optional<byte_string> digits_of(std::string_view text, const input_words &words) {
  try {
    return bytes_of_hex(text);
  } catch (const input_error &error) {
    throw input_error(fmt::format("{}: {}; {} reads it as bytes", words.name, error.what(), words.raw));
  }
}

[[noreturn]] void refuse(std::string_view text, const input_words &words) {
  text = after_comments(text);
  const char *const what = text.starts_with('{') || text.starts_with('[') ? "JSON, which `encode` reads"
                           : begins_with_name(text) ? "text, perhaps what `convert --from=text` reads"
                                                    : "text, but neither digits, a dump nor base64";
  throw input_error(fmt::format("{} is {}; {} reads it as bytes", words.name, what, words.raw));
}

byte_string detect_and_parse(byte_string input, const input_words &words) {
  if (input.empty() || !is_text(input)) return input;
  const std::string_view text = text_of(input);
  if (auto dump = bytes_of_dump(text)) return *std::move(dump);
  if (auto content = digits_of(text, words)) return *std::move(content);
  if (auto content = bytes_of_base64(text)) return *std::move(content);
  refuse(text, words);
}

}  // namespace

bool is_text(byte_view input) {
  return std::ranges::all_of(input, [](unsigned char each) {
    return (each >= ' ' && each <= '~') || each == '\t' || each == '\n' || each == '\r';
  });
}

std::string_view after_comments(std::string_view text) {
  while (true) {
    text.remove_prefix(std::min(text.find_first_not_of(" \t\r\n"), text.size()));
    if (!text.starts_with('#')) return text;
    text.remove_prefix(std::min(text.find('\n'), text.size()));
  }
}

byte_string parse_bytes(byte_string input, byte_form form, const input_words &words) {
  std::optional<byte_string> found;
  switch (form) {
    case byte_form::automatic:
      return detect_and_parse(std::move(input), words);
    case byte_form::raw:
    case byte_form::pcap:
      return input;
    case byte_form::hex:
      if (after_comments(text_of(input)).empty()) return {};
      found = digits_of(text_of(input), words);
      if (!found) throw input_error(words.name + " is not hexadecimal text");
      return *std::move(found);
    case byte_form::dump:
      found = bytes_of_dump(text_of(input));
      if (!found) throw input_error(words.name + " is not a hex dump: a line has no offset, or the wrong one");
      return *std::move(found);
    case byte_form::base64:
      found = bytes_of_base64(text_of(input));
      if (!found) throw input_error(words.name + " is not base64");
      return *std::move(found);
  }
  return input;
}

std::optional<byte_string> parse_line(std::string_view line, byte_form form) {
  if (after_comments(line).empty()) return std::nullopt;
  if (form == byte_form::automatic || form == byte_form::hex) {
    if (auto found = bytes_of_hex(line)) return found;
  }
  if (form == byte_form::automatic || form == byte_form::base64) {
    if (auto found = bytes_of_base64(line)) return found;
  }
  throw input_error(form == byte_form::base64 ? "not base64"
                    : form == byte_form::hex  ? "not hexadecimal text"
                                              : "neither hexadecimal text nor base64");
}

std::string format_bytes(byte_view input, byte_form form) {
  if (form == byte_form::base64) return to_base64(input) + '\n';
  if (form != byte_form::hex && form != byte_form::dump) return std::string(text_of(input));
  std::string text;
  for (std::size_t at = 0; at < input.size(); at += 16) {
    if (form == byte_form::dump) text += fmt::format("{:08x} ", at);
    const byte_view line = input.subspan(at, std::min<std::size_t>(16, input.size() - at));
    for (std::size_t index = 0; index < line.size(); ++index) {
      text += fmt::format("{}{:02x}", index == 0 && form == byte_form::hex ? "" : " ", line[index]);
    }
    text += '\n';
  }
  return text;
}

}  // namespace inspect
