// zorv-inspect: messages as JSON and as annotated octets.
#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <cstdio>
#include <exception>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

#include "failure.hpp"
#include "hex_view.hpp"
#include "input.hpp"
#include "json_text.hpp"
#include "results.hpp"
#include "types.hpp"
#include "walk.hpp"

namespace inspect {
namespace {

// What the command line said.
struct request {
  std::string type;
  std::string file;
  std::string output;
  std::string form = "auto";
};

void print(std::string_view text) {
  write_file("", octet_view(reinterpret_cast<const unsigned char *>(text.data()), text.size()));
}

void complain(std::string_view text) { fmt::print(stderr, "zorv-inspect: {}", text); }

const message_type &wanted_type(const request &asked) {
  const message_type *const type = find_type(asked.type);
  if (type == nullptr) throw unusable(fmt::format("{}: no such message; `zorv-inspect types` lists them", asked.type));
  return *type;
}

octets input_of(const request &asked) {
  const input_form form = asked.form == "raw"   ? input_form::raw
                          : asked.form == "hex" ? input_form::hex
                                                : input_form::detected;
  return octets_of(read_file(asked.file), form);
}

// Says what went wrong, if anything did.
exit_status report(const message_type &type, int result, const walk &walked) {
  const std::string text = explain(type, result, walked);
  if (text.empty()) return all_well;
  complain(text);
  return agree(result, walked) ? input_refused : disagreement;
}

exit_status types(const request &asked) {
  std::string text;
  if (asked.type.empty()) {
    for (const message_type *type : all_types()) {
      text +=
          fmt::format("{:<34}{:>2} field{}\n", type->name, type->fields.size(), type->fields.size() == 1 ? "" : "s");
    }
  } else {
    for (const field_type &field : wanted_type(asked).fields) {
      text += fmt::format("{:>2}  {:<26}{}\n", field.number, field.name, describe(field));
    }
  }
  print(text);
  return all_well;
}

exit_status decode(const request &asked) {
  const message_type &type = wanted_type(asked);
  const octets input = input_of(asked);
  record content(type);
  const int result = content.decode(input);
  const walk walked = walk_message(type, input);
  print(to_text(content.write(walked.failure ? path_view(walked.failure->path) : path_view{})));
  return report(type, result, walked);
}

exit_status encode(const request &asked) {
  const message_type &type = wanted_type(asked);
  const json from = parse_json(read_file(asked.file));
  record content(type);
  content.read(from);
  write_file(asked.output, content.encode());
  return all_well;
}

exit_status hex(const request &asked) {
  const message_type &type = wanted_type(asked);
  const octets input = input_of(asked);
  const walk walked = walk_message(type, input);
  print(hex_view(input, walked));
  return report(type, record(type).decode(input), walked);
}

// --- The command line ---

class command_line {
 public:
  command_line() {
    app_.require_subcommand(1);
    app_.footer(
        "FILE is the standard input when it is missing or \"-\".\n"
        "Exit status: 0 done; 1 the input is refused; 2 wrong usage, or a file cannot be read or written;\n"
        "3 the library and this tool disagree about the input.");
    command("types", "List the messages, or the fields of one", types)->add_option("TYPE", asked_.type, "Message");
    with_input(with_type(command("decode", "Show a message as JSON", decode)));
    with_input(with_type(command("hex", "Show the octets of a message with their meaning", hex)));
    with_type(command("encode", "Make a message from JSON", encode))
        ->add_option("-o,--output", asked_.output, "Write to this file instead of the standard output");
  }

  int run(int count, char **arguments) {
    try {
      app_.parse(count, arguments);
      return chosen_(asked_);
    } catch (const CLI::ParseError &error) {
      return app_.exit(error) == 0 ? all_well : not_usable;
    } catch (const refused &error) {
      complain(fmt::format("{}\n", error.what()));
      return input_refused;
    } catch (const std::exception &error) {
      complain(fmt::format("{}\n", error.what()));
      return not_usable;
    }
  }

 private:
  using action = exit_status (*)(const request &);

  CLI::App *command(const char *name, const char *purpose, action chosen) {
    CLI::App *const added = app_.add_subcommand(name, purpose);
    added->callback([this, chosen] { chosen_ = chosen; });
    return added;
  }

  CLI::App *with_type(CLI::App *command) {
    command->add_option("TYPE", asked_.type, "Message")->required();
    command->add_option("FILE", asked_.file, "File to read");
    return command;
  }

  CLI::App *with_input(CLI::App *command) {
    command
        ->add_option("--input", asked_.form,
                     "Form of the input; hex is pairs of digits, blanks, and comments from # on")
        ->check(CLI::IsMember({"auto", "raw", "hex"}))
        ->capture_default_str();
    return command;
  }

  CLI::App app_{"Messages of pavo_zorv as JSON and as annotated octets.", "zorv-inspect"};
  request asked_;
  action chosen_ = nullptr;
};

}  // namespace
}  // namespace inspect

int main(int count, char **arguments) { return inspect::command_line().run(count, arguments); }
