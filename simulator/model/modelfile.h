#ifndef SIMULATOR_MODEL_MODELFILE_H
#define SIMULATOR_MODEL_MODELFILE_H

#include <stdbool.h>
#include <stdint.h>

#include "simulator/control/controlprotocol.h"

/* One open file: on which interface, by which process. `file` is chosen by the host, never 0. */
typedef struct tModelFile {
  uint64_t file;
  uint64_t process;
  tSimulatorInterface interfaceKind;
} tModelFile;

#endif
