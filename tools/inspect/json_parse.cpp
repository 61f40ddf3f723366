// JSON text as nodes, by way of the events of nlohmann's reader.
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

// Counts what the reader has taken: it says where it is only when it fails.
struct counting_iterator {
  using iterator_category = std::input_iterator_tag;
  using value_type = char;
  using difference_type = std::ptrdiff_t;
  using pointer = const char *;
  using reference = char;

  const unsigned char *place;
  const unsigned char **taken;

  char operator*() const { return static_cast<char>(*place); }
  counting_iterator &operator++() {
    *taken = ++place;
    return *this;
  }
  bool operator==(const counting_iterator &) const = default;
};

bool is_digits(std::string_view text) {
  return !text.empty() && text.find_first_not_of("0123456789") == std::string_view::npos;
}

// "1.50e1" is a whole number, 15; nothing for one that is not, or too long to be of use.
std::optional<std::string> whole_number(std::string_view written) {
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
  builder(byte_view text, std::size_t begin) : text_(text), taken_(text.data() + begin), behind_last_(begin) {}

  bool null() { return add(node::null{}); }
  bool boolean(bool value) { return add(value); }
  bool number_integer(std::int64_t value) { return add(node::number{std::to_string(value)}); }
  bool number_unsigned(std::uint64_t value) { return add(node::number{std::to_string(value)}); }
  bool number_float(double, const std::string &written) {
    return add(node::number{whole_number(written).value_or(written)});
  }
  bool string(std::string &value) { return add(std::move(value)); }
  bool binary(const json::binary_t &) { return false; }

  bool start_object(std::size_t) { return open(node::object{}); }
  bool start_array(std::size_t) { return open(node::list{}); }
  bool end_object() { return close(); }
  bool end_array() { return close(); }

  bool key(const std::string &name) {
    std::get<node::object>(open_.back()->value).push_back({name, {}, token()});
    return true;
  }

  bool parse_error(std::size_t position, const std::string &, const nlohmann::detail::exception &error) {
    // Of the reader's words, what comes after its own name and the place.
    std::string_view what = error.what();
    for (const std::string_view before : {"] ", "syntax error "}) {
      if (const std::size_t found = what.find(before); found != what.npos) what.remove_prefix(found + before.size());
    }
    throw misread(position == 0 ? 0 : position - 1 + begin_, where(), fmt::format("this is not JSON: {}", what));
  }

  node take(std::size_t begin, bool whole, std::size_t &end) {
    begin_ = begin;
    const unsigned char *const limit = text_.data() + text_.size();
    json::sax_parse(counting_iterator{text_.data() + begin, &taken_}, counting_iterator{limit, &taken_}, this,
                    nlohmann::detail::input_format_t::json, whole);
    end = behind_last_;
    return std::move(root_);
  }

 private:
  // Where the token begins that has just been read: after the last one and what separates them.
  std::size_t token() {
    std::size_t at = behind_last_;
    while (at < text_.size() &&
           std::string_view(" \t\r\n,:").find(static_cast<char>(text_[at])) != std::string_view::npos)
      ++at;
    behind_last_ = static_cast<std::size_t>(taken_ - text_.data());
    return at;
  }

  // The place for the next value: the root, the last name's, or after the last element.
  node &next() {
    if (open_.empty()) return root_;
    if (auto *const object = std::get_if<node::object>(&open_.back()->value)) return object->back().content;
    return std::get<node::list>(open_.back()->value).emplace_back();
  }

  template <class Value>
  bool add(Value value) {
    node &target = next();
    target.value = std::move(value);
    target.at = token();
    return true;
  }

  template <class Container>
  bool open(Container container) {
    node &target = next();
    target.value = std::move(container);
    target.at = token();
    if (open_.size() == greatest_depth) throw misread(target.at, "", "nested too deep");
    open_.push_back(&target);
    return true;
  }

  bool close() {
    behind_last_ = static_cast<std::size_t>(taken_ - text_.data());
    open_.pop_back();
    return true;
  }

  // The way to the value that is being read, as far as it is known.
  std::string where() const {
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
  const unsigned char *taken_;
  std::size_t behind_last_;
  std::size_t begin_ = 0;
  node root_;
  std::vector<node *> open_;
};

}  // namespace

node parse_json(byte_view text, std::size_t begin, bool whole, std::size_t &end) {
  return builder(text, begin).take(begin, whole, end);
}

}  // namespace inspect
