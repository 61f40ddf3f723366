// Completion for shells, derived from the command line itself.
#pragma once

#include <CLI/CLI.hpp>
#include <string>

namespace inspect {

std::string bash_completion(const CLI::App &app);
std::string fish_completion(const CLI::App &app);
std::string zsh_completion(const CLI::App &app);

}  // namespace inspect
