// The command line, by CLI11.
#include "command_line.hpp"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <exception>
#include <map>
#include <string>

#include "commands.hpp"
#include "completion.hpp"
#include "input.hpp"
#include "target.hpp"

namespace inspect {
namespace {

template <class Value>
using choices = std::map<std::string, Value>;

const choices<byte_form> byte_forms{{"auto", byte_form::automatic},
                                    {"raw", byte_form::raw},
                                    {"hex", byte_form::hex},
                                    {"dump", byte_form::dump},
                                    {"base64", byte_form::base64}};
const choices<message_form> message_forms{{"auto", message_form::automatic}, {"raw", message_form::raw},
                                          {"hex", message_form::hex},        {"dump", message_form::dump},
                                          {"base64", message_form::base64},  {"json", message_form::as_json},
                                          {"text", message_form::as_text}};
const choices<prefix_form> prefix_forms{{"varint", prefix_form::varint},
                                        {"be32", prefix_form::be32},
                                        {"le32", prefix_form::le32},
                                        {"lines", prefix_form::lines}};
const choices<bytes_form> bytes_forms{
    {"base64", bytes_form::base64}, {"hex", bytes_form::hex}, {"length", bytes_form::length}};
const choices<colour_choice> colour_choices{
    {"auto", colour_choice::when_terminal}, {"always", colour_choice::always}, {"never", colour_choice::never}};

// Help in this tool's own layout, from which help2man can make a manual page.
class help_format : public CLI::Formatter {
 public:
  std::string make_usage(const CLI::App *app, std::string name) const override {
    const bool has_commands = !commands_of(*app).empty();
    return fmt::format("Usage: {} [OPTIONS]{}{}\n", name, has_commands ? " COMMAND" : "", operands_of(*app));
  }

  std::string make_subcommands(const CLI::App *app, CLI::AppFormatMode mode) const override {
    std::string text = mode == CLI::AppFormatMode::All || commands_of(*app).empty() ? "" : "\nCommands:\n";
    for (const CLI::App *command : commands_of(*app)) {
      text += mode == CLI::AppFormatMode::All ? make_expanded(command) : make_subcommand(command);
    }
    return text;
  }

  std::string make_expanded(const CLI::App *command) const override {
    std::string text = fmt::format("\nCommand {}{}:\n  {}\n\n", command->get_name(), operands_of(*command),
                                   command->get_description());
    for (const CLI::Option *option :
         command->get_options([](const CLI::Option *each) { return each->nonpositional(); })) {
      if (option->get_group() == "Options" && option != command->get_help_ptr() &&
          option != command->get_help_all_ptr()) {
        text += make_option(option, false);
      }
    }
    return text;
  }

  // Positional arguments are shown by their placeholder ("[FILE]"), not by an option name.
  std::string make_option_name(const CLI::Option *option, bool is_positional) const override {
    if (is_positional) return option->get_option_text();
    std::string name = Formatter::make_option_name(option, is_positional);
    if (const std::size_t comma = name.find(','); comma != name.npos) name.insert(comma + 1, " ");
    return name;
  }

  std::string make_option_opts(const CLI::Option *option) const override {
    return option->get_positional() ? "" : Formatter::make_option_opts(option);
  }

 private:
  static std::vector<const CLI::App *> commands_of(const CLI::App &app) {
    return app.get_subcommands([](const CLI::App *) { return true; });
  }

  static std::string operands_of(const CLI::App &app) {
    std::string text;
    for (const CLI::Option *each :
         app.get_options([](const CLI::Option *option) { return option->get_positional(); })) {
      text += ' ' + each->get_option_text();
    }
    return text;
  }
};

class command_line {
 public:
  command_line() {
    app_.formatter(std::make_shared<help_format>());
    app_.require_subcommand(1);
    app_.set_version_flag("--version", std::string("zorv-inspect ") + PAVO_ZORV_VERSION);
    app_.set_help_all_flag("--help-all", "Print the help of all commands");
    app_.footer(
        "Without FILE, or if FILE is \"-\", the standard input is read. TYPE is the name of a message; it may be "
        "omitted if only\n"
        "one message reads every byte of the input.\n\n"
        "Exit status: 0 success; 1 a message cannot be decoded, two messages differ, or other input is refused; 2 "
        "wrong usage,\n"
        "or a file cannot be read or written; 3 the library and this tool disagree about the input.");
    add_reading_commands();
    add_checking_commands();
    add_writing_commands();
    add_completion();
  }

  int run(int count, char **arguments) {
    try {
      app_.parse(count, arguments);
      const exit_status status = action_(options_);
      flush_output();
      return status;
    } catch (const CLI::ParseError &error) {
      return app_.exit(error) == 0 ? ok : bad_usage;
    } catch (const input_error &error) {
      print_error(fmt::format("{}\n", error.what()));
      return bad_input;
    } catch (const std::exception &error) {
      print_error(fmt::format("{}\n", error.what()));
      return bad_usage;
    }
  }

 private:
  using action = std::function<exit_status(const command_options &)>;

  CLI::App *command(const char *name, const char *purpose, action selected) {
    CLI::App *const added = app_.add_subcommand(name, purpose);
    added->callback([this, selected] { action_ = selected; });
    return added;
  }

  template <class Value>
  void add_choice(CLI::App *command, const char *name, Value &value, const choices<Value> &values,
                  std::string purpose) {
    std::string names;
    for (const auto &[each, meaning] : values) names += (names.empty() ? "" : ", ") + each;
    command->add_option(name, value, purpose + ": " + names)
        ->transform(CLI::CheckedTransformer(values).description(""))
        ->option_text("FORM");
  }

  CLI::Option *add_operands(CLI::App *command, const char *text, const char *purpose) {
    return command->add_option("operands", options_.operands, purpose)->option_text(text);
  }

  void add_output(CLI::App *command) {
    command->add_option("-o,--output", options_.output, "Write to this file instead of the standard output")
        ->option_text("FILE");
  }

  void add_input(CLI::App *command) {
    add_choice(command, "-i,--input", options_.input, byte_forms, "Form of the input");
    add_choice(command, "-s,--stream", options_.stream, prefix_forms,
               "The input is a stream of messages, each after its length, or of lines of text");
    command->add_option("--skip", options_.skip, "Leave out the first N bytes of the input, of each line or datagram")
        ->option_text("N");
    command->add_option("--length", options_.length, "Read only N bytes after that")->option_text("N");
  }

  void add_single_input(CLI::App *command) {
    add_input(command);
    command->add_option("-n,--at", options_.at, "Read only this message of the stream, counted from 0")
        ->option_text("N");
  }

  void add_stream(CLI::App *command, const char *purpose) {
    choices<prefix_form> prefixes = prefix_forms;
    prefixes.erase("lines");
    add_choice(command, "-s,--stream", options_.stream, prefixes, purpose);
  }

  void add_bytes(CLI::App *command, const char *purpose, bytes_form last) {
    choices<bytes_form> values = bytes_forms;
    if (last != bytes_form::length) values.erase("length");
    add_choice(command, "-b,--bytes", options_.bytes, values, purpose);
  }

  void add_reading_commands() {
    add_operands(command("types", "List the messages, or the fields of one with their keys and record offsets", types),
                 "[TYPE]", "Message type")
        ->expected(0, 1);
    CLI::App *const decoding = command("decode", "Show messages as JSON", decode);
    add_operands(decoding, "[TYPE] [FILE]", "Message type, and file to read");
    add_single_input(decoding);
    add_bytes(decoding, "How to show bytes", bytes_form::length);
    decoding->add_flag("--lines", options_.lines, "Write each message on one line (JSON Lines)");
    decoding->add_option("--path", options_.path, "Show only this member, such as policies[0].field2")
        ->option_text("PATH");

    CLI::App *const annotating = command("hex", "Show every byte of a message with its meaning", hex);
    add_operands(annotating, "[TYPE] [FILE]", "Message type, and file to read");
    add_single_input(annotating);
    add_choice(annotating, "--color", options_.colours, colour_choices,
               "When to use colours; auto is on a terminal, unless NO_COLOR is set");
    annotating->add_flag("--html", options_.html, "Write a page for a browser");
    annotating->add_flag("-a,--all", options_.all, "Show all bytes after a failure, not only the first");

    CLI::App *const drawing =
        command("segments", "Show the segment table of an encoding, without and with reference mode", segments);
    add_operands(drawing, "[TYPE] [FILE]", "Message type, and file to read");
    add_single_input(drawing);
  }

  void add_checking_commands() {
    CLI::App *const comparing = command("diff", "Show where two messages differ", diff);
    add_operands(comparing, "[TYPE] A B", "Message type, and the files to compare");
    add_single_input(comparing);
    comparing->add_flag("-a,--all", options_.all, "Show all differences, not only the first");

    CLI::App *const checking = command(
        "check", "Decode many messages: which are refused, which are not canonical, how much memory they take", check);
    add_operands(checking, "[TYPE] FILE...", "Message type, and the files and folders to check");
    add_input(checking);
    checking->add_flag("-a,--all", options_.all, "Print a line for every message");
    checking->add_flag("--strict", options_.strict, "Treat messages that are not canonical as refused");
    checking->add_flag("--timing", options_.timing, "Print how long it took");

    CLI::App *const guessing =
        command("guess", "List the messages that an input may be, the most likely first", guess_type);
    add_operands(guessing, "[FILE]", "File to read")->expected(0, 1);
    add_single_input(guessing);
    guessing->add_flag("-a,--all", options_.all, "List all messages, not only the likely ones");

    CLI::App *const listing = command("index", "List the messages of a stream", index_stream);
    add_operands(listing, "[TYPE] [FILE]", "Message type, and file to read");
    add_input(listing);
  }

  void add_writing_commands() {
    CLI::App *const encoding = command("encode", "Encode a message from JSON", encode);
    add_operands(encoding, "TYPE [FILE]", "Message type, and file to read");
    add_output(encoding);
    add_stream(encoding, "Write a stream of length-prefixed messages, one for each JSON value in the input");
    add_bytes(encoding, "How bytes are given in the JSON", bytes_form::hex);

    CLI::App *const converting = command("convert", "Convert a message to another form", convert);
    add_operands(converting, "[TYPE] [FILE]", "Message type, and file to read");
    choices<message_form> targets = message_forms;
    targets.erase("auto");
    add_choice(converting, "-f,--from", options_.from, message_forms,
               "Form of the input; text is the text form of protoc");
    add_choice(converting, "-t,--to", options_.to, targets, "Form of the output");
    add_output(converting);
    add_bytes(converting, "How bytes are given in JSON", bytes_form::length);
  }

  void add_completion() {
    CLI::App *const completing =
        command("completion", "Print the completion script for a shell", [this](const command_options &options) {
          print(options.operands.front() == "bash" ? bash_completion(app_) : zsh_completion(app_));
          return ok;
        });
    completing->add_option("operands", options_.operands, "bash or zsh")
        ->option_text("SHELL")
        ->required()
        ->expected(1)
        ->check(CLI::IsMember({"bash", "zsh"}).description(""));
  }

  CLI::App app_{"Inspect and edit the messages of pavo-zorv.", "zorv-inspect"};
  command_options options_;
  action action_;
};

}  // namespace

int run(int count, char **arguments) { return command_line().run(count, arguments); }

}  // namespace inspect
