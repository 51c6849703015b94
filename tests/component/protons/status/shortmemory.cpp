#include "tests/component/protons/status/shortmemory.h"

#include <cstddef>

namespace {

bool armed = false;
unsigned callsLeft = 0;

bool isToFail() noexcept {
  return armed && callsLeft != 0 && --callsLeft == 0;
}

}  // namespace

namespace nTests {

tShortMemory::tShortMemory(unsigned nth) noexcept {
  armed = true;
  callsLeft = nth;
}

tShortMemory::~tShortMemory() {
  armed = false;
}

bool tShortMemory::wasMet() const noexcept {
  return callsLeft == 0;
}

}  // namespace nTests

extern "C" {

void* __real_malloc(size_t bytes);
void* __real_calloc(size_t count, size_t bytes);
void* __wrap_malloc(size_t bytes);
void* __wrap_calloc(size_t count, size_t bytes);

void* __wrap_malloc(size_t bytes) {
  return isToFail() ? nullptr : __real_malloc(bytes);
}

void* __wrap_calloc(size_t count, size_t bytes) {
  return isToFail() ? nullptr : __real_calloc(count, bytes);
}

}  // extern "C"
