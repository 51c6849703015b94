#ifndef ZOAPAL_PROTONS_CPPNEWDELETE_TSTORAGEQUARANTINE_H
#define ZOAPAL_PROTONS_CPPNEWDELETE_TSTORAGEQUARANTINE_H

#include <array>
#include <cstddef>

#include "zoapal/protons/synchronization/windowsu/locks.h"

namespace nQUENRA1400::nZOAPAL000 {

// Keeps the storage of destroyed objects whose addresses are handles of clients, so that the heap does
// not reuse an address soon and a stale handle stays invalid. Any thread.
class tStorageQuarantine {
 public:
  // The storage of that many objects is kept.
  static constexpr size_t kCapacity = 256;

  constexpr tStorageQuarantine() noexcept = default;
  tStorageQuarantine(const tStorageQuarantine&) = delete;
  tStorageQuarantine& operator=(const tStorageQuarantine&) = delete;

  // Takes ownership of storage from operator new; releases the oldest if kCapacity are kept. Null is
  // ignored.
  void add(void* storage) noexcept;

  // Releases all storage. Takes no lock, since the loader calls it when threads that held one no longer
  // exist: no other call may overlap.
  void clear() noexcept ZOAPAL_THREAD_ANNOTATION(no_thread_safety_analysis);

 private:
  tSlimLock lock_;
  std::array<void*, kCapacity> kept_{};
  size_t oldest_ = 0;
};

// Of this process.
[[nodiscard]] tStorageQuarantine& storageQuarantine() noexcept;

}  // namespace nQUENRA1400::nZOAPAL000

#endif
