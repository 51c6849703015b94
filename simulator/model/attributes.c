#include "simulator/model/attributes.h"

#include <stddef.h>

#include "protocol/controllerrequests.h"
#include "simulator/model/bytes.h"
#include "simulator/model/requests.h"

enum {
  kSelectorMask = 0x00F00000,
  /* The caller's buffer is too small for the value; the reply contains the required size. */
  kStatusValueBufferTooSmall = -26930
};

/* ---- The store ---- */

static bool areEqualIds(uint32_t left, uint32_t right) {
  return ((left ^ right) & ~(uint32_t)kSelectorMask) == 0;
}

static uint32_t indexOf(const tAttributeStore* store, uint32_t interfaceKind, uint32_t attribute) {
  for (uint32_t i = 0; i < store->count; ++i) {
    const tSimulatorAttribute* entry = &store->entries[i];
    if (entry->interfaceKind == interfaceKind && areEqualIds(entry->attribute, attribute)) {
      return i;
    }
  }
  return store->count;
}

void attributesClear(tAttributeStore* store) {
  store->count = 0;
}

const tSimulatorAttribute* attributesFind(const tAttributeStore* store, uint32_t interfaceKind,
                                          uint32_t attribute) {
  const uint32_t index = indexOf(store, interfaceKind, attribute);
  return index < store->count ? &store->entries[index] : NULL;
}

bool attributesPut(tAttributeStore* store, const tSimulatorAttribute* attribute) {
  const uint32_t index = indexOf(store, attribute->interfaceKind, attribute->attribute);
  if (index == SIMULATOR_ATTRIBUTE_CAPACITY) {
    return false;
  }
  store->entries[index] = *attribute;
  fillWithZeros(&store->answers[index], sizeof(store->answers[index]));
  if (index == store->count) {
    store->writable[index] = false;
    ++store->count;
  }
  return true;
}

void attributesRemove(tAttributeStore* store, uint32_t interfaceKind, uint32_t attribute) {
  const uint32_t index = indexOf(store, interfaceKind, attribute);
  if (index < store->count) {
    --store->count;
    store->entries[index] = store->entries[store->count];
    store->writable[index] = store->writable[store->count];
    store->answers[index] = store->answers[store->count];
  }
}

bool attributesSetWritable(tAttributeStore* store, uint32_t interfaceKind, uint32_t attribute,
                           bool writable) {
  const uint32_t index = indexOf(store, interfaceKind, attribute);
  if (index == store->count) {
    return false;
  }
  store->writable[index] = writable;
  return true;
}

bool attributesIsWritable(const tAttributeStore* store, uint32_t interfaceKind,
                          uint32_t attribute) {
  const uint32_t index = indexOf(store, interfaceKind, attribute);
  return index < store->count && store->writable[index];
}

bool attributesSetAnswer(tAttributeStore* store, const tSimulatorAttributeAnswer* answer) {
  const uint32_t index = indexOf(store, answer->interfaceKind, answer->attribute);
  if (index == store->count) {
    return false;
  }
  store->answers[index] = *answer;
  return true;
}

/* ---- The requests ---- */

static tGetAttributeReply getAttribute(tModel* model, const tModelFile* file,
                                       const tGetAttributeRequest* request) {
  const tAttributeStore* store = &model->attributes;
  const uint32_t index = indexOf(store, file->interfaceKind, request->attribute);
  if (index == store->count) {
    return (tGetAttributeReply){.size = 0, .driverStatus = SIMULATOR_STATUS_NOT_SUPPORTED};
  }
  const tSimulatorAttribute* attribute = &store->entries[index];
  const tSimulatorAttributeAnswer* answer = &store->answers[index];
  model->replyDelay = answer->delay;
  if (answer->driverStatus < 0) {
    return (tGetAttributeReply){.size = answer->size, .driverStatus = answer->driverStatus};
  }
  if (request->size < attribute->size) {
    return (tGetAttributeReply){.size = attribute->size,
                                .driverStatus = kStatusValueBufferTooSmall};
  }
  if (!writeToCaller(&model->host, file, request->buffer, attribute->value, attribute->size)) {
    return (tGetAttributeReply){.size = 0, .driverStatus = SIMULATOR_STATUS_BAD_ADDRESS};
  }
  return (tGetAttributeReply){.size = attribute->size, .driverStatus = answer->driverStatus};
}

void carryOutGetAttribute(tModel* model, const tModelFile* file, const void* input, void* reply) {
  tGetAttributeRequest request;
  copyBytes(&request, input, sizeof(request));
  const tGetAttributeReply answer = getAttribute(model, file, &request);
  copyBytes(reply, &answer, sizeof(answer));
}

/* A write must not change the size of a number; a text accepts any size. */
static bool fits(const tSimulatorAttribute* attribute, int32_t size) {
  const bool isNumber = attribute->attribute >> 28 == 2;
  return isNumber ? size == (int32_t)sizeof(uint32_t)
                  : size >= 0 && size <= SIMULATOR_VALUE_CAPACITY;
}

static int32_t setAttribute(tModel* model, const tModelFile* file,
                            const tSetAttributeRequest* request) {
  const tSimulatorAttribute* present =
      attributesFind(&model->attributes, file->interfaceKind, request->attribute);
  if (present == NULL ||
      !attributesIsWritable(&model->attributes, file->interfaceKind, request->attribute)) {
    return SIMULATOR_STATUS_NOT_SUPPORTED;
  }
  if (!fits(present, request->size)) {
    return SIMULATOR_STATUS_BAD_VALUE;
  }
  /* Setting the value would restore the plain answer. */
  const tSimulatorAttributeAnswer answer =
      model->attributes.answers[present - model->attributes.entries];
  tSimulatorAttribute changed = *present;
  changed.size = (uint32_t)request->size;
  if (!readFromCaller(&model->host, file, request->buffer, changed.value, changed.size)) {
    return SIMULATOR_STATUS_BAD_ADDRESS;
  }
  attributesPut(&model->attributes, &changed);
  attributesSetAnswer(&model->attributes, &answer);
  return 0;
}

void carryOutSetAttribute(tModel* model, const tModelFile* file, const void* input, void* reply) {
  tSetAttributeRequest request;
  copyBytes(&request, input, sizeof(request));
  const tStatusReply answer = {setAttribute(model, file, &request)};
  copyBytes(reply, &answer, sizeof(answer));
}

/* ---- The SMBIOS version text and table ---- */

bool handoverSetText(tSmbiosHandover* handover, const void* text, uint32_t size) {
  if (size > SIMULATOR_TEXT_CAPACITY) {
    return false;
  }
  copyBytes(handover->text, text, size);
  handover->textSize = size;
  handover->hasAnswer = false;
  return true;
}

bool handoverSetTable(tSmbiosHandover* handover, const void* table, uint32_t size) {
  if (size > SIMULATOR_TABLE_CAPACITY) {
    return false;
  }
  copyBytes(handover->table, table, size);
  handover->tableSize = size;
  handover->hasAnswer = false;
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

/* The configured answer to one of the two requests. */
static tExchangeValuesReply answerHandover(tModel* model, const tModelFile* file,
                                           const tExchangeValuesRequest* request) {
  const tSimulatorHandoverAnswer* configured = &model->handover.answer;
  const bool isQuery = request->textBuffer == 0 && request->tableBuffer == 0;
  const tSimulatorSizesAnswer* answer = isQuery ? &configured->query : &configured->values;
  const bool returnsBytes = !isQuery && answer->driverStatus >= 0;
  const int32_t status = returnsBytes ? exchangeValues(model, file, request) : 0;
  model->replyDelay = answer->delay;
  return (tExchangeValuesReply){.textSize = answer->textSize,
                                .tableSize = answer->tableSize,
                                .driverStatus = status < 0 ? status : answer->driverStatus};
}

void carryOutExchangeValues(tModel* model, const tModelFile* file, const void* input, void* reply) {
  tExchangeValuesRequest request;
  copyBytes(&request, input, sizeof(request));
  if (model->handover.hasAnswer) {
    const tExchangeValuesReply configured = answerHandover(model, file, &request);
    copyBytes(reply, &configured, sizeof(configured));
    return;
  }
  const tExchangeValuesReply answer = {
      .textSize = model->handover.textSize,
      .tableSize = model->handover.tableSize,
      .driverStatus = exchangeValues(model, file, &request),
  };
  copyBytes(reply, &answer, sizeof(answer));
}
