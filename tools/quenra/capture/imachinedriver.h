#ifndef TOOLS_QUENRA_CAPTURE_IMACHINEDRIVER_H
#define TOOLS_QUENRA_CAPTURE_IMACHINEDRIVER_H

#include <cstdint>
#include <string>

#include "codegen/apalcodegen/tinterfaceproxy_hostcontroller.h"
#include "codegen/apalcodegen/tinterfaceproxy_hostmarten.h"
#include "tools/capture/machinerecord.h"

namespace nCommandLine {

// The machine below the library: its driver and its system.
class iMachineDriver {
 public:
  iMachineDriver() = default;
  iMachineDriver(const iMachineDriver&) = delete;
  iMachineDriver& operator=(const iMachineDriver&) = delete;
  virtual ~iMachineDriver() = default;

  // Open the first device interface of their kind, which must be present, and return the status code.
  // The interface may be called after a code that is not negative, until close().
  [[nodiscard]] virtual int32_t openController() noexcept = 0;
  [[nodiscard]] virtual int32_t openMarten() noexcept = 0;
  [[nodiscard]] virtual nQUENRA1400::nZOAPAL000::iInterfaceProxy_hostController&
  controller() noexcept = 0;
  [[nodiscard]] virtual nQUENRA1400::nZOAPAL000::iInterfaceProxy_hostMarten& marten() noexcept = 0;
  // Closes both interfaces.
  virtual void close() noexcept = 0;

  // The number of device interfaces of the trigger router.
  [[nodiscard]] virtual uint32_t devicePaths() noexcept = 0;
  // Reads the name of the router's topography through its first interface, which must be present.
  [[nodiscard]] virtual nCapture::tTopography topography() = 0;
  [[nodiscard]] virtual std::string systemVersion() = 0;
};

}  // namespace nCommandLine

#endif
