#ifndef TOOLS_QUENRA_TEXT_NAMES_H
#define TOOLS_QUENRA_TEXT_NAMES_H

#include <string>
#include <string_view>
#include <vector>

namespace nCommandLine {

// Normalises a name for comparison: lower case, '-' for '_'.
[[nodiscard]] std::string comparableName(std::string_view name);

// At most three of `candidates` that the user may have meant by `name`, most likely first: a few
// typing errors away, or containing `name`.
[[nodiscard]] std::vector<std::string> suggest(std::string_view name,
                                               const std::vector<std::string_view>& candidates);

// "a, b or c"
[[nodiscard]] std::string alternatives(const std::vector<std::string>& names);

}  // namespace nCommandLine

#endif
