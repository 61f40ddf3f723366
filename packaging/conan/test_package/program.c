/* Encodes a message and compares it with its bytes. */
#include <pavo_zorv.h>
#include <string.h>

int main(void) {
  static const unsigned char expected[] = {0x08, 0x10, 0x08, 0xc1, 0xbb, 0x01};
  uint32_t labels[] = {16, 24001};
  api_lbl_stack stack = {.labels = labels, .label_count = 2, .presence = API_LBL_STACK_HAS_LABELS};
  unsigned char bytes[16];
  size_t length = pavo_zorv_api_lbl_stack_encode_ext(&stack, bytes, sizeof bytes, NULL, NULL);
  return length == sizeof expected && memcmp(bytes, expected, sizeof expected) == 0 ? 0 : 1;
}
