#ifndef ZOARKRA_MEMORY_H
#define ZOARKRA_MEMORY_H

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <memory_resource>
#include <new>
#include <utility>

#include "zoapal/protons/cppnewdelete/memoryallocation.h"

namespace zoark {

// The C heap, which serves all memory of the library. Throws std::bad_alloc, also for more than the
// fundamental alignment.
class tHeapResource final : public std::pmr::memory_resource {
  void* do_allocate(size_t bytes, size_t alignment) override {
    nZOAPALS100::tStatus status;
    void* const memory = alignment > alignof(std::max_align_t)
                             ? nullptr
                             : nQUENRA1400::nZOAPAL000::allocateOrReport(bytes, status);
    if (memory == nullptr) {
      throw std::bad_alloc();
    }
    return memory;
  }
  void do_deallocate(void* memory, size_t, size_t) override { std::free(memory); }
  // GCOVR_EXCL_START: no container swaps or moves between resources
  [[nodiscard]] bool do_is_equal(const memory_resource& other) const noexcept override {
    return this == &other;
  }
  // GCOVR_EXCL_STOP
};

[[nodiscard]] inline std::pmr::memory_resource* heapResource() noexcept {
  static tHeapResource resource;
  return &resource;
}

// The memory of one operation: bytes of its own first, then the heap. It frees nothing before its own
// end.
template <size_t kBytes>
class tStackMemory {
 public:
  tStackMemory() = default;
  tStackMemory(const tStackMemory&) = delete;
  tStackMemory& operator=(const tStackMemory&) = delete;

  [[nodiscard]] std::pmr::memory_resource* resource() noexcept { return &resource_; }

 private:
  alignas(std::max_align_t) std::array<std::byte, kBytes> bytes_;
  std::pmr::monotonic_buffer_resource resource_{bytes_.data(), bytes_.size(), heapResource()};
};

// The memory of the stack of a RapidJSON reader or writer: bytes of its own first, then the heap.
// RapidJSON does not check for null, so this throws std::bad_alloc. The names are RapidJSON's.
template <size_t kOwn>
class tJsonMemory {
 public:
  static constexpr bool kNeedFree = false;
  static constexpr size_t kOwnBytes = kOwn;

  tJsonMemory() = default;
  tJsonMemory(const tJsonMemory&) = delete;
  tJsonMemory& operator=(const tJsonMemory&) = delete;

  // NOLINTBEGIN(readability-identifier-naming)
  void* Malloc(size_t size) { return Realloc(nullptr, 0, size); }
  // `block` is null or the latest block.
  void* Realloc(void* block, size_t size, size_t newSize) {
    if (newSize <= own_.size() && heap_ == nullptr) {
      return own_.data();
    }
    nZOAPALS100::tStatus status;
    auto grown = nQUENRA1400::nZOAPAL000::allocateBytes(newSize, status);
    if (grown == nullptr) {
      throw std::bad_alloc();
    }
    if (block != nullptr) {
      std::memcpy(grown.get(), block, std::min(size, newSize));
    }
    heap_ = std::move(grown);
    return heap_.get();
  }
  static void Free(void*) noexcept {}
  // NOLINTEND(readability-identifier-naming)

 private:
  alignas(std::max_align_t) std::array<char, kOwnBytes> own_;
  nQUENRA1400::nZOAPAL000::tByteBuffer heap_;
};

}  // namespace zoark

#endif
