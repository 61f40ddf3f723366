// For every message, and everything in it at any depth that can be as long as one likes: the message with this field so
// long that the whole ends near 8,192 bytes, the longest encoding that is written by scratch, several times; for some,
// near 65,536 and in between.
#include "long_inputs.hpp"

#include "dice.hpp"
#include "harness.hpp"

namespace fuzz {

namespace {

using bytes = std::vector<unsigned char>;

void put_varint(bytes &out, std::uint64_t value) {
  for (; value >= 0x80; value >>= 7) out.push_back(static_cast<unsigned char>(value | 0x80));
  out.push_back(static_cast<unsigned char>(value));
}

void put_delimited(bytes &out, std::size_t number, const bytes &content) {
  put_varint(out, number << 3 | 2);
  put_varint(out, content.size());
  out.insert(out.end(), content.begin(), content.end());
}

// The way from a message to a field: indices of members.
using path = std::vector<std::size_t>;

void find_paths(const message &type, const path &before, std::vector<path> &out) {
  for (std::size_t i = 0; i < type.members.size(); ++i) {
    path here = before;
    here.push_back(i);
    if (type.members[i].nested != nullptr) find_paths(*type.members[i].nested, here, out);
    if (!type.members[i].is_scalar() && type.members[i].what != sort::message) out.push_back(here);
  }
}

class writer {
 public:
  explicit writer(dice &dice) : dice_(dice) {}

  // A message whose field at the end of a path takes about `more` bytes; the fields beside the path are there or not.
  bytes message_of(const message &type, const path &way, std::size_t more, std::size_t depth = 0) {
    bytes out;
    for (std::size_t i = 0; i < type.members.size(); ++i) {
      const member &field = type.members[i];
      const std::size_t number = i + 1;
      if (i != way[depth]) {
        if (dice_.percent(20)) put_short(out, field, number);
      } else if (depth + 1 != way.size()) {
        put_delimited(out, number, message_of(*field.nested, way, more, depth + 1));
      } else {
        put_long(out, field, number, more);
      }
    }
    return out;
  }

 private:
  std::uint64_t value(const member &field) {
    return field.what == sort::flag ? dice_.below(2) : dice_.number() & UINT64_MAX >> (64 - 8 * field.width);
  }

  void put_short(bytes &out, const member &field, std::size_t number) {
    if (field.is_varint()) {
      put_varint(out, number << 3);
      put_varint(out, value(field));
    } else {
      put_delimited(out, number, field.nested != nullptr ? bytes() : text(dice_.below(12)));
    }
  }

  void put_long(bytes &out, const member &field, std::size_t number, std::size_t more) {
    if (!field.is_list()) return put_delimited(out, number, text(more));
    const std::size_t end = out.size() + more;
    const bool alike = dice_.percent(50);
    const std::uint64_t first = field.what == sort::numbers ? value(field) : 0;
    bytes element;
    if (field.what == sort::messages) {
      for (std::size_t i = 0; i < field.nested->members.size(); ++i) {
        if (dice_.percent(30)) put_short(element, field.nested->members[i], i + 1);
      }
    }
    for (;;) {
      const std::size_t before = out.size();
      if (field.what == sort::messages) {
        put_delimited(out, number, element);
      } else {
        put_varint(out, number << 3);
        put_varint(out, alike ? first : value(field));
      }
      if (out.size() > end) return out.resize(before);
    }
  }

  bytes text(std::size_t length) {
    bytes out(length);
    for (unsigned char &byte : out) byte = static_cast<unsigned char>(1 + dice_.below(255));
    return out;
  }

  dice &dice_;
};

}  // namespace

std::size_t for_each_long_input(void (*use)(const unsigned char *data, std::size_t size)) {
  dice dice(1);
  std::size_t count = 0;
  for (std::size_t type = 0; type < naive::messages().size(); ++type) {
    std::vector<path> paths;
    find_paths(naive::messages()[type], {}, paths);
    const auto ends_near = [&](const path &way, std::size_t goal) {
      bytes input(trial::header);
      input[0] = static_cast<unsigned char>(type);
      for (std::size_t i = 1; i < trial::header; ++i) input[i] = dice.byte();
      const bytes message = writer(dice).message_of(naive::messages()[type], way, goal - 80 + dice.below(120));
      input.insert(input.end(), message.begin(), message.end());
      use(input.data(), input.size());
      ++count;
    };
    for (const path &way : paths) {
      for (unsigned i = 0; i < 8; ++i) ends_near(way, 8192);
      if (dice.percent(25)) ends_near(way, 1000 + dice.below(20000));
      if (dice.percent(10)) ends_near(way, 65536);
    }
  }
  return count;
}

}  // namespace fuzz
