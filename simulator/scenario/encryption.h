#ifndef SIMULATOR_SCENARIO_ENCRYPTION_H
#define SIMULATOR_SCENARIO_ENCRYPTION_H

#include <array>
#include <string>
#include <string_view>

namespace nSimulator {

// The encryption of drive C: that the machine's management service reports, as names of the lists
// below. The default machine is "off".
struct tEncryption {
  std::string protection = "off";
  std::string failingStep;  // empty: none
};

inline constexpr std::array<std::string_view, 4> kProtections = {"off", "on", "unknown",
                                                                 "no-volume"};
// In the order in which a program performs them.
inline constexpr std::array<std::string_view, 5> kEncryptionSteps = {"locator", "connect", "query",
                                                                     "result", "property"};

// Both functions throw std::system_error.
[[nodiscard]] tEncryption encryption();
void setEncryption(const tEncryption& encryption);

}  // namespace nSimulator

#endif
