// Reads and writes files.
#include "input.hpp"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>

#include "failure.hpp"

namespace inspect {
namespace {

bool is_standard(const std::string &name) { return name.empty() || name == "-"; }

[[noreturn]] void fail(std::string_view action, const std::string &name) {
  throw usage_error(fmt::format("cannot {} {}: {}", action, name, std::strerror(errno)));
}

// A file open for reading. The standard input is not closed.
class source {
 public:
  explicit source(const std::string &name)
      : name_(is_standard(name) ? "standard input" : name),
        file_(is_standard(name) ? STDIN_FILENO : ::open(name.c_str(), O_RDONLY | O_CLOEXEC)) {
    if (file_ < 0) fail("read", name_);
  }
  source(const source &) = delete;
  source &operator=(const source &) = delete;
  ~source() {
    if (file_ != STDIN_FILENO) ::close(file_);
  }

  // The size that `fstat` reports; for pipes and the like, an initial guess.
  std::size_t expected_size() const {
    struct stat status {};
    if (::fstat(file_, &status) == 0 && status.st_size > 0) return static_cast<std::size_t>(status.st_size);
    return 4096;
  }

  std::size_t read(unsigned char *into, std::size_t size) const {
    ssize_t taken;
    do {
      taken = ::read(file_, into, size);
    } while (taken < 0 && errno == EINTR);
    if (taken < 0) fail("read", name_);
    return static_cast<std::size_t>(taken);
  }

 private:
  std::string name_;
  int file_;
};

struct file_closer {
  void operator()(std::FILE *file) const { std::fclose(file); }
};

}  // namespace

void read_file(const std::string &name, byte_string &content) {
  const source from(name);
  std::size_t filled = 0;
  content.resize(from.expected_size() + 1);  // one more, to see the end without growing
  while (const std::size_t taken = from.read(content.data() + filled, content.size() - filled)) {
    filled += taken;
    if (filled == content.size()) content.resize(2 * filled);
  }
  content.resize(filled);
}

byte_string read_file(const std::string &name) {
  byte_string content;
  read_file(name, content);
  return content;
}

void write_file(const std::string &name, byte_view content) {
  const std::unique_ptr<std::FILE, file_closer> opened(is_standard(name) ? nullptr : std::fopen(name.c_str(), "wb"));
  std::FILE *const target = is_standard(name) ? stdout : opened.get();
  const bool complete = target != nullptr && std::fwrite(content.data(), 1, content.size(), target) == content.size() &&
                        std::fflush(target) == 0;
  if (!complete) fail("write", is_standard(name) ? "standard output" : name);
}

void print(std::string_view text) {
  write_file("", byte_view(reinterpret_cast<const unsigned char *>(text.data()), text.size()));
}

void for_each_file(const std::string &name, const std::function<void(const std::string &)> &visit) {
  std::error_code error;
  if (!std::filesystem::is_directory(name, error)) return visit(name);
  for (const auto &entry : std::filesystem::recursive_directory_iterator(name)) {
    if (!entry.is_directory()) visit(entry.path().string());
  }
}

}  // namespace inspect
