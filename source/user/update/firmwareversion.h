#ifndef SOURCE_USER_UPDATE_FIRMWAREVERSION_H
#define SOURCE_USER_UPDATE_FIRMWAREVERSION_H

#include <cstdint>
#include <string_view>

namespace nQUENRA1400 {

// Packs a version such as "1.4.0f7" into a number that is larger for a later version: major 0 to 255,
// minor and update 0 to 15, phase d, a, b or f, and build 0 to 16383. Characters after the build are
// ignored. Returns 0 for a text of any other form.
[[nodiscard]] uint32_t packedVersion(std::string_view text) noexcept;

}  // namespace nQUENRA1400

#endif
