#ifndef ZOAPAL_PROTONS_STATUS_WIN32ERROR_H
#define ZOAPAL_PROTONS_STATUS_WIN32ERROR_H

#include <cstdint>

#include "zoapal/protons/status/tstatus.h"

namespace nZOAPALS100 {

// The status code for a Windows error: 0 for 0, kGenericFailure for an error without a code of its
// own. Pending I/O gives a warning on purpose.
[[nodiscard]] int32_t statusOfWin32Error(uint32_t win32Error) noexcept;

// Merges the code for a Windows error, raised by component "quenra" at the given place. Error 0
// changes nothing.
void mergeWin32Error(uint32_t win32Error, tStatus& status, const char* file,
                     uint32_t line) noexcept;

// For a call that is known to have failed: as mergeWin32Error, except that a missing error (0) is a
// failure too, kGenericFailure, so that it can never look like success.
void mergeWin32Failure(uint32_t win32Error, tStatus& status, const char* file,
                       uint32_t line) noexcept;

}  // namespace nZOAPALS100

#endif
