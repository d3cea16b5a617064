#pragma once

// The man pages and the completions, made from the definitions that the help is made from.

#include <span>
#include <string>

#include "apps/page_sources/definitions.h"

namespace kestrix::program {

/// The man page of the program, in the man macros.
std::string man_page(std::span<const SubcommandDefinition> subcommands);
/// The man page of one subcommand.
std::string man_page(const SubcommandDefinition& subcommand);

std::string bash_completion(std::span<const SubcommandDefinition> subcommands);
std::string zsh_completion(std::span<const SubcommandDefinition> subcommands);
std::string fish_completion(std::span<const SubcommandDefinition> subcommands);

}  // namespace kestrix::program
