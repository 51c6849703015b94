#ifndef TESTS_LOAD_ROUTEWORKER_H
#define TESTS_LOAD_ROUTEWORKER_H

#include <cstdint>
#include <string>

namespace nTests {

// One of the processes of a load: threads with a session each, one life of a route after another, until
// the load is to end. The exit code of the process.
[[nodiscard]] int runRouteWorker(const std::string& loadName, uint32_t worker, uint64_t seed);

// A client that comes when all others are gone: takes every line at once, each from another terminal,
// and gives them back. The exit code of the process.
[[nodiscard]] int takeEveryLine();

}  // namespace nTests

#endif
