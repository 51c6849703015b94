// The rows of the verbs that need no controller: tables, completion, help.
#ifndef TOOLS_QUENRA_VERBTABLE_REFERENCEROWS_H
#define TOOLS_QUENRA_VERBTABLE_REFERENCEROWS_H

#include "tools/commandline/generatedtexts.h"
#include "tools/quenra/commandline.h"

namespace nCommandLine::nRows {

// ---- attributes ----

inline constexpr tExampleRow kAttributesExamples[] = {
    {"attributes", "names, ids and types"},
};

// ---- explain ----

inline constexpr tPositionalRow kExplainPositionals[] = {
    {nWords::kCode, "CODE", "The code in decimal or in hexadecimal after 0x, or its constant",
     &kStatusWords},
};
inline constexpr tExampleRow kExplainExamples[] = {
    {"explain -26934", "the meaning of a code and its remedy"},
    {"explain QUENRA_STATUS_BUSY", "... by its constant"},
};

// ---- completion ----

inline constexpr tPositionalRow kCompletionPositionals[] = {
    {kCompletionShell, "bash|powershell", "The shell", &kShellWords},
};
inline constexpr tExampleRow kCompletionExamples[] = {
    {"completion bash", "the script; 'source <(...)' loads it"},
    {"completion powershell", "... for '| Out-String | Invoke-Expression'"},
};

// ---- help ----

inline constexpr tPositionalRow kHelpPositionals[] = {
    {kHelpTopic, "VERB", "The verb", &kVerbWords, false},
    {kHelpAction, "ACTION", "The action, if the verb has actions", nullptr, false},
};
inline constexpr tOptionRow kHelpOptions[] = {
    {kHelpManual, "", "Print the manual page quenra(1) instead, as man reads it"},
};
inline constexpr tExampleRow kHelpExamples[] = {
    {"help get", "the help of one verb"},
    {"help --manual", "the manual page; '| man -l -' shows it"},
};

// clang-format off
inline constexpr tVerbRow kReferenceVerbs[] = {
    {"attributes", "List every attribute with its id, type, access and unit",
     "Needs no controller.",
     {}, {}, kAttributesExamples},

    {"explain", "Explain a status code and its remedy",
     "Codes that the library does not define are those of the driver, returned unchanged. Needs no controller.",
     kExplainPositionals, {}, kExplainExamples},

    {"completion", "Print the script that completes command lines in a shell",
     "Shells then complete verbs, options, names of attributes, terminals and devices, constants of "
     "status codes, and file names. Needs no controller.",
     kCompletionPositionals, {}, kCompletionExamples},

    {kHelpVerb, "Show the help of the program or of a verb",
     "",
     kHelpPositionals, kHelpOptions, kHelpExamples},
};
// clang-format on

}  // namespace nCommandLine::nRows

#endif
