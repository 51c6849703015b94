#include "zoapal/protons/cppnewdelete/memoryallocation.h"

#include <algorithm>

namespace nQUENRA1400::nZOAPAL000 {
namespace {

constexpr nZOAPALS100::tSourceLocation kAllocationFailed{"memoryallocation", 327};

// No object is larger. Asking the heap for more would stop a program under a checking allocator.
constexpr size_t kLargestObject = PTRDIFF_MAX;

}  // namespace

void* allocateOrReport(size_t bytes, nZOAPALS100::tStatus& status) noexcept {
  if (status.isError()) {
    return nullptr;
  }
  void* const memory = bytes > kLargestObject ? nullptr : std::malloc(std::max(bytes, size_t{1}));
  if (memory == nullptr) {
    mergeStatus(status, nZOAPALS100::kMemoryFull, kAllocationFailed);
  }
  return memory;
}

tByteBuffer allocateZeroedBytes(size_t bytes, nZOAPALS100::tStatus& status) noexcept {
  if (status.isError()) {
    return nullptr;
  }
  const size_t size = std::max(bytes, size_t{1});
  tByteBuffer memory(size > kLargestObject ? nullptr : static_cast<uint8_t*>(std::calloc(size, 1)));
  if (!memory) {
    mergeStatus(status, nZOAPALS100::kMemoryFull, kAllocationFailed);
  }
  return memory;
}

tCharBuffer allocateZeroedText(uint64_t bytes) noexcept {
  const uint64_t size = std::max(bytes, uint64_t{1});
  return tCharBuffer(size > kLargestObject ? nullptr : static_cast<char*>(std::calloc(size, 1)));
}

}  // namespace nQUENRA1400::nZOAPAL000
