// Faults injected into the driver, and a check for its leaks.
#ifndef TESTS_LOAD_DRIVERCONTROL_H
#define TESTS_LOAD_DRIVERCONTROL_H

#include <cstdint>
#include <string>
#include <thread>

#include "simulator/control/tsimulatedmachine.h"
#include "tests/load/loadthread.h"

namespace nTests {

// A thread that injects random faults into the driver: refusals, failures, wrong replies, delays
// and demotions. Its destructor restores normal behaviour.
class tFaultInjector {
 public:
  explicit tFaultInjector(uint64_t seed);
  tFaultInjector(const tFaultInjector&) = delete;
  tFaultInjector& operator=(const tFaultInjector&) = delete;
  ~tFaultInjector();

 private:
  void injectOne();
  void scriptReply();
  void delayRequests();
  void failPendingRequest();
  void sendInvalidNotice();

  tRandom random_;
  nSimulator::tSimulatedMachine machine_;
  std::jthread thread_;
};

// Demotes a random route of any session, if one holds a line.
void demoteRandomRoute(nSimulator::tSimulatedMachine& machine, tRandom& random);

// The driver's leaks after all clients have ended: one line for each pair of counts that differ,
// empty if all are balanced. Waits until the driver has closed the files of killed clients, with a
// timeout.
[[nodiscard]] std::string driverLeaks(nSimulator::tSimulatedMachine& machine);

}  // namespace nTests

#endif
