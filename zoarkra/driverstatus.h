#ifndef ZOARKRA_DRIVERSTATUS_H
#define ZOARKRA_DRIVERSTATUS_H

#include "zoapal/protons/status/tstatus.h"
#include "zoapal/protons/status/zoerrstatus.h"

namespace zoark {

// A fresh record for one request. Its code is the caller's, which the driver receives.
[[nodiscard]] nZOAPALS100::tStatus statusForDriver(const zoerr::Status& status) noexcept;

// Merges a warning of a request into the status, and throws an error as a zoerr::Exception.
void takeDriverStatus(const nZOAPALS100::tStatus& driver, zoerr::Status& status);

}  // namespace zoark

#endif
