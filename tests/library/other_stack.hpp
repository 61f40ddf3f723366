// A separate stack of any size. A page without access guards its end, and memory filled with a known byte lies below
// that, so that writes past the guard can be detected.
#pragma once

#include <setjmp.h>
#include <signal.h>
#include <sys/mman.h>
#include <ucontext.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <functional>

namespace test {

class other_stack {
 public:
  static constexpr std::size_t most = 256 * 1024;  // the largest stack
  static constexpr std::size_t least = 64;         // to begin with

  other_stack() {
    const auto map = [](std::size_t size, void *at, int access) {
      void *const result = mmap(at, size, access, MAP_PRIVATE | MAP_ANONYMOUS | (at != nullptr ? MAP_FIXED : 0), -1, 0);
      if (result == MAP_FAILED) std::abort();
      return static_cast<unsigned char *>(result);
    };
    // From low to high addresses: no access, memory that must not change, the guard, the stack, the stack of the
    // handler.
    mapped_ = map(all(), nullptr, PROT_NONE);
    below_ = map(below, mapped_ + page_, PROT_READ | PROT_WRITE);
    guard_ = below_ + below;
    stack_ = map(most + handler_size, guard_ + page_, PROT_READ | PROT_WRITE);
    fill_below();

    stack_t handler_stack{};
    handler_stack.ss_sp = stack_ + most;
    handler_stack.ss_size = handler_size;
    struct sigaction action {};
    action.sa_sigaction = leave;
    action.sa_flags = SA_SIGINFO | SA_ONSTACK | SA_NODEFER;
    if (sigaltstack(&handler_stack, &former_handler_stack_) != 0 || sigaction(SIGSEGV, &action, &former_action_) != 0)
      std::abort();
    current() = this;
  }
  other_stack(const other_stack &) = delete;
  other_stack &operator=(const other_stack &) = delete;
  ~other_stack() {
    sigaction(SIGSEGV, &former_action_, nullptr);
    sigaltstack(&former_handler_stack_, nullptr);
    munmap(mapped_, all());
  }

  // Runs `work` on a stack of this size, of which the call itself takes some hundred bytes; false if it is too small,
  // so that the guard is touched.
  bool is_enough(std::size_t size, const std::function<void()> &work) {
    work_ = &work;
    if (sigsetjmp(fault_, 0) != 0) return false;
    getcontext(&there_);
    there_.uc_stack.ss_sp = stack_;
    there_.uc_stack.ss_size = size;
    there_.uc_link = &here_;
    makecontext(&there_, call, 0);
    swapcontext(&here_, &there_);
    return true;
  }

  // The bytes of stack that `work` takes, or slightly more; 0 if the guard is touched.
  std::size_t used_by(const std::function<void()> &work) {
    std::memset(stack_, filling, most);
    if (!is_enough(most, work)) return 0;
    return most - static_cast<std::size_t>(
                      std::find_if(stack_, stack_ + most, [](unsigned char byte) { return byte != filling; }) - stack_);
  }

  bool is_untouched_below() const { return below_[0] == filling && std::memcmp(below_, below_ + 1, below - 1) == 0; }
  void fill_below() { std::memset(below_, filling, below); }

 private:
  static constexpr std::size_t below = 20 * 4096, handler_size = 64 * 1024;
  static constexpr unsigned char filling = 0x6b;

  static other_stack *&current() {
    static other_stack *result;
    return result;
  }
  std::size_t all() const { return page_ + below + page_ + most + handler_size; }

  static void call() { (*current()->work_)(); }

  // Any fault outside the guard is a real one.
  static void leave(int, siginfo_t *fault, void *) {
    other_stack &stack = *current();
    const auto *const at = static_cast<const unsigned char *>(fault->si_addr);
    if (at >= stack.guard_ && at < stack.stack_) siglongjmp(stack.fault_, 1);
    signal(SIGSEGV, SIG_DFL);
  }

  std::size_t page_ = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
  unsigned char *mapped_, *below_, *guard_, *stack_;
  const std::function<void()> *work_ = nullptr;
  ucontext_t here_, there_;
  sigjmp_buf fault_;
  stack_t former_handler_stack_;
  struct sigaction former_action_;
};

}  // namespace test
