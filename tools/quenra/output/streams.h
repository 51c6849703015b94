#ifndef TOOLS_QUENRA_OUTPUT_STREAMS_H
#define TOOLS_QUENRA_OUTPUT_STREAMS_H

#include <ostream>
#include <string>

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
  // A change of the machine that a verb has made: "driver-setting-1 is set to 7"; empty for none. It is
  // reported where the output fails, so that the caller does not take the change for a failure.
  std::string appliedChange = {};
};

}  // namespace nCommandLine

#endif
