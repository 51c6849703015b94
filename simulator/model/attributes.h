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
  bool writable[SIMULATOR_ATTRIBUTE_CAPACITY];                     /* by requests of the library */
  tSimulatorAttributeAnswer answers[SIMULATOR_ATTRIBUTE_CAPACITY]; /* all zero: the plain answer */
} tAttributeStore;

void attributesClear(tAttributeStore* store);
/* Null if the interface has no such attribute. */
const tSimulatorAttribute* attributesFind(const tAttributeStore* store, uint32_t interfaceKind,
                                          uint32_t attribute);
/* Adds the attribute or replaces its value, with the plain answer; a new attribute is not writable.
 * The caller has validated `size`. False if the store is full. */
bool attributesPut(tAttributeStore* store, const tSimulatorAttribute* attribute);
/* False if the interface has no such attribute. */
bool attributesSetWritable(tAttributeStore* store, uint32_t interfaceKind, uint32_t attribute,
                           bool writable);
bool attributesIsWritable(const tAttributeStore* store, uint32_t interfaceKind, uint32_t attribute);
/* False if the interface has no such attribute. */
bool attributesSetAnswer(tAttributeStore* store, const tSimulatorAttributeAnswer* answer);
/* Does nothing if the interface has no such attribute. */
void attributesRemove(tAttributeStore* store, uint32_t interfaceKind, uint32_t attribute);

/* The values that the controller interface returns for REQUEST_EXCHANGE_VALUES: the SMBIOS version
 * text and the SMBIOS structure table. */
typedef struct tSmbiosHandover {
  uint32_t textSize;
  uint32_t tableSize;
  uint8_t text[SIMULATOR_TEXT_CAPACITY];
  uint8_t table[SIMULATOR_TABLE_CAPACITY];
  bool hasAnswer; /* false: the plain answer */
  tSimulatorHandoverAnswer answer;
} tSmbiosHandover;

/* Return false and change nothing if `size` exceeds the capacity. Restore the plain answer. */
bool handoverSetText(tSmbiosHandover* handover, const void* text, uint32_t size);
bool handoverSetTable(tSmbiosHandover* handover, const void* table, uint32_t size);

#endif
