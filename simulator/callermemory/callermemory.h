/* Copying between the memory of another process and this one. Natural alignment, no ownership; safe
 * for any address and size. Both return 1 when every byte was copied, else 0, with nothing promised
 * about the destination. */
#ifndef SIMULATOR_CALLERMEMORY_CALLERMEMORY_H
#define SIMULATOR_CALLERMEMORY_CALLERMEMORY_H

#include <stdint.h>

#include "simulator/callermemory/visibility.h"

CALLERMEMORY_API int callerMemoryRead(uint64_t process, uint64_t address, void* destination,
                                      uint32_t size);
CALLERMEMORY_API int callerMemoryWrite(uint64_t process, uint64_t address, const void* source,
                                       uint32_t size);

#endif
