// Completion scripts: lists of candidates for each command, and one function that chooses among them.
#include "completion.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <string_view>
#include <vector>

#include "types.hpp"

namespace inspect {
namespace {

std::string type_names() {
  std::string names;
  for (const message_type *type : all_types()) names += fmt::format("{}{}", names.empty() ? "" : " ", type->name);
  return names;
}

std::vector<const CLI::App *> commands(const CLI::App &app) {
  return app.get_subcommands([](const CLI::App *) { return true; });
}

std::string command_names(const CLI::App &app) {
  std::string names;
  for (const CLI::App *command : commands(app)) names += (names.empty() ? "" : " ") + command->get_name();
  return names;
}

// The options of a command, without its operands.
std::vector<const CLI::Option *> options(const CLI::App &command) {
  return command.get_options([](const CLI::Option *option) { return option->nonpositional(); });
}

// The values that an option's description lists after the colon, where the default is marked; empty if it lists none.
std::string values(const CLI::Option &option) {
  if (option.get_option_text() != "FORM") return {};
  std::string text = option.get_description();
  text.erase(0, text.rfind(": ") + 2);
  constexpr std::string_view mark = " (default)";
  if (const std::size_t marked = text.find(mark); marked != text.npos) text.erase(marked, mark.size());
  std::erase(text, ',');
  return text;
}

bool takes_value(const CLI::Option *option) { return option->get_items_expected_max() != 0; }

std::string option_names(const CLI::App &command, bool (*is_included)(const CLI::Option *)) {
  std::string names;
  for (const CLI::Option *option : options(command)) {
    if (!is_included(option)) continue;
    for (const std::string &each : option->get_snames()) names += " -" + each;
    for (const std::string &each : option->get_lnames()) names += " --" + each;
  }
  return names.empty() ? names : names.substr(1);
}

std::string option_names(const CLI::App &command) {
  return option_names(command, [](const CLI::Option *) { return true; });
}

// What the operands of a command may be, judged by their placeholders.
struct operand_kinds {
  std::string first;  // candidates for the first operand, besides files
  bool files;
};

operand_kinds operands_of(const CLI::App &app, const CLI::App &command) {
  std::string text;
  for (const CLI::Option *each : command.get_options()) {
    if (each->get_positional()) text += each->get_option_text();
  }
  const auto has = [&](const char *word) { return text.find(word) != text.npos; };
  return {has("SHELL")     ? "bash fish zsh"
          : has("COMMAND") ? command_names(app)
          : has("TYPE")    ? type_names()
                           : "",
          has("FILE") || has("A B")};
}

// --- bash ---

// The values of an option, selected by the word before.
std::string bash_values(const CLI::App &command) {
  std::string text;
  for (const CLI::Option *option : options(command)) {
    if (values(*option).empty()) continue;
    std::string pattern = option->get_name(false, true);
    std::ranges::replace(pattern, ',', '|');
    text += fmt::format("        {}) values='{}' ;;\n", pattern, values(*option));
  }
  return text.empty() ? text : fmt::format("      case $previous in\n{}      esac\n", text);
}

std::string bash_case(const CLI::App &app, const CLI::App &command) {
  const operand_kinds kinds = operands_of(app, command);
  return fmt::format("    {})\n      options='{}'\n      with_value='{}'\n      first='{}' files={}\n{}      ;;\n",
                     command.get_name(), option_names(command), option_names(command, takes_value), kinds.first,
                     kinds.files ? "yes" : "no", bash_values(command));
}

// --- zsh ---

// A description without characters that are special in a zsh list.
std::string zsh_text(std::string text) {
  for (char &each : text) {
    if (std::string_view("[]':").find(each) != std::string_view::npos) each = ' ';
  }
  return text;
}

// "'(-i --input)'{-i+,--input=}'[Form of the input]:form:(raw hex)'"
std::string zsh_option(const CLI::Option &option) {
  const bool has_value = takes_value(&option);
  std::string names, forms;
  const auto add = [&](const std::string &name, const char *suffix) {
    names += (names.empty() ? "" : " ") + name;
    forms += (forms.empty() ? "" : ",") + name + (has_value ? suffix : "");
  };
  for (const std::string &each : option.get_snames()) add('-' + each, "+");
  for (const std::string &each : option.get_lnames()) add("--" + each, "=");
  if (forms.find(',') != forms.npos) forms = fmt::format("{{{}}}", forms);
  std::string description = option.get_description();
  const std::string choice = values(option);
  if (!choice.empty()) description.erase(description.rfind(": "));
  const std::string argument = !has_value                           ? ""
                               : !choice.empty()                    ? fmt::format(":form:({})", choice)
                               : option.get_option_text() == "FILE" ? ":file:_files"
                                                                    : ":number: ";
  return fmt::format("'({})'{}'[{}]{}'", names, forms, zsh_text(description), argument);
}

std::string zsh_case(const CLI::App &app, const CLI::App &command) {
  const operand_kinds kinds = operands_of(app, command);
  std::string text = fmt::format("    {})\n      first=({})\n      _arguments -s", command.get_name(), kinds.first);
  for (const CLI::Option *option : options(command)) text += fmt::format(" \\\n        {}", zsh_option(*option));
  return text + fmt::format(" \\\n        '1: :_zorv_inspect_first{}'{}\n      ;;\n", kinds.files ? " files" : "",
                            kinds.files ? " '*:file:_files'" : "");
}

// --- fish ---

// In single quotes.
std::string fish_text(const std::string &text) {
  std::string quoted = "'";
  for (const char each : text) {
    if (each == '\'' || each == '\\') quoted += '\\';
    quoted += each;
  }
  return quoted + '\'';
}

std::string fish_option(const std::string &condition, const CLI::Option &option) {
  std::string text = fmt::format("complete -c zorv-inspect -n {}", condition);
  for (const std::string &each : option.get_snames()) text += " -s " + each;
  for (const std::string &each : option.get_lnames()) text += " -l " + each;
  const std::string choice = values(option);
  if (!choice.empty()) {
    text += fmt::format(" -x -a {}", fish_text(choice));
  } else if (takes_value(&option)) {
    text += option.get_option_text() == "FILE" ? " -r -F" : " -x";
  }
  return text + fmt::format(" -d {}\n", fish_text(option.get_description()));
}

std::string fish_command(const CLI::App &app, const CLI::App &command) {
  const std::string name = command.get_name();
  std::string text = fmt::format("complete -c zorv-inspect -n __fish_use_subcommand -a {} -d {}\n", name,
                                 fish_text(command.get_description()));
  const operand_kinds kinds = operands_of(app, command);
  const std::string selected = fmt::format("'__fish_seen_subcommand_from {}'", name);
  if (kinds.files) text += fmt::format("complete -c zorv-inspect -n {} -F\n", selected);
  if (!kinds.first.empty()) {
    text += fmt::format("complete -c zorv-inspect -n '__zorv_inspect_first {} {}' -a {}\n", name,
                        option_names(command, takes_value), fish_text(kinds.first));
  }
  for (const CLI::Option *option : options(command)) text += fish_option(selected, *option);
  return text;
}

constexpr std::string_view bash_script = R"(# bash completion for zorv-inspect
_zorv_inspect() {{
  local current=${{COMP_WORDS[COMP_CWORD]}} previous=${{COMP_WORDS[COMP_CWORD - 1]}}
  local options='' with_value='' first='' files=no values='' operands=0 index
  COMPREPLY=()
  if [[ $COMP_CWORD == 1 ]]; then
    mapfile -t COMPREPLY < <(compgen -W '{commands} {options}' -- "$current")
    return
  fi
  # --input=hex arrives as three words.
  if [[ $current == = ]]; then
    current=
  elif [[ $previous == = ]]; then
    previous=${{COMP_WORDS[COMP_CWORD - 2]}}
  fi
  case ${{COMP_WORDS[1]}} in
{cases}  esac
  # Operands before the word: neither options, nor the values of those that take one.
  for ((index = 2; index < COMP_CWORD; ++index)); do
    if [[ ${{COMP_WORDS[index]}} == -?* ]]; then
      [[ " $with_value " != *" ${{COMP_WORDS[index]}} "* ]] || ((++index))
      [[ ${{COMP_WORDS[index]}} != = ]] || ((++index))
    else
      ((++operands))
    fi
  done
  if [[ -n $values ]]; then
    mapfile -t COMPREPLY < <(compgen -W "$values" -- "$current")
  elif [[ $current == -* ]]; then
    mapfile -t COMPREPLY < <(compgen -W "$options" -- "$current")
  else
    [[ $operands != 0 ]] || mapfile -t COMPREPLY < <(compgen -W "$first" -- "$current")
    [[ $files == no ]] || mapfile -t -O "${{#COMPREPLY[@]}}" COMPREPLY < <(compgen -f -- "$current")
  fi
}}
complete -o filenames -F _zorv_inspect zorv-inspect
)";

constexpr std::string_view fish_head = R"(# fish completion for zorv-inspect

# Whether the word is the first operand of the command argv[1], whose options argv[2] and so on take a value.
function __zorv_inspect_first
  set -l words (commandline -opc)
  set -l skipped no
  set -l index 0
  for word in $words
    set index (math $index + 1)
    if test $index = 1
      continue
    else if test $index = 2
      test $word = $argv[1]; or return 1
    else if test $skipped = yes
      set skipped no
    else if string match -q -- '-?*' $word
      contains -- $word $argv; and set skipped yes
    else
      return 1
    end
  end
  test $index -ge 2
end

complete -c zorv-inspect -f
)";

constexpr std::string_view zsh_script = R"(#compdef zorv-inspect
# zsh completion for zorv-inspect
_zorv_inspect_first() {{
  compadd -a first
  [[ $1 != files ]] || _files
}}

_zorv-inspect() {{
  local -a commands first
  commands=(
{commands}  )
  if (( CURRENT == 2 )); then
    _describe command commands
    return
  fi
  shift words
  (( CURRENT-- ))
  case $words[1] in
{cases}  esac
}}

if [[ $funcstack[1] == _zorv-inspect ]]; then
  _zorv-inspect "$@"
else
  compdef _zorv-inspect zorv-inspect
fi
)";

}  // namespace

std::string bash_completion(const CLI::App &app) {
  std::string cases;
  for (const CLI::App *command : commands(app)) cases += bash_case(app, *command);
  return fmt::format(bash_script, fmt::arg("commands", command_names(app)), fmt::arg("options", option_names(app)),
                     fmt::arg("cases", cases));
}

std::string fish_completion(const CLI::App &app) {
  std::string text(fish_head);
  for (const CLI::Option *option : options(app)) text += fish_option("__fish_use_subcommand", *option);
  for (const CLI::App *command : commands(app)) text += fish_command(app, *command);
  return text;
}

std::string zsh_completion(const CLI::App &app) {
  std::string names, cases;
  for (const CLI::App *command : commands(app)) {
    names += fmt::format("    '{}:{}'\n", command->get_name(), zsh_text(command->get_description()));
    cases += zsh_case(app, *command);
  }
  return fmt::format(zsh_script, fmt::arg("commands", names), fmt::arg("cases", cases));
}

}  // namespace inspect
