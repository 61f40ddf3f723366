/* The types and functions of the reference implementation. Their contracts are where they are defined. */
#ifndef PAVO_ZORV_PROOF_WIRE_H
#define PAVO_ZORV_PROOF_WIRE_H

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef unsigned char byte;

struct varint_32 {
  const byte *next;
  uint32_t value;
};

struct varint_64 {
  const byte *next;
  uint64_t value;
};

struct delimited {
  const byte *first;
  const byte *last;
};

struct step {
  const byte *next;
  int result;
};

enum { OK = 0, TRUNCATED = -1, BAD_WIRE_TYPE = -2 };

const byte *skip_varint(const byte *at, const byte *end);
struct varint_32 read_varint_32(const byte *at, const byte *end);
struct varint_64 read_varint_64(const byte *at, const byte *end);
struct varint_32 read_number_32(const byte *at, const byte *end);
struct varint_64 read_number_64(const byte *at, const byte *end);
struct delimited read_delimited(const byte *at, const byte *end);
const byte *skip_delimited(const byte *at, const byte *end);
struct step skip_unknown(uint32_t key, const byte *at, const byte *end);

size_t varint_size_32(uint32_t value);
size_t varint_size_64(uint64_t value);
byte *prepend_long_varint_32(byte *at, uint32_t value);
byte *prepend_long_varint_64(byte *at, uint64_t value);
byte *prepend_varint_32(byte *first, byte *at, uint32_t value);
byte *prepend_varint_64(byte *first, byte *at, uint64_t value);
size_t clipped_prepend_varint_32(byte *buffer, size_t length, size_t at, uint32_t value);
size_t clipped_prepend_varint_64(byte *buffer, size_t length, size_t at, uint64_t value);

int array_fits(size_t count, size_t element, size_t *size);
int text_fits(size_t length, size_t *size);

#ifdef __cplusplus
}
#endif
#endif
