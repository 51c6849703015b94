#include "tests/fakewindows/allocationplan.h"

#include <cstddef>
#include <cstdlib>
#include <new>

#include "tests/fakewindows/unusual.h"

extern "C" {
void* __real_malloc(size_t size);
void* __real_calloc(size_t count, size_t size);
void* __real_realloc(void* memory, size_t size);
void* __wrap_malloc(size_t size);
void* __wrap_calloc(size_t count, size_t size);
void* __wrap_realloc(void* memory, size_t size);
}

namespace nFakeWindows {
namespace {

struct tState {
  bool armed = false;
  unsigned count = 0;
  unsigned failing = 0;
};
thread_local tState state;

bool isToFail() noexcept {
  return state.armed && !tInside::isSo() && ++state.count == state.failing;
}

}  // namespace

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

using nFakeWindows::isToFail;

void* __wrap_malloc(size_t size) {
  return isToFail() ? nullptr : __real_malloc(size);
}

void* __wrap_calloc(size_t count, size_t size) {
  return isToFail() ? nullptr : __real_calloc(count, size);
}

void* __wrap_realloc(void* memory, size_t size) {
  return isToFail() ? nullptr : __real_realloc(memory, size);
}

void* operator new(size_t size, const std::nothrow_t&) noexcept {
  return isToFail() ? nullptr : __real_malloc(size == 0 ? 1 : size);
}

void* operator new(size_t size) {
  void* const memory = operator new(size, std::nothrow);
  if (memory == nullptr) {
    throw std::bad_alloc();
  }
  return memory;
}

void operator delete(void* memory) noexcept {
  std::free(memory);
}
void operator delete(void* memory, size_t) noexcept {
  std::free(memory);
}
