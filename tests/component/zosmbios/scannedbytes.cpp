#include "tests/component/zosmbios/scannedbytes.h"

#include <cstddef>

namespace {

bool counting = false;
uint64_t scanned = 0;

}  // namespace

namespace nTests {

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

void* __real_memchr(const void* memory, int byte, size_t size);
void* __wrap_memchr(const void* memory, int byte, size_t size);

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
