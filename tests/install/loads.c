/* A user's program that loads the library at run time, several times, and links nothing: loads LIBRARY. Prints the
   encoding that consumer.c prints. */
#define _GNU_SOURCE
#include <dlfcn.h>
#include <pavo_zorv.h>
#include <stdio.h>
#include <string.h>

typedef size_t encode_function(const api_msg *, void *, size_t, pavo_zorv_segment *, uint32_t *, uint32_t);

/* A function pointer from the loader's void *, which ISO C does not convert. */
static encode_function *function(void *address) {
  encode_function *result;
  memcpy(&result, &address, sizeof result);
  return result;
}

int main(int count, char **arguments) {
  static uint32_t labels[] = {16, 24001};
  api_msg message = {.field1 = 7, .presence = API_MSG_HAS_FIELD1 | API_MSG_HAS_FIELD3};
  message.field3.label_stack.labels = labels;
  message.field3.label_stack.label_count = 2;
  message.field3.label_stack.presence = API_LBL_STACK_HAS_LABELS;
  message.field3.presence = API_MSG_P2P_AUTO_POLICY_HAS_LABEL_STACK;

  unsigned char bytes[32] = {0};
  size_t length = 0;
  for (int round = 0; round < 3; ++round) {
    void *library = count == 2 ? dlopen(arguments[1], RTLD_NOW | RTLD_LOCAL) : NULL;
    if (library == NULL) return 1;
    encode_function *encode = function(dlsym(library, "pavo_zorv_api_msg_encode_ext"));
    if (encode == NULL || function(dlvsym(library, "pavo_zorv_api_msg_encode_ext", "PAVO_ZORV_1")) != encode) return 2;
    if (dlsym(library, "pavo_zorv_no_such_function") != NULL) return 3;
    length = encode(&message, bytes, sizeof bytes, NULL, NULL, 0);
    if (length > sizeof bytes || dlclose(library) != 0) return 4;
    if (dlopen(arguments[1], RTLD_NOW | RTLD_NOLOAD) != NULL) return 5;
  }
  for (size_t i = 0; i < length; ++i) printf("%02x", bytes[i]);
  return 0;
}
