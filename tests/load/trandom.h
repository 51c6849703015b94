#ifndef TESTS_LOAD_TRANDOM_H
#define TESTS_LOAD_TRANDOM_H

#include <cstddef>
#include <cstdint>

namespace nTests {

// A pseudo-random generator with the same sequence for the same seed on every machine.
class tRandom {
 public:
  explicit tRandom(uint64_t seed) noexcept : state_(seed) {}

  [[nodiscard]] uint64_t next() noexcept {
    state_ += UINT64_C(0x9E3779B97F4A7C15);
    uint64_t mixed = state_;
    mixed = (mixed ^ (mixed >> 30)) * UINT64_C(0xBF58476D1CE4E5B9);
    mixed = (mixed ^ (mixed >> 27)) * UINT64_C(0x94D049BB133111EB);
    return mixed ^ (mixed >> 31);
  }
  // 0 to count - 1.
  [[nodiscard]] uint32_t below(uint32_t count) noexcept {
    return static_cast<uint32_t>(next() % count);
  }
  [[nodiscard]] bool oneIn(uint32_t count) noexcept { return below(count) == 0; }
  template <class Value, size_t Count>
  [[nodiscard]] const Value& oneOf(const Value (&values)[Count]) noexcept {
    return values[below(Count)];
  }

 private:
  uint64_t state_;
};

}  // namespace nTests

#endif
