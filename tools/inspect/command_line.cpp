// The command line, by CLI11.
#include "command_line.hpp"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>
#include <cstdint>
#include <exception>
#include <functional>
#include <map>
#include <new>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include "commands.hpp"
#include "completion.hpp"
#include "input.hpp"
#include "suggest.hpp"
#include "target.hpp"

namespace inspect {
namespace {

template <class Value>
using choices = std::vector<std::pair<std::string, Value>>;

const choices<byte_form> byte_forms{{"auto", byte_form::automatic}, {"raw", byte_form::raw},
                                    {"hex", byte_form::hex},        {"dump", byte_form::dump},
                                    {"base64", byte_form::base64},  {"pcap", byte_form::pcap}};
const choices<message_form> message_forms{{"auto", message_form::automatic}, {"raw", message_form::raw},
                                          {"hex", message_form::hex},        {"dump", message_form::dump},
                                          {"base64", message_form::base64},  {"json", message_form::as_json},
                                          {"text", message_form::as_text}};
const choices<prefix_form> prefix_forms{{"varint", prefix_form::varint},
                                        {"be16", prefix_form::be16},
                                        {"be32", prefix_form::be32},
                                        {"le32", prefix_form::le32},
                                        {"lines", prefix_form::lines}};
const choices<json_bytes> bytes_forms{
    {"base64", json_bytes::base64}, {"hex", json_bytes::hex}, {"length", json_bytes::length}};
const choices<schema_form> schema_forms{
    {"proto", schema_form::proto}, {"descriptor", schema_form::descriptor}, {"json", schema_form::as_json_schema}};
const choices<json_byte_lists> octets_forms{
    {"numbers", json_byte_lists::numbers}, {"hex", json_byte_lists::hex}, {"address", json_byte_lists::address}};
const choices<colour_choice> colour_choices{
    {"auto", colour_choice::when_terminal}, {"always", colour_choice::always}, {"never", colour_choice::never}};

template <class Value>
auto find_choice(const choices<Value> &values, const std::string &name) {
  return std::ranges::find(values, name, &std::pair<std::string, Value>::first);
}

template <class Value>
choices<Value> without(const std::string &name, choices<Value> values) {
  values.erase(find_choice(values, name));
  return values;
}

// Lines of at most 118 columns.
std::string wrapped(std::string_view text) {
  constexpr std::size_t width = 118;
  std::string lines;
  while (text.size() > width) {
    const std::size_t end = text.rfind(' ', width);
    lines += fmt::format("{}\n", text.substr(0, end));
    text.remove_prefix(end + 1);
  }
  return lines.append(text);
}

// --- What the help says after the options ---

constexpr std::string_view reads_file = "Without FILE, or if FILE is \"-\", the standard input is read.";
constexpr std::string_view refused = "a message cannot be decoded, or other input is refused";
constexpr std::string_view exit_heading = "Exit status: ";

// `one` is what the status 1 means; empty if there is no input to refuse.
std::string exit_text(std::string_view one, bool may_disagree = true) {
  return fmt::format("{}0 success; {}2 wrong usage, or a file cannot be read or written{}", exit_heading,
                     one.empty() ? "" : fmt::format("1 {}; ", one),
                     may_disagree ? "; 3 the library and this tool disagree about the input." : ".");
}

std::vector<const CLI::App *> commands_of(const CLI::App &app) {
  return app.get_subcommands([](const CLI::App *) { return true; });
}

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
    const std::string footer = command->get_footer();
    if (const std::string notes = footer.substr(0, footer.find(exit_heading)); !notes.empty()) text += notes;
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
    const std::string text = option->get_option_text();
    return option->get_positional() || text.empty() ? "" : ' ' + text;
  }

 private:
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
        wrapped("After \"--\" come operands, also those that begin with a dash. Of an option that is given twice, "
                "the last one holds.") +
        "\n\n" + wrapped(exit_text("a message cannot be decoded, two messages differ, or other input is refused")));
    add_reading_commands();
    add_checking_commands();
    add_writing_commands();
    add_completion();
    add_help();
  }

  int run(int count, char **arguments) {
    try {
      require_command(count, arguments);
      const int end = end_of_options(count, arguments);
      require_values(end, arguments);
      app_.parse(end, arguments);
      for (int index = end + 1; index < count; ++index) options_.operands.emplace_back(arguments[index]);
      refuse_what_is_left();
      const exit_status status = action_(options_);
      flush_output();
      return status;
    } catch (const CLI::Success &success) {  // help and the version, which it prints
      return app_.exit(success);
    } catch (const CLI::ParseError &error) {
      print_error(sentence_of(error));
      return bad_usage;
    } catch (const input_error &error) {
      print_error(fmt::format("{}\n", error.what()));
      return bad_input;
    } catch (const std::bad_alloc &) {
      print_error("out of memory\n");
      return bad_usage;
    } catch (const std::exception &error) {
      print_error(fmt::format("{}\n", error.what()));
      return bad_usage;
    }
  }

 private:
  using action = std::function<exit_status(const command_options &)>;

  CLI::App *command(const char *name, const char *purpose, action selected) {
    CLI::App *const added = app_.add_subcommand(name, purpose);
    added->callback([this, selected, added] {
      action_ = selected;
      selected_ = added;
    });
    added->allow_extras();
    return added;
  }

  // --- Wrong usage ---

  // The first argument is a command, or an option like --help.
  void require_command(int count, char **arguments) const {
    if (count < 2) throw usage_error("a command is required; `zorv-inspect --help` lists them");
    const std::string given = arguments[1];
    if (!given.starts_with('-')) return require_known(given);
    const std::vector<std::string> options = long_options(app_);
    const std::vector<std::string_view> names(options.begin(), options.end());
    if (given == "-h" || std::ranges::find(names, given) != names.end()) return;
    throw usage_error(fmt::format("{}: no such option before a command{}", given, suggestion(given, names)));
  }

  void require_known(const std::string &given) const {
    std::vector<std::string_view> names;
    for (const CLI::App *each : commands_of(app_)) names.emplace_back(each->get_name());
    if (std::ranges::find(names, given) != names.end()) return;
    const std::string suggested = suggestion(given, names);
    throw usage_error(fmt::format("{}: no such command{}", given,
                                  suggested.empty() ? "; `zorv-inspect --help` lists them" : suggested));
  }

  // The first "--", or the end: everything after it is an operand.
  static int end_of_options(int count, char **arguments) {
    const auto is_end = [](const char *argument) { return std::string_view(argument) == "--"; };
    return static_cast<int>(std::find_if(arguments, arguments + count, is_end) - arguments);
  }

  // "--output=" would take the next argument as its value otherwise, and overwrite that file.
  void require_values(int count, char **arguments) const {
    const std::string name = arguments[1];
    if (name.starts_with('-')) return;
    const CLI::App *const command = app_.get_subcommand(name);
    for (int index = 2; index < count; ++index) {
      const std::string given = arguments[index];
      if (!given.ends_with('=')) continue;
      const CLI::Option *const option = command->get_option_no_throw(given.substr(0, given.size() - 1));
      if (option != nullptr && option->nonpositional() && option->get_items_expected_max() != 0) {
        require_value(option->get_name(), "");
      }
    }
  }

  static void require_value(std::string_view option, std::string_view given) {
    if (given.empty()) throw usage_error(fmt::format("{}: a value is required", option));
  }

  // Options that the command does not have, and operands beyond those that it takes.
  void refuse_what_is_left() const {
    for (const std::string &each : selected_->remaining()) {
      if (!each.starts_with('-')) {
        throw usage_error(fmt::format("{}: unexpected argument; {} takes none", each, selected_->get_name()));
      }
      const std::string given = each.substr(0, each.find('='));
      const std::vector<std::string> options = long_options(*selected_);
      const std::vector<std::string_view> names(options.begin(), options.end());
      throw usage_error(
          fmt::format("{}: {} has no such option{}", given, selected_->get_name(), suggestion(given, names)));
    }
    const std::size_t most = most_operands_.at(selected_);
    if (options_.operands.size() > most) {
      throw usage_error(fmt::format("{}: unexpected argument; {} takes {}", options_.operands[most],
                                    selected_->get_name(), most == 0 ? "none" : "only one"));
    }
  }

  static std::string sentence_of(const CLI::ParseError &error) {
    const std::string what = error.what();
    if (dynamic_cast<const CLI::ArgumentMismatch *>(&error) != nullptr) {
      return fmt::format("{}: a value is required\n", what.substr(0, what.find(':')));
    }
    if (dynamic_cast<const CLI::ConversionError *>(&error) != nullptr) {  // "Could not convert: --all = maybe"
      const std::string given = what.substr(what.find(": ") + 2);
      return fmt::format("{}: this option takes no value\n", given.substr(0, given.find(' ')));
    }
    if (dynamic_cast<const CLI::ExcludesError *>(&error) != nullptr) {  // "--lines excludes --raw"
      const std::size_t end = what.find(' ');
      return fmt::format("{} and {} exclude each other\n", what.substr(0, end), what.substr(what.rfind(' ') + 1));
    }
    return what + '\n';
  }

  // Those of one letter are not worth a suggestion.
  static std::vector<std::string> long_options(const CLI::App &command) {
    std::vector<std::string> names;
    for (const CLI::Option *each : command.get_options()) {
      for (const std::string &name : each->get_lnames()) names.push_back("--" + name);
    }
    return names;
  }

  // --- Options ---

  // Given twice, the last one holds, also over another that sets the same: each is taken in its order.
  static void add_value(CLI::App *command, const char *name, const std::function<void(const std::string &)> &take,
                        const std::string &purpose, const char *text) {
    command->add_option_function<std::string>(name, take, purpose)->option_text(text)->trigger_on_parse();
  }

  template <class Value>
  void add_choice(CLI::App *command, const char *name, Value &value, choices<Value> values,
                  const std::string &purpose) {
    const auto is_default = [&](const auto &each) { return each.second == value; };
    std::stable_partition(values.begin(), values.end(), is_default);
    std::string names;
    for (const auto &each : values) {
      names += fmt::format("{}{}{}", names.empty() ? "" : ", ", each.first, is_default(each) ? " (default)" : "");
    }
    const auto choose = [&value, values, option = long_name(name)](const std::string &given) {
      require_value(option, given);
      const auto found = find_choice(values, given);
      if (found == values.end()) throw usage_error(no_such_value(option, given, values));
      value = found->second;
    };
    add_value(command, name, choose, purpose + ": " + names, "FORM");
  }

  template <class Value>
  static std::string no_such_value(std::string_view option, const std::string &given, const choices<Value> &values) {
    std::vector<std::string_view> names;
    for (const auto &[name, meaning] : values) names.emplace_back(name);
    const std::string suggested = suggestion(given, names);
    return fmt::format("{}={}: no such form{}", option, given,
                       suggested.empty() ? fmt::format("; there are {}", fmt::join(names, ", ")) : suggested);
  }

  // "--input" of "-i,--input".
  static std::string long_name(std::string_view names) { return std::string(names.substr(names.find("--"))); }

  // `value` may be optional.
  template <class Value>
  void add_number(CLI::App *command, const char *name, Value &value, const char *purpose,
                  std::size_t greatest = SIZE_MAX) {
    const auto read = [&value, greatest, option = long_name(name)](const std::string &given) {
      require_value(option, given);
      std::size_t number = 0;
      const auto [rest, error] = std::from_chars(given.data(), given.data() + given.size(), number);
      if (error != std::errc{} || rest != given.data() + given.size() || number > greatest) {
        throw usage_error(fmt::format("{}={}: not a number from 0 to {}", option, given, greatest));
      }
      value = number;
    };
    add_value(command, name, read, purpose, "N");
  }

  void add_text(CLI::App *command, const char *name, std::string &value, const char *purpose, const char *text) {
    const auto take = [&value, option = long_name(name)](const std::string &given) {
      require_value(option, given);
      value = given;
    };
    add_value(command, name, take, purpose, text);
  }

  // What is true of the command's operands, and what its exit status means.
  static void add_notes(CLI::App *command, const std::string &operands, const std::string &status) {
    command->footer((operands.empty() ? "" : wrapped(operands) + "\n\n") + wrapped(status));
  }

  void add_operands(CLI::App *command, const char *text, const char *purpose, std::size_t most = SIZE_MAX) {
    command->add_option("operands", options_.operands, purpose)->option_text(text);
    most_operands_[command] = most;
  }

  void add_output(CLI::App *command) {
    add_text(command, "-o,--output", options_.output, "Write to this file instead of the standard output", "FILE");
  }

  void add_input(CLI::App *command) {
    add_choice(command, "-i,--input", options_.input, byte_forms, "Form of the input");
    add_choice(command, "-s,--stream", options_.stream, prefix_forms,
               "The input is a stream of messages, each after its length, or of lines of text");
    add_number(command, "--skip", options_.skip, "Leave out the first N bytes of the input, of each line or datagram");
    add_number(command, "--length", options_.length, "Read only N bytes after that");
    command
        ->add_flag_function(
            "--pcap", [this](std::int64_t) { options_.input = byte_form::pcap; },
            "The same as --input=pcap: a capture file, which is recognised without this option, too")
        ->trigger_on_parse();
    add_number(command, "--port", options_.port, "Of a capture, read only UDP and TCP from or to this port", 65535);
    add_text(command, "--filter", options_.filter, "Of a capture file, read only packets for which this is true",
             "EXPRESSION");
  }

  void add_single_input(CLI::App *command) {
    add_input(command);
    add_number(command, "-n,--at", options_.at, "Read only this message of the stream, counted from 0");
  }

  void add_stream(CLI::App *command, const char *purpose) {
    add_choice(command, "-s,--stream", options_.stream, without("lines", prefix_forms), purpose);
  }

  void add_bytes(CLI::App *command, const char *purpose, json_bytes last) {
    add_choice(command, "-b,--bytes", options_.bytes,
               last == json_bytes::length ? bytes_forms : without("length", bytes_forms), purpose);
  }

  void add_octets(CLI::App *command, const char *purpose) {
    add_choice(command, "--octets", options_.octets, octets_forms, purpose);
  }

  void add_colours(CLI::App *command) {
    add_choice(command, "--color", options_.colours, colour_choices,
               "When to use colours; auto is on a terminal, unless NO_COLOR is set");
  }

  void add_report(CLI::App *command, const char *name, report_form form, const char *purpose) {
    const auto choose = [this, form](std::int64_t) {
      if (options_.report != report_form::as_text && options_.report != form) {
        throw usage_error("--json, --junit and --summary exclude each other");
      }
      options_.report = form;
    };
    command->add_flag_function(name, choose, purpose);
  }

  void add_reading_commands() {
    CLI::App *const listing =
        command("types", "List the messages, or the fields of one with their keys and record offsets", types);
    add_operands(listing, "[TYPE]", "Message type", 1);
    add_notes(listing, "", exit_text("", false));
    CLI::App *const describing = command(
        "schema", "Print the messages, or one with those that it contains, as a schema for other programs", schema);
    add_operands(describing, "[TYPE]", "Message type", 1);
    add_choice(describing, "-f,--form", options_.schema, schema_forms,
               "The language of protoc, a FileDescriptorSet, or JSON Schema");
    add_output(describing);
    add_notes(describing, "TYPE is required for a JSON Schema, which is that of one message.", exit_text("", false));

    CLI::App *const decoding = command("decode", "Show messages as JSON", decode);
    add_operands(decoding, "[TYPE] [FILE]", "Message type, and file to read");
    add_notes(decoding, reads_message_, exit_text(refused));
    add_single_input(decoding);
    CLI::Option *const raw =
        decoding->add_flag("--raw", options_.raw, "Show the fields of an unknown message by their numbers");
    add_bytes(decoding, "How to show bytes", json_bytes::length);
    add_colours(decoding);
    add_octets(decoding, "How to show lists of 8-bit numbers");
    decoding->add_flag("--lines", options_.lines, "Write each message on one line (JSON Lines)");
    add_text(decoding, "--path", options_.path, "Show only this member, such as policies[0].field2", "PATH");
    for (const char *const name : {"--bytes", "--octets", "--lines", "--path"}) {
      raw->excludes(decoding->get_option(name));
    }

    CLI::App *const annotating = command("hex", "Show every byte of a message with its meaning", hex);
    add_operands(annotating, "[TYPE] [FILE]", "Message type, and file to read");
    add_notes(annotating, reads_message_, exit_text(refused));
    add_single_input(annotating);
    add_colours(annotating);
    annotating->add_flag("--html", options_.html, "Write a page for a browser");
    annotating->add_flag("-a,--all", options_.all, "Show all bytes after a failure, not only the first");

    CLI::App *const drawing =
        command("segments", "Show the segment table of an encoding, without and with reference mode", segments);
    add_operands(drawing, "[TYPE] [FILE]", "Message type, and file to read");
    add_notes(drawing, reads_message_, exit_text(refused));
    add_single_input(drawing);
  }

  void add_checking_commands() {
    CLI::App *const comparing = command("diff", "Show where two messages differ", diff);
    add_operands(comparing, "[TYPE] A B", "Message type, and the files to compare");
    add_notes(
        comparing,
        "If A or B is \"-\", the standard input is read. TYPE is the name of a message; it may be omitted if only "
        "one message reads every byte of A.",
        exit_text("the messages differ, one of them cannot be decoded, or other input is refused"));
    add_single_input(comparing);
    add_colours(comparing);
    comparing->add_flag("-a,--all", options_.all, "Show all differences, not only the first");

    CLI::App *const checking = command(
        "check", "Decode many messages: which are refused, which are not canonical, how much memory they take", check);
    add_operands(checking, "[TYPE] FILE...", "Message type, and the files and folders to check");
    add_notes(checking, reads_message_,
              exit_text("a message cannot be decoded, or with --strict is not canonical, or other input is refused"));
    add_input(checking);
    checking->add_flag("-a,--all", options_.all, "Print a line for every message");
    checking->add_flag("--strict", options_.strict, "Treat messages that are not canonical as refused");
    add_report(checking, "--json", report_form::as_json, "Report in JSON");
    add_report(checking, "--junit", report_form::as_junit, "Report in JUnit's XML, a test case for each message");
    add_report(checking, "--summary", report_form::only_totals, "Print only the totals");
    add_colours(checking);
    checking->add_flag("--timing", options_.timing, "Print how long it took");

    CLI::App *const guessing =
        command("guess", "List the messages that an input may be, the most likely first", guess_type);
    add_operands(guessing, "[FILE]", "File to read", 1);
    add_notes(guessing, std::string(reads_file),
              exit_text("the input does not decode as the first message of the list, or is refused", false));
    add_single_input(guessing);
    guessing->add_flag("-a,--all", options_.all, "List all messages, not only the likely ones");

    CLI::App *const listing = command("index", "List the messages of a stream", index_stream);
    add_operands(listing, "[TYPE] [FILE]", "Message type, and file to read");
    add_notes(listing,
              fmt::format("{} TYPE is the name of a message; without it, the message that is the most likely is shown.",
                          reads_file),
              exit_text("the input is refused", false));
    add_input(listing);
  }

  void add_writing_commands() {
    CLI::App *const encoding = command("encode", "Encode a message from JSON", encode);
    add_operands(encoding, "TYPE [FILE]", "Message type, and file to read");
    add_notes(encoding, fmt::format("{} TYPE is the name of a message.", reads_file),
              exit_text("the input is refused", false));
    add_output(encoding);
    add_stream(encoding, "Write a stream of length-prefixed messages, one for each JSON value in the input");
    add_bytes(encoding, "How bytes are given in the JSON", json_bytes::hex);
    add_octets(encoding, "How lists of 8-bit numbers are given in the JSON; all forms are read in any case");

    CLI::App *const converting = command("convert", "Convert a message to another form", convert);
    add_operands(converting, "[TYPE] [FILE]", "Message type, and file to read");
    add_notes(converting,
              fmt::format("{} TYPE is the name of a message. It is required if the input is JSON or text, and has no "
                          "effect from bytes to bytes; otherwise, it may be omitted if only one message reads every "
                          "byte of the input.",
                          reads_file),
              exit_text(refused));
    add_choice(converting, "-f,--from", options_.from, message_forms,
               "Form of the input; text is the text form of protoc");
    add_choice(converting, "-t,--to", options_.to, without("auto", message_forms), "Form of the output");
    add_output(converting);
    add_bytes(converting, "How bytes are given in JSON", json_bytes::length);
    add_octets(converting, "How lists of 8-bit numbers are written in JSON");

    CLI::App *const opening =
        command("page", "Open the page that does all this in a browser, or write it to a file", page);
    add_text(opening, "-o,--output", options_.output, "Write the page to this file instead of opening it", "FILE");
    add_notes(opening, "", exit_text("", false));
    most_operands_[opening] = 0;
  }

  void add_completion() {
    const choices<std::string (*)(const CLI::App &)> shells{
        {"bash", bash_completion}, {"fish", fish_completion}, {"zsh", zsh_completion}};
    CLI::App *const completing = command(
        "completion", "Print the completion script for a shell", [this, shells](const command_options &options) {
          const std::string shell = options.operands.empty() ? "" : options.operands.front();
          const auto found = find_choice(shells, shell);
          if (found == shells.end()) throw usage_error("completion takes the name of a shell: bash, fish or zsh");
          print(found->second(app_));
          return ok;
        });
    add_operands(completing, "SHELL", "bash, fish or zsh", 1);
    add_notes(completing, "", exit_text("", false));
  }

  void add_help() {
    CLI::App *const helping = command("help", "Print the help of a command", [this](const command_options &options) {
      if (options.operands.empty()) {
        print(app_.get_formatter()->make_help(&app_, app_.get_name(), CLI::AppFormatMode::Normal));
        return ok;
      }
      std::string name = options.operands.front();
      require_known(name);
      print(app_.get_subcommand(name)->help("zorv-inspect"));
      return ok;
    });
    add_operands(helping, "[COMMAND]", "Name of a command", 1);
    add_notes(helping, "", exit_text("", false));
  }

  CLI::App app_{"Inspect and edit the messages of pavo-zorv.", "zorv-inspect"};
  const std::string reads_message_ = fmt::format(
      "{} TYPE is the name of a message; it may be omitted if only one message reads every byte of the input.",
      reads_file);
  command_options options_;
  action action_;
  const CLI::App *selected_ = nullptr;
  std::map<const CLI::App *, std::size_t> most_operands_;
};

}  // namespace

int run(int count, char **arguments) { return command_line().run(count, arguments); }

}  // namespace inspect
