// nanopb, with one callback for strings, bytes and lists that collects them in a pool. Its own pointer fields call
// realloc for every element of a list, and its encoder packs them; so callbacks are the faster setup, and the only one
// that produces these bytes.
#include <pb_decode.h>
#include <pb_encode.h>

#include <algorithm>
#include <cstring>

#include "contest.hpp"
#include "workloads.hpp"

#include "zorv.pb.h"

namespace contest {
namespace {

constexpr const char *with_callbacks = "nanopb";

// The memory for the callback: nanopb passes no context to a callback that is bound by name.
pool *memory_in_use = nullptr;

// The size of a list element.
std::size_t element_size(const pb_field_t &field) {
  if (PB_LTYPE(field.type) != PB_LTYPE_SUBMESSAGE) return sizeof(std::uint32_t);
  const struct {
    const pb_msgdesc_t *descriptor;
    std::size_t size;
  } sizes[] = {
      {zorv_api_prefix_fields, sizeof(zorv_api_prefix)},
      {zorv_api_exp_hop_fields, sizeof(zorv_api_exp_hop)},
      {zorv_srv6_usid_fields, sizeof(zorv_srv6_usid)},
      {zorv_api_policy_fields, sizeof(zorv_api_policy)},
      {zorv_api_exp_path_fields, sizeof(zorv_api_exp_path)},
      {zorv_out_sid_list_info_fields, sizeof(zorv_out_sid_list_info)},
      {zorv_out_srv6_usid_list_info_fields, sizeof(zorv_out_srv6_usid_list_info)},
  };
  for (const auto &entry : sizes)
    if (entry.descriptor == field.submsg_desc) return entry.size;
  return 0;
}

void *appended(zorv_list &list, std::size_t size) {
  if (list.count == list.capacity) {
    const std::uint32_t larger = list.capacity != 0 ? 2 * list.capacity : 4;
    list.elements = memory_in_use->grow(list.elements, list.capacity * size, larger * size);
    if (list.elements == nullptr) return nullptr;
    list.capacity = larger;
  }
  return static_cast<unsigned char *>(list.elements) + size * list.count++;
}

bool decode_list(pb_istream_t *in, const pb_field_t &field, zorv_list &list) {
  switch (PB_LTYPE(field.type)) {
    case PB_LTYPE_STRING:
    case PB_LTYPE_BYTES: {
      const std::size_t length = in->bytes_left;
      auto *const copy = static_cast<pb_byte_t *>(memory_in_use->take(length + 1));
      if (copy == nullptr || !pb_read(in, copy, length)) return false;
      copy[length] = 0;
      list = {copy, static_cast<std::uint32_t>(length), 0};
      return true;
    }
    case PB_LTYPE_SUBMESSAGE: {
      const std::size_t size = element_size(field);
      void *const element = appended(list, size);
      if (element == nullptr) return false;
      std::memset(element, 0, size);
      return pb_decode_ex(in, field.submsg_desc, element, PB_DECODE_NOINIT);
    }
    default: {
      auto *const element = static_cast<std::uint32_t *>(appended(list, sizeof(std::uint32_t)));
      return element != nullptr && pb_decode_varint32(in, element);
    }
  }
}

bool encode_list(pb_ostream_t *out, const pb_field_t &field, const zorv_list &list) {
  if (list.elements == nullptr) return true;
  switch (PB_LTYPE(field.type)) {
    case PB_LTYPE_STRING:
    case PB_LTYPE_BYTES:
      return pb_encode_tag_for_field(out, &field) &&
             pb_encode_string(out, static_cast<const pb_byte_t *>(list.elements), list.count);
    case PB_LTYPE_SUBMESSAGE: {
      const std::size_t size = element_size(field);
      for (std::uint32_t i = 0; i < list.count; ++i) {
        const void *const element = static_cast<const unsigned char *>(list.elements) + i * size;
        if (!pb_encode_tag(out, PB_WT_STRING, field.tag) || !pb_encode_submessage(out, field.submsg_desc, element))
          return false;
      }
      return true;
    }
    default:
      for (std::uint32_t i = 0; i < list.count; ++i) {
        if (!pb_encode_tag(out, PB_WT_VARINT, field.tag) ||
            !pb_encode_varint(out, static_cast<const std::uint32_t *>(list.elements)[i]))
          return false;
      }
      return true;
  }
}

template <class Record>
struct counterpart;
#define PAVO_ZORV_BENCHMARK_COUNTERPART(message)                            \
  template <>                                                               \
  struct counterpart<message> {                                             \
    using type = zorv_##message;                                            \
    static const pb_msgdesc_t *fields() { return zorv_##message##_fields; } \
  };
PAVO_ZORV_BENCHMARK_MESSAGES(PAVO_ZORV_BENCHMARK_COUNTERPART)
#undef PAVO_ZORV_BENCHMARK_COUNTERPART

template <class Record>
struct bench {
  using message = typename counterpart<Record>::type;

  explicit bench(const workload<Record> &what)
      : work(what),
        memory(pool_capacity(what.longest())),
        source_memory(2 * pool_capacity(what.size())),
        output(what.longest() + slack),
        sources(what.wire.size()) {
    for (std::size_t i = 0; i < sources.size(); ++i) {
      memory_in_use = &source_memory;
      require(decode(sources[i], what.wire[i]), "nanopb decodes", what.name);
      const std::size_t size = what.wire[i].size();
      require(measured(sources[i]) == size && encode(sources[i], size) == size &&
                  encode(sources[i], output.size()) == size &&
                  std::memcmp(output.data(), what.wire[i].data(), size) == 0,
              "nanopb encodes what it has decoded", what.name);
    }
  }

  bool decode(message &object, const byte_string &wire) {
    std::memset(static_cast<void *>(&object), 0, sizeof object);
    pb_istream_t in = pb_istream_from_buffer(wire.data(), wire.size());
    return pb_decode_ex(&in, counterpart<Record>::fields(), &object, PB_DECODE_NOINIT);
  }

  std::size_t measured(const message &object) {
    std::size_t size = 0;
    return pb_get_encoded_size(&size, counterpart<Record>::fields(), &object) ? size : 0;
  }

  std::size_t encode(const message &object, std::size_t capacity) {
    pb_ostream_t out = pb_ostream_from_buffer(output.data(), capacity);
    return pb_encode(&out, counterpart<Record>::fields(), &object) ? out.bytes_written : 0;
  }

  const workload<Record> &work;
  pool memory, source_memory;
  byte_string output;
  std::vector<message> sources;
  message one{};
};

template <class Record>
repeat decode(const workload<Record> &work) {
  auto on = std::make_shared<bench<Record>>(work);
  return repeated([on] {
    memory_in_use = &on->memory;
    for (const byte_string &wire : on->work.wire) {
      on->memory.reset();
      on->decode(on->one, wire);
      keep(&on->one);
    }
  });
}

template <class Record>
repeat measure(const workload<Record> &work) {
  auto on = std::make_shared<bench<Record>>(work);
  return repeated([on] {
    std::size_t sum = 0;
    for (const auto &source : on->sources) sum += on->measured(source);
    keep(&sum);
  });
}

template <class Record>
repeat encode(const workload<Record> &work) {
  auto on = std::make_shared<bench<Record>>(work);
  return repeated([on] {
    for (const auto &source : on->sources) {
      on->encode(source, on->measured(source));
      keep(on->output.data());
    }
  });
}

template <class Record>
repeat encode_once(const workload<Record> &work) {
  auto on = std::make_shared<bench<Record>>(work);
  return repeated([on] {
    for (const auto &source : on->sources) {
      on->encode(source, on->output.size());
      keep(on->output.data());
    }
  });
}

}  // namespace

void enter_nanopb(roll &all) {
  all.add_contestant({with_callbacks, "pool, reset for each message; lists grow in it",
                      "copied, NUL-terminated, by a callback", "no UTF-8"});
  all.works->each([&](const auto &work) {
    all.add_case("decode", work.name, with_callbacks, [&] { return decode(work); });
    all.add_case("measure", work.name, with_callbacks, [&] { return measure(work); });
    all.add_case("encode", work.name, with_callbacks, [&] { return encode(work); });
    all.add_case("encode_once", work.name, with_callbacks, [&] { return encode_once(work); });
  });
}

}  // namespace contest

// Bound by name to every field that is a list, string or bytes: see nanopb.options.
extern "C" bool zorv_list_callback(pb_istream_t *in, pb_ostream_t *out, const pb_field_t *field) {
  auto &list = *static_cast<zorv_list *>(field->pData);
  return in != nullptr ? contest::decode_list(in, *field, list) : contest::encode_list(out, *field, list);
}
