/* REQUEST_GET_ATTRIBUTE and REQUEST_SET_ATTRIBUTE, on the controller and the Marten interface. */
#include "simulator/model/bytes.h"
#include "simulator/model/driverrequests.h"

/* The caller's buffer is too small for the value; the reply contains the required size. */
enum {
  kStatusValueBufferTooSmall = -26930
};

static tGetAttributeReply getAttribute(const tModel* model, const tModelFile* file,
                                       const tGetAttributeRequest* request) {
  const tSimulatorAttribute* attribute =
      attributesFind(&model->attributes, file->interfaceKind, request->attribute);
  if (attribute == NULL) {
    return (tGetAttributeReply){.size = 0, .driverStatus = SIMULATOR_STATUS_NOT_SUPPORTED};
  }
  if (request->size < attribute->size) {
    return (tGetAttributeReply){.size = attribute->size,
                                .driverStatus = kStatusValueBufferTooSmall};
  }
  if (attribute->size != 0 &&
      !model->host.writeCaller(model->host.context, file->process, request->buffer,
                               attribute->value, attribute->size)) {
    return (tGetAttributeReply){.size = 0, .driverStatus = SIMULATOR_STATUS_BAD_ADDRESS};
  }
  return (tGetAttributeReply){.size = attribute->size, .driverStatus = 0};
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
  tSimulatorAttribute changed = *present;
  changed.size = (uint32_t)request->size;
  if (changed.size != 0 && !model->host.readCaller(model->host.context, file->process,
                                                   request->buffer, changed.value, changed.size)) {
    return SIMULATOR_STATUS_BAD_ADDRESS;
  }
  attributesPut(&model->attributes, &changed);
  return 0;
}

void carryOutSetAttribute(tModel* model, const tModelFile* file, const void* input, void* reply) {
  tSetAttributeRequest request;
  copyBytes(&request, input, sizeof(request));
  const tStatusReply answer = {setAttribute(model, file, &request)};
  copyBytes(reply, &answer, sizeof(answer));
}
