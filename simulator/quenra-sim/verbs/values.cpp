#include <algorithm>
#include <cerrno>
#include <cstdlib>

#include "simulator/quenra-sim/verbs/verb.h"

namespace nSimulator {
namespace {

// "a, b or c"
std::string alternatives(const std::vector<std::string>& words) {
  std::string text;
  for (size_t i = 0; i < words.size(); ++i) {
    text += i == 0 ? "" : i + 1 == words.size() ? " or " : ", ";
    text += words[i];
  }
  return text;
}

std::string wordFault(const std::string& word, const std::string& kind,
                      const std::vector<std::string>& words) {
  return "'" + word + "' is not " + kind + ": use " + alternatives(words);
}

}  // namespace

CLI::Validator namesOf(std::string kind, std::vector<tNamedNumber> names) {
  std::vector<std::string> words;
  for (const tNamedNumber& row : names) {
    words.push_back(row.name);
  }
  const std::string description = alternatives(words);
  return CLI::Validator(
      [kind = std::move(kind), names = std::move(names), words](std::string& word) {
        const auto row =
            std::find_if(names.begin(), names.end(),
                         [&word](const tNamedNumber& name) { return name.name == word; });
        if (row == names.end()) {
          return wordFault(word, kind, words);
        }
        word = std::to_string(row->number);
        return std::string();
      },
      description);
}

CLI::Validator wordsOf(std::string kind, std::vector<std::string> words) {
  return CLI::Validator(
      [kind = std::move(kind), words = std::move(words)](std::string& word) {
        return std::find(words.begin(), words.end(), word) == words.end()
                   ? wordFault(word, kind, words)
                   : std::string();
      },
      "");
}

CLI::Validator between(int64_t least, int64_t most) {
  const std::string range = "(" + std::to_string(least) + " to " + std::to_string(most) + ")";
  return CLI::Validator(
      [least, most, range](std::string& text) {
        errno = 0;
        char* end = nullptr;
        const long long value = std::strtoll(text.c_str(), &end, 0);
        if (text.empty() || *end != '\0') {
          return "'" + text + "' is not an integer " + range;
        }
        return errno == 0 && value >= least && value <= most ? std::string()
                                                             : text + " is out of range " + range;
      },
      range);
}

void throwRefusal(const tControlError& error, const std::string& message) {
  constexpr uint32_t kErrorNotFound = 1168;
  throw tControlError(error.windowsError() == kErrorNotFound ? message : error.what(),
                      error.windowsError());
}

CLI::Validator interfaceNames() {
  return namesOf("an interface", {{"controller", kSimulatorInterfaceController},
                                  {"marten", kSimulatorInterfaceMarten}});
}

}  // namespace nSimulator
