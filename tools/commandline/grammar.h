// The grammar of a program's command line as rows: the parser, the help, the manual page and the
// completion scripts are all derived from them.
#ifndef TOOLS_COMMANDLINE_GRAMMAR_H
#define TOOLS_COMMANDLINE_GRAMMAR_H

#include <map>
#include <optional>
#include <ostream>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace nCommandLine {

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
  bool repeatable = false;  // further words belong to it; the last positional of its verb only
};

struct tOptionRow {
  std::string_view name;       // with its dashes
  std::string_view valueName;  // empty for a flag
  std::string_view description;
  std::string_view choice = {};  // a command accepts at most one option of a choice
  bool required = false;
  const tWordSet* words = nullptr;  // completions of the value; null for none
  bool repeatable = false;          // a command accepts the option any number of times

  [[nodiscard]] constexpr bool isFlag() const noexcept { return valueName.empty(); }
};

struct tExampleRow {
  std::string_view command;  // without the program
  std::string_view effect;
};

struct tVerbRow {
  std::string_view name;          // a word, or two with a space: group and action
  std::string_view summary = {};  // a line without its full stop
  std::string_view details = {};  // sentences for the manual page
  std::span<const tPositionalRow> positionals = {};
  std::span<const tOptionRow> options = {};    // without those of every verb
  std::span<const tExampleRow> examples = {};  // the most useful first
  // A program and its arguments after "--", which are passed on unchanged; null for none.
  const tPositionalRow* program = nullptr;

  // "inspect" of "firmware inspect" for the group "firmware"; empty for a verb outside the group.
  [[nodiscard]] std::string_view actionIn(std::string_view group) const noexcept;
};

// A first word that several verbs share.
struct tVerbGroupRow {
  std::string_view name;
  std::string_view summary;  // a line without its full stop
  const tWordSet* actions;   // the second words
};

struct tExitCodeRow {
  int code;
  std::string_view meaning;
};

struct tEnvironmentRow {
  std::string_view variable;
  std::string_view effect;
};

inline constexpr tOptionRow kHelpOption{"--help", "", "Print the help and exit"};
inline constexpr tOptionRow kVersionOption{"--version", "", "Print the version and exit"};
// Options that precede the verb, besides those of every verb.
inline constexpr tOptionRow kProgramOptions[] = {kVersionOption};

// The verb that --help runs, with the positional for the verb or group that it describes; every
// program has a row for it.
inline constexpr std::string_view kHelpVerb = "help";
inline constexpr std::string_view kHelpTopic = "verb";
// The verb that --version runs; no program lists it.
inline constexpr tVerbRow kVersionVerb{"version"};

// ---- The grammar ----

struct tGrammar {
  std::string_view program;         // its name, as users type it
  std::string_view purpose;         // a line without its full stop
  std::string_view description;     // sentences for the manual page
  std::span<const tVerbRow> verbs;  // in the order of the help and the manual page
  std::span<const tVerbGroupRow> groups;
  std::span<const tWordSet* const> wordSets;       // every set that a row refers to
  const tWordSet* firstWords;                      // of all verbs
  std::span<const tOptionRow> optionsOfEveryVerb;  // with kHelpOption; they may precede the verb
  std::span<const tExitCodeRow> exitCodes;
  std::span<const tEnvironmentRow> environment;

  // Null for an unknown name.
  [[nodiscard]] const tVerbRow* findVerb(std::string_view name) const noexcept;
  [[nodiscard]] const tVerbGroupRow* findGroup(std::string_view name) const noexcept;

  // The first words of all verbs, and the second words of a group's: completions.
  [[nodiscard]] std::vector<tOfferedWord> verbWords() const;
  [[nodiscard]] std::vector<tOfferedWord> actionWords(std::string_view group) const;
};

// A parsed command line: a verb and the values of its options and positionals, by row name.
class tArguments {
 public:
  explicit tArguments(const tVerbRow& verb) : verb_(&verb) {}

  void add(std::string_view name, std::string value) {
    values_[std::string(name)].push_back(std::move(value));
  }

  [[nodiscard]] const tVerbRow& verb() const noexcept { return *verb_; }
  [[nodiscard]] bool has(std::string_view name) const { return values_.contains(name); }
  // Empty if the command line omits the option or positional.
  [[nodiscard]] std::optional<std::string> optional(std::string_view name) const {
    const auto found = values_.find(name);
    return found == values_.end() ? std::nullopt : std::optional(found->second.front());
  }
  // The value of a required positional.
  [[nodiscard]] std::string text(std::string_view name) const {
    return optional(name).value_or("");
  }
  // The values of a repeatable option or positional, in the order of the command line.
  [[nodiscard]] std::vector<std::string> all(std::string_view name) const {
    const auto found = values_.find(name);
    return found == values_.end() ? std::vector<std::string>() : found->second;
  }

 private:
  const tVerbRow* verb_;
  std::map<std::string, std::vector<std::string>, std::less<>> values_;
};

// ---- Wrong usage ----

// A command line that the program rejects: what() names the faulty word and the reason.
class tUsageError : public std::runtime_error {
 public:
  // `suggestions` are words that the user may have meant.
  tUsageError(const std::string& what, std::string advice,
              std::vector<std::string> suggestions = {})
      : std::runtime_error(what),
        advice_(std::move(advice)),
        suggestions_(std::move(suggestions)) {}

  [[nodiscard]] const std::string& advice() const noexcept { return advice_; }
  [[nodiscard]] const std::vector<std::string>& suggestions() const noexcept {
    return suggestions_;
  }

 private:
  std::string advice_;
  std::vector<std::string> suggestions_;
};

// Print an error, each on lines of its own: "quenra: unknown option '--jsn'" with control characters
// escaped, and the suggestions and advice.
void printFault(std::ostream& stream, std::string_view program, std::string_view fault);
void printRemedy(std::ostream& stream, std::span<const std::string> suggestions,
                 std::string_view advice);

// Throws tUsageError unless `word` is in the set: "unknown shell 'bsh'" for the kind "shell".
void requireWord(std::string_view kind, const std::string& word, const tWordSet& set);

// ---- Parsing ----

// The words of a command line after the program's name.
using tCommandWords = std::span<const char* const>;

// Parses a command line. Throws tUsageError for wrong usage.
[[nodiscard]] tArguments parseArguments(const tGrammar& grammar, tCommandWords words);

// The verb of that name. Throws tUsageError for an unknown name.
[[nodiscard]] const tVerbRow& knownVerb(const tGrammar& grammar, std::string_view name);

// True if the option is among the words, even if the usage is wrong otherwise.
[[nodiscard]] bool hasOption(tCommandWords words, std::string_view name) noexcept;

// The verb among the words; empty for none.
[[nodiscard]] std::string_view verbIn(const tGrammar& grammar, tCommandWords words) noexcept;

// ---- Synopses ----

// The markup of a synopsis: for literal words, which the user types as they are, and for
// placeholders.
struct tSynopsisStyle {
  std::string (*typed)(std::string_view);
  std::string (*placeholder)(std::string_view);
};

// "quenra get NAME|ID... [--instance N] [--controller|--marten]", without the options of every verb.
[[nodiscard]] std::string synopsis(const tGrammar& grammar, const tVerbRow& verb,
                                   const tSynopsisStyle& style);
[[nodiscard]] std::string synopsis(const tGrammar& grammar, const tVerbRow& verb);

// "--instance N"
[[nodiscard]] std::string optionWithValue(const tOptionRow& option, const tSynopsisStyle& style);
[[nodiscard]] std::string optionWithValue(const tOptionRow& option);

}  // namespace nCommandLine

#endif
