// The program quenra: its grammar with every verb and the words that completion offers, and the function
// that runs a command line. A new verb requires a row in verbtable/ and a function in commandline.cpp.
#ifndef TOOLS_QUENRA_COMMANDLINE_H
#define TOOLS_QUENRA_COMMANDLINE_H

#include "tools/commandline/grammar.h"
#include "tools/quenra/verbs/verbs.h"

namespace nCommandLine {

// Accepts the arguments of `main` and returns the exit code (diagnostics.h). Throws only exceptions of
// the streams.
[[nodiscard]] int runCommandLine(int argc, const char* const* argv, tStreams& streams,
                                 const tPorts& ports);

extern const tGrammar kGrammar;

// The function that runs a verb of the grammar, or kVersionVerb; null for another verb.
[[nodiscard]] tVerbFunction functionOf(const tVerbRow& verb) noexcept;

inline constexpr std::string_view kJsonChoice = "json";
inline constexpr tOptionRow kJsonOption{
    "--json", "", "Print one JSON document, also after a failure", kJsonChoice};
// Of the verbs that take long.
inline constexpr tOptionRow kJsonLinesOption{
    nWords::kJsonLines, "",
    "Print a line of JSON for each event as it happens, and the document as the last line",
    kJsonChoice};

extern const tWordSet kReadableWords;  // names of attributes
extern const tWordSet kWritableWords;  // ... of writable attributes
extern const tWordSet kStatusWords;    // constants of the status codes
extern const tWordSet kVerbWords;      // the first words of verbs
extern const tWordSet kFirmwareWords;  // the second words of a group
extern const tWordSet kRouteWords;     // ... of another group
extern const tWordSet kDeviceWords;    // devices of a firmware image
extern const tWordSet kSubjectWords;   // subjects of attributes
extern const tWordSet kTerminalWords;  // names of trigger terminals
extern const tWordSet kFormatWords;    // formats of metrics

// The trigger terminals of the controllers that this version supports, in the order of the library.
// The verbs query the library; completion scripts, which run without it, contain this list.
inline constexpr tOfferedWord kTerminalNames[] = {
    {"FLOAT", "The floating terminal of the controller"},
    {"TRIG_SMB", "The trigger connector of the controller"},
    {"WD_Terminal", "The watchdog of the controller"},
    {"PXI_Trig0", "PXI trigger line 0"},
    {"PXI_Trig1", "PXI trigger line 1"},
    {"PXI_Trig2", "PXI trigger line 2"},
    {"PXI_Trig3", "PXI trigger line 3"},
    {"PXI_Trig4", "PXI trigger line 4"},
    {"PXI_Trig5", "PXI trigger line 5"},
    {"PXI_Trig6", "PXI trigger line 6"},
    {"PXI_Trig7", "PXI trigger line 7"},
};

}  // namespace nCommandLine

#endif
