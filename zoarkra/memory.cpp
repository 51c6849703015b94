#include "zoarkra/memory.h"

#include <cstddef>
#include <cstdlib>
#include <new>

#include "zoapal/protons/cppnewdelete/memoryallocation.h"

namespace zoark {
namespace {

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
  [[nodiscard]] bool do_is_equal(const memory_resource& other) const noexcept override {
    return this == &other;
  }
};

}  // namespace

std::pmr::memory_resource* heapResource() noexcept {
  static tHeapResource resource;
  return &resource;
}

}  // namespace zoark
