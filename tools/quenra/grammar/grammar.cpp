#include "tools/quenra/grammar/grammar.h"

#include <algorithm>

namespace nCommandLine {
namespace {

std::string unstyled(std::string_view text) {
  return std::string(text);
}

constexpr tSynopsisStyle kUnstyled{unstyled, unstyled};

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

std::string_view tVerbRow::actionIn(std::string_view group) const noexcept {
  const bool isInGroup =
      name.size() > group.size() && name.starts_with(group) && name[group.size()] == ' ';
  return isInGroup ? name.substr(group.size() + 1) : std::string_view{};
}

const tVerbRow* tGrammar::findVerb(std::string_view name) const noexcept {
  const auto verb = std::ranges::find(verbs, name, &tVerbRow::name);
  return verb == verbs.end() ? nullptr : &*verb;
}

const tVerbGroupRow* tGrammar::findGroup(std::string_view name) const noexcept {
  const auto group = std::ranges::find(groups, name, &tVerbGroupRow::name);
  return group == groups.end() ? nullptr : &*group;
}

std::string optionWithValue(const tOptionRow& option, const tSynopsisStyle& style) {
  const std::string name = style.typed(option.name);
  return option.isFlag() ? name : name + " " + style.placeholder(option.valueName);
}

std::string optionWithValue(const tOptionRow& option) {
  return optionWithValue(option, kUnstyled);
}

std::string synopsis(const tVerbRow& verb, const tSynopsisStyle& style) {
  return style.typed("quenra " + std::string(verb.name)) + positionals(verb, style) +
         options(verb, style);
}

std::string synopsis(const tVerbRow& verb) {
  return synopsis(verb, kUnstyled);
}

}  // namespace nCommandLine
