#include "simulator/model/scripts.h"

#include <stddef.h>

#include "simulator/model/host.h"

enum {
  kWindowsErrorLimit = 65536
};

void scriptsClear(tScriptList* scripts) {
  scripts->count = 0;
}

static bool interfaceIsScriptable(uint32_t interfaceKind) {
  return interfaceKind == kSimulatorInterfaceController ||
         interfaceKind == kSimulatorInterfaceMarten ||
         interfaceKind == kSimulatorInterfaceDevicePath;
}

bool scriptIsValid(const tSimulatorScript* script) {
  if (!interfaceIsScriptable(script->interfaceKind)) {
    return false;
  }
  if (script->action < kSimulatorActionAnswerCode || script->action > kSimulatorActionAddCode) {
    return false;
  }
  if (script->windowsError >= kWindowsErrorLimit || script->replySize > SIMULATOR_OUTPUT_CAPACITY) {
    return false;
  }
  /* A scripted "pending" is rejected: nothing would complete the request. */
  return script->windowsError != kWindowsErrorIoPending &&
         (script->action != kSimulatorActionFail || script->windowsError != kWindowsErrorNone);
}

bool scriptsAdd(tScriptList* scripts, const tSimulatorScript* script) {
  if (scripts->count == SIMULATOR_SCRIPT_CAPACITY) {
    return false;
  }
  tActiveScript* entry = &scripts->entries[scripts->count];
  entry->script = *script;
  entry->skipped = 0;
  entry->answered = 0;
  ++scripts->count;
  return true;
}

static bool matches(const tSimulatorScript* script, uint32_t interfaceKind, uint32_t requestCode) {
  return script->interfaceKind == interfaceKind &&
         (script->requestCode == 0 || script->requestCode == requestCode);
}

/* Counts a matching request. False if the script lets it through. */
static bool answersNext(tActiveScript* entry) {
  if (entry->skipped < entry->script.skip) {
    ++entry->skipped;
    return false;
  }
  if (entry->script.times == 0) {
    return true;
  }
  if (entry->answered == entry->script.times) {
    return false;
  }
  ++entry->answered;
  return true;
}

const tSimulatorScript* scriptsSelect(tScriptList* scripts, uint32_t interfaceKind,
                                      uint32_t requestCode) {
  for (uint32_t i = 0; i < scripts->count; ++i) {
    tActiveScript* entry = &scripts->entries[i];
    if (matches(&entry->script, interfaceKind, requestCode) && answersNext(entry)) {
      return &entry->script;
    }
  }
  return NULL;
}
