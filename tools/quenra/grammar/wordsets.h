// Words that completion offers for positionals and for values of options.
#ifndef TOOLS_QUENRA_GRAMMAR_WORDSETS_H
#define TOOLS_QUENRA_GRAMMAR_WORDSETS_H

#include "tools/quenra/grammar/verbrow.h"

namespace nCommandLine {

extern const tWordSet kReadableWords;  // names of attributes
extern const tWordSet kWritableWords;  // ... of writable attributes
extern const tWordSet kStatusWords;    // constants of the status codes
extern const tWordSet kVerbWords;      // the first words of verbs
extern const tWordSet kFirmwareWords;  // the second words of a group
extern const tWordSet kRouteWords;     // ... of another group
extern const tWordSet kShellWords;
extern const tWordSet kDeviceWords;    // devices of a firmware image
extern const tWordSet kTerminalWords;  // names of trigger terminals

inline constexpr const tWordSet* kWordSets[] = {
    &kReadableWords, &kWritableWords, &kStatusWords, &kVerbWords,     &kFirmwareWords,
    &kRouteWords,    &kShellWords,    &kDeviceWords, &kTerminalWords,
};

}  // namespace nCommandLine

#endif
