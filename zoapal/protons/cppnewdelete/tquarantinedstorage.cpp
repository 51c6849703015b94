#include "zoapal/protons/cppnewdelete/tquarantinedstorage.h"

#include <array>
#include <new>
#include <utility>

#include "zoapal/protons/startup/processlifetime.h"
#include "zoapal/protons/synchronization/windowsu/locks.h"

namespace nQUENRA1400::nZOAPAL000 {
namespace {

// The storage of destroyed objects, a ring.
struct tQuarantine {
  tSlimLock lock;  // guards the other members
  std::array<void*, tQuarantinedStorage::kCapacity> kept{};
  size_t oldest = 0;
};

constinit tNeverDestroyed<tQuarantine> theQuarantine;

}  // namespace

void* tQuarantinedStorage::operator new(size_t size) {
  return ::operator new(size);
}

void tQuarantinedStorage::operator delete(void* storage) noexcept {
  if (storage == nullptr) {
    return;
  }
  tQuarantine& quarantine = theQuarantine.get();
  void* released = nullptr;
  {
    const tGuard guard(quarantine.lock);
    released = std::exchange(quarantine.kept[quarantine.oldest], storage);
    quarantine.oldest = (quarantine.oldest + 1) % kCapacity;
  }
  ::operator delete(released);
}

void tQuarantinedStorage::releaseAll() noexcept {
  for (void*& storage : theQuarantine.get().kept) {
    ::operator delete(std::exchange(storage, nullptr));
  }
}

}  // namespace nQUENRA1400::nZOAPAL000
