#include "zoarkra/resetmode.h"

#include <cstring>

#include "quenra_routing.h"
#include "zoarkra/failure.h"

namespace zoark {
namespace {

constexpr auto kUnknownMode = adaptorLocation(512, kBadSelectorConstant);

struct tMode {
  const char* name;
  uint32_t floating;
};

constexpr tMode kModes[] = {
    {ZOROCO_RESET_DEFAULT, 0},
    {ZOROCO_RESET_FLOATING, 1},
};

}  // namespace

uint32_t floatingFlagOf(const char* mode) {
  for (const tMode& known : kModes) {
    if (mode != nullptr && std::strcmp(mode, known.name) == 0) {
      return known.floating;
    }
  }
  raise(kBadSelector, kUnknownMode);
}

}  // namespace zoark
