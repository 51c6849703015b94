#ifndef ZOAPAL_PROTONS_TRACE_ITRACEDESTINATION_H
#define ZOAPAL_PROTONS_TRACE_ITRACEDESTINATION_H

#include <cstdint>

namespace nQUENRA1400::nZOAPAL000 {

// Where diagnostic text goes. The order of the operations is part of the interface.
class iTraceDestination {
 public:
  iTraceDestination() = default;
  iTraceDestination(const iTraceDestination&) = delete;
  iTraceDestination& operator=(const iTraceDestination&) = delete;
  virtual ~iTraceDestination() = default;

  // At most `length` characters of a text, which need not be terminated if it has as many. Null is
  // no text.
  virtual void writeCounted(const char* text, uint64_t length) noexcept = 0;
  virtual void write(const char* text) noexcept = 0;
  // Keeps the place of an operation that destinations do not have.
  virtual void unusedThird() noexcept = 0;
  // What a destination says of itself, for a command line: copied as far as `size` bytes go, a NUL
  // included. `needed`, when given, receives the bytes of the whole text with its NUL. Returns the
  // place of the NUL; `buffer` where there is no room for one.
  virtual char* getConfiguration(char* buffer, int32_t size, uint32_t* needed) const noexcept = 0;
  [[nodiscard]] virtual bool isAvailable() const noexcept = 0;
  // Keeps the place of an operation that destinations do not have.
  virtual void unusedSixth() noexcept = 0;
  [[nodiscard]] virtual const char* getName() const noexcept = 0;
};

}  // namespace nQUENRA1400::nZOAPAL000

#endif
