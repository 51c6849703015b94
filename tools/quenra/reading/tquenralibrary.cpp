#include "tools/quenra/reading/tquenralibrary.h"

#include <windows.h>
// setupapi.h requires windows.h before it.
#include <setupapi.h>

#include <bit>

#include "protocol/interfaces.h"
#include "quenra.h"

namespace nCommandLine {
namespace {

uint32_t countPresent(const tInterfaceClass& interfaceClass) noexcept {
  const auto guid = std::bit_cast<GUID>(interfaceClass);
  const HDEVINFO set =
      SetupDiGetClassDevsA(&guid, nullptr, nullptr, DIGCF_PRESENT | DIGCF_DEVICEINTERFACE);
  if (set == INVALID_HANDLE_VALUE) {
    return 0;
  }
  SP_DEVICE_INTERFACE_DATA data{};
  data.cbSize = sizeof data;
  uint32_t count = 0;
  while (SetupDiEnumDeviceInterfaces(set, nullptr, &guid, count, &data)) {
    ++count;
  }
  SetupDiDestroyDeviceInfoList(set);
  return count;
}

}  // namespace

int32_t tQuenraLibrary::openController(uint64_t* handle) noexcept {
  return QUENRA_openController(handle);
}

void tQuenraLibrary::closeController(uint64_t handle) noexcept {
  QUENRA_closeController(handle);
}

int32_t tQuenraLibrary::getAttributeUTF8(uint64_t handle, uint32_t attribute, char* buffer,
                                         uint64_t* size) noexcept {
  return QUENRA_getAttributeUTF8(handle, attribute, buffer, size);
}

int32_t tQuenraLibrary::getAttributeU32(uint64_t handle, uint32_t attribute,
                                        uint32_t* value) noexcept {
  return QUENRA_getAttributeU32(handle, attribute, value);
}

int32_t tQuenraLibrary::setAttributeUTF8(uint64_t handle, uint32_t attribute,
                                         const char* text) noexcept {
  return QUENRA_setAttributeUTF8(handle, attribute, text);
}

int32_t tQuenraLibrary::setAttributeU32(uint64_t handle, uint32_t attribute,
                                        uint32_t value) noexcept {
  return QUENRA_setAttributeU32(handle, attribute, value);
}

int32_t tQuenraLibrary::updateFirmware2(uint64_t handle, const void* image, uint64_t size,
                                        uint32_t options) noexcept {
  return QUENRA_updateFirmware2(handle, image, size, options);
}

int32_t tQuenraLibrary::performSelfTest(uint64_t handle) noexcept {
  return QUENRA_performSelfTest(handle);
}

uint32_t tQuenraLibrary::presentInterfaces(tInterface which) const noexcept {
  return countPresent(which == tInterface::marten ? kMartenInterfaceClass
                                                  : kControllerInterfaceClass);
}

}  // namespace nCommandLine
