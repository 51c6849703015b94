#ifndef ZOAPAL_PROTONS_IMAGE_WINDOWS_STACKGUARD_H
#define ZOAPAL_PROTONS_IMAGE_WINDOWS_STACKGUARD_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* The value that the compiler puts between a function's arrays and its return address. */
extern uintptr_t __stack_chk_guard;

#ifdef __cplusplus
}
#endif

#endif
