/* Signals an event of another process, by the handle that it has there. Returns 1, or 0 when the
 * process is gone or the handle is no event that can be signalled. */
#ifndef SIMULATOR_CALLERMEMORY_CALLEREVENT_H
#define SIMULATOR_CALLERMEMORY_CALLEREVENT_H

#include <stdint.h>

#include "simulator/callermemory/visibility.h"

CALLERMEMORY_API int callerEventSignal(uint64_t process, uint64_t event);

#endif
