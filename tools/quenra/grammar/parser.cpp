#include "tools/quenra/grammar/parser.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <iterator>
#include <vector>

#include "tools/quenra/grammar/synopsis.h"
#include "tools/quenra/grammar/verbtable.h"
#include "tools/quenra/grammar/words.h"
#include "tools/quenra/output/diagnostics.h"
#include "tools/quenra/text/names.h"

namespace nCommandLine {
namespace {

constexpr std::string_view kShortHelp = "-h";
// Replaces a missing value: the option ends the command line or precedes another option. No
// argument can be equal to it.
constexpr std::string_view kMissingValue("\0", 1);

std::string inQuotes(std::string_view text) {
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
      verbs.push_back(inQuotes(verb.name));
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

// The words of a command line, split at its verb.
struct tSpokenWords {
  bool hasVerb = false;  // a verb can be an empty word
  std::string verb;      // one word, or a group and its action
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

bool hasOption(std::span<const std::string> words, std::string_view name) {
  const auto end = std::ranges::find(words, kEndOfOptions);
  return std::find(words.begin(), end, name) != end;
}

bool wantsHelp(std::span<const std::string> words) {
  return hasOption(words, nWords::kHelp) || hasOption(words, kShortHelp);
}

// "NAME or ID" of "NAME|ID"
std::string spokenValueName(std::string_view valueName) {
  std::string text;
  for (const char character : valueName) {
    text += character == '|' ? std::string(" or ") : std::string(1, character);
  }
  return text;
}

// Reads words against rows of options and positionals. CLI11 splits the words into options, values and
// positionals. This class checks their numbers, since the messages of CLI11 vary between versions.
class tWordReader {
 public:
  // `verb` is null for the words before the verb.
  tWordReader(const tVerbRow* verb, std::span<const tOptionRow> always, tArguments& arguments)
      : verb_(verb), arguments_(arguments) {
    app_.set_help_flag();
    app_.allow_windows_style_options(false);
    app_.allow_extras();
    options_.assign(always.begin(), always.end());
    if (verb != nullptr) {
      options_.insert(options_.end(), verb->options.begin(), verb->options.end());
      positionals_ = verb->positionals;
    }
    for (const tOptionRow& row : options_) {
      add(row);
    }
    for (const tPositionalRow& row : positionals_) {
      app_.add_option(std::string(row.name));
    }
  }

  void read(std::span<const std::string> words) {
    refuseValuesOfFlags(words);
    // CLI11 reads the words from the end of a vector.
    app_.parse(std::vector<std::string>(words.rbegin(), words.rend()));
    refuseExtras();
    std::ranges::for_each(options_, [this](const tOptionRow& row) { read(row); });
    std::ranges::for_each(positionals_, [this](const tPositionalRow& row) { read(row); });
  }

 private:
  void add(const tOptionRow& row) {
    const std::string name(row.name);
    if (row.valueName.empty()) {
      app_.add_flag(name);
    } else {
      CLI::Option& option = *app_.add_option(name);
      option.expected(0, 1);
      option.default_str(std::string(kMissingValue));
      option.allow_extra_args(false);
      option.multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
    }
  }

  [[noreturn]] void refuse(const std::string& fault) const {
    throw tCommandError(
        fault, verb_ == nullptr ? helpAdvice("", "the verbs") : "Usage: " + synopsis(*verb_), {});
  }

  [[noreturn]] void refuseOption(std::string_view name) const {
    std::vector<std::string_view> names;
    std::ranges::transform(options_, std::back_inserter(names), &tOptionRow::name);
    throw tCommandError("unknown option " + inQuotes(name),
                        helpAdvice(verb_ == nullptr ? "" : verb_->name, "the options"),
                        suggest(name, names));
  }

  void refuseValuesOfFlags(std::span<const std::string> words) const {
    for (const std::string& word : words) {
      if (word == kEndOfOptions) {
        return;
      }
      const std::string_view name = std::string_view(word).substr(0, word.find('='));
      const auto row = std::ranges::find(options_, name, &tOptionRow::name);
      if (name.size() != word.size() && row != options_.end() && row->valueName.empty()) {
        refuse(std::string(name) + " takes no value");
      }
    }
  }

  // Refuses words that match no row. CLI11 leaves the end-of-options mark among the remaining ones.
  void refuseExtras() const {
    std::vector<std::string> extras = app_.remaining();
    if (const auto end = std::ranges::find(extras, kEndOfOptions); end != extras.end()) {
      extras.erase(end);
    }
    for (const std::string& word : extras) {
      if (word.size() > 1 && word.front() == '-' && word != kEndOfOptions) {
        refuseOption(std::string_view(word).substr(0, word.find('=')));
      }
      refuse("unexpected argument " + inQuotes(word));
    }
  }

  void read(const tOptionRow& row) {
    const CLI::Option& option = *app_.get_option(std::string(row.name));
    const std::string name(row.name);
    if (option.count() == 0) {
      if (row.required) {
        refuse(name + " is missing");
      }
      return;
    }
    refuseSecondOfAChoice(row);
    if (row.valueName.empty()) {
      arguments_.give(name, "true");
    } else if (option.count() > 1) {
      refuse(name + " is given twice");
    } else if (option.results().front() == kMissingValue) {
      refuse("the value of " + name + " is missing");
    } else {
      arguments_.give(name, option.results().front());
    }
  }

  void refuseSecondOfAChoice(const tOptionRow& row) const {
    for (const tOptionRow& other : options_) {
      if (other.name != row.name && !row.choice.empty() && other.choice == row.choice &&
          arguments_.has(other.name)) {
        refuse(std::string(other.name).append(" and ").append(row.name) +
               " cannot be used together");
      }
    }
  }

  void read(const tPositionalRow& row) {
    const CLI::Option& option = *app_.get_option(std::string(row.name));
    if (option.count() != 0) {
      arguments_.give(row.name, option.results().front());
    } else if (row.required) {
      refuse(spokenValueName(row.valueName) + " is missing");
    }
  }

  const tVerbRow* verb_;
  tArguments& arguments_;
  std::vector<tOptionRow> options_;
  std::span<const tPositionalRow> positionals_;
  CLI::App app_;
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
    throw tCommandError("unknown verb " + inQuotes(name), helpAdvice("", "the verbs"),
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
