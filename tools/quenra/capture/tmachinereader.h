// The library's own code for identifying a machine and reading its attributes, over any implementation of
// the driver's interfaces, and the functions of the library on top of it.
#ifndef TOOLS_QUENRA_CAPTURE_TMACHINEREADER_H
#define TOOLS_QUENRA_CAPTURE_TMACHINEREADER_H

#include <cstdint>

#include "codegen/apalcodegen/tinterfaceproxy_hostcontroller.h"
#include "codegen/apalcodegen/tinterfaceproxy_hostmarten.h"
#include "source/user/attributes/attributes.h"
#include "source/user/machine/smbiosfields.h"
#include "tools/quenra/reading/iquenra.h"
#include "zosmbios/czosmbiosprovider.h"

namespace nCommandLine {

class tMachineReader {
 public:
  using tControllerInterface = nQUENRA1400::nZOAPAL000::iInterfaceProxy_hostController;
  using tMartenInterface = nQUENRA1400::nZOAPAL000::iInterfaceProxy_hostMarten;

  // Both interfaces must outlive the object. One that is not open is never called.
  tMachineReader(tControllerInterface& controller, bool controllerIsOpen, tMartenInterface& marten,
                 bool martenIsOpen) noexcept
      : access_{provider_, memoryModules_, controller, marten, controllerIsOpen, martenIsOpen} {}
  tMachineReader(const tMachineReader&) = delete;
  tMachineReader& operator=(const tMachineReader&) = delete;
  ~tMachineReader() = default;

  // Fetches the SMBIOS table through the controller interface, which must be open. Returns the code with
  // which the library would open the controller. Call it once, before the others.
  [[nodiscard]] int32_t identify() noexcept;

  // As the functions of quenra.h, for a controller that is open.
  [[nodiscard]] int32_t readText(uint32_t attribute, char* buffer, uint64_t* size) noexcept;
  [[nodiscard]] int32_t readUnsigned(uint32_t attribute, uint32_t* value) noexcept;

 private:
  // A table that the driver does not provide is missing: the program must not read that of the system
  // that it runs on instead.
  class tProvider final : public nQUENRA1400::nZOSMBIOS_1_1::cZoSmBiosProvider {
   public:
    void load(nZOAPALS100::tStatus& status) noexcept override;
  };

  tProvider provider_;
  nQUENRA1400::tMemoryModules memoryModules_;
  nQUENRA1400::tAttributeAccess access_;
};

// The functions that read a controller, over a machine reader. Those that change one return
// QUENRA_STATUS_REQUEST_NOT_SUPPORTED.
class tReadOnlyLibrary : public iQuenra {
 public:
  int32_t getAttributeUTF8(uint64_t handle, uint32_t attribute, char* buffer,
                           uint64_t* size) noexcept override;
  int32_t getAttributeU32(uint64_t handle, uint32_t attribute, uint32_t* value) noexcept override;
  int32_t setAttributeUTF8(uint64_t handle, uint32_t attribute, const char* text) noexcept override;
  int32_t setAttributeU32(uint64_t handle, uint32_t attribute, uint32_t value) noexcept override;
  int32_t updateFirmware2(uint64_t handle, const void* image, uint64_t size,
                          uint32_t options) noexcept override;

 protected:
  // Null while no controller is open.
  [[nodiscard]] virtual tMachineReader* reader() noexcept = 0;
  // The path of the first trigger router, which needs no open controller.
  [[nodiscard]] virtual int32_t readDevicePath(char* buffer, uint64_t* size) noexcept = 0;
};

}  // namespace nCommandLine

#endif
