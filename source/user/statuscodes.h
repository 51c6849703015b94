#ifndef SOURCE_USER_STATUSCODES_H
#define SOURCE_USER_STATUSCODES_H

#include <cstdint>

#include "protocol/controllerrequests.h"
#include "quenra_status.h"
#include "zoapal/protons/status/tstatus.h"
#include "zosmbios/czosmbiosprovider.h"

namespace nQUENRA1400 {

// Codes that the controller session raises itself.
inline constexpr int32_t kBufferTooSmall = QUENRA_STATUS_BUFFER_TOO_SMALL;
inline constexpr int32_t kInvalidHandle = QUENRA_STATUS_INVALID_HANDLE;
inline constexpr int32_t kNoController = QUENRA_STATUS_NO_CONTROLLER;
inline constexpr int32_t kOutOfMemory = QUENRA_STATUS_OUT_OF_MEMORY;
inline constexpr int32_t kAttributeNotSupported = QUENRA_STATUS_NOT_SUPPORTED;
inline constexpr int32_t kInvalidValue = QUENRA_STATUS_INVALID_VALUE;
inline constexpr int32_t kUpdateEnvironment = QUENRA_STATUS_UPDATE_ENVIRONMENT;
inline constexpr int32_t kInvalidImage = QUENRA_STATUS_INVALID_IMAGE;
inline constexpr int32_t kDriveProtected = QUENRA_STATUS_DRIVE_PROTECTED;
inline constexpr int32_t kImageVersion = QUENRA_STATUS_IMAGE_VERSION;

// The layers below name their codes themselves; applications see them under the public names.
static_assert(nZOAPALS100::kMemoryFull == QUENRA_STATUS_MEMORY_FULL);
static_assert(nZOAPALS100::kNotSupported == QUENRA_STATUS_REQUEST_NOT_SUPPORTED);
static_assert(nZOAPALS100::kGenericFailure == QUENRA_STATUS_GENERIC_FAILURE);
static_assert(nZOAPALS100::kInvalidParameter == QUENRA_STATUS_INVALID_PARAMETER);
static_assert(nZOAPALS100::kNotFound == QUENRA_STATUS_NOT_FOUND);
static_assert(nZOAPALS100::kTimeOut == QUENRA_STATUS_TIME_OUT);
static_assert(nZOAPALS100::kInternalError == QUENRA_STATUS_INTERNAL_ERROR);
static_assert(nZOAPALS100::kAccessDenied == QUENRA_STATUS_ACCESS_DENIED);
static_assert(nZOAPALS100::kNotReady == QUENRA_STATUS_NOT_READY);
static_assert(nZOAPALS100::kIoPending == QUENRA_STATUS_IO_PENDING);
static_assert(nZOAPALS100::kEndOfFile == QUENRA_STATUS_END_OF_FILE);
static_assert(nZOAPALS100::kAlreadyExists == QUENRA_STATUS_ALREADY_EXISTS);
static_assert(nZOAPALS100::kPathTooLong == QUENRA_STATUS_PATH_TOO_LONG);
static_assert(nZOAPALS100::kDeviceRemoved == QUENRA_STATUS_DEVICE_REMOVED);
static_assert(nZOAPALS100::kSystemRefused == QUENRA_STATUS_SYSTEM_REFUSED);
static_assert(nZOAPALS100::kBusy == QUENRA_STATUS_BUSY);
static_assert(nZOSMBIOS_1_1::kNoString == QUENRA_STATUS_SMBIOS_NO_STRING);
static_assert(nZOSMBIOS_1_1::kBufferTooSmall == QUENRA_STATUS_SMBIOS_BUFFER_TOO_SMALL);
static_assert(nZOSMBIOS_1_1::kFieldNotFound == QUENRA_STATUS_SMBIOS_NOT_FOUND);
static_assert(nZOSMBIOS_1_1::kTableMalformed == QUENRA_STATUS_SMBIOS_MALFORMED);
static_assert(nZOSMBIOS_1_1::kNoTable == QUENRA_STATUS_SMBIOS_NO_TABLE);
static_assert(DRIVER_STATUS_BUFFER_TOO_SMALL == QUENRA_STATUS_DRIVER_BUFFER_TOO_SMALL);

}  // namespace nQUENRA1400

#endif
