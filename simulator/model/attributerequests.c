/* REQUEST_GET_ATTRIBUTE and REQUEST_SET_ATTRIBUTE, on the controller and the Marten interface. */
#include "simulator/model/bytes.h"
#include "simulator/model/driverrequests.h"

/* The caller's buffer cannot hold the value; the reply tells the size needed. */
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

/* No attribute of the machine can be written yet, so the value is not even read. */
void carryOutSetAttribute(tModel* model, const tModelFile* file, const void* input, void* reply) {
  (void)model;
  (void)file;
  (void)input;
  const tStatusReply answer = {SIMULATOR_STATUS_NOT_SUPPORTED};
  copyBytes(reply, &answer, sizeof(answer));
}
