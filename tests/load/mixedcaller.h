// A client that calls all functions in random order.
#ifndef TESTS_LOAD_MIXEDCALLER_H
#define TESTS_LOAD_MIXEDCALLER_H

#include <atomic>
#include <cstdint>
#include <string>
#include <vector>

#include "tests/load/routeclient.h"

namespace nTests {

// A thread's calls by kind, and the number that failed.
struct tCallTally {
  std::atomic<uint64_t> reads;
  std::atomic<uint64_t> writes;
  std::atomic<uint64_t> opens;
  std::atomic<uint64_t> updates;
  std::atomic<uint64_t> pendings;
  std::atomic<uint64_t> others;
  std::atomic<uint64_t> failures;  // permitted failures
};

struct tMixedWork {
  tRouteWork route;
  tCallTally* tally;
  const std::vector<std::string>* images;  // small firmware images
  bool updatesAreCheap;                    // otherwise updates are rare
};

// The calls of one thread. Throws tContractViolation if a contract is violated.
class tMixedCaller {
 public:
  explicit tMixedCaller(const tMixedWork& work) : work_(work), random_(*work.route.random) {}

  // Performs a random complete operation. Nothing is open before and after it.
  void performRandomOperation();

 private:
  void useController();
  void useOpenController();
  void useRoutes();
  void usePendingRequests();
  void readDevicePath();

  void readText();
  void readUnsigned();
  void readOtherTypes();
  void writeUnsigned();
  void writeText();
  void selfTest();
  void update();
  void passInvalidArguments();

  void enter(tStep step) { work_.route.progress->enter(step); }
  // Throws if the call failed and no faults are injected. True if the call succeeded.
  bool check(int32_t code, const char* what);

  tMixedWork work_;
  tRandom& random_;
};

}  // namespace nTests

#endif
