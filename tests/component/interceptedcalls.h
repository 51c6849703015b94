// Calls of the C library that a test intercepts. A program that uses this file is linked with --wrap=malloc,
// --wrap=calloc and --wrap=memchr. One object of a type at a time, on one thread.
#ifndef TESTS_COMPONENT_INTERCEPTEDCALLS_H
#define TESTS_COMPONENT_INTERCEPTEDCALLS_H

#include <cstdint>

namespace nTests {

// During its lifetime the nth call of malloc or calloc, from 1, fails; all others succeed.
class tShortMemory {
 public:
  explicit tShortMemory(unsigned nth) noexcept;
  tShortMemory(const tShortMemory&) = delete;
  tShortMemory& operator=(const tShortMemory&) = delete;
  ~tShortMemory();

  // True once the failing call has been made.
  [[nodiscard]] bool wasMet() const noexcept;
};

// Counts the bytes that memchr examines during its lifetime. The walk through an SMBIOS table calls
// memchr in every step, so the count is the work of all walks.
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
