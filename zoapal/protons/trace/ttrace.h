#ifndef ZOAPAL_PROTONS_TRACE_TTRACE_H
#define ZOAPAL_PROTONS_TRACE_TTRACE_H

#include <cstddef>
#include <cstdint>
#include <cstdio>

#include "zoapal/protons/synchronization/windowsu/locks.h"

// The rules by which the compiler checks the arguments. On Windows the C runtime has its own formats,
// which the C++ library replaces by the standard ones.
#ifdef __MINGW_PRINTF_FORMAT
#define ZOAPAL_PRINTF_FORMAT __MINGW_PRINTF_FORMAT
#else
#define ZOAPAL_PRINTF_FORMAT printf
#endif

namespace nQUENRA1400::nZOAPAL000 {

// Longer texts for the debugger output are truncated to this length.
inline constexpr size_t kDebugTextLength = 511;

// Writes one text to the debugger output of the process, formatted as by printf. Adds no line end.
// Never fails and allocates nothing. Any thread.
[[gnu::format(ZOAPAL_PRINTF_FORMAT, 1, 2)]] void debugPrintf(const char* format, ...) noexcept;

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

// The debugger output of the process. Truncates a text after kDebugTextLength characters. Any thread.
class tConsoleTraceDestination : public iTraceDestination {
 public:
  void writeCounted(const char* text, uint64_t length) noexcept override;
  void write(const char* text) noexcept override;
  void unusedThird() noexcept override {}
  char* getConfiguration(char* buffer, int32_t size, uint32_t* needed) const noexcept override;
  [[nodiscard]] bool isAvailable() const noexcept override { return true; }
  void unusedSixth() noexcept override {}
  [[nodiscard]] const char* getName() const noexcept override { return "zosdbg_printf"; }
};

// Forwards diagnostic text to one destination, one text at a time. The caller owns the destination,
// which must outlive the trace. Any thread.
class tTrace {
 public:
  // If the lock cannot be created, reports that in the status; the trace then writes nothing.
  tTrace(iTraceDestination& destination, nZOAPALS100::tStatus& status) noexcept;
  tTrace(const tTrace&) = delete;
  tTrace& operator=(const tTrace&) = delete;
  ~tTrace();

  void write(const char* text) noexcept;
  void writeCounted(const char* text, uint64_t length) noexcept;

 private:
  template <class Write>
  void forward(Write write) noexcept;

  iTraceDestination* destination_;
  tCriticalSection lock_;  // guards *destination_
};

}  // namespace nQUENRA1400::nZOAPAL000

#endif
