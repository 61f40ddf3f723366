// Memory: what the callbacks are asked for and given back, in which order, and what happens when there is none.
#include <algorithm>

#include "support.hpp"

namespace memory_test {

using namespace test;

using sizes = std::vector<std::size_t>;

// --- What decoding asks for ---

TEST(memory, a_string_takes_its_length_and_one) {
  EXPECT_EQ(decoded<api_intf>(hex("12 00")).memory.sizes, (sizes{1}));
  EXPECT_EQ(decoded<api_intf>(hex("12 03 61 62 63")).memory.sizes, (sizes{4}));
  EXPECT_EQ(decoded<api_intf>(hex("12 80 01") + 128 * hex("61")).memory.sizes, (sizes{129}));
}

TEST(memory, bytes_take_their_length) {
  EXPECT_EQ(decoded<srv6_prefix>(hex("0a 00")).memory.sizes, (sizes{0}));
  EXPECT_EQ(decoded<srv6_prefix>(hex("0a 03 61 62 63")).memory.sizes, (sizes{3}));
  EXPECT_EQ(decoded<srv6_prefix>(hex("0a 80 01") + 128 * hex("61")).memory.sizes, (sizes{128}));
}

TEST(memory, lists_take_the_size_of_an_element_for_each) {
  EXPECT_EQ(decoded<api_lbl_stack>(hex("08 01 08 02 08 03")).memory.sizes, (sizes{12}));
  EXPECT_EQ(decoded<prefix_sid_type>(hex("10 01 10 02 10 03")).memory.sizes, (sizes{3}));
  EXPECT_EQ(decoded<api_exp_path>(hex("0a 00 0a 00 0a 00")).memory.sizes, (sizes{3 * sizeof(api_exp_hop)}));
  EXPECT_EQ(decoded<api_policy>(hex("2a 00 2a 00")).memory.sizes, (sizes{2 * sizeof(api_prefix)}));
  EXPECT_EQ(decoded<api_aa_list>(hex("1a 00 1a 00")).memory.sizes, (sizes{2 * sizeof(api_policy)}));
  EXPECT_EQ(decoded<api_msg_p2p_auto_policy>(hex("72 00")).memory.sizes, (sizes{sizeof(api_exp_path)}));
  EXPECT_EQ(decoded<oam_res>(hex("2a 00 3a 00 3a 00")).memory.sizes,
            (sizes{sizeof(out_sid_list_info), 2 * sizeof(out_srv6_usid_list_info)}));
  EXPECT_EQ(decoded<out_srv6_usid_list_info>(hex("0a 00 0a 00")).memory.sizes, (sizes{2 * sizeof(srv6_usid)}));
}

TEST(memory, is_asked_for_in_the_order_of_the_input) {
  decoded<api_link_update> update(hex("28 01 28 02 12 02 61 62"));
  EXPECT_EQ(update.memory.sizes, (sizes{8, 3}));
  decoded<api_link_update> other_way(hex("12 02 61 62 28 01 28 02"));
  EXPECT_EQ(other_way.memory.sizes, (sizes{3, 8}));
}

TEST(memory, an_array_is_asked_for_before_what_its_elements_own) {
  decoded<api_msg_p2p_auto_policy> policy(
      hex("0a 03 61 62 63 3a 06 08 01 08 02 08 03 58 01 58 02 72 0c 0a 06 28 01 28 02 30 03 0a 02 28 05 72 00 aa 01 02 "
          "10 09"));
  EXPECT_EQ(policy.result, CODEC_OK);
  EXPECT_EQ(policy.memory.sizes, (sizes{4, 12, 2, 2 * sizeof(api_exp_path), 2 * sizeof(api_exp_hop), 2, 1, 1, 1}));
}

TEST(memory, is_not_asked_for_by_messages_that_own_nothing) {
  const auto requests = [](auto &&record) {
    EXPECT_EQ(record.result, CODEC_OK);
    return record.memory.requests();
  };
  EXPECT_EQ(requests(decoded<api_addr>(hex("08 05"))), 0u);
  EXPECT_EQ(requests(decoded<api_msg_service>(hex("08 01 10 01 18 01"))), 0u);
  EXPECT_EQ(requests(decoded<api_msg_on_demand_color_notif>(hex("08 05"))), 0u);
  EXPECT_EQ(requests(decoded<api_msg_p2p_auto_policy_sweep>(hex("08 05 10 06"))), 0u);
  EXPECT_EQ(requests(decoded<srv6_sid_struct>(hex("08 01 18 05"))), 0u);
  EXPECT_EQ(requests(decoded<api_msg>(hex("08 05 32 02 08 05 52 02 08 06 78 01"))), 0u)
      << "an envelope of such messages";
}

TEST(memory, is_not_asked_for_what_is_refused) {
  for (const char *const bytes : {"10", "12", "12 05 61", "12 80"}) {
    EXPECT_EQ(decoded<api_intf>(hex(bytes)).memory.requests(), 0u) << bytes;
  }
  for (const char *const bytes : {"0a", "0a 02 08", "0a 80", "0a 00 0a", "0a 00 90", "08"}) {
    EXPECT_EQ(decoded<api_exp_path>(hex(bytes)).memory.requests(), 0u) << bytes;
  }
  for (const char *const bytes : {"08", "08 80", "08 01 08", "08 01 88", "0a 00"}) {
    EXPECT_EQ(decoded<api_lbl_stack>(hex(bytes)).memory.requests(), 0u) << bytes;
  }
}

TEST(memory, of_what_is_read_again_is_not_released_by_decoding) {
  decoded<api_msg> message(hex("1a 05 0a 01 61 3a 00 1a 03 0a 01 62"));
  EXPECT_EQ(message.result, CODEC_OK);
  EXPECT_TRUE(message.memory.released.empty());
  EXPECT_EQ(message.memory.live(), 2u);
  EXPECT_STREQ(message->field3.field1, "b");
  message.dropped = 1;
}

// --- The context ---

// The fields of an envelope that owns something of every kind at every depth: 28 blocks, 4 of them bytes.
std::vector<byte_string> everything() {
  const byte_string internal = hex("12 01 61");
  const byte_string hops =
      delimited_field(1, hex("28 01 28 02 30 03")) + hex("0a 00") + delimited_field(1, hex("28 05"));
  const byte_string policy = hex("0a 01 61 12 02 61 62 3a 04 08 01 08 02 58 05") + delimited_field(14, hops) +
                             hex("a2 01 01 61 aa 01 02 10 09");
  const byte_string policies = delimited_field(3, hex("0a 01 61 2a 02 08 05"));
  const byte_string to_igp = hex("0a 02 28 01") + delimited_field(2, hex("08 05") + policies);
  const byte_string oam_req = hex("1a 01 61 22 02 10 05 32 01 62");
  const byte_string sid_list = hex("0a 02 10 05 22 02 61 62");
  const byte_string usid_list = delimited_field(1, hex("1a 07 0a 03 61 62 63 10 05"));
  const byte_string oam_res = delimited_field(5, sid_list) + hex("32 02 63 64") + delimited_field(7, usid_list);
  return {delimited_field(2, internal), delimited_field(3, policy), delimited_field(11, to_igp),
          delimited_field(13, oam_req), delimited_field(14, oam_res)};
}

byte_string joined(const std::vector<byte_string> &parts) {
  byte_string result;
  for (const byte_string &part : parts) result = result + part;
  return result;
}

struct counted {
  int allocations = 0;
  int releases = 0;
};

void *count_allocation(std::size_t size, void *context) {
  ++static_cast<counted *>(context)->allocations;
  return std::malloc(size + 1);
}

void count_release(void *block, void *context) {
  ++static_cast<counted *>(context)->releases;
  std::free(block);
}

TEST(memory, the_context_is_handed_on_at_every_depth) {
  const fenced_block input(joined(everything()));
  counted decoding, copying;
  api_msg message, copy;
  ASSERT_EQ(operations<api_msg>::decode(&message, input.data(), input.size(), count_allocation, &decoding), CODEC_OK);
  EXPECT_EQ(decoding.allocations, 28);
  EXPECT_EQ(decoding.releases, 0);
  EXPECT_EQ(operations<api_msg>::duplicate(&copy, &message, count_allocation, &copying), CODEC_OK);
  EXPECT_EQ(copying.allocations, 28);
  EXPECT_EQ(decoding.allocations, 28);
  operations<api_msg>::free(&message, count_release, &decoding);
  EXPECT_EQ(decoding.releases, 28);
  EXPECT_EQ(copying.releases, 0);
  operations<api_msg>::free(&copy, count_release, &copying);
  EXPECT_EQ(copying.releases, 28);
}

TEST(memory, in_reference_mode_is_asked_for_all_but_bytes) {
  decoded<api_msg> message(joined(everything()), PAVO_ZORV_REFERENCE);
  EXPECT_EQ(message.result, CODEC_OK);
  EXPECT_EQ(message.memory.requests(), 24u);
  api_msg copy;
  counted copying;
  EXPECT_EQ(operations<api_msg>::duplicate(&copy, &message.record, count_allocation, &copying), CODEC_OK);
  EXPECT_EQ(copying.allocations, 28) << "a copy owns its bytes";
  operations<api_msg>::free(&copy, count_release, &copying);
  EXPECT_EQ(copying.releases, 28);
}

TEST(memory, a_null_context_is_handed_on_as_null) {
  const pavo_zorv_allocate allocate = [](std::size_t size, void *context) {
    EXPECT_EQ(context, nullptr);
    return std::malloc(size + 1);
  };
  const pavo_zorv_release release = [](void *block, void *context) {
    EXPECT_EQ(context, nullptr);
    std::free(block);
  };
  const fenced_block input(hex("0a 02 10 05"));
  policy_binding_sid_t binding, copy;
  EXPECT_EQ(operations<policy_binding_sid_t>::decode(&binding, input.data(), 4, allocate, nullptr), CODEC_OK);
  EXPECT_EQ(operations<policy_binding_sid_t>::duplicate(&copy, &binding, allocate, nullptr), CODEC_OK);
  operations<policy_binding_sid_t>::free(&binding, release, nullptr);
  operations<policy_binding_sid_t>::free(&copy, release, nullptr);
}

// --- When there is none: decoding ---

TEST(memory, a_string_for_which_there_is_none_is_null_and_absent) {
  const fenced_block input(hex("08 05 12 02 61 62 08 06"));
  accountant memory;
  memory.fail_at = 0;
  api_intf intf;
  EXPECT_EQ(operations<api_intf>::decode(&intf, input.data(), input.size(), accountant::allocate, &memory),
            CODEC_ERR_NO_MEMORY);
  EXPECT_EQ(intf.field2, nullptr);
  EXPECT_EQ(intf.field1, 5u) << "what was read before stays, and nothing more is read";
  EXPECT_EQ(intf.presence & 3, API_INTF_HAS_FIELD1);
}

TEST(memory, bytes_for_which_there_is_none_are_null_empty_and_absent) {
  for (const char *const bytes : {"10 05 0a 02 61 62 10 06", "10 05 0a 00 10 06"}) {
    const fenced_block input{hex(bytes)};
    accountant memory;
    memory.fail_at = 0;
    srv6_prefix prefix;
    std::memset(&prefix, 0x5a, sizeof prefix);
    EXPECT_EQ(operations<srv6_prefix>::decode(&prefix, input.data(), input.size(), accountant::allocate, &memory),
              CODEC_ERR_NO_MEMORY);
    EXPECT_EQ(memory.requests(), 1u);
    EXPECT_EQ(prefix.field1, nullptr) << bytes;
    EXPECT_EQ(prefix.field1_length, 0u) << bytes;
    EXPECT_EQ(prefix.field2, 5u) << bytes;
    EXPECT_EQ(prefix.presence & 3, SRV6_PREFIX_HAS_FIELD2) << bytes;
  }
}

TEST(memory, lists_for_which_there_is_none_are_null_empty_and_absent) {
  accountant memory;
  memory.fail_from = 0;
  const fenced_block labels(hex("08 01 08 02"));
  api_lbl_stack stack;
  std::memset(&stack, 0x5a, sizeof stack);
  EXPECT_EQ(operations<api_lbl_stack>::decode(&stack, labels.data(), 4, accountant::allocate, &memory),
            CODEC_ERR_NO_MEMORY);
  EXPECT_EQ(stack.labels, nullptr);
  EXPECT_EQ(stack.label_count, 0u);
  EXPECT_EQ(stack.presence & 1, 0);

  const fenced_block hops(hex("10 05 0a 02 08 01 0a 00"));
  api_exp_path path;
  std::memset(&path, 0x5a, sizeof path);
  EXPECT_EQ(operations<api_exp_path>::decode(&path, hops.data(), hops.size(), accountant::allocate, &memory),
            CODEC_ERR_NO_MEMORY);
  EXPECT_EQ(path.hops, nullptr);
  EXPECT_EQ(path.hop_count, 0u);
  EXPECT_EQ(path.presence & 3, API_EXP_PATH_HAS_FIELD2);
}

TEST(memory, a_nested_message_for_which_there_is_none_is_absent) {
  const fenced_block input(hex("0a 04 08 03 10 05"));
  accountant memory;
  memory.fail_at = 0;
  policy_binding_sid_t binding;
  std::memset(&binding, 0x5a, sizeof binding);
  EXPECT_EQ(
      operations<policy_binding_sid_t>::decode(&binding, input.data(), input.size(), accountant::allocate, &memory),
      CODEC_ERR_NO_MEMORY);
  EXPECT_EQ(binding.presence & 3, 0);
  EXPECT_EQ(binding.sid.field1, 3u);
  EXPECT_EQ(binding.sid.field2, nullptr);
  EXPECT_EQ(binding.sid.field2_count, 0u);
  EXPECT_EQ(binding.sid.presence & 3, PREFIX_SID_TYPE_HAS_FIELD1);
}

TEST(memory, failing_at_each_request_stops_decoding_and_leaves_a_record_that_can_be_released) {
  const fenced_block input(joined(everything()));
  accountant enough;
  api_msg message;
  ASSERT_EQ(operations<api_msg>::decode(&message, input.data(), input.size(), accountant::allocate, &enough), CODEC_OK);
  operations<api_msg>::free(&message, accountant::release, &enough);
  EXPECT_EQ(enough.live(), 0u);
  ASSERT_EQ(enough.requests(), 28u);
  for (std::size_t request = 0; request < enough.requests(); ++request) {
    accountant memory;
    memory.fail_at = request;
    std::memset(static_cast<void *>(&message), 0x5a, sizeof message);
    EXPECT_EQ(operations<api_msg>::decode(&message, input.data(), input.size(), accountant::allocate, &memory),
              CODEC_ERR_NO_MEMORY);
    EXPECT_EQ(memory.requests(), request + 1);
    EXPECT_TRUE(memory.released.empty());
    EXPECT_TRUE(std::equal(memory.sizes.begin(), memory.sizes.end(), enough.sizes.begin()));
    encoded(message);
    operations<api_msg>::free(&message, accountant::release, &memory);
    EXPECT_EQ(memory.live(), 0u) << "request " << request;
  }
}

TEST(memory, an_input_cut_off_anywhere_leaves_a_record_that_can_be_released) {
  const std::vector<byte_string> fields = everything();
  std::vector<std::size_t> ends = {0};
  for (const byte_string &field : fields) ends.push_back(ends.back() + field.size());
  const byte_string bytes = joined(fields);
  for (std::size_t length = 0; length <= bytes.size(); ++length) {
    const bool whole = std::find(ends.begin(), ends.end(), length) != ends.end();
    for (const std::uint32_t options : {std::uint32_t{0}, std::uint32_t{PAVO_ZORV_REFERENCE}}) {
      decoded<api_msg> message(byte_string(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(length)),
                               options);
      EXPECT_EQ(message.result, whole ? CODEC_OK : CODEC_ERR_TRUNCATED) << length;
    }
  }
}

// --- Copying ---

TEST(memory, copying_asks_in_field_order) {
  decoded<api_msg_p2p_auto_policy> source(
      hex("aa 01 02 10 09 a2 01 03 61 62 63 72 0c 0a 06 28 01 28 02 30 03 0a 02 28 05 72 00 58 01 58 02 3a 06 08 01 08 "
          "02 08 03 "
          "12 01 61 0a 02 61 62"));
  ASSERT_EQ(source.result, CODEC_OK);
  accountant memory;
  api_msg_p2p_auto_policy copy;
  EXPECT_EQ(operations<api_msg_p2p_auto_policy>::duplicate(&copy, &source.record, accountant::allocate, &memory),
            CODEC_OK);
  EXPECT_EQ(memory.sizes, (sizes{3, 2, 12, 2, 2 * sizeof(api_exp_path), 2 * sizeof(api_exp_hop), 2, 1, 1, 4, 1}));
  operations<api_msg_p2p_auto_policy>::free(&copy, accountant::release, &memory);
  EXPECT_EQ(memory.live(), 0u);
}

TEST(memory, failing_at_each_request_of_a_copy_leaves_a_record_that_can_be_released) {
  decoded<api_msg> source(joined(everything()));
  ASSERT_EQ(source.result, CODEC_OK);
  accountant enough;
  api_msg copy;
  ASSERT_EQ(operations<api_msg>::duplicate(&copy, &source.record, accountant::allocate, &enough), CODEC_OK);
  EXPECT_EQ(operations<api_msg>::compare(&copy, &source.record), 0);
  operations<api_msg>::free(&copy, accountant::release, &enough);
  EXPECT_EQ(enough.live(), 0u);
  for (const bool all_later_ones : {false, true}) {
    for (std::size_t request = 0; request < enough.requests(); ++request) {
      accountant memory;
      (all_later_ones ? memory.fail_from : memory.fail_at) = request;
      std::memset(static_cast<void *>(&copy), 0x5a, sizeof copy);
      EXPECT_EQ(operations<api_msg>::duplicate(&copy, &source.record, accountant::allocate, &memory),
                CODEC_ERR_NO_MEMORY);
      EXPECT_TRUE(memory.released.empty());
      EXPECT_LE(memory.requests(), enough.requests());
      EXPECT_NE(operations<api_msg>::compare(&copy, &source.record), 0);
      EXPECT_EQ(encoded(copy) == encoded(source.record), false);
      operations<api_msg>::free(&copy, accountant::release, &memory);
      EXPECT_EQ(memory.live(), 0u) << "request " << request;
    }
  }
}

TEST(memory, a_copy_goes_on_after_what_it_had_no_memory_for) {
  decoded<oam_req> source(hex("1a 03 61 62 63 22 04 10 05 10 06 32 05 01 02 03 04 05 38 07"));
  for (std::size_t request = 0; request < 3; ++request) {
    accountant memory;
    memory.fail_at = request;
    oam_req copy;
    std::memset(&copy, 0x5a, sizeof copy);
    EXPECT_EQ(operations<oam_req>::duplicate(&copy, &source.record, accountant::allocate, &memory),
              CODEC_ERR_NO_MEMORY);
    EXPECT_EQ(memory.sizes, (sizes{4, 2, 5}));
    EXPECT_EQ(copy.field3 == nullptr, request == 0);
    EXPECT_EQ(copy.prefix_sid.field2 == nullptr, request == 1);
    EXPECT_EQ(copy.prefix_sid.field2_count, request == 1 ? 0u : 2u);
    EXPECT_EQ(copy.prefix_sid.presence & 3, request == 1 ? 0 : 2);
    EXPECT_EQ(copy.field6 == nullptr, request == 2);
    EXPECT_EQ(copy.field6_length, request == 2 ? 0u : 5u);
    EXPECT_EQ(copy.field7, 7u);
    EXPECT_EQ(copy.presence, 0x6c & ~(request == 0 ? 0x04 : request == 2 ? 0x20 : 0));
    operations<oam_req>::free(&copy, accountant::release, &memory);
    EXPECT_EQ(memory.live(), 0u);
  }
}

TEST(memory, a_copy_without_an_allocator_says_so_only_where_memory_is_needed) {
  decoded<policy_binding_sid_t> needs(hex("0a 02 10 05")), needs_none(hex("0a 02 08 05 10 06"));
  policy_binding_sid_t copy;
  EXPECT_EQ(operations<policy_binding_sid_t>::duplicate(&copy, &needs.record, nullptr, nullptr), CODEC_ERR_NO_MEMORY);
  EXPECT_EQ(operations<policy_binding_sid_t>::duplicate(&copy, &needs_none.record, nullptr, nullptr), CODEC_OK);
}

// --- Releasing ---

TEST(memory, is_released_in_field_order_elements_before_their_array) {
  decoded<api_msg_p2p_auto_policy> policy(
      hex("0a 01 61 12 01 62 3a 02 08 01 58 01 72 08 0a 06 28 01 28 02 30 03 72 00 a2 01 01 63 aa 01 02 10 09"));
  ASSERT_EQ(policy.result, CODEC_OK);
  const std::vector<void *> expected = {policy->field1,
                                        policy->field2,
                                        policy->label_stack.labels,
                                        policy->field11,
                                        policy->exp_paths[0].hops[0].field5,
                                        policy->exp_paths[0].hops[0].field6,
                                        policy->exp_paths[0].hops,
                                        policy->exp_paths,
                                        policy->field20,
                                        policy->prefix_sid.field2};
  operations<api_msg_p2p_auto_policy>::free(&policy.record, accountant::release, &policy.memory);
  EXPECT_EQ(policy.memory.released, expected);
  EXPECT_EQ(policy->field1, nullptr);
  EXPECT_EQ(policy->label_stack.labels, nullptr);
  EXPECT_EQ(policy->label_stack.label_count, 1u);
  EXPECT_EQ(policy->field11, nullptr);
  EXPECT_EQ(policy->field11_count, 1u);
  EXPECT_EQ(policy->exp_paths, nullptr);
  EXPECT_EQ(policy->exp_paths_count, 0u);
  EXPECT_EQ(policy->prefix_sid.field2, nullptr);
  EXPECT_EQ(policy->prefix_sid.field2_count, 1u);
}

TEST(memory, of_no_length_is_released_too) {
  decoded<srv6_prefix> prefix(hex("0a 00"));
  void *const block = prefix->field1;
  operations<srv6_prefix>::free(&prefix.record, accountant::release, &prefix.memory);
  EXPECT_EQ(prefix.memory.released, (std::vector<void *>{block}));
}

TEST(memory, the_record_itself_is_not_released) {
  accountant memory;
  auto *const intf = static_cast<api_intf *>(accountant::allocate(sizeof(api_intf), &memory));
  const fenced_block input(hex("12 01 61"));
  EXPECT_EQ(operations<api_intf>::decode(intf, input.data(), 3, accountant::allocate, &memory), CODEC_OK);
  EXPECT_EQ(memory.live(), 2u);
  operations<api_intf>::free(intf, accountant::release, &memory);
  EXPECT_EQ(memory.live(), 1u);
  EXPECT_TRUE(memory.owns(intf));
}

// --- Great sizes ---

// Notes what it is asked for, and gives nothing.
void *note_size(std::size_t size, void *context) {
  static_cast<sizes *>(context)->push_back(size);
  return nullptr;
}

TEST(memory, copying_asks_for_as_much_as_the_count_and_the_length_say) {
  // The allocator gives nothing, so the source needs no elements.
  std::uint32_t label = 0;
  std::uint8_t element = 0;
  unsigned char byte = 0;
  sizes asked;
  const api_lbl_stack stack{&label, UINT32_MAX, 1};
  api_lbl_stack second_stack;
  EXPECT_EQ(operations<api_lbl_stack>::duplicate(&second_stack, &stack, note_size, &asked), CODEC_ERR_NO_MEMORY);
  EXPECT_EQ(second_stack.labels, nullptr);
  EXPECT_EQ(second_stack.label_count, 0u);
  const prefix_sid_type sid{0, &element, UINT32_MAX, 2};
  prefix_sid_type second_sid;
  EXPECT_EQ(operations<prefix_sid_type>::duplicate(&second_sid, &sid, note_size, &asked), CODEC_ERR_NO_MEMORY);
  const srv6_prefix prefix{&byte, SIZE_MAX, 0, 1};
  srv6_prefix second_prefix;
  EXPECT_EQ(operations<srv6_prefix>::duplicate(&second_prefix, &prefix, note_size, &asked), CODEC_ERR_NO_MEMORY);
  EXPECT_EQ(second_prefix.field1, nullptr);
  EXPECT_EQ(second_prefix.field1_length, 0u);
  if (sizeof(std::size_t) == 8) {
    EXPECT_EQ(asked, (sizes{4 * std::size_t{UINT32_MAX}, UINT32_MAX, SIZE_MAX}));
  } else {
    EXPECT_EQ(asked, (sizes{UINT32_MAX, SIZE_MAX})) << "four times the count has no place";
  }
}

// Short lists are copied by words, longer ones by the C library.
TEST(memory, of_a_copied_list_holds_every_element_whatever_their_number) {
  std::vector<std::uint32_t> labels;
  std::vector<std::uint8_t> values;
  for (std::uint32_t count = 1; count <= 140; ++count) {
    labels.push_back(0x01030507u * count);
    values.push_back(static_cast<std::uint8_t>(37 * count));
    const api_lbl_stack stack{labels.data(), count, 1};
    const api_nodeid node{5, values.data(), count, 3};
    accountant memory;
    api_lbl_stack copied_stack{};
    api_nodeid copied_node{};
    ASSERT_EQ(pavo_zorv_api_lbl_stack_duplicate(&copied_stack, &stack, accountant::allocate, &memory), CODEC_OK);
    ASSERT_EQ(pavo_zorv_api_nodeid_duplicate(&copied_node, &node, accountant::allocate, &memory), CODEC_OK);
    ASSERT_EQ(copied_stack.label_count, count);
    ASSERT_EQ(copied_node.octets_count, count);
    ASSERT_EQ(std::vector<std::uint32_t>(copied_stack.labels, copied_stack.labels + count), labels);
    ASSERT_EQ(std::vector<std::uint8_t>(copied_node.octets, copied_node.octets + count), values);
  }
}

}  // namespace memory_test
