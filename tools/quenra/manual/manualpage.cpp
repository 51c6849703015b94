#include "tools/quenra/manual/manualpage.h"

#include "quenra_version.h"
#include "tools/quenra/grammar/synopsis.h"
#include "tools/quenra/grammar/verbtable.h"
#include "tools/quenra/manual/roff.h"

namespace nCommandLine {
namespace {

constexpr std::string_view kDescription =
    "quenra shows the controller of a PXI chassis: to people as aligned tables, to scripts as "
    "JSON. It changes something of it with the verbs set, route connect and update only. It also "
    "looks into firmware images and makes them. Answers go to the standard output; failures and "
    "warnings go to the standard error stream, each with its code, its constant and advice. With "
    "--json the "
    "standard output holds exactly one JSON document, whatever happens.";
constexpr std::string_view kNoColour =
    "When it is set and not empty, terminals are shown plain text without styles.";

constexpr tSynopsisStyle kStyle{roffBold, roffItalic};

std::string heading(std::string_view text) {
  return ".SH " + std::string(text) + "\n";
}

// A tagged paragraph: a term with its indented description.
std::string item(const std::string& term, std::string_view text) {
  return ".TP\n" + term + "\n" + roffText(text) + "\n";
}

std::string sentence(std::string_view text) {
  return std::string(text) + ".";
}

std::string synopses() {
  std::string text;
  for (const tVerbRow& verb : kVerbs) {
    text += synopsis(verb, kStyle) + "\n.br\n";
  }
  return text + roffBold("quenra " + std::string(kVersionOption.name)) + "\n";
}

std::string optionItems(std::span<const tOptionRow> options) {
  std::string text;
  for (const tOptionRow& row : options) {
    text += item(optionWithValue(row, kStyle), sentence(row.description));
  }
  return text;
}

std::string verbSection(const tVerbRow& verb) {
  std::string text = ".SS " + roffText(verb.name) + "\n" + roffSentences(sentence(verb.summary));
  if (!verb.details.empty()) {
    text += roffSentences(verb.details);
  }
  for (const tPositionalRow& row : verb.positionals) {
    text += item(roffItalic(row.valueName), sentence(row.description));
  }
  return text + optionItems(verb.options);
}

std::string verbSections() {
  std::string text;
  for (const tVerbRow& verb : kVerbs) {
    text += verbSection(verb);
  }
  return text;
}

std::string exitCodes() {
  std::string text;
  for (const tExitCodeRow& row : kExitCodes) {
    text += item(roffBold(std::to_string(exitNumber(row.code))), row.meaning);
  }
  return text;
}

std::string examples() {
  std::string text;
  for (const tVerbRow& verb : kVerbs) {
    for (const tExampleRow& example : verb.examples) {
      text += item(roffBold("quenra " + std::string(example.command)), example.effect);
    }
  }
  return text;
}

std::string nameLine() {
  return "quenra \\- " + roffText(kProgramPurpose) + "\n";
}

}  // namespace

std::string manualPage() {
  return "."
         R"(\" Printed by `quenra help --manual`.)"
         "\n"
         R"(.TH QUENRA 1 "" "quenra )" QUENRA_VERSION R"(" "User Commands")"
         "\n" +
         heading("NAME") + nameLine() + heading("SYNOPSIS") + synopses() + heading("DESCRIPTION") +
         roffSentences(kDescription) + heading("VERBS") + verbSections() +
         heading("OPTIONS OF EVERY VERB") + optionItems(kOptionsOfEveryVerb) +
         heading("EXIT STATUS") + exitCodes() + heading("ENVIRONMENT") +
         item(roffBold("NO_COLOR"), kNoColour) + heading("EXAMPLES") + examples();
}

}  // namespace nCommandLine
