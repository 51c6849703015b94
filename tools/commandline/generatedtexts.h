// The texts that are generated from a grammar: help, manual page and completion scripts. Each covers
// every verb, option and word of the grammar.
#ifndef TOOLS_COMMANDLINE_GENERATEDTEXTS_H
#define TOOLS_COMMANDLINE_GENERATEDTEXTS_H

#include <string>
#include <string_view>

#include "tools/commandline/grammar.h"

namespace nCommandLine {

// ---- Help ----

// The help of a verb, of a group of verbs, or of the program for an empty name. Throws
// tUsageError for an unknown verb.
[[nodiscard]] std::string helpText(const tGrammar& grammar, std::string_view verb);

// ---- Manual page ----

// The page of the program in section 1, as input for man.
[[nodiscard]] std::string manualPage(const tGrammar& grammar);

// Escapes the text so that roff prints it unchanged; a dash stays an ASCII hyphen for copying.
[[nodiscard]] std::string roffText(std::string_view text);
// As above, in bold and in italics (underlined on a terminal without italics).
[[nodiscard]] std::string roffBold(std::string_view text);
[[nodiscard]] std::string roffItalic(std::string_view text);
// Puts each sentence on a line of its own: roff recognises the end of a sentence by the line end.
[[nodiscard]] std::string roffSentences(std::string_view text);

// ---- Completion scripts ----

// For bash 4 or later.
[[nodiscard]] std::string bashScript(const tGrammar& grammar);
// For PowerShell 5 or later, with a description of each word.
[[nodiscard]] std::string powershellScript(const tGrammar& grammar);

// Fills a part of a script: @program@ with the program's name, and @prefix@ with the beginning of
// the names that the script defines.
[[nodiscard]] std::string withProgram(const tGrammar& grammar, std::string_view text);

struct tShellRow {
  std::string_view name;
  std::string_view meaning;
  std::string (*script)(const tGrammar& grammar);
};

inline constexpr tShellRow kShells[] = {
    {"bash", "For bash 4 or later", bashScript},
    {"powershell", "For PowerShell 5 or later", powershellScript},
};
extern const tWordSet kShellWords;

// ---- The verbs that print them ----

// The names of their positionals and options besides kHelpTopic.
inline constexpr std::string_view kHelpAction = "action";
inline constexpr std::string_view kHelpManual = "--manual";
inline constexpr std::string_view kCompletionShell = "shell";

// The help or manual page that the arguments of the help verb request, and the shell of the
// completion verb. Throw tUsageError for wrong usage.
[[nodiscard]] std::string requestedHelp(const tGrammar& grammar, const tArguments& arguments);
[[nodiscard]] const tShellRow& requestedShell(const tArguments& arguments);

}  // namespace nCommandLine

#endif
