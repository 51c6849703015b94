#include "zoapal/protons/cppnewdelete/tstoragequarantine.h"

#include <new>
#include <utility>

#include "zoapal/protons/cppnewdelete/tquarantinedstorage.h"
#include "zoapal/protons/startup/tneverdestroyed.h"

namespace nQUENRA1400::nZOAPAL000 {
namespace {

constinit tNeverDestroyed<tStorageQuarantine> theQuarantine;

}  // namespace

tStorageQuarantine& storageQuarantine() noexcept {
  return theQuarantine.get();
}

void tStorageQuarantine::add(void* storage) noexcept {
  if (storage == nullptr) {
    return;
  }
  void* released = nullptr;
  {
    const tGuard guard(lock_);
    released = std::exchange(kept_[oldest_], storage);
    oldest_ = (oldest_ + 1) % kCapacity;
  }
  ::operator delete(released);
}

void tStorageQuarantine::clear() noexcept {
  for (void*& storage : kept_) {
    ::operator delete(std::exchange(storage, nullptr));
  }
}

void* tQuarantinedStorage::operator new(size_t size) {
  return ::operator new(size);
}

void tQuarantinedStorage::operator delete(void* storage) noexcept {
  storageQuarantine().add(storage);
}

}  // namespace nQUENRA1400::nZOAPAL000
