// Runs a target on the inputs in files and folders, without a fuzzing engine: for the tests, and for a finding.
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, std::size_t size);

namespace {

bool run(const std::filesystem::path &path) {
  std::ifstream file(path, std::ios::binary);
  const std::vector<char> content{std::istreambuf_iterator<char>(file), {}};
  if (!file) return false;
  // A block of its own, of exactly the size.
  const std::vector<unsigned char> bytes(content.begin(), content.end());
  LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
  return true;
}

}  // namespace

int main(int count, char **arguments) {
  std::size_t inputs = 0;
  for (int i = 1; i < count; ++i) {
    std::vector<std::filesystem::path> files;
    if (std::filesystem::is_directory(arguments[i])) {
      for (const auto &entry : std::filesystem::directory_iterator(arguments[i])) files.push_back(entry.path());
    } else {
      files.emplace_back(arguments[i]);
    }
    for (const auto &file : files) {
      if (!run(file)) {
        std::fprintf(stderr, "%s cannot be read\n", file.c_str());
        return 1;
      }
      ++inputs;
    }
  }
  if (inputs == 0) {
    std::fprintf(stderr, "usage: replay FILE_OR_FOLDER...   (there was no input)\n");
    return 1;
  }
  std::printf("%zu inputs\n", inputs);
  return 0;
}
