#ifndef TOOLS_QUENRA_READING_IQUENRA_H
#define TOOLS_QUENRA_READING_IQUENRA_H

#include <cstdint>
#include <string>

#include "tools/quenra/reading/reading.h"

namespace nCommandLine {

// The functions of quenra.h that the command line calls, with the contracts documented there, and
// the device interfaces of the system.
class iQuenra {
 public:
  iQuenra() = default;
  iQuenra(const iQuenra&) = delete;
  iQuenra& operator=(const iQuenra&) = delete;
  virtual ~iQuenra() = default;

  virtual int32_t openController(uint64_t* handle) noexcept = 0;
  virtual void closeController(uint64_t handle) noexcept = 0;
  virtual int32_t getAttributeUTF8(uint64_t handle, uint32_t attribute, char* buffer,
                                   uint64_t* size) noexcept = 0;
  virtual int32_t getAttributeU32(uint64_t handle, uint32_t attribute,
                                  uint32_t* value) noexcept = 0;
  virtual int32_t setAttributeUTF8(uint64_t handle, uint32_t attribute,
                                   const char* text) noexcept = 0;
  virtual int32_t setAttributeU32(uint64_t handle, uint32_t attribute, uint32_t value) noexcept = 0;
  virtual int32_t updateFirmware2(uint64_t handle, const void* image, uint64_t size,
                                  uint32_t options) noexcept = 0;
  virtual int32_t performSelfTest(uint64_t handle) noexcept = 0;

  // The number of device interfaces of the controller or the Marten that the system shows as present.
  [[nodiscard]] virtual uint32_t presentInterfaces(tInterface which) const noexcept = 0;
};

// The library that the program has loaded, and the account that runs the program.
class iInstallation {
 public:
  iInstallation() = default;
  iInstallation(const iInstallation&) = delete;
  iInstallation& operator=(const iInstallation&) = delete;
  virtual ~iInstallation() = default;

  // The version in the properties of the library: "1.2.3"; empty if it has none.
  [[nodiscard]] virtual std::string libraryVersion() = 0;
  // True if the process has the rights of an administrator, as an update requires.
  [[nodiscard]] virtual bool isAdministrator() noexcept = 0;
};

}  // namespace nCommandLine

#endif
