// Runs a target on inputs without a fuzzing engine: for the tests, and for a finding. When the target dies of one, the
// last line names it, as a command that tries it again.
//
//   replay [--long] INPUTS...     inputs.hpp says what these are; --long means those of long_inputs.hpp, --long:7 the
//                                 seventh of them
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iterator>

#include "inputs.hpp"
#include "long_inputs.hpp"

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, std::size_t size);

// Null without a sanitizer, which calls back before it ends the program.
extern "C" [[gnu::weak]] void __sanitizer_set_death_callback(void (*callback)());

// Null where a target has no long inputs.
namespace fuzz {
[[gnu::weak]] std::size_t for_each_long_input(void (*use)(const unsigned char *data, std::size_t size));
}

namespace {

const char *program;
char last_words[8192];

void say_last_words() {
  if (write(STDERR_FILENO, last_words, std::strlen(last_words)) > 0) last_words[0] = '\0';
}

constexpr int deadly[] = {SIGABRT, SIGBUS, SIGFPE, SIGILL, SIGSEGV, SIGTRAP};
struct sigaction former[std::size(deadly)];

// What happens when the handler returns is the same again, and goes to whoever was to have it: a sanitizer or nobody.
void on_death(int signal) {
  say_last_words();
  for (std::size_t i = 0; i < std::size(deadly); ++i) {
    if (deadly[i] == signal) sigaction(signal, &former[i], nullptr);
  }
}

void name_the_input_that_kills() {
  // A stack that has overflowed cannot be used; sanitizers have another one already.
  static unsigned char memory[64 << 10];
  stack_t stack = {};
  if (sigaltstack(nullptr, &stack) == 0 && (stack.ss_flags & SS_DISABLE) != 0) {
    stack = {};
    stack.ss_sp = memory;
    stack.ss_size = sizeof memory;
    sigaltstack(&stack, nullptr);
  }
  struct sigaction action = {};
  action.sa_handler = on_death;
  action.sa_flags = SA_ONSTACK;
  for (std::size_t i = 0; i < std::size(deadly); ++i) sigaction(deadly[i], &action, &former[i]);
  if (__sanitizer_set_death_callback != nullptr) __sanitizer_set_death_callback(say_last_words);
}

long inputs = 0;

void run(const char *name, const unsigned char *data, std::size_t size) {
  std::snprintf(last_words, sizeof last_words, "again: %s %s\n", program, name);
  LLVMFuzzerTestOneInput(data, size);
  last_words[0] = '\0';
  ++inputs;
}

unsigned long long_input, wanted_long_input;

void run_long_input(const unsigned char *data, std::size_t size) {
  char name[40];
  std::snprintf(name, sizeof name, "--long:%lu", ++long_input);
  if (wanted_long_input == 0 || wanted_long_input == long_input) run(name, data, size);
}

bool run_all(const char *name) {
  if (std::strncmp(name, "--long", 6) != 0) return fuzz::for_each_input(name, run);
  long_input = 0;
  wanted_long_input = name[6] == ':' ? std::strtoul(name + 7, nullptr, 10) : 0;
  return fuzz::for_each_long_input != nullptr && fuzz::for_each_long_input(run_long_input) >= wanted_long_input;
}

}  // namespace

int main(int count, char **arguments) {
  program = arguments[0];
  name_the_input_that_kills();
  for (int i = 1; i < count; ++i) {
    if (run_all(arguments[i])) continue;
    std::fprintf(stderr, "%s cannot be read\n", arguments[i]);
    return 1;
  }
  if (inputs == 0) {
    std::fprintf(stderr, "usage: replay [--long] INPUTS...   (no input was given)\n");
    return 1;
  }
  std::printf("%ld inputs\n", inputs);
  return 0;
}
