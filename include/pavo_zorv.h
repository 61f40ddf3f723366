/** @file
 *  pavo-zorv: the messages of a segment-routing policy component, as plain records in the Protocol Buffers wire format.
 *
 *  Each message type has one record and five functions, `pavo_zorv_<message>_<operation>`: `decode_ext`, `encode_ext`,
 *  `duplicate`, `free_ext` and `compare`. Each operation works the same way for every message, and is described once
 *  below. The header is C11 and C++, and with GCC and clang also C99. Other headers are optional: pavo_zorv_memory.h
 *  with ready-made callbacks, pavo_zorv_framing.h for messages on a stream, pavo_zorv_fields.h with field numbers and
 *  longest encodings, and pavo_zorv.hpp for C++17.
 *
 *  A complete program, which writes a message, reads it back and releases it:
 *  @code{.c}
 *  #include <pavo_zorv.h>
 *  #include <stdlib.h>
 *
 *  static void *take(size_t size, void *context) { (void)context; return malloc(size != 0 ? size : 1); }
 *  static void give(void *block, void *context) { (void)context; free(block); }
 *
 *  int main(void) {
 *    uint32_t labels[] = {16, 24001};
 *    api_lbl_stack stack = {.labels = labels, .label_count = 2, .presence = API_LBL_STACK_HAS_LABELS};
 *    size_t length = pavo_zorv_api_lbl_stack_encode_ext(&stack, NULL, 0, NULL, NULL); // measures: 6
 *    unsigned char *bytes = malloc(length);
 *    if (bytes == NULL) return 1;
 *    pavo_zorv_api_lbl_stack_encode_ext(&stack, bytes, length, NULL, NULL); // 08 10 08 c1 bb 01
 *
 *    api_lbl_stack received;
 *    int result = pavo_zorv_api_lbl_stack_decode_ext(&received, bytes, length, take, NULL);
 *    int same = result == CODEC_OK && pavo_zorv_api_lbl_stack_compare(&stack, &received) == 0;
 *    pavo_zorv_api_lbl_stack_free_ext(&received, give, NULL); // also after a failed decode
 *    free(bytes);
 *    return same ? 0 : 1;
 *  }
 *  @endcode
 *
 *  @section records Records
 *
 *  The members of a record are in the order of the message's fields, naturally aligned. A list has two members, the
 *  array and its element count, and so has a bytes field: the block and its length. The last member, `presence`, has
 *  one bit per field in field order, `<MESSAGE>_HAS_<MEMBER>`; decoding and copying never change the bits that belong
 *  to no field. A nested message is a whole record held inline, with presence bits of its own in addition to its bit in
 *  the containing record.
 *
 *  **Zero a record before you fill it:** `api_msg message = {0};`, `api_msg message{};` in C++, `calloc`, or designated
 *  initialisers, which zero the rest. Presence bits of 0 are not enough, because some operations do not look at them:
 *  `encode_ext` writes a nested record that is not empty even if its bit in the containing record is 0, and `duplicate`
 *  and `free_ext` follow pointers, counts and lengths whatever the bits. A record that is only the output of
 *  `decode_ext` or `duplicate` need not be zeroed: they overwrite it.
 *
 *  | kind | record | wire form |
 *  |---|---|---|
 *  | flag | one byte, 0 or 1 | varint; read as 0 or 1, written as the stored byte, whatever it is |
 *  | unsigned 8-bit, 32-bit, 64-bit | the integer | varint; wider values are cut when read |
 *  | signed 32-bit | the integer | varint of its 32-bit pattern: at most 5 bytes, even if negative |
 *  | signed 64-bit | the integer | varint of its 64-bit pattern: 10 bytes if negative |
 *  | string | pointer to NUL-terminated characters | length-delimited, without the NUL |
 *  | bytes | pointer and 64-bit length | length-delimited |
 *  | list of integers | array and 32-bit count | one varint field per element, never packed |
 *  | list of messages | array of records and 32-bit count | one length-delimited field per element |
 *  | nested message | the record, inline | length-delimited |
 *
 *  Keys, varints and length-delimited values are those of the Protocol Buffers encoding
 *  (https://protobuf.dev/programming-guides/encoding/); fixed-width and packed forms and zigzag are not used.
 *
 *  @section decoding Decoding
 *
 *  `int decode_ext(out, buffer, length, allocate, context[, options])` clears @p out, whatever it held, then reads
 *  fields until @p length bytes are used up. Fields may come in any order. A repeated number or nested message replaces
 *  the earlier one; what an earlier nested message owned is not released, so callers that accept repeated nested
 *  messages should use an allocator that frees in bulk. A repeated string or bytes field fails, and so does a list
 *  whose elements have other fields between them. Keys and lengths are read as 32-bit numbers: higher bits are dropped,
 *  as are the high bits of a value that is wider than its member. Strings are copied with a NUL after them; a NUL
 *  inside a string shortens it for every later use.
 *
 *  Unknown fields are skipped. One of wire type 1, 2 or 5 that runs past the end of the message that it is in ends that
 *  message, nested or not, without an error; a varint or a length that is cut off is `CODEC_ERR_TRUNCATED`; and wire
 *  types 3, 4, 6 and 7 are `CODEC_ERR_BAD_WIRE_TYPE`, because the end of such a field cannot be found.
 *
 *  - **Null:** @p out must not be null. @p buffer may be null if @p length is 0. @p allocate may be null: the first
 *    field that needs memory then fails. @p context is only passed on.
 *  - **Ownership:** the record owns all blocks that @p allocate returned, until `free_ext`. The input stays the
 *    caller's and is not needed afterwards, except in reference mode. What @p out held before is overwritten, not
 *    released.
 *  - **Memory:** at most 36 bytes for each byte of input, in at most one call of @p allocate for each two bytes of
 *    input; an array or a string is asked for once, in its final size. Less than 4 KB of stack. The work is linear in
 *    @p length.
 *  - **Errors:** `CODEC_OK` or the first failure, a `pavo_zorv_result`. In either case the record is defined, holds
 *    what was read so far, and must be passed to `free_ext`. After `CODEC_OK` an absent member is 0 or null. After a
 *    failure inside a nested message, or inside an element of a list, what was read of it is there, but its presence
 *    bit is not set, unless an earlier occurrence of the nested message has set it: `encode_ext` would write that
 *    content of a nested message, and nothing of the list.
 *
 *  @section encoding Encoding
 *
 *  `size_t encode_ext(in, buffer, length, segments, segment_count[, options])` writes the fields in ascending order and
 *  returns the length of the whole encoding, however much of it fitted. If the buffer is too short, it receives what
 *  fits; a string or bytes field that does not fit whole is left out. No byte after the encoding is touched.
 *
 *  Numbers and flags are written if their presence bit is set, whatever their value. Bytes are too, whatever their
 *  pointer and length: if the pointer is null, their place in the buffer is left unchanged. Strings are written if
 *  their bit is set and their pointer is not null; lists if their bit is set and their count is not 0; a nested message
 *  if its bit is set or its encoding is not empty. The lengths of strings, bytes and nested messages are written from
 *  their low 32 bits, so no decoder correctly reads one of 4 GiB or more.
 *
 *  @p segment_count, if not null, holds the capacity of @p segments on entry and receives the number of entries that
 *  the whole encoding needs; entries beyond the capacity are not written. Every message whose encoding is not empty,
 *  nested or outermost, has one entry: its first byte and its length. The entries of a nested message come before those
 *  of the message that contains it. Lengths are those of the whole encoding, however much of it fits into the buffer.
 *  The outermost message starts at @p buffer; the start of a nested message is null if @p buffer is, or if the message
 *  begins at or after the end of the buffer.
 *
 *  - **Null:** @p in must not be null. A null @p buffer measures, whatever @p length. Without @p segment_count the
 *    table is ignored; a null @p segments counts as capacity 0.
 *  - **Ownership:** does not change; the record is only read. The entries of the table point into @p buffer, and in
 *    reference mode to the record's bytes members.
 *  - **Memory:** none is asked for. Less than 10 KB of stack. The work is linear in the length of the encoding.
 *  - **Errors:** none. The length is exact as long as `size_t` can hold it. If `size_t` cannot hold it, as can happen
 *    with bytes without a block or lists that share an array, `SIZE_MAX` is returned, and neither buffer nor table is
 *    touched, but the count is stored. More entries than 2^32 - 1 are counted as 2^32 - 1.
 *
 *  @section referencing Reference mode
 *
 *  Message types with a bytes member, of their own or in a nested message, take an options word as the last argument of
 *  `decode_ext`, `encode_ext` and `free_ext`, and so do a few others; bit 0 is `PAVO_ZORV_REFERENCE`, the other bits
 *  mean nothing. In reference mode bytes members are not copied:
 *  - `decode_ext` makes them point into @p buffer, which must outlive the record, and needs no memory for them;
 *  - `encode_ext` writes key and length but not the bytes, and does not count them. With a segment count, and a length
 *    that is not 0, several entries replace the message's own: the message up to and including the length; the
 *    referenced bytes; and what the message writes after them, if anything, as the last of its entries. The `start` of
 *    that last piece is computed as a number: the message's own start, even if null, plus the number of bytes that the
 *    message has written up to there. The length prefix of a containing message leaves referenced bytes out;
 *  - `free_ext` does not release them. Pass it the options that `decode_ext` had.
 *
 *  @section copying Copying
 *
 *  `int duplicate(destination, source, allocate, context)` overwrites @p destination with a copy that owns all its
 *  memory, even for bytes members that @p source only referenced. It goes by pointers, counts and lengths, not by
 *  presence bits. A null array counts as empty, whatever its count; null bytes with a length do not.
 *
 *  - **Null:** neither record may be null, and they must be different. @p allocate may be null: it counts as one that
 *    returns no memory.
 *  - **Ownership:** as after decoding. What @p destination held before is overwritten, not released.
 *  - **Memory:** the sizes of what the source leads to, in one call of @p allocate for each string, and for each block
 *    and array that is not empty. Less than 4 KB of stack.
 *  - **Errors:** `CODEC_OK` or `CODEC_ERR_NO_MEMORY`. A member for which there is no memory is left empty with its
 *    presence bit clear, and the copying continues: the record is complete except for such members, and must be passed
 *    to `free_ext`.
 *
 *  @section releasing Releasing
 *
 *  `void free_ext(record, release, context[, options])` releases in field order what the record owns, whatever its
 *  presence bits, but not the record itself, and sets each released pointer to null. The counts of lists of messages
 *  that are released become 0; other counts, lengths and the presence bits stay, so zero a record before you fill it
 *  again.
 *
 *  - **Null:** @p record must not be null. A null @p release releases nothing but still clears the pointers, for
 *    allocators that free in bulk. @p release is never called with null.
 *  - **Ownership:** every block goes back to @p release, which must match the allocator. A second call does nothing.
 *  - **Memory:** none is asked for. Less than 4 KB of stack.
 *  - **Errors:** none.
 *
 *  @section comparing Comparing
 *
 *  `int compare(a, b)` compares field by field: a present member is greater than an absent one, then the values decide,
 *  lists element by element and then by count. Flags are compared as the stored bytes, unsigned: 2 is greater than 1,
 *  although both mean true. Nested messages are compared only if their bits in both containing records are set. For
 *  strings or bytes that differ, the result is what `strcmp` or `memcmp` return; otherwise it is 1 or -1.
 *
 *  - **Null:** neither record may be null; they may be the same. A string whose presence bit is set in both records
 *    must not be null.
 *  - **Ownership:** does not change.
 *  - **Memory:** none is asked for. Less than 4 KB of stack.
 *  - **Errors:** none. Returns 0 if the records are equal, otherwise a number of which only the sign has a meaning.
 *
 *  @section misuse What a caller must not do
 *
 *  The input of `decode_ext` may hold anything. It should not change during the call: if another thread or process
 *  changes bytes meanwhile, it is unspecified what is read of them, an error as likely as wrong values, though the
 *  bounds of the input and of every block are still kept. Copy the input out of shared memory first.
 *
 *  Everything else is trusted: none of the following is checked, and the behaviour is undefined.
 *  - **A record with uninitialised members,** because it was neither zeroed nor the output of `decode_ext` or
 *    `duplicate`: see @ref records.
 *  - **Memory that overlaps.** The output buffer, the table and the count must not overlap each other, nor the record
 *    and what it leads to; a record that is written must not overlap the input, or the record that is copied. A record
 *    that was decoded in reference mode must not be encoded into the buffer that it was read from: this works while
 *    messages are small, and corrupts larger ones.
 *  - **Null with a count, a length or a presence bit.** An array that is null with a count, in `encode_ext` and
 *    `compare`; bytes that are null with a length, in `duplicate` and `compare`, although `encode_ext` accepts them; a
 *    string that is null with its presence bit set in both records, in `compare`; an input that is null with a length.
 *  - **Callbacks that throw, leave by `longjmp`, or read or change the records that the call works on.** A copy that is
 *    abandoned halfway still holds pointers of its source.
 *  - **Releasing what the allocator did not return:** literals, arrays on the stack, or blocks that were already
 *    released with a copy of the record that was made by assignment; or the input, by `free_ext` without the options
 *    that `decode_ext` had.
 *
 *  @section threads Threads
 *
 *  The library keeps no state. Calls on different records may run at the same time; a record must not be changed while
 *  another thread uses it, and may be read by any number of threads. Callbacks run on the caller's thread, during the
 *  call.
 */
#ifndef PAVO_ZORV_H
#define PAVO_ZORV_H

#include <stddef.h>
#include <stdint.h>

/** @name Version
 *  The version of this header. UPGRADING.md says what it promises. The library exports no version: a program that was
 *  linked with one runs with every later one of the same `PAVO_ZORV_ABI`, which is the number in `libpavo_zorv.so.1`.
 *  @{ */

#define PAVO_ZORV_VERSION_MAJOR 1 /**< Changes when something that is promised changes. */
#define PAVO_ZORV_VERSION_MINOR 0 /**< Changes when something is added. */
#define PAVO_ZORV_VERSION_PATCH 0 /**< Changes when something is corrected. */
#define PAVO_ZORV_VERSION "1.0.0" /**< The three as text. */

/** The number of the binary interface, and of the shared library's SONAME. */
#define PAVO_ZORV_ABI 1

/** Whether this header is of a version or a later one, also in `#if`. */
#define PAVO_ZORV_VERSION_AT_LEAST(major, minor, patch)                                                               \
  (PAVO_ZORV_VERSION_MAJOR > (major) || (PAVO_ZORV_VERSION_MAJOR == (major) &&                                        \
                                         (PAVO_ZORV_VERSION_MINOR > (minor) || (PAVO_ZORV_VERSION_MINOR == (minor) && \
                                                                                PAVO_ZORV_VERSION_PATCH >= (patch)))))

/** @} */

/** What the library exports. */
#if defined(__GNUC__)
#define PAVO_ZORV_API __attribute__((visibility("default")))
#else
#define PAVO_ZORV_API
#endif

/** Compilers warn if the result of such a function is ignored; a cast to void ignores it on purpose. Before C++17 and
 *  C23, GCC takes the same attribute as an extension: its own, `warn_unused_result`, would warn about the cast too. */
#if (defined(__cplusplus) && __cplusplus >= 201703L) || (defined(__STDC_VERSION__) && __STDC_VERSION__ > 201710L)
#define PAVO_ZORV_NODISCARD [[nodiscard]]
#elif defined(__clang__)
#define PAVO_ZORV_NODISCARD __attribute__((warn_unused_result))
#elif defined(__GNUC__) && __GNUC__ >= 10
#define PAVO_ZORV_NODISCARD __extension__ [[nodiscard]]
#else
#define PAVO_ZORV_NODISCARD
#endif

/** How the functions of the optional headers are declared: C needs a copy in each source, C++ one in the program. */
#ifdef __cplusplus
#define PAVO_ZORV_INLINE_FUNCTION inline
/** @cond */
#define PAVO_ZORV_CAST_(type, value) static_cast<type>(value)
/** @endcond */
#else
#define PAVO_ZORV_INLINE_FUNCTION static inline
#define PAVO_ZORV_CAST_(type, value) ((type)(value))
#endif

/** Marks a function that never throws, in C++. */
#ifdef __cplusplus
#define PAVO_ZORV_NOEXCEPT noexcept
#else
#define PAVO_ZORV_NOEXCEPT
#endif

#ifdef __cplusplus
extern "C" {
#endif

/** What `decode_ext` and `duplicate` return. */
enum pavo_zorv_result {
  CODEC_OK = 0, /**< Success. */
  CODEC_ERR_TRUNCATED = -1, /**< The input ends inside a key, length or value, or repeats a field that may occur only
                                 once. */
  CODEC_ERR_BAD_WIRE_TYPE = -2, /**< An unknown field has wire type 3, 4, 6 or 7. */
  CODEC_ERR_WRONG_WIRE_TYPE = -3, /**< A known field has another wire type than its own. */
  CODEC_ERR_NO_MEMORY = -4 /**< Memory is needed, and the allocator is null, returned null, or cannot be asked for that
                                much. */
};

/** Bits of the options word. */
enum pavo_zorv_options {
  PAVO_ZORV_REFERENCE = 1 << 0 /**< Bytes members are referenced, not copied: see @ref referencing. */
};

/** Returns a block of @p size bytes, aligned for any record, or null if there is no memory. If @p size is 0, it must
 *  return a block too, not null. The context is the caller's own. */
typedef void *(*pavo_zorv_allocate)(size_t size, void *context);

/** Releases a block that the matching allocator returned. */
typedef void (*pavo_zorv_release)(void *block, void *context);

/** One entry of the segment table: see @ref encoding. */
typedef struct pavo_zorv_segment {
  const unsigned char *start; /**< First byte, or null if there is no buffer for it; see also @ref referencing. */
  uint64_t length; /**< Bytes, however many of them fit into the buffer. */
} pavo_zorv_segment;

/** @name Addresses and label stacks
 *  @{ */

/** Presence bits of `api_addr`, for its member `presence`. */
enum api_addr_presence {
  API_ADDR_HAS_ADDRESS = 1 << 0
};

/** One address.
 *  Owns no memory: decoding and copying never call the allocator. */
typedef struct api_addr {
  uint32_t address; /**< The address as a number. Field 1, unsigned 32-bit. Presence: `API_ADDR_HAS_ADDRESS`. */
  uint8_t presence; /**< One bit per field: see `enum api_addr_presence`. */
} api_addr;

/** Presence bits of `api_lbl_stack`, for its member `presence`. */
enum api_lbl_stack_presence {
  API_LBL_STACK_HAS_LABELS = 1 << 0
};

/** An ordered stack of labels.
 *  The record owns what its pointers lead to; `pavo_zorv_api_lbl_stack_free_ext` releases it. */
typedef struct api_lbl_stack {
  uint32_t *labels; /**< The labels, in stack order. Field 1, list of unsigned 32-bit integers: owned array.
      Presence: `API_LBL_STACK_HAS_LABELS`. */
  uint32_t label_count; /**< Elements at `labels`. */
  uint8_t presence; /**< One bit per field: see `enum api_lbl_stack_presence`. */
} api_lbl_stack;

/** Decodes an `api_addr` from @p buffer: see @ref decoding. Never calls @p allocate. */
PAVO_ZORV_NODISCARD PAVO_ZORV_API int pavo_zorv_api_addr_decode_ext(
    api_addr *out, const unsigned char *buffer, size_t length, pavo_zorv_allocate allocate,
    void *context) PAVO_ZORV_NOEXCEPT;

/** Encodes an `api_addr` into @p buffer, or measures it: see @ref encoding. */
PAVO_ZORV_API size_t pavo_zorv_api_addr_encode_ext(
    const api_addr *in, unsigned char *buffer, size_t length, pavo_zorv_segment *segments,
    uint32_t *segment_count) PAVO_ZORV_NOEXCEPT;

/** Copies an `api_addr` with all that it owns: see @ref copying. Always `CODEC_OK`. */
PAVO_ZORV_NODISCARD PAVO_ZORV_API int pavo_zorv_api_addr_duplicate(
    api_addr *destination, const api_addr *source, pavo_zorv_allocate allocate, void *context) PAVO_ZORV_NOEXCEPT;

/** Releases what an `api_addr` owns: see @ref releasing. Does nothing: it owns nothing. */
PAVO_ZORV_API void pavo_zorv_api_addr_free_ext(api_addr *record, pavo_zorv_release release, void *context)
    PAVO_ZORV_NOEXCEPT;

/** Orders two `api_addr` records: see @ref comparing. */
PAVO_ZORV_API int pavo_zorv_api_addr_compare(const api_addr *a, const api_addr *b) PAVO_ZORV_NOEXCEPT;

/** Decodes an `api_lbl_stack` from @p buffer: see @ref decoding. */
PAVO_ZORV_NODISCARD PAVO_ZORV_API int pavo_zorv_api_lbl_stack_decode_ext(
    api_lbl_stack *out, const unsigned char *buffer, size_t length, pavo_zorv_allocate allocate,
    void *context) PAVO_ZORV_NOEXCEPT;

/** Encodes an `api_lbl_stack` into @p buffer, or measures it: see @ref encoding. */
PAVO_ZORV_API size_t pavo_zorv_api_lbl_stack_encode_ext(
    const api_lbl_stack *in, unsigned char *buffer, size_t length, pavo_zorv_segment *segments,
    uint32_t *segment_count) PAVO_ZORV_NOEXCEPT;

/** Copies an `api_lbl_stack` with all that it owns: see @ref copying. */
PAVO_ZORV_NODISCARD PAVO_ZORV_API int pavo_zorv_api_lbl_stack_duplicate(
    api_lbl_stack *destination, const api_lbl_stack *source, pavo_zorv_allocate allocate,
    void *context) PAVO_ZORV_NOEXCEPT;

/** Releases what an `api_lbl_stack` owns: see @ref releasing. */
PAVO_ZORV_API void pavo_zorv_api_lbl_stack_free_ext(api_lbl_stack *record, pavo_zorv_release release, void *context)
    PAVO_ZORV_NOEXCEPT;

/** Orders two `api_lbl_stack` records: see @ref comparing. */
PAVO_ZORV_API int pavo_zorv_api_lbl_stack_compare(const api_lbl_stack *a, const api_lbl_stack *b) PAVO_ZORV_NOEXCEPT;

/** @} */

/** @name Segment-identifier descriptions
 *  @{ */

/** Presence bits of `prefix_sid_type`, for its member `presence`. */
enum prefix_sid_type_presence {
  PREFIX_SID_TYPE_HAS_FIELD1 = 1 << 0,
  PREFIX_SID_TYPE_HAS_FIELD2 = 1 << 1
};

/** A segment identifier: a number and a list of small numbers.
 *  The record owns what its pointers lead to; `pavo_zorv_prefix_sid_type_free_ext` releases it. */
typedef struct prefix_sid_type {
  uint32_t field1; /**< Field 1, unsigned 32-bit. Presence: `PREFIX_SID_TYPE_HAS_FIELD1`. */
  uint8_t *field2; /**< Field 2, list of unsigned 8-bit integers: owned array.
      Presence: `PREFIX_SID_TYPE_HAS_FIELD2`. */
  uint32_t field2_count; /**< Elements at `field2`. */
  uint8_t presence; /**< One bit per field: see `enum prefix_sid_type_presence`. */
} prefix_sid_type;

/** Presence bits of `policy_binding_sid_t`, for its member `presence`. */
enum policy_binding_sid_t_presence {
  POLICY_BINDING_SID_T_HAS_SID = 1 << 0,
  POLICY_BINDING_SID_T_HAS_FIELD2 = 1 << 1
};

/** A policy's binding segment identifier.
 *  The record owns what its pointers lead to; `pavo_zorv_policy_binding_sid_t_free_ext` releases it. */
typedef struct policy_binding_sid_t {
  struct prefix_sid_type sid; /**< The segment identifier. Field 1, nested `prefix_sid_type`, with presence bits of its
      own. Presence: `POLICY_BINDING_SID_T_HAS_SID`. */
  uint32_t field2; /**< Field 2, unsigned 32-bit. Presence: `POLICY_BINDING_SID_T_HAS_FIELD2`. */
  uint8_t presence; /**< One bit per field: see `enum policy_binding_sid_t_presence`. */
} policy_binding_sid_t;

/** Decodes a `prefix_sid_type` from @p buffer: see @ref decoding. */
PAVO_ZORV_NODISCARD PAVO_ZORV_API int pavo_zorv_prefix_sid_type_decode_ext(
    prefix_sid_type *out, const unsigned char *buffer, size_t length, pavo_zorv_allocate allocate,
    void *context) PAVO_ZORV_NOEXCEPT;

/** Encodes a `prefix_sid_type` into @p buffer, or measures it: see @ref encoding. */
PAVO_ZORV_API size_t pavo_zorv_prefix_sid_type_encode_ext(
    const prefix_sid_type *in, unsigned char *buffer, size_t length, pavo_zorv_segment *segments,
    uint32_t *segment_count) PAVO_ZORV_NOEXCEPT;

/** Copies a `prefix_sid_type` with all that it owns: see @ref copying. */
PAVO_ZORV_NODISCARD PAVO_ZORV_API int pavo_zorv_prefix_sid_type_duplicate(
    prefix_sid_type *destination, const prefix_sid_type *source, pavo_zorv_allocate allocate,
    void *context) PAVO_ZORV_NOEXCEPT;

/** Releases what a `prefix_sid_type` owns: see @ref releasing. */
PAVO_ZORV_API void pavo_zorv_prefix_sid_type_free_ext(prefix_sid_type *record, pavo_zorv_release release, void *context)
    PAVO_ZORV_NOEXCEPT;

/** Orders two `prefix_sid_type` records: see @ref comparing. */
PAVO_ZORV_API int pavo_zorv_prefix_sid_type_compare(const prefix_sid_type *a, const prefix_sid_type *b)
    PAVO_ZORV_NOEXCEPT;

/** Decodes a `policy_binding_sid_t` from @p buffer: see @ref decoding. */
PAVO_ZORV_NODISCARD PAVO_ZORV_API int pavo_zorv_policy_binding_sid_t_decode_ext(
    policy_binding_sid_t *out, const unsigned char *buffer, size_t length, pavo_zorv_allocate allocate,
    void *context) PAVO_ZORV_NOEXCEPT;

/** Encodes a `policy_binding_sid_t` into @p buffer, or measures it: see @ref encoding. */
PAVO_ZORV_API size_t pavo_zorv_policy_binding_sid_t_encode_ext(
    const policy_binding_sid_t *in, unsigned char *buffer, size_t length, pavo_zorv_segment *segments,
    uint32_t *segment_count) PAVO_ZORV_NOEXCEPT;

/** Copies a `policy_binding_sid_t` with all that it owns: see @ref copying. */
PAVO_ZORV_NODISCARD PAVO_ZORV_API int pavo_zorv_policy_binding_sid_t_duplicate(
    policy_binding_sid_t *destination, const policy_binding_sid_t *source, pavo_zorv_allocate allocate,
    void *context) PAVO_ZORV_NOEXCEPT;

/** Releases what a `policy_binding_sid_t` owns: see @ref releasing. */
PAVO_ZORV_API void pavo_zorv_policy_binding_sid_t_free_ext(
    policy_binding_sid_t *record, pavo_zorv_release release, void *context) PAVO_ZORV_NOEXCEPT;

/** Orders two `policy_binding_sid_t` records: see @ref comparing. */
PAVO_ZORV_API int pavo_zorv_policy_binding_sid_t_compare(const policy_binding_sid_t *a, const policy_binding_sid_t *b)
    PAVO_ZORV_NOEXCEPT;

/** @} */

/** @name Explicit-path hops and paths
 *  @{ */

/** Presence bits of `api_exp_hop`, for its member `presence`. */
enum api_exp_hop_presence {
  API_EXP_HOP_HAS_FIELD1 = 1 << 0,
  API_EXP_HOP_HAS_FIELD2 = 1 << 1,
  API_EXP_HOP_HAS_FIELD3 = 1 << 2,
  API_EXP_HOP_HAS_FIELD4 = 1 << 3,
  API_EXP_HOP_HAS_FIELD5 = 1 << 4,
  API_EXP_HOP_HAS_FIELD6 = 1 << 5
};

/** One hop of an explicit path.
 *  The record owns what its pointers lead to; `pavo_zorv_api_exp_hop_free_ext` releases it. */
typedef struct api_exp_hop {
  uint32_t field1; /**< Field 1, unsigned 32-bit. Presence: `API_EXP_HOP_HAS_FIELD1`. */
  uint32_t field2; /**< Field 2, unsigned 32-bit. Presence: `API_EXP_HOP_HAS_FIELD2`. */
  uint32_t field3; /**< Field 3, unsigned 32-bit. Presence: `API_EXP_HOP_HAS_FIELD3`. */
  uint32_t field4; /**< Field 4, unsigned 32-bit. Presence: `API_EXP_HOP_HAS_FIELD4`. */
  uint8_t *field5; /**< Field 5, list of unsigned 8-bit integers: owned array. Presence: `API_EXP_HOP_HAS_FIELD5`. */
  uint32_t field5_count; /**< Elements at `field5`. */
  uint8_t *field6; /**< Field 6, list of unsigned 8-bit integers: owned array. Presence: `API_EXP_HOP_HAS_FIELD6`. */
  uint32_t field6_count; /**< Elements at `field6`. */
  uint8_t presence; /**< One bit per field: see `enum api_exp_hop_presence`. */
} api_exp_hop;

/** Presence bits of `api_exp_path`, for its member `presence`. */
enum api_exp_path_presence {
  API_EXP_PATH_HAS_HOPS = 1 << 0,
  API_EXP_PATH_HAS_FIELD2 = 1 << 1
};

/** An explicit path: its hops in order, and a number.
 *  The record owns what its pointers lead to; `pavo_zorv_api_exp_path_free_ext` releases it. */
typedef struct api_exp_path {
  api_exp_hop *hops; /**< The hops, in path order. Field 1, list of `api_exp_hop`: owned array of records.
      Presence: `API_EXP_PATH_HAS_HOPS`. */
  uint32_t hop_count; /**< Elements at `hops`. */
  uint32_t field2; /**< Field 2, unsigned 32-bit. Presence: `API_EXP_PATH_HAS_FIELD2`. */
  uint8_t presence; /**< One bit per field: see `enum api_exp_path_presence`. */
} api_exp_path;

/** Decodes an `api_exp_hop` from @p buffer: see @ref decoding. */
PAVO_ZORV_NODISCARD PAVO_ZORV_API int pavo_zorv_api_exp_hop_decode_ext(
    api_exp_hop *out, const unsigned char *buffer, size_t length, pavo_zorv_allocate allocate,
    void *context) PAVO_ZORV_NOEXCEPT;

/** Encodes an `api_exp_hop` into @p buffer, or measures it: see @ref encoding. */
PAVO_ZORV_API size_t pavo_zorv_api_exp_hop_encode_ext(
    const api_exp_hop *in, unsigned char *buffer, size_t length, pavo_zorv_segment *segments,
    uint32_t *segment_count) PAVO_ZORV_NOEXCEPT;

/** Copies an `api_exp_hop` with all that it owns: see @ref copying. */
PAVO_ZORV_NODISCARD PAVO_ZORV_API int pavo_zorv_api_exp_hop_duplicate(
    api_exp_hop *destination, const api_exp_hop *source, pavo_zorv_allocate allocate, void *context) PAVO_ZORV_NOEXCEPT;

/** Releases what an `api_exp_hop` owns: see @ref releasing. */
PAVO_ZORV_API void pavo_zorv_api_exp_hop_free_ext(api_exp_hop *record, pavo_zorv_release release, void *context)
    PAVO_ZORV_NOEXCEPT;

/** Orders two `api_exp_hop` records: see @ref comparing. */
PAVO_ZORV_API int pavo_zorv_api_exp_hop_compare(const api_exp_hop *a, const api_exp_hop *b) PAVO_ZORV_NOEXCEPT;

/** Decodes an `api_exp_path` from @p buffer: see @ref decoding. */
PAVO_ZORV_NODISCARD PAVO_ZORV_API int pavo_zorv_api_exp_path_decode_ext(
    api_exp_path *out, const unsigned char *buffer, size_t length, pavo_zorv_allocate allocate,
    void *context) PAVO_ZORV_NOEXCEPT;

/** Encodes an `api_exp_path` into @p buffer, or measures it: see @ref encoding. */
PAVO_ZORV_API size_t pavo_zorv_api_exp_path_encode_ext(
    const api_exp_path *in, unsigned char *buffer, size_t length, pavo_zorv_segment *segments,
    uint32_t *segment_count) PAVO_ZORV_NOEXCEPT;

/** Copies an `api_exp_path` with all that it owns: see @ref copying. */
PAVO_ZORV_NODISCARD PAVO_ZORV_API int pavo_zorv_api_exp_path_duplicate(
    api_exp_path *destination, const api_exp_path *source, pavo_zorv_allocate allocate,
    void *context) PAVO_ZORV_NOEXCEPT;

/** Releases what an `api_exp_path` owns: see @ref releasing. */
PAVO_ZORV_API void pavo_zorv_api_exp_path_free_ext(api_exp_path *record, pavo_zorv_release release, void *context)
    PAVO_ZORV_NOEXCEPT;

/** Orders two `api_exp_path` records: see @ref comparing. */
PAVO_ZORV_API int pavo_zorv_api_exp_path_compare(const api_exp_path *a, const api_exp_path *b) PAVO_ZORV_NOEXCEPT;

/** @} */

/** @name Messages about the service itself, and the on-demand colour
 *  @{ */

/** Presence bits of `api_msg_service`, for its member `presence`. */
enum api_msg_service_presence {
  API_MSG_SERVICE_HAS_FIELD1 = 1 << 0,
  API_MSG_SERVICE_HAS_FIELD2 = 1 << 1,
  API_MSG_SERVICE_HAS_FIELD3 = 1 << 2
};

/** Three yes/no values about the service.
 *  Owns no memory: decoding and copying never call the allocator. */
typedef struct api_msg_service {
  uint8_t field1; /**< Field 1, flag. Presence: `API_MSG_SERVICE_HAS_FIELD1`. */
  uint8_t field2; /**< Field 2, flag. Presence: `API_MSG_SERVICE_HAS_FIELD2`. */
  uint8_t field3; /**< Field 3, flag. Presence: `API_MSG_SERVICE_HAS_FIELD3`. */
  uint8_t presence; /**< One bit per field: see `enum api_msg_service_presence`. */
} api_msg_service;

/** Presence bits of `api_msg_internal`, for its member `presence`. */
enum api_msg_internal_presence {
  API_MSG_INTERNAL_HAS_FIELD1 = 1 << 0,
  API_MSG_INTERNAL_HAS_FIELD2 = 1 << 1,
  API_MSG_INTERNAL_HAS_FIELD3 = 1 << 2,
  API_MSG_INTERNAL_HAS_FIELD4 = 1 << 3,
  API_MSG_INTERNAL_HAS_SERVICE = 1 << 4,
  API_MSG_INTERNAL_HAS_FIELD6 = 1 << 5,
  API_MSG_INTERNAL_HAS_FIELD7 = 1 << 6
};

/** An internal message of the service.
 *  The record owns what its pointers lead to; `pavo_zorv_api_msg_internal_free_ext` releases it. */
typedef struct api_msg_internal {
  uint8_t field1; /**< Field 1, flag. Presence: `API_MSG_INTERNAL_HAS_FIELD1`. */
  char *field2; /**< Field 2, string: NUL-terminated, owned. Presence: `API_MSG_INTERNAL_HAS_FIELD2`. */
  uint64_t field3; /**< Field 3, unsigned 64-bit. Presence: `API_MSG_INTERNAL_HAS_FIELD3`. */
  uint32_t field4; /**< Field 4, unsigned 32-bit. Presence: `API_MSG_INTERNAL_HAS_FIELD4`. */
  struct api_msg_service service; /**< The service's values. Field 5, nested `api_msg_service`, with presence bits of
      its own. Presence: `API_MSG_INTERNAL_HAS_SERVICE`. */
  uint32_t field6; /**< Field 6, unsigned 32-bit. Presence: `API_MSG_INTERNAL_HAS_FIELD6`. */
  uint8_t field7; /**< Field 7, flag. Presence: `API_MSG_INTERNAL_HAS_FIELD7`. */
  uint8_t presence; /**< One bit per field: see `enum api_msg_internal_presence`. */
} api_msg_internal;

/** Presence bits of `api_msg_on_demand_color_notif`, for its member `presence`. */
enum api_msg_on_demand_color_notif_presence {
  API_MSG_ON_DEMAND_COLOR_NOTIF_HAS_COLOR = 1 << 0
};

/** The notification of an on-demand colour.
 *  Owns no memory: decoding and copying never call the allocator. */
typedef struct api_msg_on_demand_color_notif {
  uint32_t color; /**< The colour. Field 1, unsigned 32-bit. Presence: `API_MSG_ON_DEMAND_COLOR_NOTIF_HAS_COLOR`. */
  uint8_t presence; /**< One bit per field: see `enum api_msg_on_demand_color_notif_presence`. */
} api_msg_on_demand_color_notif;

/** Decodes an `api_msg_service` from @p buffer: see @ref decoding. Never calls @p allocate. */
PAVO_ZORV_NODISCARD PAVO_ZORV_API int pavo_zorv_api_msg_service_decode_ext(
    api_msg_service *out, const unsigned char *buffer, size_t length, pavo_zorv_allocate allocate,
    void *context) PAVO_ZORV_NOEXCEPT;

/** Encodes an `api_msg_service` into @p buffer, or measures it: see @ref encoding. */
PAVO_ZORV_API size_t pavo_zorv_api_msg_service_encode_ext(
    const api_msg_service *in, unsigned char *buffer, size_t length, pavo_zorv_segment *segments,
    uint32_t *segment_count) PAVO_ZORV_NOEXCEPT;

/** Copies an `api_msg_service` with all that it owns: see @ref copying. Always `CODEC_OK`. */
PAVO_ZORV_NODISCARD PAVO_ZORV_API int pavo_zorv_api_msg_service_duplicate(
    api_msg_service *destination, const api_msg_service *source, pavo_zorv_allocate allocate,
    void *context) PAVO_ZORV_NOEXCEPT;

/** Releases what an `api_msg_service` owns: see @ref releasing. Does nothing: it owns nothing. */
PAVO_ZORV_API void pavo_zorv_api_msg_service_free_ext(api_msg_service *record, pavo_zorv_release release, void *context)
    PAVO_ZORV_NOEXCEPT;

/** Orders two `api_msg_service` records: see @ref comparing. */
PAVO_ZORV_API int pavo_zorv_api_msg_service_compare(const api_msg_service *a, const api_msg_service *b)
    PAVO_ZORV_NOEXCEPT;

/** Decodes an `api_msg_internal` from @p buffer: see @ref decoding. */
PAVO_ZORV_NODISCARD PAVO_ZORV_API int pavo_zorv_api_msg_internal_decode_ext(
    api_msg_internal *out, const unsigned char *buffer, size_t length, pavo_zorv_allocate allocate,
    void *context) PAVO_ZORV_NOEXCEPT;

/** Encodes an `api_msg_internal` into @p buffer, or measures it: see @ref encoding. */
PAVO_ZORV_API size_t pavo_zorv_api_msg_internal_encode_ext(
    const api_msg_internal *in, unsigned char *buffer, size_t length, pavo_zorv_segment *segments,
    uint32_t *segment_count) PAVO_ZORV_NOEXCEPT;

/** Copies an `api_msg_internal` with all that it owns: see @ref copying. */
PAVO_ZORV_NODISCARD PAVO_ZORV_API int pavo_zorv_api_msg_internal_duplicate(
    api_msg_internal *destination, const api_msg_internal *source, pavo_zorv_allocate allocate,
    void *context) PAVO_ZORV_NOEXCEPT;

/** Releases what an `api_msg_internal` owns: see @ref releasing. */
PAVO_ZORV_API void pavo_zorv_api_msg_internal_free_ext(
    api_msg_internal *record, pavo_zorv_release release, void *context) PAVO_ZORV_NOEXCEPT;

/** Orders two `api_msg_internal` records: see @ref comparing. */
PAVO_ZORV_API int pavo_zorv_api_msg_internal_compare(const api_msg_internal *a, const api_msg_internal *b)
    PAVO_ZORV_NOEXCEPT;

/** Decodes an `api_msg_on_demand_color_notif` from @p buffer: see @ref decoding. Never calls @p allocate. */
PAVO_ZORV_NODISCARD PAVO_ZORV_API int pavo_zorv_api_msg_on_demand_color_notif_decode_ext(
    api_msg_on_demand_color_notif *out, const unsigned char *buffer, size_t length, pavo_zorv_allocate allocate,
    void *context) PAVO_ZORV_NOEXCEPT;

/** Encodes an `api_msg_on_demand_color_notif` into @p buffer, or measures it: see @ref encoding. */
PAVO_ZORV_API size_t pavo_zorv_api_msg_on_demand_color_notif_encode_ext(
    const api_msg_on_demand_color_notif *in, unsigned char *buffer, size_t length, pavo_zorv_segment *segments,
    uint32_t *segment_count) PAVO_ZORV_NOEXCEPT;

/** Copies an `api_msg_on_demand_color_notif` with all that it owns: see @ref copying. Always `CODEC_OK`. */
PAVO_ZORV_NODISCARD PAVO_ZORV_API int pavo_zorv_api_msg_on_demand_color_notif_duplicate(
    api_msg_on_demand_color_notif *destination, const api_msg_on_demand_color_notif *source,
    pavo_zorv_allocate allocate, void *context) PAVO_ZORV_NOEXCEPT;

/** Releases what an `api_msg_on_demand_color_notif` owns: see @ref releasing. Does nothing: it owns nothing. */
PAVO_ZORV_API void pavo_zorv_api_msg_on_demand_color_notif_free_ext(
    api_msg_on_demand_color_notif *record, pavo_zorv_release release, void *context) PAVO_ZORV_NOEXCEPT;

/** Orders two `api_msg_on_demand_color_notif` records: see @ref comparing. */
PAVO_ZORV_API int pavo_zorv_api_msg_on_demand_color_notif_compare(
    const api_msg_on_demand_color_notif *a, const api_msg_on_demand_color_notif *b) PAVO_ZORV_NOEXCEPT;

/** @} */

/** @name An automatically created point-to-point policy
 *  @{ */

/** Presence bits of `api_msg_p2p_auto_policy`, for its member `presence`. */
enum api_msg_p2p_auto_policy_presence {
  API_MSG_P2P_AUTO_POLICY_HAS_FIELD1 = 1 << 0,
  API_MSG_P2P_AUTO_POLICY_HAS_FIELD2 = 1 << 1,
  API_MSG_P2P_AUTO_POLICY_HAS_FIELD3 = 1 << 2,
  API_MSG_P2P_AUTO_POLICY_HAS_FIELD4 = 1 << 3,
  API_MSG_P2P_AUTO_POLICY_HAS_FIELD5 = 1 << 4,
  API_MSG_P2P_AUTO_POLICY_HAS_FIELD6 = 1 << 5,
  API_MSG_P2P_AUTO_POLICY_HAS_LABEL_STACK = 1 << 6,
  API_MSG_P2P_AUTO_POLICY_HAS_FIELD8 = 1 << 7,
  API_MSG_P2P_AUTO_POLICY_HAS_FIELD9 = 1 << 8,
  API_MSG_P2P_AUTO_POLICY_HAS_FIELD10 = 1 << 9,
  API_MSG_P2P_AUTO_POLICY_HAS_FIELD11 = 1 << 10,
  API_MSG_P2P_AUTO_POLICY_HAS_FIELD12 = 1 << 11,
  API_MSG_P2P_AUTO_POLICY_HAS_FIELD13 = 1 << 12,
  API_MSG_P2P_AUTO_POLICY_HAS_EXP_PATHS = 1 << 13,
  API_MSG_P2P_AUTO_POLICY_HAS_FIELD15 = 1 << 14,
  API_MSG_P2P_AUTO_POLICY_HAS_FIELD16 = 1 << 15,
  API_MSG_P2P_AUTO_POLICY_HAS_FIELD17 = 1 << 16,
  API_MSG_P2P_AUTO_POLICY_HAS_FIELD18 = 1 << 17,
  API_MSG_P2P_AUTO_POLICY_HAS_FIELD19 = 1 << 18,
  API_MSG_P2P_AUTO_POLICY_HAS_FIELD20 = 1 << 19,
  API_MSG_P2P_AUTO_POLICY_HAS_PREFIX_SID = 1 << 20,
  API_MSG_P2P_AUTO_POLICY_HAS_FIELD22 = 1 << 21
};

/** An automatically created point-to-point policy.
 *  The record owns what its pointers lead to; `pavo_zorv_api_msg_p2p_auto_policy_free_ext` releases it. */
typedef struct api_msg_p2p_auto_policy {
  char *field1; /**< Field 1, string: NUL-terminated, owned. Presence: `API_MSG_P2P_AUTO_POLICY_HAS_FIELD1`. */
  char *field2; /**< Field 2, string: NUL-terminated, owned. Presence: `API_MSG_P2P_AUTO_POLICY_HAS_FIELD2`. */
  uint32_t field3; /**< Field 3, unsigned 32-bit. Presence: `API_MSG_P2P_AUTO_POLICY_HAS_FIELD3`. */
  uint32_t field4; /**< Field 4, unsigned 32-bit. Presence: `API_MSG_P2P_AUTO_POLICY_HAS_FIELD4`. */
  uint8_t field5; /**< Field 5, flag. Presence: `API_MSG_P2P_AUTO_POLICY_HAS_FIELD5`. */
  uint8_t field6; /**< Field 6, flag. Presence: `API_MSG_P2P_AUTO_POLICY_HAS_FIELD6`. */
  struct api_lbl_stack label_stack; /**< The label stack. Field 7, nested `api_lbl_stack`, with presence bits of its
      own. Presence: `API_MSG_P2P_AUTO_POLICY_HAS_LABEL_STACK`. */
  uint32_t field8; /**< Field 8, unsigned 32-bit. Presence: `API_MSG_P2P_AUTO_POLICY_HAS_FIELD8`. */
  uint32_t field9; /**< Field 9, unsigned 32-bit. Presence: `API_MSG_P2P_AUTO_POLICY_HAS_FIELD9`. */
  uint8_t field10; /**< Field 10, flag. Presence: `API_MSG_P2P_AUTO_POLICY_HAS_FIELD10`. */
  uint8_t *field11; /**< Field 11, list of unsigned 8-bit integers: owned array.
      Presence: `API_MSG_P2P_AUTO_POLICY_HAS_FIELD11`. */
  uint32_t field11_count; /**< Elements at `field11`. */
  uint32_t field12; /**< Field 12, unsigned 32-bit. Presence: `API_MSG_P2P_AUTO_POLICY_HAS_FIELD12`. */
  uint32_t field13; /**< Field 13, unsigned 32-bit. Presence: `API_MSG_P2P_AUTO_POLICY_HAS_FIELD13`. */
  api_exp_path *exp_paths; /**< The explicit paths. Field 14, list of `api_exp_path`: owned array of records.
      Presence: `API_MSG_P2P_AUTO_POLICY_HAS_EXP_PATHS`. */
  uint32_t exp_paths_count; /**< Elements at `exp_paths`. */
  uint32_t field15; /**< Field 15, unsigned 32-bit. Presence: `API_MSG_P2P_AUTO_POLICY_HAS_FIELD15`. */
  uint32_t field16; /**< Field 16, unsigned 32-bit. Presence: `API_MSG_P2P_AUTO_POLICY_HAS_FIELD16`. */
  uint32_t field17; /**< Field 17, unsigned 32-bit. Presence: `API_MSG_P2P_AUTO_POLICY_HAS_FIELD17`. */
  uint32_t field18; /**< Field 18, unsigned 32-bit. Presence: `API_MSG_P2P_AUTO_POLICY_HAS_FIELD18`. */
  uint8_t field19; /**< Field 19, flag. Presence: `API_MSG_P2P_AUTO_POLICY_HAS_FIELD19`. */
  char *field20; /**< Field 20, string: NUL-terminated, owned. Presence: `API_MSG_P2P_AUTO_POLICY_HAS_FIELD20`. */
  struct prefix_sid_type prefix_sid; /**< The segment identifier. Field 21, nested `prefix_sid_type`, with presence bits
      of its own. Presence: `API_MSG_P2P_AUTO_POLICY_HAS_PREFIX_SID`. */
  uint32_t field22; /**< Field 22, unsigned 32-bit. Presence: `API_MSG_P2P_AUTO_POLICY_HAS_FIELD22`. */
  uint32_t presence; /**< One bit per field: see `enum api_msg_p2p_auto_policy_presence`. */
} api_msg_p2p_auto_policy;

/** Decodes an `api_msg_p2p_auto_policy` from @p buffer: see @ref decoding. */
PAVO_ZORV_NODISCARD PAVO_ZORV_API int pavo_zorv_api_msg_p2p_auto_policy_decode_ext(
    api_msg_p2p_auto_policy *out, const unsigned char *buffer, size_t length, pavo_zorv_allocate allocate,
    void *context, uint32_t options) PAVO_ZORV_NOEXCEPT;

/** Encodes an `api_msg_p2p_auto_policy` into @p buffer, or measures it: see @ref encoding. */
PAVO_ZORV_API size_t pavo_zorv_api_msg_p2p_auto_policy_encode_ext(
    const api_msg_p2p_auto_policy *in, unsigned char *buffer, size_t length, pavo_zorv_segment *segments,
    uint32_t *segment_count, uint32_t options) PAVO_ZORV_NOEXCEPT;

/** Copies an `api_msg_p2p_auto_policy` with all that it owns: see @ref copying. */
PAVO_ZORV_NODISCARD PAVO_ZORV_API int pavo_zorv_api_msg_p2p_auto_policy_duplicate(
    api_msg_p2p_auto_policy *destination, const api_msg_p2p_auto_policy *source, pavo_zorv_allocate allocate,
    void *context) PAVO_ZORV_NOEXCEPT;

/** Releases what an `api_msg_p2p_auto_policy` owns: see @ref releasing. */
PAVO_ZORV_API void pavo_zorv_api_msg_p2p_auto_policy_free_ext(
    api_msg_p2p_auto_policy *record, pavo_zorv_release release, void *context, uint32_t options) PAVO_ZORV_NOEXCEPT;

/** Orders two `api_msg_p2p_auto_policy` records: see @ref comparing. */
PAVO_ZORV_API int pavo_zorv_api_msg_p2p_auto_policy_compare(
    const api_msg_p2p_auto_policy *a, const api_msg_p2p_auto_policy *b) PAVO_ZORV_NOEXCEPT;

/** @} */

/** @name The notification about an automatically created point-to-point policy
 *  @{ */

/** Presence bits of `api_msg_p2p_auto_policy_notif`, for its member `presence`. */
enum api_msg_p2p_auto_policy_notif_presence {
  API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_FIELD1 = 1 << 0,
  API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_FIELD2 = 1 << 1,
  API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_FIELD3 = 1 << 2,
  API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_FIELD4 = 1 << 3,
  API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_FIELD5 = 1 << 4,
  API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_FIELD6 = 1 << 5,
  API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_FIELD7 = 1 << 6,
  API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_FIELD8 = 1 << 7,
  API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_FIELD9 = 1 << 8,
  API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_LABEL_STACK = 1 << 9,
  API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_FIELD11 = 1 << 10,
  API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_FIELD12 = 1 << 11,
  API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_FIELD13 = 1 << 12,
  API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_FIELD14 = 1 << 13,
  API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_FIELD15 = 1 << 14,
  API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_FIELD16 = 1 << 15,
  API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_FIELD17 = 1 << 16,
  API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_FIELD18 = 1 << 17,
  API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_FIELD19 = 1 << 18,
  API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_FIELD20 = 1 << 19,
  API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_FIELD21 = 1 << 20,
  API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_FIELD22 = 1 << 21,
  API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_FIELD23 = 1 << 22,
  API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_FIELD24 = 1 << 23,
  API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_FIELD25 = 1 << 24,
  API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_FIELD26 = 1 << 25,
  API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_FIELD27 = 1 << 26
};

/** The notification about an automatically created point-to-point policy.
 *  The record owns what its pointers lead to; `pavo_zorv_api_msg_p2p_auto_policy_notif_free_ext` releases it. */
typedef struct api_msg_p2p_auto_policy_notif {
  char *field1; /**< Field 1, string: NUL-terminated, owned. Presence: `API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_FIELD1`. */
  char *field2; /**< Field 2, string: NUL-terminated, owned. Presence: `API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_FIELD2`. */
  uint32_t field3; /**< Field 3, unsigned 32-bit. Presence: `API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_FIELD3`. */
  uint8_t field4; /**< Field 4, flag. Presence: `API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_FIELD4`. */
  uint8_t field5; /**< Field 5, flag. Presence: `API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_FIELD5`. */
  uint8_t field6; /**< Field 6, flag. Presence: `API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_FIELD6`. */
  uint32_t field7; /**< Field 7, unsigned 32-bit. Presence: `API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_FIELD7`. */
  uint32_t field8; /**< Field 8, unsigned 32-bit. Presence: `API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_FIELD8`. */
  uint8_t field9; /**< Field 9, flag. Presence: `API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_FIELD9`. */
  struct api_lbl_stack label_stack; /**< The label stack. Field 10, nested `api_lbl_stack`, with presence bits of its
      own. Presence: `API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_LABEL_STACK`. */
  uint32_t field11; /**< Field 11, unsigned 32-bit. Presence: `API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_FIELD11`. */
  uint32_t field12; /**< Field 12, unsigned 32-bit. Presence: `API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_FIELD12`. */
  uint8_t field13; /**< Field 13, flag. Presence: `API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_FIELD13`. */
  uint32_t field14; /**< Field 14, unsigned 32-bit. Presence: `API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_FIELD14`. */
  uint8_t *field15; /**< Field 15, list of unsigned 8-bit integers: owned array.
      Presence: `API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_FIELD15`. */
  uint32_t field15_count; /**< Elements at `field15`. */
  uint32_t field16; /**< Field 16, unsigned 32-bit. Presence: `API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_FIELD16`. */
  uint32_t field17; /**< Field 17, unsigned 32-bit. Presence: `API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_FIELD17`. */
  uint32_t field18; /**< Field 18, unsigned 32-bit. Presence: `API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_FIELD18`. */
  uint32_t field19; /**< Field 19, unsigned 32-bit. Presence: `API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_FIELD19`. */
  uint8_t field20; /**< Field 20, flag. Presence: `API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_FIELD20`. */
  char *field21; /**< Field 21, string: NUL-terminated, owned. Presence: `API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_FIELD21`. */
  uint8_t *field22; /**< Field 22, list of unsigned 8-bit integers: owned array.
      Presence: `API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_FIELD22`. */
  uint32_t field22_count; /**< Elements at `field22`. */
  uint32_t field23; /**< Field 23, unsigned 32-bit. Presence: `API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_FIELD23`. */
  uint32_t field24; /**< Field 24, unsigned 32-bit. Presence: `API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_FIELD24`. */
  uint32_t field25; /**< Field 25, unsigned 32-bit. Presence: `API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_FIELD25`. */
  uint8_t field26; /**< Field 26, flag. Presence: `API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_FIELD26`. */
  int64_t field27; /**< Field 27, signed 64-bit. Presence: `API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_FIELD27`. */
  uint32_t presence; /**< One bit per field: see `enum api_msg_p2p_auto_policy_notif_presence`. */
} api_msg_p2p_auto_policy_notif;

/** Decodes an `api_msg_p2p_auto_policy_notif` from @p buffer: see @ref decoding. */
PAVO_ZORV_NODISCARD PAVO_ZORV_API int pavo_zorv_api_msg_p2p_auto_policy_notif_decode_ext(
    api_msg_p2p_auto_policy_notif *out, const unsigned char *buffer, size_t length, pavo_zorv_allocate allocate,
    void *context) PAVO_ZORV_NOEXCEPT;

/** Encodes an `api_msg_p2p_auto_policy_notif` into @p buffer, or measures it: see @ref encoding. */
PAVO_ZORV_API size_t pavo_zorv_api_msg_p2p_auto_policy_notif_encode_ext(
    const api_msg_p2p_auto_policy_notif *in, unsigned char *buffer, size_t length, pavo_zorv_segment *segments,
    uint32_t *segment_count) PAVO_ZORV_NOEXCEPT;

/** Copies an `api_msg_p2p_auto_policy_notif` with all that it owns: see @ref copying. */
PAVO_ZORV_NODISCARD PAVO_ZORV_API int pavo_zorv_api_msg_p2p_auto_policy_notif_duplicate(
    api_msg_p2p_auto_policy_notif *destination, const api_msg_p2p_auto_policy_notif *source,
    pavo_zorv_allocate allocate, void *context) PAVO_ZORV_NOEXCEPT;

/** Releases what an `api_msg_p2p_auto_policy_notif` owns: see @ref releasing. */
PAVO_ZORV_API void pavo_zorv_api_msg_p2p_auto_policy_notif_free_ext(
    api_msg_p2p_auto_policy_notif *record, pavo_zorv_release release, void *context) PAVO_ZORV_NOEXCEPT;

/** Orders two `api_msg_p2p_auto_policy_notif` records: see @ref comparing. */
PAVO_ZORV_API int pavo_zorv_api_msg_p2p_auto_policy_notif_compare(
    const api_msg_p2p_auto_policy_notif *a, const api_msg_p2p_auto_policy_notif *b) PAVO_ZORV_NOEXCEPT;

/** @} */

/** @name Requests, responses and sweeps of automatically created policies
 *  @{ */

/** Presence bits of `api_msg_p2p_auto_policy_request`, for its member `presence`. */
enum api_msg_p2p_auto_policy_request_presence {
  API_MSG_P2P_AUTO_POLICY_REQUEST_HAS_POLICY = 1 << 0,
  API_MSG_P2P_AUTO_POLICY_REQUEST_HAS_FIELD2 = 1 << 1,
  API_MSG_P2P_AUTO_POLICY_REQUEST_HAS_FIELD3 = 1 << 2
};

/** A request that carries one automatically created policy.
 *  The record owns what its pointers lead to; `pavo_zorv_api_msg_p2p_auto_policy_request_free_ext` releases it. */
typedef struct api_msg_p2p_auto_policy_request {
  struct api_msg_p2p_auto_policy policy; /**< The policy. Field 1, nested `api_msg_p2p_auto_policy`, with presence bits
      of its own. Presence: `API_MSG_P2P_AUTO_POLICY_REQUEST_HAS_POLICY`. */
  uint32_t field2; /**< Field 2, unsigned 32-bit. Presence: `API_MSG_P2P_AUTO_POLICY_REQUEST_HAS_FIELD2`. */
  uint32_t field3; /**< Field 3, unsigned 32-bit. Presence: `API_MSG_P2P_AUTO_POLICY_REQUEST_HAS_FIELD3`. */
  uint8_t presence; /**< One bit per field: see `enum api_msg_p2p_auto_policy_request_presence`. */
} api_msg_p2p_auto_policy_request;

/** Presence bits of `api_msg_p2p_auto_policy_response`, for its member `presence`. */
enum api_msg_p2p_auto_policy_response_presence {
  API_MSG_P2P_AUTO_POLICY_RESPONSE_HAS_NOTIFICATION = 1 << 0,
  API_MSG_P2P_AUTO_POLICY_RESPONSE_HAS_FIELD2 = 1 << 1,
  API_MSG_P2P_AUTO_POLICY_RESPONSE_HAS_FIELD3 = 1 << 2
};

/** A response that carries one notification.
 *  The record owns what its pointers lead to; `pavo_zorv_api_msg_p2p_auto_policy_response_free_ext` releases it. */
typedef struct api_msg_p2p_auto_policy_response {
  struct api_msg_p2p_auto_policy_notif notification; /**< The notification. Field 1, nested
      `api_msg_p2p_auto_policy_notif`, with presence bits of its own.
      Presence: `API_MSG_P2P_AUTO_POLICY_RESPONSE_HAS_NOTIFICATION`. */
  uint32_t field2; /**< Field 2, unsigned 32-bit. Presence: `API_MSG_P2P_AUTO_POLICY_RESPONSE_HAS_FIELD2`. */
  uint32_t field3; /**< Field 3, unsigned 32-bit. Presence: `API_MSG_P2P_AUTO_POLICY_RESPONSE_HAS_FIELD3`. */
  uint8_t presence; /**< One bit per field: see `enum api_msg_p2p_auto_policy_response_presence`. */
} api_msg_p2p_auto_policy_response;

/** Presence bits of `api_msg_p2p_auto_policy_sweep`, for its member `presence`. */
enum api_msg_p2p_auto_policy_sweep_presence {
  API_MSG_P2P_AUTO_POLICY_SWEEP_HAS_FIELD1 = 1 << 0,
  API_MSG_P2P_AUTO_POLICY_SWEEP_HAS_FIELD2 = 1 << 1
};

/** A sweep over automatically created policies.
 *  Owns no memory: decoding and copying never call the allocator. */
typedef struct api_msg_p2p_auto_policy_sweep {
  uint32_t field1; /**< Field 1, unsigned 32-bit. Presence: `API_MSG_P2P_AUTO_POLICY_SWEEP_HAS_FIELD1`. */
  uint32_t field2; /**< Field 2, unsigned 32-bit. Presence: `API_MSG_P2P_AUTO_POLICY_SWEEP_HAS_FIELD2`. */
  uint8_t presence; /**< One bit per field: see `enum api_msg_p2p_auto_policy_sweep_presence`. */
} api_msg_p2p_auto_policy_sweep;

/** Decodes an `api_msg_p2p_auto_policy_request` from @p buffer: see @ref decoding. */
PAVO_ZORV_NODISCARD PAVO_ZORV_API int pavo_zorv_api_msg_p2p_auto_policy_request_decode_ext(
    api_msg_p2p_auto_policy_request *out, const unsigned char *buffer, size_t length, pavo_zorv_allocate allocate,
    void *context, uint32_t options) PAVO_ZORV_NOEXCEPT;

/** Encodes an `api_msg_p2p_auto_policy_request` into @p buffer, or measures it: see @ref encoding. */
PAVO_ZORV_API size_t pavo_zorv_api_msg_p2p_auto_policy_request_encode_ext(
    const api_msg_p2p_auto_policy_request *in, unsigned char *buffer, size_t length, pavo_zorv_segment *segments,
    uint32_t *segment_count, uint32_t options) PAVO_ZORV_NOEXCEPT;

/** Copies an `api_msg_p2p_auto_policy_request` with all that it owns: see @ref copying. */
PAVO_ZORV_NODISCARD PAVO_ZORV_API int pavo_zorv_api_msg_p2p_auto_policy_request_duplicate(
    api_msg_p2p_auto_policy_request *destination, const api_msg_p2p_auto_policy_request *source,
    pavo_zorv_allocate allocate, void *context) PAVO_ZORV_NOEXCEPT;

/** Releases what an `api_msg_p2p_auto_policy_request` owns: see @ref releasing. */
PAVO_ZORV_API void pavo_zorv_api_msg_p2p_auto_policy_request_free_ext(
    api_msg_p2p_auto_policy_request *record, pavo_zorv_release release, void *context,
    uint32_t options) PAVO_ZORV_NOEXCEPT;

/** Orders two `api_msg_p2p_auto_policy_request` records: see @ref comparing. */
PAVO_ZORV_API int pavo_zorv_api_msg_p2p_auto_policy_request_compare(
    const api_msg_p2p_auto_policy_request *a, const api_msg_p2p_auto_policy_request *b) PAVO_ZORV_NOEXCEPT;

/** Decodes an `api_msg_p2p_auto_policy_response` from @p buffer: see @ref decoding. */
PAVO_ZORV_NODISCARD PAVO_ZORV_API int pavo_zorv_api_msg_p2p_auto_policy_response_decode_ext(
    api_msg_p2p_auto_policy_response *out, const unsigned char *buffer, size_t length, pavo_zorv_allocate allocate,
    void *context) PAVO_ZORV_NOEXCEPT;

/** Encodes an `api_msg_p2p_auto_policy_response` into @p buffer, or measures it: see @ref encoding. */
PAVO_ZORV_API size_t pavo_zorv_api_msg_p2p_auto_policy_response_encode_ext(
    const api_msg_p2p_auto_policy_response *in, unsigned char *buffer, size_t length, pavo_zorv_segment *segments,
    uint32_t *segment_count) PAVO_ZORV_NOEXCEPT;

/** Copies an `api_msg_p2p_auto_policy_response` with all that it owns: see @ref copying. */
PAVO_ZORV_NODISCARD PAVO_ZORV_API int pavo_zorv_api_msg_p2p_auto_policy_response_duplicate(
    api_msg_p2p_auto_policy_response *destination, const api_msg_p2p_auto_policy_response *source,
    pavo_zorv_allocate allocate, void *context) PAVO_ZORV_NOEXCEPT;

/** Releases what an `api_msg_p2p_auto_policy_response` owns: see @ref releasing. */
PAVO_ZORV_API void pavo_zorv_api_msg_p2p_auto_policy_response_free_ext(
    api_msg_p2p_auto_policy_response *record, pavo_zorv_release release, void *context) PAVO_ZORV_NOEXCEPT;

/** Orders two `api_msg_p2p_auto_policy_response` records: see @ref comparing. */
PAVO_ZORV_API int pavo_zorv_api_msg_p2p_auto_policy_response_compare(
    const api_msg_p2p_auto_policy_response *a, const api_msg_p2p_auto_policy_response *b) PAVO_ZORV_NOEXCEPT;

/** Decodes an `api_msg_p2p_auto_policy_sweep` from @p buffer: see @ref decoding. Never calls @p allocate. */
PAVO_ZORV_NODISCARD PAVO_ZORV_API int pavo_zorv_api_msg_p2p_auto_policy_sweep_decode_ext(
    api_msg_p2p_auto_policy_sweep *out, const unsigned char *buffer, size_t length, pavo_zorv_allocate allocate,
    void *context) PAVO_ZORV_NOEXCEPT;

/** Encodes an `api_msg_p2p_auto_policy_sweep` into @p buffer, or measures it: see @ref encoding. */
PAVO_ZORV_API size_t pavo_zorv_api_msg_p2p_auto_policy_sweep_encode_ext(
    const api_msg_p2p_auto_policy_sweep *in, unsigned char *buffer, size_t length, pavo_zorv_segment *segments,
    uint32_t *segment_count) PAVO_ZORV_NOEXCEPT;

/** Copies an `api_msg_p2p_auto_policy_sweep` with all that it owns: see @ref copying. Always `CODEC_OK`. */
PAVO_ZORV_NODISCARD PAVO_ZORV_API int pavo_zorv_api_msg_p2p_auto_policy_sweep_duplicate(
    api_msg_p2p_auto_policy_sweep *destination, const api_msg_p2p_auto_policy_sweep *source,
    pavo_zorv_allocate allocate, void *context) PAVO_ZORV_NOEXCEPT;

/** Releases what an `api_msg_p2p_auto_policy_sweep` owns: see @ref releasing. Does nothing: it owns nothing. */
PAVO_ZORV_API void pavo_zorv_api_msg_p2p_auto_policy_sweep_free_ext(
    api_msg_p2p_auto_policy_sweep *record, pavo_zorv_release release, void *context) PAVO_ZORV_NOEXCEPT;

/** Orders two `api_msg_p2p_auto_policy_sweep` records: see @ref comparing. */
PAVO_ZORV_API int pavo_zorv_api_msg_p2p_auto_policy_sweep_compare(
    const api_msg_p2p_auto_policy_sweep *a, const api_msg_p2p_auto_policy_sweep *b) PAVO_ZORV_NOEXCEPT;

/** @} */

/** @name Node identifiers and prefixes
 *  @{ */

/** Presence bits of `api_nodeid`, for its member `presence`. */
enum api_nodeid_presence {
  API_NODEID_HAS_FIELD1 = 1 << 0,
  API_NODEID_HAS_OCTETS = 1 << 1
};

/** A node identifier.
 *  The record owns what its pointers lead to; `pavo_zorv_api_nodeid_free_ext` releases it. */
typedef struct api_nodeid {
  uint32_t field1; /**< Field 1, unsigned 32-bit. Presence: `API_NODEID_HAS_FIELD1`. */
  uint8_t *octets; /**< The bytes. Field 2, list of unsigned 8-bit integers: owned array.
      Presence: `API_NODEID_HAS_OCTETS`. */
  uint32_t octets_count; /**< Elements at `octets`. */
  uint8_t presence; /**< One bit per field: see `enum api_nodeid_presence`. */
} api_nodeid;

/** Presence bits of `api_prefix`, for its member `presence`. */
enum api_prefix_presence {
  API_PREFIX_HAS_OCTETS = 1 << 0,
  API_PREFIX_HAS_FIELD2 = 1 << 1
};

/** A prefix.
 *  The record owns what its pointers lead to; `pavo_zorv_api_prefix_free_ext` releases it. */
typedef struct api_prefix {
  uint8_t *octets; /**< The bytes. Field 1, list of unsigned 8-bit integers: owned array.
      Presence: `API_PREFIX_HAS_OCTETS`. */
  uint32_t octets_count; /**< Elements at `octets`. */
  uint8_t field2; /**< Field 2, unsigned 8-bit. Presence: `API_PREFIX_HAS_FIELD2`. */
  uint8_t presence; /**< One bit per field: see `enum api_prefix_presence`. */
} api_prefix;

/** Decodes an `api_nodeid` from @p buffer: see @ref decoding. */
PAVO_ZORV_NODISCARD PAVO_ZORV_API int pavo_zorv_api_nodeid_decode_ext(
    api_nodeid *out, const unsigned char *buffer, size_t length, pavo_zorv_allocate allocate,
    void *context) PAVO_ZORV_NOEXCEPT;

/** Encodes an `api_nodeid` into @p buffer, or measures it: see @ref encoding. */
PAVO_ZORV_API size_t pavo_zorv_api_nodeid_encode_ext(
    const api_nodeid *in, unsigned char *buffer, size_t length, pavo_zorv_segment *segments,
    uint32_t *segment_count) PAVO_ZORV_NOEXCEPT;

/** Copies an `api_nodeid` with all that it owns: see @ref copying. */
PAVO_ZORV_NODISCARD PAVO_ZORV_API int pavo_zorv_api_nodeid_duplicate(
    api_nodeid *destination, const api_nodeid *source, pavo_zorv_allocate allocate, void *context) PAVO_ZORV_NOEXCEPT;

/** Releases what an `api_nodeid` owns: see @ref releasing. */
PAVO_ZORV_API void pavo_zorv_api_nodeid_free_ext(api_nodeid *record, pavo_zorv_release release, void *context)
    PAVO_ZORV_NOEXCEPT;

/** Orders two `api_nodeid` records: see @ref comparing. */
PAVO_ZORV_API int pavo_zorv_api_nodeid_compare(const api_nodeid *a, const api_nodeid *b) PAVO_ZORV_NOEXCEPT;

/** Decodes an `api_prefix` from @p buffer: see @ref decoding. */
PAVO_ZORV_NODISCARD PAVO_ZORV_API int pavo_zorv_api_prefix_decode_ext(
    api_prefix *out, const unsigned char *buffer, size_t length, pavo_zorv_allocate allocate,
    void *context) PAVO_ZORV_NOEXCEPT;

/** Encodes an `api_prefix` into @p buffer, or measures it: see @ref encoding. */
PAVO_ZORV_API size_t pavo_zorv_api_prefix_encode_ext(
    const api_prefix *in, unsigned char *buffer, size_t length, pavo_zorv_segment *segments,
    uint32_t *segment_count) PAVO_ZORV_NOEXCEPT;

/** Copies an `api_prefix` with all that it owns: see @ref copying. */
PAVO_ZORV_NODISCARD PAVO_ZORV_API int pavo_zorv_api_prefix_duplicate(
    api_prefix *destination, const api_prefix *source, pavo_zorv_allocate allocate, void *context) PAVO_ZORV_NOEXCEPT;

/** Releases what an `api_prefix` owns: see @ref releasing. */
PAVO_ZORV_API void pavo_zorv_api_prefix_free_ext(api_prefix *record, pavo_zorv_release release, void *context)
    PAVO_ZORV_NOEXCEPT;

/** Orders two `api_prefix` records: see @ref comparing. */
PAVO_ZORV_API int pavo_zorv_api_prefix_compare(const api_prefix *a, const api_prefix *b) PAVO_ZORV_NOEXCEPT;

/** @} */

/** @name Interfaces and link updates
 *  @{ */

/** Presence bits of `api_intf`, for its member `presence`. */
enum api_intf_presence {
  API_INTF_HAS_FIELD1 = 1 << 0,
  API_INTF_HAS_FIELD2 = 1 << 1
};

/** An interface.
 *  The record owns what its pointers lead to; `pavo_zorv_api_intf_free_ext` releases it. */
typedef struct api_intf {
  uint32_t field1; /**< Field 1, unsigned 32-bit. Presence: `API_INTF_HAS_FIELD1`. */
  char *field2; /**< Field 2, string: NUL-terminated, owned. Presence: `API_INTF_HAS_FIELD2`. */
  uint8_t presence; /**< One bit per field: see `enum api_intf_presence`. */
} api_intf;

/** Presence bits of `api_link_update`, for its member `presence`. */
enum api_link_update_presence {
  API_LINK_UPDATE_HAS_FIELD1 = 1 << 0,
  API_LINK_UPDATE_HAS_FIELD2 = 1 << 1,
  API_LINK_UPDATE_HAS_FIELD3 = 1 << 2,
  API_LINK_UPDATE_HAS_FIELD4 = 1 << 3,
  API_LINK_UPDATE_HAS_FIELD5 = 1 << 4
};

/** An update about a link.
 *  The record owns what its pointers lead to; `pavo_zorv_api_link_update_free_ext` releases it. */
typedef struct api_link_update {
  uint32_t field1; /**< Field 1, unsigned 32-bit. Presence: `API_LINK_UPDATE_HAS_FIELD1`. */
  char *field2; /**< Field 2, string: NUL-terminated, owned. Presence: `API_LINK_UPDATE_HAS_FIELD2`. */
  uint32_t field3; /**< Field 3, unsigned 32-bit. Presence: `API_LINK_UPDATE_HAS_FIELD3`. */
  uint32_t field4; /**< Field 4, unsigned 32-bit. Presence: `API_LINK_UPDATE_HAS_FIELD4`. */
  uint32_t *field5; /**< Field 5, list of unsigned 32-bit integers: owned array.
      Presence: `API_LINK_UPDATE_HAS_FIELD5`. */
  uint32_t field5_count; /**< Elements at `field5`. */
  uint8_t presence; /**< One bit per field: see `enum api_link_update_presence`. */
} api_link_update;

/** Decodes an `api_intf` from @p buffer: see @ref decoding. */
PAVO_ZORV_NODISCARD PAVO_ZORV_API int pavo_zorv_api_intf_decode_ext(
    api_intf *out, const unsigned char *buffer, size_t length, pavo_zorv_allocate allocate,
    void *context) PAVO_ZORV_NOEXCEPT;

/** Encodes an `api_intf` into @p buffer, or measures it: see @ref encoding. */
PAVO_ZORV_API size_t pavo_zorv_api_intf_encode_ext(
    const api_intf *in, unsigned char *buffer, size_t length, pavo_zorv_segment *segments,
    uint32_t *segment_count) PAVO_ZORV_NOEXCEPT;

/** Copies an `api_intf` with all that it owns: see @ref copying. */
PAVO_ZORV_NODISCARD PAVO_ZORV_API int pavo_zorv_api_intf_duplicate(
    api_intf *destination, const api_intf *source, pavo_zorv_allocate allocate, void *context) PAVO_ZORV_NOEXCEPT;

/** Releases what an `api_intf` owns: see @ref releasing. */
PAVO_ZORV_API void pavo_zorv_api_intf_free_ext(api_intf *record, pavo_zorv_release release, void *context)
    PAVO_ZORV_NOEXCEPT;

/** Orders two `api_intf` records: see @ref comparing. */
PAVO_ZORV_API int pavo_zorv_api_intf_compare(const api_intf *a, const api_intf *b) PAVO_ZORV_NOEXCEPT;

/** Decodes an `api_link_update` from @p buffer: see @ref decoding. */
PAVO_ZORV_NODISCARD PAVO_ZORV_API int pavo_zorv_api_link_update_decode_ext(
    api_link_update *out, const unsigned char *buffer, size_t length, pavo_zorv_allocate allocate,
    void *context) PAVO_ZORV_NOEXCEPT;

/** Encodes an `api_link_update` into @p buffer, or measures it: see @ref encoding. */
PAVO_ZORV_API size_t pavo_zorv_api_link_update_encode_ext(
    const api_link_update *in, unsigned char *buffer, size_t length, pavo_zorv_segment *segments,
    uint32_t *segment_count) PAVO_ZORV_NOEXCEPT;

/** Copies an `api_link_update` with all that it owns: see @ref copying. */
PAVO_ZORV_NODISCARD PAVO_ZORV_API int pavo_zorv_api_link_update_duplicate(
    api_link_update *destination, const api_link_update *source, pavo_zorv_allocate allocate,
    void *context) PAVO_ZORV_NOEXCEPT;

/** Releases what an `api_link_update` owns: see @ref releasing. */
PAVO_ZORV_API void pavo_zorv_api_link_update_free_ext(api_link_update *record, pavo_zorv_release release, void *context)
    PAVO_ZORV_NOEXCEPT;

/** Orders two `api_link_update` records: see @ref comparing. */
PAVO_ZORV_API int pavo_zorv_api_link_update_compare(const api_link_update *a, const api_link_update *b)
    PAVO_ZORV_NOEXCEPT;

/** @} */

/** @name Policies
 *  @{ */

/** Presence bits of `api_policy`, for its member `presence`. */
enum api_policy_presence {
  API_POLICY_HAS_FIELD1 = 1 << 0,
  API_POLICY_HAS_FIELD2 = 1 << 1,
  API_POLICY_HAS_FIELD3 = 1 << 2,
  API_POLICY_HAS_FIELD4 = 1 << 3,
  API_POLICY_HAS_PREFIXES = 1 << 4,
  API_POLICY_HAS_FIELD6 = 1 << 5,
  API_POLICY_HAS_FIELD7 = 1 << 6,
  API_POLICY_HAS_FIELD8 = 1 << 7,
  API_POLICY_HAS_FIELD9 = 1 << 8,
  API_POLICY_HAS_FIELD10 = 1 << 9
};

/** A policy with its prefixes.
 *  The record owns what its pointers lead to; `pavo_zorv_api_policy_free_ext` releases it. */
typedef struct api_policy {
  char *field1; /**< Field 1, string: NUL-terminated, owned. Presence: `API_POLICY_HAS_FIELD1`. */
  uint32_t field2; /**< Field 2, unsigned 32-bit. Presence: `API_POLICY_HAS_FIELD2`. */
  uint32_t field3; /**< Field 3, unsigned 32-bit. Presence: `API_POLICY_HAS_FIELD3`. */
  uint8_t field4; /**< Field 4, flag. Presence: `API_POLICY_HAS_FIELD4`. */
  api_prefix *prefixes; /**< The prefixes. Field 5, list of `api_prefix`: owned array of records.
      Presence: `API_POLICY_HAS_PREFIXES`. */
  uint32_t prefixes_count; /**< Elements at `prefixes`. */
  char *field6; /**< Field 6, string: NUL-terminated, owned. Presence: `API_POLICY_HAS_FIELD6`. */
  char *field7; /**< Field 7, string: NUL-terminated, owned. Presence: `API_POLICY_HAS_FIELD7`. */
  uint32_t field8; /**< Field 8, unsigned 32-bit. Presence: `API_POLICY_HAS_FIELD8`. */
  int32_t field9; /**< Field 9, signed 32-bit. Presence: `API_POLICY_HAS_FIELD9`. */
  uint8_t field10; /**< Field 10, flag. Presence: `API_POLICY_HAS_FIELD10`. */
  uint16_t presence; /**< One bit per field: see `enum api_policy_presence`. */
} api_policy;

/** Decodes an `api_policy` from @p buffer: see @ref decoding. */
PAVO_ZORV_NODISCARD PAVO_ZORV_API int pavo_zorv_api_policy_decode_ext(
    api_policy *out, const unsigned char *buffer, size_t length, pavo_zorv_allocate allocate,
    void *context) PAVO_ZORV_NOEXCEPT;

/** Encodes an `api_policy` into @p buffer, or measures it: see @ref encoding. */
PAVO_ZORV_API size_t pavo_zorv_api_policy_encode_ext(
    const api_policy *in, unsigned char *buffer, size_t length, pavo_zorv_segment *segments,
    uint32_t *segment_count) PAVO_ZORV_NOEXCEPT;

/** Copies an `api_policy` with all that it owns: see @ref copying. */
PAVO_ZORV_NODISCARD PAVO_ZORV_API int pavo_zorv_api_policy_duplicate(
    api_policy *destination, const api_policy *source, pavo_zorv_allocate allocate, void *context) PAVO_ZORV_NOEXCEPT;

/** Releases what an `api_policy` owns: see @ref releasing. */
PAVO_ZORV_API void pavo_zorv_api_policy_free_ext(api_policy *record, pavo_zorv_release release, void *context)
    PAVO_ZORV_NOEXCEPT;

/** Orders two `api_policy` records: see @ref comparing. */
PAVO_ZORV_API int pavo_zorv_api_policy_compare(const api_policy *a, const api_policy *b) PAVO_ZORV_NOEXCEPT;

/** @} */

/** @name Lists of policies
 *  @{ */

/** Presence bits of `api_aa_list`, for its member `presence`. */
enum api_aa_list_presence {
  API_AA_LIST_HAS_OCTETS = 1 << 0,
  API_AA_LIST_HAS_FIELD2 = 1 << 1,
  API_AA_LIST_HAS_POLICIES = 1 << 2
};

/** A list of policies.
 *  The record owns what its pointers lead to; `pavo_zorv_api_aa_list_free_ext` releases it. */
typedef struct api_aa_list {
  uint8_t *octets; /**< The bytes. Field 1, list of unsigned 8-bit integers: owned array.
      Presence: `API_AA_LIST_HAS_OCTETS`. */
  uint32_t octets_count; /**< Elements at `octets`. */
  uint32_t field2; /**< Field 2, unsigned 32-bit. Presence: `API_AA_LIST_HAS_FIELD2`. */
  api_policy *policies; /**< The policies. Field 3, list of `api_policy`: owned array of records.
      Presence: `API_AA_LIST_HAS_POLICIES`. */
  uint32_t policies_count; /**< Elements at `policies`. */
  uint8_t presence; /**< One bit per field: see `enum api_aa_list_presence`. */
} api_aa_list;

/** Decodes an `api_aa_list` from @p buffer: see @ref decoding. */
PAVO_ZORV_NODISCARD PAVO_ZORV_API int pavo_zorv_api_aa_list_decode_ext(
    api_aa_list *out, const unsigned char *buffer, size_t length, pavo_zorv_allocate allocate,
    void *context) PAVO_ZORV_NOEXCEPT;

/** Encodes an `api_aa_list` into @p buffer, or measures it: see @ref encoding. */
PAVO_ZORV_API size_t pavo_zorv_api_aa_list_encode_ext(
    const api_aa_list *in, unsigned char *buffer, size_t length, pavo_zorv_segment *segments,
    uint32_t *segment_count) PAVO_ZORV_NOEXCEPT;

/** Copies an `api_aa_list` with all that it owns: see @ref copying. */
PAVO_ZORV_NODISCARD PAVO_ZORV_API int pavo_zorv_api_aa_list_duplicate(
    api_aa_list *destination, const api_aa_list *source, pavo_zorv_allocate allocate, void *context) PAVO_ZORV_NOEXCEPT;

/** Releases what an `api_aa_list` owns: see @ref releasing. */
PAVO_ZORV_API void pavo_zorv_api_aa_list_free_ext(api_aa_list *record, pavo_zorv_release release, void *context)
    PAVO_ZORV_NOEXCEPT;

/** Orders two `api_aa_list` records: see @ref comparing. */
PAVO_ZORV_API int pavo_zorv_api_aa_list_compare(const api_aa_list *a, const api_aa_list *b) PAVO_ZORV_NOEXCEPT;

/** @} */

/** @name Messages towards the policy component and the IGP side
 *  @{ */

/** Presence bits of `api_to_zorv`, for its member `presence`. */
enum api_to_zorv_presence {
  API_TO_ZORV_HAS_NODEID = 1 << 0,
  API_TO_ZORV_HAS_INTF = 1 << 1,
  API_TO_ZORV_HAS_FIELD3 = 1 << 2
};

/** A message towards the policy component.
 *  The record owns what its pointers lead to; `pavo_zorv_api_to_zorv_free_ext` releases it. */
typedef struct api_to_zorv {
  struct api_nodeid nodeid; /**< The node identifier. Field 1, nested `api_nodeid`, with presence bits of its own.
      Presence: `API_TO_ZORV_HAS_NODEID`. */
  struct api_intf intf; /**< The interface. Field 2, nested `api_intf`, with presence bits of its own.
      Presence: `API_TO_ZORV_HAS_INTF`. */
  uint8_t field3; /**< Field 3, flag. Presence: `API_TO_ZORV_HAS_FIELD3`. */
  uint8_t presence; /**< One bit per field: see `enum api_to_zorv_presence`. */
} api_to_zorv;

/** Presence bits of `api_to_igp`, for its member `presence`. */
enum api_to_igp_presence {
  API_TO_IGP_HAS_LINK_UPDATE = 1 << 0,
  API_TO_IGP_HAS_AA_LIST = 1 << 1,
  API_TO_IGP_HAS_FIELD3 = 1 << 2,
  API_TO_IGP_HAS_FIELD4 = 1 << 3
};

/** A message towards the IGP side.
 *  The record owns what its pointers lead to; `pavo_zorv_api_to_igp_free_ext` releases it. */
typedef struct api_to_igp {
  struct api_link_update link_update; /**< The link update. Field 1, nested `api_link_update`, with presence bits of its
      own. Presence: `API_TO_IGP_HAS_LINK_UPDATE`. */
  struct api_aa_list aa_list; /**< The policy list. Field 2, nested `api_aa_list`, with presence bits of its own.
      Presence: `API_TO_IGP_HAS_AA_LIST`. */
  uint8_t field3; /**< Field 3, flag. Presence: `API_TO_IGP_HAS_FIELD3`. */
  uint8_t field4; /**< Field 4, flag. Presence: `API_TO_IGP_HAS_FIELD4`. */
  uint8_t presence; /**< One bit per field: see `enum api_to_igp_presence`. */
} api_to_igp;

/** Decodes an `api_to_zorv` from @p buffer: see @ref decoding. */
PAVO_ZORV_NODISCARD PAVO_ZORV_API int pavo_zorv_api_to_zorv_decode_ext(
    api_to_zorv *out, const unsigned char *buffer, size_t length, pavo_zorv_allocate allocate,
    void *context) PAVO_ZORV_NOEXCEPT;

/** Encodes an `api_to_zorv` into @p buffer, or measures it: see @ref encoding. */
PAVO_ZORV_API size_t pavo_zorv_api_to_zorv_encode_ext(
    const api_to_zorv *in, unsigned char *buffer, size_t length, pavo_zorv_segment *segments,
    uint32_t *segment_count) PAVO_ZORV_NOEXCEPT;

/** Copies an `api_to_zorv` with all that it owns: see @ref copying. */
PAVO_ZORV_NODISCARD PAVO_ZORV_API int pavo_zorv_api_to_zorv_duplicate(
    api_to_zorv *destination, const api_to_zorv *source, pavo_zorv_allocate allocate, void *context) PAVO_ZORV_NOEXCEPT;

/** Releases what an `api_to_zorv` owns: see @ref releasing. */
PAVO_ZORV_API void pavo_zorv_api_to_zorv_free_ext(api_to_zorv *record, pavo_zorv_release release, void *context)
    PAVO_ZORV_NOEXCEPT;

/** Orders two `api_to_zorv` records: see @ref comparing. */
PAVO_ZORV_API int pavo_zorv_api_to_zorv_compare(const api_to_zorv *a, const api_to_zorv *b) PAVO_ZORV_NOEXCEPT;

/** Decodes an `api_to_igp` from @p buffer: see @ref decoding. */
PAVO_ZORV_NODISCARD PAVO_ZORV_API int pavo_zorv_api_to_igp_decode_ext(
    api_to_igp *out, const unsigned char *buffer, size_t length, pavo_zorv_allocate allocate,
    void *context) PAVO_ZORV_NOEXCEPT;

/** Encodes an `api_to_igp` into @p buffer, or measures it: see @ref encoding. */
PAVO_ZORV_API size_t pavo_zorv_api_to_igp_encode_ext(
    const api_to_igp *in, unsigned char *buffer, size_t length, pavo_zorv_segment *segments,
    uint32_t *segment_count) PAVO_ZORV_NOEXCEPT;

/** Copies an `api_to_igp` with all that it owns: see @ref copying. */
PAVO_ZORV_NODISCARD PAVO_ZORV_API int pavo_zorv_api_to_igp_duplicate(
    api_to_igp *destination, const api_to_igp *source, pavo_zorv_allocate allocate, void *context) PAVO_ZORV_NOEXCEPT;

/** Releases what an `api_to_igp` owns: see @ref releasing. */
PAVO_ZORV_API void pavo_zorv_api_to_igp_free_ext(api_to_igp *record, pavo_zorv_release release, void *context)
    PAVO_ZORV_NOEXCEPT;

/** Orders two `api_to_igp` records: see @ref comparing. */
PAVO_ZORV_API int pavo_zorv_api_to_igp_compare(const api_to_igp *a, const api_to_igp *b) PAVO_ZORV_NOEXCEPT;

/** @} */

/** @name Policy registration
 *  @{ */

/** Presence bits of `api_msg_policy_reg`, for its member `presence`. */
enum api_msg_policy_reg_presence {
  API_MSG_POLICY_REG_HAS_FIELD1 = 1 << 0,
  API_MSG_POLICY_REG_HAS_OCTETS = 1 << 1,
  API_MSG_POLICY_REG_HAS_FIELD3 = 1 << 2,
  API_MSG_POLICY_REG_HAS_FIELD4 = 1 << 3
};

/** The registration of a policy.
 *  The record owns what its pointers lead to; `pavo_zorv_api_msg_policy_reg_free_ext` releases it. */
typedef struct api_msg_policy_reg {
  uint8_t field1; /**< Field 1, flag. Presence: `API_MSG_POLICY_REG_HAS_FIELD1`. */
  uint8_t *octets; /**< The bytes. Field 2, list of unsigned 8-bit integers: owned array.
      Presence: `API_MSG_POLICY_REG_HAS_OCTETS`. */
  uint32_t octets_count; /**< Elements at `octets`. */
  uint32_t field3; /**< Field 3, unsigned 32-bit. Presence: `API_MSG_POLICY_REG_HAS_FIELD3`. */
  char *field4; /**< Field 4, string: NUL-terminated, owned. Presence: `API_MSG_POLICY_REG_HAS_FIELD4`. */
  uint8_t presence; /**< One bit per field: see `enum api_msg_policy_reg_presence`. */
} api_msg_policy_reg;

/** Decodes an `api_msg_policy_reg` from @p buffer: see @ref decoding. */
PAVO_ZORV_NODISCARD PAVO_ZORV_API int pavo_zorv_api_msg_policy_reg_decode_ext(
    api_msg_policy_reg *out, const unsigned char *buffer, size_t length, pavo_zorv_allocate allocate,
    void *context) PAVO_ZORV_NOEXCEPT;

/** Encodes an `api_msg_policy_reg` into @p buffer, or measures it: see @ref encoding. */
PAVO_ZORV_API size_t pavo_zorv_api_msg_policy_reg_encode_ext(
    const api_msg_policy_reg *in, unsigned char *buffer, size_t length, pavo_zorv_segment *segments,
    uint32_t *segment_count) PAVO_ZORV_NOEXCEPT;

/** Copies an `api_msg_policy_reg` with all that it owns: see @ref copying. */
PAVO_ZORV_NODISCARD PAVO_ZORV_API int pavo_zorv_api_msg_policy_reg_duplicate(
    api_msg_policy_reg *destination, const api_msg_policy_reg *source, pavo_zorv_allocate allocate,
    void *context) PAVO_ZORV_NOEXCEPT;

/** Releases what an `api_msg_policy_reg` owns: see @ref releasing. */
PAVO_ZORV_API void pavo_zorv_api_msg_policy_reg_free_ext(
    api_msg_policy_reg *record, pavo_zorv_release release, void *context) PAVO_ZORV_NOEXCEPT;

/** Orders two `api_msg_policy_reg` records: see @ref comparing. */
PAVO_ZORV_API int pavo_zorv_api_msg_policy_reg_compare(const api_msg_policy_reg *a, const api_msg_policy_reg *b)
    PAVO_ZORV_NOEXCEPT;

/** @} */

/** @name SRv6 prefixes, SID structures and micro-SIDs
 *  @{ */

/** Presence bits of `srv6_prefix`, for its member `presence`. */
enum srv6_prefix_presence {
  SRV6_PREFIX_HAS_FIELD1 = 1 << 0,
  SRV6_PREFIX_HAS_FIELD2 = 1 << 1
};

/** An SRv6 prefix: bytes of any length and a number.
 *  The record owns what its pointers lead to; `pavo_zorv_srv6_prefix_free_ext` releases it. */
typedef struct srv6_prefix {
  unsigned char *field1; /**< Field 1, bytes: owned, or borrowed from the input in reference mode.
      Presence: `SRV6_PREFIX_HAS_FIELD1`. */
  uint64_t field1_length; /**< Bytes at `field1`. */
  uint32_t field2; /**< Field 2, unsigned 32-bit. Presence: `SRV6_PREFIX_HAS_FIELD2`. */
  uint8_t presence; /**< One bit per field: see `enum srv6_prefix_presence`. */
} srv6_prefix;

/** Presence bits of `srv6_sid_struct`, for its member `presence`. */
enum srv6_sid_struct_presence {
  SRV6_SID_STRUCT_HAS_FIELD1 = 1 << 0,
  SRV6_SID_STRUCT_HAS_FIELD2 = 1 << 1,
  SRV6_SID_STRUCT_HAS_FIELD3 = 1 << 2,
  SRV6_SID_STRUCT_HAS_FIELD4 = 1 << 3,
  SRV6_SID_STRUCT_HAS_FIELD5 = 1 << 4,
  SRV6_SID_STRUCT_HAS_FIELD6 = 1 << 5,
  SRV6_SID_STRUCT_HAS_FIELD7 = 1 << 6,
  SRV6_SID_STRUCT_HAS_FIELD8 = 1 << 7
};

/** The structure of an SRv6 SID.
 *  Owns no memory: decoding and copying never call the allocator. */
typedef struct srv6_sid_struct {
  uint8_t field1; /**< Field 1, flag. Presence: `SRV6_SID_STRUCT_HAS_FIELD1`. */
  uint8_t field2; /**< Field 2, flag. Presence: `SRV6_SID_STRUCT_HAS_FIELD2`. */
  uint8_t field3; /**< Field 3, unsigned 8-bit. Presence: `SRV6_SID_STRUCT_HAS_FIELD3`. */
  uint8_t field4; /**< Field 4, unsigned 8-bit. Presence: `SRV6_SID_STRUCT_HAS_FIELD4`. */
  uint8_t field5; /**< Field 5, unsigned 8-bit. Presence: `SRV6_SID_STRUCT_HAS_FIELD5`. */
  uint8_t field6; /**< Field 6, unsigned 8-bit. Presence: `SRV6_SID_STRUCT_HAS_FIELD6`. */
  uint8_t field7; /**< Field 7, unsigned 8-bit. Presence: `SRV6_SID_STRUCT_HAS_FIELD7`. */
  uint8_t field8; /**< Field 8, unsigned 8-bit. Presence: `SRV6_SID_STRUCT_HAS_FIELD8`. */
  uint8_t presence; /**< One bit per field: see `enum srv6_sid_struct_presence`. */
} srv6_sid_struct;

/** Presence bits of `srv6_usid`, for its member `presence`. */
enum srv6_usid_presence {
  SRV6_USID_HAS_FIELD1 = 1 << 0,
  SRV6_USID_HAS_FIELD2 = 1 << 1,
  SRV6_USID_HAS_PREFIX = 1 << 2,
  SRV6_USID_HAS_SID_STRUCT = 1 << 3
};

/** An SRv6 micro-SID.
 *  The record owns what its pointers lead to; `pavo_zorv_srv6_usid_free_ext` releases it. */
typedef struct srv6_usid {
  uint32_t field1; /**< Field 1, unsigned 32-bit. Presence: `SRV6_USID_HAS_FIELD1`. */
  uint32_t field2; /**< Field 2, unsigned 32-bit. Presence: `SRV6_USID_HAS_FIELD2`. */
  struct srv6_prefix prefix; /**< The prefix. Field 3, nested `srv6_prefix`, with presence bits of its own.
      Presence: `SRV6_USID_HAS_PREFIX`. */
  struct srv6_sid_struct sid_struct; /**< The SID structure. Field 4, nested `srv6_sid_struct`, with presence bits of
      its own. Presence: `SRV6_USID_HAS_SID_STRUCT`. */
  uint8_t presence; /**< One bit per field: see `enum srv6_usid_presence`. */
} srv6_usid;

/** Decodes a `srv6_prefix` from @p buffer: see @ref decoding. */
PAVO_ZORV_NODISCARD PAVO_ZORV_API int pavo_zorv_srv6_prefix_decode_ext(
    srv6_prefix *out, const unsigned char *buffer, size_t length, pavo_zorv_allocate allocate, void *context,
    uint32_t options) PAVO_ZORV_NOEXCEPT;

/** Encodes a `srv6_prefix` into @p buffer, or measures it: see @ref encoding. */
PAVO_ZORV_API size_t pavo_zorv_srv6_prefix_encode_ext(
    const srv6_prefix *in, unsigned char *buffer, size_t length, pavo_zorv_segment *segments, uint32_t *segment_count,
    uint32_t options) PAVO_ZORV_NOEXCEPT;

/** Copies a `srv6_prefix` with all that it owns: see @ref copying. */
PAVO_ZORV_NODISCARD PAVO_ZORV_API int pavo_zorv_srv6_prefix_duplicate(
    srv6_prefix *destination, const srv6_prefix *source, pavo_zorv_allocate allocate, void *context) PAVO_ZORV_NOEXCEPT;

/** Releases what a `srv6_prefix` owns: see @ref releasing. */
PAVO_ZORV_API void pavo_zorv_srv6_prefix_free_ext(
    srv6_prefix *record, pavo_zorv_release release, void *context, uint32_t options) PAVO_ZORV_NOEXCEPT;

/** Orders two `srv6_prefix` records: see @ref comparing. */
PAVO_ZORV_API int pavo_zorv_srv6_prefix_compare(const srv6_prefix *a, const srv6_prefix *b) PAVO_ZORV_NOEXCEPT;

/** Decodes a `srv6_sid_struct` from @p buffer: see @ref decoding. Never calls @p allocate. */
PAVO_ZORV_NODISCARD PAVO_ZORV_API int pavo_zorv_srv6_sid_struct_decode_ext(
    srv6_sid_struct *out, const unsigned char *buffer, size_t length, pavo_zorv_allocate allocate,
    void *context) PAVO_ZORV_NOEXCEPT;

/** Encodes a `srv6_sid_struct` into @p buffer, or measures it: see @ref encoding. */
PAVO_ZORV_API size_t pavo_zorv_srv6_sid_struct_encode_ext(
    const srv6_sid_struct *in, unsigned char *buffer, size_t length, pavo_zorv_segment *segments,
    uint32_t *segment_count) PAVO_ZORV_NOEXCEPT;

/** Copies a `srv6_sid_struct` with all that it owns: see @ref copying. Always `CODEC_OK`. */
PAVO_ZORV_NODISCARD PAVO_ZORV_API int pavo_zorv_srv6_sid_struct_duplicate(
    srv6_sid_struct *destination, const srv6_sid_struct *source, pavo_zorv_allocate allocate,
    void *context) PAVO_ZORV_NOEXCEPT;

/** Releases what a `srv6_sid_struct` owns: see @ref releasing. Does nothing: it owns nothing. */
PAVO_ZORV_API void pavo_zorv_srv6_sid_struct_free_ext(srv6_sid_struct *record, pavo_zorv_release release, void *context)
    PAVO_ZORV_NOEXCEPT;

/** Orders two `srv6_sid_struct` records: see @ref comparing. */
PAVO_ZORV_API int pavo_zorv_srv6_sid_struct_compare(const srv6_sid_struct *a, const srv6_sid_struct *b)
    PAVO_ZORV_NOEXCEPT;

/** Decodes a `srv6_usid` from @p buffer: see @ref decoding. */
PAVO_ZORV_NODISCARD PAVO_ZORV_API int pavo_zorv_srv6_usid_decode_ext(
    srv6_usid *out, const unsigned char *buffer, size_t length, pavo_zorv_allocate allocate, void *context,
    uint32_t options) PAVO_ZORV_NOEXCEPT;

/** Encodes a `srv6_usid` into @p buffer, or measures it: see @ref encoding. */
PAVO_ZORV_API size_t pavo_zorv_srv6_usid_encode_ext(
    const srv6_usid *in, unsigned char *buffer, size_t length, pavo_zorv_segment *segments, uint32_t *segment_count,
    uint32_t options) PAVO_ZORV_NOEXCEPT;

/** Copies a `srv6_usid` with all that it owns: see @ref copying. */
PAVO_ZORV_NODISCARD PAVO_ZORV_API int pavo_zorv_srv6_usid_duplicate(
    srv6_usid *destination, const srv6_usid *source, pavo_zorv_allocate allocate, void *context) PAVO_ZORV_NOEXCEPT;

/** Releases what a `srv6_usid` owns: see @ref releasing. */
PAVO_ZORV_API void pavo_zorv_srv6_usid_free_ext(
    srv6_usid *record, pavo_zorv_release release, void *context, uint32_t options) PAVO_ZORV_NOEXCEPT;

/** Orders two `srv6_usid` records: see @ref comparing. */
PAVO_ZORV_API int pavo_zorv_srv6_usid_compare(const srv6_usid *a, const srv6_usid *b) PAVO_ZORV_NOEXCEPT;

/** @} */

/** @name Outgoing segment lists
 *  @{ */

/** Presence bits of `out_sid_list_info`, for its member `presence`. */
enum out_sid_list_info_presence {
  OUT_SID_LIST_INFO_HAS_PREFIX_SID = 1 << 0,
  OUT_SID_LIST_INFO_HAS_FIELD2 = 1 << 1,
  OUT_SID_LIST_INFO_HAS_FIELD3 = 1 << 2,
  OUT_SID_LIST_INFO_HAS_FIELD4 = 1 << 3
};

/** An outgoing segment list.
 *  The record owns what its pointers lead to; `pavo_zorv_out_sid_list_info_free_ext` releases it. */
typedef struct out_sid_list_info {
  struct prefix_sid_type prefix_sid; /**< The segment identifier. Field 1, nested `prefix_sid_type`, with presence bits
      of its own. Presence: `OUT_SID_LIST_INFO_HAS_PREFIX_SID`. */
  uint32_t field2; /**< Field 2, unsigned 32-bit. Presence: `OUT_SID_LIST_INFO_HAS_FIELD2`. */
  uint32_t field3; /**< Field 3, unsigned 32-bit. Presence: `OUT_SID_LIST_INFO_HAS_FIELD3`. */
  unsigned char *field4; /**< Field 4, bytes: owned, or borrowed from the input in reference mode.
      Presence: `OUT_SID_LIST_INFO_HAS_FIELD4`. */
  uint64_t field4_length; /**< Bytes at `field4`. */
  uint8_t presence; /**< One bit per field: see `enum out_sid_list_info_presence`. */
} out_sid_list_info;

/** Presence bits of `out_srv6_usid_list_info`, for its member `presence`. */
enum out_srv6_usid_list_info_presence {
  OUT_SRV6_USID_LIST_INFO_HAS_USIDS = 1 << 0
};

/** An outgoing list of SRv6 micro-SIDs.
 *  The record owns what its pointers lead to; `pavo_zorv_out_srv6_usid_list_info_free_ext` releases it. */
typedef struct out_srv6_usid_list_info {
  srv6_usid *usids; /**< The micro-SIDs. Field 1, list of `srv6_usid`: owned array of records.
      Presence: `OUT_SRV6_USID_LIST_INFO_HAS_USIDS`. */
  uint32_t usids_count; /**< Elements at `usids`. */
  uint8_t presence; /**< One bit per field: see `enum out_srv6_usid_list_info_presence`. */
} out_srv6_usid_list_info;

/** Decodes an `out_sid_list_info` from @p buffer: see @ref decoding. */
PAVO_ZORV_NODISCARD PAVO_ZORV_API int pavo_zorv_out_sid_list_info_decode_ext(
    out_sid_list_info *out, const unsigned char *buffer, size_t length, pavo_zorv_allocate allocate, void *context,
    uint32_t options) PAVO_ZORV_NOEXCEPT;

/** Encodes an `out_sid_list_info` into @p buffer, or measures it: see @ref encoding. */
PAVO_ZORV_API size_t pavo_zorv_out_sid_list_info_encode_ext(
    const out_sid_list_info *in, unsigned char *buffer, size_t length, pavo_zorv_segment *segments,
    uint32_t *segment_count, uint32_t options) PAVO_ZORV_NOEXCEPT;

/** Copies an `out_sid_list_info` with all that it owns: see @ref copying. */
PAVO_ZORV_NODISCARD PAVO_ZORV_API int pavo_zorv_out_sid_list_info_duplicate(
    out_sid_list_info *destination, const out_sid_list_info *source, pavo_zorv_allocate allocate,
    void *context) PAVO_ZORV_NOEXCEPT;

/** Releases what an `out_sid_list_info` owns: see @ref releasing. */
PAVO_ZORV_API void pavo_zorv_out_sid_list_info_free_ext(
    out_sid_list_info *record, pavo_zorv_release release, void *context, uint32_t options) PAVO_ZORV_NOEXCEPT;

/** Orders two `out_sid_list_info` records: see @ref comparing. */
PAVO_ZORV_API int pavo_zorv_out_sid_list_info_compare(const out_sid_list_info *a, const out_sid_list_info *b)
    PAVO_ZORV_NOEXCEPT;

/** Decodes an `out_srv6_usid_list_info` from @p buffer: see @ref decoding. */
PAVO_ZORV_NODISCARD PAVO_ZORV_API int pavo_zorv_out_srv6_usid_list_info_decode_ext(
    out_srv6_usid_list_info *out, const unsigned char *buffer, size_t length, pavo_zorv_allocate allocate,
    void *context, uint32_t options) PAVO_ZORV_NOEXCEPT;

/** Encodes an `out_srv6_usid_list_info` into @p buffer, or measures it: see @ref encoding. */
PAVO_ZORV_API size_t pavo_zorv_out_srv6_usid_list_info_encode_ext(
    const out_srv6_usid_list_info *in, unsigned char *buffer, size_t length, pavo_zorv_segment *segments,
    uint32_t *segment_count, uint32_t options) PAVO_ZORV_NOEXCEPT;

/** Copies an `out_srv6_usid_list_info` with all that it owns: see @ref copying. */
PAVO_ZORV_NODISCARD PAVO_ZORV_API int pavo_zorv_out_srv6_usid_list_info_duplicate(
    out_srv6_usid_list_info *destination, const out_srv6_usid_list_info *source, pavo_zorv_allocate allocate,
    void *context) PAVO_ZORV_NOEXCEPT;

/** Releases what an `out_srv6_usid_list_info` owns: see @ref releasing. */
PAVO_ZORV_API void pavo_zorv_out_srv6_usid_list_info_free_ext(
    out_srv6_usid_list_info *record, pavo_zorv_release release, void *context, uint32_t options) PAVO_ZORV_NOEXCEPT;

/** Orders two `out_srv6_usid_list_info` records: see @ref comparing. */
PAVO_ZORV_API int pavo_zorv_out_srv6_usid_list_info_compare(
    const out_srv6_usid_list_info *a, const out_srv6_usid_list_info *b) PAVO_ZORV_NOEXCEPT;

/** @} */

/** @name OAM requests
 *  @{ */

/** Presence bits of `oam_req`, for its member `presence`. */
enum oam_req_presence {
  OAM_REQ_HAS_FIELD1 = 1 << 0,
  OAM_REQ_HAS_FIELD2 = 1 << 1,
  OAM_REQ_HAS_FIELD3 = 1 << 2,
  OAM_REQ_HAS_PREFIX_SID = 1 << 3,
  OAM_REQ_HAS_FIELD5 = 1 << 4,
  OAM_REQ_HAS_FIELD6 = 1 << 5,
  OAM_REQ_HAS_FIELD7 = 1 << 6,
  OAM_REQ_HAS_FIELD8 = 1 << 7
};

/** An OAM (path verification) request.
 *  The record owns what its pointers lead to; `pavo_zorv_oam_req_free_ext` releases it. */
typedef struct oam_req {
  uint32_t field1; /**< Field 1, unsigned 32-bit. Presence: `OAM_REQ_HAS_FIELD1`. */
  uint32_t field2; /**< Field 2, unsigned 32-bit. Presence: `OAM_REQ_HAS_FIELD2`. */
  char *field3; /**< Field 3, string: NUL-terminated, owned. Presence: `OAM_REQ_HAS_FIELD3`. */
  struct prefix_sid_type prefix_sid; /**< The segment identifier. Field 4, nested `prefix_sid_type`, with presence bits
      of its own. Presence: `OAM_REQ_HAS_PREFIX_SID`. */
  uint32_t field5; /**< Field 5, unsigned 32-bit. Presence: `OAM_REQ_HAS_FIELD5`. */
  unsigned char *field6; /**< Field 6, bytes: owned, or borrowed from the input in reference mode.
      Presence: `OAM_REQ_HAS_FIELD6`. */
  uint64_t field6_length; /**< Bytes at `field6`. */
  uint32_t field7; /**< Field 7, unsigned 32-bit. Presence: `OAM_REQ_HAS_FIELD7`. */
  uint32_t field8; /**< Field 8, unsigned 32-bit. Presence: `OAM_REQ_HAS_FIELD8`. */
  uint8_t presence; /**< One bit per field: see `enum oam_req_presence`. */
} oam_req;

/** Decodes an `oam_req` from @p buffer: see @ref decoding. */
PAVO_ZORV_NODISCARD PAVO_ZORV_API int pavo_zorv_oam_req_decode_ext(
    oam_req *out, const unsigned char *buffer, size_t length, pavo_zorv_allocate allocate, void *context,
    uint32_t options) PAVO_ZORV_NOEXCEPT;

/** Encodes an `oam_req` into @p buffer, or measures it: see @ref encoding. */
PAVO_ZORV_API size_t pavo_zorv_oam_req_encode_ext(
    const oam_req *in, unsigned char *buffer, size_t length, pavo_zorv_segment *segments, uint32_t *segment_count,
    uint32_t options) PAVO_ZORV_NOEXCEPT;

/** Copies an `oam_req` with all that it owns: see @ref copying. */
PAVO_ZORV_NODISCARD PAVO_ZORV_API int pavo_zorv_oam_req_duplicate(
    oam_req *destination, const oam_req *source, pavo_zorv_allocate allocate, void *context) PAVO_ZORV_NOEXCEPT;

/** Releases what an `oam_req` owns: see @ref releasing. */
PAVO_ZORV_API void pavo_zorv_oam_req_free_ext(
    oam_req *record, pavo_zorv_release release, void *context, uint32_t options) PAVO_ZORV_NOEXCEPT;

/** Orders two `oam_req` records: see @ref comparing. */
PAVO_ZORV_API int pavo_zorv_oam_req_compare(const oam_req *a, const oam_req *b) PAVO_ZORV_NOEXCEPT;

/** @} */

/** @name OAM results
 *  @{ */

/** Presence bits of `oam_res`, for its member `presence`. */
enum oam_res_presence {
  OAM_RES_HAS_FIELD1 = 1 << 0,
  OAM_RES_HAS_FIELD2 = 1 << 1,
  OAM_RES_HAS_FIELD3 = 1 << 2,
  OAM_RES_HAS_FIELD4 = 1 << 3,
  OAM_RES_HAS_SID_LISTS = 1 << 4,
  OAM_RES_HAS_FIELD6 = 1 << 5,
  OAM_RES_HAS_USID_LISTS = 1 << 6
};

/** An OAM (path verification) result.
 *  The record owns what its pointers lead to; `pavo_zorv_oam_res_free_ext` releases it. */
typedef struct oam_res {
  uint32_t field1; /**< Field 1, unsigned 32-bit. Presence: `OAM_RES_HAS_FIELD1`. */
  uint32_t field2; /**< Field 2, unsigned 32-bit. Presence: `OAM_RES_HAS_FIELD2`. */
  int32_t field3; /**< Field 3, signed 32-bit. Presence: `OAM_RES_HAS_FIELD3`. */
  uint8_t field4; /**< Field 4, flag. Presence: `OAM_RES_HAS_FIELD4`. */
  out_sid_list_info *sid_lists; /**< The outgoing segment lists. Field 5, list of `out_sid_list_info`: owned array of
      records. Presence: `OAM_RES_HAS_SID_LISTS`. */
  uint32_t sid_lists_count; /**< Elements at `sid_lists`. */
  unsigned char *field6; /**< Field 6, bytes: owned, or borrowed from the input in reference mode.
      Presence: `OAM_RES_HAS_FIELD6`. */
  uint64_t field6_length; /**< Bytes at `field6`. */
  out_srv6_usid_list_info *usid_lists; /**< The outgoing micro-SID lists. Field 7, list of `out_srv6_usid_list_info`:
      owned array of records. Presence: `OAM_RES_HAS_USID_LISTS`. */
  uint32_t usid_lists_count; /**< Elements at `usid_lists`. */
  uint8_t presence; /**< One bit per field: see `enum oam_res_presence`. */
} oam_res;

/** Decodes an `oam_res` from @p buffer: see @ref decoding. */
PAVO_ZORV_NODISCARD PAVO_ZORV_API int pavo_zorv_oam_res_decode_ext(
    oam_res *out, const unsigned char *buffer, size_t length, pavo_zorv_allocate allocate, void *context,
    uint32_t options) PAVO_ZORV_NOEXCEPT;

/** Encodes an `oam_res` into @p buffer, or measures it: see @ref encoding. */
PAVO_ZORV_API size_t pavo_zorv_oam_res_encode_ext(
    const oam_res *in, unsigned char *buffer, size_t length, pavo_zorv_segment *segments, uint32_t *segment_count,
    uint32_t options) PAVO_ZORV_NOEXCEPT;

/** Copies an `oam_res` with all that it owns: see @ref copying. */
PAVO_ZORV_NODISCARD PAVO_ZORV_API int pavo_zorv_oam_res_duplicate(
    oam_res *destination, const oam_res *source, pavo_zorv_allocate allocate, void *context) PAVO_ZORV_NOEXCEPT;

/** Releases what an `oam_res` owns: see @ref releasing. */
PAVO_ZORV_API void pavo_zorv_oam_res_free_ext(
    oam_res *record, pavo_zorv_release release, void *context, uint32_t options) PAVO_ZORV_NOEXCEPT;

/** Orders two `oam_res` records: see @ref comparing. */
PAVO_ZORV_API int pavo_zorv_oam_res_compare(const oam_res *a, const oam_res *b) PAVO_ZORV_NOEXCEPT;

/** @} */

/** @name The message envelope
 *  @{ */

/** Presence bits of `api_msg`, for its member `presence`. */
enum api_msg_presence {
  API_MSG_HAS_FIELD1 = 1 << 0,
  API_MSG_HAS_INTERNAL = 1 << 1,
  API_MSG_HAS_FIELD3 = 1 << 2,
  API_MSG_HAS_FIELD4 = 1 << 3,
  API_MSG_HAS_P2P_AUTO_POLICY_NOTIF = 1 << 4,
  API_MSG_HAS_FIELD6 = 1 << 5,
  API_MSG_HAS_FIELD7 = 1 << 6,
  API_MSG_HAS_P2P_AUTO_POLICY_REQUEST = 1 << 7,
  API_MSG_HAS_P2P_AUTO_POLICY_RESPONSE = 1 << 8,
  API_MSG_HAS_P2P_AUTO_POLICY_SWEEP = 1 << 9,
  API_MSG_HAS_TO_IGP = 1 << 10,
  API_MSG_HAS_TO_ZORV = 1 << 11,
  API_MSG_HAS_OAM_REQ = 1 << 12,
  API_MSG_HAS_OAM_RES = 1 << 13,
  API_MSG_HAS_FIELD15 = 1 << 14,
  API_MSG_HAS_POLICY_REG = 1 << 15
};

/** The envelope: one inline member for each kind of payload, any number of them present.
 *  The record owns what its pointers lead to; `pavo_zorv_api_msg_free_ext` releases it. */
typedef struct api_msg {
  uint64_t field1; /**< Field 1, unsigned 64-bit. Presence: `API_MSG_HAS_FIELD1`. */
  struct api_msg_internal internal; /**< Field 2, nested `api_msg_internal`, with presence bits of its own.
      Presence: `API_MSG_HAS_INTERNAL`. */
  struct api_msg_p2p_auto_policy field3; /**< Field 3, nested `api_msg_p2p_auto_policy`, with presence bits of its own.
      Presence: `API_MSG_HAS_FIELD3`. */
  struct api_msg_p2p_auto_policy field4; /**< Field 4, nested `api_msg_p2p_auto_policy`, with presence bits of its own.
      Presence: `API_MSG_HAS_FIELD4`. */
  struct api_msg_p2p_auto_policy_notif p2p_auto_policy_notif; /**< Field 5, nested `api_msg_p2p_auto_policy_notif`, with
      presence bits of its own. Presence: `API_MSG_HAS_P2P_AUTO_POLICY_NOTIF`. */
  struct api_msg_on_demand_color_notif field6; /**< Field 6, nested `api_msg_on_demand_color_notif`, with presence bits
      of its own. Presence: `API_MSG_HAS_FIELD6`. */
  struct api_msg_on_demand_color_notif field7; /**< Field 7, nested `api_msg_on_demand_color_notif`, with presence bits
      of its own. Presence: `API_MSG_HAS_FIELD7`. */
  struct api_msg_p2p_auto_policy_request p2p_auto_policy_request; /**< Field 8, nested
      `api_msg_p2p_auto_policy_request`, with presence bits of its own.
      Presence: `API_MSG_HAS_P2P_AUTO_POLICY_REQUEST`. */
  struct api_msg_p2p_auto_policy_response p2p_auto_policy_response; /**< Field 9, nested
      `api_msg_p2p_auto_policy_response`, with presence bits of its own.
      Presence: `API_MSG_HAS_P2P_AUTO_POLICY_RESPONSE`. */
  struct api_msg_p2p_auto_policy_sweep p2p_auto_policy_sweep; /**< Field 10, nested `api_msg_p2p_auto_policy_sweep`,
      with presence bits of its own. Presence: `API_MSG_HAS_P2P_AUTO_POLICY_SWEEP`. */
  struct api_to_igp to_igp; /**< Field 11, nested `api_to_igp`, with presence bits of its own.
      Presence: `API_MSG_HAS_TO_IGP`. */
  struct api_to_zorv to_zorv; /**< Field 12, nested `api_to_zorv`, with presence bits of its own.
      Presence: `API_MSG_HAS_TO_ZORV`. */
  struct oam_req oam_req; /**< Field 13, nested `oam_req`, with presence bits of its own.
      Presence: `API_MSG_HAS_OAM_REQ`. */
  struct oam_res oam_res; /**< Field 14, nested `oam_res`, with presence bits of its own.
      Presence: `API_MSG_HAS_OAM_RES`. */
  uint8_t field15; /**< Field 15, flag. Presence: `API_MSG_HAS_FIELD15`. */
  struct api_msg_policy_reg policy_reg; /**< Field 16, nested `api_msg_policy_reg`, with presence bits of its own.
      Presence: `API_MSG_HAS_POLICY_REG`. */
  uint16_t presence; /**< One bit per field: see `enum api_msg_presence`. */
} api_msg;

/** Decodes an `api_msg` from @p buffer: see @ref decoding. */
PAVO_ZORV_NODISCARD PAVO_ZORV_API int pavo_zorv_api_msg_decode_ext(
    api_msg *out, const unsigned char *buffer, size_t length, pavo_zorv_allocate allocate, void *context,
    uint32_t options) PAVO_ZORV_NOEXCEPT;

/** Encodes an `api_msg` into @p buffer, or measures it: see @ref encoding. */
PAVO_ZORV_API size_t pavo_zorv_api_msg_encode_ext(
    const api_msg *in, unsigned char *buffer, size_t length, pavo_zorv_segment *segments, uint32_t *segment_count,
    uint32_t options) PAVO_ZORV_NOEXCEPT;

/** Copies an `api_msg` with all that it owns: see @ref copying. */
PAVO_ZORV_NODISCARD PAVO_ZORV_API int pavo_zorv_api_msg_duplicate(
    api_msg *destination, const api_msg *source, pavo_zorv_allocate allocate, void *context) PAVO_ZORV_NOEXCEPT;

/** Releases what an `api_msg` owns: see @ref releasing. */
PAVO_ZORV_API void pavo_zorv_api_msg_free_ext(
    api_msg *record, pavo_zorv_release release, void *context, uint32_t options) PAVO_ZORV_NOEXCEPT;

/** Orders two `api_msg` records: see @ref comparing. */
PAVO_ZORV_API int pavo_zorv_api_msg_compare(const api_msg *a, const api_msg *b) PAVO_ZORV_NOEXCEPT;

/** @} */

#ifdef __cplusplus
}
#endif

#include "pavo_zorv_layout.h"

#endif /* PAVO_ZORV_H */
