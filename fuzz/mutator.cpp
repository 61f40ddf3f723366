// Mutates inputs with knowledge of the messages: inserts, removes, repeats and moves fields, makes keys and lengths
// slightly wrong and splits runs, also inside nested messages.
#include <algorithm>
#include <cstring>
#include <vector>

#include "harness.hpp"
#include "random.hpp"

extern "C" std::size_t LLVMFuzzerMutate(unsigned char *data, std::size_t size, std::size_t room);

namespace fuzz {

namespace {

using test::append;
using test::byte_string;
using test::long_varint;
using test::random_numbers;
using test::varint;

// A field of a message. What cannot be parsed is one last piece, the tail.
struct piece {
  std::uint32_t key = 0;
  std::size_t longer_key = 0;
  byte_string value;  // the bytes of a varint, fixed bytes, or what follows a length
  bool delimited = false;
  bool tail = false;
  std::int64_t wrong_length = 0;  // added to the length

  void write(byte_string &out) const {
    if (!tail) append(out, long_varint(key, longer_key));
    if (delimited) {
      append(out, varint(static_cast<std::uint32_t>(static_cast<std::int64_t>(value.size()) + wrong_length)));
    }
    append(out, value);
  }
};

byte_string slice(const byte_string &bytes, std::size_t first, std::size_t last) {
  return byte_string(bytes.begin() + static_cast<std::ptrdiff_t>(first),
                     bytes.begin() + static_cast<std::ptrdiff_t>(last));
}

std::vector<piece> pieces_of(const byte_string &bytes) {
  std::vector<piece> result;
  std::size_t position = 0;
  while (position < bytes.size()) {
    const std::size_t start = position;
    piece one;
    std::uint32_t size = 0;
    bool whole = naive::decoder::read_32(bytes.data(), bytes.size(), position, one.key);
    const std::size_t shortest = one.key < 1u << 7 ? 1 : one.key < 1u << 14 ? 2 : one.key < 1u << 21 ? 3 : 5;
    one.longer_key = position - start > shortest ? position - start - shortest : 0;
    std::size_t value = position;
    switch (one.key & 7) {
      case 0:
        whole = whole && naive::decoder::read_32(bytes.data(), bytes.size(), position, size);
        break;
      case 1:
        position += 8;
        break;
      case 5:
        position += 4;
        break;
      case 2:
        whole = whole && naive::decoder::read_32(bytes.data(), bytes.size(), position, size);
        value = position;
        one.delimited = true;
        whole = whole && size <= bytes.size() - position;
        if (whole) position += size;
        break;
      default:
        whole = false;
    }
    if (!whole || position > bytes.size()) {
      one = {};
      one.tail = true;
      one.value = slice(bytes, start, bytes.size());
      position = bytes.size();
    } else {
      one.value = slice(bytes, value, position);
    }
    result.push_back(std::move(one));
  }
  return result;
}

class mutator {
 public:
  // With the size of the message and the size it may grow to.
  mutator(random_numbers &random, std::size_t size, std::size_t room) : random_(random), size_(size), room_(room) {}

  // Repeats one field, at any depth, or lengthens a string, until the message ends near a length that matters.
  void lengthen(const message &type, byte_string &bytes, unsigned depth = 0) {
    std::vector<piece> pieces = pieces_of(bytes);
    if (pieces.empty()) insert(pieces, any_field(type, depth));
    const std::size_t at = random_.below(pieces.size());
    piece &one = pieces[at];
    const message *const nested = nested_of(type, one);
    const std::size_t goal = this->goal();
    if (nested != nullptr && !one.value.empty() && random_.percent(60)) {
      lengthen(*nested, one.value, depth + 1);
    } else if (goal > size_ && one.delimited && nested == nullptr && random_.percent(70)) {
      one.value.resize(one.value.size() + goal - size_, random_.byte());
    } else if (goal > size_) {
      byte_string written;
      one.write(written);
      pieces.insert(pieces.begin() + static_cast<std::ptrdiff_t>(at), (goal - size_) / written.size(), piece(one));
    }
    write(pieces, bytes);
  }

  void change(const message &type, byte_string &bytes, unsigned depth = 0) {
    std::vector<piece> pieces = pieces_of(bytes);
    if (pieces.empty() || random_.percent(15)) {
      insert(pieces, any_field(type, depth));
    } else {
      change_one(type, pieces, random_.below(pieces.size()), depth);
    }
    write(pieces, bytes);
  }

 private:
  static void write(const std::vector<piece> &pieces, byte_string &bytes) {
    bytes.clear();
    for (const piece &one : pieces) one.write(bytes);
  }

  // Around the longest encoding that is written by scratch, around 64 KB, and between.
  std::size_t goal() {
    const std::size_t longest = std::min<std::size_t>(room_, 20000);
    if (room_ > 65600 && random_.percent(10)) return 65536 + random_.below(64) - 40;
    return longest > 8300 && random_.percent(60) ? 8192 + random_.below(64) - 40 : random_.below(longest);
  }

  void change_one(const message &type, std::vector<piece> &pieces, std::size_t at, unsigned depth) {
    piece &one = pieces[at];
    const message *const nested = nested_of(type, one);
    if (nested != nullptr && random_.percent(50)) return change(*nested, one.value, depth + 1);
    switch (random_.below(9)) {
      case 0:
        pieces.erase(pieces.begin() + static_cast<std::ptrdiff_t>(at));
        break;
      case 1:
        insert(pieces, piece(one));
        break;
      case 2:
        std::swap(one, pieces[random_.below(pieces.size())]);
        break;
      case 3:
        one.longer_key = random_.percent(80) ? 1 + random_.below(4) : random_.below(12);
        break;
      case 4:
        one.wrong_length =
            random_.percent(70) ? (random_.percent(50) ? 1 : -1) : static_cast<std::int32_t>(random_.any());
        break;
      case 5:
        one.key ^= random_.percent(70) ? static_cast<std::uint32_t>(random_.below(8)) : 1u << random_.below(20);
        break;
      case 6:
        lengthen_run(pieces, at);
        break;
      case 7:
        split_run(type, pieces, at, depth);
        break;
      default:
        change_value(one);
    }
  }

  const message *nested_of(const message &type, const piece &one) const {
    const std::uint32_t number = one.key >> 3;
    if (one.tail || !one.delimited || number < 1 || number > type.members.size()) return nullptr;
    return type.members[number - 1].nested;
  }

  void insert(std::vector<piece> &pieces, piece one) {
    pieces.insert(pieces.begin() + static_cast<std::ptrdiff_t>(random_.below(pieces.size() + 1)), std::move(one));
  }

  // Repeats the field several times, directly after itself.
  void lengthen_run(std::vector<piece> &pieces, std::size_t at) {
    const std::size_t times = random_.percent(70) ? 1 + random_.below(4) : 1 + random_.below(40);
    const piece copy = pieces[at];
    if (copy.value.size() * times > 400) return;
    pieces.insert(pieces.begin() + static_cast<std::ptrdiff_t>(at), times, copy);
  }

  // Repeats the field, with another one in between.
  void split_run(const message &type, std::vector<piece> &pieces, std::size_t at, unsigned depth) {
    const piece copy = pieces[at];
    pieces.insert(pieces.begin() + static_cast<std::ptrdiff_t>(at), copy);
    pieces.insert(pieces.begin() + static_cast<std::ptrdiff_t>(at) + 1, any_field(type, depth));
  }

  void change_value(piece &one) {
    if ((one.key & 7) == 0 && random_.percent(70)) {
      one.value = long_varint(random_.number(), random_.percent(15) ? random_.below(12) : 0);
      return;
    }
    const std::size_t size = one.value.size();
    one.value.resize(size + 16);
    one.value.resize(LLVMFuzzerMutate(one.value.data(), size, size + 16));
  }

  piece any_field(const message &type, unsigned depth) {
    piece one;
    if (random_.percent(12)) return unknown_field(type);
    const std::size_t index = random_.below(type.members.size());
    const member &field = type.members[index];
    one.key = static_cast<std::uint32_t>(index + 1) << 3 | field.wire_type();
    one.delimited = field.wire_type() == 2;
    switch (field.wire()) {
      case naive::wire::varint:
        one.value = varint(random_.number());
        break;
      case naive::wire::delimited:
        if (field.nested == nullptr) {
          one.value.resize(random_.percent(90) ? random_.below(6) : random_.below(140));
          for (unsigned char &byte : one.value) byte = random_.byte();
        } else if (depth < 5) {
          for (std::size_t count = random_.below(3); count-- != 0;) change(*field.nested, one.value, depth + 1);
        }
        break;
    }
    return one;
  }

  piece unknown_field(const message &type) {
    static constexpr std::uint32_t types[] = {0, 0, 1, 2, 2, 5, 3, 4, 6, 7};
    piece one;
    const std::uint32_t type_bits = types[random_.below(std::size(types))];
    const std::size_t number = random_.percent(30) ? 0 : type.members.size() + 1 + random_.below(20);
    one.key = static_cast<std::uint32_t>(number) << 3 | type_bits;
    one.delimited = type_bits == 2;
    one.value.resize(type_bits == 1 ? 8 : type_bits == 5 ? 4 : type_bits == 2 ? random_.below(6) : 0);
    if (type_bits == 0) one.value = varint(random_.number());
    return one;
  }

  random_numbers &random_;
  std::size_t size_, room_;
};

}  // namespace

}  // namespace fuzz

extern "C" std::size_t LLVMFuzzerCustomMutator(unsigned char *data, std::size_t size, std::size_t room, unsigned seed) {
  constexpr std::size_t header = fuzz::trial::header;
  test::random_numbers random(seed);
  if (size < header || room <= header || random.percent(25)) return LLVMFuzzerMutate(data, size, room);
  if (random.percent(10)) {
    data[random.below(header)] = random.byte();
    return size;
  }
  test::byte_string bytes(data + header, data + size);
  const fuzz::trial trial = fuzz::trial_of(data, size);
  fuzz::mutator change(random, bytes.size(), room - header);
  // If there is room, some inputs become long.
  if (room > 8192 && bytes.size() < 4096 && random.percent(10)) change.lengthen(*trial.type, bytes);
  change.change(*trial.type, bytes);
  while (random.percent(30)) change.change(*trial.type, bytes);
  if (bytes.size() > room - header) bytes.resize(room - header);
  if (!bytes.empty()) std::memcpy(data + header, bytes.data(), bytes.size());
  return header + bytes.size();
}
