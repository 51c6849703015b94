#ifndef TOOLS_QUENRA_GRAMMAR_ARGUMENTS_H
#define TOOLS_QUENRA_GRAMMAR_ARGUMENTS_H

#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "tools/quenra/grammar/verbrow.h"

namespace nCommandLine {

// A parsed command line: a verb and the values of its options and positionals, by row name.
class tArguments {
 public:
  explicit tArguments(const tVerbRow& verb) : verb_(&verb) {}

  void give(std::string_view name, std::string value) {
    given_.insert_or_assign(std::string(name), std::move(value));
  }

  [[nodiscard]] const tVerbRow& verb() const noexcept { return *verb_; }
  [[nodiscard]] bool has(std::string_view name) const { return given_.contains(name); }
  // Empty if the command line omits the option or positional.
  [[nodiscard]] std::optional<std::string> optional(std::string_view name) const {
    const auto found = given_.find(name);
    return found == given_.end() ? std::nullopt : std::optional(found->second);
  }
  // The value of a required positional.
  [[nodiscard]] std::string text(std::string_view name) const {
    return optional(name).value_or("");
  }

 private:
  const tVerbRow* verb_;
  std::map<std::string, std::string, std::less<>> given_;
};

}  // namespace nCommandLine

#endif
