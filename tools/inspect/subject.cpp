// From the words of a command line to messages.
#include "subject.hpp"

#include <fmt/format.h>

#include <cstdio>
#include <filesystem>
#include <nlohmann/json.hpp>

#include "guess.hpp"
#include "input.hpp"

namespace inspect {
namespace {

std::string nearest(const std::string &name) {
  const message_type *const type = nearest_type(name);
  return type != nullptr ? fmt::format("did you mean {}?", type->name) : "`zorv-inspect types` lists them";
}

bool is_there(const std::string &file) {
  std::error_code error;
  return file == "-" || std::filesystem::exists(file, error);
}

}  // namespace

const message_type &type_named(const std::string &name) {
  const message_type *const type = find_type(name);
  if (type == nullptr) throw unusable(fmt::format("{}: no such message; {}", name, nearest(name)));
  return *type;
}

subject subject_of(const request &asked, std::size_t most_files) {
  std::vector<std::string> files = asked.words;
  const message_type *type = nullptr;
  if (!files.empty() && (files.size() > most_files || find_type(files.front()) != nullptr)) {
    type = &type_named(files.front());
    files.erase(files.begin());
  }
  if (files.size() > most_files) throw unusable(fmt::format("{}: one file too many", files.back()));
  if (type == nullptr && !files.empty() && !is_there(files.front())) {
    throw unusable(fmt::format("{}: neither a message nor a file; {}", files.front(), nearest(files.front())));
  }
  return {type, files};
}

single_subject single_subject_of(const request &asked) {
  const subject found = subject_of(asked, 1);
  return {found.type, found.files.empty() ? "-" : found.files.front()};
}

void for_each_message(const request &asked, const std::string &file, const visitor &visit) {
  const byte_string content = bytes_of(read_file(file), asked.input);
  const frames found = split(content, asked.stream);
  const std::string name = file == "-" ? "standard input" : file;
  for (std::size_t index = 0; index < found.whole.size(); ++index) {
    if (asked.at && *asked.at != index) continue;
    const frame &each = found.whole[index];
    visit(asked.stream == prefix_form::none ? name : fmt::format("{}[{}]", name, index),
          byte_view(content).subspan(each.start, each.length));
  }
  const bool has_it = !asked.at || *asked.at < found.whole.size();
  if (found.failure && (!asked.at || !has_it)) throw refused(fmt::format("{}: {}", name, *found.failure));
  if (!has_it) throw refused(fmt::format("{}: there are {} messages, numbered from 0", name, found.whole.size()));
}

json decoded::to_json(bytes_form bytes) const {
  return content.write({bytes, walked.failure ? path_view(walked.failure->path) : path_view{}});
}

exit_status decoded::report() const {
  const std::string text = explain(type, result, walked);
  if (text.empty()) return all_well;
  complain(text);
  return agree(result, walked) ? input_refused : disagreement;
}

const message_type &type_of(const message_type *given, const std::string &name, byte_view message) {
  if (given != nullptr) return *given;
  const message_type &guessed = only_guess(message, name);
  complain(fmt::format("{} can only be {}\n", name, guessed.name));
  return guessed;
}

void complain(std::string_view text) { fmt::print(stderr, "zorv-inspect: {}", text); }

}  // namespace inspect
