// The texts that are generated from a grammar: help, manual page and completion scripts. Each covers
// every verb, option and word of the grammar.
#ifndef TOOLS_QUENRA_GRAMMAR_GENERATEDTEXTS_H
#define TOOLS_QUENRA_GRAMMAR_GENERATEDTEXTS_H

#include <string>
#include <string_view>

#include "tools/quenra/grammar/grammar.h"

namespace nCommandLine {

// ---- Help ----

// The help of a verb, of a group of verbs, or of the program for an empty name. Throws
// tCommandError for an unknown verb.
[[nodiscard]] std::string helpText(const tGrammar& grammar, std::string_view verb);

// ---- Manual page ----

// The page quenra(1), as input for man.
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

struct tShellRow {
  std::string_view name;
  std::string_view use;  // how its users load the script
  std::string (*script)(const tGrammar& grammar);
};

inline constexpr tShellRow kShells[] = {
    {"bash", "For bash: source <(quenra completion bash)", bashScript},
    {"powershell", "For PowerShell: quenra completion powershell | Out-String | Invoke-Expression",
     powershellScript},
};

}  // namespace nCommandLine

#endif
