// Reads and writes files.
#include "input.hpp"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <memory>
#include <new>
#include <utility>

#include "failure.hpp"

namespace inspect {
namespace {

constexpr std::size_t chunk = 1 << 16;

bool is_standard(const std::string &name) { return name.empty() || name == "-"; }

[[noreturn]] void fail(std::string_view action, const std::string &name) {
  throw usage_error(fmt::format("cannot {} {}: {}", action, name, std::strerror(errno)));
}

// The size of a regular file; of pipes and the like 0.
std::size_t size_of(int file) {
  struct stat status {};
  if (::fstat(file, &status) != 0 || !S_ISREG(status.st_mode)) return 0;
  return static_cast<std::size_t>(std::max<off_t>(status.st_size, 0));
}

struct file_closer {
  void operator()(std::FILE *file) const { std::fclose(file); }
};

}  // namespace

input_file::input_file(const std::string &name)
    : name_(is_standard(name) ? "standard input" : name),
      file_(is_standard(name) ? STDIN_FILENO : ::open(name.c_str(), O_RDONLY | O_CLOEXEC)) {
  if (file_ < 0) fail("read", name_);
  file_size_ = size_of(file_);
}

input_file::input_file(std::string name, byte_view content) : name_(std::move(name)) { replace(content); }

input_file::~input_file() {
  if (file_ > STDIN_FILENO) ::close(file_);
}

bool input_file::read_more() {
  if (is_at_end_) return false;
  make_room();
  flush_output();
  ssize_t taken;
  do {
    taken = ::read(file_, buffer_.get() + end_, capacity_ - end_);
  } while (taken < 0 && errno == EINTR);
  if (taken < 0) fail("read", name_);
  is_at_end_ = taken == 0;
  end_ += static_cast<std::size_t>(taken);
  if (file_size_ > 16 * chunk) show_progress(static_cast<std::size_t>(taken));
  return !is_at_end_;
}

void input_file::read_all() {
  // One byte more than the file has, to see its end without growing.
  if (!is_at_end_ && capacity_ <= file_size_) resize(file_size_ + 1);
  while (read_more()) {
  }
}

byte_view input_file::read_up_to(std::size_t size) {
  if (size == SIZE_MAX) read_all();
  while (ahead().size() < size && read_more()) {
  }
  if (progress_ != nullptr) progress_->clear();
  return ahead().first(std::min(size, ahead().size()));
}

void input_file::replace(byte_view content) {
  is_at_end_ = true;
  begin_ = end_ = 0;
  resize(std::max<std::size_t>(content.size(), 1));
  std::copy(content.begin(), content.end(), buffer_.get());
  end_ = content.size();
}

// What is consumed makes room for more. What is not may be a part of something long.
void input_file::make_room() {
  if (begin_ != 0) {
    std::memmove(buffer_.get(), buffer_.get() + begin_, end_ - begin_);
    end_ -= begin_;
    begin_ = 0;
  }
  if (end_ == capacity_) resize(std::max(chunk, 2 * end_));
}

// Pages that have not been filled take no memory.
void input_file::resize(std::size_t size) {
  auto *const resized = static_cast<unsigned char *>(std::realloc(buffer_.get(), size));
  if (resized == nullptr) throw std::bad_alloc();
  static_cast<void>(buffer_.release());
  buffer_.reset(resized);
  capacity_ = size;
}

// A bar among what is printed on the same terminal would be in the way.
void input_file::show_progress(std::size_t taken) {
  if (progress_ == nullptr && isatty(STDOUT_FILENO) == 1) return;
  if (progress_ == nullptr) progress_ = std::make_unique<progress>([this] { return file_size_; });
  progress_->step(taken);
  if (is_at_end_) progress_->clear();
}

void refuse_to_replace(const std::string &input, const std::string &output) {
  struct stat from {};
  struct stat to {};
  if (is_standard(output) || ::stat(output.c_str(), &to) != 0 || !S_ISREG(to.st_mode)) return;
  if ((is_standard(input) ? ::fstat(STDIN_FILENO, &from) : ::stat(input.c_str(), &from)) != 0) return;
  if (from.st_dev == to.st_dev && from.st_ino == to.st_ino) {
    throw usage_error(fmt::format("--output={}: this is the input, which is not overwritten", output));
  }
}

byte_string read_file(const std::string &name) {
  input_file file(name);
  file.read_all();
  const byte_view content = file.ahead();
  return byte_string(content.begin(), content.end());
}

void write_file(const std::string &name, byte_view content) {
  if (is_standard(name)) {
    print({reinterpret_cast<const char *>(content.data()), content.size()});
    return flush_output();
  }
  const std::unique_ptr<std::FILE, file_closer> target(std::fopen(name.c_str(), "wb"));
  const bool complete = target != nullptr &&
                        std::fwrite(content.data(), 1, content.size(), target.get()) == content.size() &&
                        std::fflush(target.get()) == 0;
  if (!complete) fail("write", name);
}

void print(std::string_view text) {
  if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size()) fail("write", "standard output");
}

void flush_output() {
  if (std::fflush(stdout) != 0) fail("write", "standard output");
}

}  // namespace inspect
