/* Reference implementation of the readers in src/core/wire.hpp: varints, lengths, skipping. README.md
   says what is proved. */
#include "wire.h"

/*@ predicate readable{L}(byte *at, byte *end) =
      \base_addr(at) == \base_addr(end) && at <= end && end - at <= PTRDIFF_MAX &&
      \valid_read(at + (0 .. end - at - 1));

    predicate within(byte *at, byte *next, byte *end) =
      \base_addr(next) == \base_addr(at) && at <= next <= end;

    // The first `size` bytes have the top bit set.
    predicate open{L}(byte *at, integer size) =
      \forall byte *p; \base_addr(p) == \base_addr(at) && at <= p < at + size ==> *p >= 0x80;

    predicate varint_of{L}(byte *at, integer size) = 0 < size && open(at, size - 1) && at[size - 1] < 0x80;

    lemma open_joined{L}: \forall byte *at, integer size, more; 0 <= size && 0 <= more && open(at, size) ==>
      (open(at, size + more) <==> open(at + size, more));

    lemma varint_once{L}: \forall byte *at, integer a, b; varint_of(at, a) && varint_of(at, b) ==> a == b;

    lemma varint_joined{L}: \forall byte *at, integer size, more;
      0 <= size && open(at, size) && varint_of(at + size, more) ==> varint_of(at, size + more);
*/

/* Powers of two whose exponent is a multiple of seven. */
/*@ predicate sevenfold(integer k) = k == 0 || k == 7 || k == 14 || k == 21 || k == 28 || k == 35 || k == 42 ||
      k == 49 || k == 56 || k == 63;

    logic integer power(integer k) =
      k == 0 ? 1 : k == 7 ? 0x80 : k == 14 ? 0x4000 : k == 21 ? 0x200000 : k == 28 ? 0x10000000 :
      k == 35 ? 0x800000000 : k == 42 ? 0x40000000000 : k == 49 ? 0x2000000000000 : k == 56 ? 0x100000000000000 :
      0x8000000000000000;
*/

/* What bitwise operators do to numbers, which Frama-C's own theory does not say. bits.mlw proves each axiom for 64-bit
   vectors. */
/*@ axiomatic bits {
      axiom and_below: \forall integer x, m; 0 <= x && 0 <= m ==> 0 <= (x & m) <= m;
      axiom low_seven: \forall integer x; 0 <= x < 0x80 ==> (x & 0x7f) == x;
      axiom left: \forall integer x, k; 0 <= x < 0x100 && sevenfold(k) && k <= 49 ==> (x << k) == x * power(k);
      axiom add_group: \forall integer x, y, k; sevenfold(k) && k <= 49 && 0 <= x < power(k) && 0 <= y < 0x100 ==>
        (x | (y << k)) == x + y * power(k);
      axiom add_group_32: \forall integer x, y, k; sevenfold(k) && k <= 28 && 0 <= x < power(k) && 0 <= y < 0x80 ==>
        (x | (uint32_t)(y << k)) == (uint32_t)(x + y * power(k));
      axiom add_group_64: \forall integer x, y, k; sevenfold(k) && 0 <= x < power(k) && 0 <= y < 0x80 ==>
        (x | (uint64_t)(y << k)) == (uint64_t)(x + y * power(k));
      axiom left_byte_8: \forall integer x; 0 <= x < 0x100 ==> (x << 8) == 0x100 * x;
      axiom left_byte_16: \forall integer x; 0 <= x < 0x100 ==> (x << 16) == 0x10000 * x;
      axiom left_byte_24: \forall integer x; 0 <= x < 0x100 ==> (x << 24) == 0x1000000 * x;
      axiom add_byte: \forall integer x, y, k;
        0 <= y < 0x100 && (k == 8 && 0 <= x < 0x100 || k == 16 && 0 <= x < 0x10000 || k == 24 && 0 <= x < 0x1000000) ==>
        (x | (y << k)) == x + (y << k);
      axiom or_one: \forall integer x; 0 <= x ==> x <= (x | 1) <= x + 1;
      axiom or_one_below: \forall integer x, k; 0 <= x && sevenfold(k) && 7 <= k ==>
        ((x | 1) < power(k) <==> x < power(k));
    }
*/

/*@ logic integer group{L}(byte *at, integer size, integer i) = i < size ? (at[i] & 0x7f) : 0;

    // The sum of the groups of seven bits, the lowest first.
    logic integer sum_32{L}(byte *at, integer size) =
      group(at, size, 0) + 0x80 * group(at, size, 1) + 0x4000 * group(at, size, 2) +
      0x200000 * group(at, size, 3) + 0x10000000 * group(at, size, 4);

    logic integer sum_64{L}(byte *at, integer size) =
      sum_32(at, size) + 0x800000000 * group(at, size, 5) + 0x40000000000 * group(at, size, 6) +
      0x2000000000000 * group(at, size, 7) + 0x100000000000000 * group(at, size, 8) +
      0x8000000000000000 * group(at, size, 9);

    lemma group_bounds{L}: \forall byte *at, integer size, i; 0 <= group(at, size, i) < 0x80;

    lemma sum_32_next_0{L}: \forall byte *at; sum_32(at, 1) == sum_32(at, 0) + (at[0] & 0x7f) * 0x1;
    lemma sum_32_next_1{L}: \forall byte *at; sum_32(at, 2) == sum_32(at, 1) + (at[1] & 0x7f) * 0x80;
    lemma sum_32_next_2{L}: \forall byte *at; sum_32(at, 3) == sum_32(at, 2) + (at[2] & 0x7f) * 0x4000;
    lemma sum_32_next_3{L}: \forall byte *at; sum_32(at, 4) == sum_32(at, 3) + (at[3] & 0x7f) * 0x200000;
    lemma sum_32_next_4{L}: \forall byte *at; sum_32(at, 5) == sum_32(at, 4) + (at[4] & 0x7f) * 0x10000000;

    lemma sum_32_next{L}: \forall byte *at, integer size;
      size == 0 || size == 1 || size == 2 || size == 3 || size == 4 ==>
      sum_32(at, size + 1) == sum_32(at, size) + (at[size] & 0x7f) * power(7 * size);

    lemma sum_32_bounds{L}: \forall byte *at, integer size; 0 <= size < 5 ==> 0 <= sum_32(at, size) < power(7 * size);

    lemma sum_32_whole{L}: \forall byte *at, integer size; 5 <= size ==> sum_32(at, size) == sum_32(at, 5);

    lemma sum_64_next_0{L}: \forall byte *at; sum_64(at, 1) == sum_64(at, 0) + (at[0] & 0x7f) * 0x1;
    lemma sum_64_next_1{L}: \forall byte *at; sum_64(at, 2) == sum_64(at, 1) + (at[1] & 0x7f) * 0x80;
    lemma sum_64_next_2{L}: \forall byte *at; sum_64(at, 3) == sum_64(at, 2) + (at[2] & 0x7f) * 0x4000;
    lemma sum_64_next_3{L}: \forall byte *at; sum_64(at, 4) == sum_64(at, 3) + (at[3] & 0x7f) * 0x200000;
    lemma sum_64_next_4{L}: \forall byte *at; sum_64(at, 5) == sum_64(at, 4) + (at[4] & 0x7f) * 0x10000000;
    lemma sum_64_next_5{L}: \forall byte *at; sum_64(at, 6) == sum_64(at, 5) + (at[5] & 0x7f) * 0x800000000;
    lemma sum_64_next_6{L}: \forall byte *at; sum_64(at, 7) == sum_64(at, 6) + (at[6] & 0x7f) * 0x40000000000;
    lemma sum_64_next_7{L}: \forall byte *at; sum_64(at, 8) == sum_64(at, 7) + (at[7] & 0x7f) * 0x2000000000000;
    lemma sum_64_next_8{L}: \forall byte *at; sum_64(at, 9) == sum_64(at, 8) + (at[8] & 0x7f) * 0x100000000000000;
    lemma sum_64_next_9{L}: \forall byte *at; sum_64(at, 10) == sum_64(at, 9) + (at[9] & 0x7f) * 0x8000000000000000;

    lemma sum_64_next_low{L}: \forall byte *at, integer size;
      size == 0 || size == 1 || size == 2 || size == 3 || size == 4 ==>
      sum_64(at, size + 1) == sum_64(at, size) + (at[size] & 0x7f) * power(7 * size);

    lemma sum_64_next_at_5{L}: \forall byte *at, integer size; size == 5 ==>
      sum_64(at, size + 1) == sum_64(at, size) + (at[size] & 0x7f) * power(7 * size);

    lemma sum_64_next_at_6{L}: \forall byte *at, integer size; size == 6 ==>
      sum_64(at, size + 1) == sum_64(at, size) + (at[size] & 0x7f) * power(7 * size);

    lemma sum_64_next_at_7{L}: \forall byte *at, integer size; size == 7 ==>
      sum_64(at, size + 1) == sum_64(at, size) + (at[size] & 0x7f) * power(7 * size);

    lemma sum_64_next_at_8{L}: \forall byte *at, integer size; size == 8 ==>
      sum_64(at, size + 1) == sum_64(at, size) + (at[size] & 0x7f) * power(7 * size);

    lemma sum_64_next_at_9{L}: \forall byte *at, integer size; size == 9 ==>
      sum_64(at, size + 1) == sum_64(at, size) + (at[size] & 0x7f) * power(7 * size);

    lemma sum_64_next{L}: \forall byte *at, integer size; 0 <= size < 10 ==>
      sum_64(at, size + 1) == sum_64(at, size) + (at[size] & 0x7f) * power(7 * size);

    lemma sum_64_bounds{L}: \forall byte *at, integer size; 0 <= size < 10 ==> 0 <= sum_64(at, size) < power(7 * size);

    lemma sum_64_whole{L}: \forall byte *at, integer size; 10 <= size ==> sum_64(at, size) == sum_64(at, 10);
*/

/*@ requires readable(at, end);
    terminates \true;
    assigns \result \from at, end, at[0 .. end - at - 1];
    ensures \result == \null <==> open(at, end - at);
    ensures \result != \null ==> within(at, \result, end) && varint_of(at, \result - at);
*/
const byte *skip_varint(const byte *at, const byte *end) {
  //@ ghost size_t passed = 0;
  /*@ loop invariant \base_addr(at) == \base_addr(end) && at == \at(at, Pre) + passed;
      loop invariant 0 <= passed <= end - \at(at, Pre);
      loop invariant open(\at(at, Pre), passed);
      loop assigns at, passed;
      loop variant end - at;
  */
  while (at != end) {
    //@ ghost ++passed;
    if (*at++ < 0x80) return at;
  }
  return NULL;
}

/*@ requires readable(at, end);
    terminates \true;
    assigns \result \from at, end, at[0 .. end - at - 1];
    ensures \result.next == \null <==> open(at, end - at);
    ensures \result.next != \null ==> within(at, \result.next, end) && varint_of(at, \result.next - at);
    ensures \result.next != \null ==> \result.value == (uint32_t)sum_32(at, \result.next - at);
*/
static struct varint_32 read_long_varint_32(const byte *at, const byte *end) {
  uint32_t value = 0;
  //@ ghost unsigned passed = 0;
  /*@ loop invariant 0 <= passed <= 5 && shift == 7 * passed;
      loop invariant \base_addr(at) == \base_addr(end) && at == \at(at, Pre) + passed && passed <= end - \at(at, Pre);
      loop invariant open(\at(at, Pre), passed);
      loop invariant passed < 5 ==> value == sum_32(\at(at, Pre), passed);
      loop invariant passed == 5 ==> value == (uint32_t)sum_32(\at(at, Pre), 5);
      loop assigns shift, at, value, passed;
      loop variant 35 - shift;
  */
  for (unsigned shift = 0; shift < 32; shift += 7) {
    if (at == end) return (struct varint_32){NULL, 0};
    //@ ghost ++passed;
    const byte next = *at++;
    value = value | (uint32_t)(next & 0x7f) << shift;
    if (next < 0x80) return (struct varint_32){at, value};
  }
  return (struct varint_32){skip_varint(at, end), value};
}

/*@ requires readable(at, end);
    terminates \true;
    assigns \result \from at, end, at[0 .. end - at - 1];
    ensures \result.next == \null <==> open(at, end - at);
    ensures \result.next != \null ==> within(at, \result.next, end) && varint_of(at, \result.next - at);
    ensures \result.next != \null ==> \result.value == (uint32_t)sum_32(at, \result.next - at);
*/
struct varint_32 read_varint_32(const byte *at, const byte *end) {
  if (at != end && *at < 0x80) return (struct varint_32){at + 1, *at};
  if (end - at >= 2 && at[1] < 0x80) {
    //@ assert (at[1] & 0x7f) == at[1];
    //@ assert sum_32(at, 2) == (at[0] & 0x7f) + 0x80 * at[1];
    //@ assert ((at[0] & 0x7f) | at[1] << 7) == (at[0] & 0x7f) + 0x80 * at[1];
    return (struct varint_32){at + 2, (uint32_t)((at[0] & 0x7f) | at[1] << 7)};
  }
  return read_long_varint_32(at, end);
}

/*@ requires readable(at, end);
    terminates \true;
    assigns \result \from at, end, at[0 .. end - at - 1];
    ensures \result.next == \null <==> open(at, end - at);
    ensures \result.next != \null ==> within(at, \result.next, end) && varint_of(at, \result.next - at);
    ensures \result.next != \null ==> \result.value == (uint64_t)sum_64(at, \result.next - at);
*/
static struct varint_64 read_long_varint_64(const byte *at, const byte *end) {
  uint64_t value = 0;
  //@ ghost unsigned passed = 0;
  /*@ loop invariant 0 <= passed <= 10 && shift == 7 * passed;
      loop invariant \base_addr(at) == \base_addr(end) && at == \at(at, Pre) + passed && passed <= end - \at(at, Pre);
      loop invariant open(\at(at, Pre), passed);
      loop invariant passed < 10 ==> value == sum_64(\at(at, Pre), passed);
      loop invariant passed == 10 ==> value == (uint64_t)sum_64(\at(at, Pre), 10);
      loop assigns shift, at, value, passed;
      loop variant 70 - shift;
  */
  for (unsigned shift = 0; shift < 64; shift += 7) {
    if (at == end) return (struct varint_64){NULL, 0};
    //@ ghost ++passed;
    const byte next = *at++;
    value = value | (uint64_t)(next & 0x7f) << shift;
    if (next < 0x80) return (struct varint_64){at, value};
  }
  return (struct varint_64){skip_varint(at, end), value};
}

/*@ requires readable(at, end);
    terminates \true;
    assigns \result \from at, end, at[0 .. end - at - 1];
    ensures \result.next == \null <==> open(at, end - at);
    ensures \result.next != \null ==> within(at, \result.next, end) && varint_of(at, \result.next - at);
    ensures \result.next != \null ==> \result.value == (uint64_t)sum_64(at, \result.next - at);
*/
struct varint_64 read_varint_64(const byte *at, const byte *end) {
  if (at != end && *at < 0x80) return (struct varint_64){at + 1, *at};
  if (end - at >= 2 && at[1] < 0x80) {
    //@ assert (at[1] & 0x7f) == at[1];
    //@ assert sum_64(at, 2) == (at[0] & 0x7f) + 0x80 * at[1];
    //@ assert ((at[0] & 0x7f) | at[1] << 7) == (at[0] & 0x7f) + 0x80 * at[1];
    return (struct varint_64){at + 2, (uint64_t)((at[0] & 0x7f) | at[1] << 7)};
  }
  return read_long_varint_64(at, end);
}

/*@ requires shift == 8 && low < 0x100 || shift == 16 && low < 0x10000 || shift == 24 && low < 0x1000000;
    terminates \true;
    assigns \result \from low, next, shift;
    ensures shift == 8 ==> \result == low + 0x100 * next;
    ensures shift == 16 ==> \result == low + 0x10000 * next;
    ensures shift == 24 ==> \result == low + 0x1000000 * next;
*/
static uint32_t with_byte(uint32_t low, byte next, unsigned shift) {
  //@ assert (uint32_t)(next << shift) == next << shift;
  return low | (uint32_t)next << shift;
}

/*@ predicate bytes(integer word, integer a, integer b, integer c, integer d) =
      0 <= a < 0x100 && 0 <= b < 0x100 && 0 <= c < 0x100 && 0 <= d < 0x100 &&
      word == a + 0x100 * b + 0x10000 * c + 0x1000000 * d;
*/

/* Four bytes as a little-endian number: at[0] | at[1] << 8 | at[2] << 16 | at[3] << 24. The core loads them at once,
   and swaps them on a big-endian machine. */
/*@ requires \valid_read(at + (0 .. 3));
    terminates \true;
    assigns \result \from at[0 .. 3];
    ensures bytes(\result, at[0], at[1], at[2], at[3]);
*/
static uint32_t load_half_word(const byte *at) {
  const uint32_t two = with_byte(at[0], at[1], 8);
  //@ assert two == at[0] + 0x100 * at[1] && two < 0x10000;
  const uint32_t three = with_byte(two, at[2], 16);
  //@ assert three == at[0] + 0x100 * at[1] + 0x10000 * at[2] && three < 0x1000000;
  return with_byte(three, at[3], 24);
}

/* A varint of up to four bytes in a word: its size, or 0 if it does not end in the word, and its value. */
struct short_varint {
  unsigned size;
  uint32_t value;
};

/* bits.mlw proves this contract, for 32-bit vectors. */
/*@ terminates \true;
    assigns \result \from word;
    ensures \forall integer a, b, c, d; bytes(word, a, b, c, d) && a < 0x80 ==>
      \result.size == 1 && \result.value == (a & 0x7f);
    ensures \forall integer a, b, c, d; bytes(word, a, b, c, d) && a >= 0x80 && b < 0x80 ==>
      \result.size == 2 && \result.value == (a & 0x7f) + 0x80 * (b & 0x7f);
    ensures \forall integer a, b, c, d; bytes(word, a, b, c, d) && a >= 0x80 && b >= 0x80 && c < 0x80 ==>
      \result.size == 3 && \result.value == (a & 0x7f) + 0x80 * (b & 0x7f) + 0x4000 * (c & 0x7f);
    ensures \forall integer a, b, c, d; bytes(word, a, b, c, d) && a >= 0x80 && b >= 0x80 && c >= 0x80 && d < 0x80 ==>
      \result.size == 4 &&
      \result.value == (a & 0x7f) + 0x80 * (b & 0x7f) + 0x4000 * (c & 0x7f) + 0x200000 * (d & 0x7f);
    ensures \forall integer a, b, c, d; bytes(word, a, b, c, d) && a >= 0x80 && b >= 0x80 && c >= 0x80 && d >= 0x80 ==>
      \result.size == 0;
*/
static struct short_varint up_to_four(uint32_t word);
#ifndef __FRAMAC__
static uint32_t seven_of_each(uint32_t word) {
  word = (word & 0x7f007f) | (word & 0x7f007f00) >> 1;
  return (word & 0x3fff) | (word & 0x3fff0000) >> 2;
}

static struct short_varint up_to_four(uint32_t word) {
  const uint32_t ends = ~word & 0x80808080;
  if (ends == 0) return (struct short_varint){0, 0};
  return (struct short_varint){(unsigned)__builtin_ctz(ends) / 8 + 1, seven_of_each(word & (ends ^ (ends - 1)))};
}
#endif

/*@ lemma varint_of_1{L}: \forall byte *at; at[0] < 0x80 ==> varint_of(at, 1);
    lemma varint_of_2{L}: \forall byte *at; at[0] >= 0x80 && at[1] < 0x80 ==> varint_of(at, 2);
    lemma varint_of_3{L}: \forall byte *at; at[0] >= 0x80 && at[1] >= 0x80 && at[2] < 0x80 ==> varint_of(at, 3);
    lemma varint_of_4{L}: \forall byte *at;
      at[0] >= 0x80 && at[1] >= 0x80 && at[2] >= 0x80 && at[3] < 0x80 ==> varint_of(at, 4);
*/

/*@ requires readable(at, end);
    terminates \true;
    assigns \result \from at, end, at[0 .. end - at - 1];
    ensures \result.next == \null <==> open(at, end - at);
    ensures \result.next != \null ==> within(at, \result.next, end) && varint_of(at, \result.next - at);
    ensures \result.next != \null ==> \result.value == (uint32_t)sum_32(at, \result.next - at);
*/
struct varint_32 read_number_32(const byte *at, const byte *end) {
  if (at != end && *at < 0x80) return (struct varint_32){at + 1, *at};
  if (end - at >= 4) {
    const uint32_t word = load_half_word(at);
    const struct short_varint found = up_to_four(word);
    //@ assert bytes(word, at[0], at[1], at[2], at[3]);
    //@ assert sum_32(at, 1) == (at[0] & 0x7f);
    //@ assert sum_32(at, 2) == (at[0] & 0x7f) + 0x80 * (at[1] & 0x7f);
    //@ assert sum_32(at, 3) == (at[0] & 0x7f) + 0x80 * (at[1] & 0x7f) + 0x4000 * (at[2] & 0x7f);
    /*@ assert sum_32(at, 4) ==
          (at[0] & 0x7f) + 0x80 * (at[1] & 0x7f) + 0x4000 * (at[2] & 0x7f) + 0x200000 * (at[3] & 0x7f); */
    //@ assert found.size == 0 || found.size == 1 || found.size == 2 || found.size == 3 || found.size == 4;
    //@ assert found.size != 0 ==> varint_of(at, found.size) && found.value == sum_32(at, found.size);
    if (found.size != 0) return (struct varint_32){at + found.size, found.value};
  }
  return read_long_varint_32(at, end);
}

/*@ requires readable(at, end);
    terminates \true;
    assigns \result \from at, end, at[0 .. end - at - 1];
    ensures \result.next == \null <==> open(at, end - at);
    ensures \result.next != \null ==> within(at, \result.next, end) && varint_of(at, \result.next - at);
    ensures \result.next != \null ==> \result.value == (uint64_t)sum_64(at, \result.next - at);
*/
struct varint_64 read_number_64(const byte *at, const byte *end) {
  if (at != end && *at < 0x80) return (struct varint_64){at + 1, *at};
  if (end - at >= 4) {
    const uint32_t word = load_half_word(at);
    const struct short_varint found = up_to_four(word);
    //@ assert bytes(word, at[0], at[1], at[2], at[3]);
    //@ assert sum_64(at, 1) == (at[0] & 0x7f);
    //@ assert sum_64(at, 2) == (at[0] & 0x7f) + 0x80 * (at[1] & 0x7f);
    //@ assert sum_64(at, 3) == (at[0] & 0x7f) + 0x80 * (at[1] & 0x7f) + 0x4000 * (at[2] & 0x7f);
    /*@ assert sum_64(at, 4) ==
          (at[0] & 0x7f) + 0x80 * (at[1] & 0x7f) + 0x4000 * (at[2] & 0x7f) + 0x200000 * (at[3] & 0x7f); */
    //@ assert found.size == 0 || found.size == 1 || found.size == 2 || found.size == 3 || found.size == 4;
    //@ assert found.size != 0 ==> varint_of(at, found.size) && found.value == sum_64(at, found.size);
    if (found.size != 0) return (struct varint_64){at + found.size, found.value};
  }
  return read_long_varint_64(at, end);
}

/*@ requires readable(at, end);
    terminates \true;
    assigns \result \from at, end, at[0 .. end - at - 1];
    ensures \result.first == \null <==> open(at, end - at) ||
      \exists integer size; 0 <= size <= end - at && varint_of(at, size) &&
        (uint32_t)sum_32(at, size) > end - at - size;
    ensures \result.first != \null ==> within(at, \result.first, \result.last) && within(at, \result.last, end) &&
      varint_of(at, \result.first - at) && \result.last - \result.first == (uint32_t)sum_32(at, \result.first - at);
    ensures \result.first == \null <==> \result.last == \null;
*/
struct delimited read_delimited(const byte *at, const byte *end) {
  const struct varint_32 length = read_varint_32(at, end);
  if (length.next == NULL || length.value > (size_t)(end - length.next)) return (struct delimited){NULL, NULL};
  return (struct delimited){length.next, length.next + length.value};
}

/*@ requires readable(at, end);
    terminates \true;
    assigns \result \from at, end, at[0 .. end - at - 1];
    ensures \result == \null <==> open(at, end - at) ||
      \exists integer size; 0 <= size <= end - at && varint_of(at, size) &&
        (uint32_t)sum_32(at, size) > end - at - size;
    ensures \result != \null ==> within(at, \result, end) && at < \result;
*/
const byte *skip_delimited(const byte *at, const byte *end) { return read_delimited(at, end).last; }

/*@ requires readable(at, end);
    terminates \true;
    assigns \result \from key, at, end, at[0 .. end - at - 1];
    ensures (key & 7) == 0 || (key & 7) == 2 ==> (\result.result == TRUNCATED <==> open(at, end - at));
    ensures (key & 7) != 0 && (key & 7) != 2 ==> \result.result != TRUNCATED;
    ensures \result.result == BAD_WIRE_TYPE <==> (key & 7) != 0 && (key & 7) != 1 && (key & 7) != 2 && (key & 7) != 5;
    ensures \result.result == OK || \result.result == TRUNCATED || \result.result == BAD_WIRE_TYPE;
    ensures \result.result == OK ==> within(at, \result.next, end);
    ensures \result.result == OK && (key & 7) == 0 ==> varint_of(at, \result.next - at);
    ensures \result.result == OK && (key & 7) == 1 ==> \result.next == (8 < end - at ? at + 8 : end);
    ensures \result.result == OK && (key & 7) == 5 ==> \result.next == (4 < end - at ? at + 4 : end);
    ensures \result.result == OK && (key & 7) == 2 ==> \exists integer size; varint_of(at, size) && size <= end - at &&
      \result.next == ((uint32_t)sum_32(at, size) < end - at - size ? at + size + (uint32_t)sum_32(at, size) : end);
*/
struct step skip_unknown(uint32_t key, const byte *at, const byte *end) {
  size_t size = 0;
  switch (key & 7) {
    case 0:
      at = skip_varint(at, end);
      return at != NULL ? (struct step){at, OK} : (struct step){NULL, TRUNCATED};
    case 1:
      size = 8;
      break;
    case 5:
      size = 4;
      break;
    case 2: {
      const struct varint_32 length = read_varint_32(at, end);
      if (length.next == NULL) return (struct step){NULL, TRUNCATED};
      at = length.next;
      size = length.value;
      //@ assert varint_of(\at(at, Pre), at - \at(at, Pre)) && within(\at(at, Pre), at, end);
      //@ assert size == (uint32_t)sum_32(\at(at, Pre), at - \at(at, Pre));
      break;
    }
    default:
      return (struct step){NULL, BAD_WIRE_TYPE};
  }
  return (struct step){size < (size_t)(end - at) ? at + size : end, OK};
}
