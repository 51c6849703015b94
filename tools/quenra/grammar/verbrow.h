// The description of a verb of the command line. The parser, the help, the completion scripts and the
// manual page are all generated from these rows.
#ifndef TOOLS_QUENRA_GRAMMAR_VERBROW_H
#define TOOLS_QUENRA_GRAMMAR_VERBROW_H

#include <span>
#include <string_view>
#include <vector>

#include "tools/quenra/output/diagnostics.h"

namespace nCommandLine {

class tArguments;
struct tVerbContext;

struct tOfferedWord {
  std::string_view word;
  std::string_view meaning;
};

// Words of one kind that completion offers.
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
};

// A first word that several verbs share.
struct tVerbGroupRow {
  std::string_view name;
  std::string_view summary;  // a line without its full stop
  const tWordSet* actions;   // the second words
};

}  // namespace nCommandLine

#endif
