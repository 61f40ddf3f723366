// The header as C++17, in use.
#include "pavo_zorv.h"

int main() {
  api_msg message = {};
  message.field15 = 1;
  message.presence = API_MSG_HAS_FIELD15 | API_MSG_HAS_POLICY_REG;
  unsigned char buffer[5] = {};
  if (pavo_zorv_api_msg_encode_ext(&message, buffer, sizeof buffer, nullptr, nullptr, PAVO_ZORV_REFERENCE) != 5)
    return 1;
  const unsigned char expected[] = {0x78, 0x01, 0x82, 0x01, 0x00};
  for (size_t i = 0; i < sizeof expected; ++i) {
    if (buffer[i] != expected[i]) return 2;
  }
  api_msg copy = {};
  if (pavo_zorv_api_msg_duplicate(&copy, &message, nullptr, nullptr) != CODEC_OK) return 3;
  const int difference = pavo_zorv_api_msg_compare(&message, &copy);
  pavo_zorv_api_msg_free_ext(&copy, nullptr, nullptr, 0);
  return difference == 0 ? 0 : 4;
}
