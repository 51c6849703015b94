#include "simulator/model/smbioshandover.h"

#include "protocol/controllerrequests.h"
#include "simulator/model/bytes.h"
#include "simulator/model/requests.h"

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

static bool bufferSuffices(uint64_t address, int64_t size, uint32_t needed) {
  return address != 0 && size >= (int64_t)needed;
}

static int32_t exchangeValues(const tModel* model, const tModelFile* file,
                              const tExchangeValuesRequest* request) {
  const tSmbiosHandover* handover = &model->handover;
  if (!bufferSuffices(request->textBuffer, request->textSize, handover->textSize) ||
      !bufferSuffices(request->tableBuffer, request->tableSize, handover->tableSize)) {
    return DRIVER_STATUS_BUFFER_TOO_SMALL;
  }
  const bool copied =
      writeToCaller(&model->host, file, request->textBuffer, handover->text, handover->textSize) &&
      writeToCaller(&model->host, file, request->tableBuffer, handover->table, handover->tableSize);
  return copied ? 0 : SIMULATOR_STATUS_BAD_ADDRESS;
}

void carryOutExchangeValues(tModel* model, const tModelFile* file, const void* input, void* reply) {
  tExchangeValuesRequest request;
  copyBytes(&request, input, sizeof(request));
  const tExchangeValuesReply answer = {
      .textSize = model->handover.textSize,
      .tableSize = model->handover.tableSize,
      .driverStatus = exchangeValues(model, file, &request),
  };
  copyBytes(reply, &answer, sizeof(answer));
}
