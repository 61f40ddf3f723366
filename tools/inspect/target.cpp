// From operands to messages.
#include "target.hpp"

#include <fmt/format.h>

#include <cstdio>
#include <filesystem>
#include <nlohmann/json.hpp>

#include "guess.hpp"
#include "input.hpp"

namespace inspect {
namespace {

std::string suggestion(const std::string &name) {
  const message_type *const type = nearest_type(name);
  return type != nullptr ? fmt::format("did you mean {}?", type->name) : "`zorv-inspect types` lists the messages";
}

bool exists(const std::string &file) {
  std::error_code error;
  return file == "-" || std::filesystem::exists(file, error);
}

}  // namespace

const message_type &type_named(const std::string &name) {
  const message_type *const type = find_type(name);
  if (type == nullptr) throw usage_error(fmt::format("{}: no such message; {}", name, suggestion(name)));
  return *type;
}

target target_of(const command_options &options, std::size_t max_files) {
  std::vector<std::string> files = options.operands;
  const message_type *type = nullptr;
  if (!files.empty() && (files.size() > max_files || find_type(files.front()) != nullptr)) {
    type = &type_named(files.front());
    files.erase(files.begin());
  }
  if (files.size() > max_files) throw usage_error(fmt::format("{}: too many files", files.back()));
  if (type == nullptr && !files.empty() && !exists(files.front())) {
    throw usage_error(fmt::format("{}: neither a message nor a file; {}", files.front(), suggestion(files.front())));
  }
  return {type, files};
}

single_target single_target_of(const command_options &options) {
  const target found = target_of(options, 1);
  return {found.type, found.files.empty() ? "-" : found.files.front()};
}

std::string name_of(const std::string &file) { return file == "-" ? "standard input" : file; }

void for_each_message(const command_options &options, const std::string &file, const message_visitor &visit) {
  const std::unique_ptr<message_source> source = open_messages(file, options);
  input_message message;
  std::size_t count = 0;
  for (; source->next(message); ++count) {
    if (options.at && *options.at != count) continue;
    visit(message);
    if (options.at) return;
  }
  if (options.at) {
    throw input_error(
        fmt::format("{}: no message {}: there are {}, counted from 0", name_of(file), *options.at, count));
  }
}

void for_each_message(const command_options &options, const std::string &file, const visitor &visit) {
  for_each_message(options, file, [&](const input_message &message) { visit(message.name, message.bytes); });
}

exit_status decoded::report(std::string_view name) const {
  const std::string text = explain(type, result, walked);
  if (text.empty()) return ok;
  print_error(fmt::format("{}: {}", name, text));
  return agree(result, walked) ? bad_input : disagreement;
}

const message_type &type_of(const message_type *given, const std::string &name, byte_view message) {
  if (given != nullptr) return *given;
  const message_type &guessed = unique_guess(message, name);
  print_error(fmt::format("{} can only be {}\n", name, guessed.name));
  return guessed;
}

void print_error(std::string_view text) {
  flush_output();
  fmt::print(stderr, "zorv-inspect: {}", text);
}

}  // namespace inspect
