#ifndef TESTS_COMPONENT_PROTONS_STATUS_SHORTMEMORY_H
#define TESTS_COMPONENT_PROTONS_STATUS_SHORTMEMORY_H

namespace nTests {

// During its lifetime the nth call of malloc or calloc, from 1, fails; all others succeed. One
// thread at a time. A program that uses it is linked with --wrap=malloc and --wrap=calloc.
class tShortMemory {
 public:
  explicit tShortMemory(unsigned nth) noexcept;
  tShortMemory(const tShortMemory&) = delete;
  tShortMemory& operator=(const tShortMemory&) = delete;
  ~tShortMemory();

  // True once the failing call has been made.
  [[nodiscard]] bool wasMet() const noexcept;
};

}  // namespace nTests

#endif
