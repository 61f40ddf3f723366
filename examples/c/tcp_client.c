// A client for tcp_server: opens many connections, sends requests on all of them before it reads any answer, and checks
// the answers.
//
//   tcp_client PORT CONNECTIONS
#define _POSIX_C_SOURCE 200809L
#include <arpa/inet.h>
#include <netinet/in.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/socket.h>
#include <unistd.h>

#include "pavo_zorv.h"
#include "pavo_zorv_framing.h"
#include "pavo_zorv_memory.h"

enum { longest_message = 4096, requests = 3 };

typedef struct connection {
  int socket;
  pavo_zorv_stream input;
  unsigned char input_buffer[PAVO_ZORV_STREAM_SIZE(longest_message)];
} connection;

static int connect_to(connection *made, unsigned port) {
  struct sockaddr_in address;
  memset(&address, 0, sizeof address);
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  address.sin_port = htons((uint16_t)port);
  made->socket = socket(AF_INET, SOCK_STREAM, 0);
  if (made->socket < 0) return -1;
  pavo_zorv_stream_init(&made->input, PAVO_ZORV_PREFIX_VARINT, made->input_buffer, sizeof made->input_buffer,
                        longest_message);
  return connect(made->socket, (struct sockaddr *)&address, sizeof address);
}

static int send_all(int socket, const unsigned char *bytes, size_t length) {
  while (length != 0) {
    ssize_t sent = send(socket, bytes, length, MSG_NOSIGNAL);
    if (sent <= 0) return -1;
    bytes += sent;
    length -= (size_t)sent;
  }
  return 0;
}

//! [send]
// The prefix is written before the message, once its length is known.
static int send_message(connection *to, const api_msg *message) {
  unsigned char buffer[PAVO_ZORV_PREFIX_SIZE + longest_message], *first = buffer + PAVO_ZORV_PREFIX_SIZE;
  size_t length = pavo_zorv_api_msg_encode_ext(message, first, longest_message, NULL, NULL, 0);
  const unsigned char *prefix;
  if (length > longest_message) return -1;
  prefix = pavo_zorv_prefix_before(first, PAVO_ZORV_PREFIX_VARINT, length);
  return send_all(to->socket, prefix, (size_t)(first - prefix) + length);
}
//! [send]

//! [receive]
// Reads until there is a whole message, which stays in the buffer until the next call. Returns -1 if there is none.
static int receive_message(connection *from, const unsigned char **message, size_t *length) {
  int result;
  while ((result = pavo_zorv_stream_next(&from->input, message, length)) == PAVO_ZORV_FRAME_INCOMPLETE) {
    size_t room;
    unsigned char *space = pavo_zorv_stream_space(&from->input, &room);
    ssize_t count = recv(from->socket, space, room, 0);
    if (count <= 0) return -1;
    pavo_zorv_stream_filled(&from->input, (size_t)count);
  }
  return result == PAVO_ZORV_FRAME_COMPLETE ? 0 : -1;
}
//! [receive]

// The requests of a connection name one policy, each with one label more than the one before.
static int send_requests(connection *to) {
  uint32_t labels[requests] = {16, 24001, 16051};
  char name[] = "to-node-51";
  uint32_t number;
  for (number = 1; number <= requests; ++number) {
    api_msg request = {0};
    api_msg_p2p_auto_policy *policy = &request.p2p_auto_policy_request.policy;
    request.field1 = number;
    request.presence = API_MSG_HAS_FIELD1 | API_MSG_HAS_P2P_AUTO_POLICY_REQUEST;
    request.p2p_auto_policy_request.presence = API_MSG_P2P_AUTO_POLICY_REQUEST_HAS_POLICY;
    policy->field1 = name;
    policy->label_stack.labels = labels;
    policy->label_stack.label_count = number;
    policy->label_stack.presence = API_LBL_STACK_HAS_LABELS;
    policy->presence = API_MSG_P2P_AUTO_POLICY_HAS_FIELD1 | API_MSG_P2P_AUTO_POLICY_HAS_LABEL_STACK;
    if (send_message(to, &request) != 0) return -1;
  }
  return 0;
}

// Each answer has the labels of the request before.
static int check_answers(connection *from) {
  uint32_t number;
  for (number = 1; number <= requests; ++number) {
    const unsigned char *bytes;
    size_t length;
    api_msg reply;
    int result, is_right;
    if (receive_message(from, &bytes, &length) != 0) return -1;
    result = pavo_zorv_api_msg_decode_ext(&reply, bytes, length, pavo_zorv_heap_allocate, NULL, 0);
    is_right = result == CODEC_OK && reply.field1 == number &&
               reply.p2p_auto_policy_response.notification.label_stack.label_count == number - 1;
    pavo_zorv_api_msg_free_ext(&reply, pavo_zorv_heap_release, NULL, 0);
    if (!is_right) return -1;
  }
  return 0;
}

int main(int count, char **arguments) {
  const unsigned port = count == 3 ? (unsigned)strtoul(arguments[1], NULL, 10) : 0;
  const size_t connections = count == 3 ? strtoul(arguments[2], NULL, 10) : 0;
  connection *opened = calloc(connections != 0 ? connections : 1, sizeof *opened);
  size_t i;
  if (opened == NULL || connections == 0) {
    fputs("usage: tcp_client PORT CONNECTIONS\n", stderr);
    free(opened);
    return 2;
  }
  for (i = 0; i < connections; ++i) {
    if (connect_to(&opened[i], port) != 0 || send_requests(&opened[i]) != 0) return 1;
  }
  for (i = 0; i < connections; ++i) {
    if (check_answers(&opened[i]) != 0) return 1;
    close(opened[i].socket);
  }
  printf("%zu connections, %zu answers\n", connections, connections * requests);
  free(opened);
  return 0;
}
