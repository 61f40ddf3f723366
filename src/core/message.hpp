// The operations on whole messages, and what they hand from field to field: declared for the kinds of member that
// contain messages, and defined in a file for each operation.
#pragma once

#include <cstdint>

#include "measurement.hpp"
#include "memory.hpp"
#include "schema.hpp"
#include "wire.hpp"

namespace pavo_zorv {

// What decoding is given besides the bytes.
struct decode_context {
  pavo_zorv::memory memory;
  std::uint32_t options;
  buffer whole;

  bool referenced() const { return is_referenced(options); }
};

// Reads fields into a clear record.
template <class Record>
int decode_message(Record &record, const byte *at, const byte *end, const decode_context &decoding);

// Every member zero; the presence bits of no field stay as they are.
template <class Record>
void clear_record(Record &record);

// The bytes that a message takes: with a bytes member in it, perhaps more than memory has.
template <class Record>
std::uint64_t measure_message(const Record &record, measurement &found);

// Writes a message so that it ends at `end`; returns where it begins.
template <class Record, class Writer>
typename Writer::position write_message(const Record &record, Writer &writer, typename Writer::position end);

// A copy in the making: members for which there is no memory are left empty, and the copying goes on.
struct copy_context {
  pavo_zorv::memory memory;
  bool complete = true;
};

// Replaces every pointer of a record, which was copied byte by byte, by one to a copy.
template <class Record>
void copy_members(Record &record, const Record &source, copy_context &copy);

template <class Record>
void release_message(Record &record, const releaser &releaser);

template <class Record>
int compare_messages(const Record &a, const Record &b);

}  // namespace pavo_zorv
