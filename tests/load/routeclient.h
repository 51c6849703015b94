// A client of the routing interface under load, through the exports.
#ifndef TESTS_LOAD_ROUTECLIENT_H
#define TESTS_LOAD_ROUTECLIENT_H

#include <atomic>
#include <cstdint>
#include <string>

#include "quenra_routing.h"
#include "simulator/control/tsimulatedmachine.h"
#include "tests/load/loadthread.h"

namespace nTests {

// The path of the routing device, as the library returns it.
[[nodiscard]] std::string routingDevicePath();

// A thread's counts of route operations. May be in zero-initialised shared memory.
struct tRouteTally {
  std::atomic<uint64_t> sessions;
  std::atomic<uint64_t> routes;     // calculated and destroyed
  std::atomic<uint64_t> conflicts;  // rejected reservations
  std::atomic<uint64_t> delivered;  // demotions delivered to a callback
  std::atomic<uint64_t> awaited;    // certain demotions whose delivery was awaited
  std::atomic<uint64_t> abandoned;  // routes left to the driver
  std::atomic<uint64_t> failures;   // permitted failures
};

// The faults that a client permits.
enum class tFaults : uint8_t {
  none,      // every call fulfils its contract
  anywhere,  // any call may fail if it reports the failure
};

// The parameters of a thread that uses routes.
struct tRouteWork {
  std::string devicePath;
  tRandom* random;
  tProgress* progress;
  tRouteTally* tally;
  nSimulator::tSimulatedMachine* machine;  // used to demote routes; null: does not demote
  tFaults faults = tFaults::none;
};

// A session that uses one route after another. Throws tContractViolation if a contract is violated.
class tRouteClient {
 public:
  explicit tRouteClient(const tRouteWork& work);
  tRouteClient(const tRouteClient&) = delete;
  tRouteClient& operator=(const tRouteClient&) = delete;
  ~tRouteClient();

  // Calculates, reserves and programs a route, and tears it down.
  void useRoute();
  // Leaves a reserved or programmed route to the driver. Only end() may follow.
  void abandonRoute();
  // Iterates over the terminals.
  void iterateTerminals();
  // Destroys the session and checks that no callback runs afterwards.
  void end();

 private:
  static void receiveDemotion(void* context, int32_t reason, zoerr_Status* status,
                              void* notification);
  static char* reallocate(char* current, size_t required, const char* text, size_t requiredAgain);

  // True if the last call succeeded; resets the status. Throws if the call failed with a code other
  // than `expected` and no faults are injected.
  bool succeeded(const char* what, int32_t expected = 0);
  void createSession();
  // Returns the ticket; 0 if there is no route.
  uint32_t calculate();
  bool reserve(uint32_t ticket);
  bool program(uint32_t ticket);
  void checkPath(uint32_t ticket);
  void demote(uint32_t ticket);
  void awaitDemotion(uint64_t deliveredBefore);
  void tearDown(uint32_t ticket);

  tRouteWork work_;
  zoroco_RoutingAdaptorSession* session_ = nullptr;
  zoerr_Status status_ = zoerr_Status_initial();
  char* output_ = nullptr;
  std::string from_;
  std::string to_;
  std::atomic<uint64_t> delivered_ = 0;
  std::atomic<int> inside_ = 0;
  std::atomic<bool> isEnded_ = false;
  std::atomic<bool> wasCallbackInvalid_ = false;
};

}  // namespace nTests

#endif
