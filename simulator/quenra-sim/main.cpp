// quenra-sim: the command line of the simulated machine.
#include <fcntl.h>
#include <io.h>

#include <cstdio>

#include "simulator/quenra-sim/verbs/verbs.h"
#include "simulator/scenario/wine.h"

int main(int argumentCount, char** arguments) {
  // Lines end in LF on every system.
  _setmode(_fileno(stdout), _O_BINARY);
  _setmode(_fileno(stderr), _O_BINARY);
  return nSimulator::runProgram(argumentCount, arguments, nSimulator::runsUnderWine());
}
