#include "tools/quenra/grammar/helptext.h"

#include <CLI/CLI.hpp>
#include <memory>

#include "tools/quenra/grammar/helpfooter.h"
#include "tools/quenra/grammar/parser.h"
#include "tools/quenra/grammar/parsername.h"
#include "tools/quenra/grammar/synopsis.h"
#include "tools/quenra/grammar/thelpformatter.h"
#include "tools/quenra/grammar/verbtable.h"
#include "tools/quenra/grammar/words.h"

namespace nCommandLine {
namespace {

std::string programDescription() {
  return "quenra - " + std::string(kProgramPurpose);
}

// Builds a CLI11 application from the rows; CLI11 lays out the help.
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

  std::string help(const tVerbRow& verb) {
    return program_.get_subcommand(parserName(verb))->help("quenra");
  }
  std::string help() { return program_.help(); }

 private:
  static void prepare(CLI::App& app, std::string footer) {
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
          ->type_name(std::string(row.valueName));
    }
    for (const tOptionRow& row : verb.options) {
      addOption(app, row);
    }
  }

  static void addOption(CLI::App& app, const tOptionRow& row) {
    if (row.valueName.empty()) {
      app.add_flag(std::string(row.name))->description(std::string(row.description));
    } else {
      app.add_option(std::string(row.name))
          ->description(std::string(row.description))
          ->type_name(std::string(row.valueName));
    }
  }

  CLI::App program_;
};

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

std::string helpText(std::string_view verb) {
  if (const tVerbGroupRow* const group = findVerbGroup(verb)) {
    return groupHelp(*group);
  }
  return verb.empty() ? tGrammar().help() : tGrammar().help(knownVerb(verb));
}

}  // namespace nCommandLine
