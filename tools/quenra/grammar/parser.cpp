#include "tools/quenra/grammar/parser.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <iterator>
#include <memory>
#include <vector>

#include "tools/quenra/catalogue/suggestion.h"
#include "tools/quenra/grammar/helpfooter.h"
#include "tools/quenra/grammar/parsername.h"
#include "tools/quenra/grammar/synopsis.h"
#include "tools/quenra/grammar/thelpformatter.h"
#include "tools/quenra/grammar/verbtable.h"
#include "tools/quenra/grammar/words.h"
#include "tools/quenra/tcommanderror.h"

namespace nCommandLine {
namespace {

[[noreturn]] void refuse(const std::string& what, std::string_view verb,
                         std::vector<std::string> suggestions = {}) {
  std::string advice = "'quenra ";
  advice.append(verb).append(verb.empty() ? "--help' tells how." : " --help' tells how.");
  throw tCommandError(what, std::move(advice), std::move(suggestions));
}

// What is to be done with "firmware": the group and each of its actions.
[[noreturn]] void refuseGroup(const tVerbGroupRow& group) {
  std::vector<std::string> verbs;
  for (const tVerbRow& verb : kVerbs) {
    if (!actionIn(group.name, verb).empty()) {
      verbs.emplace_back(verb.name);
    }
  }
  refuse("'" + std::string(group.name) + "' needs to be told what to do", group.name,
         std::move(verbs));
}

const tVerbRow& knownVerb(std::string_view name) {
  if (const tVerbGroupRow* const group = findVerbGroup(name)) {
    refuseGroup(*group);
  }
  const tVerbRow* const verb = findVerb(name);
  if (verb == nullptr) {
    std::vector<std::string_view> names;
    std::ranges::transform(kVerbs, std::back_inserter(names), &tVerbRow::name);
    refuse("there is no verb '" + std::string(name) + "'", "", suggest(name, names));
  }
  return *verb;
}

// "info, get or help"
std::string verbAlternatives() {
  std::string text;
  for (const tVerbRow& verb : kVerbs) {
    text.append(&verb == &kVerbs.front() ? "" : &verb == &kVerbs.back() ? " or " : ", ");
    text += verb.name;
  }
  return text;
}

std::string programDescription() {
  return "quenra - " + std::string(kProgramPurpose);
}

// The rows as CLI11 knows them.
class tGrammar {
 public:
  tGrammar() : program_(programDescription(), "quenra") {
    const auto formatter = std::make_shared<tHelpFormatter>();
    formatter->label("SUBCOMMAND", "VERB");
    program_.formatter(formatter);
    prepare(program_, helpFooter());
    program_.set_version_flag(std::string(kVersionOption.name), "",
                              std::string(kVersionOption.description));
    program_.require_subcommand(0, 1);
    for (const tVerbRow& verb : kVerbs) {
      addVerb(verb);
    }
  }

  tArguments parse(std::span<const std::string> words) {
    try {
      // CLI11 takes the words from the end of a vector.
      program_.parse(std::vector<std::string>(words.rbegin(), words.rend()));
    } catch (const CLI::CallForHelp&) {
      return helpOnWhatWasParsed();
    } catch (const CLI::CallForVersion&) {
      return tArguments(kVersionAnswer);
    }
    return chosen();
  }

  std::string help(const tVerbRow& verb) {
    return program_.get_subcommand(parserName(verb))->help("quenra");
  }
  std::string help() { return program_.help(); }

 private:
  static void prepare(CLI::App& app, std::string footer) {
    // The same words mean the same on every system.
    app.allow_windows_style_options(false);
    app.set_help_flag("-h," + std::string(kHelpOption.name), std::string(kHelpOption.description));
    addOption(app, kJsonOption);
    app.footer(std::move(footer));
  }

  void addVerb(const tVerbRow& verb) {
    CLI::App& app = *program_.add_subcommand(parserName(verb), std::string(verb.summary));
    app.group("Verbs");
    prepare(app, helpFooter(verb));
    for (const tPositionalRow& row : verb.positionals) {
      app.add_option(std::string(row.name))
          ->description(std::string(row.description))
          ->type_name(std::string(row.valueName))
          ->required(row.required);
    }
    for (const tOptionRow& row : verb.options) {
      addOption(app, row);
    }
    excludeWithinChoices(app, verb.options);
  }

  static void addOption(CLI::App& app, const tOptionRow& row) {
    if (row.valueName.empty()) {
      app.add_flag(std::string(row.name))
          ->description(std::string(row.description))
          ->disable_flag_override();
    } else {
      app.add_option(std::string(row.name))
          ->description(std::string(row.description))
          ->type_name(std::string(row.valueName))
          ->required(row.required);
    }
  }

  static void excludeWithinChoices(CLI::App& app, std::span<const tOptionRow> options) {
    for (const tOptionRow& row : options) {
      for (const tOptionRow& other : options) {
        if (&row != &other && !row.choice.empty() && row.choice == other.choice) {
          app.get_option(std::string(row.name))->excludes(app.get_option(std::string(other.name)));
        }
      }
    }
  }

  tArguments helpOnWhatWasParsed() {
    tArguments arguments(kHelpAnswer);
    const auto parsed = program_.get_subcommands();
    if (!parsed.empty()) {
      arguments.give(nWords::kVerb,
                     std::string(verbOfParserName(parsed.front()->get_name())->name));
    }
    return arguments;
  }

  tArguments chosen() {
    const auto parsed = program_.get_subcommands();
    if (parsed.empty()) {
      refuse("say what to do: " + verbAlternatives(), "");
    }
    const CLI::App& app = *parsed.front();
    const tVerbRow& verb = *verbOfParserName(app.get_name());
    tArguments arguments(verb);
    for (const tPositionalRow& row : verb.positionals) {
      take(app, row.name, arguments);
    }
    for (const tOptionRow& row : verb.options) {
      take(app, row.name, arguments);
    }
    return arguments;
  }

  static void take(const CLI::App& app, std::string_view name, tArguments& arguments) {
    const CLI::Option& option = *app.get_option(std::string(name));
    if (option.count() > 0) {
      arguments.give(name, option.results().front());
    }
  }

  CLI::App program_;
};

// The verb among the words, and the words with the verb in one piece, as the parser takes them.
struct tSpokenWords {
  std::string verb;  // as the table has it, if it does; empty when there is none
  std::vector<std::string> words;
};

tSpokenWords spokenWords(std::span<const char* const> words) {
  tSpokenWords spoken;
  bool isComplete = false;
  for (const std::string_view word : words) {
    if (isComplete || word.starts_with('-')) {
      spoken.words.emplace_back(word);
      continue;
    }
    spoken.verb.append(spoken.verb.empty() ? "" : " ").append(word);
    isComplete = findVerbGroup(spoken.verb) == nullptr;
    if (isComplete) {
      const tVerbRow* const verb = findVerb(spoken.verb);
      spoken.words.push_back(verb == nullptr ? spoken.verb : parserName(*verb));
    }
  }
  return spoken;
}

bool wantsHelp(std::span<const std::string> words) {
  return std::ranges::any_of(
      words, [](const std::string& word) { return word == nWords::kHelp || word == "-h"; });
}

// The verbs of a group, each with its synopsis.
std::string groupHelp(const tVerbGroupRow& group) {
  std::string text = std::string(group.summary) + "\n";
  for (const tVerbRow& verb : kVerbs) {
    if (!actionIn(group.name, verb).empty()) {
      text += "\n  " + synopsis(verb) + "\n      " + std::string(verb.summary) + "\n";
    }
  }
  return text;
}

}  // namespace

tArguments parseArguments(std::span<const char* const> words) {
  const tSpokenWords spoken = spokenWords(words);
  if (findVerbGroup(spoken.verb) != nullptr && wantsHelp(spoken.words)) {
    tArguments arguments(kHelpAnswer);
    arguments.give(nWords::kVerb, spoken.verb);
    return arguments;
  }
  if (!spoken.verb.empty()) {
    static_cast<void>(knownVerb(spoken.verb));
  }
  try {
    return tGrammar().parse(spoken.words);
  } catch (const CLI::Error& error) {
    refuse(error.what(), spoken.verb);
  }
}

std::string helpText(std::string_view verb) {
  if (const tVerbGroupRow* const group = findVerbGroup(verb)) {
    return groupHelp(*group);
  }
  return verb.empty() ? tGrammar().help() : tGrammar().help(knownVerb(verb));
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
