/* Scripted answers, which replace the machine's answer to matching requests. */
#ifndef SIMULATOR_MODEL_SCRIPTS_H
#define SIMULATOR_MODEL_SCRIPTS_H

#include <stdbool.h>
#include <stdint.h>

#include "simulator/protocol/controlprotocol.h"

typedef struct tActiveScript {
  tSimulatorScript script;
  uint32_t skipped;  /* matching requests let through, at most script.skip */
  uint32_t answered; /* matching requests answered since, at most script.times unless that is 0 */
} tActiveScript;

typedef struct tScriptList {
  uint32_t count;
  tActiveScript entries[SIMULATOR_SCRIPT_CAPACITY];
} tScriptList;

void scriptsClear(tScriptList* scripts);
bool scriptIsValid(const tSimulatorScript* script);
/* `script` must be valid. False if the list is full. */
bool scriptsAdd(tScriptList* scripts, const tSimulatorScript* script);
/* Returns the script that answers this request, or null. Tries the matching scripts in order: one
 * that skips the request counts it against its `skip`, and the next is tried; one that answers it
 * counts it against its `times`, and later ones do not count it. */
const tSimulatorScript* scriptsSelect(tScriptList* scripts, uint32_t interfaceKind,
                                      uint32_t requestCode);

#endif
