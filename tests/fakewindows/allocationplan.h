#ifndef TESTS_FAKEWINDOWS_ALLOCATIONPLAN_H
#define TESTS_FAKEWINDOWS_ALLOCATIONPLAN_H

#include <cstddef>

namespace nFakeWindows {

// During its lifetime, counts the allocations of its thread (malloc, calloc, realloc, operator new)
// and makes one of them fail. Allocations of the fake Windows itself are not counted.
class tAllocationPlan {
 public:
  // Makes the nth allocation fail; 0: none.
  explicit tAllocationPlan(unsigned nth) noexcept;
  tAllocationPlan(const tAllocationPlan&) = delete;
  tAllocationPlan& operator=(const tAllocationPlan&) = delete;
  ~tAllocationPlan();

  [[nodiscard]] unsigned count() const noexcept;
};

// The bytes still in use, on all threads, of the memory that was allocated while a plan existed.
[[nodiscard]] size_t bytesInUse() noexcept;

}  // namespace nFakeWindows

#endif
