#include "tests/component/interceptedcalls.h"

#include <cstddef>

namespace {

bool armed = false;
unsigned callsLeft = 0;
bool counting = false;
uint64_t scanned = 0;

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

tScannedBytes::tScannedBytes() noexcept {
  scanned = 0;
  counting = true;
}

tScannedBytes::~tScannedBytes() {
  counting = false;
}

uint64_t tScannedBytes::count() const noexcept {
  return scanned;
}

}  // namespace nTests

extern "C" {

void* __real_malloc(size_t bytes);
void* __real_calloc(size_t count, size_t bytes);
void* __real_memchr(const void* memory, int byte, size_t size);
void* __wrap_malloc(size_t bytes);
void* __wrap_calloc(size_t count, size_t bytes);
void* __wrap_memchr(const void* memory, int byte, size_t size);

void* __wrap_malloc(size_t bytes) {
  return isToFail() ? nullptr : __real_malloc(bytes);
}

void* __wrap_calloc(size_t count, size_t bytes) {
  return isToFail() ? nullptr : __real_calloc(count, bytes);
}

void* __wrap_memchr(const void* memory, int byte, size_t size) {
  void* const found = __real_memchr(memory, byte, size);
  if (counting) {
    scanned += found == nullptr ? size
                                : static_cast<size_t>(static_cast<const char*>(found) -
                                                      static_cast<const char*>(memory)) +
                                      1;
  }
  return found;
}

}  // extern "C"
