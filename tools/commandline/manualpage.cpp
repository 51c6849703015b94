#include <algorithm>

#include "quenra_version.h"
#include "tools/commandline/generatedtexts.h"

namespace nCommandLine {
namespace {

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

std::string command(const tGrammar& grammar, std::string_view words) {
  return std::string(grammar.program).append(" ").append(words);
}

std::string synopses(const tGrammar& grammar) {
  std::string text;
  for (const tVerbRow& verb : grammar.verbs) {
    text += synopsis(grammar, verb, kStyle) + "\n.br\n";
  }
  return text + roffBold(command(grammar, kVersionOption.name)) + "\n";
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
  text += optionItems(verb.options);
  if (verb.program != nullptr) {
    text += item(roffBold("--") + " " + roffItalic(verb.program->valueName),
                 sentence(verb.program->description));
  }
  return text;
}

std::string verbSections(const tGrammar& grammar) {
  std::string text;
  for (const tVerbRow& verb : grammar.verbs) {
    text += verbSection(verb);
  }
  return text;
}

std::string exitCodes(const tGrammar& grammar) {
  std::string text;
  for (const tExitCodeRow& row : grammar.exitCodes) {
    text += item(roffBold(std::to_string(row.code)), row.meaning);
  }
  return text;
}

std::string examples(const tGrammar& grammar) {
  std::string text;
  for (const tVerbRow& verb : grammar.verbs) {
    for (const tExampleRow& example : verb.examples) {
      text += item(roffBold(command(grammar, example.command)), example.effect);
    }
  }
  return text;
}

std::string environment(const tGrammar& grammar) {
  std::string text;
  for (const tEnvironmentRow& row : grammar.environment) {
    text += item(roffBold(row.variable), row.effect);
  }
  return text.empty() ? text : heading("ENVIRONMENT") + text;
}

std::string titleLine(const tGrammar& grammar) {
  std::string title(grammar.program);
  std::ranges::transform(title, title.begin(), [](char character) {
    return character >= 'a' && character <= 'z' ? static_cast<char>(character - 'a' + 'A')
                                                : character;
  });
  return ".\\\" Printed by `" + command(grammar, "help --manual") + "`.\n.TH " + title +
         " 1 \"\" \"" + command(grammar, QUENRA_VERSION) + "\" \"User Commands\"\n";
}

std::string nameLine(const tGrammar& grammar) {
  return roffText(grammar.program) + " \\- " + roffText(grammar.purpose) + "\n";
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
  return titleLine(grammar) + heading("NAME") + nameLine(grammar) + heading("SYNOPSIS") +
         synopses(grammar) + heading("DESCRIPTION") + roffSentences(grammar.description) +
         heading("VERBS") + verbSections(grammar) + heading("OPTIONS OF EVERY VERB") +
         optionItems(grammar.optionsOfEveryVerb) + heading("EXIT STATUS") + exitCodes(grammar) +
         environment(grammar) + heading("EXAMPLES") + examples(grammar);
}

}  // namespace nCommandLine
