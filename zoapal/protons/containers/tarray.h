#ifndef ZOAPAL_PROTONS_CONTAINERS_TARRAY_H
#define ZOAPAL_PROTONS_CONTAINERS_TARRAY_H

#include <algorithm>
#include <array>
#include <cstddef>
#include <type_traits>

#include "zoapal/protons/trace/assertion.h"

namespace nQUENRA1400::nZOAPAL000 {

// An array with a fixed capacity, stored inside its owner. Storage past its elements is always zero and
// has one element more than the capacity: an array of characters is a NUL-terminated text.
//
// Exceeding the capacity is a programming error and terminates the process.
template <class T, size_t kCapacity = 256>
class tArray {
  static_assert(std::is_trivial_v<T>);

 public:
  static constexpr size_t kMaxSize = kCapacity;

  [[nodiscard]] size_t size() const noexcept { return size_; }
  [[nodiscard]] bool isEmpty() const noexcept { return size_ == 0; }
  [[nodiscard]] T* data() noexcept { return elements_.data(); }
  [[nodiscard]] const T* data() const noexcept { return elements_.data(); }
  [[nodiscard]] const T* begin() const noexcept { return elements_.data(); }
  [[nodiscard]] const T* end() const noexcept { return elements_.data() + size_; }

  // New elements are zero.
  void resize(size_t n) noexcept {
    requireCapacity(n);
    std::fill(elements_.begin() + std::min(n, size_), elements_.begin() + size_, T{});
    size_ = n;
  }

  // `elements` may be null when n is 0.
  void assign(const T* elements, size_t n) noexcept {
    requireCapacity(n);
    std::copy_n(elements, n, elements_.begin());
    size_ = std::max(n, size_);
    resize(n);
  }

 private:
  static void requireCapacity(size_t n) noexcept {
    if (!(n <= kMaxSize)) {
      // GCOVR_EXCL_START: ends the process, and with it the count
      assertionFailed({"tArray", 64}, "ASSERT(n <= kMaxSize)");
      // GCOVR_EXCL_STOP
    }
  }

  std::array<T, kMaxSize + 1> elements_{};
  size_t size_ = 0;
};

}  // namespace nQUENRA1400::nZOAPAL000

#endif
