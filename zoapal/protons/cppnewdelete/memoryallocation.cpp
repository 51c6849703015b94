#include "zoapal/protons/cppnewdelete/memoryallocation.h"

#include <algorithm>

namespace nQUENRA1400::nZOAPAL000 {
namespace {

constexpr nZOAPALS100::tSourceLocation kAllocationFailed{"memoryallocation", 327};

// No object is larger. Some checking allocators terminate the process when a larger size is requested.
constexpr size_t kMaxObjectSize = PTRDIFF_MAX;

// At least one byte; null when memory is short.
void* zeroedMemory(size_t bytes) noexcept {
  return bytes > kMaxObjectSize ? nullptr : std::calloc(std::max(bytes, size_t{1}), 1);
}

}  // namespace

void* allocateOrReport(size_t bytes, nZOAPALS100::tStatus& status) noexcept {
  if (status.isError()) {
    return nullptr;
  }
  void* const memory = bytes > kMaxObjectSize ? nullptr : std::malloc(std::max(bytes, size_t{1}));
  if (memory == nullptr) {
    mergeStatus(status, nZOAPALS100::kMemoryFull, kAllocationFailed);
  }
  return memory;
}

tByteBuffer allocateZeroedBytes(size_t bytes, nZOAPALS100::tStatus& status) noexcept {
  if (status.isError()) {
    return nullptr;
  }
  tByteBuffer memory(static_cast<uint8_t*>(zeroedMemory(bytes)));
  if (!memory) {
    mergeStatus(status, nZOAPALS100::kMemoryFull, kAllocationFailed);
  }
  return memory;
}

tCharBuffer allocateZeroedText(uint64_t bytes) noexcept {
  return tCharBuffer(static_cast<char*>(zeroedMemory(bytes)));
}

}  // namespace nQUENRA1400::nZOAPAL000
