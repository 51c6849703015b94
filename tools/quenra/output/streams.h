#ifndef TOOLS_QUENRA_OUTPUT_STREAMS_H
#define TOOLS_QUENRA_OUTPUT_STREAMS_H

#include <ostream>

namespace nCommandLine {

// Where a command writes: answers to `out`, everything else to `error`.
struct tStreams {
  std::ostream& out;
  std::ostream& error;
  bool outIsTerminal = false;   // a person reads along: values come with their units
  bool outTakesStyles = false;  // ... on a terminal that shows bold and faint text
};

}  // namespace nCommandLine

#endif
