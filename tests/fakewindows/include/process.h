/* The function of process.h that the library calls; Wine's Windows headers do not include it. */
#ifndef TESTS_FAKEWINDOWS_INCLUDE_PROCESS_H
#define TESTS_FAKEWINDOWS_INCLUDE_PROCESS_H

#include <stdint.h>
#include <windows.h>

#ifdef __cplusplus
extern "C" {
#endif

uintptr_t __cdecl _beginthreadex(void* security, unsigned stackSize,
                                 unsigned(__stdcall* start)(void*), void* argument, unsigned flags,
                                 unsigned* id);

#ifdef __cplusplus
}
#endif

#endif
