#include "tools/quenra/output/elapsedtext.h"

namespace nCommandLine {

std::string elapsedText(std::chrono::milliseconds elapsed) {
  constexpr auto kTenth = std::chrono::milliseconds(100);
  const auto tenths = elapsed / kTenth;
  return std::to_string(tenths / 10) + "." + std::to_string(tenths % 10) + " s";
}

}  // namespace nCommandLine
