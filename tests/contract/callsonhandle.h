// One call of every export that accepts a handle, each with valid other arguments.
#ifndef TESTS_CONTRACT_CALLSONHANDLE_H
#define TESTS_CONTRACT_CALLSONHANDLE_H

#include <cstdint>

#include "quenra.h"

namespace nTests {

struct tCallOnHandle {
  const char* name;
  int32_t (*call)(uint64_t handle);
};

// QUENRA_closeController, which returns no code, is not among them.
inline constexpr tCallOnHandle kCallsOnHandle[] = {
    {"getAttributeUTF8",
     [](uint64_t handle) {
       char text[64] = "";
       uint64_t size = sizeof text;
       return QUENRA_getAttributeUTF8(handle, QUENRA_ATTRIBUTE_PRODUCT_NAME, text, &size);
     }},
    {"getAttributeU32",
     [](uint64_t handle) {
       uint32_t value = 0;
       return QUENRA_getAttributeU32(handle, QUENRA_ATTRIBUTE_MEMORY_SIZE, &value);
     }},
    {"getAttributeI32",
     [](uint64_t handle) {
       int32_t value = 0;
       return QUENRA_getAttributeI32(handle, QUENRA_ATTRIBUTE_MEMORY_SIZE, &value);
     }},
    {"getAttributeDBL",
     [](uint64_t handle) {
       double value = 0;
       return QUENRA_getAttributeDBL(handle, QUENRA_ATTRIBUTE_MEMORY_SIZE, &value);
     }},
    {"setAttributeUTF8",
     [](uint64_t handle) {
       return QUENRA_setAttributeUTF8(handle, QUENRA_TEXT_SETTING_OF_BOTH, "text");
     }},
    {"setAttributeU32",
     [](uint64_t handle) {
       return QUENRA_setAttributeU32(handle, QUENRA_ATTRIBUTE_DRIVER_SETTING_1, 5);
     }},
    {"updateFirmware", [](uint64_t handle) { return QUENRA_updateFirmware(handle, "", 0); }},
    {"updateFirmware2", [](uint64_t handle) { return QUENRA_updateFirmware2(handle, "", 0, 1); }},
    {"performSelfTest", [](uint64_t handle) { return QUENRA_performSelfTest(handle); }},
};

inline constexpr uint64_t kWrongHandles[] = {0, 1, QUENRA_HANDLE - 1,
                                             QUENRA_HANDLE + (uint64_t{1} << 32), ~uint64_t{0}};

}  // namespace nTests

#endif
