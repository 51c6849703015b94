#ifndef TOOLS_QUENRA_PORTS_H
#define TOOLS_QUENRA_PORTS_H

#include "tools/quenra/output/waiting.h"
#include "tools/quenra/reading/iquenra.h"
#include "tools/quenra/routing/irouting.h"
#include "tools/quenra/update/iupdatefacts.h"
#include "tools/quenra/update/iupdatelock.h"

namespace nCommandLine {

// The interfaces of the program to its machine, besides its streams and files.
struct tPorts {
  iQuenra& library;
  iRouting& routing;
  iUpdateFacts& updateFacts;
  iInterruption& interruption;
  iUpdateLock& updateLock;
};

}  // namespace nCommandLine

#endif
