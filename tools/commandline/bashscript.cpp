#include <algorithm>
#include <map>

#include "tools/commandline/generatedtexts.h"

namespace nCommandLine {
namespace {

constexpr std::string_view kHead =
    R"sh(# Completes the command lines of @program@ in bash; printed by `@program@ completion bash`.
#
#   source <(@program@ completion bash)     for one session; in ~/.bashrc for all

)sh";

constexpr std::string_view kBody = R"sh(
# Removes an option that was given, and those that it excludes, from the offer.
@prefix@_use() {
  local group option
  for group in "$1" "${choices[@]}"; do
    [[ " $group " == *" $1 "* ]] || continue
    for option in $group; do
      options=" $options "
      options=${options/" $option "/ }
    done
  done
}

@prefix@() {
  local word=${COMP_WORDS[COMP_CWORD]} options valued repeatable choices positionals many program
  local current verb='' group='' ended='' option='' offered given=0 i
  local -A values
  COMPREPLY=()
  @prefix@_grammar ''
  for ((i = 1; i < COMP_CWORD; ++i)); do
    current=${COMP_WORDS[i]}
    if [[ -z $ended && $current == -- ]]; then
      ended=yes
      [[ -z $program ]] || given=0
    elif [[ -z $ended && $current == -* ]]; then
      [[ " $repeatable " == *" $current "* ]] || @prefix@_use "$current"
      if [[ " $valued " == *" $current "* ]]; then
        option=$current
        # bash splits --option=value into three words.
        [[ ${COMP_WORDS[++i]} != = ]] || ((++i))
      fi
    elif [[ -z $verb ]]; then
      verb=$current
      @prefix@_grammar "$verb"
    elif [[ -n $group ]]; then
      verb="$verb $current"
      @prefix@_grammar "$verb"
    else
      ((++given))
    fi
  done
  # The last positional of some verbs is any number of words.
  [[ -z $many ]] || ((given < ${#positionals[@]})) || given=$((${#positionals[@]} - 1))
  if ((i != COMP_CWORD)); then
    # The value of an option, which is still empty at its equals sign.
    offered=${values[$option]-}
    [[ $word != = ]] || word=''
  elif [[ -n $ended && -n $program ]]; then
    # A program, and then its arguments, for which file names are completed.
    ((given > 0)) || mapfile -t COMPREPLY < <(compgen -c -- "$word")
    return
  elif [[ -z $ended && $word == -* ]] || ((given >= ${#positionals[@]})); then
    offered=$options
  else
    offered=${positionals[given]}
  fi
  mapfile -t COMPREPLY < <(compgen -W "$offered" -- "$word")
}

# Without completions of ours, such as for an image, file names are completed.
complete -o default -F @prefix@ @program@ @program@.exe
)sh";

void appendWord(std::string& words, std::string_view word) {
  words.append(words.empty() ? "" : " ").append(word);
}

std::string variableOf(const tWordSet& set) {
  return "@prefix@_" + std::string(set.name);
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

template <class Predicate>
std::string optionsThat(std::span<const tOptionRow> options, Predicate predicate) {
  std::string names;
  for (const tOptionRow& row : options) {
    if (predicate(row)) {
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
std::string choices(std::span<const tOptionRow> always, std::span<const tOptionRow> options) {
  std::map<std::string_view, std::string> groups;
  for (const std::span<const tOptionRow> rows : {always, options}) {
    for (const tOptionRow& row : rows) {
      if (!row.choice.empty()) {
        appendWord(groups[row.choice], row.name);
      }
    }
  }
  std::string text;
  for (const auto& [choice, names] : groups) {
    if (names.find(' ') != names.npos) {
      appendWord(text, "'" + names + "'");
    }
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

bool repeatsPositional(const tVerbRow& verb) {
  return !verb.positionals.empty() && verb.positionals.back().repeatable;
}

std::string caseOf(const tGrammar& grammar, const tVerbRow& verb) {
  std::string text = "    '" + std::string(verb.name) + "')\n";
  text += "      options='" + optionNames(grammar.optionsOfEveryVerb, verb.options) + "'\n";
  text += "      valued='" +
          optionsThat(verb.options, [](const tOptionRow& row) { return !row.isFlag(); }) + "'\n";
  const std::string repeatable =
      optionsThat(verb.options, [](const tOptionRow& row) { return row.repeatable; });
  text += repeatable.empty() ? "" : "      repeatable='" + repeatable + "'\n";
  text += "      values=(" + valueWords(verb.options) + ")\n";
  text += "      choices=(" + choices(grammar.optionsOfEveryVerb, verb.options) + ")\n";
  text += "      positionals=(" + positionalWords(verb) + ")\n";
  text += repeatsPositional(verb) ? "      many=yes\n" : "";
  text += verb.program == nullptr ? "" : "      program=yes\n";
  return text + "      ;;\n";
}

std::string caseOf(const tGrammar& grammar, const tVerbGroupRow& group) {
  return "    '" + std::string(group.name) + "')\n      group=yes\n      options='" +
         optionNames(grammar.optionsOfEveryVerb, {}) + "'\n      positionals=(\"$" +
         variableOf(*group.actions) + "\")\n      ;;\n";
}

std::string grammarFunction(const tGrammar& grammar) {
  std::string text =
      "\n# Sets the words that may follow a verb, or precede it, in the variables of the caller.\n"
      "@prefix@_grammar() {\n"
      "  options='' valued='' repeatable='' values=() choices=() positionals=() group='' many='' "
      "program=''\n"
      "  case $1 in\n"
      "    '')\n"
      "      options='" +
      optionNames(grammar.optionsOfEveryVerb, kProgramOptions) + "'\n      positionals=(\"$" +
      variableOf(*grammar.firstWords) + "\")\n      ;;\n";
  for (const tVerbGroupRow& group : grammar.groups) {
    text += caseOf(grammar, group);
  }
  for (const tVerbRow& verb : grammar.verbs) {
    text += caseOf(grammar, verb);
  }
  return text + "  esac\n}\n";
}

}  // namespace

std::string withProgram(const tGrammar& grammar, std::string_view text) {
  std::string prefix = "_" + std::string(grammar.program);
  // The name of a variable has no dash.
  std::ranges::replace(prefix, '-', '_');
  std::string result(text);
  for (const auto& [mark, content] :
       {std::pair<std::string_view, std::string_view>("@program@", grammar.program),
        std::pair<std::string_view, std::string_view>("@prefix@", prefix)}) {
    for (size_t at = result.find(mark); at != result.npos; at = result.find(mark)) {
      result.replace(at, mark.size(), content);
    }
  }
  return result;
}

std::string bashScript(const tGrammar& grammar) {
  return withProgram(grammar, std::string(kHead) + wordLists(grammar) + grammarFunction(grammar) +
                                  std::string(kBody));
}

}  // namespace nCommandLine
