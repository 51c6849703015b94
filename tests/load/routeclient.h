// A client of the routing interface under load, through the exports.
#ifndef TESTS_LOAD_ROUTECLIENT_H
#define TESTS_LOAD_ROUTECLIENT_H

#include <atomic>
#include <cstdint>
#include <string>

#include "quenra_routing.h"
#include "simulator/control/tsimulatedmachine.h"
#include "tests/load/brokenpromise.h"
#include "tests/load/tprogress.h"
#include "tests/load/trandom.h"

namespace nTests {

// What a thread has done with routes; may lie in shared memory that begins as zeros.
struct tRouteTally {
  std::atomic<uint64_t> sessions;
  std::atomic<uint64_t> lives;      // routes that were calculated and are gone
  std::atomic<uint64_t> conflicts;  // reservations that were refused
  std::atomic<uint64_t> heard;      // demotions that a callback was told
  std::atomic<uint64_t> awaited;    // demotions that were certain and were waited for
  std::atomic<uint64_t> leftBehind;
  std::atomic<uint64_t> failures;  // that nobody may be surprised of
};

// What a client takes for granted about its machine.
enum class tFaults : uint8_t {
  none,      // every call does what it promises
  anywhere,  // any call may fail, as long as it says so
};

// How a thread works with routes.
struct tRouteWork {
  std::string devicePath;
  tRandom* random;
  tProgress* progress;
  tRouteTally* tally;
  nSimulator::tSimulatedMachine* machine;  // to demote with; null: leaves that to others
  tFaults faults = tFaults::none;
};

// A session, and one route after another in it. Everything that breaks a promise is thrown.
class tRouteClient {
 public:
  explicit tRouteClient(const tRouteWork& work);
  tRouteClient(const tRouteClient&) = delete;
  tRouteClient& operator=(const tRouteClient&) = delete;
  ~tRouteClient();

  // Calculates, reserves and programs a route, and takes it down again.
  void liveOnce();
  // Leaves a route that is reserved or programmed to the driver; nothing else may follow.
  void leaveARouteBehind();
  // Walks over the terminals.
  void lookAtTerminals();
  // Waits for callbacks, ends the session, and sees to it that no callback runs any more.
  void end();

 private:
  static void takeDemotion(void* context, int32_t reason, zoerr_Status* status, void* notification);
  static char* giveRoom(char* current, size_t required, const char* text, size_t requiredAgain);

  // True when the last call succeeded; forgets its status. A failure breaks a promise unless it is
  // `expected`, or faults are about.
  bool succeeded(const char* what, int32_t expected = 0);
  void createSession();
  // 0 when there is none.
  uint32_t calculate();
  bool reserve(uint32_t ticket);
  bool program(uint32_t ticket);
  void checkPath(uint32_t ticket);
  void demote(uint32_t ticket);
  void hearOfDemotion(uint64_t heardBefore);
  void takeDown(uint32_t ticket);

  tRouteWork work_;
  zoroco_RoutingAdaptorSession* session_ = nullptr;
  zoerr_Status status_ = zoerr_Status_initial();
  char* output_ = nullptr;
  std::string from_;
  std::string to_;
  std::atomic<uint64_t> heard_ = 0;
  std::atomic<int> inside_ = 0;
  std::atomic<bool> isEnded_ = false;
  std::atomic<bool> wasToldWrongly_ = false;
};

}  // namespace nTests

#endif
