/* The header as C11, in use. */
#include "pavo_zorv.h"

int main(void) {
  static const unsigned char expected[] = {0x08, 0xac, 0x02};
  api_addr address = {.address = 300, .presence = API_ADDR_HAS_ADDRESS};
  unsigned char buffer[3] = {0};
  pavo_zorv_segment segment = {NULL, 0};
  uint32_t count = 1;
  if (pavo_zorv_api_addr_encode_ext(&address, buffer, sizeof buffer, &segment, &count) != sizeof expected) return 1;
  for (size_t i = 0; i < sizeof expected; ++i) {
    if (buffer[i] != expected[i]) return 2;
  }
  if (count != 1 || segment.start != buffer || segment.length != sizeof expected) return 3;
  api_addr copy;
  if (pavo_zorv_api_addr_decode_ext(&copy, buffer, sizeof buffer, NULL, NULL) != CODEC_OK) return 4;
  copy.presence |= API_ADDR_HAS_ADDRESS;
  if (pavo_zorv_api_addr_compare(&address, &copy) != 0) return 5;
  pavo_zorv_api_addr_free_ext(&copy, NULL, NULL);
  return 0;
}
