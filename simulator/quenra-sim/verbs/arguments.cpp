#include "simulator/quenra-sim/verbs/verbs.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <string_view>

#include "simulator/protocol/controlprotocol.h"

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

// The innermost verb that was recognised, and the number of words including it.
struct tRecognised {
  const CLI::App* app;
  std::string name;
  size_t words;
};

tRecognised recognised(const CLI::App& app, const std::vector<std::string>& words) {
  tRecognised result{&app, "quenra-sim", 0};
  for (auto inner = result.app->get_subcommands(); !inner.empty();
       inner = result.app->get_subcommands()) {
    result.app = inner.front();
    const auto word = std::find(words.begin() + static_cast<std::ptrdiff_t>(result.words),
                                words.end(), result.app->get_name());
    result.words = static_cast<size_t>(word - words.begin()) + (word == words.end() ? 0 : 1);
    result.name += " " + result.app->get_name();
  }
  return result;
}

std::string helpAdvice(const tRecognised& verb) {
  return "; run '" + verb.name + " --help' for help";
}

std::string subcommandFault(const tRecognised& verb, const std::vector<std::string>& words) {
  const auto first = words.begin() + static_cast<std::ptrdiff_t>(verb.words);
  const auto word = std::find_if(
      first, words.end(), [](const std::string& candidate) { return !candidate.starts_with('-'); });
  return (word == words.end() ? "a subcommand is missing" : "unknown subcommand '" + *word + "'") +
         helpAdvice(verb);
}

std::string extraWordFault(const CLI::App& app, const tRecognised& verb) {
  const std::vector<std::string> extra = app.remaining(true);
  const std::string word = extra.empty() ? "" : extra.front();
  return (word.starts_with('-') ? "unknown option '" : "unexpected argument '") + word + "'" +
         helpAdvice(verb);
}

// "interface is required" becomes "interface is missing".
std::string missingWordFault(std::string message, const tRecognised& verb) {
  constexpr std::string_view kEnd = " is required";
  if (message.ends_with(kEnd)) {
    message.resize(message.size() - kEnd.size());
    message += " is missing";
  }
  return message + helpAdvice(verb);
}

// The validators already name the value; removes the option that the parser puts before it.
std::string valueFault(const std::string& message) {
  const size_t colon = message.find(": ");
  return colon == std::string::npos ? message : message.substr(colon + 2);
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

CLI::Validator interfaceNames() {
  return namesOf("an interface", {{"controller", kSimulatorInterfaceController},
                                  {"marten", kSimulatorInterfaceMarten}});
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

CLI::Validator shorterThan(size_t capacity) {
  return CLI::Validator(
      [capacity](std::string& text) {
        return text.size() < capacity
                   ? std::string()
                   : "the text has " + std::to_string(text.size()) + " bytes; at most " +
                         std::to_string(capacity - 1) + " are accepted";
      },
      "");
}

std::string usageFault(const CLI::App& app, const CLI::ParseError& error, int argumentCount,
                       const char* const* arguments) {
  const std::vector<std::string> words(arguments + std::min(argumentCount, 1),
                                       arguments + argumentCount);
  const tRecognised verb = recognised(app, words);
  if (dynamic_cast<const CLI::ExtrasError*>(&error) != nullptr) {
    return extraWordFault(app, verb);
  }
  if (dynamic_cast<const CLI::RequiredError*>(&error) != nullptr) {
    return std::string_view(error.what()).find("subcommand") == std::string_view::npos
               ? missingWordFault(error.what(), verb)
               : subcommandFault(verb, words);
  }
  if (dynamic_cast<const CLI::ValidationError*>(&error) != nullptr) {
    return valueFault(error.what()) + helpAdvice(verb);
  }
  return error.what() + helpAdvice(verb);
}

}  // namespace nSimulator
