#ifndef TOOLS_QUENRA_VERBS_VERBCONTEXT_H
#define TOOLS_QUENRA_VERBS_VERBCONTEXT_H

#include "tools/quenra/output/streams.h"
#include "tools/quenra/ports.h"

namespace nCommandLine {

// What every verb is given. A verb prints its answer and returns the exit code, or throws
// tCommandError with nothing printed but, for people, what it was doing.
struct tVerbContext {
  const tPorts& ports;
  tStreams& streams;
  bool json;
};

}  // namespace nCommandLine

#endif
