#ifndef SOURCE_USER_UPDATE_FIRMWAREVERSION_H
#define SOURCE_USER_UPDATE_FIRMWAREVERSION_H

#include <cstdint>
#include <string_view>

namespace nQUENRA1400 {

// A version such as "1.4.0f7" as a number, so that a later version is a larger one: major 0 to 255,
// minor and update 0 to 15, a phase of d, a, b and f, and a build 0 to 16383. What follows the build
// is ignored. 0 for a text that is no such version.
[[nodiscard]] uint32_t packedVersion(std::string_view text) noexcept;

}  // namespace nQUENRA1400

#endif
