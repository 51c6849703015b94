#ifndef TOOLS_QUENRA_COMMANDLINE_H
#define TOOLS_QUENRA_COMMANDLINE_H

#include "tools/quenra/output/streams.h"
#include "tools/quenra/ports.h"

namespace nCommandLine {

// The whole program: what `main` is given, and what it is to return (exitcode.h). Throws nothing
// but what the streams throw.
[[nodiscard]] int runCommandLine(int argc, const char* const* argv, tStreams& streams,
                                 const tPorts& ports);

}  // namespace nCommandLine

#endif
