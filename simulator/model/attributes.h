/* The values of the attributes that the driver keeps itself, for the controller and the Marten
 * interface. An attribute is named by its interface and its id, whose selector does not count. */
#ifndef SIMULATOR_MODEL_ATTRIBUTES_H
#define SIMULATOR_MODEL_ATTRIBUTES_H

#include <stdbool.h>
#include <stdint.h>

#include "simulator/control/controlprotocol.h"

typedef struct tAttributeStore {
  uint32_t count;
  tSimulatorAttribute entries[SIMULATOR_ATTRIBUTE_CAPACITY];
  bool writable[SIMULATOR_ATTRIBUTE_CAPACITY]; /* by requests of the library */
} tAttributeStore;

void attributesClear(tAttributeStore* store);
/* Null when the interface has no such attribute. */
const tSimulatorAttribute* attributesFind(const tAttributeStore* store, uint32_t interfaceKind,
                                          uint32_t attribute);
/* Adds the attribute or replaces its value; a new one is not writable. `size` has been checked. False
 * when the store is full. */
bool attributesPut(tAttributeStore* store, const tSimulatorAttribute* attribute);
/* False when the interface has no such attribute. */
bool attributesSetWritable(tAttributeStore* store, uint32_t interfaceKind, uint32_t attribute,
                           bool writable);
bool attributesIsWritable(const tAttributeStore* store, uint32_t interfaceKind, uint32_t attribute);
/* Nothing happens when the interface has no such attribute. */
void attributesRemove(tAttributeStore* store, uint32_t interfaceKind, uint32_t attribute);

#endif
