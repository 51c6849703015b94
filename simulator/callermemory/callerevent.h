/* Signals an event of another process. `event` is the handle in that process. Returns 1, or 0 if
 * the process has exited or the handle is not an event that can be signalled. */
#ifndef SIMULATOR_CALLERMEMORY_CALLEREVENT_H
#define SIMULATOR_CALLERMEMORY_CALLEREVENT_H

#include <stdint.h>

#include "simulator/callermemory/visibility.h"

CALLERMEMORY_API int callerEventSignal(uint64_t process, uint64_t event);

#endif
