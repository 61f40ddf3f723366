// Messages about the service itself, and the on-demand colour.
#include "support.hpp"

namespace api_msg_service_internal_test {

using namespace test;

int (*volatile string_comparison)(const char *, const char *) = std::strcmp;

// --- api_msg_service ---

TEST(api_msg_service, a_flag_read_as_5_is_stored_as_1_and_written_back_as_1) {
  decoded<api_msg_service> service(hex("08 05"));
  EXPECT_EQ(service.result, CODEC_OK);
  EXPECT_EQ(service->field1, 1);
  EXPECT_EQ(show(encoded(service.record)), "08 01");
}

TEST(api_msg_service, a_flag_is_written_as_its_raw_byte_and_from_128_on_as_an_unterminated_varint) {
  EXPECT_EQ(show(encoded(api_msg_service{2, 0, 0, API_MSG_SERVICE_HAS_FIELD1})), "08 02");
  EXPECT_EQ(show(encoded(api_msg_service{0x7f, 0, 0, API_MSG_SERVICE_HAS_FIELD1})), "08 7f");
  EXPECT_EQ(show(encoded(api_msg_service{0x80, 0, 0, API_MSG_SERVICE_HAS_FIELD1})), "08 80");
  EXPECT_EQ(show(encoded(api_msg_service{0xff, 0, 0, API_MSG_SERVICE_HAS_FIELD1})), "08 ff");
  EXPECT_EQ(decoded<api_msg_service>(hex("08 80")).result, CODEC_ERR_TRUNCATED);
}

TEST(api_msg_service, three_true_flags_take_six_bytes) {
  EXPECT_EQ(show(encoded(api_msg_service{1, 1, 1, 7})), "08 01 10 01 18 01");
  decoded<api_msg_service> service(hex("08 01 10 01 18 01"));
  EXPECT_EQ(service.result, CODEC_OK);
  EXPECT_EQ(service->field1, 1);
  EXPECT_EQ(service->field2, 1);
  EXPECT_EQ(service->field3, 1);
  EXPECT_EQ(service->presence & 7, 7);
}

TEST(api_msg_service, false_flags_are_written_when_present) {
  EXPECT_EQ(show(encoded(api_msg_service{0, 1, 0, 5})), "08 00 18 00");
}

TEST(api_msg_service, is_copied_without_an_allocator) {
  const api_msg_service service{1, 2, 200, 6};
  api_msg_service copy{};
  EXPECT_EQ(pavo_zorv_api_msg_service_duplicate(&copy, &service, nullptr, nullptr), CODEC_OK);
  EXPECT_EQ(copy.field1, 1);
  EXPECT_EQ(copy.field2, 2);
  EXPECT_EQ(copy.field3, 200);
  EXPECT_EQ(copy.presence, 6);
  pavo_zorv_api_msg_service_free_ext(
      &copy, [](void *, void *) { FAIL(); }, nullptr);
  EXPECT_EQ(copy.field3, 200);
}

TEST(api_msg_service, is_compared_in_field_order_by_stored_bytes) {
  const auto compared = [](const api_msg_service &a, const api_msg_service &b) {
    return pavo_zorv_api_msg_service_compare(&a, &b);
  };
  EXPECT_EQ(compared({1, 1, 1, 7}, {1, 1, 1, 7}), 0);
  EXPECT_EQ(compared({0, 1, 1, 7}, {1, 0, 0, 7}), -1);
  EXPECT_EQ(compared({1, 2, 0, 7}, {1, 1, 1, 7}), 1);
  EXPECT_EQ(compared({1, 1, 200, 7}, {1, 1, 100, 7}), 1);
  EXPECT_EQ(compared({0, 0, 0, 1}, {1, 1, 1, 6}), 1);
  EXPECT_EQ(compared({1, 1, 1, 0}, {0, 0, 0, 0}), 0);
}

// --- api_msg_internal ---

TEST(api_msg_internal, takes_nineteen_bytes_and_two_entries) {
  char text[] = "ab";
  api_msg_internal internal{};
  internal.field1 = 1;
  internal.field2 = text;
  internal.field3 = std::uint64_t{1} << 40;
  internal.service = {1, 0, 0, API_MSG_SERVICE_HAS_FIELD1};
  internal.field7 = 1;
  internal.presence = API_MSG_INTERNAL_HAS_FIELD1 | API_MSG_INTERNAL_HAS_FIELD2 | API_MSG_INTERNAL_HAS_FIELD3 |
                      API_MSG_INTERNAL_HAS_SERVICE | API_MSG_INTERNAL_HAS_FIELD7;
  const fenced_block buffer(19);
  table segments(2);
  EXPECT_EQ(pavo_zorv_api_msg_internal_encode_ext(&internal, buffer.data(), 19, segments.entries(), &segments.count),
            19u);
  EXPECT_EQ(show(buffer.content()), "08 01 12 02 61 62 18 80 80 80 80 80 20 2a 02 08 01 38 01");
  EXPECT_EQ(segments.count, 2u);
  EXPECT_EQ(segments.pieces(), (std::vector<piece>{{buffer.data() + 15, 2}, {buffer.data(), 19}}));
}

TEST(api_msg_internal, a_long_string_has_a_length_of_two_bytes_and_is_left_out_where_it_does_not_fit) {
  std::string text(200, 'x');
  api_msg_internal internal{};
  internal.field2 = text.data();
  internal.presence = API_MSG_INTERNAL_HAS_FIELD2;
  EXPECT_EQ(encoded(internal), hex("12 c8 01") + 200 * hex("78"));
  for (const std::size_t length : {std::size_t{4}, std::size_t{100}, std::size_t{202}}) {
    const fenced_block buffer(length);
    EXPECT_EQ(pavo_zorv_api_msg_internal_encode_ext(&internal, buffer.data(), length, nullptr, nullptr), 203u);
    EXPECT_EQ(buffer.content(), hex("12 c8 01") + (length - 3) * hex("c7")) << "a buffer of " << length;
  }
}

TEST(api_msg_internal, service_is_written_for_its_content_or_for_its_bit) {
  api_msg_internal internal{};
  internal.presence = API_MSG_INTERNAL_HAS_SERVICE;
  EXPECT_EQ(show(encoded(internal)), "2a 00");
  internal.presence = 0;
  internal.service = {0, 1, 0, API_MSG_SERVICE_HAS_FIELD2};
  EXPECT_EQ(show(encoded(internal)), "2a 02 10 01");
}

TEST(api_msg_internal, a_second_string_is_refused) {
  decoded<api_msg_internal> internal(hex("12 02 61 62 08 01 12 02 63 64 20 05"));
  EXPECT_EQ(internal.result, CODEC_ERR_TRUNCATED);
  EXPECT_STREQ(internal->field2, "ab");
  EXPECT_EQ(internal->presence & 0x7f, API_MSG_INTERNAL_HAS_FIELD1 | API_MSG_INTERNAL_HAS_FIELD2);
  EXPECT_EQ(decoded<api_msg_internal>(hex("12 00 12 00")).result, CODEC_ERR_TRUNCATED);
}

TEST(api_msg_internal, is_read_with_every_field) {
  decoded<api_msg_internal> internal(
      hex("08 01 12 02 61 62 18 80 80 80 80 80 20 20 ac 02 2a 06 08 01 10 00 18 07 30 05 38 00"));
  EXPECT_EQ(internal.result, CODEC_OK);
  EXPECT_EQ(internal->field1, 1);
  EXPECT_STREQ(internal->field2, "ab");
  EXPECT_EQ(internal->field3, std::uint64_t{1} << 40);
  EXPECT_EQ(internal->field4, 300u);
  EXPECT_EQ(internal->service.field1, 1);
  EXPECT_EQ(internal->service.field2, 0);
  EXPECT_EQ(internal->service.field3, 1);
  EXPECT_EQ(internal->service.presence & 7, 7);
  EXPECT_EQ(internal->field6, 5u);
  EXPECT_EQ(internal->field7, 0);
  EXPECT_EQ(internal->presence & 0x7f, 0x7f);
  EXPECT_EQ(internal.memory.sizes, (std::vector<std::size_t>{3}));
}

TEST(api_msg_internal, needs_an_allocator_for_its_string_only) {
  EXPECT_EQ(decode_without_memory<api_msg_internal>(hex("08 01 18 05 20 05 2a 02 08 01 30 05 38 01")), CODEC_OK);
  EXPECT_EQ(decode_without_memory<api_msg_internal>(hex("08 01 12 00")), CODEC_ERR_NO_MEMORY);
  EXPECT_EQ(decode_without_memory<api_msg_internal>(hex("12 64")), CODEC_ERR_NO_MEMORY) << "before the length is read";
}

TEST(api_msg_internal, a_service_takes_two_bytes_for_every_present_flag) {
  for (std::uint8_t presence = 0; presence < 8; ++presence) {
    api_msg_internal internal{};
    internal.service = {200, 1, 0, presence};
    internal.presence = API_MSG_INTERNAL_HAS_SERVICE;
    byte_string expected;
    if ((presence & 1) != 0) expected = expected + hex("08 c8");
    if ((presence & 2) != 0) expected = expected + hex("10 01");
    if ((presence & 4) != 0) expected = expected + hex("18 00");
    EXPECT_EQ(encoded(internal), hex("2a") + byte_string{static_cast<unsigned char>(expected.size())} + expected);
  }
}

TEST(api_msg_internal, a_failure_inside_service_is_the_result) {
  EXPECT_EQ(decoded<api_msg_internal>(hex("2a 01 08")).result, CODEC_ERR_TRUNCATED);
  EXPECT_EQ(decoded<api_msg_internal>(hex("2a 01 23")).result, CODEC_ERR_BAD_WIRE_TYPE);
  EXPECT_EQ(decoded<api_msg_internal>(hex("2a 01 0a")).result, CODEC_ERR_WRONG_WIRE_TYPE);
}

TEST(api_msg_internal, a_copy_without_memory_lacks_the_string_only) {
  char text[] = "ab";
  const api_msg_internal internal{1, text, 2, 3, {1, 0, 1, 5}, 4, 1, 0x7f};
  api_msg_internal copy{};
  EXPECT_EQ(pavo_zorv_api_msg_internal_duplicate(&copy, &internal, nullptr, nullptr), CODEC_ERR_NO_MEMORY);
  EXPECT_EQ(copy.field1, 1);
  EXPECT_EQ(copy.field2, nullptr);
  EXPECT_EQ(copy.field3, 2u);
  EXPECT_EQ(copy.field4, 3u);
  EXPECT_EQ(copy.service.field3, 1);
  EXPECT_EQ(copy.service.presence, 5);
  EXPECT_EQ(copy.field6, 4u);
  EXPECT_EQ(copy.field7, 1);
  EXPECT_EQ(copy.presence, 0x7d);
  accountant memory;
  EXPECT_EQ(pavo_zorv_api_msg_internal_duplicate(&copy, &internal, accountant::allocate, &memory), CODEC_OK);
  EXPECT_EQ(memory.sizes, (std::vector<std::size_t>{3}));
  EXPECT_STREQ(copy.field2, "ab");
  EXPECT_EQ(copy.presence, 0x7f);
  pavo_zorv_api_msg_internal_free_ext(&copy, accountant::release, &memory);
  EXPECT_EQ(memory.live(), 0u);
  EXPECT_EQ(copy.field2, nullptr);
  EXPECT_EQ(copy.presence, 0x7f);
}

TEST(api_msg_internal, a_null_string_is_copied_as_null_with_its_bit) {
  const api_msg_internal internal{0, nullptr, 0, 0, {}, 0, 0, API_MSG_INTERNAL_HAS_FIELD2};
  api_msg_internal copy{};
  EXPECT_EQ(pavo_zorv_api_msg_internal_duplicate(&copy, &internal, nullptr, nullptr), CODEC_OK);
  EXPECT_EQ(copy.field2, nullptr);
  EXPECT_EQ(copy.presence, API_MSG_INTERNAL_HAS_FIELD2);
}

TEST(api_msg_internal, is_compared_in_field_order) {
  char ab[] = "ab", b[] = "b", z[] = "z";
  const auto compared = [](const api_msg_internal &x, const api_msg_internal &y) {
    return pavo_zorv_api_msg_internal_compare(&x, &y);
  };
  const api_msg_internal internal{1, ab, 2, 3, {1, 0, 1, 5}, 4, 1, 0x7f};
  api_msg_internal other = internal;
  EXPECT_EQ(compared(internal, other), 0);
  other.field7 = 200;
  EXPECT_EQ(compared(internal, other), -1);
  other.field6 = 3;
  EXPECT_EQ(compared(internal, other), 1);
  other.service.field1 = 2;
  EXPECT_EQ(compared(internal, other), -1);
  other.field4 = 2;
  EXPECT_EQ(compared(internal, other), 1);
  other.field3 = std::uint64_t{1} << 63;
  EXPECT_EQ(compared(internal, other), -1);
  for (char *const greater : {b, z}) {
    other.field2 = greater;
    EXPECT_LT(compared(internal, other), 0);
    EXPECT_EQ(compared(internal, other), string_comparison(ab, greater));
    EXPECT_EQ(compared(other, internal), string_comparison(greater, ab));
  }
  other.field1 = 0;
  EXPECT_EQ(compared(internal, other), 1);
  other.presence = 0x7e;
  EXPECT_EQ(compared(other, internal), -1);
}

TEST(api_msg_internal, the_outer_bit_decides_whether_services_are_compared) {
  api_msg_internal one{}, other{};
  one.service = {1, 0, 0, 1};
  EXPECT_EQ(pavo_zorv_api_msg_internal_compare(&one, &other), 0);
  other.presence = API_MSG_INTERNAL_HAS_SERVICE;
  EXPECT_EQ(pavo_zorv_api_msg_internal_compare(&one, &other), -1);
  one.presence = API_MSG_INTERNAL_HAS_SERVICE;
  EXPECT_EQ(pavo_zorv_api_msg_internal_compare(&one, &other), 1);
}

// --- api_msg_on_demand_color_notif ---

TEST(api_msg_on_demand_color_notif, the_colour_300_takes_three_bytes) {
  EXPECT_EQ(show(encoded(api_msg_on_demand_color_notif{300, API_MSG_ON_DEMAND_COLOR_NOTIF_HAS_COLOR})), "08 ac 02");
  decoded<api_msg_on_demand_color_notif> notif(hex("08 ac 02"));
  EXPECT_EQ(notif.result, CODEC_OK);
  EXPECT_EQ(notif->color, 300u);
  EXPECT_EQ(notif->presence & 1, 1);
}

TEST(api_msg_on_demand_color_notif, behaves_as_an_address) {
  EXPECT_EQ(show(encoded(api_msg_on_demand_color_notif{0, 1})), "08 00");
  EXPECT_EQ(show(encoded(api_msg_on_demand_color_notif{5, 0})), "");
  EXPECT_EQ(decode_without_memory<api_msg_on_demand_color_notif>(hex("08 07 08 09")), CODEC_OK);
  EXPECT_EQ(decode_without_memory<api_msg_on_demand_color_notif>(hex("0a 00")), CODEC_ERR_WRONG_WIRE_TYPE);
  EXPECT_EQ(decode_without_memory<api_msg_on_demand_color_notif>(hex("13")), CODEC_ERR_BAD_WIRE_TYPE);
  EXPECT_EQ(decode_without_memory<api_msg_on_demand_color_notif>(hex("08")), CODEC_ERR_TRUNCATED);
  const api_msg_on_demand_color_notif red{0xffffffff, 1}, blue{5, 1}, none{9, 0};
  EXPECT_EQ(pavo_zorv_api_msg_on_demand_color_notif_compare(&red, &blue), 1);
  EXPECT_EQ(pavo_zorv_api_msg_on_demand_color_notif_compare(&none, &blue), -1);
  api_msg_on_demand_color_notif copy{};
  EXPECT_EQ(pavo_zorv_api_msg_on_demand_color_notif_duplicate(&copy, &red, nullptr, nullptr), CODEC_OK);
  EXPECT_EQ(copy.color, 0xffffffffu);
  EXPECT_EQ(copy.presence, 1);
  pavo_zorv_api_msg_on_demand_color_notif_free_ext(
      &copy, [](void *, void *) { FAIL(); }, nullptr);
  EXPECT_EQ(copy.color, 0xffffffffu);
}

}  // namespace api_msg_service_internal_test
