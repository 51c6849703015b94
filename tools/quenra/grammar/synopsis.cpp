#include "tools/quenra/grammar/synopsis.h"

namespace nCommandLine {
namespace {

std::string asItIs(std::string_view text) {
  return std::string(text);
}

std::string positionals(const tVerbRow& verb, const tSynopsisStyle& style) {
  std::string text;
  for (const tPositionalRow& row : verb.positionals) {
    const std::string word = style.placeholder(row.valueName);
    text += row.required ? " " + word : " [" + word + "]";
  }
  return text;
}

// Options of one choice are adjacent in the table and share their brackets.
std::string options(const tVerbRow& verb, const tSynopsisStyle& style) {
  std::string text;
  std::string_view openChoice;
  for (const tOptionRow& row : verb.options) {
    const std::string option = optionWithValue(row, style);
    if (!openChoice.empty() && row.choice == openChoice) {
      text.back() = '|';
      text += option + "]";
    } else {
      text += row.required ? " " + option : " [" + option + "]";
    }
    openChoice = row.choice;
  }
  return text;
}

}  // namespace

std::string optionWithValue(const tOptionRow& option, const tSynopsisStyle& style) {
  const std::string name = style.typed(option.name);
  return option.valueName.empty() ? name : name + " " + style.placeholder(option.valueName);
}

std::string synopsis(const tVerbRow& verb, const tSynopsisStyle& style) {
  return style.typed("quenra " + std::string(verb.name)) + positionals(verb, style) +
         options(verb, style);
}

std::string synopsis(const tVerbRow& verb) {
  return synopsis(verb, {asItIs, asItIs});
}

}  // namespace nCommandLine
