#ifndef ZOAPAL_PROTONS_TRACE_TTRACE_H
#define ZOAPAL_PROTONS_TRACE_TTRACE_H

#include "zoapal/protons/synchronization/windowsu/locks.h"
#include "zoapal/protons/trace/itracedestination.h"

namespace nQUENRA1400::nZOAPAL000 {

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
