// The operations on whole messages, declared for the kinds of member that contain messages.
#pragma once

#include <cstdint>

#include "memory.hpp"
#include "schema.hpp"
#include "segments.hpp"
#include "wire.hpp"

namespace pavo_zorv {

struct clipped_sink;

// What decoding is given besides the bytes.
struct decoding {
  pavo_zorv::memory memory;
  std::uint32_t options;
  buffer whole;

  bool referenced() const { return (options & PAVO_ZORV_REFERENCE) != 0; }
};

// What reading a field came to: the place after it, or null and the failure.
struct step {
  const byte *next;
  int result;
};

constexpr step failed(int result) { return {nullptr, result}; }

// Every member zero; the presence bits of no field stay as they are.
template <class Record>
void clear_message(Record &record);

// Reads fields into a clear record.
template <class Record>
int decode_message(Record &record, const byte *at, const byte *end, const decoding &input);

// How a message is to be written.
struct manner {
  bool referenced;
  bool gaps = false;  // bytes members without bytes, of which only the place is left
};

// What measuring finds besides the bytes, in a message and all inside it.
struct survey : manner {
  std::uint64_t segments = 0;  // entries that the table needs
  bool overflowed = false;     // the bytes are more than their number can say
};

// The bytes that a message takes: with a bytes member in it, perhaps more than memory has.
template <class Record>
std::uint64_t measure_message(const Record &record, survey &found);

// Writes a message backwards so that it ends at `end`; returns where it starts.
template <class Record, class Sink>
typename Sink::place write_message(const Record &record, const Sink &sink, typename Sink::place end, bool referenced);
template <class Record>
std::size_t write_message(const Record &record, const clipped_sink &sink, std::size_t end, bool referenced);

// A copy in the making: members for which there is no memory are left empty, and the copying goes on.
struct copying {
  pavo_zorv::memory memory;
  bool complete = true;
};

// Makes a record that was copied byte by byte own its memory: every pointer is replaced by one to a copy.
template <class Record>
void own_message(Record &record, const Record &source, copying &copy);

template <class Record>
void release_message(Record &record, const releaser &releaser);

template <class Record>
int compare_messages(const Record &a, const Record &b);

// A function of the C library to be called as it is. Some compilers would compare strings themselves, and their results
// have the same sign but not the same value.
template <class Function>
PAVO_ZORV_INLINE Function *as_it_is(Function *function) {
  asm("" : "+r"(function));
  return function;
}

// -1, 0 or 1.
template <class Value>
constexpr int compare_values(Value a, Value b) {
  return (a > b) - (a < b);
}

}  // namespace pavo_zorv
