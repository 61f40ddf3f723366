/* Records for the debugger to show. */
#include <string.h>

#include "pavo_zorv.h"
#include "pavo_zorv_messages.h"

/* One of each message, with all presence bits. */
#define RECORD(message) message all_##message;
PAVO_ZORV_MESSAGES(RECORD)
#undef RECORD

api_msg filled, unmarked, empty;
api_aa_list list;
srv6_prefix prefix;
api_lbl_stack broken, counted, long_stack;
api_intf nameless;

void stop_here(void);
void stop_here(void) {}

int main(void) {
  static uint32_t labels[] = {16, 24001};
  static uint32_t many[1000];
  static unsigned char address[] = {0x20, 0x01, 0x0d, 0xb8};
  static char name[] = "a\xff\"b";
  static api_policy policies[2];
  static api_prefix prefixes[1];

#define MARK(message) memset(&all_##message.presence, 0xff, sizeof all_##message.presence);
  PAVO_ZORV_MESSAGES(MARK)
#undef MARK

  filled.field1 = 1;
  filled.p2p_auto_policy_request.policy.label_stack.labels = labels;
  filled.p2p_auto_policy_request.policy.label_stack.label_count = 2;
  filled.p2p_auto_policy_request.policy.label_stack.presence = API_LBL_STACK_HAS_LABELS;
  filled.p2p_auto_policy_request.policy.presence = API_MSG_P2P_AUTO_POLICY_HAS_LABEL_STACK;
  filled.p2p_auto_policy_request.presence = API_MSG_P2P_AUTO_POLICY_REQUEST_HAS_POLICY;
  filled.presence = API_MSG_HAS_FIELD1 | API_MSG_HAS_P2P_AUTO_POLICY_REQUEST | API_MSG_HAS_FIELD15;
  unmarked.to_zorv.intf.field1 = 7;
  unmarked.to_zorv.intf.presence = API_INTF_HAS_FIELD1;
  /* Presence bits that belong to no field. */
  unmarked.oam_res.presence = 0x80;
  unmarked.to_zorv.presence = 0x80;

  policies[0].field1 = name;
  policies[0].field9 = -1;
  policies[0].presence = API_POLICY_HAS_FIELD1 | API_POLICY_HAS_FIELD9;
  policies[1].prefixes = prefixes;
  policies[1].prefixes_count = 1;
  policies[1].presence = API_POLICY_HAS_PREFIXES;
  list.policies = policies;
  list.policies_count = 2;
  list.presence = API_AA_LIST_HAS_POLICIES;
  prefix.field1 = address;
  prefix.field1_length = sizeof address;
  prefix.field2 = 64;
  prefix.presence = SRV6_PREFIX_HAS_FIELD1 | SRV6_PREFIX_HAS_FIELD2;

  broken.labels = (uint32_t *)16;
  broken.label_count = 3;
  broken.presence = API_LBL_STACK_HAS_LABELS;
  counted.label_count = 3;
  counted.presence = API_LBL_STACK_HAS_LABELS;
  long_stack.labels = many;
  long_stack.label_count = 1000;
  long_stack.presence = API_LBL_STACK_HAS_LABELS;
  nameless.field2 = (char *)16;
  nameless.presence = API_INTF_HAS_FIELD2;
  stop_here();
  return 0;
}
