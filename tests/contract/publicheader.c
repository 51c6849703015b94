/* The public headers are C11: this file only has to compile, without any other header before. */
#include "quenra.h"

int32_t readEverything(uint64_t handle, char* text, uint64_t* size, uint32_t* number,
                       int32_t* signedNumber, double* floating);

int32_t readEverything(uint64_t handle, char* text, uint64_t* size, uint32_t* number,
                       int32_t* signedNumber, double* floating) {
  const uint32_t second = QUENRA_ATTRIBUTE_MEMORY_LOCATOR + 1;
  int32_t code = QUENRA_getAttributeUTF8(handle, second, text, size);
  if (code == QUENRA_STATUS_SUCCESS) {
    code = QUENRA_getAttributeU32(handle, QUENRA_ATTRIBUTE_MEMORY_SIZE | QUENRA_SELECTOR_CONTROLLER,
                                  number);
  }
  if (code == QUENRA_STATUS_SUCCESS) {
    code = QUENRA_getAttributeI32(handle, second, signedNumber);
  }
  return code == QUENRA_STATUS_NOT_SUPPORTED ? QUENRA_getAttributeDBL(handle, second, floating)
                                             : code;
}
