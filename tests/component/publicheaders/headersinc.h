/* The constants of the public headers as a program in C sees them. */
#ifndef TESTS_COMPONENT_PUBLICHEADERS_HEADERSINC_H
#define TESTS_COMPONENT_PUBLICHEADERS_HEADERSINC_H

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef struct tInventoryEntry {
  uint32_t id;
  const char* name;
} tInventoryEntry;

extern const tInventoryEntry kInventoryOfC[];
extern const size_t kInventorySizeOfC;
extern const char* const kVersionOfC;

#ifdef __cplusplus
}
#endif

#endif
