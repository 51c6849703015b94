/* The device interfaces that the driver publishes, and the macros with which the other headers of
 * this folder define its requests. */
#ifndef PROTOCOL_INTERFACES_H
#define PROTOCOL_INTERFACES_H

#include <stdint.h>

/* Compile-time assertions of the memory layout that the driver expects, for C and C++. */
#ifdef __cplusplus
#define PROTOCOL_ASSERT(condition) static_assert(condition, #condition)
#else
#define PROTOCOL_ASSERT(condition) _Static_assert(condition, #condition)
#endif

#define PROTOCOL_SIZE(type, bytes) PROTOCOL_ASSERT(sizeof(type) == (bytes))
#define PROTOCOL_OFFSET(type, field, bytes) \
  PROTOCOL_ASSERT(__builtin_offsetof(type, field) == (bytes))

/* A device control code: device type in bits 16-31, access in bits 14-15, function in bits 2-13,
 * transfer method in bits 0-1. Every request uses the buffered method, 0. */
#define PROTOCOL_REQUEST_CODE(deviceType, access, function) \
  ((0u + (deviceType)) << 16 | (0u + (access)) << 14 | (0u + (function)) << 2)

/* A GUID with the layout of the operating system's record. */
typedef struct tInterfaceClass {
  uint32_t data1;
  uint16_t data2;
  uint16_t data3;
  uint8_t data4[8];
} tInterfaceClass;
PROTOCOL_SIZE(tInterfaceClass, 16);

/* {3238F9E5-71EA-4E33-B8D9-AABD2BE0C9E7}: the controller itself; exactly one may be present. */
static const tInterfaceClass kControllerInterfaceClass = {
    0x3238F9E5, 0x71EA, 0x4E33, {0xB8, 0xD9, 0xAA, 0xBD, 0x2B, 0xE0, 0xC9, 0xE7}};

/* {86323179-590C-46CB-AF2C-88CC76AA8FE8}: the Marten device; at most one may be present. */
static const tInterfaceClass kMartenInterfaceClass = {
    0x86323179, 0x590C, 0x46CB, {0xAF, 0x2C, 0x88, 0xCC, 0x76, 0xAA, 0x8F, 0xE8}};

/* {23C0848A-7CF1-4BE5-8A27-B34818445CC4}: the device that serves trigger routes. The device path
 * attribute returns its path. */
static const tInterfaceClass kDevicePathInterfaceClass = {
    0x23C0848A, 0x7CF1, 0x4BE5, {0x8A, 0x27, 0xB3, 0x48, 0x18, 0x44, 0x5C, 0xC4}};

#endif
