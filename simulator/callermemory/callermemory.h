/* Access to the memory and the events of the process that sent a request. */
#ifndef SIMULATOR_CALLERMEMORY_CALLERMEMORY_H
#define SIMULATOR_CALLERMEMORY_CALLERMEMORY_H

#include <stdint.h>

#ifdef CALLERMEMORY_BUILDING
#define CALLERMEMORY_API __declspec(dllexport)
#else
#define CALLERMEMORY_API __declspec(dllimport)
#endif

/* Copy between the memory of another process and this one. Addresses need no alignment; any address
 * and size is safe. Both return 1 if all bytes were copied; otherwise 0, and the contents of the
 * destination are unspecified. */
CALLERMEMORY_API int callerMemoryRead(uint64_t process, uint64_t address, void* destination,
                                      uint32_t size);
CALLERMEMORY_API int callerMemoryWrite(uint64_t process, uint64_t address, const void* source,
                                       uint32_t size);

/* Signals an event of another process. `event` is the handle in that process. Returns 1, or 0 if
 * the process has exited or the handle is not an event that can be signalled. */
CALLERMEMORY_API int callerEventSignal(uint64_t process, uint64_t event);

#endif
