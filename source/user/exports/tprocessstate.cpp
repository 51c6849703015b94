#include "source/user/exports/tprocessstate.h"

#include <memory>
#include <new>

#include "source/user/failuresites.h"
#include "zoapal/protons/cppnewdelete/tquarantinedstorage.h"
#include "zoapal/protons/startup/processlifetime.h"

namespace nQUENRA1400 {

constinit nZOAPAL000::tNeverDestroyed<tProcessState> theProcessState(nZOAPAL000::startUp());

namespace {

constexpr auto kSessionNotAllocated = sessionLocation(121);
constexpr auto kNoSession = sessionLocation(184);

// The only object of the library that loading and unloading construct and destroy.
struct tLibraryLifetime {
  tLibraryLifetime() noexcept { theProcessState.get().load(); }
  tLibraryLifetime(const tLibraryLifetime&) = delete;
  tLibraryLifetime& operator=(const tLibraryLifetime&) = delete;
  ~tLibraryLifetime() { theProcessState.get().unload(); }
};
const tLibraryLifetime libraryLifetime;

}  // namespace

void tProcessState::load() noexcept {
  lock_.initialise(startUp_.beginLoading());
}

void tProcessState::unload() noexcept {
  startUp_.markUnloaded();
  lock_.destroy();
  if (session_ == nullptr) {
    provider_.clear();
  }
  nZOAPAL000::tQuarantinedStorage::releaseAll();
}

void tProcessState::open(zoerr::Status& status) noexcept {
  const nZOAPAL000::tGuard lock(lock_);
  if (tControllerUserSession* const open = session_.load(std::memory_order_relaxed)) {
    open->addReference();
    return;
  }
  std::unique_ptr<tControllerUserSession> session(new (std::nothrow)
                                                      tControllerUserSession(provider_, status));
  if (session == nullptr) {
    status.set(QUENRA_STATUS_OUT_OF_MEMORY, kSessionNotAllocated);
  } else if (!status.isError()) {
    session_.store(session.release(), std::memory_order_release);
  }
}

void tProcessState::close() noexcept {
  const nZOAPAL000::tGuard lock(lock_);
  tControllerUserSession* const open = session_.load(std::memory_order_relaxed);
  if (open != nullptr && open->dropReference()) {
    session_.store(nullptr, std::memory_order_release);
    const std::unique_ptr<tControllerUserSession> last(open);
  }
}

tControllerUserSession* tProcessState::awaitSession(zoerr::Status& status) noexcept {
  const nZOAPAL000::tGuard lock(lock_);
  tControllerUserSession* const open = session_.load(std::memory_order_relaxed);
  if (open == nullptr) {
    status.set(QUENRA_STATUS_INVALID_HANDLE, kNoSession);
  }
  return open;
}

}  // namespace nQUENRA1400
