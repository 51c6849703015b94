#ifndef TOOLS_QUENRA_OUTPUT_STREAMS_H
#define TOOLS_QUENRA_OUTPUT_STREAMS_H

#include <ostream>

#include "tools/quenra/output/toutputbuffer.h"

namespace nCommandLine {

// The streams of a command: answers go to `out`, everything else to `error`.
struct tStreams {
  std::ostream& out;
  std::ostream& error;
  bool outIsTerminal = false;   // a person reads along: values come with their units
  bool outTakesStyles = false;  // ... on a terminal that shows bold and faint text
  // The buffer of `out`, which keeps the reason of a failure; null where the reason is unknown.
  const tOutputBuffer* outBuffer = nullptr;
  // Set by a verb as soon as it has changed the machine: output that fails is then not the failure of
  // the command.
  bool machineChanged = false;
};

}  // namespace nCommandLine

#endif
