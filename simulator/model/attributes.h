/* The attributes that the driver stores for the controller and the Marten interface. The interface
 * and the id identify an attribute; the selector of the id is ignored. REQUEST_GET_ATTRIBUTE and
 * REQUEST_SET_ATTRIBUTE are in requests.h. */
#ifndef SIMULATOR_MODEL_ATTRIBUTES_H
#define SIMULATOR_MODEL_ATTRIBUTES_H

#include <stdbool.h>
#include <stdint.h>

#include "simulator/protocol/controlprotocol.h"

typedef struct tAttributeStore {
  uint32_t count;
  tSimulatorAttribute entries[SIMULATOR_ATTRIBUTE_CAPACITY];
  bool writable[SIMULATOR_ATTRIBUTE_CAPACITY]; /* by requests of the library */
} tAttributeStore;

void attributesClear(tAttributeStore* store);
/* Null if the interface has no such attribute. */
const tSimulatorAttribute* attributesFind(const tAttributeStore* store, uint32_t interfaceKind,
                                          uint32_t attribute);
/* Adds the attribute or replaces its value; a new attribute is not writable. The caller has
 * validated `size`. False if the store is full. */
bool attributesPut(tAttributeStore* store, const tSimulatorAttribute* attribute);
/* False if the interface has no such attribute. */
bool attributesSetWritable(tAttributeStore* store, uint32_t interfaceKind, uint32_t attribute,
                           bool writable);
bool attributesIsWritable(const tAttributeStore* store, uint32_t interfaceKind, uint32_t attribute);
/* Does nothing if the interface has no such attribute. */
void attributesRemove(tAttributeStore* store, uint32_t interfaceKind, uint32_t attribute);

#endif
