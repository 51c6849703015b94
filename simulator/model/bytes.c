#include "simulator/model/bytes.h"

void copyBytes(void* destination, const void* source, uint32_t size) {
  uint8_t* to = destination;
  const uint8_t* from = source;
  for (uint32_t i = 0; i < size; ++i) {
    to[i] = from[i];
  }
}

void fillWithZeros(void* destination, uint32_t size) {
  uint8_t* to = destination;
  for (uint32_t i = 0; i < size; ++i) {
    to[i] = 0;
  }
}
