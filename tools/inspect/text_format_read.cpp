// Parses the text form. Only the shape of values is determined here; record_reader checks whether they fit the message.
#include <fmt/format.h>

#include <charconv>

#include "text_encodings.hpp"
#include "text_format.hpp"

namespace inspect {
namespace {

bool is_name_character(unsigned char each) {
  return (each >= 'a' && each <= 'z') || (each >= 'A' && each <= 'Z') || (each >= '0' && each <= '9') || each == '_';
}

class parser {
 public:
  explicit parser(byte_view text) : text_(text) {}

  // Fields up to the closing bracket, or up to the end if that is NUL. `type` is null inside an unknown field.
  node::object fields(const message_info *type, char closing) {
    if (++depth_ > max_depth) fail("nested too deeply");
    node::object members;
    while (!closes(closing)) {
      const std::size_t at = at_;
      const std::string name(word());
      if (name.empty()) fail("expected a field name");
      const field_info *const field = type != nullptr ? field_of(*type, std::string_view(name)) : nullptr;
      add(members, {name, {}, at}, field);
      if (skip_blanks(); peek() == ',' || peek() == ';') ++at_;
    }
    --depth_;
    return members;
  }

 private:
  [[noreturn]] void fail(const char *why) const { throw text_error(at_, "", why); }

  char peek() const { return at_ < text_.size() ? static_cast<char>(text_[at_]) : '\0'; }

  void skip_blanks() {
    while (at_ < text_.size()) {
      if (peek() == '#') {
        while (at_ < text_.size() && peek() != '\n') ++at_;
      } else if (std::string_view(" \t\r\n").find(peek()) != std::string_view::npos) {
        ++at_;
      } else {
        break;
      }
    }
  }

  bool closes(char closing) {
    skip_blanks();
    if (at_ == text_.size() && closing != '\0') fail("unexpected end of text inside a message");
    if (closing == '\0') return at_ == text_.size();
    if (peek() != closing) return false;
    ++at_;
    return true;
  }

  std::string_view word() {
    const std::size_t start = at_;
    while (at_ < text_.size() && is_name_character(text_[at_])) ++at_;
    return {reinterpret_cast<const char *>(text_.data()) + start, at_ - start};
  }

  // The elements of a list are given one by one, or several in brackets.
  void add(node::object &members, member named, const field_info *field) {
    skip_blanks();
    if (peek() == ':') {
      ++at_;
      skip_blanks();
    }
    if (field == nullptr || !field->is_list()) {
      named.content = value(field);
      members.push_back(std::move(named));
      return;
    }
    node::list &list = list_of(members, std::move(named), field);
    if (peek() != '[') {
      list.push_back(value(field));
      return;
    }
    ++at_;
    for (skip_blanks(); peek() != ']'; skip_blanks()) {
      list.push_back(value(field));
      if (skip_blanks(); peek() == ',') {
        ++at_;
      } else if (peek() != ']') {
        fail("expected a comma or ]");
      }
    }
    ++at_;
  }

  static node::list &list_of(node::object &members, member named, const field_info *field) {
    for (member &each : members) {
      if (is_name_of(field->name, each.name)) return std::get<node::list>(each.content.value);
    }
    named.content = {node::list{}, named.at};
    return std::get<node::list>(members.emplace_back(std::move(named)).content.value);
  }

  node value(const field_info *field) {
    const std::size_t at = at_;
    switch (peek()) {
      case '{':
      case '<': {
        const char closing = text_[at_++] == '{' ? '}' : '>';
        return {fields(field != nullptr ? field->nested : nullptr, closing), at};
      }
      case '"':
      case '\'':
        return {node::raw{characters()}, at};
      case '-':
        ++at_;
        return {node::number{fmt::format("-{}", number(word()))}, at};
      default:
        return plain(word(), at);
    }
  }

  node plain(std::string_view written, std::size_t at) const {
    if (written.empty()) fail("expected a value");
    if (written == "true" || written == "t" || written == "True") return {true, at};
    if (written == "false" || written == "f" || written == "False") return {false, at};
    return {node::number{number(written)}, at};
  }

  // Decimal, or hexadecimal or octal as in C.
  static std::string number(std::string_view written) {
    int base = 10;
    std::string_view digits = written;
    if (digits.starts_with("0x") || digits.starts_with("0X")) {
      base = 16;
      digits.remove_prefix(2);
    } else if (digits.size() > 1 && digits.front() == '0') {
      base = 8;
    }
    std::uint64_t value = 0;
    const auto [rest, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value, base);
    const bool is_number = error == std::errc{} && rest == digits.data() + digits.size();
    return is_number ? std::to_string(value) : std::string(written);
  }

  // A string, or several adjacent ones that are concatenated.
  byte_string characters() {
    byte_string content;
    for (; peek() == '"' || peek() == '\''; skip_blanks()) {
      const char closing = static_cast<char>(text_[at_++]);
      while (peek() != closing || at_ == text_.size()) {
        if (at_ == text_.size() || peek() == '\n') fail("unterminated string");
        content.push_back(peek() == '\\' ? escape() : text_[at_++]);
      }
      ++at_;
    }
    return content;
  }

  unsigned char escape() {
    static constexpr std::string_view letters = "abfnrtv\\'\"?", meanings = "\a\b\f\n\r\t\v\\'\"?";
    ++at_;
    const char letter = peek();
    if (letter >= '0' && letter <= '7') return code(8, 3);
    const bool is_code = letter == 'x' || letter == 'X';
    const std::size_t index = letters.find(letter);
    if (!is_code && index == letters.npos) fail("unknown escape sequence");
    ++at_;
    return is_code ? code(16, 2) : static_cast<unsigned char>(meanings[index]);
  }

  unsigned char code(int base, int most_digits) {
    int value = 0, count = 0;
    for (; count < most_digits; ++count) {
      const int digit = digit_value(static_cast<unsigned char>(peek()));
      if (digit < 0 || digit >= base) break;
      value = value * base + digit;
      ++at_;
    }
    if (count == 0 || value > 0xff) fail("escape sequence without a byte value from 0 to 255");
    return static_cast<unsigned char>(value);
  }

  byte_view text_;
  std::size_t at_ = 0;
  std::size_t depth_ = 0;
};

}  // namespace

node parse_text_format(const message_type &type, byte_view text) { return {parser(text).fields(&type, '\0'), 0}; }

}  // namespace inspect
