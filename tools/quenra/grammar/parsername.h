// CLI11 requires a verb of one word, so a verb of two words has a separate name for the parser.
#ifndef TOOLS_QUENRA_GRAMMAR_PARSERNAME_H
#define TOOLS_QUENRA_GRAMMAR_PARSERNAME_H

#include <algorithm>
#include <string>
#include <string_view>

#include "tools/quenra/grammar/verbtable.h"

namespace nCommandLine {

[[nodiscard]] inline std::string parserName(const tVerbRow& verb) {
  std::string name(verb.name);
  std::ranges::replace(name, ' ', '-');
  return name;
}

// Null when no verb has that name.
[[nodiscard]] inline const tVerbRow* verbOfParserName(std::string_view name) {
  const auto verb = std::ranges::find(kVerbs, name, parserName);
  return verb == kVerbs.end() ? nullptr : &*verb;
}

}  // namespace nCommandLine

#endif
