// Capturing a machine: through the library, as its programs see it, and through the driver, as the library
// sees it.
#ifndef TOOLS_QUENRA_CAPTURE_CAPTURING_H
#define TOOLS_QUENRA_CAPTURE_CAPTURING_H

#include <string>
#include <vector>

#include "tools/capture/machinerecord.h"
#include "tools/quenra/capture/imachinedriver.h"
#include "tools/quenra/reading/iquenra.h"
#include "tools/quenra/routing/irouting.h"
#include "tools/quenra/update/updateports.h"

namespace nCommandLine {

struct tCapturePorts {
  iQuenra& library;
  iRouting& routing;
  iUpdateFacts& updateFacts;
  iMachineDriver& driver;
  iInstallation& installation;
};

// Reads everything that a record holds; writes nothing to the controller. A machine that cannot be opened
// is a result too.
[[nodiscard]] nCapture::tMachineRecord captureMachine(const tCapturePorts& ports);

// Names of the attributes for which the library on the replayed record does not return the recorded
// result: the machine changed during the capture, or the record does not describe it.
[[nodiscard]] std::vector<std::string> deviationsOf(const nCapture::tMachineRecord& record);

}  // namespace nCommandLine

#endif
