// A driver that answers as the input says, below a client that asks for everything there is.
//
// An input is: the notices that the machine sends, 64 bytes, of which the first also tells whether
// requests complete later and how often completions are told; the answers to requests for deliveries,
// 128 bytes; the answers to all other requests. tests/component/lyingdriver/tlies.h tells how bytes
// become answers. Behind its last byte the driver is true.
#include <cstddef>
#include <cstdint>

#include "tests/component/lyingdriver/clientlife.h"

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  nTests::prepareMachineForLives();
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  nTests::liveWithLies({data, size});
  return 0;
}
