// The workloads. Labels, addresses and names are those of networks, and their sizes and values are drawn.
#include "workloads.hpp"

#include <cstring>
#include <deque>
#include <initializer_list>
#include <memory>

#include "messages/all.hpp"

namespace contest {
namespace {

// Owns the memory of the records, and draws their content.
class builder {
 public:
  explicit builder(std::uint64_t seed) : state_(seed * 0x9e3779b97f4a7c15u) {}

  std::uint32_t number(std::uint32_t limit) {
    state_ = state_ * 6364136223846793005u + 1442695040888963407u;
    return static_cast<std::uint32_t>((state_ >> 32) % limit);
  }
  std::uint32_t between(std::uint32_t least, std::uint32_t most) { return least + number(most - least + 1); }

  // Labels. By default, networks take prefix SIDs from 16,000 to 23,999, of which the first 384 have two bytes on the
  // wire and all others three, and dynamic labels from 24,000 on.
  std::uint32_t label_of_block_start() { return between(16'000, 16'383); }
  std::uint32_t label_of_default_block() { return between(16'000, 23'999); }
  std::uint32_t dynamic_label() { return between(24'000, 1'048'575); }
  std::uint32_t label() { return number(10) < 7 ? label_of_default_block() : dynamic_label(); }
  std::uint32_t label_of_block_from_100000() { return between(100'000, 107'999); }
  std::uint32_t uniform_label() { return between(1u << 19, (1u << 20) - 1); }
  std::uint32_t null_label() {  // explicit for IPv4 and for IPv6, implicit
    static constexpr std::uint32_t nulls[] = {0, 2, 3};
    return nulls[number(3)];
  }
  // No label: one to five bytes on the wire, equally often.
  std::uint32_t integer_of_any_size() {
    const std::uint32_t septets = number(5);
    const std::uint32_t low = septets == 0 ? 0 : 1u << (7 * septets);
    return low + number(septets == 4 ? 0xf0000000u : (1u << (7 * (septets + 1))) - low);
  }

  // Addresses: half of those of IPv4 are private.
  std::uint32_t ipv4() { return number(2) == 0 ? between(0x0a000000, 0x0affffff) : between(0x01000000, 0xdfffffff); }
  std::uint8_t *ipv4_bytes() {
    const std::uint32_t address = ipv4();
    return bytes({address >> 16, address});
  }
  // 2001:db8:x:x::x, where x is often small
  std::uint8_t *ipv6_of_interface() { return bytes({0x2001, 0xdb8, group(), group(), 0, 0, 0, group()}); }
  // fcbb:bb00:x::
  std::uint8_t *ipv6_of_locator() { return bytes({0xfcbb, 0xbb00, group(), 0, 0, 0, 0, 0}); }
  std::uint8_t *random_ipv6() { return random_bytes(16); }
  std::uint8_t *ipv6() {
    const std::uint32_t drawn = number(10);
    return drawn < 5 ? ipv6_of_interface() : drawn < 8 ? ipv6_of_locator() : random_ipv6();
  }
  std::uint8_t *random_bytes(std::size_t count) {
    std::uint8_t *const result = array<std::uint8_t>(count);
    for (std::size_t i = 0; i < count; ++i) result[i] = static_cast<std::uint8_t>(number(256));
    return result;
  }

  // A name of 8 to 40 bytes.
  char *name() {
    static constexpr const char *words[] = {"pe", "lyon", "core", "vrf", "backbone", "blue", "metro", "customer"};
    const std::size_t size = between(8, 40);
    std::string name;
    while (name.size() < size) {
      name.append(words[number(8)]).append(1, '-');
      name.append(std::to_string(number(1000))).append(1, '-');
    }
    char *const result = array<char>(size + 1);
    std::memcpy(result, name.data(), size);
    return result;
  }

  template <class Element>
  Element *array(std::size_t count) {
    blocks_.push_back(std::make_unique<unsigned char[]>(count * sizeof(Element)));
    return reinterpret_cast<Element *>(blocks_.back().get());
  }

  using draw = std::uint32_t (builder::*)();

  std::uint32_t *numbers(std::size_t count, draw one) {
    std::uint32_t *const result = array<std::uint32_t>(count);
    for (std::size_t i = 0; i < count; ++i) result[i] = (this->*one)();
    return result;
  }

 private:
  std::uint32_t group() { return number(0x10000) >> number(16); }
  std::uint8_t *bytes(std::initializer_list<std::uint32_t> groups) {
    std::uint8_t *const result = array<std::uint8_t>(2 * groups.size());
    std::uint8_t *at = result;
    for (const std::uint32_t value : groups) {
      *at++ = static_cast<std::uint8_t>(value >> 8);
      *at++ = static_cast<std::uint8_t>(value);
    }
    return result;
  }

  std::uint64_t state_;
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

api_lbl_stack labels(builder &make, std::uint32_t count, builder::draw one = &builder::label) {
  api_lbl_stack result{};
  result.labels = make.numbers(count, one);
  result.label_count = count;
  return result;
}

api_prefix ip_prefix(builder &make, std::uint8_t *address, std::uint32_t size) {
  api_prefix result{};
  result.octets = address;
  result.octets_count = size;
  result.field2 = static_cast<std::uint8_t>(make.between(2 * size, 8 * size));
  return result;
}

prefix_sid_type prefix_sid(builder &make) {
  prefix_sid_type result{};
  result.field1 = 1 + make.number(3);
  result.field2 = make.ipv6();
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
  result.field1 = make.name();
  result.field2 = make.name();
  result.field3 = 1 + make.number(100);
  result.field4 = 1;
  result.field6 = 1;
  result.field7 = 100 + make.number(1000);
  result.field8 = make.ipv4();
  result.label_stack = labels(make, 10);
  result.field11 = make.label();
  result.field12 = 1 + make.number(16);
  result.field13 = 1;
  result.field15 = make.ipv6();
  result.field15_count = 16;
  result.field16 = 128 + make.number(1000);
  result.field18 = 1 + make.number(8);
  result.field20 = 1;
  result.field22 = make.ipv6();
  result.field22_count = 16;
  result.field24 = 1 + make.number(8);
  result.field27 = 1'700'000'000 + static_cast<std::int64_t>(make.number(1u << 24));
  return result;
}

api_exp_hop hop(builder &make) {
  api_exp_hop result{};
  result.field1 = make.label();
  result.field2 = make.label();
  result.field3 = make.ipv4();
  result.field4 = 1u << 14;
  result.field5 = make.ipv4_bytes();
  result.field5_count = 4;
  result.field6 = make.ipv6();
  result.field6_count = 16;
  return result;
}

api_msg_p2p_auto_policy policy_with_paths(builder &make, std::uint32_t paths, std::uint32_t hops) {
  api_msg_p2p_auto_policy result{};
  result.field1 = make.name();
  result.field3 = 1 + make.number(100);
  result.field4 = 100 + make.number(1000);
  result.field5 = 1;
  result.field8 = make.ipv4();
  result.field11 = make.ipv6();
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
  result.field1 = make.name();
  result.field2 = 100 + make.number(1000);
  result.field3 = 1 + make.number(16);
  result.field4 = 1;
  result.prefixes = make.array<api_prefix>(prefixes);
  result.prefixes_count = prefixes;
  for (std::uint32_t i = 0; i < prefixes; ++i) result.prefixes[i] = ip_prefix(make, make.ipv6(), 16);
  result.field6 = make.name();
  result.field7 = make.name();
  result.field8 = 1 + make.number(1000);
  result.field9 = static_cast<std::int32_t>(1 + make.number(1000));
  result.field10 = 1;
  return result;
}

api_to_igp igp(builder &make, std::uint32_t policies, std::uint32_t prefixes) {
  api_to_igp result{};
  result.link_update.field1 = 1 + make.number(100);
  result.link_update.field2 = make.name();
  result.link_update.field3 = make.ipv4();
  result.link_update.field5 = make.numbers(4, &builder::label);
  result.link_update.field5_count = 4;
  result.aa_list.octets = make.ipv6();
  result.aa_list.octets_count = 16;
  result.aa_list.field2 = 1;
  result.aa_list.policies = make.array<api_policy>(policies);
  result.aa_list.policies_count = policies;
  for (std::uint32_t i = 0; i < policies; ++i) result.aa_list.policies[i] = policy(make, prefixes);
  result.field3 = 1;
  return result;
}

srv6_prefix prefix(builder &make, std::uint8_t *address, std::size_t length) {
  srv6_prefix result{};
  result.field1 = address;
  result.field1_length = length;
  result.field2 = 48 + make.number(80);
  return result;
}

srv6_usid micro_sid(builder &make) {
  srv6_usid result{};
  result.field1 = 1 + make.number(60);
  result.field2 = 1 + make.number(8);
  result.prefix = prefix(make, make.ipv6_of_locator(), 16);
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
    result.sid_lists[i].field4 = make.ipv6();
    result.sid_lists[i].field4_length = 16;
  }
  result.field6 = make.random_bytes(64);
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
  result.field2 = make.name();
  result.field3 = (std::uint64_t{1} << 40) + make.number(1u << 30);
  result.field4 = 1 + make.number(1000);
  result.service.field1 = 1;
  result.service.field3 = 1;
  return result;
}

api_intf interface(builder &make) {
  api_intf result{};
  result.field1 = 1 + make.number(1000);
  result.field2 = make.name();
  return result;
}

api_to_zorv to_zorv(builder &make) {
  api_to_zorv result{};
  result.nodeid.field1 = 1;
  result.nodeid.octets = make.random_bytes(8);
  result.nodeid.octets_count = 8;
  result.intf = interface(make);
  result.field3 = 1;
  return result;
}

oam_req oam_request(builder &make) {
  oam_req result{};
  result.field1 = 1 + make.number(1u << 20);
  result.field2 = 1 + make.number(16);
  result.field3 = make.name();
  result.field5 = 100 + make.number(1000);
  result.field6 = make.ipv6();
  result.field6_length = 16;
  result.field7 = 1;
  return result;
}

api_msg_policy_reg registration(builder &make) {
  api_msg_policy_reg result{};
  result.field1 = 1;
  result.octets = make.ipv6();
  result.octets_count = 16;
  result.field3 = 100 + make.number(1000);
  result.field4 = make.name();
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
      result.p2p_auto_policy_notif.field1 = make.name();
      result.p2p_auto_policy_notif.field3 = 1 + make.number(100);
      result.p2p_auto_policy_notif.field4 = 1;
      result.p2p_auto_policy_notif.label_stack = labels(make, make.between(1, 10));
      result.p2p_auto_policy_notif.field16 = 128 + make.number(1000);
      result.p2p_auto_policy_notif.field27 = 1'700'000'000 + static_cast<std::int64_t>(turn);
      break;
    case 5:
      result.to_igp = igp(make, 0, 0);
      break;
    default:
      result.field3.field1 = make.name();
      result.field3.field3 = 1 + make.number(100);
      result.field3.field4 = 100 + make.number(1000);
      result.field3.field8 = make.ipv4();
      result.field3.label_stack = labels(make, make.between(1, 10));
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
void add(std::vector<workload<Record>> &list, const char *name, std::vector<Record> records,
         std::uint32_t options = 0) {
  workload<Record> &result = list.emplace_back();
  result.name = name;
  result.records = std::move(records);
  result.options = options;
  for (Record &record : result.records) {
    mark_presence(record);
    result.wire.push_back(encoding(record));
  }
}

template <class Draw>
auto several(std::uint32_t count, Draw draw) {
  std::vector<decltype(draw(count))> result;
  for (std::uint32_t i = 0; i < count; ++i) result.push_back(draw(i));
  return result;
}

void add_label_stacks(workloads &all, builder &make) {
  auto &list = all.of_api_lbl_stack;
  const auto add_hundred_of_ten = [&](const char *name, builder::draw one) {
    add(list, name, several(100, [&](auto) { return labels(make, 10, one); }));
  };
  add_hundred_of_ten("10_labels_block_start", &builder::label_of_block_start);
  add_hundred_of_ten("10_labels_default_block", &builder::label_of_default_block);
  add_hundred_of_ten("10_labels", &builder::label);
  add_hundred_of_ten("10_labels_from_100000", &builder::label_of_block_from_100000);
  // A label of two bytes among those of three, at every place of a stack.
  add(list, "30_labels_one_short", several(30, [&](auto place) {
        api_lbl_stack stack = labels(make, 30, &builder::dynamic_label);
        stack.labels[place] = make.label_of_block_start();
        return stack;
      }));
  add(list, "labels_and_null", several(100, [&](auto) {
        api_lbl_stack stack = labels(make, make.between(1, 10));
        stack.labels[stack.label_count - 1] = make.null_label();
        return stack;
      }));
  add(list, "1000_labels", {labels(make, 1000)});
  add(list, "100000_labels", {labels(make, 100000)});
  add(list, "1000_labels_of_3_bytes", {labels(make, 1000, &builder::uniform_label)});
  add(list, "1000_integers_of_any_size", {labels(make, 1000, &builder::integer_of_any_size)});
}

void add_prefixes(workloads &all, builder &make) {
  const auto add_hundred = [&](const char *name, std::uint8_t *(builder::*address)(), std::uint32_t size) {
    add(all.of_api_prefix, name, several(100, [&](auto) { return ip_prefix(make, (make.*address)(), size); }));
  };
  add_hundred("ipv4_prefix", &builder::ipv4_bytes, 4);
  add_hundred("ipv6_prefix_2001_db8", &builder::ipv6_of_interface, 16);
  add_hundred("ipv6_prefix_fcbb_bb00", &builder::ipv6_of_locator, 16);
  add_hundred("ipv6_prefix_random", &builder::random_ipv6, 16);
}

void add_envelopes(workloads &all, builder &make) {
  api_msg notifying{};
  notifying.field1 = 5;
  notifying.p2p_auto_policy_notif = notification(make);
  api_msg requesting{};
  requesting.field1 = 8;
  requesting.p2p_auto_policy_request = request(make, 3, 5);
  auto &list = all.of_api_msg;
  add(list, "colour", {colour(make)});
  add(list, "notification", {notifying});
  add(list, "request", {requesting});
  add(list, "all_sixteen", {all_sixteen(make)});
  add(list, "stream_of_1000", several(1000, [&](auto turn) { return small_envelope(make, turn); }));
}

}  // namespace

workloads::workloads(std::uint64_t seed) {
  const auto owner = std::make_shared<builder>(seed);
  memory = owner;
  builder &make = *owner;

  add_label_stacks(*this, make);
  add_prefixes(*this, make);
  add(of_api_intf, "name", several(100, [&](auto) { return interface(make); }));
  add(of_api_to_igp, "1000_policies", {igp(make, 1000, 4)});
  add_envelopes(*this, make);
  const oam_res result = oam_result(make, 16, 16, 8);
  add(of_oam_res, "oam_result", {result});
  add(of_oam_res, "oam_result_by_reference", {result}, PAVO_ZORV_REFERENCE);
  add(of_srv6_prefix, "64_kibibytes", {prefix(make, make.random_bytes(65536), 65536)});
}

roll::roll(std::uint64_t seed) : works(std::make_shared<const workloads>(seed)) {}

}  // namespace contest
