/** @file
 *  Messages on a stream of bytes, such as a TCP connection or a file: each with its length before it. C99 and C++. All
 *  of it is inline: the library exports nothing of it, and it calls nothing but `memmove`.
 *
 *  A message does not say where it ends, so a stream needs a prefix before each message. Both sides must agree on its
 *  form:
 *
 *  | form | prefix | longest message |
 *  |---|---|---|
 *  | `PAVO_ZORV_PREFIX_VARINT` | a varint, as Protocol Buffers libraries write "delimited" messages | any |
 *  | `PAVO_ZORV_PREFIX_BE16` | 16 bits, big-endian (network byte order) | 65,535 bytes |
 *  | `PAVO_ZORV_PREFIX_BE32` | 32 bits, big-endian (network byte order) | 4,294,967,295 bytes |
 *  | `PAVO_ZORV_PREFIX_LE32` | 32 bits, little-endian | 4,294,967,295 bytes |
 *
 *  Nothing here needs memory but the caller's buffers, or keeps state outside of them. No function may be passed null,
 *  except where it says so. Two threads must not use the same `pavo_zorv_stream` at once; different ones are
 *  independent.
 *
 *  @section sending Sending
 *
 *  Encode the message into a buffer after room for a prefix, then write the prefix before it:
 *  @code{.c}
 *  unsigned char buffer[PAVO_ZORV_PREFIX_SIZE + 4096], *message = buffer + PAVO_ZORV_PREFIX_SIZE;
 *  size_t length = pavo_zorv_api_msg_encode_ext(&record, message, 4096, NULL, NULL, 0);
 *  if (length > 4096) return -1; // too long for the buffer
 *  unsigned char *first = pavo_zorv_prefix_before(message, PAVO_ZORV_PREFIX_VARINT, length);
 *  send_all(socket, first, (size_t)(message - first) + length);
 *  @endcode
 *
 *  @section receiving Receiving
 *
 *  A `pavo_zorv_stream` puts together what arrives in pieces of any size, in one buffer of the caller's, and gives out
 *  one complete message after the other. No message is longer than its limit, whatever a prefix announces: the rest of
 *  the stream cannot be read then, and the connection should be closed.
 *  @code{.c}
 *  unsigned char buffer[PAVO_ZORV_STREAM_SIZE(4096)];
 *  pavo_zorv_stream stream;
 *  pavo_zorv_stream_init(&stream, PAVO_ZORV_PREFIX_VARINT, buffer, sizeof buffer, 4096);
 *  for (;;) {
 *    size_t room;
 *    unsigned char *space = pavo_zorv_stream_space(&stream, &room);
 *    ssize_t count = read(socket, space, room);
 *    if (count <= 0) return pavo_zorv_stream_is_between_messages(&stream) ? 0 : -1;
 *    pavo_zorv_stream_filled(&stream, (size_t)count);
 *
 *    const unsigned char *message;
 *    size_t length;
 *    int result;
 *    while ((result = pavo_zorv_stream_next(&stream, &message, &length)) == PAVO_ZORV_FRAME_COMPLETE) {
 *      use(message, length);
 *    }
 *    if (result != PAVO_ZORV_FRAME_INCOMPLETE) return -1;
 *  }
 *  @endcode
 */
#ifndef PAVO_ZORV_FRAMING_H
#define PAVO_ZORV_FRAMING_H

#include <stddef.h>
#include <stdint.h>
#include <string.h>

#include "pavo_zorv.h"

#ifdef __cplusplus
extern "C" {
#endif

/** How the length of a message is written before it. */
typedef enum pavo_zorv_prefix {
  PAVO_ZORV_PREFIX_VARINT, /**< A varint of 1 to 10 bytes. */
  PAVO_ZORV_PREFIX_BE16, /**< 16 bits, big-endian. */
  PAVO_ZORV_PREFIX_BE32, /**< 32 bits, big-endian. */
  PAVO_ZORV_PREFIX_LE32 /**< 32 bits, little-endian. */
} pavo_zorv_prefix;

/** What reading a frame, a prefix with its message, can give. */
enum pavo_zorv_frame_result {
  PAVO_ZORV_FRAME_COMPLETE = 1, /**< The message is there. */
  PAVO_ZORV_FRAME_INCOMPLETE = 0, /**< More bytes are needed. */
  PAVO_ZORV_FRAME_TOO_LONG = -1, /**< The message would be longer than the limit. */
  PAVO_ZORV_FRAME_BAD_PREFIX = -2 /**< A varint of more than 64 bits or 10 bytes. */
};

/** Bytes of the longest prefix of any form. */
#define PAVO_ZORV_PREFIX_SIZE 10

/** Bytes of a buffer with which a `pavo_zorv_stream` can read messages of up to @p limit bytes. */
#define PAVO_ZORV_STREAM_SIZE(limit) ((limit) + PAVO_ZORV_PREFIX_SIZE)

/** @name Prefixes
 *  @{ */

/** Returns how many bytes the prefix of a message of @p length bytes takes; 0 if a prefix of this form cannot hold that
 *  length. */
PAVO_ZORV_NODISCARD PAVO_ZORV_INLINE_FUNCTION size_t pavo_zorv_prefix_size(pavo_zorv_prefix form, uint64_t length) {
  size_t size = 1;
  switch (form) {
    case PAVO_ZORV_PREFIX_BE16:
      return length <= 0xffff ? 2 : 0;
    case PAVO_ZORV_PREFIX_BE32:
    case PAVO_ZORV_PREFIX_LE32:
      return length <= 0xffffffff ? 4 : 0;
    case PAVO_ZORV_PREFIX_VARINT:
    default:
      for (; length >= 0x80; length >>= 7) ++size;
      return size;
  }
}

/** Writes the prefix of a message of @p length bytes to @p to, where `pavo_zorv_prefix_size` bytes must fit. Returns
 *  that size; 0 if a prefix of this form cannot hold that length, and then nothing is written. */
PAVO_ZORV_NODISCARD PAVO_ZORV_INLINE_FUNCTION size_t
pavo_zorv_prefix_write(unsigned char *to, pavo_zorv_prefix form, uint64_t length) {
  const size_t size = pavo_zorv_prefix_size(form, length);
  size_t at;
  for (at = 0; at < size; ++at) {
    const size_t shift = form == PAVO_ZORV_PREFIX_VARINT ? 7 * at
                         : form == PAVO_ZORV_PREFIX_LE32 ? 8 * at
                                                         : 8 * (size - 1 - at);
    const uint64_t more = form == PAVO_ZORV_PREFIX_VARINT && at + 1 < size ? 0x80 : 0;
    const uint64_t mask = form == PAVO_ZORV_PREFIX_VARINT ? 0x7f : 0xff;
    to[at] = PAVO_ZORV_CAST_(unsigned char, (length >> shift & mask) | more);
  }
  return size;
}

/** Writes the prefix of a message directly before its first byte, @p message, where up to `PAVO_ZORV_PREFIX_SIZE` bytes
 *  of the same buffer must be free. Returns the first byte of the prefix; null if a prefix of this form cannot hold the
 *  length, and then nothing is written. */
PAVO_ZORV_NODISCARD PAVO_ZORV_INLINE_FUNCTION unsigned char *pavo_zorv_prefix_before(
    unsigned char *message, pavo_zorv_prefix form, uint64_t length) {
  const size_t size = pavo_zorv_prefix_size(form, length);
  if (size == 0) return NULL;
  return message - pavo_zorv_prefix_write(message - size, form, length);
}

/** Where a message begins and how long it is, as its prefix says. */
typedef struct pavo_zorv_frame {
  size_t prefix; /**< Bytes of the prefix; 0 if it is not complete. */
  uint64_t length; /**< Bytes of the message after it; 0 if the prefix is not complete. */
} pavo_zorv_frame;

/** Reads the frame at the beginning of @p bytes. Keeps no state: to be called again with more bytes if the frame is not
 *  complete. The result does not depend on how many bytes come after the frame, or after the byte with which it fails.
 *
 *  @p frame is set in any case. With `PAVO_ZORV_FRAME_INCOMPLETE` and a `prefix` that is not 0, exactly
 *  `prefix + length - size` bytes are missing. A varint may have more bytes than it needs, up to 10, as readers of
 *  Protocol Buffers accept it. @p bytes may be null if @p size is 0.
 *
 *  Returns a `pavo_zorv_frame_result`. */
PAVO_ZORV_NODISCARD PAVO_ZORV_INLINE_FUNCTION int pavo_zorv_frame_read(
    pavo_zorv_frame *frame, pavo_zorv_prefix form, const unsigned char *bytes, size_t size, uint64_t limit) {
  uint64_t length = 0;
  size_t prefix;
  size_t at;
  frame->prefix = 0;
  frame->length = 0;
  if (form == PAVO_ZORV_PREFIX_VARINT) {
    for (at = 0;; ++at) {
      uint64_t group;
      if (at == size) return PAVO_ZORV_FRAME_INCOMPLETE;
      group = bytes[at] & 0x7f;
      /* The tenth byte holds the 64th bit alone. */
      if (at == PAVO_ZORV_PREFIX_SIZE - 1 && bytes[at] > 1) return PAVO_ZORV_FRAME_BAD_PREFIX;
      length |= group << (7 * at);
      /* What comes after can only make it longer. */
      if (length > limit) return PAVO_ZORV_FRAME_TOO_LONG;
      if (bytes[at] < 0x80) break;
    }
    prefix = at + 1;
  } else {
    prefix = form == PAVO_ZORV_PREFIX_BE16 ? 2 : 4;
    if (size < prefix) return PAVO_ZORV_FRAME_INCOMPLETE;
    for (at = 0; at < prefix; ++at) {
      length = length << 8 | bytes[form == PAVO_ZORV_PREFIX_LE32 ? prefix - 1 - at : at];
    }
    if (length > limit) return PAVO_ZORV_FRAME_TOO_LONG;
  }
  frame->prefix = prefix;
  frame->length = length;
  return length <= size - prefix ? PAVO_ZORV_FRAME_COMPLETE : PAVO_ZORV_FRAME_INCOMPLETE;
}

/** @} */

/** @name Streams
 *  @{ */

/** What has arrived of a stream and is not used yet. Initialised by `pavo_zorv_stream_init`; the members are only to be
 *  read. */
typedef struct pavo_zorv_stream {
  unsigned char *buffer; /**< The caller's buffer. */
  size_t size; /**< Its size. */
  size_t first; /**< Where the bytes begin that are not used yet. */
  size_t last; /**< Where they end. */
  uint64_t limit; /**< Bytes of the longest message. */
  pavo_zorv_prefix form; /**< The form of the prefixes. */
  int failure; /**< The result that ended the stream; 0 if none did. */
} pavo_zorv_stream;

/** Begins to read a stream into @p buffer, which stays the caller's and must outlive the stream. No message may be
 *  longer than @p limit bytes; if the buffer has fewer than `PAVO_ZORV_STREAM_SIZE(limit)` bytes, the limit is that of
 *  the buffer: `size - PAVO_ZORV_PREFIX_SIZE`. The buffer must have at least `PAVO_ZORV_PREFIX_SIZE` bytes.
 *
 *  A larger buffer than needed reads more messages at once. */
PAVO_ZORV_INLINE_FUNCTION void pavo_zorv_stream_init(
    pavo_zorv_stream *stream, pavo_zorv_prefix form, unsigned char *buffer, size_t size, uint64_t limit) {
  const size_t most = size < PAVO_ZORV_PREFIX_SIZE ? 0 : size - PAVO_ZORV_PREFIX_SIZE;
  stream->buffer = buffer;
  stream->size = size;
  stream->first = 0;
  stream->last = 0;
  stream->limit = limit < most ? limit : most;
  stream->form = form;
  stream->failure = 0;
}

/** Returns where the next bytes of the stream are to be stored, and sets @p room to how many may be. That is never 0
 *  after `pavo_zorv_stream_next` has returned `PAVO_ZORV_FRAME_INCOMPLETE`; it may be 0 while there are messages to be
 *  taken, and is 0 after a failure. May move what is not used yet to the beginning of the buffer: messages that were
 *  returned before must not be used any more. Nothing is moved while a whole message is waiting, so that each byte is
 *  moved at most once. */
PAVO_ZORV_NODISCARD PAVO_ZORV_INLINE_FUNCTION unsigned char *pavo_zorv_stream_space(
    pavo_zorv_stream *stream, size_t *room) {
  const unsigned char *const bytes = stream->buffer + stream->first;
  const size_t unused = stream->last - stream->first;
  pavo_zorv_frame frame;
  if (stream->first != 0 && (unused == 0 || (stream->last == stream->size &&
                                             pavo_zorv_frame_read(&frame, stream->form, bytes, unused, stream->limit) !=
                                                 PAVO_ZORV_FRAME_COMPLETE))) {
    memmove(stream->buffer, bytes, unused);
    stream->last -= stream->first;
    stream->first = 0;
  }
  *room = stream->failure != 0 ? 0 : stream->size - stream->last;
  return stream->buffer + stream->last;
}

/** Says that @p count bytes were stored, at most as many as `pavo_zorv_stream_space` had room for. */
PAVO_ZORV_INLINE_FUNCTION void pavo_zorv_stream_filled(pavo_zorv_stream *stream, size_t count) {
  stream->last += count;
}

/** Takes the next message. With `PAVO_ZORV_FRAME_COMPLETE`, @p message and @p length say where it is, until the next
 *  call of `pavo_zorv_stream_space`; it may be empty. Otherwise they are null and 0: `PAVO_ZORV_FRAME_INCOMPLETE` asks
 *  for more bytes, and any other result ends the stream, and is returned from then on.
 *
 *  Messages may be decoded in reference mode, as long as the records are released before more bytes are stored. */
PAVO_ZORV_NODISCARD PAVO_ZORV_INLINE_FUNCTION int pavo_zorv_stream_next(
    pavo_zorv_stream *stream, const unsigned char **message, size_t *length) {
  pavo_zorv_frame frame;
  const unsigned char *const bytes = stream->buffer + stream->first;
  int result = stream->failure;
  *message = NULL;
  *length = 0;
  if (result != 0) return result;
  result = pavo_zorv_frame_read(&frame, stream->form, bytes, stream->last - stream->first, stream->limit);
  if (result == PAVO_ZORV_FRAME_COMPLETE) {
    *message = bytes + frame.prefix;
    *length = PAVO_ZORV_CAST_(size_t, frame.length);
    stream->first += frame.prefix + *length;
  } else if (result != PAVO_ZORV_FRAME_INCOMPLETE) {
    stream->failure = result;
  }
  return result;
}

/** Returns 1 if the stream may end here: all messages were taken and nothing of another has arrived. Otherwise 0: the
 *  stream was cut off, or has failed. */
PAVO_ZORV_NODISCARD PAVO_ZORV_INLINE_FUNCTION int pavo_zorv_stream_is_between_messages(const pavo_zorv_stream *stream) {
  return stream->failure == 0 && stream->first == stream->last;
}

/** Returns a `pavo_zorv_frame_result` as a phrase for a log. Never null; the text is constant and must not be released.
 */
PAVO_ZORV_NODISCARD PAVO_ZORV_INLINE_FUNCTION const char *pavo_zorv_frame_text(int result) {
  switch (result) {
    case PAVO_ZORV_FRAME_COMPLETE:
      return "a message";
    case PAVO_ZORV_FRAME_INCOMPLETE:
      return "a part of a message";
    case PAVO_ZORV_FRAME_TOO_LONG:
      return "a message that is longer than the limit";
    case PAVO_ZORV_FRAME_BAD_PREFIX:
      return "a length prefix that is not a 64-bit varint";
    default:
      return "not a result of reading a frame";
  }
}

/** @} */

#ifdef __cplusplus
}
#endif

#endif /* PAVO_ZORV_FRAMING_H */
