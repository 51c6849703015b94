#ifndef TOOLS_QUENRA_GRAMMAR_PARSER_H
#define TOOLS_QUENRA_GRAMMAR_PARSER_H

#include <span>
#include <string_view>

#include "tools/quenra/grammar/grammar.h"

namespace nCommandLine {

// The words of a command line after the program's name.
using tCommandWords = std::span<const char* const>;

// Parses a command line. Throws tCommandError for wrong usage.
[[nodiscard]] tArguments parseArguments(const tGrammar& grammar, tCommandWords words);

// The verb of that name. Throws tCommandError for an unknown name.
[[nodiscard]] const tVerbRow& knownVerb(const tGrammar& grammar, std::string_view name);

// True if --json is among the options, even if the usage is wrong otherwise.
[[nodiscard]] bool requestsJson(tCommandWords words) noexcept;

// The verb among the words; empty for none.
[[nodiscard]] std::string_view verbIn(const tGrammar& grammar, tCommandWords words) noexcept;

}  // namespace nCommandLine

#endif
