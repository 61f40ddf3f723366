/* A user's program in C11: measures, encodes, decodes and compares an envelope. Prints the encoding. */
#include <pavo_zorv.h>
#include <stdio.h>
#include <stdlib.h>

static void *take(size_t size, void *context) {
  (void)context;
  return malloc(size != 0 ? size : 1);
}

static void give(void *block, void *context) {
  (void)context;
  free(block);
}

int main(void) {
  static uint32_t labels[] = {16, 24001};
  api_msg message = {.field1 = 7, .presence = API_MSG_HAS_FIELD1 | API_MSG_HAS_FIELD3};
  message.field3.label_stack.labels = labels;
  message.field3.label_stack.label_count = 2;
  message.field3.label_stack.presence = API_LBL_STACK_HAS_LABELS;
  message.field3.presence = API_MSG_P2P_AUTO_POLICY_HAS_LABEL_STACK;

  unsigned char bytes[32];
  const size_t length = pavo_zorv_api_msg_encode_ext(&message, NULL, 0, NULL, NULL, 0);
  if (length > sizeof bytes) return 1;
  if (pavo_zorv_api_msg_encode_ext(&message, bytes, length, NULL, NULL, 0) != length) return 2;
  for (size_t i = 0; i < length; ++i) printf("%02x", bytes[i]);

  api_msg received;
  const int result = pavo_zorv_api_msg_decode_ext(&received, bytes, length, take, NULL, 0);
  const int difference = pavo_zorv_api_msg_compare(&message, &received);
  pavo_zorv_api_msg_free_ext(&received, give, NULL, 0);
  if (result != CODEC_OK) return 3;
  return difference == 0 ? 0 : 4;
}
