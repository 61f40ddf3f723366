// The walk: every rule of decoding, written a second time.
#include "walk.hpp"

#include <fmt/format.h>

#include <array>
#include <string_view>
#include <utility>

#include "text_encodings.hpp"

namespace inspect {
namespace {

struct varint {
  std::size_t next;
  std::uint64_t value;
};

class walker {
 public:
  walker(byte_view input, const field_visitor *visit) : input_(input), visit_(visit) {}

  // False on failure; `done.failure` says why.
  bool message(const message_info &type, std::size_t at, std::size_t end) {
    std::array<std::optional<std::size_t>, 32> seen;  // where each field first occurs
    type_ = &type;
    while (at != end) {
      const auto key = read_varint(at, end, 32);
      if (!key) return cut_off(at, "the key");
      const field_info *const field = field_of(type, static_cast<std::uint32_t>(key->value >> 3));
      walked_field here = started(field, *key, at);
      if (field == nullptr) {
        if (!unknown(here, end)) return false;
      } else {
        auto &first = seen[field->number - 1];
        here.is_repeated = first.has_value();
        if (!known(here, first.value_or(at), end)) return false;
        if (!first) first = at;
      }
      at = here.end;
    }
    return true;
  }

  walk_outcome done;

 private:
  void pass_on(const walked_field &here) const {
    if (visit_ != nullptr) (*visit_)(here);
  }

  // Of any number of bytes; bits beyond the width are dropped.
  std::optional<varint> read_varint(std::size_t at, std::size_t end, unsigned width) const {
    std::uint64_t value = 0;
    for (unsigned shift = 0; at != end; ++at) {
      if (shift < width) {
        value |= std::uint64_t{input_[at] & 0x7fu} << shift;
        shift += 7;
      }
      if (input_[at] < 0x80) return varint{at + 1, width == 32 ? value & 0xffffffff : value};
    }
    return std::nullopt;
  }

  // A field of which only the key has been read.
  walked_field started(const field_info *field, varint key, std::size_t start,
                       std::optional<std::size_t> index = {}) const {
    return {.field = field,
            .index = index,
            .depth = depth_,
            .key = static_cast<std::uint32_t>(key.value),
            .start = start,
            .value = key.next,
            .content = key.next};
  }

  bool fail(int result, std::size_t offset, std::string reason) {
    done.failure = {result, offset, path_, depth_, std::move(reason)};
    return false;
  }

  bool fail_in(step where, int result, std::size_t offset, std::string_view reason) {
    const std::string field = fmt::format("field {} of {}", where.field->number, type_->name);
    path_.push_back(where);
    return fail(result, offset, fmt::format("{}: {}", field, reason));
  }

  std::string container() const { return path_.empty() ? "the input" : to_string(path_); }

  bool cut_off(std::size_t offset, std::string_view what) {
    return fail(CODEC_ERR_TRUNCATED, offset,
                fmt::format("{}: {} is cut off by the end of {}", type_->name, what, container()));
  }

  bool cut_off_in(const walked_field &here, std::string_view what) {
    return fail_in({here.field, here.index}, CODEC_ERR_TRUNCATED, here.value,
                   fmt::format("{} is cut off by the end of {}", what, container()));
  }

  // --- Unknown fields ---

  // A field of known size that runs past the end of its message is accepted, and ends the message.
  bool unknown(walked_field &here, std::size_t end) {
    switch (static_cast<wire_type>(here.key & 7)) {
      case wire_type::varint:
        if (const auto value = read_varint(here.value, end, 64)) {
          here.number = value->value;
          here.end = value->next;
          break;
        }
        return cut_off(here.value, fmt::format("the varint of unknown field {}", here.key >> 3));
      case wire_type::delimited:
        if (const auto length = read_varint(here.value, end, 32)) {
          here.number = length->value;
          here.content = length->next;
          break;
        }
        return cut_off(here.value, fmt::format("the length of unknown field {}", here.key >> 3));
      case wire_type::fixed64:
        here.number = 8;
        break;
      case wire_type::fixed32:
        here.number = 4;
        break;
      default:
        return fail(CODEC_ERR_BAD_WIRE_TYPE, here.start,
                    fmt::format("unknown field {} of {}: {} cannot be skipped", here.key >> 3, type_->name,
                                wire_type_name(here.key)));
    }
    if (here.end == 0) here.end = here.number < end - here.content ? here.content + here.number : end;
    ++done.unknown_fields;
    pass_on(here);
    return true;
  }

  // --- Known fields: the wire type is checked first, then whether the field may be repeated, then the content ---

  bool known(walked_field &here, std::size_t first, std::size_t end) {
    const field_info &field = *here.field;
    if ((here.key & 7) != static_cast<unsigned>(field.wire)) {
      return fail_in({&field, {}}, CODEC_ERR_WRONG_WIRE_TYPE, here.start,
                     fmt::format("{}wire type {} instead of {}", is_packed(here) ? "a packed list: " : "",
                                 wire_type_name(here.key), wire_type_name(static_cast<unsigned>(field.wire))));
    }
    switch (field.kind) {
      case kind::flag:
      case kind::integer:
        if (!scalar(here, end)) return false;
        pass_on(here);
        return true;
      case kind::string:
      case kind::bytes:
        if (here.is_repeated)
          return fail_again(here, fmt::format("second occurrence; the first is at offset {}", first));
        if (!delimited(here, end)) return false;
        pass_on(here);
        return true;
      case kind::nested:
        if (!delimited(here, end)) return false;
        pass_on(here);
        return inside(here);
      case kind::integer_list:
      case kind::message_list:
        if (here.is_repeated)
          return fail_again(here, fmt::format("second run of a list; the first starts at offset {}", first));
        return run(here, end);
    }
    return false;
  }

  static bool is_packed(const walked_field &here) {
    return here.field->kind == kind::integer_list && static_cast<wire_type>(here.key & 7) == wire_type::delimited;
  }

  bool fail_again(const walked_field &here, std::string_view reason) {
    return fail_in({here.field, {}}, CODEC_ERR_TRUNCATED, here.start, reason);
  }

  bool scalar(walked_field &here, std::size_t end) {
    const auto value = read_varint(here.value, end, here.field->width == 8 ? 64 : 32);
    if (!value) return cut_off_in(here, "the value");
    here.number = value->value;
    here.end = value->next;
    return true;
  }

  // The length, which must not exceed what is left.
  bool delimited(walked_field &here, std::size_t end) {
    const auto length = read_varint(here.value, end, 32);
    if (!length) return cut_off_in(here, "the length");
    const std::size_t left = end - length->next;
    if (length->value > left) {
      return fail_in({here.field, here.index}, CODEC_ERR_TRUNCATED, here.value,
                     fmt::format("length {} exceeds the {} left in {}", length->value, byte_count(left), container()));
    }
    here.number = length->value;
    here.content = length->next;
    here.end = length->next + length->value;
    return true;
  }

  bool inside(const walked_field &here) {
    const message_info *const outer = type_;
    path_.push_back({here.field, here.index});
    ++depth_;
    if (!message(*here.field->nested, here.content, here.end)) return false;
    --depth_;
    path_.pop_back();
    type_ = outer;
    return true;
  }

  // --- Lists ---

  // All elements are delimited before any is read: if that fails, none of the run is kept. In the keys within a run
  // only the field number matters, not the wire type.
  bool run(walked_field &here, std::size_t end) {
    here.index = 0;
    const walked_field first = here;
    while (true) {
      if (!element(here, end)) return false;
      if (here.end == end) break;
      const auto key = read_varint(here.end, end, 32);
      if (!key) return cut_off(here.end, fmt::format("the key after {}[{}]", here.field->name, *here.index));
      if (key->value >> 3 != here.field->number) break;
      here = started(here.field, *key, here.end, *here.index + 1);
    }
    // Without a visitor the values of integers matter to nobody.
    return (visit_ == nullptr && here.field->kind == kind::integer_list) || elements(first, here.end);
  }

  bool element(walked_field &here, std::size_t end) {
    return here.field->kind == kind::integer_list ? scalar(here, end) : delimited(here, end);
  }

  // Reads the elements of a run that has been delimited; each is followed by its own fields.
  bool elements(walked_field here, std::size_t end) {
    while (true) {
      element(here, end);
      pass_on(here);
      if (here.field->kind == kind::message_list && !inside(here)) return false;
      if (here.end == end) return true;
      here = started(here.field, *read_varint(here.end, end, 32), here.end, *here.index + 1);
    }
  }

  byte_view input_;
  const field_visitor *visit_;
  const message_info *type_ = nullptr;  // of the message that is being read
  path path_;
  unsigned depth_ = 0;
};

}  // namespace

walk_outcome walk_message(const message_info &type, byte_view input, const field_visitor &visit) {
  walker walker(input, &visit);
  walker.message(type, 0, input.size());
  return std::move(walker.done);
}

walk_outcome outcome_of(const message_info &type, byte_view input) {
  walker walker(input, nullptr);
  walker.message(type, 0, input.size());
  return std::move(walker.done);
}

walk walk_message(const message_info &type, byte_view input) {
  std::vector<walked_field> fields;
  walk_outcome outcome = walk_message(type, input, [&](const walked_field &each) { fields.push_back(each); });
  return {std::move(outcome), std::move(fields)};
}

}  // namespace inspect
