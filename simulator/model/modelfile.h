#ifndef SIMULATOR_MODEL_MODELFILE_H
#define SIMULATOR_MODEL_MODELFILE_H

#include <stdbool.h>
#include <stdint.h>

#include "simulator/protocol/controlprotocol.h"

/* An open file: its interface and its process. The host chooses `file`, which is not 0. */
typedef struct tModelFile {
  uint64_t file;
  uint64_t process;
  tSimulatorInterface interfaceKind;
} tModelFile;

#endif
