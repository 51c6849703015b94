#ifndef ZOAPAL_PROTONS_STARTUP_PROCESSLIFETIME_H
#define ZOAPAL_PROTONS_STARTUP_PROCESSLIFETIME_H

#include <type_traits>
#include <utility>

#include "zoapal/protons/status/tstatus.h"
#include "zoapal/protons/status/zoerrstatus.h"

namespace nQUENRA1400::nZOAPAL000 {

// An object in static storage that outlives every static destructor: exports may still be called
// while the process ends, by static destructors of other modules.
template <class T>
union tNeverDestroyed {
 public:
  template <class... Arguments>
  explicit constexpr tNeverDestroyed(Arguments&&... arguments) noexcept
      : object_(std::forward<Arguments>(arguments)...) {}
  tNeverDestroyed(const tNeverDestroyed&) = delete;
  tNeverDestroyed& operator=(const tNeverDestroyed&) = delete;
  // Does not destroy the object.
  constexpr ~tNeverDestroyed() {}  // NOLINT(modernize-use-equals-default)

  [[nodiscard]] T& get() noexcept { return object_; }

 private:
  T object_;
};

// The outcome of loading the library. Both export families merge it into their status before they
// do anything else. Written while the library is loaded and unloaded, only read in between.
class tStartUp {
 public:
  constexpr tStartUp() noexcept = default;

  // Loading reports its failures into this status.
  [[nodiscard]] nZOAPALS100::tStatus& beginLoading() noexcept {
    status_ = {};
    return status_;
  }
  // From here on the library reports kNotReady, unless loading has failed: static destructors of other
  // modules may still call it.
  void markUnloaded() noexcept { mergeStatus(status_, nZOAPALS100::kNotReady, kUnloaded); }

  [[nodiscard]] bool isReady() const noexcept { return !status_.isError(); }
  void mergeInto(zoerr::Status& status) const noexcept {
    if (status_.code != 0) {
      status.mergeFrom(status_);
    }
  }

 private:
  static constexpr nZOAPALS100::tSourceLocation kUnloaded{"tstartup", 23};

  nZOAPALS100::tStatus status_;
};

// Of this process. Usable before and after every other static object.
inline constinit tStartUp theStartUp;
static_assert(std::is_trivially_destructible_v<tStartUp>);

[[nodiscard]] constexpr tStartUp& startUp() noexcept {
  return theStartUp;
}

}  // namespace nQUENRA1400::nZOAPAL000

#endif
