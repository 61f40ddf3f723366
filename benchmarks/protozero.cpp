// protozero: a reader and a writer for our records, in its usual style. The loops over the fields of a message are
// unrolled from the schema; the compiler turns them into a switch.
#include <protozero/basic_pbf_writer.hpp>
#include <protozero/buffer_fixed.hpp>
#include <protozero/buffer_string.hpp>
#include <protozero/pbf_reader.hpp>

#include <cstring>
#include <string>

#include "contest.hpp"
#include "messages/all.hpp"
#include "workloads.hpp"

namespace contest {
namespace {

using pavo_zorv::kind;
using protozero::fixed_size_buffer_adaptor;
using protozero::pbf_reader;
using protozero::pbf_wire_type;

constexpr const char *into_records = "protozero";
constexpr const char *into_one_string = "protozero_reused";

template <class Row>
constexpr std::uint32_t key_of(const Row &row) {
  return protozero::tag_and_type(row.number, static_cast<pbf_wire_type>(Row::wire));
}

struct reading {
  pool &memory;
  bool referenced;
};

template <class Record>
void read(pbf_reader in, Record &record, const reading &how);

// Whether the next field has this key; if so, makes it the current one. A one-byte key is compared in place.
inline __attribute__((always_inline)) bool next_is(pbf_reader &in, std::uint32_t key) {
  if (key < 0x80) {
    const auto rest = in.data();
    return rest.size() != 0 && static_cast<unsigned char>(*rest.data()) == key && in.next();
  }
  pbf_reader ahead = in;
  if (!ahead.next() || ahead.tag_and_type() != key) return false;
  in = ahead;
  return true;
}

// A list of integers: each element takes at least two bytes; unused memory is released.
template <class Element>
inline __attribute__((always_inline)) std::uint32_t read_integers(pbf_reader &in, Element *&elements, std::uint32_t key,
                                                                  const reading &how) {
  const std::size_t most = in.length() / 2 + 1;
  elements = static_cast<Element *>(how.memory.take(most * sizeof(Element)));
  std::uint32_t count = 0;
  do elements[count++] = static_cast<Element>(in.get_uint32());
  while (next_is(in, key));
  how.memory.trim(elements, count * sizeof(Element));
  return count;
}

// A list of messages: counted first, then read.
template <class Nested>
std::uint32_t read_messages(pbf_reader &in, Nested *&elements, std::uint32_t key, const reading &how) {
  std::uint32_t count = 0;
  pbf_reader ahead = in;
  do {
    ahead.skip();
    ++count;
  } while (ahead.next() && ahead.tag_and_type() == key);
  elements = static_cast<Nested *>(how.memory.take(count * sizeof(Nested)));
  std::memset(static_cast<void *>(elements), 0, count * sizeof(Nested));
  for (std::uint32_t i = 0; i < count; ++i) {
    if (i != 0) in.next();
    read(in.get_message(), elements[i], how);
  }
  return count;
}

template <class Record, std::size_t Index>
inline __attribute__((always_inline)) void read_field(pbf_reader &in, Record &record, const reading &how) {
  constexpr auto &row = pavo_zorv::row_at<Record, Index>;
  using member = std::remove_cvref_t<decltype(record.*row.value)>;
  if constexpr (row.type == kind::flag) {
    record.*row.value = in.get_bool();
  } else if constexpr (row.type == kind::integer) {
    record.*row.value = static_cast<member>(sizeof(member) == 8 ? in.get_uint64() : in.get_uint32());
  } else if constexpr (row.type == kind::string) {
    const auto view = in.get_view();
    char *const copy = static_cast<char *>(how.memory.take(view.size() + 1));
    std::memcpy(copy, view.data(), view.size());
    copy[view.size()] = '\0';
    record.*row.value = copy;
  } else if constexpr (row.type == kind::bytes) {
    const auto view = in.get_view();
    record.*row.length = view.size();
    if (how.referenced) {
      record.*row.value = reinterpret_cast<unsigned char *>(const_cast<char *>(view.data()));
    } else {
      record.*row.value = static_cast<unsigned char *>(how.memory.take(view.size()));
      std::memcpy(record.*row.value, view.data(), view.size());
    }
  } else {
    read(in.get_message(), record.*row.value, how);
  }
}

template <class Record, std::size_t Index>
inline __attribute__((always_inline)) void read_row(pbf_reader &in, Record &record, const reading &how) {
  constexpr auto &row = pavo_zorv::row_at<Record, Index>;
  if constexpr (row.type == kind::integer_list) {
    record.*row.count = read_integers(in, record.*row.elements, key_of(row), how);
  } else if constexpr (row.type == kind::message_list) {
    record.*row.count = read_messages(in, record.*row.elements, key_of(row), how);
  } else {
    read_field<Record, Index>(in, record, how);
  }
  record.presence =
      static_cast<pavo_zorv::presence_of<Record>>(record.presence | pavo_zorv::presence_bit<Record, Index>);
}

// Into a zeroed record.
template <class Record>
void read(pbf_reader in, Record &record, const reading &how) {
  while (in.next()) {
    const std::uint32_t key = in.tag_and_type();
    const bool known = [&]<std::size_t... Index>(std::index_sequence<Index...>) __attribute__((always_inline)) {
      return ((key == key_of(pavo_zorv::row_at<Record, Index>) && (read_row<Record, Index>(in, record, how), true)) ||
              ...);
    }
    (std::make_index_sequence<pavo_zorv::field_count<Record>>{});
    if (!known) in.skip();
  }
}

template <class Buffer, class Record>
void write(protozero::basic_pbf_writer<Buffer> &out, const Record &record) {
  pavo_zorv::for_each_row<Record>([&](auto index) __attribute__((always_inline)) {
    constexpr auto &row = pavo_zorv::row_at<Record, index>;
    constexpr auto number = static_cast<protozero::pbf_tag_type>(row.number);
    if ((record.presence & pavo_zorv::presence_bit<Record, index>) == 0) return;
    if constexpr (row.type == kind::flag) {
      out.add_bool(number, record.*row.value);
    } else if constexpr (row.type == kind::integer) {
      using member = std::remove_cvref_t<decltype(record.*row.value)>;
      if constexpr (sizeof(member) == 8) {
        out.add_uint64(number, static_cast<std::uint64_t>(record.*row.value));
      } else {
        out.add_uint32(number, static_cast<std::uint32_t>(record.*row.value));
      }
    } else if constexpr (row.type == kind::string) {
      out.add_string(number, record.*row.value);
    } else if constexpr (row.type == kind::bytes) {
      out.add_bytes(number, reinterpret_cast<const char *>(record.*row.value), record.*row.length);
    } else if constexpr (row.type == kind::integer_list) {
      for (std::uint32_t i = 0; i < record.*row.count; ++i) out.add_uint32(number, (record.*row.elements)[i]);
    } else if constexpr (row.type == kind::message_list) {
      for (std::uint32_t i = 0; i < record.*row.count; ++i) {
        protozero::basic_pbf_writer<Buffer> nested(out, number);
        write(nested, (record.*row.elements)[i]);
      }
    } else {
      protozero::basic_pbf_writer<Buffer> nested(out, number);
      write(nested, record.*row.value);
    }
  });
}

template <class Record>
struct bench {
  // Each length of a nested message first takes five bytes; the gaps are closed afterwards. Hence the slack.
  explicit bench(const workload<Record> &what)
      : work(what), memory(pool_capacity(what.longest())), output(what.longest() + slack) {
    for (std::size_t i = 0; i < what.wire.size(); ++i) {
      memory.reset();
      decode(what.wire[i]);
      require(encoding(record) == what.wire[i], "protozero decodes", what.name);
      const std::size_t length = encode_once(what.records[i]);
      require(length == what.wire[i].size() && std::memcmp(output.data(), what.wire[i].data(), length) == 0,
              "protozero encodes", what.name);
      text.clear();
      encode(what.records[i], text);
      require(text.size() == what.wire[i].size() && std::memcmp(text.data(), what.wire[i].data(), text.size()) == 0,
              "protozero encodes into a string", what.name);
    }
  }

  void decode(const byte_string &wire) {
    std::memset(static_cast<void *>(&record), 0, sizeof record);
    read(pbf_reader(reinterpret_cast<const char *>(wire.data()), wire.size()), record,
         {memory, (work.options & PAVO_ZORV_REFERENCE) != 0});
  }

  std::size_t encode_once(const Record &source) {
    fixed_size_buffer_adaptor buffer(reinterpret_cast<char *>(output.data()), output.size());
    protozero::basic_pbf_writer out(buffer);
    write(out, source);
    return buffer.size();
  }

  // It cannot measure: where the length is not known, it writes to a string that grows.
  static void encode(const Record &source, std::string &text) {
    protozero::basic_pbf_writer out(text);
    write(out, source);
  }

  const workload<Record> &work;
  pool memory;
  byte_string output;
  std::string text;
  Record record{};
};

template <class Record>
repeat decode(const workload<Record> &work) {
  auto on = std::make_shared<bench<Record>>(work);
  return repeated([on] {
    for (const byte_string &wire : on->work.wire) {
      on->memory.reset();
      on->decode(wire);
      keep(&on->record);
    }
  });
}

template <class Record>
repeat encode(const workload<Record> &work) {
  auto on = std::make_shared<bench<Record>>(work);
  return repeated([on] {
    for (const Record &source : on->work.records) {
      std::string text;
      on->encode(source, text);
      keep(text.data());
    }
  });
}

template <class Record>
repeat encode_into_one_string(const workload<Record> &work) {
  auto on = std::make_shared<bench<Record>>(work);
  return repeated([on] {
    for (const Record &source : on->work.records) {
      on->text.clear();
      on->encode(source, on->text);
      keep(on->text.data());
    }
  });
}

template <class Record>
repeat encode_once(const workload<Record> &work) {
  auto on = std::make_shared<bench<Record>>(work);
  return repeated([on] {
    for (const Record &source : on->work.records) {
      on->encode_once(source);
      keep(on->output.data());
    }
  });
}

}  // namespace

void enter_protozero(roll &all) {
  all.add_contestant({into_records,
                      "pool, reset for each message; encode: a new string; encode_once: a buffer that suffices",
                      "copied, NUL-terminated; bytes referenced in the workload by reference", "no UTF-8"});
  all.add_contestant({into_one_string, "encode: one string, cleared for each message: it keeps its memory", "-", "-"});
  all.works->each([&](const auto &work) {
    all.add_case("decode", work.name, into_records, [&] { return decode(work); });
    all.add_case("encode", work.name, into_records, [&] { return encode(work); });
    all.add_case("encode", work.name, into_one_string, [&] { return encode_into_one_string(work); });
    all.add_case("encode_once", work.name, into_records, [&] { return encode_once(work); });
  });
}

}  // namespace contest
