// The segment table as the library writes it, with names from a walk.
#include "segment_table.hpp"

#include <fmt/format.h>

#include "pavo_zorv.h"
#include "walk.hpp"

namespace inspect {
namespace {

struct expected_entry {
  std::string name;
  unsigned depth;
  bool is_referenced;
};

// The entries that an encoding should have, in the order of the table: nested messages come before their parent.
class expectation {
 public:
  expectation(const walk &walked, bool referenced) : fields_(walked.fields), referenced_(referenced) {}

  std::vector<expected_entry> of(const message_type &type, byte_view encoding) {
    message(type.name, 0, !encoding.empty());
    return std::move(entries_);
  }

 private:
  // In reference mode, referenced bytes split their message into two or three entries.
  void message(const std::string &name, unsigned depth, bool has_content) {
    bool is_split = false, has_rest = false;
    while (next_ != fields_.size() && fields_[next_].depth == depth) {
      const walked_field &here = fields_[next_++];
      has_rest = is_split;
      path_.push_back({here.field, here.index});
      if (here.field->nested != nullptr) {
        message(to_string(path_), depth + 1, here.end != here.content);
      } else if (referenced_ && here.field->kind == kind::bytes && here.end != here.content) {
        entries_.push_back({name + ", up to the bytes of " + here.field->name, depth, false});
        entries_.push_back({to_string(path_) + ", referenced", depth, true});
        is_split = true;
      }
      path_.pop_back();
    }
    if (is_split ? has_rest : has_content) entries_.push_back({is_split ? name + ", the rest" : name, depth, false});
  }

  const std::vector<walked_field> &fields_;
  bool referenced_;
  std::size_t next_ = 0;
  path path_;
  std::vector<expected_entry> entries_;
};

}  // namespace

segment_table segments_of(const message_type &type, byte_view input, bool referenced) {
  const std::uint32_t options = referenced ? PAVO_ZORV_REFERENCE : 0;
  record content(type);
  content.decode(input, options);

  std::uint32_t count = 0;
  byte_string buffer(type.encode(content.content(), nullptr, 0, nullptr, &count, options));
  std::vector<pavo_zorv_segment> table(count);
  type.encode(content.content(), buffer.data(), buffer.size(), table.data(), &count, options);

  record copied(type);
  copied.decode(input);
  const byte_string whole = copied.encode();
  const auto expected = expectation(walk_message(type, whole), referenced).of(type, whole);

  segment_table result{buffer.size(), {}, expected.size() == table.size()};
  for (std::size_t index = 0; index < table.size(); ++index) {
    const expected_entry entry = index < expected.size() ? expected[index] : expected_entry{"?", 0, false};
    const unsigned char *const base = entry.is_referenced ? input.data() : buffer.data();
    result.entries.push_back({entry.name, entry.depth, static_cast<std::size_t>(table[index].start - base),
                              table[index].length, entry.is_referenced});
  }
  return result;
}

}  // namespace inspect
