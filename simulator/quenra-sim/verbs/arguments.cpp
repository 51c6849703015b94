// The values of arguments, as the verbs read them.
#include <algorithm>
#include <string>

#include "simulator/quenra-sim/verbs/verbs.h"
#include "tools/commandline/argumenttext.h"

namespace nSimulator {
namespace {

// As the help shows it: "--times", "TICKET".
std::string shownName(const tArguments& arguments, std::string_view name) {
  const auto positionals = arguments.verb().positionals;
  const auto row = std::ranges::find(positionals, name, &nCommandLine::tPositionalRow::name);
  return std::string(row == positionals.end() ? name : row->valueName);
}

}  // namespace

std::string usageOf(const tArguments& arguments) {
  return "Usage: " + nCommandLine::synopsis(kGrammar, arguments.verb());
}

uint64_t numberOf(const tArguments& arguments, std::string_view name, const std::string& text,
                  uint64_t minimum, uint64_t maximum) {
  const auto value = nCommandLine::parseUnsigned64(text);
  if (!value || *value < minimum || *value > maximum) {
    throw tUsageError(
        nCommandLine::numberFault(text, "an integer", static_cast<int64_t>(minimum), maximum),
        "Give " + shownName(arguments, name) + " as an integer from " + std::to_string(minimum) +
            " to " + std::to_string(maximum) + ", in decimal or in hexadecimal after 0x.");
  }
  return *value;
}

std::optional<uint64_t> optionalNumber(const tArguments& arguments, std::string_view name,
                                       uint64_t minimum, uint64_t maximum) {
  const auto text = arguments.optional(name);
  return text ? std::optional(numberOf(arguments, name, *text, minimum, maximum)) : std::nullopt;
}

uint64_t number(const tArguments& arguments, std::string_view name, uint64_t defaultValue,
                uint64_t maximum) {
  return optionalNumber(arguments, name, 0, maximum).value_or(defaultValue);
}

size_t indexOf(std::string_view kind, const std::string& word, const tWordSet& set) {
  nCommandLine::requireWord(kind, word, set);
  const auto words = set.words();
  const auto found = std::ranges::find(words, word, &nCommandLine::tOfferedWord::word);
  return static_cast<size_t>(found - words.begin());
}

tSimulatorInterface interfaceOf(const tArguments& arguments) {
  const std::string word = arguments.text(nWords::kInterface);
  nCommandLine::requireWord("interface", word, kInterfaceWords);
  return word == nWords::kMarten ? kSimulatorInterfaceMarten : kSimulatorInterfaceController;
}

void rejectOption(const tArguments& arguments, std::string_view option, std::string_view reason) {
  if (arguments.has(option)) {
    throw tUsageError(std::string(option).append(" has no meaning ").append(reason),
                      "Leave " + std::string(option) + " out.");
  }
}

}  // namespace nSimulator
