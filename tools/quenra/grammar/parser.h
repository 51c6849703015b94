#ifndef TOOLS_QUENRA_GRAMMAR_PARSER_H
#define TOOLS_QUENRA_GRAMMAR_PARSER_H

#include <span>
#include <string>
#include <string_view>

#include "tools/quenra/grammar/arguments.h"

namespace nCommandLine {

// The words after the program's name. Throws tCommandError for wrong usage.
[[nodiscard]] tArguments parseArguments(std::span<const char* const> words);

// The help of a verb, or of the program for an empty name. Throws tCommandError where there is no
// such verb.
[[nodiscard]] std::string helpText(std::string_view verb);

// Whether a document is wanted: known even where the usage is wrong otherwise.
[[nodiscard]] bool wantsJson(std::span<const char* const> words) noexcept;

// The verb that is meant; empty where there is none.
[[nodiscard]] std::string_view verbIn(std::span<const char* const> words) noexcept;

}  // namespace nCommandLine

#endif
