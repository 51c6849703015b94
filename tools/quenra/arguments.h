#ifndef TOOLS_QUENRA_ARGUMENTS_H
#define TOOLS_QUENRA_ARGUMENTS_H

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace nCommandLine {

enum class tVerb : uint8_t {
  info,
  get,
  attributes,
  explain,
  help,
  version,
};

struct tGetArguments {
  std::string attribute;  // name or id
  std::optional<std::string> instance;
  bool controller = false;
  bool marten = false;
};

struct tArguments {
  tVerb verb = tVerb::help;
  tGetArguments get;
  std::string code;      // of `explain`
  std::string helpText;  // of `help`
};

// The words after the program's name. Throws tCommandError for wrong usage.
[[nodiscard]] tArguments parseArguments(std::span<const char* const> words);

// Whether a document is wanted: known even where the usage is wrong otherwise.
[[nodiscard]] bool wantsJson(std::span<const char* const> words) noexcept;

// The verb that is meant; empty where there is none.
[[nodiscard]] std::string_view verbIn(std::span<const char* const> words) noexcept;

}  // namespace nCommandLine

#endif
