// Reads hexadecimal digits.
#include "hex_forms.hpp"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <string>

#include "failure.hpp"
#include "text_encodings.hpp"

namespace inspect {
namespace {

bool is_space(char each) { return each == ' ' || each == '\t' || each == '\r' || each == '\n'; }

// Everything from each # to the end of its line.
std::string without_comments(std::string_view text) {
  std::string kept;
  bool is_comment = false;
  for (const char each : text) {
    is_comment = each != '\n' && (is_comment || each == '#');
    if (!is_comment) kept += each;
  }
  return kept;
}

std::string without_spaces(std::string text) {
  std::erase_if(text, is_space);
  return text;
}

// Whether a word of an odd number of digits, such as an offset, has others beside it.
bool has_odd_words(std::string_view text) {
  while (!text.empty()) {
    std::string_view line = text.substr(0, text.find('\n'));
    text.remove_prefix(std::min(line.size() + 1, text.size()));
    std::size_t words = 0, odd = 0;
    while (true) {
      line.remove_prefix(std::min(line.find_first_not_of(" \t\r"), line.size()));
      if (line.empty()) break;
      const std::size_t size = std::min(line.find_first_of(" \t\r"), line.size());
      ++words;
      odd += size > 1 && size % 2 != 0;
      line.remove_prefix(size);
    }
    if (odd != 0 && words > 1) return true;
  }
  return false;
}

std::optional<byte_string> plain_digits(const std::string &text) {
  const std::string digits = without_spaces(text);
  if (digits.empty()) return std::nullopt;
  for (const char each : digits) {
    if (digit_value(static_cast<unsigned char>(each)) < 0) return std::nullopt;
  }
  if (has_odd_words(text)) return std::nullopt;
  if (digits.size() % 2 != 0) {
    throw input_error("an odd number of hexadecimal digits");
  }
  return from_hex(digits);
}

// "08:07:" on each line; the last separator of a line may be missing.
std::optional<byte_string> of_separated(std::string_view text, char separator) {
  if (text.find(separator) == text.npos) return std::nullopt;
  byte_string found;
  bool is_first = true;  // in its line
  while (!text.empty()) {
    if (is_space(text.front())) {
      is_first = is_first || text.front() == '\n';
      text.remove_prefix(1);
      continue;
    }
    if (!is_first) {
      if (text.front() != separator) return std::nullopt;
      text.remove_prefix(1);
      is_first = true;
      continue;
    }
    const auto pair = from_hex(text.substr(0, 2));
    if (!pair || pair->empty()) return std::nullopt;
    found.push_back(pair->front());
    text.remove_prefix(2);
    is_first = false;
  }
  return found;
}

// The digits after 0x or 0X.
std::optional<std::string_view> after_prefix(std::string_view word) {
  if (!word.starts_with("0x") && !word.starts_with("0X")) return std::nullopt;
  return word.substr(2);
}

// Bytes of one or two digits each, with commas or spaces in between. Longer ones would have a byte order.
std::optional<byte_string> prefixed_bytes(std::string_view text) {
  byte_string found;
  bool has_comma = true;  // no second one may follow
  while (!text.empty()) {
    if (is_space(text.front())) {
      text.remove_prefix(1);
      continue;
    }
    if (text.front() == ',') {
      if (has_comma) return std::nullopt;
      has_comma = true;
      text.remove_prefix(1);
      continue;
    }
    const std::string_view word = text.substr(0, text.find_first_of(" \t\r\n,"));
    const auto digits = after_prefix(word);
    unsigned value = 0;
    if (!digits || digits->empty() || digits->size() > 2) return std::nullopt;
    const char *const end = digits->data() + digits->size();
    if (std::from_chars(digits->data(), end, value, 16).ptr != end) return std::nullopt;
    found.push_back(static_cast<unsigned char>(value));
    has_comma = false;
    text.remove_prefix(word.size());
  }
  if (found.empty()) return std::nullopt;
  return found;
}

// "0x0807", or single bytes.
std::optional<byte_string> of_prefixed(std::string_view text) {
  while (!text.empty() && is_space(text.front())) text.remove_prefix(1);
  while (!text.empty() && is_space(text.back())) text.remove_suffix(1);
  const auto digits = after_prefix(text);
  if (const auto whole = digits ? from_hex(*digits) : std::nullopt; whole && !whole->empty()) return whole;
  return prefixed_bytes(text);
}

// "\x08\x07", with or without quotes, also over several lines.
std::optional<byte_string> of_escapes(const std::string &text) {
  std::string digits = without_spaces(text);
  if (digits.starts_with("b\"") || digits.starts_with("b'") || digits.starts_with("$'")) digits.erase(0, 1);
  std::erase_if(digits, [](char each) { return each == '"' || each == '\''; });
  byte_string found;
  for (std::size_t at = 0; at < digits.size(); at += 4) {
    const auto pair = from_hex(std::string_view(digits).substr(std::min(at + 2, digits.size()), 2));
    if (digits.compare(at, 2, "\\x") != 0 || !pair || pair->empty()) return std::nullopt;
    found.push_back(pair->front());
  }
  if (found.empty()) return std::nullopt;
  return found;
}

// /* ... */ and // to the end of the line.
std::string without_c_comments(std::string_view text) {
  std::string kept;
  while (!text.empty()) {
    const std::size_t begin = std::min({text.find("/*"), text.find("//"), text.size()});
    kept += text.substr(0, begin);
    text.remove_prefix(begin);
    if (text.empty()) break;
    const bool is_line = text.starts_with("//");
    const std::size_t end = text.find(is_line ? "\n" : "*/", 2);
    text.remove_prefix(end == text.npos ? text.size() : end + (is_line ? 0 : 2));
  }
  return kept;
}

// Whether only words, brackets and the like surround an array, and a length after it is the right one.
bool is_declaration(std::string_view before, std::string_view after, std::size_t count) {
  const auto belongs = [](char each) {
    return std::isalnum(static_cast<unsigned char>(each)) != 0 || is_space(each) ||
           std::string_view("_[]*&=:;").find(each) != std::string_view::npos;
  };
  if (!std::ranges::all_of(before, belongs) || !std::ranges::all_of(after, belongs)) return false;
  const std::size_t length = after.find('=');
  if (length == after.npos) return true;
  const std::string digits = without_spaces(std::string(after.substr(length + 1)));
  std::size_t value = 0;
  const auto [rest, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
  return error == std::errc{} && (*rest == ';' || *rest == '\0') && value == count;
}

std::optional<byte_string> c_array(std::string_view text) {
  const std::string code = without_c_comments(text);
  const std::size_t begin = code.find('{'), end = code.find('}');
  if (begin == code.npos || end == code.npos || end < begin) return std::nullopt;
  const std::string_view view = code;
  auto found = prefixed_bytes(view.substr(begin + 1, end - begin - 1));
  if (!found || !is_declaration(view.substr(0, begin), view.substr(end + 1), found->size())) return std::nullopt;
  return found;
}

}  // namespace

std::optional<byte_string> bytes_of_hex(std::string_view text) {
  const std::string plain = without_comments(text);
  if (auto found = plain_digits(plain)) return found;
  for (const char separator : {':', '-', ','}) {
    if (auto found = of_separated(plain, separator)) return found;
  }
  if (auto found = of_prefixed(plain)) return found;
  if (auto found = of_escapes(plain)) return found;
  return c_array(text);
}

}  // namespace inspect
