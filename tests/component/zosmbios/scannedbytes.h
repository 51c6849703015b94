#ifndef TESTS_COMPONENT_ZOSMBIOS_SCANNEDBYTES_H
#define TESTS_COMPONENT_ZOSMBIOS_SCANNEDBYTES_H

#include <cstdint>

namespace nTests {

// Counts the bytes that memchr examines during the object's life. The walk through an SMBIOS table
// calls memchr in every step, so the count is the work of all walks. One object at a time, on one
// thread. A program that uses it is linked with --wrap=memchr.
class tScannedBytes {
 public:
  tScannedBytes() noexcept;
  tScannedBytes(const tScannedBytes&) = delete;
  tScannedBytes& operator=(const tScannedBytes&) = delete;
  ~tScannedBytes();

  [[nodiscard]] uint64_t count() const noexcept;
};

}  // namespace nTests

#endif
