// The inputs of fuzz targets, as they lie on disk:
//
//   FILE.txt        a corpus: one input a line, in hexadecimal digits
//   FILE.txt:LINE   one of them
//   FILE            one input, as a fuzzing engine leaves it
//   FOLDER          all files in it, in no order
#pragma once

#include <dirent.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

namespace fuzz {

using input_bytes = std::vector<unsigned char>;

// C's functions, whose effects every sanitizer knows.
inline bool read_file(const char *name, input_bytes &out) {
  std::FILE *const file = std::fopen(name, "rb");
  if (file == nullptr) return false;
  std::fseek(file, 0, SEEK_END);
  const long size = std::ftell(file);
  out = input_bytes(size > 0 ? static_cast<std::size_t>(size) : 0);
  std::rewind(file);
  const bool good = size >= 0 && std::fread(out.data(), 1, out.size(), file) == out.size();
  std::fclose(file);
  return good;
}

inline int digit_value(unsigned char digit) {
  if (digit >= '0' && digit <= '9') return digit - '0';
  return digit >= 'a' && digit <= 'f' ? digit - 'a' + 10 : -1;
}

inline bool read_digits(const unsigned char *digits, std::size_t count, input_bytes &out) {
  out = input_bytes(count / 2);
  for (std::size_t i = 0; i < out.size(); ++i) {
    const int high = digit_value(digits[2 * i]), low = digit_value(digits[2 * i + 1]);
    if (high < 0 || low < 0) return false;
    out[i] = static_cast<unsigned char>(high << 4 | low);
  }
  return count != 0 && count % 2 == 0;
}

// Calls use(name, data, size) with one line of a corpus, or all where it is 0, each in a block of exactly its size.
template <class Use>
bool for_each_line(const char *corpus, unsigned long wanted, Use use) {
  input_bytes content, bytes;
  if (!read_file(corpus, content)) return false;
  bool found = wanted == 0;
  unsigned long line = 0;
  for (std::size_t start = 0; start < content.size();) {
    const auto *const end =
        static_cast<const unsigned char *>(std::memchr(content.data() + start, '\n', content.size() - start));
    const std::size_t length =
        (end != nullptr ? static_cast<std::size_t>(end - content.data()) : content.size()) - start;
    if (++line == wanted || wanted == 0) {
      char name[4096];
      std::snprintf(name, sizeof name, "%s:%lu", corpus, line);
      if (!read_digits(content.data() + start, length, bytes)) {
        std::fprintf(stderr, "%s is no input in hexadecimal digits\n", name);
        return false;
      }
      found = true;
      use(name, bytes.data(), bytes.size());
    }
    start += length + 1;
  }
  return found;
}

inline bool ends_in_txt(const char *name, std::size_t length) {
  return length > 4 && std::memcmp(name + length - 4, ".txt", 4) == 0;
}

// Calls use(name, data, size) with each input; whether all could be read.
template <class Use>
bool for_each_input(const char *name, Use use) {
  if (ends_in_txt(name, std::strlen(name))) return for_each_line(name, 0, use);
  const char *const colon = std::strrchr(name, ':');
  if (colon != nullptr && ends_in_txt(name, static_cast<std::size_t>(colon - name))) {
    char *end;
    const unsigned long line = std::strtoul(colon + 1, &end, 10);
    char corpus[4096];
    std::snprintf(corpus, sizeof corpus, "%.*s", static_cast<int>(colon - name), name);
    return line != 0 && *end == '\0' && for_each_line(corpus, line, use);
  }
  DIR *const folder = opendir(name);
  if (folder == nullptr) {
    input_bytes bytes;
    if (!read_file(name, bytes)) return false;
    use(name, bytes.data(), bytes.size());
    return true;
  }
  bool good = true;
  while (const dirent *const entry = readdir(folder)) {
    if (entry->d_name[0] == '.') continue;
    char path[4096];
    const int length = std::snprintf(path, sizeof path, "%s/%s", name, entry->d_name);
    good = length > 0 && length < static_cast<int>(sizeof path) && for_each_input(path, use) && good;
  }
  closedir(folder);
  return good;
}

}  // namespace fuzz
