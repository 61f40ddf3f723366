// Writes include/pavo_zorv_layout.h, from the schemas. It is compiled without the assertions that are in that file, so
// that it can be written anew when records have changed.
#include <array>
#include <cstddef>
#include <cstdio>
#include <string_view>
#include <tuple>
#include <utility>

#include "core/layout.hpp"
#include "member_name.hpp"
#include "messages/all.hpp"

namespace {

constexpr const char *introduction = R"(/** @file
 *  The binary interface in numbers: the size of every record and the place of each member, for 64-bit pointers (LP64)
 *  and for 32-bit pointers where 64-bit numbers are aligned to 4 bytes (ILP32, as on i386). `pavo_zorv.h` includes
 *  this file, so that no program compiles with a compiler or an option that lays out records differently: it would not
 *  run with the library. On other machines nothing is checked.
 *
 *  Written by `tests/library/layout_header.cpp` from the schemas, by
 *  `cmake --build --preset release --target update-layout`.
 */
#ifndef PAVO_ZORV_LAYOUT_H
#define PAVO_ZORV_LAYOUT_H

#ifndef PAVO_ZORV_H
#error "include pavo_zorv.h, which includes this file"
#endif

/** @cond */
#ifdef __cplusplus
#define PAVO_ZORV_ASSERT_(condition, text) static_assert(condition, text)
#elif defined(__GNUC__)
#define PAVO_ZORV_ASSERT_(condition, text) __extension__ _Static_assert(condition, text) /* before C11 as well */
#else
#define PAVO_ZORV_ASSERT_(condition, text) _Static_assert(condition, text)
#endif

/* The number that holds here, or what is seen where no number holds. */
#define PAVO_ZORV_HERE_(lp64, ilp32, seen) \
  (sizeof(void *) == 8 ? (lp64) : sizeof(void *) == 4 && offsetof(pavo_zorv_segment, length) == 4 ? (ilp32) : (seen))

#define PAVO_ZORV_SIZE_(record, lp64, ilp32) \
  PAVO_ZORV_ASSERT_(sizeof(record) == PAVO_ZORV_HERE_(lp64, ilp32, sizeof(record)), "size of " #record)
#define PAVO_ZORV_AT_(record, member, lp64, ilp32)                                        \
  PAVO_ZORV_ASSERT_(                                                                      \
      offsetof(record, member) == PAVO_ZORV_HERE_(lp64, ilp32, offsetof(record, member)), \
      "place of " #member " in " #record)

#ifdef __i386__
PAVO_ZORV_ASSERT_(offsetof(pavo_zorv_segment, length) == 4, "64-bit numbers are aligned to 4 bytes on i386");
#endif

PAVO_ZORV_SIZE_(pavo_zorv_segment, 16, 12);
PAVO_ZORV_AT_(pavo_zorv_segment, start, 0, 0);
PAVO_ZORV_AT_(pavo_zorv_segment, length, 8, 4);
)";

constexpr const char *end = R"(
#undef PAVO_ZORV_AT_
#undef PAVO_ZORV_SIZE_
#undef PAVO_ZORV_HERE_
#undef PAVO_ZORV_ASSERT_
/** @endcond */

#endif
)";

static_assert(pavo_zorv::member_name<&api_lbl_stack::label_count>() == "label_count");

template <class Record>
void write_record(const char *record) {
  constexpr auto here = pavo_zorv::layout_of<Record>(pavo_zorv::native);
  static_assert(here.size == sizeof(Record) && here.alignment == alignof(Record));
  static_assert(here.offsets.back() == offsetof(Record, presence));
  constexpr auto wide = pavo_zorv::layout_of<Record>(pavo_zorv::lp64);
  constexpr auto narrow = pavo_zorv::layout_of<Record>(pavo_zorv::ilp32);
  std::printf("\nPAVO_ZORV_SIZE_(%s, %zu, %zu);\n", record, wide.size, narrow.size);
  const auto write = [&](std::string_view member, std::size_t index) {
    std::printf("PAVO_ZORV_AT_(%s, %.*s, %zu, %zu);\n", record, static_cast<int>(member.size()), member.data(),
                wide.offsets[index], narrow.offsets[index]);
  };
  constexpr std::size_t count = pavo_zorv::row_member_count<Record>;
  [&]<std::size_t... Index>(std::index_sequence<Index...>) {
    (write(pavo_zorv::member_name<std::get<Index>(pavo_zorv::row_members<Record>)>(), Index), ...);
  }
  (std::make_index_sequence<count>{});
  write("presence", count);
}

}  // namespace

int main() {
  std::fputs(introduction, stdout);
#define WRITTEN(message) write_record<message>(#message);
  PAVO_ZORV_MESSAGES(WRITTEN)
#undef WRITTEN
  std::fputs(end, stdout);
  return 0;
}
