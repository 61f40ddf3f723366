/* Reference implementation of the writers in src/core/writer.hpp and wire.hpp: sizes of varints, and varints written
   backwards. README.md says what is proved. */
#include "wire.h"

/*@ // The number of groups of seven bits, and one for 0.
    logic integer groups(integer value) =
      value < 0x80 ? 1 : value < 0x4000 ? 2 : value < 0x200000 ? 3 : value < 0x10000000 ? 4 :
      value < 0x800000000 ? 5 : value < 0x40000000000 ? 6 : value < 0x2000000000000 ? 7 :
      value < 0x100000000000000 ? 8 : value < 0x8000000000000000 ? 9 : 10;

    // Byte i of a varint: all but the last have the top bit set.
    logic integer byte_of(integer value, integer size, integer i) =
      i == size - 1 ? (uint8_t)(value >> 7 * i) : (uint8_t)((value >> 7 * i) | 0x80);

    predicate written{L}(byte *first, integer size, integer value) =
      \forall integer i; 0 <= i < size ==> first[i] == byte_of(value, size, i);

    axiomatic bits {
      axiom or_one: \forall integer x; 0 <= x < 0x10000000000000000 ==> 0 < (x | 1) && groups(x | 1) == groups(x);
      axiom shift_back: \forall integer x, left, right;
        0 <= x < 0x10000000000000000 && 0 <= left <= right <= 56 ==>
        (uint8_t)((uint64_t)(x << left) >> right) == (uint8_t)(x >> (right - left));
      axiom cut: \forall integer x, right; 0 <= x < 0x10000000000000000 && 0 <= right <= 24 ==>
        (uint8_t)((uint32_t)x >> right) == (uint8_t)(x >> right);
    }
*/

/* A function of the compiler, whose contract is assumed. */
/*@ requires value != 0;
    terminates \true;
    assigns \result \from value;
    ensures \result < 32;
    ensures value < 0x80 <==> \result >= 25;
    ensures value < 0x4000 <==> \result >= 18;
    ensures value < 0x200000 <==> \result >= 11;
    ensures value < 0x10000000 <==> \result >= 4;
*/
static unsigned countl_zero_32(uint32_t value);
#ifndef __FRAMAC__
static unsigned countl_zero_32(uint32_t value) { return (unsigned)__builtin_clz(value); }
#endif

/*@ requires value != 0;
    terminates \true;
    assigns \result \from value;
    ensures \result < 64;
    ensures value < 0x80 <==> \result >= 57;
    ensures value < 0x4000 <==> \result >= 50;
    ensures value < 0x200000 <==> \result >= 43;
    ensures value < 0x10000000 <==> \result >= 36;
    ensures value < 0x800000000 <==> \result >= 29;
    ensures value < 0x40000000000 <==> \result >= 22;
    ensures value < 0x2000000000000 <==> \result >= 15;
    ensures value < 0x100000000000000 <==> \result >= 8;
    ensures value < 0x8000000000000000 <==> \result >= 1;
*/
static unsigned countl_zero_64(uint64_t value);
#ifndef __FRAMAC__
static unsigned countl_zero_64(uint64_t value) { return (unsigned)__builtin_clzll(value); }
#endif

/*@ requires value != 0;
    terminates \true;
    assigns \result \from value;
    ensures \result == groups(value);
*/
static size_t long_varint_size_32(uint32_t value) {
  const unsigned highest = 31 - countl_zero_32(value);
  return (highest * 9 + 73) / 64;
}

/*@ requires value != 0;
    terminates \true;
    assigns \result \from value;
    ensures \result == groups(value);
*/
static size_t long_varint_size_64(uint64_t value) {
  const unsigned highest = 63 - countl_zero_64(value);
  return (highest * 9 + 73) / 64;
}

/*@ terminates \true;
    assigns \result \from value;
    ensures \result == groups(value);
*/
size_t varint_size_32(uint32_t value) { return long_varint_size_32(value | 1); }

/*@ terminates \true;
    assigns \result \from value;
    ensures \result == groups(value);
*/
size_t varint_size_64(uint64_t value) { return long_varint_size_64(value | 1); }

/*@ requires \valid(at - 1);
    terminates \true;
    assigns at[-1];
    assigns \result \from at;
    ensures \result == at - 1 && at[-1] == value;
*/
static byte *prepend_byte(byte *at, byte value) {
  *--at = value;
  return at;
}

/*@ requires \valid(at + (-groups(value) .. -1));
    terminates \true;
    assigns at[-groups(value) .. -1];
    assigns \result \from at, value;
    ensures \result == at - groups(value) && written(at - groups(value), groups(value), value);
*/
byte *prepend_long_varint_32(byte *at, uint32_t value) {
  unsigned shift = 7 * ((unsigned)varint_size_32(value) - 1);
  //@ ghost unsigned left = shift / 7;
  at = prepend_byte(at, (byte)(value >> shift));
  /*@ loop invariant 0 <= left < groups(value) && shift == 7 * left;
      loop invariant at == \at(at, Pre) - groups(value) + left;
      loop invariant \forall integer i; left <= i < groups(value) ==>
        (\at(at, Pre) - groups(value))[i] == byte_of(value, groups(value), i);
      loop assigns at, shift, left, (\at(at, Pre))[-groups(value) .. -1];
      loop variant left;
  */
  while (shift != 0) {
    shift -= 7;
    //@ ghost --left;
    at = prepend_byte(at, (byte)(value >> shift | 0x80));
  }
  return at;
}

/*@ requires \valid(at + (-groups(value) .. -1));
    terminates \true;
    assigns at[-groups(value) .. -1];
    assigns \result \from at, value;
    ensures \result == at - groups(value) && written(at - groups(value), groups(value), value);
*/
byte *prepend_long_varint_64(byte *at, uint64_t value) {
  unsigned shift = 7 * ((unsigned)varint_size_64(value) - 1);
  //@ ghost unsigned left = shift / 7;
  at = prepend_byte(at, (byte)(value >> shift));
  /*@ loop invariant 0 <= left < groups(value) && shift == 7 * left;
      loop invariant at == \at(at, Pre) - groups(value) + left;
      loop invariant \forall integer i; left <= i < groups(value) ==>
        (\at(at, Pre) - groups(value))[i] == byte_of(value, groups(value), i);
      loop assigns at, shift, left, (\at(at, Pre))[-groups(value) .. -1];
      loop variant left;
  */
  while (shift != 0) {
    shift -= 7;
    //@ ghost --left;
    at = prepend_byte(at, (byte)(value >> shift | 0x80));
  }
  return at;
}

/*@ requires \valid(at + (0 .. 7));
    terminates \true;
    assigns at[0 .. 7];
    ensures \forall byte *p; \base_addr(p) == \base_addr(at) && at <= p < at + 8 ==>
      *p == (uint8_t)(word >> 8 * (p - at));
*/
static void store_word(byte *at, uint64_t word) {
  /*@ loop invariant 0 <= i <= 8;
      loop invariant \forall byte *p; \base_addr(p) == \base_addr(at) && at <= p < at + i ==>
        *p == (uint8_t)(word >> 8 * (p - at));
      loop assigns i, at[0 .. 7];
      loop variant 8 - i;
  */
  for (unsigned i = 0; i < 8; ++i) at[i] = (byte)(word >> 8 * i);
}

/*@ requires \valid(at + (0 .. 3));
    terminates \true;
    assigns at[0 .. 3];
    ensures \forall byte *p; \base_addr(p) == \base_addr(at) && at <= p < at + 4 ==>
      *p == (uint8_t)(word >> 8 * (p - at));
*/
static void store_half_word(byte *at, uint32_t word) {
  /*@ loop invariant 0 <= i <= 4;
      loop invariant \forall byte *p; \base_addr(p) == \base_addr(at) && at <= p < at + i ==>
        *p == (uint8_t)(word >> 8 * (p - at));
      loop assigns i, at[0 .. 3];
      loop variant 4 - i;
  */
  for (unsigned i = 0; i < 4; ++i) at[i] = (byte)(word >> 8 * i);
}

/* bits.mlw proves this contract, for 64-bit vectors. */
/*@ requires size == groups(value) && 1 <= size <= 8;
    terminates \true;
    assigns \result \from value, size;
    ensures \forall integer i; 0 <= i < size ==> (uint8_t)(\result >> 8 * i) == byte_of(value, size, i);
*/
static uint64_t varint_word(uint64_t value, unsigned size);
#ifndef __FRAMAC__
static uint64_t varint_word(uint64_t value, unsigned size) {
  value = (value & 0xfffffff) | (value & 0xfffffff0000000) << 4;
  value = (value & 0x3fff00003fff) | (value & 0xfffc0000fffc000) << 2;
  value = (value & 0x7f007f007f007f) | (value & 0x3f803f803f803f80) << 1;
  return value | (0x8080808080808080 & (((uint64_t)1 << 8 * (size - 1)) - 1));
}
#endif

/*@ requires value >= 0x4000;
    requires \base_addr(first) == \base_addr(at) && at - first >= groups(value) && at - first <= PTRDIFF_MAX;
    requires \valid(first + (0 .. at - first - 1));
    terminates \true;
    assigns first[0 .. at - first - 1];
    assigns \result \from first, at, value;
    ensures \result == at - groups(value) && written(at - groups(value), groups(value), value);
*/
static byte *prepend_word_32(byte *first, byte *at, uint32_t value) {
  if (value < 0x200000) {
    at[-1] = (byte)(value >> 14);
    at[-2] = (byte)(value >> 7 | 0x80);
    at[-3] = (byte)(value | 0x80);
    //@ assert groups(value) == 3;
    //@ assert at[-3] == byte_of(value, 3, 0) && at[-2] == byte_of(value, 3, 1) && at[-1] == byte_of(value, 3, 2);
    //@ assert \forall integer i; i == 0 || i == 1 || i == 2 ==> (at - 3)[i] == byte_of(value, 3, i);
    return at - 3;
  }
  if (value < 0x10000000) {
    const uint64_t word = varint_word(value, 4);
    store_half_word(at - 4, (uint32_t)word);
    /*@ assert \forall byte *p; \base_addr(p) == \base_addr(at) && at - 4 <= p < at ==>
          *p == (uint8_t)(word >> 8 * (p - (at - 4))); */
    /*@ assert \forall byte *p; \base_addr(p) == \base_addr(at) && at - 4 <= p < at ==>
          *p == byte_of(value, 4, p - (at - 4)); */
    return at - 4;
  }
  const unsigned size = (unsigned)long_varint_size_32(value);
  if (size > 8 || at - first < 8) return prepend_long_varint_32(at, value);
  const unsigned free_bits = 8 * (8 - size);
  //@ assert free_bits == 64 - 8 * size && 0 <= free_bits < 64;
  const uint64_t word = varint_word(value, size), moved = word << free_bits;
  store_word(at - 8, moved);
  /*@ assert \forall byte *p; \base_addr(p) == \base_addr(at) && at - size <= p < at ==>
        *p == (uint8_t)(word >> 8 * (p - (at - size))); */
  /*@ assert \forall byte *p; \base_addr(p) == \base_addr(at) && at - size <= p < at ==>
        *p == byte_of(value, size, p - (at - size)); */
  return at - size;
}

/*@ requires \base_addr(first) == \base_addr(at) && at - first >= groups(value) && at - first <= PTRDIFF_MAX;
    requires \valid(first + (0 .. at - first - 1));
    terminates \true;
    assigns first[0 .. at - first - 1];
    assigns \result \from first, at, value;
    ensures \result == at - groups(value) && written(at - groups(value), groups(value), value);
*/
byte *prepend_varint_32(byte *first, byte *at, uint32_t value) {
  if (value < 0x80) return prepend_byte(at, (byte)value);
  if (value < 0x4000) return prepend_byte(prepend_byte(at, (byte)(value >> 7)), (byte)(value | 0x80));
  return prepend_word_32(first, at, value);
}

/*@ requires value >= 0x4000;
    requires \base_addr(first) == \base_addr(at) && at - first >= groups(value) && at - first <= PTRDIFF_MAX;
    requires \valid(first + (0 .. at - first - 1));
    terminates \true;
    assigns first[0 .. at - first - 1];
    assigns \result \from first, at, value;
    ensures \result == at - groups(value) && written(at - groups(value), groups(value), value);
*/
static byte *prepend_word_64(byte *first, byte *at, uint64_t value) {
  if (value < 0x200000) {
    at[-1] = (byte)(value >> 14);
    at[-2] = (byte)(value >> 7 | 0x80);
    at[-3] = (byte)(value | 0x80);
    //@ assert groups(value) == 3;
    //@ assert at[-3] == byte_of(value, 3, 0) && at[-2] == byte_of(value, 3, 1) && at[-1] == byte_of(value, 3, 2);
    //@ assert \forall integer i; i == 0 || i == 1 || i == 2 ==> (at - 3)[i] == byte_of(value, 3, i);
    return at - 3;
  }
  if (value < 0x10000000) {
    const uint64_t word = varint_word(value, 4);
    store_half_word(at - 4, (uint32_t)word);
    /*@ assert \forall byte *p; \base_addr(p) == \base_addr(at) && at - 4 <= p < at ==>
          *p == (uint8_t)(word >> 8 * (p - (at - 4))); */
    /*@ assert \forall byte *p; \base_addr(p) == \base_addr(at) && at - 4 <= p < at ==>
          *p == byte_of(value, 4, p - (at - 4)); */
    return at - 4;
  }
  const unsigned size = (unsigned)long_varint_size_64(value);
  if (size > 8 || at - first < 8) return prepend_long_varint_64(at, value);
  const unsigned free_bits = 8 * (8 - size);
  //@ assert free_bits == 64 - 8 * size && 0 <= free_bits < 64;
  const uint64_t word = varint_word(value, size), moved = word << free_bits;
  store_word(at - 8, moved);
  /*@ assert \forall byte *p; \base_addr(p) == \base_addr(at) && at - size <= p < at ==>
        *p == (uint8_t)(word >> 8 * (p - (at - size))); */
  /*@ assert \forall byte *p; \base_addr(p) == \base_addr(at) && at - size <= p < at ==>
        *p == byte_of(value, size, p - (at - size)); */
  return at - size;
}

/*@ requires \base_addr(first) == \base_addr(at) && at - first >= groups(value) && at - first <= PTRDIFF_MAX;
    requires \valid(first + (0 .. at - first - 1));
    terminates \true;
    assigns first[0 .. at - first - 1];
    assigns \result \from first, at, value;
    ensures \result == at - groups(value) && written(at - groups(value), groups(value), value);
*/
byte *prepend_varint_64(byte *first, byte *at, uint64_t value) {
  if (value < 0x80) return prepend_byte(at, (byte)value);
  if (value < 0x4000) return prepend_byte(prepend_byte(at, (byte)(value >> 7)), (byte)(value | 0x80));
  return prepend_word_64(first, at, value);
}

/*@ requires at > 0 && \valid(buffer + (0 .. length - 1));
    terminates \true;
    assigns buffer[at - 1 .. (at < length ? at : length) - 1];
    assigns \result \from at;
    ensures \result == at - 1;
    ensures at - 1 < length ==> buffer[at - 1] == value;
*/
static size_t clipped_prepend_byte(byte *buffer, size_t length, size_t at, byte value) {
  if (--at < length) buffer[at] = value;
  return at;
}

/*@ requires at >= groups(value) && \valid(buffer + (0 .. length - 1));
    terminates \true;
    assigns buffer[at - groups(value) .. (at < length ? at : length) - 1];
    assigns \result \from at, value;
    ensures \result == at - groups(value);
    ensures \forall integer i; at - groups(value) <= i < at && i < length ==>
      buffer[i] == byte_of(value, groups(value), i - (at - groups(value)));
*/
size_t clipped_prepend_varint_32(byte *buffer, size_t length, size_t at, uint32_t value) {
  unsigned shift = 7 * ((unsigned)varint_size_32(value) - 1);
  //@ ghost unsigned left = shift / 7;
  at = clipped_prepend_byte(buffer, length, at, (byte)(value >> shift));
  /*@ loop invariant 0 <= left < groups(value) && shift == 7 * left;
      loop invariant at == \at(at, Pre) - groups(value) + left;
      loop invariant \forall integer i; at <= i < \at(at, Pre) && i < length ==>
        buffer[i] == byte_of(value, groups(value), i - (\at(at, Pre) - groups(value)));
      loop assigns at, shift, left,
        buffer[\at(at, Pre) - groups(value) .. (\at(at, Pre) < length ? \at(at, Pre) : length) - 1];
      loop variant left;
  */
  while (shift != 0) {
    shift -= 7;
    //@ ghost --left;
    at = clipped_prepend_byte(buffer, length, at, (byte)(value >> shift | 0x80));
  }
  return at;
}

/*@ requires at >= groups(value) && \valid(buffer + (0 .. length - 1));
    terminates \true;
    assigns buffer[at - groups(value) .. (at < length ? at : length) - 1];
    assigns \result \from at, value;
    ensures \result == at - groups(value);
    ensures \forall integer i; at - groups(value) <= i < at && i < length ==>
      buffer[i] == byte_of(value, groups(value), i - (at - groups(value)));
*/
size_t clipped_prepend_varint_64(byte *buffer, size_t length, size_t at, uint64_t value) {
  unsigned shift = 7 * ((unsigned)varint_size_64(value) - 1);
  //@ ghost unsigned left = shift / 7;
  at = clipped_prepend_byte(buffer, length, at, (byte)(value >> shift));
  /*@ loop invariant 0 <= left < groups(value) && shift == 7 * left;
      loop invariant at == \at(at, Pre) - groups(value) + left;
      loop invariant \forall integer i; at <= i < \at(at, Pre) && i < length ==>
        buffer[i] == byte_of(value, groups(value), i - (\at(at, Pre) - groups(value)));
      loop assigns at, shift, left,
        buffer[\at(at, Pre) - groups(value) .. (\at(at, Pre) < length ? \at(at, Pre) : length) - 1];
      loop variant left;
  */
  while (shift != 0) {
    shift -= 7;
    //@ ghost --left;
    at = clipped_prepend_byte(buffer, length, at, (byte)(value >> shift | 0x80));
  }
  return at;
}
