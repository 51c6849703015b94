#ifndef TOOLS_QUENRA_PORTS_H
#define TOOLS_QUENRA_PORTS_H

#include "tools/quenra/interruption/iinterruption.h"
#include "tools/quenra/reading/iquenra.h"
#include "tools/quenra/routing/irouting.h"
#include "tools/quenra/update/iupdatefacts.h"

namespace nCommandLine {

// All that the program asks of the world besides its streams and files.
struct tPorts {
  iQuenra& library;
  iRouting& routing;
  iUpdateFacts& updateFacts;
  iInterruption& interruption;
};

}  // namespace nCommandLine

#endif
