// Input and output: files and the standard streams.
#pragma once

#include <cstddef>
#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>

#include "bytes.hpp"
#include "progress.hpp"

namespace inspect {

// A file, or the standard input, that is read piece by piece.
class input_file {
 public:
  // The standard input when the name is empty or "-".
  explicit input_file(const std::string &name);
  // Bytes in memory under the name of a file.
  input_file(std::string name, byte_view content);
  input_file(const input_file &) = delete;
  input_file &operator=(const input_file &) = delete;
  ~input_file();

  // "standard input" for that.
  const std::string &name() const { return name_; }

  // What has been read but not consumed. Valid until more is read.
  byte_view ahead() const { return {buffer_.get() + begin_, end_ - begin_}; }

  // Reads what there is, and waits only if that is nothing; what has been printed is flushed before. False at the end.
  bool read_more();
  void read_all();

  // What is ahead, read until it is `size` bytes or the end.
  byte_view read_up_to(std::size_t size);

  void consume(std::size_t size) { begin_ += size; }

  // What is ahead is replaced by what it stands for. Nothing more is read.
  void replace(byte_view content);

 private:
  struct memory_releaser {
    void operator()(unsigned char *block) const { std::free(block); }
  };

  void make_room();
  void resize(std::size_t size);
  void show_progress(std::size_t taken);

  std::string name_;
  int file_ = -1;
  bool is_at_end_ = false;
  std::size_t file_size_ = 0;  // 0 if unknown
  std::unique_ptr<unsigned char, memory_releaser> buffer_;
  std::size_t capacity_ = 0;
  std::size_t begin_ = 0;
  std::size_t end_ = 0;
  std::unique_ptr<progress> progress_;
};

// The content of a file, or of the standard input when the name is empty or "-".
byte_string read_file(const std::string &name);

// An output that is the same file as the input is a usage error.
void refuse_to_replace(const std::string &input, const std::string &output);

void write_file(const std::string &name, byte_view content);

// Appends to the standard output, which is flushed before the program waits for input, and in the end.
void print(std::string_view text);
void flush_output();

}  // namespace inspect
