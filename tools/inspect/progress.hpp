// A progress bar on the standard error, if that is a terminal. Of several at a time, only the first is drawn.
#pragma once

#include <chrono>
#include <cstddef>
#include <functional>

namespace inspect {

class progress {
 public:
  // `count` returns the number of steps. It is called only when there is a bar to draw.
  explicit progress(const std::function<std::size_t()> &count);
  progress(const progress &) = delete;
  progress &operator=(const progress &) = delete;
  ~progress();

  void step(std::size_t steps = 1);

  // Erases the bar, so that something can be printed.
  void clear();

 private:
  using clock = std::chrono::steady_clock;

  bool is_on_;
  bool is_drawn_ = false;
  std::size_t total_ = 0;
  std::size_t done_ = 0;
  std::size_t calls_ = 0;
  clock::time_point last_ = clock::now();
};

}  // namespace inspect
