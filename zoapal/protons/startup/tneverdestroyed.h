#ifndef ZOAPAL_PROTONS_STARTUP_TNEVERDESTROYED_H
#define ZOAPAL_PROTONS_STARTUP_TNEVERDESTROYED_H

#include <utility>

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

}  // namespace nQUENRA1400::nZOAPAL000

#endif
