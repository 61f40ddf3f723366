// The program that README.md shows.
#include <pavo_zorv_memory.h>
#include <stdio.h>

int main(void) {
  uint32_t labels[] = {16, 24001};
  api_lbl_stack stack = {.labels = labels, .label_count = 2, .presence = API_LBL_STACK_HAS_LABELS};
  unsigned char buffer[64];
  size_t length = pavo_zorv_api_lbl_stack_encode_ext(&stack, buffer, sizeof buffer, NULL, NULL);  // 08 10 08 c1 bb 01
  if (length > sizeof buffer) return 1;

  api_lbl_stack received;
  int result = pavo_zorv_api_lbl_stack_decode_ext(&received, buffer, length, pavo_zorv_heap_allocate, NULL);
  printf("%zu bytes, %s, %u labels\n", length, pavo_zorv_result_name(result), (unsigned)received.label_count);
  pavo_zorv_api_lbl_stack_free_ext(&received, pavo_zorv_heap_release, NULL);  // also after a failure
  return result == CODEC_OK ? 0 : 1;
}
