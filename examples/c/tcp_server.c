// A server on TCP with many connections: each has its own buffers, an arena for the message that it is working on, and
// a budget for what it remembers. It remembers the policies that its client asks for, and answers each request with
// what it knew before. Whatever a client sends, or does not read, the others are served.
//
//   tcp_server      listens on a free port of 127.0.0.1, which it prints, until its standard input ends
#define _POSIX_C_SOURCE 200809L
#include <arpa/inet.h>
#include <errno.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <poll.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/socket.h>
#include <unistd.h>

#include "pavo_zorv.h"
#include "pavo_zorv_framing.h"
#include "pavo_zorv_memory.h"

//! [connection]
enum {
  most_connections = 100,
  longest_message = 4096,
  most_arena = 16 * 1024,  // for one message; taken again for the next
  most_remembered = 4096,  // of the heap, for as long as the connection is open
  most_policies = 32
};

typedef struct connection {
  int socket;
  unsigned number;
  pavo_zorv_stream input;
  unsigned char input_buffer[PAVO_ZORV_STREAM_SIZE(longest_message)];
  unsigned char output_buffer[PAVO_ZORV_PREFIX_SIZE + longest_message];
  const unsigned char *output;  // what is still to be sent
  size_t output_length;
  unsigned char arena_block[most_arena];
  pavo_zorv_pool arena;
  pavo_zorv_budget budget;
  api_msg_p2p_auto_policy policies[most_policies];
  size_t policy_count;
  unsigned long messages;
  int has_ended;  // the client sends nothing more
} connection;
//! [connection]

static void make_connection(connection *made, int socket, unsigned number) {
  memset(made, 0, sizeof *made);
  made->socket = socket;
  made->number = number;
  pavo_zorv_stream_init(&made->input, PAVO_ZORV_PREFIX_VARINT, made->input_buffer, sizeof made->input_buffer,
                        longest_message);
  pavo_zorv_pool_init(&made->arena, made->arena_block, sizeof made->arena_block);
  pavo_zorv_budget_init(&made->budget, most_remembered, pavo_zorv_heap_allocate, pavo_zorv_heap_release, NULL);
}

static void close_connection(connection *closed, const char *why) {
  size_t i;
  for (i = 0; i < closed->policy_count; ++i) {
    pavo_zorv_api_msg_p2p_auto_policy_free_ext(&closed->policies[i], pavo_zorv_budget_release, &closed->budget, 0);
  }
  printf("connection %u: %s after %lu messages, %zu policies, %zu bytes not released\n", closed->number, why,
         closed->messages, closed->policy_count, closed->budget.spent);
  close(closed->socket);
  free(closed);
}

// Sends what the socket takes of the output. Returns null, or why the connection has to be closed.
static const char *send_output(connection *to) {
  while (to->output_length != 0) {
    ssize_t sent = send(to->socket, to->output, to->output_length, MSG_NOSIGNAL);
    if (sent < 0 && (errno == EAGAIN || errno == EWOULDBLOCK)) return NULL;
    if (sent < 0) return "failed";
    to->output += sent;
    to->output_length -= (size_t)sent;
  }
  return NULL;
}

//! [send]
static const char *send_message(connection *to, const api_msg *message) {
  unsigned char *first = to->output_buffer + PAVO_ZORV_PREFIX_SIZE;
  size_t length = pavo_zorv_api_msg_encode_ext(message, first, longest_message, NULL, NULL, 0);
  if (length > longest_message) return "refused: an answer would be too long";
  to->output = pavo_zorv_prefix_before(first, PAVO_ZORV_PREFIX_VARINT, length);
  to->output_length = (size_t)(first - to->output) + length;
  return send_output(to);
}
//! [send]

// The policy of that name, or null.
static api_msg_p2p_auto_policy *find_policy(connection *client, const char *name) {
  size_t i;
  for (i = 0; i < client->policy_count; ++i) {
    if (strcmp(client->policies[i].field1, name) == 0) return &client->policies[i];
  }
  return NULL;
}

// Remembers a policy in place of one of the same name. The copy is paid for by the connection's budget.
static const char *remember_policy(connection *client, const api_msg_p2p_auto_policy *policy) {
  api_msg_p2p_auto_policy *known = find_policy(client, policy->field1);
  api_msg_p2p_auto_policy copy;
  if (known == NULL && client->policy_count == most_policies) return "refused: too many policies";
  if (pavo_zorv_api_msg_p2p_auto_policy_duplicate(&copy, policy, pavo_zorv_budget_allocate, &client->budget) !=
      CODEC_OK) {
    pavo_zorv_api_msg_p2p_auto_policy_free_ext(&copy, pavo_zorv_budget_release, &client->budget, 0);
    return "refused: its policies take too much memory";
  }
  if (known != NULL) {
    pavo_zorv_api_msg_p2p_auto_policy_free_ext(known, pavo_zorv_budget_release, &client->budget, 0);
  } else {
    known = &client->policies[client->policy_count++];
  }
  *known = copy;
  return NULL;
}

// Answers a request with the labels that the policy had before.
static const char *answer(connection *client, const api_msg *request) {
  const api_msg_p2p_auto_policy *policy = &request->p2p_auto_policy_request.policy;
  const api_msg_p2p_auto_policy *known;
  api_msg_p2p_auto_policy_notif *notification;
  const char *failure;
  api_msg reply = {0};
  if ((request->presence & API_MSG_HAS_P2P_AUTO_POLICY_REQUEST) == 0 ||
      (policy->presence & API_MSG_P2P_AUTO_POLICY_HAS_FIELD1) == 0) {
    return "refused: not a request for a policy";
  }
  reply.field1 = request->field1;
  reply.p2p_auto_policy_response.presence = API_MSG_P2P_AUTO_POLICY_RESPONSE_HAS_NOTIFICATION;
  reply.presence = API_MSG_HAS_FIELD1 | API_MSG_HAS_P2P_AUTO_POLICY_RESPONSE;
  notification = &reply.p2p_auto_policy_response.notification;
  notification->field1 = policy->field1;  // borrowed: the reply is not released
  notification->presence = API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_FIELD1;
  known = find_policy(client, policy->field1);
  if (known != NULL) {
    notification->label_stack = known->label_stack;
    notification->presence |= API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_LABEL_STACK;
  }
  failure = send_message(client, &reply);
  return failure != NULL ? failure : remember_policy(client, policy);
}

//! [work]
// Works on the messages that have arrived, until there is no other or the client has to take an answer first. Returns
// null, or why the connection has to be closed.
static const char *work(connection *client) {
  while (client->output_length == 0) {
    const unsigned char *bytes;
    const char *failure;
    size_t length;
    api_msg received;
    int result = pavo_zorv_stream_next(&client->input, &bytes, &length);
    if (result == PAVO_ZORV_FRAME_INCOMPLETE) {
      if (!client->has_ended) return NULL;
      return pavo_zorv_stream_is_between_messages(&client->input) ? "closed" : "cut off";
    }
    if (result != PAVO_ZORV_FRAME_COMPLETE) return "refused: a message is too long";
    pavo_zorv_pool_reset(&client->arena);
    result = pavo_zorv_api_msg_decode_ext(&received, bytes, length, pavo_zorv_pool_allocate, &client->arena, 0);
    if (result == CODEC_ERR_NO_MEMORY) return "refused: a message takes too much memory";
    if (result != CODEC_OK) return "refused: a message cannot be decoded";
    ++client->messages;
    failure = answer(client, &received);
    if (failure != NULL) return failure;
  }
  return NULL;
}

// What is to be done after a socket was found ready.
static const char *continue_connection(connection *client) {
  const char *failure = send_output(client);
  if (failure == NULL && client->output_length == 0 && !client->has_ended) {
    size_t room;
    unsigned char *space = pavo_zorv_stream_space(&client->input, &room);
    ssize_t count = room != 0 ? recv(client->socket, space, room, 0) : 0;
    if (count > 0) pavo_zorv_stream_filled(&client->input, (size_t)count);
    if (count == 0 && room != 0) client->has_ended = 1;
    if (count < 0 && errno != EAGAIN && errno != EWOULDBLOCK) return "failed";
  }
  return failure != NULL ? failure : work(client);
}
//! [work]

static int listen_on_loopback(void) {
  struct sockaddr_in address;
  socklen_t size = sizeof address;
  int listener = socket(AF_INET, SOCK_STREAM, 0);
  memset(&address, 0, sizeof address);
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  if (listener < 0 || bind(listener, (struct sockaddr *)&address, sizeof address) != 0 || listen(listener, 64) != 0 ||
      getsockname(listener, (struct sockaddr *)&address, &size) != 0) {
    return -1;
  }
  printf("port %u\n", (unsigned)ntohs(address.sin_port));
  return listener;
}

// One more connection, if there is room for it.
static connection *accept_connection(int listener, unsigned number) {
  int socket = accept(listener, NULL, NULL);
  connection *made;
  if (socket < 0) return NULL;
  made = malloc(sizeof *made);
  if (made == NULL || fcntl(socket, F_SETFL, fcntl(socket, F_GETFL) | O_NONBLOCK) != 0) {
    free(made);
    close(socket);
    return NULL;
  }
  make_connection(made, socket, number);
  return made;
}

int main(void) {
  connection *connections[most_connections];
  struct pollfd watched[2 + most_connections];
  size_t count = 0, i;
  unsigned accepted = 0;
  int listener;
  setvbuf(stdout, NULL, _IOLBF, 0);
  listener = listen_on_loopback();
  if (listener < 0) return 1;
  for (;;) {
    watched[0] = (struct pollfd){.fd = STDIN_FILENO, .events = POLLIN};
    watched[1] = (struct pollfd){.fd = count < most_connections ? listener : -1, .events = POLLIN};
    for (i = 0; i < count; ++i) {
      // A client that does not read its answers is not read from either.
      const short events = connections[i]->output_length != 0 ? POLLOUT : POLLIN;
      watched[2 + i] = (struct pollfd){.fd = connections[i]->socket, .events = events};
    }
    if (poll(watched, (nfds_t)(2 + count), -1) < 0) return 1;
    for (i = count; i-- != 0;) {
      const char *why = watched[2 + i].revents != 0 ? continue_connection(connections[i]) : NULL;
      if (why == NULL) continue;
      close_connection(connections[i], why);
      connections[i] = connections[--count];
    }
    if (watched[1].revents != 0) {
      connection *made = accept_connection(listener, accepted + 1);
      if (made != NULL) {
        connections[count++] = made;
        ++accepted;
      }
    }
    if (watched[0].revents != 0) break;
  }
  while (count != 0) close_connection(connections[--count], "ended");
  close(listener);
  return 0;
}
