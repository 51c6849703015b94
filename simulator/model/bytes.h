/* Copies and fills memory without a C library. */
#ifndef SIMULATOR_MODEL_BYTES_H
#define SIMULATOR_MODEL_BYTES_H

#include <stdint.h>

/* The ranges must not overlap. With a size of 0 the pointers may be null. */
static inline void copyBytes(void* destination, const void* source, uint32_t size) {
  uint8_t* to = destination;
  const uint8_t* from = source;
  for (uint32_t i = 0; i < size; ++i) {
    to[i] = from[i];
  }
}

static inline void fillWithZeros(void* destination, uint32_t size) {
  uint8_t* to = destination;
  for (uint32_t i = 0; i < size; ++i) {
    to[i] = 0;
  }
}

static inline uint32_t smallerOf(uint32_t left, uint32_t right) {
  return left < right ? left : right;
}

#endif
