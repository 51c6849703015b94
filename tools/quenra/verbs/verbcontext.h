#ifndef TOOLS_QUENRA_VERBS_VERBCONTEXT_H
#define TOOLS_QUENRA_VERBS_VERBCONTEXT_H

#include "tools/quenra/output/streams.h"
#include "tools/quenra/reading/iquenra.h"

namespace nCommandLine {

// What every verb is given. A verb prints its answer and returns the exit code, or throws
// tCommandError with nothing printed.
struct tVerbContext {
  iQuenra& library;
  tStreams& streams;
  bool json;
};

}  // namespace nCommandLine

#endif
