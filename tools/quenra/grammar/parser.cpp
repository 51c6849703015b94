#include "tools/quenra/grammar/parser.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <iterator>
#include <vector>

#include "tools/quenra/text/argumenttext.h"

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

std::string helpAdvice(std::string_view verb, std::string_view listed) {
  std::string advice = "Run 'quenra ";
  advice.append(verb).append(verb.empty() ? "" : " ").append("--help' to list ");
  return advice.append(listed) + ".";
}

[[noreturn]] void rejectGroup(const tGrammar& grammar, const tVerbGroupRow& group) {
  std::vector<std::string> verbs;
  for (const tVerbRow& verb : grammar.verbs) {
    if (!verb.actionIn(group.name).empty()) {
      verbs.push_back(inQuotes(verb.name));
    }
  }
  throw tCommandError("incomplete command: use " + alternatives(verbs),
                      helpAdvice(group.name, "the verbs"), {});
}

[[noreturn]] void rejectWithoutVerb(const tGrammar& grammar) {
  std::vector<std::string> verbs;
  std::ranges::transform(grammar.verbs, std::back_inserter(verbs),
                         [](const tVerbRow& verb) { return std::string(verb.name); });
  throw tCommandError("VERB is missing: use " + alternatives(verbs), helpAdvice("", "the verbs"),
                      {});
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

bool hasOption(std::span<const std::string> words, std::string_view name) {
  const auto end = std::ranges::find(words, kEndOfOptions);
  return std::find(words.begin(), end, name) != end;
}

bool requestsHelp(std::span<const std::string> words) {
  return hasOption(words, kHelpOption.name) || hasOption(words, kShortHelp);
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
  tWordReader(const tVerbRow* verb, std::span<const tOptionRow> always, tArguments& arguments)
      : verb_(verb), options_(always.begin(), always.end()), arguments_(arguments) {
    app_.set_help_flag();
    app_.allow_windows_style_options(false);
    app_.allow_extras();
    if (verb != nullptr) {
      options_.insert(options_.end(), verb->options.begin(), verb->options.end());
      positionals_ = verb->positionals;
    }
    for (const tOptionRow& row : options_) {
      addOption(row);
    }
    for (const tPositionalRow& row : positionals_) {
      app_.add_option(std::string(row.name));
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

  [[noreturn]] void reject(const std::string& fault) const {
    throw tCommandError(
        fault, verb_ == nullptr ? helpAdvice("", "the verbs") : "Usage: " + synopsis(*verb_), {});
  }

  [[noreturn]] void rejectOption(std::string_view name) const {
    std::vector<std::string_view> names;
    std::ranges::transform(options_, std::back_inserter(names), &tOptionRow::name);
    throw tCommandError("unknown option " + inQuotes(name),
                        helpAdvice(verb_ == nullptr ? "" : verb_->name, "the options"),
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
    } else if (option.count() > 1) {
      reject(name + " is given twice");
    } else if (option.results().front() == kMissingValue) {
      reject("the value of " + name + " is missing");
    } else {
      arguments_.add(name, option.results().front());
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
    if (option.count() != 0) {
      arguments_.add(row.name, option.results().front());
    } else if (row.required) {
      reject(alternativesIn(row.valueName) + " is missing");
    }
  }

  const tVerbRow* verb_;
  std::vector<tOptionRow> options_;
  std::span<const tPositionalRow> positionals_;
  tArguments& arguments_;
  CLI::App app_;
};

tArguments helpOn(const tGrammar& grammar, const tSplitWords& words) {
  tArguments arguments(*grammar.help);
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
    throw tCommandError("unknown verb " + inQuotes(name), helpAdvice("", "the verbs"),
                        suggest(name, names));
  }
  return *verb;
}

tArguments parseArguments(const tGrammar& grammar, tCommandWords words) {
  const tSplitWords parts = split(grammar, words);
  const bool isHelp = requestsHelp(parts.before) || requestsHelp(parts.after);
  if (isHelp && (!parts.hasVerb || grammar.findGroup(parts.verb) != nullptr)) {
    return helpOn(grammar, parts);
  }
  const tVerbRow* const verb = parts.hasVerb ? &knownVerb(grammar, parts.verb) : nullptr;
  if (isHelp) {
    return helpOn(grammar, parts);
  }
  if (hasOption(parts.before, kVersionOption.name)) {
    return tArguments(*grammar.version);
  }
  tArguments arguments(verb == nullptr ? *grammar.help : *verb);
  tWordReader(nullptr, kOptionsOfTheProgram, arguments).read(parts.before);
  if (verb == nullptr) {
    rejectWithoutVerb(grammar);
  }
  tWordReader(verb, kOptionsOfEveryVerb, arguments).read(parts.after);
  return arguments;
}

bool requestsJson(tCommandWords words) noexcept {
  for (const std::string_view word : words) {
    if (word == kJsonOption.name || word == kEndOfOptions) {
      return word == kJsonOption.name;
    }
  }
  return false;
}

std::string_view verbIn(const tGrammar& grammar, tCommandWords words) noexcept {
  const tVerbRow* const verb = grammar.findVerb(split(grammar, words).verb);
  return verb == nullptr ? std::string_view{} : verb->name;
}

}  // namespace nCommandLine
