#ifndef SIMULATOR_QUENRA_SIM_VERBS_HEXADECIMAL_H
#define SIMULATOR_QUENRA_SIM_VERBS_HEXADECIMAL_H

#include <cstddef>
#include <cstdint>
#include <string>

namespace nSimulator {

// Two digits for each byte.
[[nodiscard]] inline std::string hexadecimal(const uint8_t* bytes, size_t size) {
  constexpr char kDigits[] = "0123456789abcdef";
  std::string text;
  for (size_t i = 0; i < size; ++i) {
    text += kDigits[bytes[i] >> 4];
    text += kDigits[bytes[i] & 0xF];
  }
  return text;
}

}  // namespace nSimulator

#endif
