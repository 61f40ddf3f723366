/* The types and functions of the proved twin. Their contracts stand where they are defined; README.md says more. */
#ifndef PAVO_ZORV_PROOF_WIRE_H
#define PAVO_ZORV_PROOF_WIRE_H

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef unsigned char octet;

struct varint_32 {
  const octet *next;
  uint32_t value;
};

struct varint_64 {
  const octet *next;
  uint64_t value;
};

struct delimited {
  const octet *first;
  const octet *last;
};

struct step {
  const octet *next;
  int result;
};

enum { OK = 0, TRUNCATED = -1, BAD_WIRE_TYPE = -2 };

const octet *skip_varint(const octet *at, const octet *end);
struct varint_32 read_varint_32(const octet *at, const octet *end);
struct varint_64 read_varint_64(const octet *at, const octet *end);
struct varint_32 read_number_32(const octet *at, const octet *end);
struct varint_64 read_number_64(const octet *at, const octet *end);
struct delimited read_delimited(const octet *at, const octet *end);
const octet *skip_delimited(const octet *at, const octet *end);
struct step skip_unknown(uint32_t key, const octet *at, const octet *end);

size_t varint_size_32(uint32_t value);
size_t varint_size_64(uint64_t value);
octet *prepend_long_varint_32(octet *at, uint32_t value);
octet *prepend_long_varint_64(octet *at, uint64_t value);
octet *prepend_varint_32(octet *first, octet *at, uint32_t value);
octet *prepend_varint_64(octet *first, octet *at, uint64_t value);
size_t clipped_prepend_varint_32(octet *buffer, size_t length, size_t at, uint32_t value);
size_t clipped_prepend_varint_64(octet *buffer, size_t length, size_t at, uint64_t value);

int array_fits(size_t count, size_t element, size_t *size);
int text_fits(size_t length, size_t *size);

#ifdef __cplusplus
}
#endif
#endif
