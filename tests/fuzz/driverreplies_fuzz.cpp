// A client that uses attributes, routes and demotions, with a driver whose answers are the input.
//
// An input is: 64 bytes for the notices that the machine sends, of which the first also selects
// late completions and how often a completion is repeated; 128 bytes for the answers to requests
// that normally stay pending; the answers to all other requests. After the last byte the driver
// answers as the model does. misbehavingdriver.h documents the answers.
#include <cstddef>
#include <cstdint>

#include "tests/component/misbehavingdriver/misbehavingdriver.h"

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  nTests::prepareMachine();
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  nTests::runClientWithFaults({data, size});
  return 0;
}
