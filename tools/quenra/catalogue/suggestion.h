#ifndef TOOLS_QUENRA_CATALOGUE_SUGGESTION_H
#define TOOLS_QUENRA_CATALOGUE_SUGGESTION_H

#include <string>
#include <string_view>
#include <vector>

namespace nCommandLine {

// The form in which names are compared: lower case, '-' for '_'.
[[nodiscard]] std::string comparableName(std::string_view name);

// Those of `candidates` that may have been meant by `name`, most likely first, at most three: a few
// typing errors away, or with `name` as a part of them.
[[nodiscard]] std::vector<std::string> suggest(std::string_view name,
                                               const std::vector<std::string_view>& candidates);

// "a, b or c"
[[nodiscard]] std::string alternatives(const std::vector<std::string>& names);

}  // namespace nCommandLine

#endif
