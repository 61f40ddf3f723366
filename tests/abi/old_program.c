/* A program compiled against interface 1 on a 64-bit machine. It declares the records and functions that it uses as
   they were then, so that it does not change with the header. */
#include <stddef.h>
#include <stdint.h>
#include <string.h>

struct segment {
  const unsigned char *start;
  uint64_t length;
};

struct label_stack {
  uint32_t *labels;
  uint32_t label_count;
  uint8_t presence;
};

/* The envelope, of which the program uses a label stack, a flag and their presence bits. */
enum { envelope_size = 1248, label_stack_at = 80, policy_presence_at = 204, flag_at = 1192, presence_at = 1240 };
union envelope {
  unsigned char bytes[envelope_size];
  uint64_t aligned;
};

typedef void *allocate(size_t size, void *context);
typedef void release(void *block, void *context);

int pavo_zorv_api_msg_decode_ext(union envelope *, const unsigned char *, size_t, allocate *, void *, uint32_t);
size_t pavo_zorv_api_msg_encode_ext(const union envelope *, unsigned char *, size_t, struct segment *, uint32_t *,
                                    uint32_t);
int pavo_zorv_api_msg_duplicate(union envelope *, const union envelope *, allocate *, void *);
void pavo_zorv_api_msg_free_ext(union envelope *, release *, void *, uint32_t);
int pavo_zorv_api_msg_compare(const union envelope *, const union envelope *);
int pavo_zorv_api_lbl_stack_compare(const struct label_stack *, const struct label_stack *);

static uint64_t blocks[4][8];
static size_t taken, given;

static void *take(size_t size, void *context) {
  return context == &taken && taken < 4 && size <= sizeof blocks[0] ? blocks[taken++] : NULL;
}

static void give(void *block, void *context) {
  if (context == &given && block != NULL) ++given;
}

int main(void) {
  /* field3 { label_stack { labels: 16, 24001 } }, field15: 1 */
  static const unsigned char bytes[] = {0x1a, 0x08, 0x3a, 0x06, 0x08, 0x10, 0x08, 0xc1, 0xbb, 0x01, 0x78, 0x01};
  static union envelope envelope, copy;
  memset(&envelope, 0xff, sizeof envelope);
  memset(envelope.bytes + presence_at, 0, 2);
  if (pavo_zorv_api_msg_decode_ext(&envelope, bytes, sizeof bytes, take, &taken, 0) != 0) return 1;

  struct label_stack stack;
  uint16_t presence;
  uint32_t policy_presence;
  memcpy(&stack, envelope.bytes + label_stack_at, sizeof stack);
  memcpy(&presence, envelope.bytes + presence_at, sizeof presence);
  memcpy(&policy_presence, envelope.bytes + policy_presence_at, sizeof policy_presence);
  if (stack.label_count != 2 || stack.labels[0] != 16 || stack.labels[1] != 24001 || (stack.presence & 1) == 0)
    return 2;
  if (presence != 0x4004 || (policy_presence & 0x40) == 0 || envelope.bytes[flag_at] != 1) return 3;

  if (pavo_zorv_api_msg_duplicate(&copy, &envelope, take, &taken) != 0 || taken != 2) return 4;
  if (pavo_zorv_api_msg_compare(&envelope, &copy) != 0) return 5;
  uint32_t other[] = {16, 24002};
  struct label_stack greater = {other, 2, 1};
  if (pavo_zorv_api_lbl_stack_compare(&stack, &greater) >= 0) return 6;

  unsigned char again[sizeof bytes];
  struct segment segments[3];
  uint32_t count = 3;
  if (pavo_zorv_api_msg_encode_ext(&copy, again, sizeof again, segments, &count, 0) != sizeof again) return 7;
  if (memcmp(again, bytes, sizeof bytes) != 0 || count != 3) return 8;
  if (segments[0].start != again + 4 || segments[0].length != 6 || segments[1].start != again + 2 ||
      segments[1].length != 8 || segments[2].start != again || segments[2].length != sizeof again)
    return 9;

  pavo_zorv_api_msg_free_ext(&copy, give, &given, 0);
  pavo_zorv_api_msg_free_ext(&envelope, give, &given, 0);
  return given == 2 ? 0 : 10;
}
