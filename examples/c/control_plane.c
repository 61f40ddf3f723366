// Two processes that exchange envelopes over a socket: a client asks for policies, an engine answers. Each connection
// has one buffer, one memory budget, and one rule for input that cannot be decoded: report it and close the connection.
#define _POSIX_C_SOURCE 200809L
#define _DEFAULT_SOURCE
#include <stdio.h>
#include <stdlib.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include "pavo_zorv.h"
#include "pavo_zorv_memory.h"

//! [connection]
enum { longest_message = 4096, most_memory = 64 * 1024 };

typedef struct connection {
  int socket;
  const char *name;
  pavo_zorv_budget memory;                // whatever the peer sends, no more than this is allocated
  unsigned char buffer[longest_message];  // one message at a time
} connection;

static connection *open_connection(int socket, const char *name) {
  connection *opened = malloc(sizeof *opened);
  if (opened == NULL) exit(1);
  opened->socket = socket;
  opened->name = name;
  pavo_zorv_budget_init(&opened->memory, most_memory, pavo_zorv_heap_allocate, pavo_zorv_heap_release, NULL);
  return opened;
}
//! [connection]

//! [send]
// The socket preserves message boundaries (SOCK_SEQPACKET); on a stream each message would need a length prefix: see
// tcp_server.c.
static int send_message(connection *to, const api_msg *message) {
  size_t length = pavo_zorv_api_msg_encode_ext(message, to->buffer, sizeof to->buffer, NULL, NULL, 0);
  if (length > sizeof to->buffer) return -1;
  return write(to->socket, to->buffer, length) == (ssize_t)length ? 0 : -1;
}
//! [send]

//! [receive]
// Returns 1 for a message, 0 at the end of the connection, -1 for input that cannot be decoded. Only a message needs to
// be released.
static int receive_message(connection *from, api_msg *message) {
  ssize_t length = read(from->socket, from->buffer, sizeof from->buffer);
  if (length <= 0) return (int)length;
  int result =
      pavo_zorv_api_msg_decode_ext(message, from->buffer, (size_t)length, pavo_zorv_budget_allocate, &from->memory, 0);
  if (result == CODEC_OK) return 1;
  printf("%s: refused: %s\n", from->name, pavo_zorv_result_text(result));
  pavo_zorv_api_msg_free_ext(message, pavo_zorv_budget_release, &from->memory, 0);
  return -1;
}

static void release_message(connection *of, api_msg *message) {
  pavo_zorv_api_msg_free_ext(message, pavo_zorv_budget_release, &of->memory, 0);
}
//! [receive]

// Answers a request with a notification about the policy that it names.
static int answer(connection *client, const api_msg *request) {
  const api_msg_p2p_auto_policy *policy = &request->p2p_auto_policy_request.policy;
  api_msg reply = {0};
  reply.field1 = request->field1;
  reply.presence = API_MSG_HAS_FIELD1 | API_MSG_HAS_P2P_AUTO_POLICY_RESPONSE;
  api_msg_p2p_auto_policy_response *response = &reply.p2p_auto_policy_response;
  response->presence = API_MSG_P2P_AUTO_POLICY_RESPONSE_HAS_NOTIFICATION;
  // The reply borrows memory of the request, so only the request is released.
  response->notification.field1 = policy->field1;
  response->notification.label_stack = policy->label_stack;
  response->notification.presence =
      API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_FIELD1 | API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_LABEL_STACK;
  return send_message(client, &reply);
}

static int run_engine(connection *client) {
  api_msg message;
  int status;
  while ((status = receive_message(client, &message)) > 0) {
    if ((message.presence & API_MSG_HAS_P2P_AUTO_POLICY_REQUEST) != 0) status = answer(client, &message);
    release_message(client, &message);
    if (status < 0) break;
  }
  printf("engine: done, %zu bytes of memory not released\n", client->memory.spent);
  return client->memory.spent == 0 ? 0 : 1;
}

static int ask(connection *engine, uint64_t number, char *name, uint32_t *labels, uint32_t count) {
  api_msg request = {0};
  request.field1 = number;
  request.presence = API_MSG_HAS_FIELD1 | API_MSG_HAS_P2P_AUTO_POLICY_REQUEST;
  request.p2p_auto_policy_request.presence = API_MSG_P2P_AUTO_POLICY_REQUEST_HAS_POLICY;
  api_msg_p2p_auto_policy *policy = &request.p2p_auto_policy_request.policy;
  policy->field1 = name;
  policy->label_stack = (api_lbl_stack){.labels = labels, .label_count = count, .presence = API_LBL_STACK_HAS_LABELS};
  policy->presence = API_MSG_P2P_AUTO_POLICY_HAS_FIELD1 | API_MSG_P2P_AUTO_POLICY_HAS_LABEL_STACK;
  if (send_message(engine, &request) != 0) return -1;

  api_msg reply;
  if (receive_message(engine, &reply) <= 0) return -1;
  const api_msg_p2p_auto_policy_notif *notification = &reply.p2p_auto_policy_response.notification;
  int named = (notification->presence & API_MSG_P2P_AUTO_POLICY_NOTIF_HAS_FIELD1) != 0;
  printf("client: answer %llu: policy %s with %u labels\n", (unsigned long long)reply.field1,
         named ? notification->field1 : "without a name", (unsigned)notification->label_stack.label_count);
  int right = reply.field1 == number && notification->label_stack.label_count == count;
  release_message(engine, &reply);
  return right ? 0 : -1;
}

static int run_client(connection *engine) {
  uint32_t labels[] = {16, 24001, 16051};
  if (ask(engine, 1, "to-node-51", labels, 3) != 0) return 1;
  if (ask(engine, 2, "to-node-52", labels, 2) != 0) return 1;
  // The engine survives invalid input, and closes the connection.
  static const unsigned char rubbish[] = {0x08, 0xff};
  if (write(engine->socket, rubbish, sizeof rubbish) != (ssize_t)sizeof rubbish) return 1;
  api_msg reply;
  return receive_message(engine, &reply) == 0 ? 0 : 1;
}

int main(void) {
  int ends[2];
  if (socketpair(AF_UNIX, SOCK_SEQPACKET, 0, ends) != 0) return 1;
  setvbuf(stdout, NULL, _IOLBF, 0);
  pid_t engine = fork();
  if (engine < 0) return 1;
  connection *peer = open_connection(ends[engine == 0 ? 1 : 0], engine == 0 ? "engine" : "client");
  close(ends[engine == 0 ? 0 : 1]);
  int failed = engine == 0 ? run_engine(peer) : run_client(peer);
  close(peer->socket);
  free(peer);
  if (engine == 0) return failed;
  int status = 1;
  if (waitpid(engine, &status, 0) != engine || status != 0) failed = 1;
  return failed;
}
