// The first program: measure, write, read back, release.
#include <stdio.h>
#include <stdlib.h>

#include "pavo_zorv.h"
#include "pavo_zorv_memory.h"

int main(void) {
  //! [record]
  uint32_t labels[] = {16, 24001};
  api_msg message = {0};
  message.field1 = 1;
  message.presence = API_MSG_HAS_FIELD1 | API_MSG_HAS_P2P_AUTO_POLICY_REQUEST;
  message.p2p_auto_policy_request.presence = API_MSG_P2P_AUTO_POLICY_REQUEST_HAS_POLICY;

  api_msg_p2p_auto_policy *policy = &message.p2p_auto_policy_request.policy;
  policy->field1 = "to-node-51";
  policy->label_stack.labels = labels;
  policy->label_stack.label_count = 2;
  policy->label_stack.presence = API_LBL_STACK_HAS_LABELS;
  policy->presence = API_MSG_P2P_AUTO_POLICY_HAS_FIELD1 | API_MSG_P2P_AUTO_POLICY_HAS_LABEL_STACK;
  //! [record]

  //! [encode]
  size_t length = pavo_zorv_api_msg_encode_ext(&message, NULL, 0, NULL, NULL, 0);
  unsigned char *bytes = malloc(length);
  if (bytes == NULL) return 1;
  pavo_zorv_api_msg_encode_ext(&message, bytes, length, NULL, NULL, 0);
  //! [encode]

  printf("%zu bytes:", length);
  for (size_t i = 0; i < length; ++i) printf(" %02x", bytes[i]);
  printf("\n");

  //! [decode]
  api_msg received;
  int result = pavo_zorv_api_msg_decode_ext(&received, bytes, length, pavo_zorv_heap_allocate, NULL, 0);
  if (result == CODEC_OK && (received.presence & API_MSG_HAS_P2P_AUTO_POLICY_REQUEST) != 0) {
    const api_msg_p2p_auto_policy *requested = &received.p2p_auto_policy_request.policy;
    if ((requested->presence & API_MSG_P2P_AUTO_POLICY_HAS_FIELD1) != 0) printf("policy %s", requested->field1);
    for (uint32_t i = 0; i < requested->label_stack.label_count; ++i) {
      printf(", label %u", (unsigned)requested->label_stack.labels[i]);
    }
    printf("\n");
  }
  //! [decode]
  int same = result == CODEC_OK && pavo_zorv_api_msg_compare(&message, &received) == 0;
  printf("%s\n", same ? "the same message" : "something else");

  //! [release]
  pavo_zorv_api_msg_free_ext(&received, pavo_zorv_heap_release, NULL, 0);
  //! [release]
  free(bytes);
  return same ? 0 : 1;
}
