// Sending and receiving a large block of bytes without copying it: reference mode, the segment table and writev.
#define _POSIX_C_SOURCE 200809L
#define _DEFAULT_SOURCE
#include <stdio.h>
#include <string.h>
#include <sys/socket.h>
#include <sys/uio.h>
#include <unistd.h>

#include "pavo_zorv.h"
#include "pavo_zorv_memory.h"

enum { most_pieces = 3, most_entries = 8 };

//! [pieces]
// How many entries at the end of the table belong to the outermost message. In reference mode it has several pieces:
// its bytes up to the block, the block, and the bytes after it, if any. Entries of nested messages come before.
static uint32_t pieces_of_message(const pavo_zorv_segment *table, uint32_t count, const unsigned char *buffer,
                                  size_t length) {
  const pavo_zorv_segment *last = &table[count - 1];
  if (last->start == buffer && last->length == length) return 1;  // no block: one piece
  if (last->start > buffer && last->start + last->length == buffer + length) return 3;
  return 2;  // the block comes last
}
//! [pieces]

//! [send]
static int send_request(int socket, const oam_req *request) {
  unsigned char buffer[256];
  pavo_zorv_segment table[most_entries];
  uint32_t count = most_entries;
  size_t length = pavo_zorv_oam_req_encode_ext(request, buffer, sizeof buffer, table, &count, PAVO_ZORV_REFERENCE);
  if (length > sizeof buffer || count > most_entries || count == 0) return -1;

  uint32_t pieces = pieces_of_message(table, count, buffer, length);
  struct iovec vector[most_pieces];
  size_t total = 0;
  for (uint32_t i = 0; i < pieces; ++i) {
    const pavo_zorv_segment *piece = &table[count - pieces + i];
    vector[i].iov_base = (void *)(uintptr_t)piece->start;
    vector[i].iov_len = (size_t)piece->length;
    total += vector[i].iov_len;
  }
  printf("%zu bytes encoded, %u pieces, %zu bytes sent\n", length, (unsigned)pieces, total);
  return writev(socket, vector, (int)pieces) == (ssize_t)total ? 0 : -1;
}
//! [send]

//! [receive]
static int receive_request(int socket) {
  static unsigned char input[8192];
  ssize_t length = read(socket, input, sizeof input);
  if (length < 0) return -1;

  // The lists and strings of a request are short; the probe is not copied out of `input`.
  unsigned char block[256];
  pavo_zorv_pool pool;
  pavo_zorv_pool_init(&pool, block, sizeof block);
  oam_req request;
  int result = pavo_zorv_oam_req_decode_ext(&request, input, (size_t)length, pavo_zorv_pool_allocate, &pool,
                                            PAVO_ZORV_REFERENCE);
  if (result != CODEC_OK || (request.presence & OAM_REQ_HAS_FIELD3) == 0) return -1;
  int inside = request.field6 >= input && request.field6 + request.field6_length <= input + length;
  printf("%s: a probe of %llu bytes %s, %zu bytes of memory\n", request.field3,
         (unsigned long long)request.field6_length, inside ? "in the input" : "elsewhere", pool.used);
  return inside ? 0 : -1;
}
//! [receive]

int main(void) {
  static unsigned char probe[4096];
  memset(probe, 0x5a, sizeof probe);
  uint8_t node[] = {198, 51, 100, 51};

  oam_req request = {0};
  request.field3 = "trace to node 51";
  request.prefix_sid.field2 = node;
  request.prefix_sid.field2_count = sizeof node;
  request.prefix_sid.presence = PREFIX_SID_TYPE_HAS_FIELD2;
  request.field6 = probe;
  request.field6_length = sizeof probe;
  request.field7 = 3;
  request.presence = OAM_REQ_HAS_FIELD3 | OAM_REQ_HAS_PREFIX_SID | OAM_REQ_HAS_FIELD6 | OAM_REQ_HAS_FIELD7;

  int ends[2];
  if (socketpair(AF_UNIX, SOCK_SEQPACKET, 0, ends) != 0) return 1;
  int failed = send_request(ends[0], &request) != 0 || receive_request(ends[1]) != 0;
  close(ends[0]);
  close(ends[1]);
  return failed;
}
