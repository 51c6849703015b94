#include "bench/peers.h"

namespace nBench {

std::vector<tDecoder> otherLibraries() {
  return {};
}

}  // namespace nBench
