// Sizes at which sums and products could wrap: with 64-bit pointers, inputs larger than 4 GiB and runs of more than
// 2^32 elements; with 32-bit pointers, runs whose array would not fit into the address space. The inputs are one small
// file, mapped repeatedly, so that they take address space but no memory.
#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "naive/decoder.hpp"
#include "wire_bytes.hpp"

namespace {

using test::byte_string;
using test::key;
using test::operator+;
using test::varint;

unsigned checks = 0;

#define CHECK(condition)                                                                               \
  (++checks, (condition) ? static_cast<void>(0)                                                        \
                         : test::broken(std::string(__func__) + ", line " + std::to_string(__LINE__) + \
                                        ": " #condition " does not hold"))

constexpr bool wide = sizeof(std::size_t) == 8;
constexpr std::size_t chunk = std::size_t{1} << (wide ? 26 : 20);

// A repeated pattern between `head` and `tail`. The last byte is before an inaccessible page.
class long_input {
 public:
  long_input(const byte_string &head, const byte_string &pattern, std::uint64_t times, const byte_string &tail = {})
      : size_(head.size() + pattern.size() * times + tail.size()) {
    if (chunk % pattern.size() != 0) test::broken("the pattern does not fit");
    const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    const std::uint64_t chunks = pattern.size() * times / chunk;
    const auto rest = static_cast<std::size_t>(pattern.size() * times % chunk);
    const std::size_t front = (head.size() + rest + page - 1) / page * page;
    const std::size_t back = (tail.size() + page - 1) / page * page;
    mapped_ = static_cast<std::size_t>(front + chunks * chunk + back + page);
    base_ = map(nullptr, mapped_, PROT_NONE, MAP_ANONYMOUS | MAP_NORESERVE, -1);

    byte_string beginning = head;
    for (std::size_t at = 0; at < rest; at += pattern.size()) {
      beginning.insert(beginning.end(), pattern.begin(), pattern.end());
    }
    data_ = put(base_, front, beginning);
    map_chunks(base_ + front, chunks, pattern);
    if (!tail.empty()) {
      // The tail is directly after the chunks; then the input does not end at the page.
      unsigned char *const at =
          map(base_ + front + chunks * chunk, back, PROT_READ | PROT_WRITE, MAP_ANONYMOUS | MAP_FIXED, -1);
      std::memcpy(at, tail.data(), tail.size());
    }
  }
  long_input(const long_input &) = delete;
  long_input &operator=(const long_input &) = delete;
  ~long_input() { munmap(base_, mapped_); }

  const unsigned char *data() const { return data_; }
  std::size_t size() const { return static_cast<std::size_t>(size_); }

 private:
  static unsigned char *map(void *at, std::size_t size, int access, int flags, int file) {
    void *const result = mmap(at, size, access, flags | (file < 0 ? MAP_PRIVATE : MAP_SHARED), file, 0);
    if (result == MAP_FAILED) test::broken("no addresses for " + std::to_string(size) + " bytes");
    return static_cast<unsigned char *>(result);
  }
  // Where bytes that end at the end of a room begin.
  static unsigned char *put(unsigned char *room, std::size_t size, const byte_string &content) {
    if (size != 0) map(room, size, PROT_READ | PROT_WRITE, MAP_ANONYMOUS | MAP_FIXED, -1);
    unsigned char *const at = room + size - content.size();
    if (!content.empty()) std::memcpy(at, content.data(), content.size());
    return at;
  }
  static void map_chunks(unsigned char *at, std::uint64_t chunks, const byte_string &pattern) {
    if (chunks == 0) return;
    const int file = memfd_create("pattern", 0);
    if (file < 0 || ftruncate(file, chunk) != 0) test::broken("no file in memory");
    unsigned char *const content = map(nullptr, chunk, PROT_READ | PROT_WRITE, 0, file);
    for (std::size_t i = 0; i < chunk; i += pattern.size()) std::memcpy(content + i, pattern.data(), pattern.size());
    munmap(content, chunk);
    for (std::uint64_t i = 0; i < chunks; ++i) map(at + i * chunk, chunk, PROT_READ, MAP_FIXED, file);
    close(file);
  }

  std::uint64_t size_;
  std::size_t mapped_ = 0;
  unsigned char *base_ = nullptr, *data_ = nullptr;
};

// A run of two-byte elements in a list: the request is for the whole array or, if its size or count cannot be
// represented, there is none.
void a_run(const naive::message &type, unsigned number, std::uint64_t elements) {
  const naive::member &field = type.members[number - 1];
  const byte_string element = key(number, field.wire_type()) + byte_string{0x00};
  const long_input input({}, element, elements);
  std::vector<unsigned char> content(type.size, 0x5c);
  const naive::view record(type, content.data());
  test::accountant memory;
  memory.fail_from = 0;
  CHECK(type.functions->decode(record.data(), input.data(), input.size(), test::accountant::allocate, &memory, 0) ==
        CODEC_ERR_NO_MEMORY);
  const std::uint64_t size = elements * field.element_size();
  if (elements > UINT32_MAX || size > SIZE_MAX) {
    CHECK(memory.sizes.empty());
  } else {
    CHECK(memory.sizes == std::vector<std::size_t>{static_cast<std::size_t>(size)});
  }
  CHECK(record.pointer(field) == nullptr);
  CHECK(record.count(field) == 0);
  CHECK((record.presence() & type.mask()) == 0);
  std::printf("%s, field %u: a run of %llu elements\n", type.name, number, static_cast<unsigned long long>(elements));
}

const naive::message &named(const char *name) { return *naive::message_named(naive::messages(), name); }

// As many elements as a count holds, and one more. Each input has more than 8 GiB.
void runs_of_2_to_the_32() {
  for (const std::uint64_t elements : {std::uint64_t{UINT32_MAX}, std::uint64_t{UINT32_MAX} + 1}) {
    a_run(named("api_lbl_stack"), 1, elements);
    a_run(named("api_prefix"), 1, elements);
    a_run(named("api_aa_list"), 3, elements);
  }
}

// For each list of messages whose array exceeds 32 bits with an input of up to 200 MB: the longest run that fits, and
// the shortest that does not. Otherwise, the longest runs that the input allows.
[[maybe_unused]] void runs_beyond_the_address_space() {
  constexpr std::uint64_t most = 100'000'000;
  unsigned wrapping = 0;
  for (const naive::message &type : naive::messages()) {
    for (unsigned number = 1; number <= type.members.size(); ++number) {
      const naive::member &field = type.members[number - 1];
      if (field.kind != naive::kind::message_list) continue;
      const std::uint64_t fitting = SIZE_MAX / field.element_size();
      if (fitting >= most) {
        a_run(type, number, most);
        continue;
      }
      ++wrapping;
      a_run(type, number, fitting);
      a_run(type, number, fitting + 1);
      a_run(type, number, most);
    }
  }
  CHECK(wrapping != 0);
}

// One number, repeated.
void an_input_of_more_than_4_gib() {
  const long_input input({}, byte_string{0x08, 0x2a}, std::uint64_t{1} << 31 | 5, byte_string{0x08, 0x2b});
  CHECK(input.size() > UINT32_MAX);
  api_addr record = {};
  CHECK(pavo_zorv_api_addr_decode_ext(&record, input.data(), input.size(), nullptr, nullptr) == CODEC_OK);
  CHECK(record.address == 0x2b && record.presence == API_ADDR_HAS_ADDRESS);
  std::printf("a number %llu times\n", static_cast<unsigned long long>(input.size() / 2));
}

// The greatest possible length, with all its bytes: of a string, of bytes in both modes, of an unknown field, and of a
// nested message.
void the_greatest_length() {
  const byte_string length{0xff, 0xff, 0xff, 0xff, 0x0f};
  const byte_string zeros{0x00, 0x00};
  const std::uint64_t times = std::uint64_t{1} << 31;  // two bytes each: one more than the length says
  {
    const long_input input(key(2, 2) + length, zeros, times);
    api_intf record = {};
    test::accountant memory;
    memory.fail_from = 0;
    CHECK(pavo_zorv_api_intf_decode_ext(&record, input.data(), input.size(), test::accountant::allocate, &memory) ==
          CODEC_ERR_NO_MEMORY);
    CHECK(memory.sizes == std::vector<std::size_t>{static_cast<std::size_t>(std::uint64_t{1} << 32)});
    CHECK(record.field2 == nullptr);
  }
  {
    const long_input input(key(1, 2) + length, byte_string{0x10, 0x10}, times, byte_string{0x10});
    srv6_prefix record = {};
    test::accountant memory;
    memory.fail_from = 0;
    // After the bytes there is the value of a key that the bytes end in.
    CHECK(pavo_zorv_srv6_prefix_decode_ext(&record, input.data(), input.size(), test::accountant::allocate, &memory,
                                           PAVO_ZORV_REFERENCE) == CODEC_OK);
    CHECK(memory.sizes.empty());
    CHECK(record.field1 == input.data() + 6 && record.field1_length == UINT32_MAX && record.field2 == 0x10);
    CHECK(pavo_zorv_srv6_prefix_decode_ext(&record, input.data(), input.size(), test::accountant::allocate, &memory,
                                           0) == CODEC_ERR_NO_MEMORY);
    CHECK(memory.sizes == std::vector<std::size_t>{UINT32_MAX});
    CHECK(record.field1 == nullptr && record.field1_length == 0);
  }
  {
    const long_input input(key(9, 2) + length, byte_string{0x08, 0x08}, times, byte_string{0x08});
    api_addr record = {};
    CHECK(pavo_zorv_api_addr_decode_ext(&record, input.data(), input.size(), nullptr, nullptr) == CODEC_OK);
    CHECK(record.address == 8);
  }
  {
    const long_input input(key(4, 2) + length, byte_string{0x08, 0x08}, times, byte_string{0x01});
    srv6_usid record = {};
    // An odd length: the nested message ends after a key.
    CHECK(pavo_zorv_srv6_usid_decode_ext(&record, input.data(), input.size(), nullptr, nullptr, 0) ==
          CODEC_ERR_TRUNCATED);
    CHECK(record.sid_struct.field1 == 1 && record.presence == 0);
  }
  std::printf("lengths of 2^32 - 1\n");
}

// Lengths that no input in this address space can have: refused, or for an unknown field the end of the message.
void lengths_beyond_the_input() {
  for (const byte_string &length :
       {byte_string{0xff, 0xff, 0xff, 0xff, 0x0f}, byte_string{0xfa, 0xff, 0xff, 0xff, 0x0f},
        byte_string{0x80, 0x80, 0x80, 0x80, 0x08}, byte_string{0xff, 0xff, 0xff, 0xff, 0x07}}) {
    const long_input nested(key(4, 2) + length, byte_string{0x08, 0x01}, 3);
    srv6_usid usid = {};
    CHECK(pavo_zorv_srv6_usid_decode_ext(&usid, nested.data(), nested.size(), nullptr, nullptr, 0) ==
          CODEC_ERR_TRUNCATED);
    const long_input text(key(2, 2) + length, byte_string{0x08, 0x01}, 3);
    api_intf intf = {};
    test::accountant memory;
    memory.fail_from = 0;
    CHECK(pavo_zorv_api_intf_decode_ext(&intf, text.data(), text.size(), test::accountant::allocate, &memory) ==
          CODEC_ERR_TRUNCATED);
    CHECK(memory.sizes.empty());
    const long_input unknown(key(9, 2) + length, byte_string{0x08, 0x01}, 3);
    api_addr addr = {};
    CHECK(pavo_zorv_api_addr_decode_ext(&addr, unknown.data(), unknown.size(), nullptr, nullptr) == CODEC_OK);
    CHECK(addr.presence == 0);
  }
  std::printf("lengths beyond the input\n");
}

// An encoding of 200 MB and, with enough address space, of more than 8 GiB: measured, and written as far as it fits.
void long_encodings() {
  const std::uint32_t count = wide ? UINT32_MAX : 66'666'666;
  const long_input array({}, byte_string{0x01}, std::uint64_t{count});
  api_prefix record = {};
  record.octets = const_cast<unsigned char *>(array.data());
  record.octets_count = count;
  record.presence = API_PREFIX_HAS_OCTETS;
  std::uint32_t entries = 0;
  CHECK(pavo_zorv_api_prefix_encode_ext(&record, nullptr, 0, nullptr, &entries) == std::uint64_t{2} * count);
  CHECK(entries == 1);
  unsigned char buffer[5] = {};
  pavo_zorv_segment segment = {};
  CHECK(pavo_zorv_api_prefix_encode_ext(&record, buffer, 4, &segment, &entries) == std::uint64_t{2} * count);
  CHECK(std::memcmp(buffer, "\x08\x01\x08\x01", 5) == 0);
  CHECK(entries == 1 && segment.start == buffer && segment.length == std::uint64_t{2} * count);
  CHECK(pavo_zorv_api_prefix_compare(&record, &record) == 0);
  std::printf("an encoding of %llu bytes\n", static_cast<unsigned long long>(std::uint64_t{2} * count));
}

// Lists of 8-bit integers whose encoding is longer than 2^32 bytes: exact, or SIZE_MAX where size_t has 32 bits, and
// then neither the buffer nor the table is touched. The first is 400 bytes too long, the second two.
void lists_beyond_32_bits() {
  const auto has_total = [](auto encode, const auto &record, std::uint64_t total, const char *start) {
    unsigned char buffer[400];
    std::memset(buffer, 0xc7, sizeof buffer);
    pavo_zorv_segment segment = {buffer, 77};
    std::uint32_t entries = 1;
    const std::size_t length = encode(&record, buffer, wide ? 8 : sizeof buffer, &segment, &entries);
    CHECK(entries == 1);
    CHECK(encode(&record, nullptr, 0, nullptr, nullptr) == length);
    if (wide) {
      CHECK(length == total && segment.length == total);
      CHECK(std::memcmp(buffer, start, 8) == 0);
    } else {
      CHECK(length == SIZE_MAX && segment.length == 77);
      for (const unsigned char byte : buffer) CHECK(byte == 0xc7);
    }
    std::printf("an encoding of %llu bytes\n", static_cast<unsigned long long>(total));
  };
  {
    const std::uint32_t count = (std::uint32_t{1} << 30) + 100;
    const long_input array({}, byte_string{0xff}, count);
    api_msg_p2p_auto_policy_notif record = {};
    record.field22 = const_cast<unsigned char *>(array.data());
    record.field22_count = count;
    record.presence = API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_FIELD22;
    has_total(pavo_zorv_api_msg_p2p_auto_policy_notif_encode_ext, record, 4'294'967'696,
              "\xb0\x01\xff\x01\xb0\x01\xff\x01");
  }
  {
    const std::uint32_t count = 1'431'655'766;
    const long_input array({}, byte_string{0xc8}, count);
    prefix_sid_type record = {};
    record.field2 = const_cast<unsigned char *>(array.data());
    record.field2_count = count;
    record.presence = PREFIX_SID_TYPE_HAS_FIELD2;
    has_total(pavo_zorv_prefix_sid_type_encode_ext, record, 4'294'967'298, "\x10\xc8\x01\x10\xc8\x01\x10\xc8");
  }
}

// 65,537 policies that share an array of 65,536 prefixes, each with one byte: more entries than 32 bits count.
void more_entries_than_the_count_can_say() {
  unsigned char byte = 1;
  std::vector<api_prefix> prefixes(65'536, api_prefix{&byte, 1, 0, API_PREFIX_HAS_OCTETS});
  std::vector<api_policy> policies(65'537);
  for (api_policy &policy : policies) {
    policy.prefixes = prefixes.data();
    policy.prefixes_count = 65'536;
    policy.presence = API_POLICY_HAS_PREFIXES;
  }
  api_aa_list list = {};
  list.policies = policies.data();
  list.policies_count = 65'537;
  list.presence = API_AA_LIST_HAS_POLICIES;
  // A prefix takes four bytes with its key and length, a policy 262,144 and four more.
  const std::uint64_t total = std::uint64_t{65'537} * 262'148;
  std::uint32_t entries = 7;
  CHECK(pavo_zorv_api_aa_list_encode_ext(&list, nullptr, 0, nullptr, &entries) ==
        (wide ? static_cast<std::size_t>(total) : SIZE_MAX));
  CHECK(entries == UINT32_MAX);
  std::printf("more than 2^32 entries\n");
}

// A string is decoded and encoded, in a message, and in a nested message whose length is given.
void a_string(std::uint64_t length) {
  const byte_string prefix = byte_string{0x12} + varint(length);
  {
    const long_input input(prefix, byte_string{'x'}, length);
    api_intf record = {};
    test::accountant memory;
    memory.fail_from = 0;
    CHECK(pavo_zorv_api_intf_decode_ext(&record, input.data(), input.size(), test::accountant::allocate, &memory) ==
          CODEC_ERR_NO_MEMORY);
    CHECK(memory.sizes == std::vector<std::size_t>{static_cast<std::size_t>(length + 1)});
  }
  const long_input text({}, byte_string{'x'}, length, byte_string{0});
  unsigned char buffer[16] = {};
  {
    api_intf record = {};
    record.field2 = reinterpret_cast<char *>(const_cast<unsigned char *>(text.data()));
    record.presence = API_INTF_HAS_FIELD2;
    CHECK(pavo_zorv_api_intf_encode_ext(&record, nullptr, 0, nullptr, nullptr) == prefix.size() + length);
    CHECK(pavo_zorv_api_intf_encode_ext(&record, buffer, sizeof buffer, nullptr, nullptr) == prefix.size() + length);
    CHECK(std::memcmp(buffer, prefix.data(), prefix.size()) == 0 && buffer[prefix.size()] == 0);
  }
  // The length of the outer message includes the key and the length prefix of the inner one.
  api_to_zorv outer = {};
  const std::uint64_t shorter = prefix.size();
  outer.intf.field2 = reinterpret_cast<char *>(const_cast<unsigned char *>(text.data())) + shorter;
  outer.intf.presence = API_INTF_HAS_FIELD2;
  const std::uint64_t own = length - shorter, inner = 1 + varint(own).size() + own;
  const byte_string outer_prefix = byte_string{0x12} + varint(inner) + byte_string{0x12} + varint(own);
  CHECK(pavo_zorv_api_to_zorv_encode_ext(&outer, nullptr, 0, nullptr, nullptr) == outer_prefix.size() + own);
  CHECK(pavo_zorv_api_to_zorv_encode_ext(&outer, buffer, sizeof buffer, nullptr, nullptr) == outer_prefix.size() + own);
  CHECK(std::memcmp(buffer, outer_prefix.data(), outer_prefix.size()) == 0);
}

// Counts and lengths around every power of two that is too large for the usual tests.
void every_greater_power_of_two() {
  for (unsigned power = 22; power <= (wide ? 31 : 26); ++power) {
    const std::uint64_t number = std::uint64_t{1} << power;
    for (const std::uint64_t each : {number - 1, number, number + 1}) {
      a_string(each);
      a_run(named("api_lbl_stack"), 1, each);
      if (power > 26) continue;
      a_run(named("prefix_sid_type"), 2, each);
      a_run(named("api_exp_path"), 1, each);
    }
  }
  std::printf("powers of two\n");
}

}  // namespace

int main() {
  std::setvbuf(stdout, nullptr, _IOLBF, 0);
  lengths_beyond_the_input();
  long_encodings();
  lists_beyond_32_bits();
  more_entries_than_the_count_can_say();
  every_greater_power_of_two();
  if constexpr (wide) {
    runs_of_2_to_the_32();
    an_input_of_more_than_4_gib();
    the_greatest_length();
  } else {
    runs_beyond_the_address_space();
  }
  std::printf("%u checks with pointers of %zu bits\n", checks, 8 * sizeof(void *));
  return 0;
}
