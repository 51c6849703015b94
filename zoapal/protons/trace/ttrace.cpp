#include "zoapal/protons/trace/ttrace.h"

#include <windows.h>

#include <algorithm>
#include <cstdarg>
#include <string_view>

namespace nQUENRA1400::nZOAPAL000 {

// The compiler checks arguments against a format; it cannot check a parameter pack.
// NOLINTNEXTLINE(cert-dcl50-cpp)
void debugPrintf(const char* format, ...) noexcept {
  char text[kDebugTextLength + 1] = {};
  va_list arguments;
  va_start(arguments, format);
  // Some C runtimes leave a truncated text unterminated. The checker sees va_start only in some orders
  // of its input files.
  // NOLINTNEXTLINE(clang-analyzer-valist.Uninitialized)
  std::vsnprintf(text, sizeof text, format, arguments);
  va_end(arguments);
  text[kDebugTextLength] = '\0';
  OutputDebugStringA(text);
}

void tConsoleTraceDestination::writeCounted(const char* text, uint64_t length) noexcept {
  if (text != nullptr) {
    const auto shown = static_cast<int>(std::min<uint64_t>(length, kDebugTextLength));
    debugPrintf("%.*s", shown, text);
  }
}

void tConsoleTraceDestination::write(const char* text) noexcept {
  if (text != nullptr) {
    debugPrintf("%s", text);
  }
}

char* tConsoleTraceDestination::getConfiguration(char* buffer, int32_t size,
                                                 uint32_t* needed) const noexcept {
  static constexpr std::string_view kConfiguration = " --destination apal";
  if (needed != nullptr) {
    *needed = static_cast<uint32_t>(kConfiguration.size() + 1);
  }
  if (buffer == nullptr || size <= 0) {
    return buffer;
  }
  const size_t copied = kConfiguration.copy(buffer, static_cast<size_t>(size) - 1);
  buffer[copied] = '\0';
  // The last byte ends the buffer even for a caller that ignores the text's own NUL.
  buffer[size - 1] = '\0';
  return buffer + copied;
}

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
