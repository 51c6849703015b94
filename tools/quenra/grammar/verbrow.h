// The description of a verb of the command line. The parser, the help, the completion scripts and the
// manual page are all generated from these rows.
#ifndef TOOLS_QUENRA_GRAMMAR_VERBROW_H
#define TOOLS_QUENRA_GRAMMAR_VERBROW_H

#include <span>
#include <string_view>
#include <vector>

#include "tools/quenra/exitcode.h"

namespace nCommandLine {

class tArguments;
struct tVerbContext;

struct tOfferedWord {
  std::string_view word;
  std::string_view meaning;
};

// Words of one kind, which completion offers.
struct tWordSet {
  std::string_view name;  // a word of small letters
  std::vector<tOfferedWord> (*words)();
};

struct tPositionalRow {
  std::string_view name;       // its key in tArguments
  std::string_view valueName;  // as the help shows it: "NAME|ID"
  std::string_view description;
  const tWordSet* words = nullptr;  // its completions; null where there are none
  bool required = true;
};

struct tOptionRow {
  std::string_view name;       // with its dashes
  std::string_view valueName;  // empty for a flag
  std::string_view description;
  std::string_view choice = {};  // of the options of one choice, at most one can be given
  bool required = false;
  const tWordSet* words = nullptr;  // completions of the value; null where there are none
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
  std::span<const tOptionRow> options;    // those of every verb not among them
  std::span<const tExampleRow> examples;  // the most telling first
  tExitCode (*run)(const tArguments& arguments, const tVerbContext& context);
};

// The first word of several verbs.
struct tVerbGroupRow {
  std::string_view name;
  std::string_view summary;  // a line without its full stop
  const tWordSet* actions;   // the second words
};

}  // namespace nCommandLine

#endif
