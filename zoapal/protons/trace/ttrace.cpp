#include "zoapal/protons/trace/ttrace.h"

namespace nQUENRA1400::nZOAPAL000 {

tTrace::tTrace(iTraceDestination& destination, nZOAPALS100::tStatus& status) noexcept
    : destination_(&destination) {
  lock_.initialise(status);
}

tTrace::~tTrace() {
  destination_ = nullptr;
  lock_.destroy();
}

template <class Write>
void tTrace::forward(Write write) noexcept {
  if (!lock_.isInitialised()) {
    return;
  }
  const tGuard lock(lock_);
  if (destination_->isAvailable()) {
    write(*destination_);
  }
}

void tTrace::write(const char* text) noexcept {
  forward([=](iTraceDestination& destination) noexcept { destination.write(text); });
}

void tTrace::writeCounted(const char* text, uint64_t length) noexcept {
  forward([=](iTraceDestination& destination) noexcept { destination.writeCounted(text, length); });
}

}  // namespace nQUENRA1400::nZOAPAL000
