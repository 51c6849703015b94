#ifndef TOOLS_QUENRA_VERBS_VERBCONTEXT_H
#define TOOLS_QUENRA_VERBS_VERBCONTEXT_H

#include "tools/quenra/output/streams.h"
#include "tools/quenra/ports.h"

namespace nCommandLine {

// The arguments of every verb. A verb prints its answer and returns the exit code, or throws
// tCommandError; until then it prints nothing but progress messages, and none with --json.
struct tVerbContext {
  const tPorts& ports;
  tStreams& streams;
  bool json;
};

}  // namespace nCommandLine

#endif
