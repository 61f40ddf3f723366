// Builds nodes from the SAX events of nlohmann's parser.
#include "json_parse.hpp"

#include <fmt/format.h>

#include <cstdint>
#include <iterator>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>

namespace inspect {
namespace {

using json = nlohmann::ordered_json;

// Tracks the position of the parser, which reports it only on failure.
struct counting_iterator {
  using iterator_category = std::input_iterator_tag;
  using value_type = char;
  using difference_type = std::ptrdiff_t;
  using pointer = const char *;
  using reference = char;

  const unsigned char *place;
  const unsigned char **consumed;

  char operator*() const { return static_cast<char>(*place); }
  counting_iterator &operator++() {
    *consumed = ++place;
    return *this;
  }
  bool operator==(const counting_iterator &) const = default;
};

bool is_digits(std::string_view text) {
  return !text.empty() && text.find_first_not_of("0123456789") == std::string_view::npos;
}

// "1.50e1" is the integer 15. Empty if the number is not an integer, or longer than any member could hold.
std::optional<std::string> to_integer(std::string_view written) {
  const bool is_negative = written.starts_with('-');
  if (is_negative) written.remove_prefix(1);
  const std::size_t mark = std::min(written.find_first_of("eE"), written.size());
  int exponent = 0;
  if (mark != written.size()) {
    const std::string power(written.substr(mark + 1));
    if (power.size() > 4) return std::nullopt;
    exponent = std::stoi(power);
  }
  std::string digits(written.substr(0, mark));
  if (const std::size_t point = digits.find('.'); point != digits.npos) {
    exponent -= static_cast<int>(digits.size() - point - 1);
    digits.erase(point, 1);
  }
  for (; exponent < 0 && digits.size() > 1 && digits.back() == '0'; ++exponent) digits.pop_back();
  digits.erase(0, std::min(digits.find_first_not_of('0'), digits.size() - 1));
  if (digits == "0") return digits;
  if (exponent < 0 || exponent > 32 || !is_digits(digits)) return std::nullopt;
  return (is_negative ? "-" : "") + digits + std::string(static_cast<std::size_t>(exponent), '0');
}

// Receives the events and builds the tree.
class builder {
 public:
  builder(byte_view text, std::size_t begin) : text_(text), consumed_(text.data() + begin), after_last_(begin) {}

  bool null() { return add(node::null{}); }
  bool boolean(bool value) { return add(value); }
  bool number_integer(std::int64_t value) { return add(node::number{std::to_string(value)}); }
  bool number_unsigned(std::uint64_t value) { return add(node::number{std::to_string(value)}); }
  bool number_float(double, const std::string &written) {
    return add(node::number{to_integer(written).value_or(written)});
  }
  bool string(std::string &value) { return add(std::move(value)); }
  bool binary(const json::binary_t &) { return false; }

  bool start_object(std::size_t) { return open(node::object{}); }
  bool start_array(std::size_t) { return open(node::list{}); }
  bool end_object() { return close(); }
  bool end_array() { return close(); }

  bool key(const std::string &name) {
    std::get<node::object>(open_.back()->value).push_back({name, {}, token_offset()});
    return true;
  }

  bool parse_error(std::size_t position, const std::string &, const nlohmann::detail::exception &error) {
    // The parser's message, without its own prefix and position.
    std::string_view what = error.what();
    for (const std::string_view before : {"] ", "syntax error "}) {
      if (const std::size_t found = what.find(before); found != what.npos) what.remove_prefix(found + before.size());
    }
    throw text_error(position == 0 ? 0 : position - 1 + begin_, current_path(), fmt::format("invalid JSON: {}", what));
  }

  node build(std::size_t begin, bool whole, std::size_t &end) {
    begin_ = begin;
    const unsigned char *const limit = text_.data() + text_.size();
    json::sax_parse(counting_iterator{text_.data() + begin, &consumed_}, counting_iterator{limit, &consumed_}, this,
                    nlohmann::detail::input_format_t::json, whole);
    end = after_last_;
    return std::move(root_);
  }

 private:
  // The offset of the token that has just been read: after the previous one and any separators.
  std::size_t token_offset() {
    std::size_t at = after_last_;
    while (at < text_.size() &&
           std::string_view(" \t\r\n,:").find(static_cast<char>(text_[at])) != std::string_view::npos)
      ++at;
    after_last_ = static_cast<std::size_t>(consumed_ - text_.data());
    return at;
  }

  // The node for the next value: the root, the member just named, or a new element.
  node &next() {
    if (open_.empty()) return root_;
    if (auto *const object = std::get_if<node::object>(&open_.back()->value)) return object->back().content;
    return std::get<node::list>(open_.back()->value).emplace_back();
  }

  template <class Value>
  bool add(Value value) {
    node &target = next();
    target.value = std::move(value);
    target.at = token_offset();
    return true;
  }

  template <class Container>
  bool open(Container container) {
    node &target = next();
    target.value = std::move(container);
    target.at = token_offset();
    if (open_.size() == max_depth) throw text_error(target.at, "", "nested too deeply");
    open_.push_back(&target);
    return true;
  }

  bool close() {
    after_last_ = static_cast<std::size_t>(consumed_ - text_.data());
    open_.pop_back();
    return true;
  }

  // The path to the value that is being read, as far as it is known.
  std::string current_path() const {
    std::string path;
    for (std::size_t depth = 0; depth < open_.size(); ++depth) {
      if (const auto *const list = std::get_if<node::list>(&open_[depth]->value)) {
        if (depth + 1 != open_.size()) path += fmt::format("[{}]", list->size() - 1);
      } else if (const auto &members = std::get<node::object>(open_[depth]->value); !members.empty()) {
        path += fmt::format("{}{}", path.empty() ? "" : ".", members.back().name);
      }
    }
    return path;
  }

  byte_view text_;
  const unsigned char *consumed_;
  std::size_t after_last_;
  std::size_t begin_ = 0;
  node root_;
  std::vector<node *> open_;
};

}  // namespace

node parse_json(byte_view text, std::size_t begin, bool whole, std::size_t &end) {
  return builder(text, begin).build(begin, whole, end);
}

}  // namespace inspect
