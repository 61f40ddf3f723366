/* Framing as C99, C11 and C++11: a message is sent and received in two pieces. */
#include "pavo_zorv_framing.h"

#include <string.h>

int main(void) {
  unsigned char sent[PAVO_ZORV_PREFIX_SIZE + 8];
  unsigned char *const message = sent + PAVO_ZORV_PREFIX_SIZE;
  unsigned char buffer[PAVO_ZORV_STREAM_SIZE(8)];
  pavo_zorv_stream stream;
  const unsigned char *found;
  unsigned char *first;
  unsigned char *space;
  size_t length;
  size_t room;
  size_t size;
  api_addr address;
  api_addr received;

  memset(&address, 0, sizeof address);
  address.address = 300;
  address.presence = API_ADDR_HAS_ADDRESS;
  length = pavo_zorv_api_addr_encode_ext(&address, message, 8, NULL, NULL);
  if (length != 3) return 1;
  first = pavo_zorv_prefix_before(message, PAVO_ZORV_PREFIX_BE16, length);
  if (first != message - 2 || memcmp(first, "\x00\x03\x08\xac\x02", 5) != 0) return 2;
  size = 5;

  pavo_zorv_stream_init(&stream, PAVO_ZORV_PREFIX_BE16, buffer, sizeof buffer, 8);
  space = pavo_zorv_stream_space(&stream, &room);
  if (room != sizeof buffer) return 3;
  memcpy(space, first, 1);
  pavo_zorv_stream_filled(&stream, 1);
  if (pavo_zorv_stream_next(&stream, &found, &length) != PAVO_ZORV_FRAME_INCOMPLETE) return 4;
  space = pavo_zorv_stream_space(&stream, &room);
  memcpy(space, first + 1, size - 1);
  pavo_zorv_stream_filled(&stream, size - 1);
  if (pavo_zorv_stream_next(&stream, &found, &length) != PAVO_ZORV_FRAME_COMPLETE || length != 3) return 5;
  if (pavo_zorv_api_addr_decode_ext(&received, found, length, NULL, NULL) != CODEC_OK) return 6;
  if (pavo_zorv_api_addr_compare(&address, &received) != 0) return 7;
  return pavo_zorv_stream_is_between_messages(&stream) ? 0 : 8;
}
