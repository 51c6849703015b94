#ifndef TESTS_LOAD_MISCHIEF_H
#define TESTS_LOAD_MISCHIEF_H

#include <cstdint>
#include <thread>

#include "simulator/control/tsimulatedmachine.h"
#include "tests/load/trandom.h"

namespace nTests {

// A thread that injects random faults into the driver: refusals, failures, wrong replies, delays
// and demotions. Its destructor restores normal behaviour.
class tMischief {
 public:
  explicit tMischief(uint64_t seed);
  tMischief(const tMischief&) = delete;
  tMischief& operator=(const tMischief&) = delete;
  ~tMischief();

 private:
  void doSome();
  void scriptAnAnswer();
  void holdRequestsBack();
  void failAPendingRequest();
  void demoteARoute();
  void tellALie();

  tRandom random_;
  nSimulator::tSimulatedMachine machine_;
  std::jthread thread_;
};

}  // namespace nTests

#endif
