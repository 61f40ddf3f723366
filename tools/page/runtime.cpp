// What the C++ runtime and the C library need of their surroundings, for a module that has none: one import, `fail`,
// which ends a call with an error.
//
// Debian's libraries for WebAssembly are built without exceptions. An error is thrown as everywhere in this tool, but
// not caught in the module: `fail` throws in the page, which drops the module's memory with all that was being done.
#include <cxxabi.h>
#include <wasi/api.h>

#include <cstdlib>
#include <stdexcept>
#include <string_view>
#include <typeinfo>

#include "engine.hpp"
#include "node.hpp"

namespace {

// What is thrown is derived from std::runtime_error in this tool, and from std::exception in the library.
const char *what_of(void *thrown, const std::type_info &type) {
  if (type == typeid(inspect::input_error) || type == typeid(inspect::usage_error)) {
    return static_cast<std::runtime_error *>(thrown)->what();
  }
  return type.name();
}

}  // namespace

extern "C" {

[[clang::import_module("page"), clang::import_name("fail"), noreturn]] void page_fail(const char *text,
                                                                                      std::size_t size,
                                                                                      std::int32_t at);

void *__cxa_allocate_exception(std::size_t size) noexcept { return std::malloc(size); }

void __cxa_throw(void *thrown, std::type_info *type, void *(*)(void *)) {
  if (*type == typeid(inspect::text_error)) {
    const auto &error = *static_cast<inspect::text_error *>(thrown);
    const inspect::text_place place = inspect::place_of(error);
    page_fail(place.text.data(), place.text.size(), place.at);
  }
  const std::string_view text = what_of(thrown, *type);
  page_fail(text.data(), text.size(), -1);
}

// There are no files, no environment and no process: what the C library would import for them fails. What is printed
// becomes a note.
constexpr std::int32_t not_there = __WASI_ERRNO_NOSYS;
#define IMPORTED(name) __imported_wasi_snapshot_preview1_##name
std::int32_t IMPORTED(environ_get)(std::int32_t, std::int32_t) { return not_there; }
std::int32_t IMPORTED(environ_sizes_get)(std::int32_t, std::int32_t) { return not_there; }
std::int32_t IMPORTED(fd_close)(std::int32_t) { return not_there; }
std::int32_t IMPORTED(fd_fdstat_get)(std::int32_t, std::int32_t) { return not_there; }
std::int32_t IMPORTED(fd_read)(std::int32_t, std::int32_t, std::int32_t, std::int32_t) { return not_there; }
std::int32_t IMPORTED(fd_seek)(std::int32_t, std::int64_t, std::int32_t, std::int32_t) { return not_there; }
std::int32_t IMPORTED(clock_time_get)(std::int32_t, std::int64_t, std::int32_t) { return not_there; }
void IMPORTED(proc_exit)(std::int32_t) { __builtin_trap(); }

std::int32_t IMPORTED(fd_write)(std::int32_t, const __wasi_ciovec_t *pieces, std::int32_t count,
                                __wasi_size_t *written) {
  *written = 0;
  for (std::int32_t index = 0; index < count; ++index) {
    inspect::note({reinterpret_cast<const char *>(pieces[index].buf), pieces[index].buf_len});
    *written += pieces[index].buf_len;
  }
  return __WASI_ERRNO_SUCCESS;
}

}  // extern "C"
