// The grammar of a command line as rows: the parser, the help, the manual page and the completion
// scripts are all derived from them.
#ifndef TOOLS_QUENRA_GRAMMAR_GRAMMAR_H
#define TOOLS_QUENRA_GRAMMAR_GRAMMAR_H

#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "tools/quenra/output/diagnostics.h"

namespace nCommandLine {

class tArguments;
struct tVerbContext;

// ---- Rows ----

struct tOfferedWord {
  std::string_view word;
  std::string_view meaning;
};

// Words of one kind that completion offers for positionals and for values of options.
struct tWordSet {
  std::string_view name;  // one lower-case word
  std::vector<tOfferedWord> (*words)();
};

struct tPositionalRow {
  std::string_view name;       // its key in tArguments
  std::string_view valueName;  // as the help shows it: "NAME|ID"
  std::string_view description;
  const tWordSet* words = nullptr;  // its completions; null for none
  bool required = true;
};

struct tOptionRow {
  std::string_view name;       // with its dashes
  std::string_view valueName;  // empty for a flag
  std::string_view description;
  std::string_view choice = {};  // a command accepts at most one option of a choice
  bool required = false;
  const tWordSet* words = nullptr;  // completions of the value; null for none

  [[nodiscard]] constexpr bool isFlag() const noexcept { return valueName.empty(); }
};

struct tExampleRow {
  std::string_view command;  // without "quenra"
  std::string_view effect;
};

struct tVerbRow {
  std::string_view name;     // a word, or two with a space: a group and an action
  std::string_view summary;  // a line without its full stop
  std::string_view details;  // sentences for the manual page
  std::span<const tPositionalRow> positionals;
  std::span<const tOptionRow> options;    // without kOptionsOfEveryVerb
  std::span<const tExampleRow> examples;  // the most useful first
  tExitCode (*run)(const tArguments& arguments, const tVerbContext& context);

  // "inspect" of "firmware inspect" for the group "firmware"; empty for a verb outside the group.
  [[nodiscard]] std::string_view actionIn(std::string_view group) const noexcept;
};

// A first word that several verbs share.
struct tVerbGroupRow {
  std::string_view name;
  std::string_view summary;  // a line without its full stop
  const tWordSet* actions;   // the second words
};

inline constexpr tOptionRow kHelpOption{"--help", "", "Print the help and exit"};
inline constexpr tOptionRow kJsonOption{"--json", "",
                                        "Print one JSON document, also after a failure"};
inline constexpr tOptionRow kVersionOption{"--version", "", "Print the version and exit"};

inline constexpr tOptionRow kOptionsOfEveryVerb[] = {kHelpOption, kJsonOption};
// Options that precede the verb.
inline constexpr tOptionRow kOptionsOfTheProgram[] = {kHelpOption, kJsonOption, kVersionOption};

// The positional of the help verb: the verb or group that the help describes.
inline constexpr std::string_view kHelpTopic = "verb";

// ---- The grammar ----

struct tGrammar {
  std::string_view purpose;         // of the program; a line without its full stop
  std::span<const tVerbRow> verbs;  // in the order of the help and the manual page
  std::span<const tVerbGroupRow> groups;
  std::span<const tWordSet* const> wordSets;  // every set that a row refers to
  const tWordSet* firstWords;                 // of all verbs
  // The verbs that --help and --version run.
  const tVerbRow* help;
  const tVerbRow* version;

  // Null for an unknown name.
  [[nodiscard]] const tVerbRow* findVerb(std::string_view name) const noexcept;
  [[nodiscard]] const tVerbGroupRow* findGroup(std::string_view name) const noexcept;
};

// A parsed command line: a verb and the values of its options and positionals, by row name.
class tArguments {
 public:
  explicit tArguments(const tVerbRow& verb) : verb_(&verb) {}

  void add(std::string_view name, std::string value) {
    values_.insert_or_assign(std::string(name), std::move(value));
  }

  [[nodiscard]] const tVerbRow& verb() const noexcept { return *verb_; }
  [[nodiscard]] bool has(std::string_view name) const { return values_.contains(name); }
  // Empty if the command line omits the option or positional.
  [[nodiscard]] std::optional<std::string> optional(std::string_view name) const {
    const auto found = values_.find(name);
    return found == values_.end() ? std::nullopt : std::optional(found->second);
  }
  // The value of a required positional.
  [[nodiscard]] std::string text(std::string_view name) const {
    return optional(name).value_or("");
  }

 private:
  const tVerbRow* verb_;
  std::map<std::string, std::string, std::less<>> values_;
};

// ---- Synopses ----

// The markup of a synopsis: for literal words, which the user types as they are, and for
// placeholders.
struct tSynopsisStyle {
  std::string (*typed)(std::string_view);
  std::string (*placeholder)(std::string_view);
};

// "quenra get NAME|ID [--instance N] [--controller|--marten]", without the options of every verb.
[[nodiscard]] std::string synopsis(const tVerbRow& verb, const tSynopsisStyle& style);
[[nodiscard]] std::string synopsis(const tVerbRow& verb);

// "--instance N"
[[nodiscard]] std::string optionWithValue(const tOptionRow& option, const tSynopsisStyle& style);
[[nodiscard]] std::string optionWithValue(const tOptionRow& option);

}  // namespace nCommandLine

#endif
