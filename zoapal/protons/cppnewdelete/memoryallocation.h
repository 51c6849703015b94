#ifndef ZOAPAL_PROTONS_CPPNEWDELETE_MEMORYALLOCATION_H
#define ZOAPAL_PROTONS_CPPNEWDELETE_MEMORYALLOCATION_H

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>

#include "zoapal/protons/status/tstatus.h"

namespace nQUENRA1400::nZOAPAL000 {

struct tFree {
  void operator()(void* memory) const noexcept { std::free(memory); }
};

// Memory of the C heap, owned.
using tByteBuffer = std::unique_ptr<uint8_t[], tFree>;
using tCharBuffer = std::unique_ptr<char[], tFree>;

// Allocates from the C heap; release the memory with std::free. Never null without an error in
// the status, also for 0 bytes. Null when the status holds an error already, and with kMemoryFull
// when memory is short.
[[nodiscard]] void* allocateOrReport(size_t bytes, nZOAPALS100::tStatus& status) noexcept;

[[nodiscard]] inline tByteBuffer allocateBytes(size_t bytes,
                                               nZOAPALS100::tStatus& status) noexcept {
  return tByteBuffer(static_cast<uint8_t*>(allocateOrReport(bytes, status)));
}

// The same, zeroed. The system supplies large zeroed memory page by page as it is used.
[[nodiscard]] tByteBuffer allocateZeroedBytes(size_t bytes, nZOAPALS100::tStatus& status) noexcept;

// Zeroed memory for `bytes` characters, at least one; null when memory is short.
[[nodiscard]] tCharBuffer allocateZeroedText(uint64_t bytes) noexcept;

}  // namespace nQUENRA1400::nZOAPAL000

#endif
