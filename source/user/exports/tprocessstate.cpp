#include "source/user/exports/tprocessstate.h"

#include <memory>
#include <new>
#include <utility>

#include "source/user/location.h"
#include "source/user/statuscodes.h"

namespace nQUENRA1400 {
namespace {

constexpr auto kSessionNotAllocated = sessionLocation(121);
constexpr auto kNoSession = sessionLocation(184);

constinit tProcessState theState;

// Loading and unloading the library makes and destroys this object, and nothing else.
struct tLibraryLifetime {
  tLibraryLifetime() noexcept { theState.load(); }
  tLibraryLifetime(const tLibraryLifetime&) = delete;
  tLibraryLifetime& operator=(const tLibraryLifetime&) = delete;
  ~tLibraryLifetime() { theState.unload(); }
};
const tLibraryLifetime libraryLifetime;

}  // namespace

tProcessState& processState() noexcept {
  return theState;
}

void tProcessState::load() noexcept {
  lock_.initialise(loadStatus_);
}

void tProcessState::unload() noexcept {
  lock_.destroy();
}

void tProcessState::open(zoerr::Status& status) noexcept {
  const nZOAPAL000::tLock lock(lock_);
  if (session_ != nullptr) {
    session_->addReference();
    return;
  }
  std::unique_ptr<tControllerUserSession> session(new (std::nothrow)
                                                      tControllerUserSession(provider_, status));
  if (session == nullptr) {
    status.set(kOutOfMemory, kSessionNotAllocated);
  } else if (!status.isError()) {
    session_ = session.release();
  }
}

void tProcessState::close() noexcept {
  const nZOAPAL000::tLock lock(lock_);
  if (session_ != nullptr && session_->dropReference()) {
    const std::unique_ptr<tControllerUserSession> last(std::exchange(session_, nullptr));
  }
}

tControllerUserSession* tProcessState::session(zoerr::Status& status) noexcept {
  const nZOAPAL000::tLock lock(lock_);
  if (session_ == nullptr) {
    status.set(kInvalidHandle, kNoSession);
  }
  return session_;
}

}  // namespace nQUENRA1400
