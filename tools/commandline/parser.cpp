#include <CLI/CLI.hpp>
#include <algorithm>
#include <iterator>
#include <vector>

#include "tools/commandline/argumenttext.h"
#include "tools/commandline/grammar.h"

namespace nCommandLine {
namespace {

constexpr std::string_view kEndOfOptions = "--";
constexpr std::string_view kShortHelp = "-h";
// Replaces a missing value: the option ends the command line or precedes another option. No
// argument can be equal to it.
constexpr std::string_view kMissingValue("\0", 1);

std::string inQuotes(std::string_view text) {
  return "'" + std::string(text) + "'";
}

std::string helpAdvice(const tGrammar& grammar, std::string_view verb, std::string_view listed) {
  std::string advice = "Run '";
  advice.append(grammar.program).append(" ").append(verb).append(verb.empty() ? "" : " ");
  return advice.append("--help' to list ").append(listed) + ".";
}

[[noreturn]] void rejectGroup(const tGrammar& grammar, const tVerbGroupRow& group) {
  std::vector<std::string> verbs;
  for (const tVerbRow& verb : grammar.verbs) {
    if (!verb.actionIn(group.name).empty()) {
      verbs.push_back(inQuotes(verb.name));
    }
  }
  throw tUsageError("incomplete command: use " + alternatives(verbs),
                    helpAdvice(grammar, group.name, "the verbs"));
}

[[noreturn]] void rejectWithoutVerb(const tGrammar& grammar) {
  std::vector<std::string> verbs;
  std::ranges::transform(grammar.verbs, std::back_inserter(verbs),
                         [](const tVerbRow& verb) { return std::string(verb.name); });
  throw tUsageError("VERB is missing: use " + alternatives(verbs),
                    helpAdvice(grammar, "", "the verbs"));
}

// The words of a command line, split at its verb.
struct tSplitWords {
  bool hasVerb = false;  // a verb can be an empty word
  std::string verb;      // one word, or a group and its action
  std::vector<std::string> before;
  std::vector<std::string> after;
};

tSplitWords split(const tGrammar& grammar, tCommandWords words) {
  tSplitWords result;
  bool isComplete = false;
  for (const std::string_view word : words) {
    if (isComplete) {
      result.after.emplace_back(word);
    } else if (word.starts_with('-')) {
      result.before.emplace_back(word);
    } else {
      result.verb.append(result.hasVerb ? " " : "").append(word);
      result.hasVerb = true;
      isComplete = grammar.findGroup(result.verb) == nullptr;
    }
  }
  return result;
}

template <class Words>
bool contains(const Words& words, std::string_view option) noexcept {
  for (const std::string_view word : words) {
    if (word == option || word == kEndOfOptions) {
      return word == option;
    }
  }
  return false;
}

bool requestsHelp(std::span<const std::string> words) {
  return contains(words, kHelpOption.name) || contains(words, kShortHelp);
}

// "NAME or ID" of "NAME|ID"
std::string alternativesIn(std::string_view valueName) {
  std::string text;
  for (const char character : valueName) {
    text += character == '|' ? std::string(" or ") : std::string(1, character);
  }
  return text;
}

// Reads words against rows of options and positionals. CLI11 splits the words into options, values
// and positionals. This class checks their numbers: the messages of CLI11 vary between versions, and
// its exceptions do not name the option.
class tWordReader {
 public:
  // `verb` is null for the words before the verb.
  tWordReader(const tGrammar& grammar, const tVerbRow* verb, tArguments& arguments)
      : grammar_(grammar),
        verb_(verb),
        options_(grammar.optionsOfEveryVerb.begin(), grammar.optionsOfEveryVerb.end()),
        arguments_(arguments) {
    app_.set_help_flag();
    app_.allow_windows_style_options(false);
    app_.allow_extras();
    const std::span<const tOptionRow> further = verb == nullptr ? kProgramOptions : verb->options;
    options_.insert(options_.end(), further.begin(), further.end());
    if (verb != nullptr) {
      positionals_ = verb->positionals;
    }
    for (const tOptionRow& row : options_) {
      addOption(row);
    }
    for (const tPositionalRow& row : positionals_) {
      addPositional(row);
    }
  }

  void read(std::span<const std::string> words) {
    rejectValuesOfFlags(words);
    // CLI11 reads the words from the end of a vector.
    app_.parse(std::vector<std::string>(words.rbegin(), words.rend()));
    rejectExtras();
    std::ranges::for_each(options_, [this](const tOptionRow& row) { read(row); });
    std::ranges::for_each(positionals_, [this](const tPositionalRow& row) { read(row); });
  }

 private:
  void addOption(const tOptionRow& row) {
    if (row.isFlag()) {
      app_.add_flag(std::string(row.name));
      return;
    }
    app_.add_option(std::string(row.name))
        ->expected(0, 1)
        ->default_str(std::string(kMissingValue))
        ->allow_extra_args(false)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
  }

  void addPositional(const tPositionalRow& row) {
    CLI::Option* const option = app_.add_option(std::string(row.name));
    if (row.repeatable) {
      option->allow_extra_args()->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
    }
  }

  [[noreturn]] void reject(const std::string& fault) const {
    throw tUsageError(fault, verb_ == nullptr ? helpAdvice(grammar_, "", "the verbs")
                                              : "Usage: " + synopsis(grammar_, *verb_));
  }

  [[noreturn]] void rejectOption(std::string_view name) const {
    std::vector<std::string_view> names;
    std::ranges::transform(options_, std::back_inserter(names), &tOptionRow::name);
    throw tUsageError("unknown option " + inQuotes(name),
                      helpAdvice(grammar_, verb_ == nullptr ? "" : verb_->name, "the options"),
                      suggest(name, names));
  }

  void rejectValuesOfFlags(std::span<const std::string> words) const {
    for (const std::string& word : words) {
      if (word == kEndOfOptions) {
        return;
      }
      const std::string_view name = std::string_view(word).substr(0, word.find('='));
      const auto row = std::ranges::find(options_, name, &tOptionRow::name);
      if (name.size() != word.size() && row != options_.end() && row->isFlag()) {
        reject(std::string(name) + " takes no value");
      }
    }
  }

  // Rejects words that match no row. CLI11 leaves the end-of-options mark among the remaining ones.
  void rejectExtras() const {
    std::vector<std::string> extras = app_.remaining();
    if (const auto end = std::ranges::find(extras, kEndOfOptions); end != extras.end()) {
      extras.erase(end);
    }
    for (const std::string& word : extras) {
      if (word.size() > 1 && word.front() == '-' && word != kEndOfOptions) {
        rejectOption(std::string_view(word).substr(0, word.find('=')));
      }
      reject("unexpected argument " + inQuotes(word));
    }
  }

  void read(const tOptionRow& row) {
    const CLI::Option& option = *app_.get_option(std::string(row.name));
    const std::string name(row.name);
    if (option.count() == 0) {
      if (row.required) {
        reject(name + " is missing");
      }
      return;
    }
    rejectSecondOfAChoice(row);
    if (row.isFlag()) {
      arguments_.add(name, "true");
      return;
    }
    if (option.count() > 1 && !row.repeatable) {
      reject(name + " is given twice");
    }
    for (const std::string& value : option.results()) {
      if (value == kMissingValue) {
        reject("the value of " + name + " is missing");
      }
      arguments_.add(name, value);
    }
  }

  void rejectSecondOfAChoice(const tOptionRow& row) const {
    for (const tOptionRow& other : options_) {
      if (other.name != row.name && !row.choice.empty() && other.choice == row.choice &&
          arguments_.has(other.name)) {
        reject(std::string(other.name).append(" and ").append(row.name) +
               " cannot be used together");
      }
    }
  }

  void read(const tPositionalRow& row) {
    const CLI::Option& option = *app_.get_option(std::string(row.name));
    if (option.count() == 0 && row.required) {
      reject(alternativesIn(row.valueName) + " is missing");
    }
    for (const std::string& word : option.results()) {
      arguments_.add(row.name, word);
    }
  }

  const tGrammar& grammar_;
  const tVerbRow* verb_;
  std::vector<tOptionRow> options_;
  std::span<const tPositionalRow> positionals_;
  tArguments& arguments_;
  CLI::App app_;
};

// Moves the words after "--" to the arguments of a verb that runs a program.
void takeProgram(const tGrammar& grammar, const tVerbRow& verb, std::vector<std::string>& words,
                 tArguments& arguments) {
  const auto mark = std::ranges::find(words, kEndOfOptions);
  if (verb.program == nullptr || mark == words.end()) {
    return;
  }
  if (mark + 1 == words.end()) {
    throw tUsageError("the program after -- is missing", "Usage: " + synopsis(grammar, verb));
  }
  for (auto word = mark + 1; word != words.end(); ++word) {
    arguments.add(verb.program->name, *word);
  }
  words.erase(mark, words.end());
}

tArguments helpOn(const tGrammar& grammar, const tSplitWords& words) {
  tArguments arguments(knownVerb(grammar, kHelpVerb));
  if (words.hasVerb) {
    arguments.add(kHelpTopic, words.verb);
  }
  return arguments;
}

}  // namespace

const tVerbRow& knownVerb(const tGrammar& grammar, std::string_view name) {
  if (const tVerbGroupRow* const group = grammar.findGroup(name)) {
    rejectGroup(grammar, *group);
  }
  const tVerbRow* const verb = grammar.findVerb(name);
  if (verb == nullptr) {
    std::vector<std::string_view> names;
    std::ranges::transform(grammar.verbs, std::back_inserter(names), &tVerbRow::name);
    throw tUsageError("unknown verb " + inQuotes(name), helpAdvice(grammar, "", "the verbs"),
                      suggest(name, names));
  }
  return *verb;
}

tArguments parseArguments(const tGrammar& grammar, tCommandWords words) {
  tSplitWords parts = split(grammar, words);
  const bool isHelp = requestsHelp(parts.before) || requestsHelp(parts.after);
  if (isHelp && (!parts.hasVerb || grammar.findGroup(parts.verb) != nullptr)) {
    return helpOn(grammar, parts);
  }
  const tVerbRow* const verb = parts.hasVerb ? &knownVerb(grammar, parts.verb) : nullptr;
  if (isHelp) {
    return helpOn(grammar, parts);
  }
  if (contains(parts.before, kVersionOption.name)) {
    return tArguments(kVersionVerb);
  }
  tArguments arguments(verb == nullptr ? kVersionVerb : *verb);
  tWordReader(grammar, nullptr, arguments).read(parts.before);
  if (verb == nullptr) {
    rejectWithoutVerb(grammar);
  }
  takeProgram(grammar, *verb, parts.after, arguments);
  tWordReader(grammar, verb, arguments).read(parts.after);
  return arguments;
}

bool hasOption(tCommandWords words, std::string_view name) noexcept {
  return contains(words, name);
}

std::string_view verbIn(const tGrammar& grammar, tCommandWords words) noexcept {
  const tVerbRow* const verb = grammar.findVerb(split(grammar, words).verb);
  return verb == nullptr ? std::string_view{} : verb->name;
}

}  // namespace nCommandLine
