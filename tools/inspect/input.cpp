// Reading and writing files, and hexadecimal text.
#include "input.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <optional>
#include <string_view>

#include "failure.hpp"

namespace inspect {
namespace {

struct file_closer {
  void operator()(std::FILE *file) const { std::fclose(file); }
};
using file = std::unique_ptr<std::FILE, file_closer>;

bool is_standard(const std::string &name) { return name.empty() || name == "-"; }

[[noreturn]] void fail(const std::string &name, std::string_view doing) {
  throw unusable(fmt::format("{}: cannot be {}: {}", name, doing, std::strerror(errno)));
}

int digit_value(unsigned char character) {
  if (character >= '0' && character <= '9') return character - '0';
  if (character >= 'a' && character <= 'f') return character - 'a' + 10;
  if (character >= 'A' && character <= 'F') return character - 'A' + 10;
  return -1;
}

// The digits of hexadecimal text; nothing when it holds something else.
std::optional<octets> hex_digits(octet_view text) {
  octets digits;
  bool in_comment = false;
  for (const unsigned char character : text) {
    if (character == '\n') {
      in_comment = false;
    } else if (in_comment || character == ' ' || character == '\t' || character == '\r') {
      continue;
    } else if (character == '#') {
      in_comment = true;
    } else if (const int digit = digit_value(character); digit >= 0) {
      digits.push_back(static_cast<unsigned char>(digit));
    } else {
      return std::nullopt;
    }
  }
  return digits;
}

}  // namespace

octets read_file(const std::string &name) {
  const file opened(is_standard(name) ? nullptr : std::fopen(name.c_str(), "rb"));
  std::FILE *const source = is_standard(name) ? stdin : opened.get();
  if (source == nullptr) fail(name, "read");
  octets content;
  unsigned char buffer[65536];
  for (std::size_t length; (length = std::fread(buffer, 1, sizeof buffer, source)) != 0;) {
    content.insert(content.end(), buffer, buffer + length);
  }
  if (std::ferror(source) != 0) fail(is_standard(name) ? "standard input" : name, "read");
  return content;
}

void write_file(const std::string &name, octet_view content) {
  const file opened(is_standard(name) ? nullptr : std::fopen(name.c_str(), "wb"));
  std::FILE *const target = is_standard(name) ? stdout : opened.get();
  const bool complete = target != nullptr && std::fwrite(content.data(), 1, content.size(), target) == content.size() &&
                        std::fflush(target) == 0;
  if (!complete) fail(is_standard(name) ? "standard output" : name, "written");
}

octets octets_of(octets input, input_form form) {
  if (form == input_form::raw) return input;
  const auto digits = hex_digits(input);
  if (form == input_form::detected && (!digits || digits->empty())) return input;
  if (!digits) throw refused("the input is not hexadecimal text");
  if (digits->size() % 2 != 0) throw refused("hexadecimal text with half an octet (or octets: then say --input=raw)");
  octets result;
  for (std::size_t at = 0; at < digits->size(); at += 2) {
    result.push_back(static_cast<unsigned char>((*digits)[at] << 4 | (*digits)[at + 1]));
  }
  return result;
}

}  // namespace inspect
