#ifndef TOOLS_QUENRA_COMMANDLINE_H
#define TOOLS_QUENRA_COMMANDLINE_H

#include "tools/quenra/verbs/verbs.h"

namespace nCommandLine {

// The complete program: accepts the arguments of `main` and returns its exit code (diagnostics.h).
// Throws only exceptions of the streams.
[[nodiscard]] int runCommandLine(int argc, const char* const* argv, tStreams& streams,
                                 const tPorts& ports);

}  // namespace nCommandLine

#endif
