#ifndef ZOARKRA_DRIVERSTATUS_H
#define ZOARKRA_DRIVERSTATUS_H

#include "zoapal/protons/status/tstatus.h"
#include "zoapal/protons/status/zoerrstatus.h"

namespace zoark {

// A fresh record for one request, which tells the driver whether the caller carries a warning.
[[nodiscard]] nZOAPALS100::tStatus statusForDriver(const zoerr::Status& status) noexcept;

// What became of a request: a warning is merged into the status, an error is thrown as a
// zoerr::Exception.
void takeDriverStatus(const nZOAPALS100::tStatus& driver, zoerr::Status& status);

}  // namespace zoark

#endif
