#include "zoapal/protons/trace/tconsoletracedestination.h"

#include <algorithm>
#include <cstddef>
#include <string_view>

#include "zoapal/protons/trace/debugprintf.h"

namespace nQUENRA1400::nZOAPAL000 {

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

}  // namespace nQUENRA1400::nZOAPAL000
