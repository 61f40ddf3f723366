// That both libraries say the same with the same bytes: random records of every message there and back.
#include <utility>

#include "message_table.hpp"
#include "peer.hpp"
#include "random_bytes.hpp"

namespace test {

class same_messages : public law {
 protected:
  std::unique_ptr<protobuf::Message> read_by_peer(const byte_string &bytes) {
    return peer::instance().read(GetParam()->name, bytes);
  }
};
INSTANTIATE_TEST_SUITE_P(every, same_messages, testing::ValuesIn(subjects()), name_of_subject);

// The field type that a member stands for.
protobuf::FieldDescriptor::Type type_of(const pavo_zorv::field_info &row) {
  using type = protobuf::FieldDescriptor;
  using pavo_zorv::kind;
  switch (row.kind) {
    case kind::flag:
      return type::TYPE_BOOL;
    case kind::string:
      return type::TYPE_STRING;
    case kind::bytes:
      return type::TYPE_BYTES;
    case kind::nested:
    case kind::message_list:
      return type::TYPE_MESSAGE;
    default:
      if (row.is_signed) return row.width == 8 ? type::TYPE_INT64 : type::TYPE_INT32;
      return row.width == 8 ? type::TYPE_UINT64 : type::TYPE_UINT32;
  }
}

TEST_P(same_messages, have_the_same_fields) {
  const protobuf::Descriptor &message = peer::instance().descriptor(GetParam()->name);
  const pavo_zorv::message_info &schema = *pavo_zorv::find_message(GetParam()->name);
  EXPECT_EQ(static_cast<std::size_t>(message.field_count()), schema.fields.size());
  for (const pavo_zorv::field_info &row : schema.fields) {
    const protobuf::FieldDescriptor *const field = message.FindFieldByNumber(static_cast<int>(row.number));
    ASSERT_NE(field, nullptr) << row.name;
    EXPECT_EQ(field->name(), row.name);
    EXPECT_EQ(field->type(), type_of(row)) << row.name;
    EXPECT_EQ(field->is_repeated(), row.is_list()) << row.name;
    EXPECT_FALSE(field->is_packed()) << row.name;
    if (row.nested == nullptr || field->message_type() == nullptr) continue;
    EXPECT_EQ(field->message_type()->name(), row.nested->name) << row.name;
  }
}

TEST_P(same_messages, are_read_from_what_this_library_writes) {
  for_seeds(500, [&](random_numbers &random) {
    const random_record record(*GetParam(), random, shapes::canonical);
    tried() = encoding_of(record);
    const auto seen = read_by_peer(tried());
    ASSERT_NE(seen, nullptr);
    EXPECT_EQ(difference_of(*seen, *translated(record)), "");
  });
}

TEST_P(same_messages, are_read_from_what_the_peer_writes) {
  for_seeds(500, [&](random_numbers &random) {
    const random_record record(*GetParam(), random, shapes::canonical);
    tried() = written(*translated(record));
    for (const std::uint32_t options : GetParam()->modes()) {
      decoding back(*GetParam(), random, options);
      ASSERT_EQ(back.decode(tried()), CODEC_OK);
      EXPECT_EQ(compared(record, back.record), 0);
      EXPECT_EQ(encoding_of(back.record), encoding_of(record));
    }
  });
}

// The fields of an encoding one by one, the elements of a list together: these may come in any order.
std::vector<std::pair<const member *, byte_string>> fields_of(const naive::message &type,
                                                              const naive::encoding &encoding) {
  std::vector<std::pair<const member *, byte_string>> result;
  for (const byte_string &bytes : encoding.fields()) {
    const unsigned number = (bytes[0] < 0x80 ? bytes[0] : (bytes[0] & 0x7fu) | unsigned{bytes[1]} << 7) / 8;
    const member &row = type.members[number - 1];
    if (row.is_list() && !result.empty() && result.back().first == &row) {
      result.back().second = result.back().second + bytes;
    } else {
      result.push_back({&row, bytes});
    }
  }
  return result;
}

// A field with a longer key, but of no more than the five bytes that the peer takes for one.
byte_string with_longer_key(const byte_string &bytes, random_numbers &random) {
  const std::size_t size = bytes[0] < 0x80 ? 1 : 2;
  byte_string result = first_bytes(bytes, size);
  for (std::uint64_t extra = random.from(0, 5 - size); extra-- != 0;) {
    result.back() |= 0x80;
    result.push_back(0);
  }
  result.insert(result.end(), bytes.data() + size, bytes.data() + bytes.size());
  return result;
}

// Fields in another order, numbers that another record has as well, unknown fields between them, keys that are longer
// than they need be: what the encoding allows and this library reads as everyone does.
byte_string disorder(const naive::message &type, random_numbers &random) {
  static const byte_string unknown[] = {hex("a0 1f ff ff ff ff ff ff ff ff ff 01"),
                                        hex("a1 1f 01 02 03 04 05 06 07 08"), hex("a2 1f 03 ff ff ff"),
                                        hex("a5 1f 01 02 03 04")};
  std::vector<byte_string> parts;
  const random_record record(type, random, shapes::canonical), other(type, random, shapes::canonical);
  for (const auto &[row, bytes] : fields_of(type, naive::encoding(record))) {
    parts.push_back(with_longer_key(bytes, random));
  }
  for (const auto &[row, bytes] : fields_of(type, naive::encoding(other))) {
    if (row->is_scalar() && random.percent(60)) parts.push_back(bytes);
  }
  for (std::uint64_t times = random.below(3); times-- != 0;) parts.push_back(unknown[random.below(std::size(unknown))]);
  byte_string result;
  for (std::size_t left = parts.size(); left != 0; --left) {
    std::swap(parts[left - 1], parts[random.below(left)]);
    result = result + parts[left - 1];
  }
  return result;
}

TEST_P(same_messages, are_read_from_fields_in_disorder) {
  for_seeds(500, [&](random_numbers &random) {
    tried() = disorder(*GetParam(), random);
    const auto seen = read_by_peer(tried());
    ASSERT_NE(seen, nullptr);
    seen->DiscardUnknownFields();
    decoding back(*GetParam(), random, 0);
    ASSERT_EQ(back.decode(tried()), CODEC_OK);
    EXPECT_EQ(difference_of(*seen, *translated(back.record)), "");
  });
}

TEST_P(same_messages, are_refused_alike_when_cut_off_inside_a_field) {
  for_seeds(20, [&](random_numbers &random) {
    const byte_string bytes = encoding_of(random_record(*GetParam(), random, shapes::canonical));
    for (std::size_t length = 0; length < bytes.size(); ++length) {
      tried() = first_bytes(bytes, length);
      decoding back(*GetParam(), random, 0);
      const int result = back.decode(tried());
      const auto seen = read_by_peer(tried());
      ASSERT_EQ(result == CODEC_OK, seen != nullptr) << length;
      if (seen == nullptr) continue;
      ASSERT_EQ(difference_of(*seen, *translated(back.record)), "") << length;
    }
  });
}

}  // namespace test
