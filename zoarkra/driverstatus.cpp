#include "zoarkra/driverstatus.h"

#include "zoapal/protons/status/exception.h"

namespace zoark {

nZOAPALS100::tStatus statusForDriver(const zoerr::Status& status) noexcept {
  nZOAPALS100::tStatus driver;
  driver.code = status.code;
  return driver;
}

void takeDriverStatus(const nZOAPALS100::tStatus& driver, zoerr::Status& status) {
  if (driver.isError()) {
    zoerr::tOwnedStatus failure;
    failure.mergeFrom(driver);
    throw zoerr::Exception(failure);
  }
  status.mergeFrom(driver);
}

}  // namespace zoark
