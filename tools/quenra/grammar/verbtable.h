// Every verb of the command line. A new one is a row here and its runner.
#ifndef TOOLS_QUENRA_GRAMMAR_VERBTABLE_H
#define TOOLS_QUENRA_GRAMMAR_VERBTABLE_H

#include <string_view>

#include "tools/quenra/grammar/verbrow.h"
#include "tools/quenra/grammar/words.h"

namespace nCommandLine {

// In the order in which they are shown.
extern const std::span<const tVerbRow> kVerbs;

extern const std::span<const tVerbGroupRow> kVerbGroups;

// What --help and --version ask for.
extern const tVerbRow kHelpAnswer;
extern const tVerbRow kVersionAnswer;

inline constexpr std::string_view kProgramPurpose =
    "show the controller of a PXI chassis and change its settings";

inline constexpr tOptionRow kHelpOption{nWords::kHelp, "", "Print the help and exit"};
inline constexpr tOptionRow kJsonOption{nWords::kJson, "",
                                        "Print one JSON document, whatever happens"};
inline constexpr tOptionRow kVersionOption{nWords::kVersion, "", "Print the version and exit"};

inline constexpr tOptionRow kOptionsOfEveryVerb[] = {kHelpOption, kJsonOption};
// Before any verb.
inline constexpr tOptionRow kOptionsOfTheProgram[] = {kHelpOption, kJsonOption, kVersionOption};

// Null when there is none.
[[nodiscard]] const tVerbRow* findVerb(std::string_view name) noexcept;
[[nodiscard]] const tVerbGroupRow* findVerbGroup(std::string_view name) noexcept;

// "inspect" of "firmware inspect" for the group "firmware"; empty for a verb that is not in it.
[[nodiscard]] std::string_view actionIn(std::string_view group, const tVerbRow& verb) noexcept;

}  // namespace nCommandLine

#endif
