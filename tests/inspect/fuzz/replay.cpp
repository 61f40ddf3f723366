// Runs a fuzzing target on the files in a folder, without a fuzzer.
#include <cstdio>
#include <filesystem>
#include <string>

#include "input.hpp"

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, std::size_t size);

int main(int count, char **arguments) {
  std::size_t inputs = 0;
  for (int index = 1; index < count; ++index) {
    inspect::for_each_file(arguments[index], [&](const std::string &file) {
      const inspect::byte_string read = inspect::read_file(file);
      const inspect::byte_string exact(read.begin(), read.end());
      LLVMFuzzerTestOneInput(exact.data(), exact.size());
      ++inputs;
    });
  }
  std::printf("%zu inputs\n", inputs);
  return inputs != 0 ? 0 : 1;
}
