#include "tests/fakewindows/allocationplan.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <mutex>
#include <new>

#include "tests/fakewindows/faultplan.h"

extern "C" {
void* __real_malloc(size_t size);
void* __real_calloc(size_t count, size_t size);
void* __real_realloc(void* memory, size_t size);
void __real_free(void* memory);
void* __wrap_malloc(size_t size);
void* __wrap_calloc(size_t count, size_t size);
void* __wrap_realloc(void* memory, size_t size);
void __wrap_free(void* memory);
}

namespace nFakeWindows {
namespace {

struct tState {
  bool armed = false;
  unsigned count = 0;
  unsigned failing = 0;
};
thread_local tState state;

bool isWatched() noexcept {
  return state.armed && !tInside::isActive();
}

bool isToFail() noexcept {
  return isWatched() && ++state.count == state.failing;
}

// The blocks in use that were allocated while a plan existed. Addresses are stored inverted: the
// leak sanitizer would otherwise find a leaked block through this table and not report it.
class tBlocks {
 public:
  void add(const void* memory, size_t size) noexcept {
    const std::lock_guard lock(mutex_);
    tBlock* block = find(kFree);
    if (block == nullptr) {
      if (end_ == blocks_.size()) {
        stop("tAllocationPlan", "more blocks than can be kept");
      }
      block = &blocks_[end_++];
    }
    *block = {keyOf(memory), size};
    bytes_ += size;
    ++used_;
  }
  // Does nothing for an unknown block.
  void remove(const void* memory) noexcept {
    const std::lock_guard lock(mutex_);
    tBlock* const block = used_ == 0 || memory == nullptr ? nullptr : find(keyOf(memory));
    if (block != nullptr) {
      bytes_ -= block->size;
      *block = {};
      --used_;
      end_ = used_ == 0 ? 0 : end_;
    }
  }
  [[nodiscard]] size_t bytes() noexcept {
    const std::lock_guard lock(mutex_);
    return bytes_;
  }

 private:
  static constexpr uintptr_t kFree = 0;
  struct tBlock {
    uintptr_t key = kFree;
    size_t size = 0;
  };

  static uintptr_t keyOf(const void* memory) noexcept {
    return ~reinterpret_cast<uintptr_t>(memory);
  }
  // Linear: few blocks are in use at a time.
  tBlock* find(uintptr_t key) noexcept {
    for (size_t i = 0; i < end_; ++i) {
      if (blocks_[i].key == key) {
        return &blocks_[i];
      }
    }
    return nullptr;
  }

  std::mutex mutex_;
  std::array<tBlock, 4096> blocks_{};
  size_t bytes_ = 0;
  size_t used_ = 0;
  size_t end_ = 0;  // blocks from here on have never been used
};
constinit tBlocks blocks;

void* watched(void* memory, size_t size) noexcept {
  if (memory != nullptr && isWatched()) {
    blocks.add(memory, size);
  }
  return memory;
}

}  // namespace

size_t bytesInUse() noexcept {
  return blocks.bytes();
}

tAllocationPlan::tAllocationPlan(unsigned nth) noexcept {
  state = {true, 0, nth};
}

tAllocationPlan::~tAllocationPlan() {
  state.armed = false;
}

unsigned tAllocationPlan::count() const noexcept {
  return state.count;
}

}  // namespace nFakeWindows

using nFakeWindows::blocks;
using nFakeWindows::isToFail;
using nFakeWindows::watched;

void* __wrap_malloc(size_t size) {
  return isToFail() ? nullptr : watched(__real_malloc(size), size);
}

void* __wrap_calloc(size_t count, size_t size) {
  return isToFail() ? nullptr : watched(__real_calloc(count, size), count * size);
}

void* __wrap_realloc(void* memory, size_t size) {
  if (isToFail()) {
    return nullptr;
  }
  // First: another thread may own the address after realloc. A failed realloc loses the entry.
  blocks.remove(memory);
  return watched(__real_realloc(memory, size), size);
}

void __wrap_free(void* memory) {
  blocks.remove(memory);
  __real_free(memory);
}

void* operator new(size_t size, const std::nothrow_t&) noexcept {
  const size_t bytes = size == 0 ? 1 : size;
  return isToFail() ? nullptr : watched(__real_malloc(bytes), bytes);
}

void* operator new(size_t size) {
  void* const memory = operator new(size, std::nothrow);
  if (memory == nullptr) {
    throw std::bad_alloc();
  }
  return memory;
}

void operator delete(void* memory) noexcept {
  __wrap_free(memory);
}
void operator delete(void* memory, size_t) noexcept {
  __wrap_free(memory);
}
