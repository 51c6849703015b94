/* Compile-time assertions of the memory layout that the driver expects, for C and C++. */
#ifndef PROTOCOL_LAYOUT_H
#define PROTOCOL_LAYOUT_H

#include <stdint.h>

#ifdef __cplusplus
#define PROTOCOL_ASSERT(condition) static_assert(condition, #condition)
#else
#define PROTOCOL_ASSERT(condition) _Static_assert(condition, #condition)
#endif

#define PROTOCOL_SIZE(type, bytes) PROTOCOL_ASSERT(sizeof(type) == (bytes))
#define PROTOCOL_OFFSET(type, field, bytes) \
  PROTOCOL_ASSERT(__builtin_offsetof(type, field) == (bytes))

#endif
