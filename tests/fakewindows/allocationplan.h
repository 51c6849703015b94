#ifndef TESTS_FAKEWINDOWS_ALLOCATIONPLAN_H
#define TESTS_FAKEWINDOWS_ALLOCATIONPLAN_H

#include <cstddef>

namespace nFakeWindows {

// While it lives, counts the allocations of its thread - malloc, calloc, realloc and operator new -
// and lets one of them fail. What the fake Windows itself allocates does not count.
class tAllocationPlan {
 public:
  // Lets the nth allocation fail; 0: none.
  explicit tAllocationPlan(unsigned nth) noexcept;
  tAllocationPlan(const tAllocationPlan&) = delete;
  tAllocationPlan& operator=(const tAllocationPlan&) = delete;
  ~tAllocationPlan();

  [[nodiscard]] unsigned count() const noexcept;
};

// Of the memory that was allocated while a plan lived, what is in use: bytes, on any thread.
[[nodiscard]] size_t bytesInUse() noexcept;

}  // namespace nFakeWindows

#endif
