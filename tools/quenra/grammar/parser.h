#ifndef TOOLS_QUENRA_GRAMMAR_PARSER_H
#define TOOLS_QUENRA_GRAMMAR_PARSER_H

#include <span>
#include <string_view>

#include "tools/quenra/grammar/arguments.h"

namespace nCommandLine {

// Parses the words after the program's name. Throws tCommandError for wrong usage.
[[nodiscard]] tArguments parseArguments(std::span<const char* const> words);

// The verb of that name. Throws tCommandError for an unknown name.
[[nodiscard]] const tVerbRow& knownVerb(std::string_view name);

// True if --json is among the options, even if the usage is wrong otherwise.
[[nodiscard]] bool wantsJson(std::span<const char* const> words) noexcept;

// The verb among the words; empty for none.
[[nodiscard]] std::string_view verbIn(std::span<const char* const> words) noexcept;

}  // namespace nCommandLine

#endif
