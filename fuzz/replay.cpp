// Runs a target on the inputs in files and folders, without a fuzzing engine: for the tests, and for a finding.
//
//   replay [--long] FILE_OR_FOLDER...     with --long, on those of long_inputs.hpp as well
#include <dirent.h>

#include <cstdio>
#include <cstring>
#include <vector>

#include "long_inputs.hpp"

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, std::size_t size);

namespace {

// Runs a file in a block of its own, of exactly its size. C's functions, whose effects every sanitizer knows.
bool run_file(const char *path) {
  std::FILE *const file = std::fopen(path, "rb");
  if (file == nullptr) return false;
  std::fseek(file, 0, SEEK_END);
  const long size = std::ftell(file);
  std::vector<unsigned char> bytes(size > 0 ? static_cast<std::size_t>(size) : 0);
  std::rewind(file);
  const bool good = size >= 0 && std::fread(bytes.data(), 1, bytes.size(), file) == bytes.size();
  std::fclose(file);
  if (good) LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
  return good;
}

// The number of inputs run; -1 when something cannot be read.
long run(const char *path) {
  DIR *const folder = opendir(path);
  if (folder == nullptr) return run_file(path) ? 1 : -1;
  long inputs = 0;
  while (const dirent *const entry = readdir(folder)) {
    if (entry->d_name[0] == '.') continue;
    char file[4096];
    const int length = std::snprintf(file, sizeof file, "%s/%s", path, entry->d_name);
    if (length < 0 || length >= static_cast<int>(sizeof file) || !run_file(file)) {
      std::fprintf(stderr, "%s/%s cannot be read\n", path, entry->d_name);
      inputs = -1;
      break;
    }
    ++inputs;
  }
  closedir(folder);
  return inputs;
}

long run_long_inputs() {
  return static_cast<long>(fuzz::for_each_long_input(
      [](const unsigned char *data, std::size_t size) { LLVMFuzzerTestOneInput(data, size); }));
}

}  // namespace

int main(int count, char **arguments) {
  long inputs = 0;
  for (int i = 1; i < count; ++i) {
    const bool is_long = std::strcmp(arguments[i], "--long") == 0;
    const long more = is_long ? run_long_inputs() : run(arguments[i]);
    if (more < 0) {
      std::fprintf(stderr, "%s cannot be read\n", arguments[i]);
      return 1;
    }
    inputs += more;
  }
  if (inputs == 0) {
    std::fprintf(stderr, "usage: replay [--long] FILE_OR_FOLDER...   (there was no input)\n");
    return 1;
  }
  std::printf("%ld inputs\n", inputs);
  return 0;
}
