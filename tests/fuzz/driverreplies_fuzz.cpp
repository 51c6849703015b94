// A client that uses attributes, routes and demotions, with a driver whose answers are the input.
//
// An input is: 64 bytes for the notices that the machine sends, of which the first also selects
// late completions and how often a completion is repeated; 128 bytes for the answers to requests
// that normally stay pending; the answers to all other requests. After the last byte the driver
// answers as the model does. misbehavingdriver.h documents the answers.
//
// The library keeps memory that a misbehaving driver may still write to, for the life of the process. After
// such an input libFuzzer would search all memory for leaks, which takes a hundred times as long as the
// input. This program searches after many inputs instead.
#include <sanitizer/lsan_interface.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "tests/component/misbehavingdriver/misbehavingdriver.h"

extern "C" int LLVMFuzzerInitialize(int* count, char*** arguments) {
  static char noSearch[] = "-detect_leaks=0";
  static std::vector<char*> extended(*arguments, *arguments + *count);
  extended.insert(extended.begin() + 1, noSearch);
  *count = static_cast<int>(extended.size());
  extended.push_back(nullptr);
  *arguments = extended.data();
  nTests::prepareMachine();
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  constexpr unsigned kInputsBetweenSearches = 2000;
  static unsigned inputs = 0;
  nTests::runClientWithFaults({data, size});
  if (++inputs % kInputsBetweenSearches == 0 && __lsan_do_recoverable_leak_check() != 0) {
    std::abort();
  }
  return 0;
}
