// Finds the values in JSON that this tool has written, one after the other: an object calls for each member, a list for
// each element, and the call passes over the value.
#pragma once

#include <cstddef>
#include <string_view>

namespace inspect {

class json_places {
 public:
  explicit json_places(std::string_view text) : text_(text) {}

  // Where the next value begins, or where the last one ended.
  std::size_t at() const { return at_; }

  template <class Visit>
  void object(Visit visit) {
    ++at_;
    while (!ends('}')) {
      const std::size_t name = at_ + 1;
      skip_string();
      const std::string_view found = text_.substr(name, at_ - 1 - name);
      skip_separators();
      visit(found);
    }
  }

  template <class Visit>
  void list(Visit visit) {
    ++at_;
    while (!ends(']')) visit();
  }

  // Passes over a whole value.
  void skip() {
    if (text_[at_] == '{') {
      object([this](std::string_view) { skip(); });
    } else if (text_[at_] == '[') {
      list([this] { skip(); });
    } else if (text_[at_] == '"') {
      skip_string();
    } else {
      at_ = text_.find_first_of(",]} \n", at_);
    }
  }

 private:
  bool ends(char bracket) {
    skip_separators();
    if (text_[at_] != bracket) return false;
    ++at_;
    return true;
  }

  void skip_separators() { at_ = text_.find_first_not_of(",: \n", at_); }

  void skip_string() {
    for (++at_; text_[at_] != '"'; ++at_) at_ += text_[at_] == '\\';
    ++at_;
  }

  std::string_view text_;
  std::size_t at_ = 0;
};

}  // namespace inspect
