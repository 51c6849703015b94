/* Scripted answers: which request is to be answered otherwise than the machine would. */
#ifndef SIMULATOR_MODEL_SCRIPTS_H
#define SIMULATOR_MODEL_SCRIPTS_H

#include <stdbool.h>
#include <stdint.h>

#include "simulator/control/controlprotocol.h"

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
/* `script` is valid. False when the list is full. */
bool scriptsAdd(tScriptList* scripts, const tSimulatorScript* script);
/* The script that answers this request, or null. Counts the request: a script that lets it through
 * has used up one of its `skip`, and the next ones are tried; a script that answers it has used up
 * one of its `times`, and the ones behind it never see the request. */
const tSimulatorScript* scriptsTake(tScriptList* scripts, uint32_t interfaceKind,
                                    uint32_t requestCode);

#endif
