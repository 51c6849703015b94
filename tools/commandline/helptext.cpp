#include <algorithm>
#include <cstddef>

#include "tools/commandline/generatedtexts.h"

namespace nCommandLine {
namespace {

// A term and its description from a column on; on a line of its own if the term leaves no gap.
std::string item(std::string term, std::string_view description, size_t column, size_t gap) {
  if (term.size() + gap > column) {
    term.append("\n").append(column, ' ');
  } else {
    term.resize(column, ' ');
  }
  return term.append(description).append("\n");
}

std::string termItem(std::string_view term, std::string_view description) {
  return item("  " + std::string(term), description, 30, 1);
}

std::string exampleItem(const tGrammar& grammar, const tExampleRow& example) {
  return item("  " + std::string(grammar.program).append(" ").append(example.command),
              example.effect, 44, 2);
}

std::string optionItems(std::span<const tOptionRow> options) {
  std::string text;
  for (const tOptionRow& row : options) {
    const std::string shortForm = row.name == kHelpOption.name ? "-h," : "";
    text += termItem(shortForm + optionWithValue(row), row.description);
  }
  return text;
}

std::string exitCodes(const tGrammar& grammar) {
  std::string text = "\nExit codes:\n";
  for (const tExitCodeRow& row : grammar.exitCodes) {
    text.append("  ").append(std::to_string(row.code));
    text.append("  ").append(row.meaning).append("\n");
  }
  return text;
}

std::string programHelp(const tGrammar& grammar) {
  const std::string program(grammar.program);
  std::string text = program + " - " + std::string(grammar.purpose) + "\nUsage: " + program +
                     " [OPTIONS] [VERB]\n\nOptions:\n" + optionItems(grammar.optionsOfEveryVerb) +
                     optionItems(kProgramOptions) + "\nVerbs:\n";
  for (const tVerbRow& verb : grammar.verbs) {
    text += termItem(verb.name, verb.summary);
  }
  text += "\nExamples:\n";
  for (const tVerbRow& verb : grammar.verbs) {
    text += exampleItem(grammar, verb.examples.front());
  }
  return text + exitCodes(grammar);
}

std::string verbHelp(const tGrammar& grammar, const tVerbRow& verb) {
  std::string text = std::string(verb.summary) + "\nUsage: " + synopsis(grammar, verb) + "\n";
  text += verb.positionals.empty() ? "" : "\nPositionals:\n";
  for (const tPositionalRow& row : verb.positionals) {
    text += termItem(row.valueName, row.description);
  }
  text += "\nOptions:\n" + optionItems(grammar.optionsOfEveryVerb) + optionItems(verb.options);
  if (verb.program != nullptr) {
    text += termItem("-- " + std::string(verb.program->valueName), verb.program->description);
  }
  text += "\nExamples:\n";
  for (const tExampleRow& example : verb.examples) {
    text += exampleItem(grammar, example);
  }
  return text + exitCodes(grammar);
}

// The verbs of a group, each with its synopsis.
std::string groupHelp(const tGrammar& grammar, const tVerbGroupRow& group) {
  std::string text = std::string(group.summary) + "\n";
  for (const tVerbRow& verb : grammar.verbs) {
    if (!verb.actionIn(group.name).empty()) {
      text += "\n  " + synopsis(grammar, verb) + "\n      " + std::string(verb.summary) + "\n";
    }
  }
  return text;
}

}  // namespace

std::string helpText(const tGrammar& grammar, std::string_view verb) {
  if (const tVerbGroupRow* const group = grammar.findGroup(verb)) {
    return groupHelp(grammar, *group);
  }
  return verb.empty() ? programHelp(grammar) : verbHelp(grammar, knownVerb(grammar, verb));
}

std::string requestedHelp(const tGrammar& grammar, const tArguments& arguments) {
  if (!arguments.has(kHelpManual)) {
    const std::string action = arguments.text(kHelpAction);
    return helpText(grammar, arguments.text(kHelpTopic) + (action.empty() ? "" : " " + action));
  }
  if (arguments.has(kHelpTopic)) {
    throw tUsageError("the manual page documents all verbs", "Give a verb or --manual, not both.");
  }
  return manualPage(grammar);
}

const tShellRow& requestedShell(const tArguments& arguments) {
  const std::string name = arguments.text(kCompletionShell);
  requireWord("shell", name, kShellWords);
  return *std::ranges::find(kShells, name, &tShellRow::name);
}

constinit const tWordSet kShellWords{"shells", [] {
                                       std::vector<tOfferedWord> words;
                                       for (const tShellRow& shell : kShells) {
                                         words.push_back({shell.name, shell.meaning});
                                       }
                                       return words;
                                     }};

}  // namespace nCommandLine
