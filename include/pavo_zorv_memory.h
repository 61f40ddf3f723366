/** @file
 *  Ready-made callbacks for pavo_zorv.h, and names for its results. C11 and C++11. All of it is inline: the library
 *  exports nothing of it, and a program that does not use it does not contain it.
 *
 *  | callbacks | context | what they do |
 *  |---|---|---|
 *  | `pavo_zorv_heap_*` | null | `malloc` and `free` |
 *  | `pavo_zorv_pool_*` | a `pavo_zorv_pool` | take from the caller's block; a reset frees all of it |
 *  | `pavo_zorv_budget_*` | a `pavo_zorv_budget` | call other callbacks, up to a limit |
 *  | `pavo_zorv_counter_*` | a `pavo_zorv_counter` | count calls, and fail chosen ones, for tests |
 *
 *  Each is a pair `..._allocate` and `..._release`, to be passed with its context. Blocks are aligned for any record.
 *  Two threads must not use the same context at once; different contexts are independent.
 *
 *  @code{.c}
 *  unsigned char block[4096];
 *  pavo_zorv_pool pool;
 *  pavo_zorv_pool_init(&pool, block, sizeof block);
 *  int result = pavo_zorv_api_msg_decode_ext(&message, bytes, length, pavo_zorv_pool_allocate, &pool, 0);
 *  if (result != CODEC_OK) fprintf(stderr, "%s\n", pavo_zorv_result_name(result));
 *  pavo_zorv_pool_reset(&pool); // instead of free_ext: frees all that the message owned
 *  @endcode
 */
#ifndef PAVO_ZORV_MEMORY_H
#define PAVO_ZORV_MEMORY_H

#include <stddef.h>
#include <stdint.h>
#include <stdlib.h>

#include "pavo_zorv.h"

/** @cond */
#ifdef __cplusplus
#define PAVO_ZORV_ADDRESS_(pointer) reinterpret_cast<uintptr_t>(pointer)
#else
#define PAVO_ZORV_ADDRESS_(pointer) ((uintptr_t)(pointer))
#endif
/** @endcond */

#ifdef __cplusplus
extern "C" {
#endif

/** The strictest alignment of a record. */
typedef union pavo_zorv_alignment {
  uint64_t number; /**< The widest number in a record. */
  void *pointer; /**< Any pointer in a record. */
} pavo_zorv_alignment;

/** The alignment of every block that the callbacks of this header return, a power of two. */
#ifdef __cplusplus
#define PAVO_ZORV_ALIGNMENT alignof(pavo_zorv_alignment)
#elif defined(__GNUC__)
#define PAVO_ZORV_ALIGNMENT (__extension__ _Alignof(pavo_zorv_alignment)) /* before C11 as well */
#else
#define PAVO_ZORV_ALIGNMENT _Alignof(pavo_zorv_alignment)
#endif

/** @name Bounds
 *  How much memory any input, even a hostile one, can make `decode_ext` ask for, and how much stack a call takes. The
 *  worst input is a list of empty policies: 72 bytes of memory for 2 bytes of input. Copying a decoded record with
 *  `duplicate` asks for no more than decoding it did, or would have done without reference mode: the bounds hold for
 *  the copy as well. The longest encodings of messages are in pavo_zorv_fields.h.
 *  @{ */

/** Bytes of memory that decoding asks for, per byte of input, at most; including what a pool loses to alignment. */
#define PAVO_ZORV_MEMORY_PER_BYTE 36

/** The same with a budget, which adds 8 bytes to each block. */
#define PAVO_ZORV_BUDGET_PER_BYTE 40

/** Bytes of input for each call of the allocator, at least. */
#define PAVO_ZORV_BYTES_PER_REQUEST 2

/** Bytes of stack that `encode_ext` takes, at most. */
#define PAVO_ZORV_STACK_OF_ENCODING 10240

/** Bytes of stack that each of the other operations takes, at most. */
#define PAVO_ZORV_STACK 4096

/** @} */

/** Returns the size of a block with which a pool, aligned or not, can serve the decoding of any input of @p length
 *  bytes; `SIZE_MAX` if there is no such size. */
PAVO_ZORV_NODISCARD PAVO_ZORV_INLINE_FUNCTION size_t pavo_zorv_pool_size_for(size_t length) {
  const size_t lost = PAVO_ZORV_ALIGNMENT - 1;
  return length > (SIZE_MAX - lost) / PAVO_ZORV_MEMORY_PER_BYTE ? SIZE_MAX : length * PAVO_ZORV_MEMORY_PER_BYTE + lost;
}

/** @name Results in words
 *  @{ */

/** Returns the name of a result, for example "CODEC_ERR_TRUNCATED". Never null: for any other number, a text that says
 *  that it is not a result. The text is constant and must not be released. */
PAVO_ZORV_INLINE_FUNCTION const char *pavo_zorv_result_name(int result) {
  switch (result) {
    case CODEC_OK:
      return "CODEC_OK";
    case CODEC_ERR_TRUNCATED:
      return "CODEC_ERR_TRUNCATED";
    case CODEC_ERR_BAD_WIRE_TYPE:
      return "CODEC_ERR_BAD_WIRE_TYPE";
    case CODEC_ERR_WRONG_WIRE_TYPE:
      return "CODEC_ERR_WRONG_WIRE_TYPE";
    case CODEC_ERR_NO_MEMORY:
      return "CODEC_ERR_NO_MEMORY";
    default:
      return "not a result of pavo_zorv";
  }
}

/** Returns what a result means, as a phrase for a log. Never null, constant, as above. */
PAVO_ZORV_INLINE_FUNCTION const char *pavo_zorv_result_text(int result) {
  switch (result) {
    case CODEC_OK:
      return "success";
    case CODEC_ERR_TRUNCATED:
      return "the input ends inside a field, or repeats a field that may occur only once";
    case CODEC_ERR_BAD_WIRE_TYPE:
      return "an unknown field has a wire type that cannot be skipped";
    case CODEC_ERR_WRONG_WIRE_TYPE:
      return "a known field has another wire type than its own";
    case CODEC_ERR_NO_MEMORY:
      return "the allocator is missing or gave no memory";
    default:
      return "not a result of pavo_zorv";
  }
}

/** @} */

/** @name The heap
 *  @{ */

/** Returns a block of @p size bytes from `malloc`, of 1 byte if @p size is 0. */
PAVO_ZORV_NODISCARD PAVO_ZORV_INLINE_FUNCTION void *pavo_zorv_heap_allocate(size_t size, void *context) {
  (void)context;
  return malloc(size != 0 ? size : 1);
}

/** Releases a block with `free`. */
PAVO_ZORV_INLINE_FUNCTION void pavo_zorv_heap_release(void *block, void *context) {
  (void)context;
  free(block);
}

/** @} */

/** @name Pool
 *  Takes memory from one block of the caller's, from its beginning to its end. A release does nothing; a reset frees
 *  the whole block. So no message can leak: if a nested message is repeated, the reset also frees what the first one
 *  owned.
 *  @{ */

/** A pool over a block, initialised by `pavo_zorv_pool_init`. The members are only to be read. */
typedef struct pavo_zorv_pool {
  unsigned char *start; /**< The first aligned byte of the block. */
  size_t size; /**< Bytes from there on. */
  size_t used; /**< Bytes in use, including those lost to alignment. */
} pavo_zorv_pool;

/** Makes a pool over @p block, which stays the caller's and must outlive all that is taken from it. If it is not
 *  aligned, up to `PAVO_ZORV_ALIGNMENT` - 1 bytes at its beginning are lost. A null block counts as one of 0 bytes. */
PAVO_ZORV_INLINE_FUNCTION void pavo_zorv_pool_init(pavo_zorv_pool *pool, void *block, size_t size) {
  const size_t misplaced = PAVO_ZORV_CAST_(size_t, PAVO_ZORV_ADDRESS_(block) & (PAVO_ZORV_ALIGNMENT - 1));
  const size_t lost = misplaced != 0 ? PAVO_ZORV_ALIGNMENT - misplaced : 0;
  const int usable = block != NULL && lost <= size;
  pool->start = usable ? PAVO_ZORV_CAST_(unsigned char *, block) + lost : NULL;
  pool->size = usable ? size - lost : 0;
  pool->used = 0;
}

/** Returns @p size bytes, rounded up to the alignment and at least one unit of it, or null if the rest of the block is
 *  too small. The context is the pool. */
PAVO_ZORV_NODISCARD PAVO_ZORV_INLINE_FUNCTION void *pavo_zorv_pool_allocate(size_t size, void *context) {
  pavo_zorv_pool *pool = PAVO_ZORV_CAST_(pavo_zorv_pool *, context);
  /* The rest may end in part of a unit, which cannot be used. */
  const size_t rest = (pool->size - pool->used) & ~PAVO_ZORV_CAST_(size_t, PAVO_ZORV_ALIGNMENT - 1);
  unsigned char *block;
  if (size == 0) size = 1;
  if (size > rest) return NULL;
  block = pool->start + pool->used;
  pool->used += (size + (PAVO_ZORV_ALIGNMENT - 1)) & ~PAVO_ZORV_CAST_(size_t, PAVO_ZORV_ALIGNMENT - 1);
  return block;
}

/** Does nothing: `pavo_zorv_pool_reset` frees the blocks. A null release callback has the same effect. */
PAVO_ZORV_INLINE_FUNCTION void pavo_zorv_pool_release(void *block, void *context) {
  (void)block;
  (void)context;
}

/** Frees the whole block. Records that own memory of the pool must not be used any more. */
PAVO_ZORV_INLINE_FUNCTION void pavo_zorv_pool_reset(pavo_zorv_pool *pool) { pool->used = 0; }

/** @} */

/** @name Budget
 *  Limits the memory in use at any time: one number for a connection, whatever its peer sends. Each block is charged
 *  with its own size plus 8 bytes, in which the budget keeps that size; releasing the block returns both.
 *  @{ */

/** A budget over other callbacks, initialised by `pavo_zorv_budget_init`. The limit may be changed at any time. */
typedef struct pavo_zorv_budget {
  pavo_zorv_allocate allocate; /**< Where memory comes from; null if there is none. */
  pavo_zorv_release release; /**< Where it goes back to; null if nothing needs to be released. */
  void *context; /**< The context of both. */
  size_t limit; /**< Bytes that may be in use. */
  size_t spent; /**< Bytes in use. */
} pavo_zorv_budget;

/** Makes a budget of @p limit bytes over the callbacks @p allocate and @p release, whose blocks must be aligned for any
 *  record. */
PAVO_ZORV_INLINE_FUNCTION void pavo_zorv_budget_init(
    pavo_zorv_budget *budget, size_t limit, pavo_zorv_allocate allocate, pavo_zorv_release release, void *context) {
  budget->allocate = allocate;
  budget->release = release;
  budget->context = context;
  budget->limit = limit;
  budget->spent = 0;
}

/** Returns a block, or null if the limit would be exceeded or the underlying callback returns none. The context is the
 *  budget. */
PAVO_ZORV_NODISCARD PAVO_ZORV_INLINE_FUNCTION void *pavo_zorv_budget_allocate(size_t size, void *context) {
  pavo_zorv_budget *budget = PAVO_ZORV_CAST_(pavo_zorv_budget *, context);
  const size_t left = budget->spent < budget->limit ? budget->limit - budget->spent : 0;
  pavo_zorv_alignment *block;
  if (budget->allocate == NULL) return NULL;
  if (left < sizeof(pavo_zorv_alignment) || size > left - sizeof(pavo_zorv_alignment)) return NULL;
  size += sizeof(pavo_zorv_alignment);
  block = PAVO_ZORV_CAST_(pavo_zorv_alignment *, budget->allocate(size, budget->context));
  if (block == NULL) return NULL;
  budget->spent += size;
  block->number = size;
  return block + 1;
}

/** Releases a block that this budget returned; null is ignored. */
PAVO_ZORV_INLINE_FUNCTION void pavo_zorv_budget_release(void *block, void *context) {
  pavo_zorv_budget *budget = PAVO_ZORV_CAST_(pavo_zorv_budget *, context);
  pavo_zorv_alignment *whole = PAVO_ZORV_CAST_(pavo_zorv_alignment *, block);
  if (whole == NULL) return;
  whole -= 1;
  budget->spent -= PAVO_ZORV_CAST_(size_t, whole->number);
  if (budget->release != NULL) budget->release(whole, budget->context);
}

/** @} */

/** @name Counter
 *  Counts calls of the callbacks, and refuses chosen requests: for tests of a program's own error handling.
 *  @{ */

/** No request, as the value of `fail_at` and `fail_from`. */
#define PAVO_ZORV_NEVER SIZE_MAX

/** A counter over other callbacks, initialised by `pavo_zorv_counter_init`. All members may be read and set at any
 *  time. */
typedef struct pavo_zorv_counter {
  pavo_zorv_allocate allocate; /**< Where memory comes from; null if there is none. */
  pavo_zorv_release release; /**< Where it goes back to; null if nothing needs to be released. */
  void *context; /**< The context of both. */
  size_t requests; /**< Calls of the allocator, including refused ones. */
  size_t bytes; /**< Bytes returned, in total. */
  size_t live; /**< Blocks in use. */
  size_t fail_at; /**< This request is refused, counted from 0. */
  size_t fail_from; /**< This request and all later ones are refused. */
} pavo_zorv_counter;

/** Makes a counter that refuses nothing. */
PAVO_ZORV_INLINE_FUNCTION void pavo_zorv_counter_init(
    pavo_zorv_counter *counter, pavo_zorv_allocate allocate, pavo_zorv_release release, void *context) {
  counter->allocate = allocate;
  counter->release = release;
  counter->context = context;
  counter->requests = 0;
  counter->bytes = 0;
  counter->live = 0;
  counter->fail_at = PAVO_ZORV_NEVER;
  counter->fail_from = PAVO_ZORV_NEVER;
}

/** Returns a block, or null if this request is to fail or the underlying callback returns none. The context is the
 *  counter. */
PAVO_ZORV_NODISCARD PAVO_ZORV_INLINE_FUNCTION void *pavo_zorv_counter_allocate(size_t size, void *context) {
  pavo_zorv_counter *counter = PAVO_ZORV_CAST_(pavo_zorv_counter *, context);
  const size_t request = counter->requests++;
  void *block;
  if (counter->allocate == NULL || request == counter->fail_at || request >= counter->fail_from) return NULL;
  block = counter->allocate(size, counter->context);
  if (block == NULL) return NULL;
  counter->bytes += size;
  counter->live += 1;
  return block;
}

/** Releases a block that this counter returned. */
PAVO_ZORV_INLINE_FUNCTION void pavo_zorv_counter_release(void *block, void *context) {
  pavo_zorv_counter *counter = PAVO_ZORV_CAST_(pavo_zorv_counter *, context);
  counter->live -= 1;
  if (counter->release != NULL) counter->release(block, counter->context);
}

/** @} */

#ifdef __cplusplus
}
#endif

#endif /* PAVO_ZORV_MEMORY_H */
