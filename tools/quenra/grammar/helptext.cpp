#include <cstddef>

#include "tools/quenra/grammar/generatedtexts.h"
#include "tools/quenra/grammar/parser.h"

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

std::string exampleItem(const tExampleRow& example) {
  return item("  quenra " + std::string(example.command), example.effect, 44, 2);
}

std::string optionItems(std::span<const tOptionRow> options) {
  std::string text;
  for (const tOptionRow& row : options) {
    const std::string shortForm = row.name == kHelpOption.name ? "-h," : "";
    text += termItem(shortForm + optionWithValue(row), row.description);
  }
  return text;
}

std::string exitCodes() {
  std::string text = "\nExit codes:\n";
  for (const tExitCodeRow& row : kExitCodes) {
    text.append("  ").append(std::to_string(exitNumber(row.code)));
    text.append("  ").append(row.meaning).append("\n");
  }
  return text;
}

std::string programHelp(const tGrammar& grammar) {
  std::string text = "quenra - " + std::string(grammar.purpose) +
                     "\nUsage: quenra [OPTIONS] [VERB]\n\nOptions:\n" +
                     optionItems(kOptionsOfTheProgram) + "\nVerbs:\n";
  for (const tVerbRow& verb : grammar.verbs) {
    text += termItem(verb.name, verb.summary);
  }
  text += "\nExamples:\n";
  for (const tVerbRow& verb : grammar.verbs) {
    text += exampleItem(verb.examples.front());
  }
  return text + exitCodes();
}

std::string verbHelp(const tVerbRow& verb) {
  std::string text = std::string(verb.summary) + "\nUsage: " + synopsis(verb) + "\n";
  text += verb.positionals.empty() ? "" : "\nPositionals:\n";
  for (const tPositionalRow& row : verb.positionals) {
    text += termItem(row.valueName, row.description);
  }
  text += "\nOptions:\n" + optionItems(kOptionsOfEveryVerb) + optionItems(verb.options);
  text += "\nExamples:\n";
  for (const tExampleRow& example : verb.examples) {
    text += exampleItem(example);
  }
  return text + exitCodes();
}

// The verbs of a group, each with its synopsis.
std::string groupHelp(const tGrammar& grammar, const tVerbGroupRow& group) {
  std::string text = std::string(group.summary) + "\n";
  for (const tVerbRow& verb : grammar.verbs) {
    if (!verb.actionIn(group.name).empty()) {
      text += "\n  " + synopsis(verb) + "\n      " + std::string(verb.summary) + "\n";
    }
  }
  return text;
}

}  // namespace

std::string helpText(const tGrammar& grammar, std::string_view verb) {
  if (const tVerbGroupRow* const group = grammar.findGroup(verb)) {
    return groupHelp(grammar, *group);
  }
  return verb.empty() ? programHelp(grammar) : verbHelp(knownVerb(grammar, verb));
}

}  // namespace nCommandLine
