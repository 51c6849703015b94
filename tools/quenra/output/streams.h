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
  bool outIsTerminal = false;   // for a person: values are printed with their units
  bool outTakesStyles = false;  // the terminal supports bold and faint text
  // The buffer of `out`, which keeps the reason of a failure; null if the reason is unavailable.
  const tOutputBuffer* outBuffer = nullptr;
  // The change that a verb has made to the machine: "driver-setting-1 is set to 7"; empty for none.
  // Reported if the output fails, so that the caller does not repeat the change.
  std::string appliedChange = {};
};

}  // namespace nCommandLine

#endif
