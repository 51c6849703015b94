/* The values that the controller interface returns for REQUEST_EXCHANGE_VALUES: the SMBIOS version
 * text and the SMBIOS structure table. */
#ifndef SIMULATOR_MODEL_SMBIOSHANDOVER_H
#define SIMULATOR_MODEL_SMBIOSHANDOVER_H

#include <stdbool.h>
#include <stdint.h>

#include "simulator/protocol/controlprotocol.h"

typedef struct tSmbiosHandover {
  uint32_t textSize;
  uint32_t tableSize;
  uint8_t text[SIMULATOR_TEXT_CAPACITY];
  uint8_t table[SIMULATOR_TABLE_CAPACITY];
} tSmbiosHandover;

/* Returns false and changes nothing if `size` exceeds the capacity. */
bool handoverSetText(tSmbiosHandover* handover, const void* text, uint32_t size);
bool handoverSetTable(tSmbiosHandover* handover, const void* table, uint32_t size);

#endif
