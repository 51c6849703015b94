/* The macros of the public headers in C11, without any other header before. */
#include "tests/component/publicheaders/headersinc.h"
#include "quenra.h"
#include "quenra_routing.h"

_Static_assert(QUENRA_ATTRIBUTE_AT(QUENRA_ATTRIBUTE_MEMORY_SIZE, 1) == 0x2000D001, "");

#define ENTRY(id, name) {id, name},

const tInventoryEntry kInventoryOfC[] = {QUENRA_FOR_EACH_TEXT_ATTRIBUTE(ENTRY)
                                             QUENRA_FOR_EACH_UNSIGNED_ATTRIBUTE(ENTRY)};
const size_t kInventorySizeOfC = sizeof kInventoryOfC / sizeof kInventoryOfC[0];
const char* const kVersionOfC = QUENRA_VERSION;
