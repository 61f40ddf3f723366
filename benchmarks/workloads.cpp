// The workloads, built from a fixed sequence of pseudo-random numbers. The content is that of a policy component:
// 20-bit labels, IPv6 addresses as lists of bytes, names of ordinary length.
#include "workloads.hpp"

#include <cstring>
#include <deque>
#include <memory>

#include "messages/all.hpp"

namespace contest {
namespace {

// Owns the memory of the records, and generates the numbers.
class builder {
 public:
  std::uint32_t number(std::uint32_t limit) {
    state_ = state_ * 6364136223846793005u + 1442695040888963407u;
    return static_cast<std::uint32_t>((state_ >> 33) % limit);
  }
  std::uint32_t label() { return (1u << 19) + number(1u << 19); }  // three bytes on the wire
  std::uint32_t address() { return 0x0a000000u + number(1u << 24); }

  template <class Element>
  Element *array(std::size_t count) {
    blocks_.push_back(std::make_unique<unsigned char[]>(count * sizeof(Element)));
    return reinterpret_cast<Element *>(blocks_.back().get());
  }

  char *text(const std::string &content) {
    char *const result = array<char>(content.size() + 1);
    std::memcpy(result, content.c_str(), content.size() + 1);
    return result;
  }
  char *name(const char *prefix) { return text(std::string(prefix) + std::to_string(10000 + number(90000))); }

  std::uint8_t *address_bytes(std::size_t count) {
    std::uint8_t *const result = array<std::uint8_t>(count);
    for (std::size_t i = 0; i < count; ++i) result[i] = static_cast<std::uint8_t>(number(256));
    return result;
  }

  template <class Generate>
  std::uint32_t *numbers(std::size_t count, Generate generate) {
    std::uint32_t *const result = array<std::uint32_t>(count);
    for (std::size_t i = 0; i < count; ++i) result[i] = generate();
    return result;
  }

 private:
  std::uint64_t state_ = 1;
  std::deque<std::unique_ptr<unsigned char[]>> blocks_;
};

// Marks members as present unless they are zero, null or empty.
template <class Record>
void mark_presence(Record &record) {
  pavo_zorv::for_each_row<Record>([&](auto index) {
    constexpr auto &row = pavo_zorv::row_at<Record, index>;
    constexpr auto bit = pavo_zorv::presence_bit<Record, index>;
    bool present = false;
    if constexpr (row.type == pavo_zorv::kind::nested) {
      mark_presence(record.*row.value);
      present = (record.*row.value).presence != 0;
    } else if constexpr (row.type == pavo_zorv::kind::message_list) {
      for (std::uint32_t i = 0; i < record.*row.count; ++i) mark_presence((record.*row.elements)[i]);
      present = record.*row.count != 0;
    } else if constexpr (row.type == pavo_zorv::kind::integer_list) {
      present = record.*row.count != 0;
    } else {
      present = record.*row.value != 0;
    }
    if (present) record.presence = static_cast<pavo_zorv::presence_of<Record>>(record.presence | bit);
  });
}

api_addr address(builder &make) {
  api_addr result{};
  result.address = make.address();
  return result;
}

template <class Generate>
api_lbl_stack labels(builder &make, std::uint32_t count, Generate generate) {
  api_lbl_stack result{};
  result.labels = make.numbers(count, generate);
  result.label_count = count;
  return result;
}

api_lbl_stack labels(builder &make, std::uint32_t count) {
  return labels(make, count, [&] { return make.label(); });
}

// One to five bytes on the wire, equally often.
api_lbl_stack labels_of_mixed_sizes(builder &make, std::uint32_t count) {
  return labels(make, count, [&] {
    const std::uint32_t septets = make.number(5);
    const std::uint32_t low = septets == 0 ? 0 : 1u << (7 * septets);
    return low + make.number(septets == 4 ? 0xf0000000u : (1u << (7 * (septets + 1))) - low);
  });
}

prefix_sid_type prefix_sid(builder &make) {
  prefix_sid_type result{};
  result.field1 = 1 + make.number(3);
  result.field2 = make.address_bytes(16);
  result.field2_count = 16;
  return result;
}

api_msg colour(builder &make) {
  api_msg result{};
  result.field1 = (std::uint64_t{1} << 40) + make.number(1u << 30);
  result.field6.color = 128 + make.number(1000);
  return result;
}

// 18 of 27 fields: ten labels, two names, an address as a list of 16 bytes twice.
api_msg_p2p_auto_policy_notif notification(builder &make) {
  api_msg_p2p_auto_policy_notif result{};
  result.field1 = make.name("policy-pe-lyon-");
  result.field2 = make.name("path-");
  result.field3 = 1 + make.number(100);
  result.field4 = 1;
  result.field6 = 1;
  result.field7 = 100 + make.number(1000);
  result.field8 = make.address();
  result.label_stack = labels(make, 10);
  result.field11 = make.label();
  result.field12 = 1 + make.number(16);
  result.field13 = 1;
  result.field15 = make.address_bytes(16);
  result.field15_count = 16;
  result.field16 = 128 + make.number(1000);
  result.field18 = 1 + make.number(8);
  result.field20 = 1;
  result.field22 = make.address_bytes(16);
  result.field22_count = 16;
  result.field24 = 1 + make.number(8);
  result.field27 = 1'700'000'000 + static_cast<std::int64_t>(make.number(1u << 24));
  return result;
}

api_exp_hop hop(builder &make) {
  api_exp_hop result{};
  result.field1 = make.label();
  result.field2 = make.label();
  result.field3 = make.address();
  result.field4 = 1u << 14;
  result.field5 = make.address_bytes(4);
  result.field5_count = 4;
  result.field6 = make.address_bytes(16);
  result.field6_count = 16;
  return result;
}

api_msg_p2p_auto_policy policy_with_paths(builder &make, std::uint32_t paths, std::uint32_t hops) {
  api_msg_p2p_auto_policy result{};
  result.field1 = make.name("policy-pe-lyon-");
  result.field3 = 1 + make.number(100);
  result.field4 = 100 + make.number(1000);
  result.field5 = 1;
  result.field8 = make.address();
  result.field11 = make.address_bytes(16);
  result.field11_count = 16;
  result.field12 = make.label();
  result.exp_paths = make.array<api_exp_path>(paths);
  result.exp_paths_count = paths;
  for (std::uint32_t path = 0; path < paths; ++path) {
    api_exp_path &one = result.exp_paths[path];
    one.hops = make.array<api_exp_hop>(hops);
    one.hop_count = hops;
    for (std::uint32_t i = 0; i < hops; ++i) one.hops[i] = hop(make);
    one.field2 = 1 + path;
  }
  result.field15 = 1 + make.number(100);
  result.prefix_sid = prefix_sid(make);
  return result;
}

api_msg_p2p_auto_policy_request request(builder &make, std::uint32_t paths, std::uint32_t hops) {
  api_msg_p2p_auto_policy_request result{};
  result.policy = policy_with_paths(make, paths, hops);
  result.field2 = 1 + make.number(1u << 20);
  result.field3 = 1;
  return result;
}

api_policy policy(builder &make, std::uint32_t prefixes) {
  api_policy result{};
  result.field1 = make.name("policy-pe-");
  result.field2 = 100 + make.number(1000);
  result.field3 = 1 + make.number(16);
  result.field4 = 1;
  result.prefixes = make.array<api_prefix>(prefixes);
  result.prefixes_count = prefixes;
  for (std::uint32_t i = 0; i < prefixes; ++i) {
    result.prefixes[i].octets = make.address_bytes(16);
    result.prefixes[i].octets_count = 16;
    result.prefixes[i].field2 = static_cast<std::uint8_t>(32 + make.number(97));
  }
  result.field6 = make.name("vrf-cu-");
  result.field7 = make.name("bgp-");
  result.field8 = 1 + make.number(1000);
  result.field9 = static_cast<std::int32_t>(1 + make.number(1000));
  result.field10 = 1;
  return result;
}

api_to_igp igp(builder &make, std::uint32_t policies, std::uint32_t prefixes) {
  api_to_igp result{};
  result.link_update.field1 = 1 + make.number(100);
  result.link_update.field2 = make.name("GigabitEthernet0/0/0/");
  result.link_update.field3 = make.address();
  result.link_update.field5 = make.numbers(4, [&] { return make.label(); });
  result.link_update.field5_count = 4;
  result.aa_list.octets = make.address_bytes(16);
  result.aa_list.octets_count = 16;
  result.aa_list.field2 = 1;
  result.aa_list.policies = make.array<api_policy>(policies);
  result.aa_list.policies_count = policies;
  for (std::uint32_t i = 0; i < policies; ++i) result.aa_list.policies[i] = policy(make, prefixes);
  result.field3 = 1;
  return result;
}

srv6_prefix prefix(builder &make, std::size_t length) {
  srv6_prefix result{};
  result.field1 = make.address_bytes(length);
  result.field1_length = length;
  result.field2 = 48 + make.number(80);
  return result;
}

srv6_usid micro_sid(builder &make) {
  srv6_usid result{};
  result.field1 = 1 + make.number(60);
  result.field2 = 1 + make.number(8);
  result.prefix = prefix(make, 16);
  result.sid_struct.field1 = 1;
  result.sid_struct.field2 = 1;
  result.sid_struct.field3 = 32;
  result.sid_struct.field4 = 16;
  result.sid_struct.field5 = 16;
  result.sid_struct.field6 = 64;
  result.sid_struct.field7 = 16;
  result.sid_struct.field8 = 8;
  return result;
}

oam_res oam_result(builder &make, std::uint32_t sid_lists, std::uint32_t usid_lists, std::uint32_t usids) {
  oam_res result{};
  result.field1 = 1 + make.number(1u << 20);
  result.field2 = 1 + make.number(16);
  result.field3 = 1 + static_cast<std::int32_t>(make.number(100));
  result.field4 = 1;
  result.sid_lists = make.array<out_sid_list_info>(sid_lists);
  result.sid_lists_count = sid_lists;
  for (std::uint32_t i = 0; i < sid_lists; ++i) {
    result.sid_lists[i].prefix_sid = prefix_sid(make);
    result.sid_lists[i].field2 = 1 + make.number(1000);
    result.sid_lists[i].field3 = make.label();
    result.sid_lists[i].field4 = make.address_bytes(16);
    result.sid_lists[i].field4_length = 16;
  }
  result.field6 = make.address_bytes(64);
  result.field6_length = 64;
  result.usid_lists = make.array<out_srv6_usid_list_info>(usid_lists);
  result.usid_lists_count = usid_lists;
  for (std::uint32_t i = 0; i < usid_lists; ++i) {
    result.usid_lists[i].usids = make.array<srv6_usid>(usids);
    result.usid_lists[i].usids_count = usids;
    for (std::uint32_t k = 0; k < usids; ++k) result.usid_lists[i].usids[k] = micro_sid(make);
  }
  return result;
}

api_msg_internal internal(builder &make) {
  api_msg_internal result{};
  result.field1 = 1;
  result.field2 = make.name("zorv-client-");
  result.field3 = (std::uint64_t{1} << 40) + make.number(1u << 30);
  result.field4 = 1 + make.number(1000);
  result.service.field1 = 1;
  result.service.field3 = 1;
  return result;
}

api_to_zorv to_zorv(builder &make) {
  api_to_zorv result{};
  result.nodeid.field1 = 1;
  result.nodeid.octets = make.address_bytes(8);
  result.nodeid.octets_count = 8;
  result.intf.field1 = 1 + make.number(1000);
  result.intf.field2 = make.name("GigabitEthernet0/0/0/");
  result.field3 = 1;
  return result;
}

oam_req oam_request(builder &make) {
  oam_req result{};
  result.field1 = 1 + make.number(1u << 20);
  result.field2 = 1 + make.number(16);
  result.field3 = make.name("policy-pe-lyon-");
  result.field5 = 100 + make.number(1000);
  result.field6 = make.address_bytes(16);
  result.field6_length = 16;
  result.field7 = 1;
  return result;
}

api_msg_policy_reg registration(builder &make) {
  api_msg_policy_reg result{};
  result.field1 = 1;
  result.octets = make.address_bytes(16);
  result.octets_count = 16;
  result.field3 = 100 + make.number(1000);
  result.field4 = make.name("bgp-");
  return result;
}

// Seven kinds of payload by turns, each with its own content.
api_msg small_envelope(builder &make, std::uint32_t turn) {
  api_msg result{};
  result.field1 = 1 + turn;
  switch (turn % 7) {
    case 0:
      result.internal = internal(make);
      break;
    case 1:
      result.to_zorv = to_zorv(make);
      break;
    case 2:
      result.oam_req = oam_request(make);
      break;
    case 3:
      result.policy_reg = registration(make);
      break;
    case 4:
      result.p2p_auto_policy_notif.field1 = make.name("policy-pe-lyon-");
      result.p2p_auto_policy_notif.field3 = 1 + make.number(100);
      result.p2p_auto_policy_notif.field4 = 1;
      result.p2p_auto_policy_notif.label_stack = labels(make, 8);
      result.p2p_auto_policy_notif.field16 = 128 + make.number(1000);
      result.p2p_auto_policy_notif.field27 = 1'700'000'000 + static_cast<std::int64_t>(turn);
      break;
    case 5:
      result.to_igp = igp(make, 0, 0);
      break;
    default:
      result.field3.field1 = make.name("policy-pe-lyon-");
      result.field3.field3 = 1 + make.number(100);
      result.field3.field4 = 100 + make.number(1000);
      result.field3.field8 = make.address();
      result.field3.label_stack = labels(make, 6);
      break;
  }
  return result;
}

api_msg all_sixteen(builder &make) {
  api_msg result{};
  result.field1 = 1 + make.number(1u << 20);
  result.internal = internal(make);
  result.field3 = policy_with_paths(make, 1, 3);
  result.field4 = policy_with_paths(make, 1, 3);
  result.p2p_auto_policy_notif = notification(make);
  result.field6.color = 100 + make.number(20);
  result.field7.color = 100 + make.number(20);
  result.p2p_auto_policy_request = request(make, 1, 3);
  result.p2p_auto_policy_response.notification = notification(make);
  result.p2p_auto_policy_response.field2 = 1;
  result.p2p_auto_policy_sweep.field1 = 1 + make.number(100);
  result.p2p_auto_policy_sweep.field2 = 1;
  result.to_igp = igp(make, 2, 2);
  result.to_zorv = to_zorv(make);
  result.oam_req = oam_request(make);
  result.oam_res = oam_result(make, 3, 2, 4);
  result.field15 = 1;
  result.policy_reg = registration(make);
  return result;
}

template <class Record>
workload<Record> finished(const char *name, std::vector<Record> records, std::uint32_t options = 0) {
  workload<Record> result;
  result.name = name;
  result.records = std::move(records);
  result.options = options;
  for (Record &record : result.records) {
    mark_presence(record);
    result.wire.push_back(encoding(record));
  }
  return result;
}

workloads build() {
  static builder make;
  workloads all;
  all.addresses.push_back(finished<api_addr>("address", {address(make)}));

  api_msg notifying{};
  notifying.field1 = 5;
  notifying.p2p_auto_policy_notif = notification(make);
  api_msg requesting{};
  requesting.field1 = 8;
  requesting.p2p_auto_policy_request = request(make, 3, 5);
  std::vector<api_msg> stream;
  for (std::uint32_t turn = 0; turn < 1000; ++turn) stream.push_back(small_envelope(make, turn));
  all.envelopes.push_back(finished<api_msg>("colour", {colour(make)}));
  all.envelopes.push_back(finished<api_msg>("notification", {notifying}));
  all.envelopes.push_back(finished<api_msg>("request", {requesting}));
  all.envelopes.push_back(finished<api_msg>("all_sixteen", {all_sixteen(make)}));
  all.envelopes.push_back(finished<api_msg>("stream_of_1000", std::move(stream)));

  all.igp_messages.push_back(finished<api_to_igp>("1000_policies", {igp(make, 1000, 4)}));

  all.label_stacks.push_back(finished<api_lbl_stack>("10_labels", {labels(make, 10)}));
  all.label_stacks.push_back(finished<api_lbl_stack>("1000_labels", {labels(make, 1000)}));
  all.label_stacks.push_back(finished<api_lbl_stack>("1000_mixed_labels", {labels_of_mixed_sizes(make, 1000)}));
  all.label_stacks.push_back(finished<api_lbl_stack>("100000_labels", {labels(make, 100000)}));

  const oam_res result = oam_result(make, 16, 16, 8);
  all.oam_results.push_back(finished<oam_res>("oam_result", {result}));
  all.oam_results.push_back(finished<oam_res>("oam_result_by_reference", {result}, PAVO_ZORV_REFERENCE));

  all.srv6_prefixes.push_back(finished<srv6_prefix>("64_kibibytes", {prefix(make, 65536)}));
  return all;
}

}  // namespace

const workloads &all_workloads() {
  static const workloads all = build();
  return all;
}

}  // namespace contest
