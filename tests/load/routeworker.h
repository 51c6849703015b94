#ifndef TESTS_LOAD_ROUTEWORKER_H
#define TESTS_LOAD_ROUTEWORKER_H

#include <cstdint>
#include <string>

namespace nTests {

// A worker process: threads with a session each, which use one route after another until the load
// ends. Returns the exit code of the process.
[[nodiscard]] int runRouteWorker(const std::string& loadName, uint32_t worker, uint64_t seed);

// A client that runs after all others have ended: reserves all lines simultaneously, each from
// another terminal, and releases them. Returns the exit code of the process.
[[nodiscard]] int takeEveryLine();

}  // namespace nTests

#endif
