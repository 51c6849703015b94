#ifndef TOOLS_QUENRA_READING_TQUENRALIBRARY_H
#define TOOLS_QUENRA_READING_TQUENRALIBRARY_H

#include "tools/quenra/reading/iquenra.h"

namespace nCommandLine {

// Calls quenra.dll.
class tQuenraLibrary final : public iQuenra {
 public:
  int32_t openController(uint64_t* handle) noexcept override;
  void closeController(uint64_t handle) noexcept override;
  int32_t getAttributeUTF8(uint64_t handle, uint32_t attribute, char* buffer,
                           uint64_t* size) noexcept override;
  int32_t getAttributeU32(uint64_t handle, uint32_t attribute, uint32_t* value) noexcept override;
  int32_t setAttributeUTF8(uint64_t handle, uint32_t attribute, const char* text) noexcept override;
  int32_t setAttributeU32(uint64_t handle, uint32_t attribute, uint32_t value) noexcept override;
  int32_t updateFirmware2(uint64_t handle, const void* image, uint64_t size,
                          uint32_t options) noexcept override;
  int32_t performSelfTest(uint64_t handle) noexcept override;
  [[nodiscard]] uint32_t presentInterfaces(tInterface which) const noexcept override;
};

}  // namespace nCommandLine

#endif
