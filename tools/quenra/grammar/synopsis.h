#ifndef TOOLS_QUENRA_GRAMMAR_SYNOPSIS_H
#define TOOLS_QUENRA_GRAMMAR_SYNOPSIS_H

#include <string>
#include <string_view>

#include "tools/quenra/grammar/verbrow.h"

namespace nCommandLine {

// The markup of a synopsis: for literal words, which the user types as they are, and for
// placeholders.
struct tSynopsisStyle {
  std::string (*typed)(std::string_view);
  std::string (*placeholder)(std::string_view);
};

// "quenra get NAME|ID [--instance N] [--controller|--marten]", without the options of every verb.
[[nodiscard]] std::string synopsis(const tVerbRow& verb, const tSynopsisStyle& style);
[[nodiscard]] std::string synopsis(const tVerbRow& verb);

// "--instance N"
[[nodiscard]] std::string optionWithValue(const tOptionRow& option, const tSynopsisStyle& style);

}  // namespace nCommandLine

#endif
