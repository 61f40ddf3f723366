// Completion scripts: lists of words for each command, and one function that chooses among them.
#include "completion.hpp"

#include <fmt/format.h>

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

// The options of a command as they are typed; not its positional words.
std::vector<const CLI::Option *> options(const CLI::App &command) {
  return command.get_options([](const CLI::Option *option) { return option->nonpositional(); });
}

// The values that an option's description lists behind its colon; empty for other options.
std::string values(const CLI::Option &option) {
  if (option.get_option_text() != "FORM") return {};
  std::string text = option.get_description();
  text.erase(0, text.rfind(": ") + 2);
  std::erase(text, ',');
  return text;
}

std::string option_names(const CLI::App &command) {
  std::string names;
  for (const CLI::Option *option : options(command)) {
    for (const std::string &each : option->get_snames()) names += " -" + each;
    for (const std::string &each : option->get_lnames()) names += " --" + each;
  }
  return names.empty() ? names : names.substr(1);
}

// A description without what means something in a zsh list.
std::string zsh_text(std::string text) {
  for (char &each : text) {
    if (each == '[' || each == ']' || each == '\'' || each == ':') each = ' ';
  }
  return text;
}

// "'(-i --input)'{-i+,--input=}'[Form of the input]:form:(raw hex)'"
std::string zsh_option(const CLI::Option &option) {
  const bool takes_value = option.get_items_expected_max() != 0;
  std::string all, each_form;
  const auto add = [&](const std::string &name, const char *suffix) {
    all += (all.empty() ? "" : " ") + name;
    each_form += (each_form.empty() ? "" : ",") + name + (takes_value ? suffix : "");
  };
  for (const std::string &each : option.get_snames()) add('-' + each, "+");
  for (const std::string &each : option.get_lnames()) add("--" + each, "=");
  const bool has_two = each_form.find(',') != each_form.npos;
  const std::string forms = has_two ? fmt::format("{{{}}}", each_form) : each_form;
  std::string description = option.get_description();
  const std::string choice = values(option);
  if (!choice.empty()) description.erase(description.rfind(": "));
  const std::string action = !takes_value      ? ""
                             : !choice.empty() ? fmt::format(":form:({})", choice)
                                               : fmt::format(":{}:_files", option.get_option_text());
  return fmt::format("'({})'{}'[{}]{}'", all, forms, zsh_text(description), action);
}

}  // namespace

std::string bash_completion(const CLI::App &app) {
  std::string names, cases;
  for (const CLI::App *command : commands(app)) {
    names += (names.empty() ? "" : " ") + command->get_name();
    std::string inner;
    for (const CLI::Option *option : options(*command)) {
      if (!values(*option).empty()) {
        std::string pattern = option->get_name(false, true);
        for (std::size_t at = 0; (at = pattern.find(',', at)) != pattern.npos;) pattern[at] = '|';
        inner += fmt::format("        {}) words='{}' ;;\n", pattern, values(*option));
      }
    }
    cases +=
        fmt::format("    {})\n      options='{}'\n      case $previous in\n{}        *) ;;\n      esac\n      ;;\n",
                    command->get_name(), option_names(*command), inner);
  }
  return fmt::format(R"(# bash completion for zorv-inspect
_zorv_inspect() {{
  local current=${{COMP_WORDS[COMP_CWORD]}} previous=${{COMP_WORDS[COMP_CWORD - 1]}} options='' words=''
  COMPREPLY=()
  if [[ $COMP_CWORD == 1 ]]; then
    mapfile -t COMPREPLY < <(compgen -W '{} {}' -- "$current")
    return
  fi
  # --input=hex comes as three words.
  if [[ $current == = ]]; then
    current=
  elif [[ $previous == = ]]; then
    previous=${{COMP_WORDS[COMP_CWORD - 2]}}
  fi
  case ${{COMP_WORDS[1]}} in
{}  esac
  if [[ -n $words ]]; then
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
  elif [[ $current == -* ]]; then
    mapfile -t COMPREPLY < <(compgen -W "$options" -- "$current")
  else
    if [[ $COMP_CWORD == 2 ]]; then
      mapfile -t COMPREPLY < <(compgen -W '{}' -- "$current")
    fi
    mapfile -t -O "${{#COMPREPLY[@]}}" COMPREPLY < <(compgen -f -- "$current")
  fi
}}
complete -o filenames -F _zorv_inspect zorv-inspect
)",
                     names, option_names(app), cases, type_names());
}

std::string zsh_completion(const CLI::App &app) {
  std::string names, cases;
  for (const CLI::App *command : commands(app)) {
    names += fmt::format("    '{}:{}'\n", command->get_name(), zsh_text(command->get_description()));
    std::string arguments;
    for (const CLI::Option *option : options(*command))
      arguments += fmt::format(" \\\n        {}", zsh_option(*option));
    cases +=
        fmt::format("    {})\n      _arguments -s{} \\\n        '1: :_zorv_inspect_first' '*:file:_files'\n      ;;\n",
                    command->get_name(), arguments);
  }
  return fmt::format(R"(#compdef zorv-inspect
# zsh completion for zorv-inspect
_zorv_inspect_first() {{
  _alternative 'types:message:({})' 'files:file:_files'
}}

_zorv_inspect() {{
  local -a commands
  commands=(
{}  )
  if (( CURRENT == 2 )); then
    _describe command commands
    return
  fi
  shift words
  (( CURRENT-- ))
  case $words[1] in
{}  esac
}}

if [[ $funcstack[1] == _zorv_inspect ]]; then
  _zorv_inspect "$@"
else
  compdef _zorv_inspect zorv-inspect
fi
)",
                     type_names(), names, cases);
}

}  // namespace inspect
