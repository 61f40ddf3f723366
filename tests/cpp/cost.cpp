// The same work with the C functions and with the C++ layer, in pairs of functions whose cost cost_test compares.
#include <cstdio>

#include "pavo_zorv.hpp"

#define MEASURED extern "C" [[gnu::noinline]]

namespace {

alignas(16) unsigned char block[4096];
pavo_zorv_pool pool;
unsigned char buffer[256];

// An envelope with an interface, a sweep and an OAM request that holds bytes.
constexpr unsigned char input[] = {0x08, 0x01, 0x52, 0x02, 0x08, 0x0b, 0x62, 0x0a, 0x12, 0x08, 0x08,
                                   0x07, 0x12, 0x04, 'e',  't',  'h',  '0',  0x6a, 0x0c, 0x08, 0x05,
                                   0x1a, 0x03, 'a',  'b',  'c',  0x32, 0x03, 0x01, 0x02, 0x03};

}  // namespace

MEASURED int measured_c_decode() {
  api_msg message;
  const int result = pavo_zorv_api_msg_decode_ext(&message, input, sizeof input, pavo_zorv_pool_allocate, &pool, 0);
  const int found = result == CODEC_OK && (message.presence & API_MSG_HAS_OAM_REQ) != 0 &&
                    (message.oam_req.presence & OAM_REQ_HAS_FIELD6) != 0;
  pavo_zorv_api_msg_free_ext(&message, pavo_zorv_pool_release, &pool, 0);
  return found;
}

MEASURED int measured_cpp_decode() {
  const auto message = zorv::decode<api_msg>(input, pool);
  return message.ok() && message.has<&api_msg::oam_req, &oam_req::field6>();
}

MEASURED std::size_t measured_c_encode(const api_msg *message) {
  const std::size_t length = pavo_zorv_api_msg_encode_ext(message, nullptr, 0, nullptr, nullptr, 0);
  if (length > sizeof buffer) return 0;
  return pavo_zorv_api_msg_encode_ext(message, buffer, length, nullptr, nullptr, 0);
}

MEASURED std::size_t measured_cpp_encode(const api_msg *message) {
  const std::size_t length = zorv::encoded_size(*message);
  if (length > sizeof buffer) return 0;
  return zorv::encode(*message, buffer, length);
}

MEASURED int measured_c_duplicate(const api_msg *message) {
  api_msg copy;
  const int result = pavo_zorv_api_msg_duplicate(&copy, message, pavo_zorv_pool_allocate, &pool);
  const int same = pavo_zorv_api_msg_compare(message, &copy);
  pavo_zorv_api_msg_free_ext(&copy, pavo_zorv_pool_release, &pool, 0);
  return result == CODEC_OK && same == 0;
}

MEASURED int measured_cpp_duplicate(const api_msg *message) {
  const auto copy = zorv::duplicate(*message, pool);
  const bool same = *message == copy;
  return copy.ok() && same;
}

MEASURED void measured_c_presence(api_msg *message) {
  message->p2p_auto_policy_sweep.field2 = 9;
  message->p2p_auto_policy_sweep.presence |= API_MSG_P2P_AUTO_POLICY_SWEEP_HAS_FIELD2;
  message->presence |= API_MSG_HAS_P2P_AUTO_POLICY_SWEEP;
  if ((message->presence & API_MSG_HAS_FIELD15) != 0)
    message->presence &= static_cast<std::uint16_t>(~API_MSG_HAS_FIELD1);
}

MEASURED void measured_cpp_presence(api_msg *message) {
  message->p2p_auto_policy_sweep.field2 = 9;
  zorv::set<&api_msg::p2p_auto_policy_sweep, &api_msg_p2p_auto_policy_sweep::field2>(*message);
  if (zorv::has<&api_msg::field15>(*message)) zorv::clear<&api_msg::field1>(*message);
}

int main() {
  pavo_zorv_pool_init(&pool, block, sizeof block);
  auto message = zorv::decode<api_msg>(input);
  const bool is_correct = message.ok() && measured_c_decode() == 1 && measured_cpp_decode() == 1 &&
                          measured_c_encode(&*message) == sizeof input &&
                          measured_cpp_encode(&*message) == sizeof input && measured_c_duplicate(&*message) == 1 &&
                          measured_cpp_duplicate(&*message) == 1;
  measured_c_presence(&*message);
  measured_cpp_presence(&*message);
  if (!is_correct) std::puts("a function returned a wrong result");
  return is_correct ? 0 : 1;
}
