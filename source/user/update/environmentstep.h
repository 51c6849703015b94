// Steps of an update that need something of the system. This header includes no header of Windows: the
// generator of random bytes would then read others that not every system has.
#ifndef SOURCE_USER_UPDATE_ENVIRONMENTSTEP_H
#define SOURCE_USER_UPDATE_ENVIRONMENTSTEP_H

#include <string>

#include "zoapal/protons/status/tstatus.h"
#include "zoapal/protons/status/zoerrstatus.h"

namespace nQUENRA1400 {

// Call in a handler: reports the exception being handled as a failure of the system at a location.
// QUENRA_STATUS_OUT_OF_MEMORY when the system reports short memory, otherwise
// QUENRA_STATUS_UPDATE_ENVIRONMENT. Passes on what is not a failure of the system, among others
// std::bad_alloc.
void reportEnvironmentFailure(const nZOAPALS100::tSourceLocation& location, zoerr::Status& status);

// Runs a step of the update that needs something of the system: random bytes, a directory, a converted
// name. Reports its failure as above; does nothing when the status holds an error.
template <class Step>
void runEnvironmentStep(const nZOAPALS100::tSourceLocation& location, zoerr::Status& status,
                        Step step) {
  if (status.isError()) {
    return;
  }
  try {
    step();
  } catch (...) {
    reportEnvironmentFailure(location, status);
  }
}

// Returns the text of a random UUID. Throws boost::uuids::entropy_error when the system has no random
// bytes.
[[nodiscard]] std::string randomFolderName();

}  // namespace nQUENRA1400

#endif
