#include "tools/quenra/grammar/parser.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <memory>
#include <vector>

#include "tools/quenra/catalogue/suggestion.h"
#include "tools/quenra/grammar/helpfooter.h"
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

const tVerbRow& knownVerb(std::string_view name) {
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

  tArguments parse(std::span<const char* const> words) {
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
    return program_.get_subcommand(std::string(verb.name))->help("quenra");
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
    CLI::App& app = *program_.add_subcommand(std::string(verb.name), std::string(verb.summary));
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
          ->type_name(std::string(row.valueName));
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
      arguments.give(nWords::kVerb, parsed.front()->get_name());
    }
    return arguments;
  }

  tArguments chosen() {
    const auto parsed = program_.get_subcommands();
    if (parsed.empty()) {
      refuse("say what to do: " + verbAlternatives(), "");
    }
    const CLI::App& app = *parsed.front();
    const tVerbRow& verb = knownVerb(app.get_name());
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

std::string_view firstWord(std::span<const char* const> words) noexcept {
  for (const std::string_view word : words) {
    if (!word.starts_with('-')) {
      return word;
    }
  }
  return {};
}

}  // namespace

tArguments parseArguments(std::span<const char* const> words) {
  const std::string word(firstWord(words));
  if (!word.empty()) {
    static_cast<void>(knownVerb(word));
  }
  try {
    return tGrammar().parse(words);
  } catch (const CLI::Error& error) {
    refuse(error.what(), word);
  }
}

std::string helpText(std::string_view verb) {
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
  const tVerbRow* const verb = findVerb(firstWord(words));
  return verb == nullptr ? std::string_view{} : verb->name;
}

}  // namespace nCommandLine
