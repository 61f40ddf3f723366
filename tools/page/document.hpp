// A message as the page shows it: a tree over its bytes, in which every byte belongs to exactly one node, and its JSON
// with the place of each node in it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>
#include <vector>

#include "types.hpp"
#include "walk.hpp"

namespace inspect {

struct annotation;

enum class node_kind : std::int32_t {
  field,
  list,  // the elements of a list; has no bytes of its own
  rest,  // what was not read, or not stored, because of a failure
};

// The nodes are in the order of their bytes: what is inside a node follows it. The page reads them from memory.
struct tree_node {
  node_kind kind;
  std::int32_t depth = 0;
  std::int32_t parent = -1;     // -1 for the outermost
  std::int32_t next = 0;        // the first node that is not inside this one
  std::int32_t start = 0;       // of its bytes in the message
  std::int32_t own_end = 0;     // of the bytes of the node itself
  std::int32_t end = 0;         // with everything inside it
  std::int32_t row = 0;         // the first of its fields in the walk
  std::int32_t number = 0;      // of the field; 0 for what was not read
  std::int32_t index = -1;      // in its list, or -1
  std::int32_t json_start = 0;  // of its value in the JSON; both are 0 if it is not there
  std::int32_t json_end = 0;
};

class document {
 public:
  document(const message_type &type, byte_string bytes);
  document(const document &) = delete;
  document &operator=(const document &) = delete;

  const message_type &type() const { return type_; }
  byte_view bytes() const { return bytes_; }
  const std::vector<tree_node> &nodes() const { return nodes_; }
  const walk &walked() const { return walked_; }
  const record &content() const { return content_; }
  int result() const { return result_; }

  // What has been read; after a failure, what had been read before it.
  const std::string &json_text() const { return json_; }

  // The same with addresses as addresses, to compare.
  nlohmann::ordered_json to_json() const;

  // What the page says about the whole, and about some of the nodes.
  nlohmann::ordered_json summary() const;
  nlohmann::ordered_json describe(std::size_t first, std::size_t count) const;

  // The message with another value at a node, given as JSON; with one more field or element in it; without a node. What
  // was not read is not in it. Throws `text_error` if the value cannot be encoded.
  byte_string with_value(std::size_t node, std::string_view value) const;
  byte_string with_field(std::optional<std::size_t> container, std::uint32_t number) const;
  byte_string with_element(std::size_t list) const;
  byte_string without(std::size_t node) const;

 private:
  void add_fields();
  void add_rest();
  std::int32_t add(tree_node node);
  void close(std::int32_t depth);
  void place_in_json();
  path_view stopped() const;
  const walked_field &field_at(const tree_node &node) const {
    return walked_.fields[static_cast<std::size_t>(node.row)];
  }
  const tree_node &placed(std::size_t node) const;
  std::size_t elements_of(const tree_node &list) const;
  annotation row_of(std::size_t node) const;
  std::size_t first_rest() const;
  nlohmann::ordered_json description_of(std::size_t node) const;
  std::string replaced(std::int32_t start, std::int32_t end, std::string_view by) const;

  const message_type &type_;
  byte_string bytes_;
  walk walked_;
  record content_;
  int result_;
  std::vector<tree_node> nodes_;
  std::vector<std::int32_t> open_;  // those that the next node is inside of, while nodes are added
  std::string json_;
};

}  // namespace inspect
