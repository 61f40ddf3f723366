// The progress bar, redrawn at most ten times a second.
#include "progress.hpp"

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>

namespace inspect {

// Two bars would overwrite each other.
namespace {
bool is_taken = false;
}

progress::progress(const std::function<std::size_t()> &count)
    : is_on_(!is_taken && isatty(STDERR_FILENO) == 1), total_(is_on_ ? count() : 0) {
  is_taken = is_taken || is_on_;
}

progress::~progress() {
  clear();
  if (is_on_) is_taken = false;
}

void progress::step(std::size_t steps) {
  done_ += steps;
  if (!is_on_ || ++calls_ % 16 != 0 || clock::now() - last_ < std::chrono::milliseconds(100)) return;
  last_ = clock::now();
  constexpr std::size_t width = 40;
  const std::size_t filled = std::min(width, done_ * width / std::max<std::size_t>(total_, 1));
  fmt::print(stderr, "\r[{:<{}}] {} of {} ", std::string(filled, '#'), width, done_, total_);
  std::fflush(stderr);
  is_drawn_ = true;
}

void progress::clear() {
  if (!is_drawn_) return;
  fmt::print(stderr, "\r\x1b[K");
  std::fflush(stderr);
  is_drawn_ = false;
}

}  // namespace inspect
