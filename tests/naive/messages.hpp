// The messages, stated a second time and by hand: what each field is, in field order. Nothing here is taken from the
// library's own tables; a test holds the two together. Where the members lie in the records follows from the words:
// members in field order, naturally aligned, the presence flags last.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <ostream>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "broken.hpp"
#include "operations.hpp"

namespace naive {

using test::broken;
using test::calls;

// A star is a list. A word that names no number, string or bytes names a message: held inline or, with a star, in an
// array. Contained messages come first.
struct statement {
  const char *message;
  const char *fields;
};

inline constexpr statement statements[] = {
    {"api_addr", "u32"},
    {"api_lbl_stack", "u32*"},
    {"prefix_sid_type", "u32 u8*"},
    {"policy_binding_sid_t", "prefix_sid_type u32"},
    {"api_exp_hop", "u32 u32 u32 u32 u8* u8*"},
    {"api_exp_path", "api_exp_hop* u32"},
    {"api_msg_service", "flag flag flag"},
    {"api_msg_internal", "flag string u64 u32 api_msg_service u32 flag"},
    {"api_msg_on_demand_color_notif", "u32"},
    {"api_msg_p2p_auto_policy",
     "string string u32 u32 flag flag api_lbl_stack u32 u32 flag u8* u32 u32 api_exp_path* u32 u32 u32 u32 flag string "
     "prefix_sid_type u32"},
    {"api_msg_p2p_auto_policy_notif",
     "string string u32 flag flag flag u32 u32 flag api_lbl_stack u32 u32 flag u32 u8* u32 u32 u32 u32 flag string u8* "
     "u32 u32 u32 flag i64"},
    {"api_msg_p2p_auto_policy_request", "api_msg_p2p_auto_policy u32 u32"},
    {"api_msg_p2p_auto_policy_response", "api_msg_p2p_auto_policy_notif u32 u32"},
    {"api_msg_p2p_auto_policy_sweep", "u32 u32"},
    {"api_nodeid", "u32 u8*"},
    {"api_prefix", "u8* u8"},
    {"api_intf", "u32 string"},
    {"api_link_update", "u32 string u32 u32 u32*"},
    {"api_policy", "string u32 u32 flag api_prefix* string string u32 i32 flag"},
    {"api_aa_list", "u8* u32 api_policy*"},
    {"api_to_zorv", "api_nodeid api_intf flag"},
    {"api_to_igp", "api_link_update api_aa_list flag flag"},
    {"api_msg_policy_reg", "flag u8* u32 string"},
    {"srv6_prefix", "bytes u32"},
    {"srv6_sid_struct", "flag flag u8 u8 u8 u8 u8 u8"},
    {"srv6_usid", "u32 u32 srv6_prefix srv6_sid_struct"},
    {"out_sid_list_info", "prefix_sid_type u32 u32 bytes"},
    {"out_srv6_usid_list_info", "srv6_usid*"},
    {"oam_req", "u32 u32 string prefix_sid_type u32 bytes u32 u32"},
    {"oam_res", "u32 u32 i32 flag out_sid_list_info* bytes out_srv6_usid_list_info*"},
    {"api_msg",
     "u64 api_msg_internal api_msg_p2p_auto_policy api_msg_p2p_auto_policy api_msg_p2p_auto_policy_notif "
     "api_msg_on_demand_color_notif api_msg_on_demand_color_notif api_msg_p2p_auto_policy_request "
     "api_msg_p2p_auto_policy_response api_msg_p2p_auto_policy_sweep api_to_igp api_to_zorv oam_req oam_res flag "
     "api_msg_policy_reg"},
};

enum class kind { flag, integer, string, bytes, integer_list, message_list, nested };

// The wire types of members.
enum class wire { varint = 0, delimited = 2 };

struct message;

struct member {
  unsigned number = 0;  // of the field
  naive::kind kind = {};
  unsigned width = 0;  // bytes of a flag or an integer, or of the integers of a list
  bool is_signed = false;
  const message *nested = nullptr;  // also of the messages of a list
  std::size_t offset = 0;
  std::size_t count_offset = 0;  // of a list's count, or of the length of bytes

  bool is_scalar() const { return kind == kind::flag || kind == kind::integer; }
  bool is_list() const { return kind == kind::integer_list || kind == kind::message_list; }
  bool has_count() const { return is_list() || kind == kind::bytes; }
  unsigned count_width() const { return kind == kind::bytes ? 8 : 4; }
  naive::wire wire() const {
    switch (kind) {
      case kind::flag:
      case kind::integer:
      case kind::integer_list:
        return wire::varint;
      case kind::string:
      case kind::bytes:
      case kind::message_list:
      case kind::nested:
        return wire::delimited;
    }
    broken("a member of no kind");
  }
  unsigned wire_type() const { return static_cast<unsigned>(wire()); }
  std::uint32_t presence_bit() const { return std::uint32_t{1} << (number - 1); }
  std::size_t element_size() const;
};

struct message {
  const char *name = nullptr;
  std::vector<member> members;  // member i is field i + 1
  std::size_t size = 0;
  std::size_t alignment = 1;
  std::size_t presence_offset = 0;
  unsigned presence_width = 0;
  const calls *functions = nullptr;

  // The presence bits that belong to fields, and those that the flags have room for.
  std::uint32_t mask() const { return static_cast<std::uint32_t>((std::uint64_t{1} << members.size()) - 1); }
  std::uint32_t all_bits() const { return static_cast<std::uint32_t>((std::uint64_t{1} << 8 * presence_width) - 1); }

  // The options words that make a difference.
  std::vector<std::uint32_t> modes() const {
    return functions->takes_options ? std::vector<std::uint32_t>{0, PAVO_ZORV_REFERENCE}
                                    : std::vector<std::uint32_t>{0};
  }
};

// As a test's parameter: an address would be another one in every build.
inline void PrintTo(const message *type, std::ostream *out) { *out << type->name; }

inline std::size_t member::element_size() const { return kind == kind::message_list ? nested->size : width; }

// What a word takes in a record: some pairs of a size and an alignment, one after the other.
class layout {
 public:
  explicit layout(message &owner) : owner_(owner) {}

  std::size_t place(std::size_t size, std::size_t alignment) {
    const std::size_t at = (owner_.size + alignment - 1) / alignment * alignment;
    owner_.size = at + size;
    if (alignment > owner_.alignment) owner_.alignment = alignment;
    return at;
  }
  std::size_t number(unsigned width) {
    struct probe {
      char before;
      std::uint64_t wide;
    };
    // On some machines a number of 64 bits is aligned to four bytes.
    return place(width, width == 8 ? offsetof(probe, wide) : width);
  }
  std::size_t pointer() { return place(sizeof(void *), sizeof(void *)); }
  void finish() {
    const std::size_t fields = owner_.members.size();
    owner_.presence_width = fields <= 8 ? 1 : fields <= 16 ? 2 : 4;
    owner_.presence_offset = number(owner_.presence_width);
    owner_.size = place(0, owner_.alignment);
  }

 private:
  message &owner_;
};

// Where messages are stated, and where those that have functions are listed: for the failures that end a program.
struct source_files {
  const char *statements, *functions;
};
inline constexpr source_files library_files{"tests/naive/messages.hpp", "include/pavo_zorv_messages.h"};

inline const message *message_named(const std::vector<message> &known, std::string_view name,
                                    const source_files &files = library_files) {
  for (const message &one : known) {
    if (one.name == name) return &one;
  }
  broken(std::string(files.statements) + " does not state " + std::string(name) + ", or not before what contains it");
}

inline member member_of(std::string_view word, const std::vector<message> &known, layout &place,
                        const source_files &files) {
  const bool list = word.back() == '*';
  if (list) word.remove_suffix(1);
  member result;
  result.is_signed = word[0] == 'i';
  if (word == "flag") {
    result.kind = kind::flag;
    result.width = 1;
  } else if (word == "u8" || word == "u32" || word == "i32" || word == "u64" || word == "i64") {
    result.kind = list ? kind::integer_list : kind::integer;
    result.width = word == "u8" ? 1 : word.ends_with("32") ? 4 : 8;
  } else if (word == "string" || word == "bytes") {
    result.kind = word == "string" ? kind::string : kind::bytes;
  } else {
    result.kind = list ? kind::message_list : kind::nested;
    result.nested = message_named(known, word, files);
  }
  result.offset = result.is_scalar()            ? place.number(result.width)
                  : result.kind == kind::nested ? place.place(result.nested->size, result.nested->alignment)
                                                : place.pointer();
  if (result.has_count()) result.count_offset = place.number(result.count_width());
  return result;
}

// Messages by their statements, each with the functions of its name.
inline std::vector<message> messages_of(std::span<const statement> stated, std::span<const calls> functions,
                                        const source_files &files = library_files) {
  std::vector<message> result;
  result.reserve(stated.size());  // messages point to one another
  for (const statement &one : stated) {
    message made;
    made.name = one.message;
    for (const calls &each : functions) {
      if (std::strcmp(each.name, one.message) == 0) made.functions = &each;
    }
    if (made.functions == nullptr) {
      broken(std::string(files.statements) + " states " + one.message + ", which " + files.functions +
             " does not list");
    }
    layout place(made);
    for (std::string_view words = one.fields; !words.empty();) {
      const std::size_t end = words.find(' ');
      made.members.push_back(member_of(words.substr(0, end), result, place, files));
      made.members.back().number = static_cast<unsigned>(made.members.size());
      words.remove_prefix(end == words.npos ? words.size() : end + 1);
    }
    place.finish();
    if (made.size != made.functions->record_size) {
      broken(std::string(files.statements) + " states " + one.message + " with " + std::to_string(made.size) +
             " bytes, its record has " + std::to_string(made.functions->record_size));
    }
    result.push_back(made);
  }
  return result;
}

inline const std::vector<message> &messages() {
  static const std::vector<message> all = messages_of(statements, test::all_calls);
  return all;
}

inline std::vector<const message *> pointers_to(const std::vector<message> &messages) {
  std::vector<const message *> result;
  for (const message &one : messages) result.push_back(&one);
  return result;
}

template <class Record>
const message &message_of() {
  static const message &found = *message_named(messages(), test::operations<Record>::name);
  return found;
}

}  // namespace naive
