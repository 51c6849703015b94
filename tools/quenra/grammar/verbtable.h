// Every verb of the command line. A new verb requires a row here and a run function.
#ifndef TOOLS_QUENRA_GRAMMAR_VERBTABLE_H
#define TOOLS_QUENRA_GRAMMAR_VERBTABLE_H

#include <string_view>

#include "tools/quenra/grammar/verbrow.h"
#include "tools/quenra/grammar/words.h"

namespace nCommandLine {

// In the order of the help and the manual page.
extern const std::span<const tVerbRow> kVerbs;

extern const std::span<const tVerbGroupRow> kVerbGroups;

// The verbs that --help and --version run.
extern const tVerbRow kHelpAnswer;
extern const tVerbRow kVersionAnswer;

inline constexpr std::string_view kProgramPurpose =
    "show the controller of a PXI chassis and change its settings";

inline constexpr tOptionRow kHelpOption{nWords::kHelp, "", "Print the help and exit"};
inline constexpr tOptionRow kJsonOption{nWords::kJson, "",
                                        "Print one JSON document, whatever happens"};
inline constexpr tOptionRow kVersionOption{nWords::kVersion, "", "Print the version and exit"};

inline constexpr tOptionRow kOptionsOfEveryVerb[] = {kHelpOption, kJsonOption};
// Options that precede the verb.
inline constexpr tOptionRow kOptionsOfTheProgram[] = {kHelpOption, kJsonOption, kVersionOption};

// Null for an unknown name.
[[nodiscard]] const tVerbRow* findVerb(std::string_view name) noexcept;
[[nodiscard]] const tVerbGroupRow* findVerbGroup(std::string_view name) noexcept;

// "inspect" of "firmware inspect" for the group "firmware"; empty for a verb outside the group.
[[nodiscard]] std::string_view actionIn(std::string_view group, const tVerbRow& verb) noexcept;

}  // namespace nCommandLine

#endif
