// The C++ layer through its public interface, compiled as C++17 and as C++20.
#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <memory_resource>
#include <string>
#include <string_view>
#include <type_traits>

#if __has_include(<version>)
#include <version>
#endif
#ifdef __cpp_lib_span
#include <ranges>
#include <span>
#endif

#include "pavo_zorv.hpp"

namespace {

using byte_string = std::vector<unsigned char>;
using zorv::owned;

static_assert(!std::is_copy_constructible_v<owned<api_msg>> && !std::is_copy_assignable_v<owned<api_msg>>);
static_assert(std::is_nothrow_move_constructible_v<owned<api_msg>>);
static_assert(std::is_nothrow_move_assignable_v<owned<api_msg>>);
// A string literal ends with a NUL that is not part of the content.
static_assert(!std::is_convertible_v<const char (&)[3], zorv::bytes>);
static_assert(std::is_convertible_v<std::string_view, zorv::bytes>);
static_assert(std::is_convertible_v<std::array<std::byte, 3>, zorv::bytes>);
static_assert(!std::is_convertible_v<std::vector<int>, zorv::bytes>);

// The C functions and the layer promise not to throw.
template <class Function>
constexpr bool never_throws(Function) {
  return false;
}
template <class Result, class... Arguments>
constexpr bool never_throws(Result (*)(Arguments...) noexcept) {
  return true;
}
template <class Record>
constexpr bool functions_never_throw() {
  using functions = zorv::functions<Record>;
  return never_throws(functions::decode) && never_throws(functions::encode) && never_throws(functions::duplicate) &&
         never_throws(functions::free) && never_throws(functions::compare);
}
#define NEVER_THROW(message) static_assert(functions_never_throw<message>(), #message);
PAVO_ZORV_MESSAGES(NEVER_THROW)
#undef NEVER_THROW
static_assert(!never_throws(pavo_zorv_allocate{}) && !never_throws(pavo_zorv_release{}),
              "callbacks are plain pointers");
static_assert(noexcept(std::declval<owned<api_addr> &>().set<&api_addr::address>(7u)));
static_assert(noexcept(std::declval<owned<api_addr> &>().try_set<&api_addr::address>(7)));
static_assert(noexcept(std::declval<owned<api_intf> &>().set<&api_intf::field2>("eth0")));

// Setters have a result only if a value may not fit. Flags are read and set as bool.
static_assert(std::is_void_v<decltype(std::declval<owned<api_addr> &>().set<&api_addr::address>(7u))>);
static_assert(std::is_same_v<decltype(zorv::get<&api_msg::field15>(api_msg{})), bool>);
static_assert(std::is_same_v<decltype(zorv::get<&srv6_sid_struct::field3>(srv6_sid_struct{})), std::uint8_t>);
static_assert(std::is_same_v<decltype(zorv::get<&api_policy::field9>(api_policy{})), std::int32_t>);

// Interface 7, "eth0".
const byte_string interface_bytes = {0x08, 0x07, 0x12, 0x04, 'e', 't', 'h', '0'};
// A micro-SID's prefix: three bytes, and 64.
const byte_string prefix_bytes = {0x0a, 0x03, 0x20, 0x01, 0x0d, 0x10, 0x40};

// Counts the blocks in use, and checks at the end that all are released.
class counting_memory {
 public:
  counting_memory() { pavo_zorv_counter_init(&counter_, pavo_zorv_heap_allocate, pavo_zorv_heap_release, nullptr); }
  ~counting_memory() { EXPECT_EQ(counter_.live, 0u); }
  operator zorv::memory() { return counter_; }
  pavo_zorv_counter *operator->() { return &counter_; }

 private:
  pavo_zorv_counter counter_;
};

// A memory resource that counts the bytes in use, and can be told to refuse every request.
class resource : public std::pmr::memory_resource {
 public:
  ~resource() override { EXPECT_EQ(in_use, 0u); }
  std::size_t in_use = 0;
  std::size_t requests = 0;
  bool refuses = false;

 private:
  void *do_allocate(std::size_t size, std::size_t alignment) override {
    if (refuses) throw std::bad_alloc();
    EXPECT_EQ(alignment, PAVO_ZORV_ALIGNMENT);
    in_use += size;
    ++requests;
    return std::pmr::new_delete_resource()->allocate(size, alignment);
  }
  void do_deallocate(void *block, std::size_t size, std::size_t alignment) override {
    in_use -= size;
    std::pmr::new_delete_resource()->deallocate(block, size, alignment);
  }
  bool do_is_equal(const memory_resource &other) const noexcept override { return this == &other; }
};

TEST(owned, releases_what_it_decoded) {
  counting_memory memory;
  {
    const auto intf = zorv::decode<api_intf>(interface_bytes, memory);
    ASSERT_TRUE(intf.ok());
    EXPECT_EQ(intf->field1, 7u);
    EXPECT_STREQ(intf->field2, "eth0");
    EXPECT_EQ(memory->live, 1u);
  }
  EXPECT_EQ(memory->live, 0u);
}

TEST(owned, releases_what_was_decoded_before_a_failure) {
  counting_memory memory;
  byte_string cut_off = interface_bytes;
  cut_off.push_back(0x08);
  const auto intf = zorv::decode<api_intf>(cut_off, memory);
  EXPECT_EQ(intf.result(), CODEC_ERR_TRUNCATED);
  EXPECT_FALSE(intf.ok());
  EXPECT_STREQ(intf->field2, "eth0");
}

TEST(owned, reports_that_there_was_no_memory) {
  counting_memory memory;
  memory->fail_at = 0;
  EXPECT_EQ(zorv::decode<api_intf>(interface_bytes, memory).result(), CODEC_ERR_NO_MEMORY);
}

TEST(owned, can_be_decoded_into_repeatedly) {
  counting_memory memory;
  owned<api_intf> intf{memory};
  for (int i = 0; i < 3; ++i) {
    ASSERT_EQ(intf.decode(interface_bytes), CODEC_OK);
    EXPECT_EQ(memory->live, 1u);
  }
  EXPECT_EQ(intf.decode({}), CODEC_OK);
  EXPECT_EQ(memory->live, 0u);
  EXPECT_EQ(intf->field2, nullptr);
}

TEST(owned, is_moved_with_everything_that_it_owns) {
  counting_memory memory;
  auto first = zorv::decode<api_intf>(interface_bytes, memory);
  owned<api_intf> second = std::move(first);
  EXPECT_EQ(first->field2, nullptr);
  EXPECT_STREQ(second->field2, "eth0");
  counting_memory others;
  auto third = zorv::decode<api_intf>(interface_bytes, others);
  third = std::move(second);
  EXPECT_EQ(others->live, 0u) << "its previous content is released";
  EXPECT_STREQ(third->field2, "eth0");
  owned<api_intf> &itself = third;
  third = std::move(itself);
  EXPECT_STREQ(third->field2, "eth0");
}

TEST(owned, is_empty_after_a_reset) {
  counting_memory memory;
  auto intf = zorv::decode<api_intf>(byte_string{0x12}, memory);
  EXPECT_EQ(intf.result(), CODEC_ERR_TRUNCATED);
  EXPECT_EQ(intf.decode(interface_bytes), CODEC_OK);
  intf.reset();
  EXPECT_EQ(memory->live, 0u);
  EXPECT_EQ(zorv::encoded_size(*intf), 0u);
  EXPECT_TRUE(intf.ok());
}

TEST(owned, can_release_its_record_to_the_caller) {
  counting_memory memory;
  api_intf plain = zorv::decode<api_intf>(interface_bytes, memory).release();
  EXPECT_EQ(memory->live, 1u);
  const zorv::memory callbacks = memory;
  pavo_zorv_api_intf_free_ext(&plain, callbacks.release, callbacks.context);
}

TEST(owned, keeps_the_options_that_it_was_decoded_with) {
  counting_memory memory;
  {
    auto prefix = zorv::decode<srv6_prefix>(prefix_bytes, memory, PAVO_ZORV_REFERENCE);
    ASSERT_TRUE(prefix.ok());
    EXPECT_EQ(prefix.options(), PAVO_ZORV_REFERENCE);
    EXPECT_EQ(prefix->field1, prefix_bytes.data() + 2) << "it points into the input";
    auto moved = std::move(prefix);
    EXPECT_EQ(moved.options(), PAVO_ZORV_REFERENCE);
  }
  EXPECT_EQ(memory->requests, 0u);
}

TEST(owned, takes_over_the_options_when_it_is_assigned_to) {
  counting_memory memory;
  auto prefix = zorv::decode<srv6_prefix>(prefix_bytes, memory);
  prefix = zorv::decode<srv6_prefix>(prefix_bytes, memory, PAVO_ZORV_REFERENCE);
  EXPECT_EQ(prefix.options(), PAVO_ZORV_REFERENCE);
  EXPECT_EQ(memory->live, 0u);
}

TEST(duplicate, owns_all_its_memory) {
  counting_memory memory;
  const auto referenced = zorv::decode<srv6_prefix>(prefix_bytes, memory, PAVO_ZORV_REFERENCE);
  const auto copy = zorv::duplicate(*referenced, memory);
  ASSERT_TRUE(copy.ok());
  EXPECT_EQ(memory->live, 1u);
  EXPECT_NE(copy->field1, referenced->field1);
  EXPECT_EQ(copy, referenced);
}

TEST(duplicate, reports_that_there_was_no_memory) {
  counting_memory memory;
  const auto original = zorv::decode<api_intf>(interface_bytes, memory);
  memory->fail_at = 1;
  const auto copy = zorv::duplicate(*original, memory);
  EXPECT_EQ(copy.result(), CODEC_ERR_NO_MEMORY);
  EXPECT_FALSE(copy.has<&api_intf::field2>());
}

TEST(values, without_an_allocator_find_no_memory) {
  const zorv::memory none(nullptr, nullptr, nullptr);
  owned<api_intf> intf(none);
  EXPECT_EQ(intf.set<&api_intf::field2>("eth0"), CODEC_ERR_NO_MEMORY);
  EXPECT_EQ(intf->field2, nullptr);
  owned<api_lbl_stack> stack(none);
  EXPECT_EQ(stack.set<&api_lbl_stack::labels>(std::vector<std::uint32_t>{16}), CODEC_ERR_NO_MEMORY);
  owned<api_exp_path> path(none);
  EXPECT_EQ(path.resize<&api_exp_path::hops>(1), nullptr);
  EXPECT_FALSE(intf.has<&api_intf::field2>() || stack.has<&api_lbl_stack::labels>() || path.has<&api_exp_path::hops>());
}

TEST(comparing, orders_owned_and_plain_records) {
  owned<api_addr> low, high;
  low.set<&api_addr::address>(1u);
  high.set<&api_addr::address>(2u);
  EXPECT_TRUE(low == low && low != high && low < high && low <= high && high > low && high >= low);
  EXPECT_FALSE(low == high || low > high || low >= high || high < low || high <= low || low != low);
  EXPECT_TRUE(low == *low && *low == low && low < *high && *low<high && * high> low && high >= *high);
  EXPECT_LT(zorv::compare(*low, *high), 0);
}

TEST(encoding, fills_any_contiguous_container) {
  const auto intf = zorv::decode<api_intf>(interface_bytes);
  EXPECT_EQ(zorv::encoded_size(*intf), 8u);
  EXPECT_EQ(zorv::encode(*intf), interface_bytes);
  std::string text = "what was there before";
  zorv::encode_into(text, *intf);
  EXPECT_EQ(text,
            "\x08\x07\x12\x04"
            "eth0");
  std::pmr::vector<std::byte> bytes;
  zorv::encode_into(bytes, *intf);
  EXPECT_EQ(bytes.size(), 8u);
  EXPECT_EQ(zorv::decode<api_intf>(bytes), intf);
  EXPECT_EQ(zorv::decode<api_intf>(text), intf);
}

TEST(encoding, writes_what_fits_into_a_short_buffer) {
  const auto intf = zorv::decode<api_intf>(interface_bytes);
  std::array<unsigned char, 4> buffer{0xff, 0xff, 0xff, 0xff};
  EXPECT_EQ(zorv::encode(*intf, buffer.data(), 3), 8u);
  EXPECT_EQ(buffer, (std::array<unsigned char, 4>{0x08, 0x07, 0x12, 0xff}));
}

TEST(encoding, has_a_segment_table) {
  owned<srv6_prefix> prefix({}, PAVO_ZORV_REFERENCE);
  const byte_string address = {0x20, 0x01, 0x0d};
  ASSERT_EQ(prefix.set<&srv6_prefix::field1>(address), CODEC_OK);
  prefix.set<&srv6_prefix::field2>(64u);
  EXPECT_EQ(prefix->field1, address.data()) << "not copied";
  const auto encoding = zorv::encode_segmented(*prefix, prefix.options());
  EXPECT_EQ(encoding.bytes, (byte_string{0x0a, 0x03, 0x10, 0x40}));
  ASSERT_EQ(encoding.segments.size(), 3u);
  byte_string sent;
  for (const pavo_zorv_segment &piece : encoding.segments) {
    sent.insert(sent.end(), piece.start, piece.start + piece.length);
  }
  EXPECT_EQ(sent, prefix_bytes);
}

TEST(encoding, of_an_empty_record_has_no_segments) {
  const auto encoding = zorv::encode_segmented(api_addr{});
  EXPECT_TRUE(encoding.bytes.empty());
  EXPECT_TRUE(encoding.segments.empty());
}

TEST(presence, is_read_set_and_cleared_by_member) {
  api_policy policy{};
  zorv::set<&api_policy::field10>(policy);
  EXPECT_EQ(policy.presence, API_POLICY_HAS_FIELD10);
  EXPECT_TRUE(zorv::has<&api_policy::field10>(policy));
  EXPECT_FALSE(zorv::has<&api_policy::prefixes>(policy));
  zorv::set<&api_policy::prefixes>(policy);
  zorv::clear<&api_policy::field10>(policy);
  EXPECT_EQ(policy.presence, API_POLICY_HAS_PREFIXES);
}

TEST(presence, of_a_path_is_that_of_all_members_along_it) {
  owned<api_msg> message;
  message.set<&api_msg::to_zorv, &api_to_zorv::nodeid, &api_nodeid::octets>();
  EXPECT_EQ(message->presence, API_MSG_HAS_TO_ZORV);
  EXPECT_EQ(message->to_zorv.presence, API_TO_ZORV_HAS_NODEID);
  EXPECT_EQ(message->to_zorv.nodeid.presence, API_NODEID_HAS_OCTETS);
  EXPECT_TRUE((message.has<&api_msg::to_zorv, &api_to_zorv::nodeid, &api_nodeid::octets>()));
  EXPECT_FALSE((message.has<&api_msg::to_zorv, &api_to_zorv::intf>()));
  message.clear<&api_msg::to_zorv>();
  EXPECT_FALSE((message.has<&api_msg::to_zorv, &api_to_zorv::nodeid>()));
  message.set<&api_msg::to_zorv>();
  message.clear<&api_msg::to_zorv, &api_to_zorv::nodeid>();
  EXPECT_EQ(message->to_zorv.presence, 0u);
  EXPECT_EQ(message->presence, API_MSG_HAS_TO_ZORV);
}

TEST(values, are_set_with_their_presence_and_released_when_set_again) {
  counting_memory memory;
  owned<api_msg_p2p_auto_policy> policy{memory};
  for (const char *const name : {"first", "second", ""}) {
    ASSERT_EQ(policy.set<&api_msg_p2p_auto_policy::field1>(name), CODEC_OK);
    EXPECT_STREQ(policy->field1, name);
  }
  EXPECT_EQ(memory->live, 1u);
  for (const std::size_t count : {3u, 0u, 5u}) {
    const std::vector<std::uint32_t> labels(count, 24001);
    ASSERT_EQ((policy.set<&api_msg_p2p_auto_policy::label_stack, &api_lbl_stack::labels>(labels)), CODEC_OK);
    EXPECT_EQ(policy->label_stack.label_count, count);
  }
  EXPECT_EQ(memory->live, 2u);
  ASSERT_EQ((policy.set<&api_msg_p2p_auto_policy::field11>(std::array<std::uint8_t, 2>{1, 2})), CODEC_OK);
  EXPECT_EQ(policy->field11_count, 2u);
  policy.set<&api_msg_p2p_auto_policy::field22>(9u);
  EXPECT_EQ(policy->presence, API_MSG_P2P_AUTO_POLICY_HAS_FIELD1 | API_MSG_P2P_AUTO_POLICY_HAS_LABEL_STACK |
                                  API_MSG_P2P_AUTO_POLICY_HAS_FIELD11 | API_MSG_P2P_AUTO_POLICY_HAS_FIELD22);
  EXPECT_EQ(zorv::decode<api_msg_p2p_auto_policy>(zorv::encode(*policy)), policy);
}

TEST(values, without_memory_leave_the_member_unchanged) {
  counting_memory memory;
  owned<api_intf> intf{memory};
  ASSERT_EQ(intf.set<&api_intf::field2>("eth0"), CODEC_OK);
  memory->fail_from = 0;
  EXPECT_EQ(intf.set<&api_intf::field2>("eth1"), CODEC_ERR_NO_MEMORY);
  EXPECT_STREQ(intf->field2, "eth0");
}

TEST(values, without_memory_leave_the_messages_around_the_member_unchanged) {
  counting_memory memory;
  memory->fail_from = 0;
  owned<api_msg> message{memory};
  EXPECT_EQ((message.set<&api_msg::to_zorv, &api_to_zorv::intf, &api_intf::field2>("eth0")), CODEC_ERR_NO_MEMORY);
  EXPECT_EQ((message.resize<&api_msg::to_igp, &api_to_igp::aa_list, &api_aa_list::policies>(1)), nullptr);
  EXPECT_EQ(zorv::encoded_size(*message), 0u);
  message.set<&api_msg::to_zorv, &api_to_zorv::field3>(true);
  EXPECT_EQ(zorv::encode(*message), (byte_string{0x62, 0x02, 0x18, 0x01}));
  memory->fail_from = PAVO_ZORV_NEVER;
  ASSERT_NE((message.resize<&api_msg::to_igp, &api_to_igp::aa_list, &api_aa_list::policies>(1)), nullptr);
  EXPECT_EQ(zorv::encode(*message), (byte_string{0x5a, 0x04, 0x12, 0x02, 0x1a, 0x00, 0x62, 0x02, 0x18, 0x01}));
}

TEST(values, of_bytes_are_copied_unless_referenced) {
  counting_memory memory;
  owned<srv6_prefix> prefix{memory};
  ASSERT_EQ(prefix.set<&srv6_prefix::field1>(std::string_view("\x20\x01\x0d")), CODEC_OK);
  EXPECT_EQ(prefix->field1_length, 3u);
  EXPECT_EQ(memory->live, 1u);
  EXPECT_EQ(zorv::encode(*prefix), (byte_string{0x0a, 0x03, 0x20, 0x01, 0x0d}));
}

TEST(values, of_bytes_do_not_release_the_referenced_bytes_that_they_replace) {
  counting_memory memory;
  auto prefix = zorv::decode<srv6_prefix>(prefix_bytes, memory, PAVO_ZORV_REFERENCE);
  const byte_string other = {0xff};
  ASSERT_EQ(prefix.set<&srv6_prefix::field1>(other), CODEC_OK);
  EXPECT_EQ(prefix->field1, other.data());
  EXPECT_EQ(prefix->field1_length, 1u);
  EXPECT_EQ(memory->requests, 0u);
  EXPECT_EQ(memory->live, 0u) << "nothing is released that was not allocated";
}

// Tries to set a member to numbers; those that do not fit must change nothing.
template <auto Member, class Record>
class numbers_of {
 public:
  template <class Value>
  void are_refused(Value number) {
    const auto before = record_.template get<Member>();
    const bool present = record_.template has<Member>();
    EXPECT_EQ(record_.template try_set<Member>(number), zorv::does_not_fit) << number;
    EXPECT_EQ(record_.template get<Member>(), before) << number;
    EXPECT_EQ(record_.template has<Member>(), present) << number;
  }
  template <class Value>
  void are_accepted(Value number) {
    record_.reset();
    EXPECT_EQ(record_.template try_set<Member>(number), CODEC_OK) << number;
    EXPECT_EQ(record_.template get<Member>(), number);
    EXPECT_TRUE(record_.template has<Member>());
  }

 private:
  owned<Record> record_;
};

TEST(numbers, of_8_bits_are_refused_beyond_their_limits) {
  numbers_of<&srv6_sid_struct::field3, srv6_sid_struct> numbers;
  numbers.are_refused(-1);
  numbers.are_accepted(0);
  numbers.are_refused(-1);
  numbers.are_accepted(255);
  numbers.are_refused(256);
  numbers.are_refused(INT64_MIN);
  numbers.are_refused(UINT64_MAX);
  numbers.are_refused(std::int8_t{-1});
  numbers.are_accepted(std::int8_t{127});
  numbers.are_accepted(true);
}

TEST(numbers, of_32_bits_without_a_sign_are_refused_beyond_their_limits) {
  numbers_of<&api_addr::address, api_addr> numbers;
  numbers.are_refused(-1);
  numbers.are_accepted(0);
  numbers.are_accepted(2147483648u);
  numbers.are_accepted(std::int64_t{4294967295});
  numbers.are_refused(std::int64_t{4294967296});
  numbers.are_refused(std::int64_t{4294967297});
  numbers.are_refused(std::int64_t{-4294967295});
  numbers.are_refused(INT32_MIN);
  numbers.are_refused(INT64_MIN);
  numbers.are_accepted(std::uint64_t{4294967295u});
  numbers.are_refused(std::uint64_t{4294967296u});
  numbers.are_refused(UINT64_MAX);
}

TEST(numbers, of_32_bits_with_a_sign_are_refused_beyond_their_limits) {
  numbers_of<&api_policy::field9, api_policy> numbers;
  numbers.are_refused(std::int64_t{-2147483649});
  numbers.are_accepted(std::int64_t{-2147483647} - 1);
  numbers.are_accepted(-1);
  numbers.are_accepted(std::int64_t{2147483647});
  numbers.are_refused(std::int64_t{2147483648});
  numbers.are_refused(2147483648u);
  numbers.are_refused(4294967295u);
  numbers.are_refused(std::int64_t{4294967295});
  numbers.are_refused(UINT64_MAX);
}

TEST(numbers, of_64_bits_without_a_sign_are_refused_below_0) {
  numbers_of<&api_msg::field1, api_msg> numbers;
  numbers.are_refused(-1);
  numbers.are_refused(INT64_MIN);
  numbers.are_accepted(0);
  numbers.are_accepted(INT64_MAX);
  numbers.are_accepted(UINT64_MAX);
}

TEST(numbers, of_64_bits_with_a_sign_are_refused_above_their_limit) {
  numbers_of<&api_msg_p2p_auto_policy_notif::field27, api_msg_p2p_auto_policy_notif> numbers;
  numbers.are_accepted(INT64_MIN);
  numbers.are_accepted(-1);
  numbers.are_accepted(INT64_MAX);
  numbers.are_accepted(std::uint64_t{9223372036854775807u});
  numbers.are_refused(std::uint64_t{9223372036854775808u});
  numbers.are_refused(UINT64_MAX);
}

TEST(numbers, that_do_not_fit_leave_the_messages_around_the_member_unchanged) {
  owned<api_msg> message;
  EXPECT_EQ((message.try_set<&api_msg::to_zorv, &api_to_zorv::intf, &api_intf::field1>(-1)), zorv::does_not_fit);
  EXPECT_TRUE(zorv::encode(*message).empty());
  EXPECT_EQ((message.try_set<&api_msg::to_zorv, &api_to_zorv::intf, &api_intf::field1>(7)), CODEC_OK);
  EXPECT_EQ(zorv::encode(*message), (byte_string{0x62, 0x04, 0x12, 0x02, 0x08, 0x07}));
  EXPECT_EQ((message.get<&api_msg::to_zorv, &api_to_zorv::intf, &api_intf::field1>()), 7u);
}

TEST(numbers, that_always_fit_are_set_without_a_result) {
  owned<srv6_sid_struct> sid;
  sid.set<&srv6_sid_struct::field3>(zorv::constant<255>);
  sid.set<&srv6_sid_struct::field4>(std::uint8_t{2});
  EXPECT_EQ(zorv::encode(*sid), (byte_string{0x18, 0xff, 0x01, 0x20, 0x02}));
  owned<api_policy> policy;
  policy.set<&api_policy::field9>(-1);
  policy.set<&api_policy::field8>(std::uint16_t{65535});
  EXPECT_EQ(policy->field9, -1);
  EXPECT_EQ(policy->field8, 65535u);
#ifdef __cpp_consteval
  policy.set<&api_policy::field8>(7);
  EXPECT_EQ(policy->field8, 7u);
#endif
}

TEST(numbers, in_list_elements_are_set_and_refused_alike) {
  owned<api_aa_list> list;
  api_policy *const policy = list.resize<&api_aa_list::policies>(1);
  ASSERT_NE(policy, nullptr);
  list.set_in<&api_policy::field9>(*policy, 5);
  list.set_in<&api_policy::field10>(*policy, true);
  EXPECT_EQ(list.try_set_in<&api_policy::field9>(*policy, 2147483648u), zorv::does_not_fit);
  EXPECT_EQ(list.try_set_in<&api_policy::field8>(*policy, 6), CODEC_OK);
  EXPECT_EQ(zorv::encode(*list), (byte_string{0x1a, 0x06, 0x40, 0x06, 0x48, 0x05, 0x50, 0x01}));
}

TEST(flags, are_bool) {
  owned<api_msg> message;
  EXPECT_FALSE(message.get<&api_msg::field15>());
  message.set<&api_msg::field15>(true);
  EXPECT_TRUE(message.get<&api_msg::field15>());
  EXPECT_EQ(zorv::encode(*message), (byte_string{0x78, 0x01}));
  message.set<&api_msg::field15>(zorv::constant<false>);
  EXPECT_FALSE(message.get<&api_msg::field15>());
  EXPECT_EQ(zorv::encode(*message), (byte_string{0x78, 0x00}));
  message->field15 = 2;
  EXPECT_TRUE(zorv::get<&api_msg::field15>(*message)) << "what is not 0 is true";
}

TEST(values, of_strings_with_a_NUL_are_refused) {
  counting_memory memory;
  owned<api_intf> intf{memory};
  ASSERT_EQ(intf.set<&api_intf::field2>("eth0"), CODEC_OK);
  EXPECT_EQ(intf.set<&api_intf::field2>(std::string_view("eth\0", 4)), zorv::does_not_fit);
  EXPECT_EQ(intf.set<&api_intf::field2>(std::string("\0", 1)), zorv::does_not_fit);
  EXPECT_STREQ(intf->field2, "eth0");
  EXPECT_EQ(memory->requests, 1u);
}

// Claims to have more elements than it has.
struct immense {
  const std::uint32_t *data() const { return &element; }
  std::size_t size() const { return count; }
  std::size_t count;
  std::uint32_t element = 16;
};

TEST(lists, of_more_elements_than_a_count_holds_are_refused) {
  if (sizeof(std::size_t) == 4) GTEST_SKIP() << "no list can have so many";
  counting_memory memory;
  owned<api_lbl_stack> stack{memory};
  ASSERT_EQ(stack.set<&api_lbl_stack::labels>(immense{1}), CODEC_OK);
  EXPECT_EQ(stack.set<&api_lbl_stack::labels>(immense{std::size_t{UINT32_MAX} + 1}), zorv::does_not_fit);
  EXPECT_EQ(stack.set<&api_lbl_stack::labels>(immense{SIZE_MAX}), zorv::does_not_fit);
  EXPECT_EQ(stack->label_count, 1u);
  owned<api_aa_list> list{memory};
  EXPECT_EQ(list.resize<&api_aa_list::policies>(std::size_t{UINT32_MAX} + 2), nullptr);
  EXPECT_EQ(zorv::encoded_size(*list), 0u);
  EXPECT_EQ(memory->requests, 1u);
}

TEST(results, have_texts) {
  EXPECT_STREQ(zorv::result_text(zorv::does_not_fit), "the member cannot hold the value");
  EXPECT_STREQ(zorv::result_text(CODEC_OK), "success");
  EXPECT_STREQ(zorv::result_text(CODEC_ERR_NO_MEMORY), pavo_zorv_result_text(CODEC_ERR_NO_MEMORY));
}

TEST(lists, of_messages_are_resized_filled_and_released) {
  counting_memory memory;
  owned<api_aa_list> list{memory};
  for (std::uint32_t count = 3; count != 0; --count) {
    api_policy *const policies = list.resize<&api_aa_list::policies>(count);
    ASSERT_NE(policies, nullptr);
    EXPECT_EQ(list->policies_count, count);
    for (std::uint32_t i = 0; i < count; ++i) {
      ASSERT_EQ(list.set_in<&api_policy::field1>(policies[i], "policy " + std::to_string(i)), CODEC_OK);
      ASSERT_NE(list.resize_in<&api_policy::prefixes>(policies[i], 2), nullptr);
    }
    EXPECT_EQ(memory->live, 1 + count * 2) << "what the previous elements owned is released";
  }
  EXPECT_EQ(zorv::encode(*list),
            (byte_string{0x1a, 0x0e, 0x0a, 0x08, 'p', 'o', 'l', 'i', 'c', 'y', ' ', '0', 0x2a, 0x00, 0x2a, 0x00}));
}

TEST(lists, without_memory_stay_unchanged) {
  counting_memory memory;
  owned<api_aa_list> list{memory};
  ASSERT_NE(list.resize<&api_aa_list::policies>(2), nullptr);
  memory->fail_from = 0;
  EXPECT_EQ(list.resize<&api_aa_list::policies>(3), nullptr);
  EXPECT_EQ(list->policies_count, 2u);
}

using zorv::field;

// An envelope by the names of its fields, with every kind of member in it.
zorv::expected<owned<api_msg>> make_envelope(zorv::memory from) {
  return zorv::try_make_in<api_msg>(
      from, field<&api_msg::field1> = 1u, field<&api_msg::field15> = true,
      field<&api_msg::to_zorv, &api_to_zorv::intf> =
          zorv::fields(field<&api_intf::field1> = 7u, field<&api_intf::field2> = "eth0"),
      field<&api_msg::to_igp, &api_to_igp::aa_list, &api_aa_list::policies> =
          zorv::elements(zorv::fields(field<&api_policy::field1> = std::string("a"), field<&api_policy::field9> = -1),
                         zorv::fields(field<&api_policy::prefixes> = zorv::elements(zorv::fields()))),
      field<&api_msg::oam_req, &oam_req::field6> = std::string_view("\x01\x02"),
      field<&api_msg::p2p_auto_policy_request, &api_msg_p2p_auto_policy_request::policy,
            &api_msg_p2p_auto_policy::label_stack, &api_lbl_stack::labels> = {16, 24001},
      field<&api_msg::policy_reg> = zorv::fields());
}
const byte_string envelope_bytes = {0x08, 0x01,                                                              // field1
                                    0x42, 0x0a, 0x0a, 0x08, 0x3a, 0x06, 0x08, 0x10, 0x08, 0xc1, 0xbb, 0x01,  // labels
                                    0x5a, 0x11, 0x12, 0x0f, 0x1a, 0x09, 0x0a, 0x01, 'a',  0x48, 0xff, 0xff,
                                    0xff, 0xff, 0x0f, 0x1a, 0x02, 0x2a, 0x00,                               // policies
                                    0x62, 0x0a, 0x12, 0x08, 0x08, 0x07, 0x12, 0x04, 'e',  't',  'h',  '0',  // intf
                                    0x6a, 0x04, 0x32, 0x02, 0x01, 0x02,                                     // oam_req
                                    0x78, 0x01, 0x82, 0x01, 0x00};  // field15, policy_reg

TEST(designated_fields, make_a_record_with_all_that_is_in_it) {
  counting_memory memory;
  const auto made = make_envelope(memory);
  ASSERT_TRUE(made) << zorv::result_text(made.error());
  EXPECT_EQ(zorv::encode(**made), envelope_bytes);
  EXPECT_EQ(memory->live, 6u);
}

TEST(designated_fields, without_memory_make_nothing_and_leave_nothing) {
  std::size_t failures = 0;
  for (;; ++failures) {
    counting_memory memory;
    memory->fail_at = failures;
    const auto made = make_envelope(memory);
    if (made) break;
    EXPECT_EQ(made.error(), CODEC_ERR_NO_MEMORY);
    EXPECT_EQ(memory->live, 0u);
  }
  EXPECT_EQ(failures, 6u);
}

TEST(designated_fields, that_fail_leave_those_after_them_alone) {
  counting_memory memory;
  owned<api_intf> intf{memory};
  EXPECT_EQ(intf.assign(field<&api_intf::field2> = "eth0"), CODEC_OK);
  EXPECT_EQ(intf.assign(field<&api_intf::field2> = std::string_view("e\0h", 3), field<&api_intf::field1> = 7u),
            zorv::does_not_fit);
  EXPECT_STREQ(intf->field2, "eth0");
  EXPECT_FALSE(intf.has<&api_intf::field1>());
  owned<api_msg> message{memory};
  EXPECT_EQ((message.assign(field<&api_msg::to_zorv> =
                                zorv::fields(field<&api_to_zorv::intf> =
                                                 zorv::fields(field<&api_intf::field2> = std::string_view("\0", 1))))),
            zorv::does_not_fit);
  EXPECT_TRUE(zorv::encode(*message).empty());
}

TEST(designated_fields, may_be_none) {
  const auto made = zorv::try_make<api_addr>();
  ASSERT_TRUE(made);
  EXPECT_TRUE(zorv::encode(**made).empty());
  owned<api_aa_list> list;
  EXPECT_EQ(list.assign(field<&api_aa_list::policies> = zorv::elements()), CODEC_OK);
  EXPECT_TRUE(list.has<&api_aa_list::policies>());
  EXPECT_TRUE(list.get<&api_aa_list::policies>().empty());
}

TEST(designated_fields, of_lists_take_any_contiguous_container) {
  owned<api_lbl_stack> stack;
  const std::vector<std::uint32_t> vector = {16, 17};
  EXPECT_EQ(stack.assign(field<&api_lbl_stack::labels> = vector), CODEC_OK);
  EXPECT_EQ(zorv::encode(*stack), (byte_string{0x08, 0x10, 0x08, 0x11}));
  const std::uint32_t array[] = {18};
  EXPECT_EQ(stack.assign(field<&api_lbl_stack::labels> = array), CODEC_OK);
  EXPECT_EQ(zorv::encode(*stack), (byte_string{0x08, 0x12}));
}

TEST(views, are_read_by_paths) {
  const auto made = make_envelope({});
  ASSERT_TRUE(made);
  const api_msg &message = **made;
  using request = api_msg_p2p_auto_policy_request;
  std::vector<std::uint32_t> labels;
  for (const std::uint32_t label : zorv::get<&api_msg::p2p_auto_policy_request, &request::policy,
                                             &api_msg_p2p_auto_policy::label_stack, &api_lbl_stack::labels>(message)) {
    labels.push_back(label);
  }
  EXPECT_EQ(labels, (std::vector<std::uint32_t>{16, 24001}));
  EXPECT_EQ((zorv::get<&api_msg::to_zorv, &api_to_zorv::intf, &api_intf::field2>(message)), "eth0");
  const auto policies = zorv::get<&api_msg::to_igp, &api_to_igp::aa_list, &api_aa_list::policies>(message);
  ASSERT_EQ(policies.size(), 2u);
  EXPECT_EQ(zorv::get<&api_policy::field1>(policies.front()), "a");
  EXPECT_EQ(zorv::get<&api_policy::prefixes>(policies.back()).size(), 1u);
  EXPECT_EQ(&policies[1], message.to_igp.aa_list.policies + 1);
  EXPECT_EQ(&zorv::get<&api_msg::oam_req>(message), &message.oam_req);
  const zorv::bytes bytes = zorv::get<&api_msg::oam_req, &oam_req::field6>(message);
  EXPECT_EQ(byte_string(bytes.begin(), bytes.end()), (byte_string{0x01, 0x02}));
  EXPECT_EQ(bytes[1], 2u);
  EXPECT_FALSE(bytes.empty());
}

TEST(views, of_null_pointers_are_empty) {
  api_lbl_stack stack{};
  stack.label_count = 3;
  EXPECT_TRUE(zorv::get<&api_lbl_stack::labels>(stack).empty());
  EXPECT_TRUE(zorv::edit<&api_lbl_stack::labels>(stack).empty());
  EXPECT_EQ(zorv::get<&api_intf::field2>(api_intf{}), "");
  srv6_prefix prefix{};
  prefix.field1_length = 3;
  EXPECT_TRUE(zorv::get<&srv6_prefix::field1>(prefix).empty());
}

TEST(views, are_found_if_the_whole_path_is_present) {
  auto made = make_envelope({});
  ASSERT_TRUE(made);
  owned<api_msg> &message = *made;
  EXPECT_EQ((zorv::find<&api_msg::to_zorv, &api_to_zorv::intf, &api_intf::field1>(*message)), 7u);
  EXPECT_EQ((zorv::find<&api_msg::to_zorv, &api_to_zorv::field3>(*message)), std::nullopt);
  EXPECT_EQ((zorv::find<&api_msg::to_zorv, &api_to_zorv::intf>(*message)), &message->to_zorv.intf);
  message.clear<&api_msg::to_zorv>();
  EXPECT_EQ((zorv::find<&api_msg::to_zorv, &api_to_zorv::intf, &api_intf::field1>(*message)), std::nullopt);
  EXPECT_EQ((zorv::find<&api_msg::to_zorv, &api_to_zorv::intf>(*message)), nullptr);
}

TEST(views, for_editing_mark_nested_messages_as_present) {
  owned<api_msg> message;
  api_intf &intf = message.edit<&api_msg::to_zorv, &api_to_zorv::intf>();
  zorv::set<&api_intf::field1>(intf);
  intf.field1 = 7;
  EXPECT_EQ(zorv::encode(*message), (byte_string{0x62, 0x04, 0x12, 0x02, 0x08, 0x07}));
  ASSERT_NE((message.resize<&api_msg::to_igp, &api_to_igp::aa_list, &api_aa_list::policies>(2)), nullptr);
  for (api_policy &policy : message.edit<&api_msg::to_igp, &api_to_igp::aa_list, &api_aa_list::policies>()) {
    message.set_in<&api_policy::field9>(policy, 5);
  }
  EXPECT_EQ(zorv::encode(message->to_igp.aa_list), (byte_string{0x1a, 0x02, 0x48, 0x05, 0x1a, 0x02, 0x48, 0x05}));
}

TEST(fields, are_visited_in_the_order_of_their_numbers) {
  std::string seen;
  zorv::for_each_field<api_exp_path>([&](auto each) {
    seen += std::to_string(each.number) + ' ' + each.name + (each.kind == zorv::kind::message_list ? " list; " : "; ");
  });
  EXPECT_EQ(seen, "1 hops list; 2 field2; ");
  static_assert(zorv::field_count<api_exp_path> == 2);
}

#ifdef __cpp_lib_span
TEST(views, are_contiguous_ranges) {
  static_assert(std::ranges::contiguous_range<zorv::span<const std::uint32_t>>);
  static_assert(std::ranges::view<zorv::span<const std::uint32_t>>);
  static_assert(std::ranges::borrowed_range<zorv::span<const std::uint32_t>>);
  static_assert(std::ranges::contiguous_range<const zorv::bytes>);
  std::uint32_t labels[] = {16, 17};
  api_lbl_stack stack{};
  stack.labels = labels;
  stack.label_count = 2;
  const std::span<const std::uint32_t> read = zorv::get<&api_lbl_stack::labels>(stack);
  EXPECT_EQ(read.data(), labels);
  EXPECT_EQ(read.size(), 2u);
  const std::span<std::uint32_t> edited = zorv::edit<&api_lbl_stack::labels>(stack);
  EXPECT_EQ(edited.size(), 2u);
}
#endif

static_assert(!std::is_constructible_v<zorv::span<std::uint32_t>, const std::vector<std::uint32_t> &>);
static_assert(!std::is_convertible_v<std::vector<std::uint64_t>, zorv::span<const std::uint32_t>>);
static_assert(noexcept(zorv::try_decode<api_msg>({})) &&noexcept(zorv::try_make<api_addr>()));
static_assert(std::is_nothrow_move_constructible_v<zorv::expected<owned<api_msg>>>);

TEST(expected, has_a_record_or_the_result_that_says_why_not) {
  counting_memory memory;
  const auto intf = zorv::try_decode<api_intf>(interface_bytes, memory);
  ASSERT_TRUE(intf.has_value());
  EXPECT_EQ(intf.error(), CODEC_OK);
  EXPECT_STREQ((*intf)->field2, "eth0");
  EXPECT_TRUE(intf->has<&api_intf::field2>());
  const auto failed = zorv::try_decode<api_intf>(byte_string{0x12, 0x04}, memory);
  EXPECT_FALSE(failed);
  EXPECT_EQ(failed.error(), CODEC_ERR_TRUNCATED);
  const auto copy = zorv::try_duplicate(**intf, memory);
  ASSERT_TRUE(copy);
  EXPECT_EQ(*copy, *intf);
  memory->fail_from = 0;
  EXPECT_EQ(zorv::try_duplicate(**intf, memory).error(), CODEC_ERR_NO_MEMORY);
}

TEST(expected, keeps_nothing_of_what_was_read_before_a_failure) {
  counting_memory memory;
  byte_string cut_off = interface_bytes;
  cut_off.push_back(0x08);
  const auto failed = zorv::try_decode<api_intf>(cut_off, memory);
  EXPECT_FALSE(failed);
  EXPECT_EQ(memory->live, 0u);
  EXPECT_EQ(memory->requests, 1u);
}

TEST(expected, can_be_moved_out_of) {
  counting_memory memory;
  owned<api_intf> intf = *zorv::try_decode<api_intf>(interface_bytes, memory);
  EXPECT_STREQ(intf->field2, "eth0");
  EXPECT_EQ(memory->live, 1u);
}

TEST(exceptions, are_thrown_for_results_on_request) {
  EXPECT_STREQ(zorv::try_decode<api_intf>(interface_bytes).value()->field2, "eth0");
  const owned<api_intf> moved = zorv::try_decode<api_intf>(interface_bytes).value();
  EXPECT_STREQ(moved->field2, "eth0");
  try {
    static_cast<void>(zorv::try_decode<api_intf>(byte_string{0x12, 0x04}).value());
    ADD_FAILURE() << "nothing is thrown";
  } catch (const std::exception &thrown) {
    EXPECT_STREQ(thrown.what(), "the input ends inside a field, or repeats a field that may occur only once");
  }
  auto failed = zorv::try_decode<api_intf>(byte_string{0x0b});
  EXPECT_THROW(static_cast<void>(failed.value()), zorv::error);
  EXPECT_THROW(static_cast<void>(std::as_const(failed).value()), zorv::error);
  EXPECT_NO_THROW(zorv::check(CODEC_OK));
  try {
    zorv::check(zorv::does_not_fit);
    ADD_FAILURE() << "nothing is thrown";
  } catch (const zorv::error &thrown) {
    EXPECT_EQ(thrown.result(), zorv::does_not_fit);
    EXPECT_STREQ(thrown.what(), "the member cannot hold the value");
  }
}

TEST(memory, may_be_any_memory_resource) {
  resource from;
  {
    auto intf = zorv::decode<api_intf>(interface_bytes, from);
    ASSERT_TRUE(intf.ok());
    EXPECT_EQ(from.in_use, 5u + 8u);
    const auto copy = zorv::duplicate(*intf, &from);
    EXPECT_EQ(copy, intf);
    EXPECT_EQ(from.requests, 2u);
    from.refuses = true;
    EXPECT_EQ(intf.set<&api_intf::field2>("eth1"), CODEC_ERR_NO_MEMORY);
    EXPECT_EQ(zorv::duplicate(*intf, from).result(), CODEC_ERR_NO_MEMORY);
  }
  EXPECT_EQ(from.in_use, 0u);
  from.refuses = false;
  const zorv::memory callbacks = from;
  for (std::size_t less = 0; less < sizeof(pavo_zorv_alignment); ++less) {
    EXPECT_EQ(callbacks.allocate(SIZE_MAX - less, callbacks.context), nullptr) << "the size with the header would wrap";
  }
}

TEST(memory, may_be_a_monotonic_buffer_or_a_pool) {
  std::array<std::byte, 256> block;
  std::pmr::monotonic_buffer_resource arena(block.data(), block.size(), std::pmr::null_memory_resource());
  EXPECT_TRUE(zorv::decode<api_intf>(interface_bytes, arena).ok());
  pavo_zorv_pool pool;
  pavo_zorv_pool_init(&pool, block.data(), block.size());
  EXPECT_TRUE(zorv::decode<api_intf>(interface_bytes, pool).ok());
  EXPECT_EQ(pool.used, 8u);
  pavo_zorv_budget budget;
  pavo_zorv_budget_init(&budget, 12, pavo_zorv_heap_allocate, pavo_zorv_heap_release, nullptr);
  EXPECT_EQ(zorv::decode<api_intf>(interface_bytes, budget).result(), CODEC_ERR_NO_MEMORY);
}

}  // namespace
