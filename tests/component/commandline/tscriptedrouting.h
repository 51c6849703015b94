#ifndef TESTS_COMPONENT_COMMANDLINE_TSCRIPTEDROUTING_H
#define TESTS_COMPONENT_COMMANDLINE_TSCRIPTEDROUTING_H

#include <functional>
#include <map>
#include <string>
#include <thread>
#include <vector>

#include "tools/quenra/routing/irouting.h"

namespace nTests {

// The routing functions with a router whose answers are scripted. It has three terminals.
class tScriptedRouting final : public nCommandLine::iRouting {
 public:
  tSession* createSession(const char* device, zoroco_Reallocate reallocate,
                          zoroco_DemotionCallback callback, void* context,
                          zoerr_Status* status) noexcept override;
  void destroySession(tSession* session) noexcept override;
  void calculateRoute(tSession* session, const char* seeds, const char* destinations,
                      const char* modifiers, char** output, zoerr_Status* status) noexcept override;
  void reserveRoute(tSession* session, uint32_t ticket, char** output,
                    zoerr_Status* status) noexcept override;
  void programRoute(tSession* session, uint32_t ticket, zoerr_Status* status) noexcept override;
  void unprogramRoute(tSession* session, uint32_t ticket) noexcept override;
  void unreserveRoute(tSession* session, uint32_t ticket) noexcept override;
  void destroyRoute(tSession* session, uint32_t ticket) noexcept override;
  void beginExceptionalRouteDestruction(tSession* session, uint32_t ticket) noexcept override;
  void getRouteTerminalPath(tSession* session, uint32_t ticket, char** output,
                            zoerr_Status* status) noexcept override;
  tIterator* getAllTerminals(tSession* session, zoerr_Status* status) noexcept override;
  void next(tIterator* iterator, zoerr_Status* status) noexcept override;
  bool isEnd(tIterator* iterator) noexcept override;
  const char* getStringAttribute(tIterator* iterator, const char* name,
                                 zoerr_Status* status) noexcept override;
  bool getBoolAttribute(tIterator* iterator, const char* name,
                        zoerr_Status* status) noexcept override;
  uint32_t getU32Attribute(tIterator* iterator, const char* name,
                           zoerr_Status* status) noexcept override;
  void destroyIterator(tIterator* iterator) noexcept override;

  // Reports a demotion to the session's client.
  void demote(int32_t reason);
  // Reports several on a thread of the session; destroySession waits for that thread.
  void demoteOnItsThread(std::vector<int32_t> reasons);

  // The calls, without those that iterate over terminals: "reserve 7", "calculate ... ... ...".
  std::vector<std::string> calls;
  // The code that a call reports, by its first word: "reserve".
  std::map<std::string, int32_t, std::less<>> codes;
  // The description of a status with a code; empty for none.
  std::string description;
  std::string routes = R"([{"ticket":7,"destination":"PXI_Trig0","cost":1,"indexOfStartingSeed":0,)"
                       R"("constraints":{}}])";
  std::string conflicts = "[]";
  int afterConflicts = -1;  // reservations succeed after so many conflicts; negative: never
  std::string path = R"(["TRIG_SMB","PXI_Trig0"])";
  std::function<void()> afterProgramming;
  // Runs before each calculation, with its call: it may change `routes`.
  std::function<void(const std::string& call)> beforeCalculation;
  int sessions = 0;   // not yet destroyed
  int iterators = 0;  // not yet destroyed

 private:
  // Records the call and reports its code; false if the call must return without effect.
  bool take(const std::string& call, zoerr_Status* status);
  void answer(const std::string& text, char** output, zoerr_Status* status) const;

  zoroco_Reallocate reallocate_ = nullptr;
  zoroco_DemotionCallback callback_ = nullptr;
  void* context_ = nullptr;
  size_t terminal_ = 0;
  std::thread thread_;
};

}  // namespace nTests

#endif
