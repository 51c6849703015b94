// A program in which an assertion fails.
#include <cstdio>

#include "zoapal/protons/trace/assertion.h"

namespace {

// Would be seen if the process ended in the ordinary way.
struct tFarewell {
  ~tFarewell() { std::puts("ended in order"); }
};
const tFarewell farewell;

}  // namespace

int main() {
  nQUENRA1400::nZOAPAL000::assertionFailed("quenra", "tArray", 64, "ASSERT(n <= kMaxSize)");
}
