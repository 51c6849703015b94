#include "tools/quenra/grammar/parser.h"

#include <algorithm>
#include <iterator>
#include <vector>

#include "tools/quenra/catalogue/suggestion.h"
#include "tools/quenra/grammar/synopsis.h"
#include "tools/quenra/grammar/verbtable.h"
#include "tools/quenra/grammar/words.h"
#include "tools/quenra/tcommanderror.h"

namespace nCommandLine {
namespace {

constexpr std::string_view kShortHelp = "-h";

std::string quoted(std::string_view text) {
  return "'" + std::string(text) + "'";
}

std::string helpAdvice(std::string_view verb, std::string_view listed) {
  std::string advice = "Run 'quenra ";
  advice.append(verb).append(verb.empty() ? "" : " ").append("--help' to list ");
  return advice.append(listed) + ".";
}

[[noreturn]] void refuseGroup(const tVerbGroupRow& group) {
  std::vector<std::string> verbs;
  for (const tVerbRow& verb : kVerbs) {
    if (!actionIn(group.name, verb).empty()) {
      verbs.push_back(quoted(verb.name));
    }
  }
  throw tCommandError("incomplete command: use " + alternatives(verbs),
                      helpAdvice(group.name, "the verbs"), {});
}

[[noreturn]] void refuseWithoutVerb() {
  std::vector<std::string> verbs;
  std::ranges::transform(kVerbs, std::back_inserter(verbs),
                         [](const tVerbRow& verb) { return std::string(verb.name); });
  throw tCommandError("VERB is missing: use " + alternatives(verbs), helpAdvice("", "the verbs"),
                      {});
}

// The words of a command line, apart at its verb.
struct tSpokenWords {
  bool hasVerb = false;  // it may be an empty word
  std::string verb;      // as the table has it, if it does
  std::vector<std::string> before;
  std::vector<std::string> after;
};

tSpokenWords spokenWords(std::span<const char* const> words) {
  tSpokenWords spoken;
  bool isComplete = false;
  for (const std::string_view word : words) {
    if (isComplete) {
      spoken.after.emplace_back(word);
    } else if (word.starts_with('-')) {
      spoken.before.emplace_back(word);
    } else {
      spoken.verb.append(spoken.hasVerb ? " " : "").append(word);
      spoken.hasVerb = true;
      isComplete = findVerbGroup(spoken.verb) == nullptr;
    }
  }
  return spoken;
}

// A negative number is a value.
bool isOption(std::string_view word) noexcept {
  const bool isNumber = word.size() > 1 && word[1] >= '0' && word[1] <= '9';
  return word.size() > 1 && word.front() == '-' && !isNumber;
}

bool hasOption(std::span<const std::string> words, std::string_view name) {
  const auto end = std::ranges::find(words, kEndOfOptions);
  return std::find(words.begin(), end, name) != end;
}

bool wantsHelp(std::span<const std::string> words) {
  return hasOption(words, nWords::kHelp) || hasOption(words, kShortHelp);
}

// Reads words against rows of options and positionals. The messages are the program's own: those of a
// library of parsers change with its version.
class tWordReader {
 public:
  // `verb` is null for the words before the verb.
  tWordReader(const tVerbRow* verb, std::span<const tOptionRow> always, tArguments& arguments)
      : verb_(verb), always_(always), arguments_(arguments) {}

  void read(std::span<const std::string> words) {
    bool optionsEnded = false;
    while (!words.empty()) {
      const std::string& word = words.front();
      words = words.subspan(1);
      if (!optionsEnded && word == kEndOfOptions) {
        optionsEnded = true;
      } else if (!optionsEnded && isOption(word)) {
        readOption(word, words);
      } else {
        readPositional(word);
      }
    }
    judgeMissing();
  }

 private:
  [[nodiscard]] std::span<const tOptionRow> options() const noexcept {
    return verb_ == nullptr ? std::span<const tOptionRow>{} : verb_->options;
  }
  [[nodiscard]] std::span<const tPositionalRow> positionals() const noexcept {
    return verb_ == nullptr ? std::span<const tPositionalRow>{} : verb_->positionals;
  }

  [[noreturn]] void refuse(const std::string& what) const {
    throw tCommandError(
        what, verb_ == nullptr ? helpAdvice("", "the verbs") : "Usage: " + synopsis(*verb_), {});
  }

  [[nodiscard]] const tOptionRow& knownOption(std::string_view name) const {
    std::vector<std::string_view> names;
    for (const auto& rows : {always_, options()}) {
      for (const tOptionRow& row : rows) {
        if (row.name == name) {
          return row;
        }
        names.push_back(row.name);
      }
    }
    throw tCommandError("unknown option " + quoted(name),
                        helpAdvice(verb_ == nullptr ? "" : verb_->name, "the options"),
                        suggest(name, names));
  }

  // `following` loses the option's value.
  void readOption(const std::string& word, std::span<const std::string>& following) {
    const size_t equals = word.find('=');
    const tOptionRow& row = knownOption(std::string_view(word).substr(0, equals));
    const std::string name(row.name);
    if (row.valueName.empty()) {
      if (equals != std::string::npos) {
        refuse(name + " takes no value");
      }
      judgeChoice(row);
      arguments_.give(name, "true");
      return;
    }
    if (arguments_.has(name)) {
      refuse(name + " is given twice");
    }
    if (equals != std::string::npos) {
      arguments_.give(name, word.substr(equals + 1));
      return;
    }
    if (following.empty() || isOption(following.front())) {
      refuse("the value of " + name + " is missing");
    }
    arguments_.give(name, following.front());
    following = following.subspan(1);
  }

  void judgeChoice(const tOptionRow& row) const {
    for (const tOptionRow& other : options()) {
      if (&other != &row && !row.choice.empty() && other.choice == row.choice &&
          arguments_.has(other.name)) {
        refuse(std::string(other.name).append(" and ").append(row.name) +
               " cannot be used together");
      }
    }
  }

  void readPositional(const std::string& word) {
    if (positionalCount_ == positionals().size()) {
      refuse("unexpected argument " + quoted(word));
    }
    arguments_.give(positionals()[positionalCount_].name, word);
    ++positionalCount_;
  }

  void judgeMissing() const {
    for (const tPositionalRow& row : positionals()) {
      if (row.required && !arguments_.has(row.name)) {
        refuse(spokenValueName(row.valueName) + " is missing");
      }
    }
    for (const tOptionRow& row : options()) {
      if (row.required && !arguments_.has(row.name)) {
        refuse(std::string(row.name) + " is missing");
      }
    }
  }

  // "NAME or ID" of "NAME|ID"
  static std::string spokenValueName(std::string_view valueName) {
    std::string text;
    for (const char character : valueName) {
      text += character == '|' ? std::string(" or ") : std::string(1, character);
    }
    return text;
  }

  const tVerbRow* verb_;
  std::span<const tOptionRow> always_;
  tArguments& arguments_;
  size_t positionalCount_ = 0;
};

tArguments helpOn(const tSpokenWords& spoken) {
  tArguments arguments(kHelpAnswer);
  if (spoken.hasVerb) {
    arguments.give(nWords::kVerb, spoken.verb);
  }
  return arguments;
}

}  // namespace

const tVerbRow& knownVerb(std::string_view name) {
  if (const tVerbGroupRow* const group = findVerbGroup(name)) {
    refuseGroup(*group);
  }
  const tVerbRow* const verb = findVerb(name);
  if (verb == nullptr) {
    std::vector<std::string_view> names;
    std::ranges::transform(kVerbs, std::back_inserter(names), &tVerbRow::name);
    throw tCommandError("unknown verb " + quoted(name), helpAdvice("", "the verbs"),
                        suggest(name, names));
  }
  return *verb;
}

tArguments parseArguments(std::span<const char* const> words) {
  const tSpokenWords spoken = spokenWords(words);
  const bool isHelp = wantsHelp(spoken.before) || wantsHelp(spoken.after);
  if (isHelp && (!spoken.hasVerb || findVerbGroup(spoken.verb) != nullptr)) {
    return helpOn(spoken);
  }
  const tVerbRow* const verb = spoken.hasVerb ? &knownVerb(spoken.verb) : nullptr;
  if (isHelp) {
    return helpOn(spoken);
  }
  if (hasOption(spoken.before, nWords::kVersion)) {
    return tArguments(kVersionAnswer);
  }
  tArguments arguments(verb == nullptr ? kHelpAnswer : *verb);
  tWordReader(nullptr, kOptionsOfTheProgram, arguments).read(spoken.before);
  if (verb == nullptr) {
    refuseWithoutVerb();
  }
  tWordReader(verb, kOptionsOfEveryVerb, arguments).read(spoken.after);
  return arguments;
}

bool wantsJson(std::span<const char* const> words) noexcept {
  for (const std::string_view word : words) {
    if (word == nWords::kJson || word == kEndOfOptions) {
      return word == nWords::kJson;
    }
  }
  return false;
}

std::string_view verbIn(std::span<const char* const> words) noexcept {
  const tVerbRow* const verb = findVerb(spokenWords(words).verb);
  return verb == nullptr ? std::string_view{} : verb->name;
}

}  // namespace nCommandLine
