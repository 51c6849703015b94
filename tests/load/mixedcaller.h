// A client that does everything there is to do, in no order.
#ifndef TESTS_LOAD_MIXEDCALLER_H
#define TESTS_LOAD_MIXEDCALLER_H

#include <atomic>
#include <cstdint>
#include <string>
#include <vector>

#include "tests/load/routeclient.h"

namespace nTests {

// What a thread has called, and how often it was told of a failure.
struct tCallTally {
  std::atomic<uint64_t> reads;
  std::atomic<uint64_t> writes;
  std::atomic<uint64_t> opens;
  std::atomic<uint64_t> updates;
  std::atomic<uint64_t> pendings;
  std::atomic<uint64_t> others;
  std::atomic<uint64_t> failures;  // that nobody may be surprised of
};

struct tMixedWork {
  tRouteWork route;
  tCallTally* tally;
  const std::vector<std::string>* images;  // small ones, of firmware
  bool updatesAreCheap;                    // else they are rare
};

// One thread's calls. Everything that breaks a promise is thrown.
class tMixedCaller {
 public:
  explicit tMixedCaller(const tMixedWork& work) : work_(work), random_(*work.route.random) {}

  // Something with a beginning and an end: nothing is open before and behind it.
  void doSomething();

 private:
  void useController();
  void useOpenController();
  void useRoutes();
  void usePendingRequests();
  void askForThePath();

  void readText();
  void readUnsigned();
  void readOtherTypes();
  void writeUnsigned();
  void writeText();
  void selfTest();
  void update();
  void misuse();

  void enter(tStep step) { work_.route.progress->enter(step); }
  // A failure breaks a promise unless faults are about. True when the call succeeded.
  bool check(int32_t code, const char* what);

  tMixedWork work_;
  tRandom& random_;
};

}  // namespace nTests

#endif
