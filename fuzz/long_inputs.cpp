// For every message, and everything in it at any depth that can be as long as one likes: the message with this field so
// long that the whole ends near 8,192 bytes, the longest encoding that is written by scratch, several times; for some,
// near 65,536 and in between.
#include "long_inputs.hpp"

#include "harness.hpp"
#include "random.hpp"

namespace fuzz {

namespace {

using test::append;
using test::byte_string;
using test::delimited_field;
using test::random_numbers;
using test::varint_field;

// The path from a message to a field, as indices of members.
using path = std::vector<std::size_t>;

void find_paths(const message &type, const path &before, std::vector<path> &out) {
  for (std::size_t i = 0; i < type.members.size(); ++i) {
    path here = before;
    here.push_back(i);
    if (type.members[i].nested != nullptr) find_paths(*type.members[i].nested, here, out);
    if (!type.members[i].is_scalar() && type.members[i].kind != kind::nested) out.push_back(here);
  }
}

class writer {
 public:
  explicit writer(random_numbers &random) : random_(random) {}

  // A message whose field at the end of a path takes about `more` bytes; other fields are present at random.
  byte_string message_of(const message &type, const path &way, std::size_t more, std::size_t depth = 0) {
    byte_string out;
    for (std::size_t i = 0; i < type.members.size(); ++i) {
      const member &field = type.members[i];
      if (i != way[depth]) {
        if (random_.percent(20)) append(out, short_field(field));
      } else if (depth + 1 != way.size()) {
        append(out, delimited_field(field.number, message_of(*field.nested, way, more, depth + 1)));
      } else {
        append(out, long_field(field, more));
      }
    }
    return out;
  }

 private:
  std::uint64_t value(const member &field) {
    return field.kind == kind::flag ? random_.below(2) : random_.number() & UINT64_MAX >> (64 - 8 * field.width);
  }

  byte_string short_field(const member &field) {
    switch (field.wire()) {
      case naive::wire::varint:
        return varint_field(field.number, value(field));
      case naive::wire::delimited:
        break;
    }
    return delimited_field(field.number, field.nested != nullptr ? byte_string() : text(random_.below(12)));
  }

  byte_string long_field(const member &field, std::size_t more) {
    if (!field.is_list()) return delimited_field(field.number, text(more));
    const bool alike = random_.percent(50);
    const std::uint64_t first = field.kind == kind::integer_list ? value(field) : 0;
    byte_string content;
    if (field.kind == kind::message_list) {
      for (const member &inner : field.nested->members) {
        if (random_.percent(30)) append(content, short_field(inner));
      }
    }
    byte_string out;
    for (;;) {
      const byte_string element = field.kind == kind::message_list
                                      ? delimited_field(field.number, content)
                                      : varint_field(field.number, alike ? first : value(field));
      if (out.size() + element.size() > more) return out;
      append(out, element);
    }
  }

  byte_string text(std::size_t length) {
    byte_string out(length);
    for (unsigned char &byte : out) byte = static_cast<unsigned char>(1 + random_.below(255));
    return out;
  }

  random_numbers &random_;
};

}  // namespace

std::size_t for_each_long_input(void (*use)(const unsigned char *data, std::size_t size)) {
  random_numbers random(1);
  std::size_t count = 0;
  for (std::size_t type = 0; type < naive::messages().size(); ++type) {
    std::vector<path> paths;
    find_paths(naive::messages()[type], {}, paths);
    const auto ends_near = [&](const path &way, std::size_t goal) {
      byte_string input(trial::header);
      input[0] = static_cast<unsigned char>(type);
      for (std::size_t i = 1; i < trial::header; ++i) input[i] = random.byte();
      const byte_string message =
          writer(random).message_of(naive::messages()[type], way, goal - 80 + random.below(120));
      input.insert(input.end(), message.begin(), message.end());
      use(input.data(), input.size());
      ++count;
    };
    for (const path &way : paths) {
      for (unsigned i = 0; i < 8; ++i) ends_near(way, 8192);
      if (random.percent(25)) ends_near(way, 1000 + random.below(20000));
      if (random.percent(10)) ends_near(way, 65536);
    }
  }
  return count;
}

}  // namespace fuzz
