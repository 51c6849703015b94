#include "tools/quenra/capture/tmachinereader.h"

#include "quenra_attributes.h"
#include "quenra_status.h"
#include "source/user/session/machineidentification.h"
#include "zoapal/protons/status/tstatus.h"
#include "zoapal/protons/status/zoerrstatus.h"

namespace nCommandLine {
namespace {

// The location of the loader that would otherwise run.
constexpr nZOAPALS100::tSourceLocation kNoTableInRecord{"tools\\quenra\\capture\\tMachineReader",
                                                        1};

// A status without memory for a description: the caller reports the code only.
constexpr zoerr::Status codeOnly() noexcept {
  return {0, 0, nullptr, nullptr};
}

}  // namespace

void tMachineReader::tProvider::load(nZOAPALS100::tStatus& status) noexcept {
  mergeStatus(status, nQUENRA1400::nZOSMBIOS_1_1::kNoTable, kNoTableInRecord);
}

int32_t tMachineReader::identify() noexcept {
  zoerr::Status status = codeOnly();
  nQUENRA1400::identifyMachine(access_.controller, provider_, memoryModules_, status);
  return status.code;
}

int32_t tMachineReader::readText(uint32_t attribute, char* buffer, uint64_t* size) noexcept {
  zoerr::Status status = codeOnly();
  nQUENRA1400::readTextAttribute(access_, attribute, buffer, size, status);
  return status.code;
}

int32_t tMachineReader::readUnsigned(uint32_t attribute, uint32_t* value) noexcept {
  zoerr::Status status = codeOnly();
  nQUENRA1400::readUnsignedAttribute(access_, attribute, *value, status);
  return status.code;
}

int32_t tReadOnlyLibrary::getAttributeUTF8(uint64_t /*handle*/, uint32_t attribute, char* buffer,
                                           uint64_t* size) noexcept {
  if (attribute == QUENRA_ATTRIBUTE_DEVICE_PATH) {
    return readDevicePath(buffer, size);
  }
  tMachineReader* const open = reader();
  return open != nullptr ? open->readText(attribute, buffer, size)
                         : int32_t{QUENRA_STATUS_INVALID_HANDLE};
}

int32_t tReadOnlyLibrary::getAttributeU32(uint64_t /*handle*/, uint32_t attribute,
                                          uint32_t* value) noexcept {
  tMachineReader* const open = reader();
  return open != nullptr ? open->readUnsigned(attribute, value)
                         : int32_t{QUENRA_STATUS_INVALID_HANDLE};
}

int32_t tReadOnlyLibrary::setAttributeUTF8(uint64_t /*handle*/, uint32_t /*attribute*/,
                                           const char* /*text*/) noexcept {
  return QUENRA_STATUS_REQUEST_NOT_SUPPORTED;
}

int32_t tReadOnlyLibrary::setAttributeU32(uint64_t /*handle*/, uint32_t /*attribute*/,
                                          uint32_t /*value*/) noexcept {
  return QUENRA_STATUS_REQUEST_NOT_SUPPORTED;
}

int32_t tReadOnlyLibrary::updateFirmware2(uint64_t /*handle*/, const void* /*image*/,
                                          uint64_t /*size*/, uint32_t /*options*/) noexcept {
  return QUENRA_STATUS_REQUEST_NOT_SUPPORTED;
}

}  // namespace nCommandLine
