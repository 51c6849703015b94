#ifndef ZOAPAL_PROTONS_TRACE_ITRACEDESTINATION_H
#define ZOAPAL_PROTONS_TRACE_ITRACEDESTINATION_H

#include <cstdint>

namespace nQUENRA1400::nZOAPAL000 {

// Receives diagnostic text. The order of the operations is part of the interface.
class iTraceDestination {
 public:
  iTraceDestination() = default;
  iTraceDestination(const iTraceDestination&) = delete;
  iTraceDestination& operator=(const iTraceDestination&) = delete;
  virtual ~iTraceDestination() = default;

  // Writes at most `length` characters of a text, which needs no NUL if it has that many. Null writes
  // nothing, here and in write().
  virtual void writeCounted(const char* text, uint64_t length) noexcept = 0;
  virtual void write(const char* text) noexcept = 0;
  // Reserved slot.
  virtual void unusedThird() noexcept = 0;
  // Copies the destination's command-line options, as far as `size` bytes allow, with a NUL. `needed`,
  // if not null, receives the size of the complete text with its NUL. Returns the position of the NUL,
  // or `buffer` if it has no capacity.
  virtual char* getConfiguration(char* buffer, int32_t size, uint32_t* needed) const noexcept = 0;
  [[nodiscard]] virtual bool isAvailable() const noexcept = 0;
  // Reserved slot.
  virtual void unusedSixth() noexcept = 0;
  [[nodiscard]] virtual const char* getName() const noexcept = 0;
};

}  // namespace nQUENRA1400::nZOAPAL000

#endif
