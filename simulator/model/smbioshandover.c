#include "simulator/model/smbioshandover.h"

#include "simulator/model/bytes.h"

bool handoverSetText(tSmbiosHandover* handover, const void* text, uint32_t size) {
  if (size > SIMULATOR_TEXT_CAPACITY) {
    return false;
  }
  copyBytes(handover->text, text, size);
  handover->textSize = size;
  return true;
}

bool handoverSetTable(tSmbiosHandover* handover, const void* table, uint32_t size) {
  if (size > SIMULATOR_TABLE_CAPACITY) {
    return false;
  }
  copyBytes(handover->table, table, size);
  handover->tableSize = size;
  return true;
}
