// The constants of the public headers: versions, field numbers, longest encodings, lists of fields.
#include <cstring>
#include <string>

#include "messages/all.hpp"
#include "pavo_zorv_fields.h"
#include "support.hpp"

namespace {

TEST(version, is_that_of_the_build) {
  EXPECT_STREQ(PAVO_ZORV_VERSION, BUILT_VERSION);
  EXPECT_EQ(PAVO_ZORV_VERSION_MAJOR, BUILT_MAJOR);
  EXPECT_EQ(PAVO_ZORV_VERSION_MINOR, BUILT_MINOR);
  EXPECT_EQ(PAVO_ZORV_VERSION_PATCH, BUILT_PATCH);
  EXPECT_EQ(PAVO_ZORV_ABI, BUILT_ABI);
}

TEST(version, is_compared_by_its_parts_in_order) {
#if !PAVO_ZORV_VERSION_AT_LEAST(1, 0, 0) || PAVO_ZORV_VERSION_AT_LEAST(1000, 0, 0)
#error "the preprocessor compares versions otherwise"
#endif
  constexpr int major = PAVO_ZORV_VERSION_MAJOR, minor = PAVO_ZORV_VERSION_MINOR, patch = PAVO_ZORV_VERSION_PATCH;
  EXPECT_TRUE(PAVO_ZORV_VERSION_AT_LEAST(major, minor, patch));
  EXPECT_FALSE(PAVO_ZORV_VERSION_AT_LEAST(major, minor, patch + 1));
  EXPECT_FALSE(PAVO_ZORV_VERSION_AT_LEAST(major, minor + 1, 0));
  EXPECT_FALSE(PAVO_ZORV_VERSION_AT_LEAST(major + 1, 0, 0));
  EXPECT_TRUE(PAVO_ZORV_VERSION_AT_LEAST(major, minor - 1, patch + 1));
  EXPECT_TRUE(PAVO_ZORV_VERSION_AT_LEAST(major - 1, minor + 1, patch + 1));
}

// The length of an encoding with all fields: numbers whose bits are all set, flags that are true.
template <class Record>
std::size_t greatest() {
  Record record;
  std::memset(&record, 0xff, sizeof record);
  return test::operations<Record>::encode(&record, nullptr, 0, nullptr, nullptr, 0);
}

TEST(longest_encoding, is_that_of_a_record_whose_bits_are_all_set) {
  EXPECT_EQ(greatest<api_addr>(), std::size_t{API_ADDR_MAX_ENCODED_SIZE});
  EXPECT_EQ(greatest<api_msg_service>(), std::size_t{API_MSG_SERVICE_MAX_ENCODED_SIZE});
  EXPECT_EQ(greatest<api_msg_on_demand_color_notif>(), std::size_t{API_MSG_ON_DEMAND_COLOR_NOTIF_MAX_ENCODED_SIZE});
  EXPECT_EQ(greatest<api_msg_p2p_auto_policy_sweep>(), std::size_t{API_MSG_P2P_AUTO_POLICY_SWEEP_MAX_ENCODED_SIZE});
  EXPECT_EQ(greatest<srv6_sid_struct>(), std::size_t{SRV6_SID_STRUCT_MAX_ENCODED_SIZE});
}

TEST(longest_encoding, is_defined_for_the_messages_that_own_nothing) {
  std::string finite;
  pavo_zorv::for_each_message([&](auto message) {
    using record = typename decltype(message)::type;
    if (!pavo_zorv::owns_memory<record>) finite += std::string(pavo_zorv::message_name<record>) + ' ';
  });
  EXPECT_EQ(finite,
            "api_addr api_msg_service api_msg_on_demand_color_notif api_msg_p2p_auto_policy_sweep srv6_sid_struct ");
#if defined(API_MSG_MAX_ENCODED_SIZE) || defined(API_LBL_STACK_MAX_ENCODED_SIZE) || defined(API_INTF_MAX_ENCODED_SIZE)
#error "these encodings may have any length"
#endif
}

TEST(field_numbers, are_one_more_than_the_number_of_the_presence_bit) {
#define CHECK_NUMBER(message, member)                    \
  static_assert(message##_##member##_FIELD_NUMBER >= 1); \
  EXPECT_EQ(1 << (message##_##member##_FIELD_NUMBER - 1), static_cast<int>(message##_HAS_##member))
  CHECK_NUMBER(API_ADDR, ADDRESS);
  CHECK_NUMBER(API_MSG, OAM_REQ);
  CHECK_NUMBER(API_MSG, POLICY_REG);
  CHECK_NUMBER(API_MSG_P2P_AUTO_POLICY_NOTIF, FIELD27);
  CHECK_NUMBER(OAM_RES, USID_LISTS);
#undef CHECK_NUMBER
  EXPECT_EQ(API_MSG_OAM_RES_FIELD_NUMBER, 14);
}

// What a list of fields says, in words.
#define SIMPLE(record, number, member) #record "." #member " " #number "; "
#define COUNTED(record, number, member, count) #record "." #member "[" #count "] " #number "; "
#define MESSAGES(record, number, member, count, element) \
#record "." #member "[" #count "] of " #element " " #number "; "
#define NESTED(record, number, member, nested) #record "." #member " is " #nested " " #number "; "

TEST(lists_of_fields, have_each_field_with_its_members_in_the_order_of_numbers) {
  EXPECT_STREQ(PAVO_ZORV_FIELDS_OF_oam_req(SIMPLE, SIMPLE, SIMPLE, COUNTED, COUNTED, MESSAGES, NESTED),
               "oam_req.field1 1; oam_req.field2 2; oam_req.field3 3; oam_req.prefix_sid is prefix_sid_type 4; "
               "oam_req.field5 5; oam_req.field6[field6_length] 6; oam_req.field7 7; oam_req.field8 8; ");
  EXPECT_STREQ(PAVO_ZORV_FIELDS_OF_api_exp_path(SIMPLE, SIMPLE, SIMPLE, COUNTED, COUNTED, MESSAGES, NESTED),
               "api_exp_path.hops[hop_count] of api_exp_hop 1; api_exp_path.field2 2; ");
}

}  // namespace
