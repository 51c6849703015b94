#include "tools/commandline/grammar.h"

#include <algorithm>

#include "tools/commandline/argumenttext.h"
#include "tools/commandline/utf8text.h"

namespace nCommandLine {
namespace {

std::string unstyled(std::string_view text) {
  return std::string(text);
}

constexpr tSynopsisStyle kUnstyled{unstyled, unstyled};

std::string positionals(const tVerbRow& verb, const tSynopsisStyle& style) {
  std::string text;
  for (const tPositionalRow& row : verb.positionals) {
    const std::string word = style.placeholder(row.valueName) + (row.repeatable ? "..." : "");
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

std::string program(const tVerbRow& verb, const tSynopsisStyle& style) {
  return verb.program == nullptr
             ? ""
             : " [" + style.typed("--") + " " + style.placeholder(verb.program->valueName) + "]";
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

std::vector<tOfferedWord> tGrammar::verbWords() const {
  std::vector<tOfferedWord> words;
  for (const tVerbRow& verb : verbs) {
    const std::string_view first = verb.name.substr(0, verb.name.find(' '));
    const tVerbGroupRow* const group = findGroup(first);
    if (words.empty() || words.back().word != first) {
      words.push_back({first, group == nullptr ? verb.summary : group->summary});
    }
  }
  return words;
}

std::vector<tOfferedWord> tGrammar::actionWords(std::string_view group) const {
  std::vector<tOfferedWord> words;
  for (const tVerbRow& verb : verbs) {
    if (const std::string_view action = verb.actionIn(group); !action.empty()) {
      words.push_back({action, verb.summary});
    }
  }
  return words;
}

std::string optionWithValue(const tOptionRow& option, const tSynopsisStyle& style) {
  const std::string name = style.typed(option.name);
  return option.isFlag() ? name : name + " " + style.placeholder(option.valueName);
}

std::string optionWithValue(const tOptionRow& option) {
  return optionWithValue(option, kUnstyled);
}

std::string synopsis(const tGrammar& grammar, const tVerbRow& verb, const tSynopsisStyle& style) {
  return style.typed(std::string(grammar.program).append(" ").append(verb.name)) +
         positionals(verb, style) + options(verb, style) + program(verb, style);
}

std::string synopsis(const tGrammar& grammar, const tVerbRow& verb) {
  return synopsis(grammar, verb, kUnstyled);
}

void printFault(std::ostream& stream, std::string_view program, std::string_view fault) {
  stream << program << ": " << printableText(fault) << '\n';
}

void printRemedy(std::ostream& stream, std::span<const std::string> suggestions,
                 std::string_view advice) {
  if (!suggestions.empty()) {
    stream << "  Did you mean " << alternatives(suggestions) << "?\n";
  }
  if (!advice.empty()) {
    stream << "  " << advice << '\n';
  }
}

void requireWord(std::string_view kind, const std::string& word, const tWordSet& set) {
  std::vector<std::string_view> known;
  for (const tOfferedWord& offered : set.words()) {
    known.push_back(offered.word);
  }
  if (std::ranges::find(known, word) == known.end()) {
    throw tUsageError(
        "unknown " + std::string(kind) + " '" + word + "'",
        "Use " + alternatives(std::vector<std::string>(known.begin(), known.end())) + ".",
        suggest(word, known));
  }
}

}  // namespace nCommandLine
