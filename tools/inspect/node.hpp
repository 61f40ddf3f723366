// A value as read from JSON or from the Protocol Buffers text form: not yet checked against a message, but with its
// position, so that an error can report it.
#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "bytes.hpp"
#include "failure.hpp"

namespace inspect {

struct member;

struct node {
  struct null {};
  struct number {
    std::string digits;  // an integer in decimal, or the original text when it is not one
  };
  struct raw {
    byte_string content;  // a string of the text form: its bytes, which may also be meant for a bytes member
  };
  using list = std::vector<node>;
  using object = std::vector<member>;

  using shape = std::variant<null, bool, number, std::string, raw, list, object>;

  // Defined below, where `member` is complete.
  node();
  node(shape what, std::size_t offset);
  node(node &&) noexcept;
  node &operator=(node &&) noexcept;
  ~node();

  shape value;
  std::size_t at = 0;  // its offset in the text
};

struct member {
  std::string name;
  node content;
  std::size_t at = 0;  // of the name
};

inline node::node() = default;
inline node::node(shape what, std::size_t offset) : value(std::move(what)), at(offset) {}
inline node::node(node &&) noexcept = default;
inline node &node::operator=(node &&) noexcept = default;
inline node::~node() = default;

// Why text cannot be read, and where: the offset in the text, and the path in the message if there is one.
struct text_error : std::runtime_error {
  text_error(std::size_t offset, std::string where, const std::string &why)
      : std::runtime_error(why), at(offset), path(std::move(where)) {}

  std::size_t at;
  std::string path;
};

// The same with the name of the file, line and column: "path.json: line 3, column 7: hops[2].field5[0]: 300 is out of
// range 0 to 255".
input_error with_position(const text_error &error, byte_view text, const std::string &file);

// Deeper nesting is refused while reading: no message is nested as deeply.
inline constexpr std::size_t max_depth = 64;

}  // namespace inspect
