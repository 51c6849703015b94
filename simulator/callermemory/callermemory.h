/* Copies between the memory of another process and this one. Addresses need no alignment; any
 * address and size is safe. Both return 1 if all bytes were copied; otherwise 0, and the contents
 * of the destination are unspecified. */
#ifndef SIMULATOR_CALLERMEMORY_CALLERMEMORY_H
#define SIMULATOR_CALLERMEMORY_CALLERMEMORY_H

#include <stdint.h>

#include "simulator/callermemory/visibility.h"

CALLERMEMORY_API int callerMemoryRead(uint64_t process, uint64_t address, void* destination,
                                      uint32_t size);
CALLERMEMORY_API int callerMemoryWrite(uint64_t process, uint64_t address, const void* source,
                                       uint32_t size);

#endif
