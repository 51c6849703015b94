#include "quenra_version.h"
#include "tools/quenra/grammar/generatedtexts.h"

namespace nCommandLine {
namespace {

constexpr std::string_view kDescription =
    "quenra shows the controller of a PXI chassis as aligned tables or as JSON. Only the verbs "
    "set, route connect and update change the controller. quenra also inspects and builds firmware "
    "images. Results are printed on standard output; failures and warnings are printed on standard "
    "error, each with its code, its constant and advice. With --json, standard output is exactly "
    "one JSON document, also after a failure.";
constexpr std::string_view kNoColour =
    "If it is set and not empty, output on a terminal has no styles.";

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

std::string synopses(const tGrammar& grammar) {
  std::string text;
  for (const tVerbRow& verb : grammar.verbs) {
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

std::string verbSections(const tGrammar& grammar) {
  std::string text;
  for (const tVerbRow& verb : grammar.verbs) {
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

std::string examples(const tGrammar& grammar) {
  std::string text;
  for (const tVerbRow& verb : grammar.verbs) {
    for (const tExampleRow& example : verb.examples) {
      text += item(roffBold("quenra " + std::string(example.command)), example.effect);
    }
  }
  return text;
}

std::string nameLine(const tGrammar& grammar) {
  return "quenra \\- " + roffText(grammar.purpose) + "\n";
}

std::string escaped(char character) {
  switch (character) {
    case '\\':
      return "\\e";
    case '-':
      return "\\-";
    case '\'':
      return "\\(aq";
    case '`':
      return "\\(ga";
    case '^':
      return "\\(ha";
    case '~':
      return "\\(ti";
    default:
      return {character};
  }
}

}  // namespace

std::string roffText(std::string_view text) {
  // Roff reads a line that begins with a full stop as a request.
  std::string result = text.starts_with('.') ? "\\&" : "";
  for (const char character : text) {
    result += escaped(character);
  }
  return result;
}

std::string roffBold(std::string_view text) {
  return "\\fB" + roffText(text) + "\\fR";
}

std::string roffItalic(std::string_view text) {
  return "\\fI" + roffText(text) + "\\fR";
}

std::string roffSentences(std::string_view text) {
  constexpr std::string_view kBetween = ". ";
  std::string result;
  for (size_t end = text.find(kBetween); end != text.npos; end = text.find(kBetween)) {
    result += roffText(text.substr(0, end + 1)) + "\n";
    text.remove_prefix(end + kBetween.size());
  }
  return result + roffText(text) + "\n";
}

std::string manualPage(const tGrammar& grammar) {
  return "."
         R"(\" Printed by `quenra help --manual`.)"
         "\n"
         R"(.TH QUENRA 1 "" "quenra )" QUENRA_VERSION R"(" "User Commands")"
         "\n" +
         heading("NAME") + nameLine(grammar) + heading("SYNOPSIS") + synopses(grammar) +
         heading("DESCRIPTION") + roffSentences(kDescription) + heading("VERBS") +
         verbSections(grammar) + heading("OPTIONS OF EVERY VERB") +
         optionItems(kOptionsOfEveryVerb) + heading("EXIT STATUS") + exitCodes() +
         heading("ENVIRONMENT") + item(roffBold("NO_COLOR"), kNoColour) + heading("EXAMPLES") +
         examples(grammar);
}

}  // namespace nCommandLine
