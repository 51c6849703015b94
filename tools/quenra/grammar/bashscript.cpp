#include <map>

#include "tools/quenra/grammar/generatedtexts.h"

namespace nCommandLine {
namespace {

constexpr std::string_view kHead =
    R"sh(# Completes the command lines of quenra in bash; printed by `quenra completion bash`.
#
#   source <(quenra completion bash)     for one session; in ~/.bashrc for all

)sh";

constexpr std::string_view kBody = R"sh(
# Removes an option that was given, and those that it excludes, from the offer.
_quenra_use() {
  local group option
  for group in "$1" "${choices[@]}"; do
    [[ " $group " == *" $1 "* ]] || continue
    for option in $group; do
      options=" $options "
      options=${options/" $option "/ }
    done
  done
}

_quenra() {
  local word=${COMP_WORDS[COMP_CWORD]} options valued choices positionals
  local current verb='' group='' ended='' option='' offered given=0 i
  local -A values
  COMPREPLY=()
  _quenra_grammar ''
  for ((i = 1; i < COMP_CWORD; ++i)); do
    current=${COMP_WORDS[i]}
    if [[ -z $ended && $current == -- ]]; then
      ended=yes
    elif [[ -z $ended && $current == -* ]]; then
      _quenra_use "$current"
      if [[ " $valued " == *" $current "* ]]; then
        option=$current
        # bash splits --option=value into three words.
        [[ ${COMP_WORDS[++i]} != = ]] || ((++i))
      fi
    elif [[ -z $verb ]]; then
      verb=$current
      _quenra_grammar "$verb"
    elif [[ -n $group ]]; then
      verb="$verb $current"
      _quenra_grammar "$verb"
    else
      ((++given))
    fi
  done
  if ((i != COMP_CWORD)); then
    # The value of an option, which is still empty at its equals sign.
    offered=${values[$option]-}
    [[ $word != = ]] || word=''
  elif [[ -z $ended && $word == -* ]] || ((given >= ${#positionals[@]})); then
    offered=$options
  else
    offered=${positionals[given]}
  fi
  mapfile -t COMPREPLY < <(compgen -W "$offered" -- "$word")
}

# Without completions of ours, such as for an image, file names are completed.
complete -o default -F _quenra quenra quenra.exe
)sh";

void appendWord(std::string& words, std::string_view word) {
  words.append(words.empty() ? "" : " ").append(word);
}

std::string variableOf(const tWordSet& set) {
  return "_quenra_" + std::string(set.name);
}

std::string wordLists(const tGrammar& grammar) {
  std::string text;
  for (const tWordSet* const set : grammar.wordSets) {
    text.append(variableOf(*set)).append("='");
    for (const tOfferedWord& offered : set->words()) {
      text.append("\n").append(offered.word);
    }
    text += "'\n";
  }
  return text;
}

std::string optionNames(std::span<const tOptionRow> always, std::span<const tOptionRow> options) {
  std::string names;
  for (const tOptionRow& row : always) {
    appendWord(names, row.name);
  }
  for (const tOptionRow& row : options) {
    appendWord(names, row.name);
  }
  return names;
}

std::string valuedOptions(std::span<const tOptionRow> options) {
  std::string names;
  for (const tOptionRow& row : options) {
    if (!row.isFlag()) {
      appendWord(names, row.name);
    }
  }
  return names;
}

// [--from]="$_quenra_terminals" for each option whose value has completions
std::string valueWords(std::span<const tOptionRow> options) {
  std::string text;
  for (const tOptionRow& row : options) {
    if (row.words != nullptr) {
      appendWord(text, "[" + std::string(row.name) + "]=\"$" + variableOf(*row.words) + "\"");
    }
  }
  return text;
}

// 'a b' 'c d'
std::string choices(std::span<const tOptionRow> options) {
  std::map<std::string_view, std::string> groups;
  for (const tOptionRow& row : options) {
    if (!row.choice.empty()) {
      appendWord(groups[row.choice], row.name);
    }
  }
  std::string text;
  for (const auto& [choice, names] : groups) {
    appendWord(text, "'" + names + "'");
  }
  return text;
}

std::string positionalWords(const tVerbRow& verb) {
  std::string text;
  for (const tPositionalRow& row : verb.positionals) {
    appendWord(text, row.words == nullptr ? "''" : "\"$" + variableOf(*row.words) + "\"");
  }
  return text;
}

std::string caseOf(const tVerbRow& verb) {
  std::string text = "    '" + std::string(verb.name) + "')\n";
  text += "      options='" + optionNames(kOptionsOfEveryVerb, verb.options) + "'\n";
  text += "      valued='" + valuedOptions(verb.options) + "'\n";
  text += "      values=(" + valueWords(verb.options) + ")\n";
  text += "      choices=(" + choices(verb.options) + ")\n";
  text += "      positionals=(" + positionalWords(verb) + ")\n";
  return text + "      ;;\n";
}

std::string caseOf(const tVerbGroupRow& group) {
  return "    '" + std::string(group.name) + "')\n      group=yes\n      options='" +
         optionNames(kOptionsOfEveryVerb, {}) + "'\n      positionals=(\"$" +
         variableOf(*group.actions) + "\")\n      ;;\n";
}

std::string grammarFunction(const tGrammar& grammar) {
  std::string text =
      "\n# Sets the words that may follow a verb, or precede it, in the variables of the caller.\n"
      "_quenra_grammar() {\n"
      "  options='' valued='' values=() choices=() positionals=() group=''\n"
      "  case $1 in\n"
      "    '')\n"
      "      options='" +
      optionNames(kOptionsOfTheProgram, {}) + "'\n      positionals=(\"$" +
      variableOf(*grammar.firstWords) + "\")\n      ;;\n";
  for (const tVerbGroupRow& group : grammar.groups) {
    text += caseOf(group);
  }
  for (const tVerbRow& verb : grammar.verbs) {
    text += caseOf(verb);
  }
  return text + "  esac\n}\n";
}

}  // namespace

std::string bashScript(const tGrammar& grammar) {
  return std::string(kHead) + wordLists(grammar) + grammarFunction(grammar) + std::string(kBody);
}

}  // namespace nCommandLine
