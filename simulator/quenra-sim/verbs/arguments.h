#ifndef SIMULATOR_QUENRA_SIM_VERBS_ARGUMENTS_H
#define SIMULATOR_QUENRA_SIM_VERBS_ARGUMENTS_H

#include <CLI/CLI.hpp>
#include <cstdint>
#include <string>
#include <vector>

namespace nSimulator {

// Validates an option's value: a word of the list, converted to its number. The message for any
// other word ends with the list: "'foo' is not an interface: use controller or marten".
struct tNamedNumber {
  std::string name;
  uint32_t number;
};
[[nodiscard]] CLI::Validator namesOf(std::string kind, std::vector<tNamedNumber> names);
[[nodiscard]] CLI::Validator wordsOf(std::string kind, std::vector<std::string> words);
[[nodiscard]] CLI::Validator interfaceNames();
// "5 is out of range (0 to 2)"
[[nodiscard]] CLI::Validator between(int64_t least, int64_t most);
[[nodiscard]] CLI::Validator shorterThan(size_t capacity);

// The message for a command line that the parser of `app` rejected with `error`.
[[nodiscard]] std::string usageFault(const CLI::App& app, const CLI::ParseError& error,
                                     int argumentCount, const char* const* arguments);

}  // namespace nSimulator

#endif
