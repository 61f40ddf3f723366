// A value as it was read from JSON or from the Protocol Buffers text form: not yet held against any message, but with
// its place, so that every complaint can name it.
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
    std::string digits;  // a whole number in decimal, or whatever was written when it is not one
  };
  struct raw {
    byte_string content;  // a string of the text form: the bytes themselves, also those of bytes members
  };
  using list = std::vector<node>;
  using object = std::vector<member>;

  using shape = std::variant<null, bool, number, std::string, raw, list, object>;

  // Where a member is known as a whole: after it.
  node();
  node(shape what, std::size_t offset);
  node(node &&) noexcept;
  node &operator=(node &&) noexcept;
  ~node();

  shape value;
  std::size_t at = 0;  // in the text
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

// What text cannot be read, and where. `path` is where in the message, if anywhere.
struct misread : std::runtime_error {
  misread(std::size_t offset, std::string place, const std::string &why)
      : std::runtime_error(why), at(offset), path(std::move(place)) {}

  std::size_t at;
  std::string path;
};

// The same with line and column: "line 3, column 7: hops[2].field5[0]: 300 is not 0 to 255".
refused refusal(const misread &what, byte_view text);

// Nesting beyond this is refused while it is read: no message goes as deep.
inline constexpr std::size_t greatest_depth = 64;

}  // namespace inspect
