// The rows of the verbs for a machine that is not present.
#ifndef TOOLS_QUENRA_VERBTABLE_CAPTUREROWS_H
#define TOOLS_QUENRA_VERBTABLE_CAPTUREROWS_H

#include "tools/quenra/commandline.h"

namespace nCommandLine::nRows {

// Of the verbs that show a machine.
inline constexpr tOptionRow kFromCapture{nWords::kFrom, "CAPTURE",
                                         "Show the machine of a capture file instead of this one"};

// ---- capture ----

inline constexpr tPositionalRow kCapturePositionals[] = {
    {nWords::kFile, "FILE", "File of the capture; must not exist"},
};
inline constexpr tOptionRow kCaptureOptions[] = {
    {nWords::kAnonymous, "", "Replace serial numbers, asset tags and the UUID by pseudonyms"},
    {nWords::kPseudonymKey, "TEXT",
     "With --anonymous: derive the pseudonyms with a secret text as well"},
    {nWords::kForce, "", "Replace an existing file"},
};
inline constexpr tExampleRow kCaptureExamples[] = {
    {"capture rack-7.json", "everything about this machine, for a support engineer"},
    {"capture rack-7.json --anonymous", "... without its serial numbers"},
};

// ---- diff ----

inline constexpr tPositionalRow kDiffPositionals[] = {
    {nWords::kBefore, "BEFORE", "File of a capture"},
    {nWords::kAfter, "AFTER", "File of the capture to compare it with"},
};
inline constexpr tExampleRow kDiffExamples[] = {
    {"diff good.json bad.json", "the differences of two machines, or of one at two times"},
};

// clang-format off
inline constexpr tVerbRow kCaptureVerbs[] = {
    {"capture", "Write everything about this machine to a file",
     "The file is a JSON document with the versions, the SMBIOS table and every attribute as the driver "
     "returned them, the results of the library, the trigger terminals and the duration of each step. "
     "Nothing is written to the controller. A controller that cannot be opened is captured as well. The "
     "file serves info, update --plan and diff on another machine, and the simulated machine.",
     kCapturePositionals, kCaptureOptions, kCaptureExamples},

    {"diff", "Compare two captures",
     "Shows every property that differs, but not durations. The exit code is 9 if there is one. Needs no "
     "controller.",
     kDiffPositionals, {}, kDiffExamples},
};
// clang-format on

}  // namespace nCommandLine::nRows

#endif
