// Reads an input as a message, past whatever decoding refuses, and adds up what is unlikely about it.
#include "surprise.hpp"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <optional>
#include <string_view>
#include <utility>

#include "core/wire.hpp"
#include "text_encodings.hpp"

namespace inspect {
namespace {

// Bits for what is unlikely: 10 are one case in a thousand.
constexpr double cut_off = 4;          // the input ends before its message does
constexpr double not_canonical = 10;   // an over-long varint, a field out of order or repeated
constexpr double unlikely_value = 10;  // a flag of 2, a label of more than 20 bits, text with control characters
constexpr double unusual_length = 5;   // of a list of bytes: they are addresses, of 4 or 16
constexpr double reserved_label = 2;   // a label below 16
constexpr double sent_packed = 12;     // a list of integers, as many other programs send it
constexpr double wrong = 20;           // what else is refused: wrong wire types, lengths beyond the end
constexpr double unknown_field = 12;   // besides its bytes
constexpr double absent_last_field = 1;

// Bits for content.
constexpr double per_byte = 8;               // about which nothing is known
constexpr double per_character = 6;          // of text
constexpr double small_number = 2;           // 0 or 1
constexpr double varint_size_choice = 0.75;  // besides seven for each byte: most numbers are small
constexpr double nested_length = 3;          // the content tells where it ends

double choice_of(std::size_t count) { return std::log2(static_cast<double>(count)); }
double bits_of(std::size_t count, double each) { return each * static_cast<double>(count); }

bool is_printable(byte_view content) {
  return std::ranges::none_of(content, [](unsigned char each) { return each < ' '; });
}

bool reads_as_text(byte_view content) {
  return is_printable(content) && is_utf8({reinterpret_cast<const char *>(content.data()), content.size()});
}

// What the protocol says of a member's values, beyond its kind.
bool holds_labels(const field_info &field) { return std::string_view(field.name) == "labels"; }
bool holds_address(const message_info &type) { return std::string_view(type.name) == "srv6_prefix"; }
constexpr std::size_t label_bytes = 3;
constexpr std::size_t address_bytes = 16;

struct sent_number {
  std::uint64_t value;
  std::size_t size;

  bool is_over_long() const { return size > pavo_zorv::varint_size(value); }
};

// The fields of a message so far.
struct fields_so_far {
  unsigned last = 0;                // the highest number
  std::uint32_t seen = 0;           // a bit for each field
  const field_info *run = nullptr;  // the list to which the last field belongs
  std::size_t count = 0;            // of its elements
};

class surprise_reader {
 public:
  explicit surprise_reader(byte_view input) : input_(input) {}

  surprise outermost(const message_info &type) {
    message(type, 0, input_.size());
    if (is_cut_) {
      done_.bits += cut_off;
    } else if (is_refused_) {
      done_.bits -= choice_of(type.fields.size());  // a mistake is likelier where more can be mistaken
    }
    return done_;
  }

 private:
  void message(const message_info &type, std::size_t at, std::size_t end) {
    fields_so_far so_far;
    while (at != end) at = field(type, at, end, so_far);
    end_run(so_far, end);
    if (!is_cut_ && so_far.last != type.fields.size()) done_.bits += absent_last_field;
  }

  // Null if it does not end.
  std::optional<sent_number> varint(std::size_t at, std::size_t end) const {
    std::uint64_t value = 0;
    for (std::size_t index = at; index != end; ++index) {
      const std::size_t shift = 7 * (index - at);
      if (shift < 64) value |= std::uint64_t{input_[index] & 0x7fu} << shift;
      if (input_[index] < 0x80) return sent_number{value, index + 1 - at};
    }
    return std::nullopt;
  }

  // A message ends too early: with the input, which is then cut off, or by mistake.
  void ends_early(std::size_t end) {
    if (end == input_.size()) {
      is_cut_ = true;
    } else {
      refused(wrong);
    }
  }

  void refused(double bits) {
    is_refused_ = true;
    done_.bits += bits;
  }

  // Takes what is left of a message without looking into it.
  std::size_t rest(std::size_t at, std::size_t end, bool is_known) {
    ends_early(end);
    return take(at, end - at, is_known);
  }

  std::size_t take(std::size_t at, std::size_t size, bool is_known) {
    done_.bits += bits_of(size, per_byte);
    if (is_known) done_.known += size;
    return at + size;
  }

  std::size_t field(const message_info &type, std::size_t at, std::size_t end, fields_so_far &so_far) {
    const auto read = varint(at, end);
    if (!read) return rest(at, end, false);
    if (read->is_over_long()) done_.bits += not_canonical;
    const auto key = static_cast<std::uint32_t>(read->value);  // as the library reads it
    const std::size_t value = at + read->size;
    const field_info *const known = field_of(type, key >> 3);
    if (known == nullptr) {
      end_run(so_far, at);
      done_.bits += unknown_field;
      return skip(key, take(at, read->size, false), end, false);
    }
    done_.known += read->size;
    choose(type, *known, so_far, at);
    if ((key & 7) == static_cast<unsigned>(known->wire)) return content(type, *known, value, end);
    return wrongly_sent(*known, key, value, end, so_far);
  }

  // Fields come in the order of their numbers, and the elements of a list one after the other.
  void choose(const message_info &type, const field_info &next, fields_so_far &so_far, std::size_t at) {
    if (so_far.run == &next) {
      ++so_far.count;
      return;
    }
    end_run(so_far, at);
    const bool is_in_order = next.number > so_far.last;
    done_.bits +=
        is_in_order ? 2 * choice_of(next.number - so_far.last) : choice_of(type.fields.size()) + not_canonical;
    if ((so_far.seen & next.presence_bit()) != 0) done_.bits += not_canonical;
    so_far.seen |= next.presence_bit();
    so_far.last = std::max(so_far.last, next.number);
    so_far.run = next.is_list() ? &next : nullptr;
    so_far.count = 1;
  }

  void end_run(fields_so_far &so_far, std::size_t at) {
    const field_info *const run = std::exchange(so_far.run, nullptr);
    if (run == nullptr || run->width != 1) return;
    const bool may_go_on = at == input_.size() && so_far.count < address_bytes;
    if (so_far.count != 4 && so_far.count != address_bytes && !may_go_on) done_.bits += unusual_length;
  }

  std::size_t wrongly_sent(const field_info &field, std::uint32_t key, std::size_t at, std::size_t end,
                           fields_so_far &so_far) {
    const auto sent = static_cast<wire_type>(key & 7);
    if (field.kind == kind::integer_list && sent == wire_type::delimited) {
      refused(sent_packed);
      return packed(field, at, end, so_far);
    }
    // A number may have been sent with all of its bytes, but not much else is mistaken for another.
    const unsigned width = sent == wire_type::fixed32 ? 4 : sent == wire_type::fixed64 ? 8 : 0;
    const bool is_understandable = field.kind == kind::integer && field.width == width;
    refused(is_understandable ? wrong : wrong + unlikely_value);
    return skip(key, at, end, true);
  }

  std::size_t packed(const field_info &field, std::size_t at, std::size_t end, fields_so_far &so_far) {
    const auto length = varint(at, end);
    if (!length) return rest(at, end, true);
    at += length->size;
    done_.known += length->size;
    if (length->value > end - at) ends_early(end);
    const std::size_t last = at + static_cast<std::size_t>(std::min<std::uint64_t>(length->value, end - at));
    for (so_far.count = 0; at != last; ++so_far.count) at = scalar(field, at, last);
    return last;
  }

  // A value about which only its wire type is known.
  std::size_t skip(std::uint32_t key, std::size_t at, std::size_t end, bool is_known) {
    std::uint64_t size = 0;
    switch (static_cast<wire_type>(key & 7)) {
      case wire_type::varint:
        if (const auto read = varint(at, end)) return take(at, read->size, is_known);
        return rest(at, end, is_known);
      case wire_type::delimited: {
        const auto length = varint(at, end);
        if (!length) return rest(at, end, is_known);
        at = take(at, length->size, is_known);
        size = length->value;
        break;
      }
      case wire_type::fixed64:
        size = 8;
        break;
      case wire_type::fixed32:
        size = 4;
        break;
      default:
        refused(wrong);
    }
    return size > end - at ? rest(at, end, is_known) : take(at, static_cast<std::size_t>(size), is_known);
  }

  std::size_t content(const message_info &type, const field_info &field, std::size_t at, std::size_t end) {
    switch (field.kind) {
      case kind::flag:
      case kind::integer:
      case kind::integer_list:
        return scalar(field, at, end);
      case kind::string:
      case kind::bytes:
      case kind::message_list:
      case kind::nested:
        return delimited(type, field, at, end);
    }
    return end;
  }

  std::size_t delimited(const message_info &type, const field_info &field, std::size_t at, std::size_t end) {
    const auto length = varint(at, end);
    if (!length) return rest(at, end, true);
    if (length->is_over_long()) done_.bits += not_canonical;
    done_.known += length->size;
    done_.bits += nested_length;
    at += length->size;
    const bool is_short = length->value > end - at;
    if (is_short) ends_early(end);
    const std::size_t last = is_short ? end : at + static_cast<std::size_t>(length->value);
    if (field.nested != nullptr) {
      message(*field.nested, at, last);
    } else {
      done_.bits += bits_of(length->size, 7);
      done_.known += last - at;
      done_.bits += bits_of_block(type, field, input_.subspan(at, last - at), is_short);
    }
    return last;
  }

  static double bits_of_block(const message_info &type, const field_info &field, byte_view block, bool is_short) {
    if (field.kind == kind::bytes) {
      const bool may_be_address = block.size() == address_bytes || (is_short && block.size() < address_bytes);
      return bits_of(block.size(), per_byte) + (holds_address(type) && !may_be_address ? unlikely_value : 0);
    }
    // The end of the input may be inside a character.
    const bool is_readable = is_short ? is_printable(block) : reads_as_text(block);
    return is_readable ? bits_of(block.size(), per_character) : bits_of(block.size(), per_byte) + unlikely_value;
  }

  std::size_t scalar(const field_info &field, std::size_t at, std::size_t end) {
    const auto read = varint(at, end);
    if (!read) {
      if (end - at >= most_bytes(field)) done_.bits += unlikely_value;
      return rest(at, end, true);
    }
    done_.known += read->size;
    done_.bits += bits_of_number(field, *read) + (read->is_over_long() ? not_canonical : 0);
    return at + read->size;
  }

  // Of a likely value.
  static std::size_t most_bytes(const field_info &field) {
    if (holds_labels(field)) return label_bytes;
    if (field.kind == kind::flag) return 1;
    return field.width == 1 ? 2 : field.width == 4 && !field.is_signed ? 5 : 10;
  }

  static double bits_of_number(const field_info &field, const sent_number &read) {
    const bool is_list = field.kind == kind::integer_list;
    if (read.value <= 1 && !is_list) return small_number;
    if (field.kind != kind::flag && field.width == 1 && read.value <= 0xff) return per_byte;
    double bits = varint_size_choice + bits_of(read.size, 7);
    if (field.width == 1 || read.size > most_bytes(field)) bits += unlikely_value;
    if (holds_labels(field) && read.value < 16) bits += reserved_label;
    return bits;
  }

  byte_view input_;
  surprise done_;
  bool is_cut_ = false;
  bool is_refused_ = false;
};

}  // namespace

surprise surprise_of(const message_info &type, byte_view input) { return surprise_reader(input).outermost(type); }

}  // namespace inspect
