#ifndef TESTS_COMPONENT_ZOARKRA_SCRIPTEDROUTER_H
#define TESTS_COMPONENT_ZOARKRA_SCRIPTEDROUTER_H

#include <cstdint>
#include <string>
#include <thread>
#include <vector>

#include "codegen/apalcodegen/tinterfaceproxy_routing.h"
#include "protocol/routingrequests.h"
#include "tests/component/twithoutchannel.h"
#include "zoarkra/iroutingdevice.h"

namespace nTests {

// A test double of the routing interface. It records its calls and replies as the test scripts it.
class tScriptedRouter final
    : public tWithoutChannel<nQUENRA1400::nZOAPAL000::iInterfaceProxy_routing> {
 public:
  using tStatus = nZOAPALS100::tStatus;

  // The calls as text: "programRoute(7)", and "programRoute(7) st=5" under a warning. A call with an
  // error in its status is not recorded.
  std::vector<std::string> calls;

  // Records nothing, and so allocates nothing.
  bool isQuiet = false;

  // The codes of the next calls of any method; later calls succeed. Their location is component
  // "driver", file "router", line 9.
  std::vector<int32_t> codes;

  // The reply to a calculation: the routes, of which it fills as many as the capacity allows, and a
  // value.
  std::vector<tRouteRecord> routes;
  uint32_t value = 0;
  // The count of routes that it reports; 0 for the true one.
  uint32_t reportedRouteCount = 0;

  // The conflicts that a reservation fills, and the count that it reports; 0 for the true one.
  std::vector<tRouteConflict> conflicts;
  uint32_t reportedConflictCount = 0;

  // The path of every route, and the length that it reports; 0 for the true one.
  std::vector<uint32_t> path;
  uint32_t reportedPathLength = 0;

  std::string topographyName = "pxiContTriggerRouter";

  void method0(uint32_t& result, tStatus& status) noexcept override;
  uint32_t calculateRoute(uint64_t modifiers, uint64_t seeds, uint32_t seedCount,
                          uint64_t destinations, uint32_t destinationCount, uint32_t options,
                          uint64_t routeBuffer, uint32_t& routeCount,
                          tStatus& status) noexcept override;
  void destroyRoute(uint32_t ticket, tStatus& status) noexcept override;
  void reserveRoute(uint32_t ticket, uint64_t conflictBuffer, uint32_t& count,
                    tStatus& status) noexcept override;
  void programRoute(uint32_t ticket, tStatus& status) noexcept override;
  void unreserveRoute(uint32_t ticket, tStatus& status) noexcept override;
  void unprogramRoute(uint32_t ticket, tStatus& status) noexcept override;
  void getRouteTerminalPath(uint32_t ticket, uint64_t terminals, uint32_t& count,
                            tStatus& status) noexcept override;
  void getTopographyName(uint64_t buffer, uint32_t size, tStatus& status) noexcept override;
  void resetTerminal(uint32_t terminal, uint32_t floating, tStatus& status) noexcept override;
  uint32_t calculateResetTerminal(uint64_t reserved, uint32_t terminal, int32_t floating,
                                  tStatus& status) noexcept override;

 private:
  // Records a call as the text of `describe`. False, without a record, when the status holds an error.
  template <class Describe>
  bool enter(Describe describe, const tStatus& status);
  // Merges the scripted code of the call.
  void leave(tStatus& status);
};

// The script and the record of a device that a session owns.
struct tRoutingDeviceScript {
  tScriptedRouter router;
  std::vector<std::string> events;  // "open NAME", "start", "stop", "closed"
  int32_t openCode = 0;             // located at component "driver", file "device", line 1
  int32_t startCode = 0;            // the same with line 2
  zoark::iDemotionListener* listener = nullptr;
  bool demotesAtStart = false;     // one demotion arrives during the creation of the session
  std::thread::id listenerThread;  // the thread that counts as the listener's
};

class tScriptedRoutingDevice final : public zoark::iRoutingDevice {
 public:
  explicit tScriptedRoutingDevice(tRoutingDeviceScript& script) : script_(script) {}
  ~tScriptedRoutingDevice() override { record("closed"); }

  void open(const char* name, nZOAPALS100::tStatus& status) noexcept override {
    if (!status.isError()) {
      record("open ", name);
      mergeStatus(status, script_.openCode, {"device", 1, "driver"});
    }
  }
  void startNotifications(zoark::iDemotionListener& listener,
                          nZOAPALS100::tStatus& status) override {
    if (status.isError()) {
      return;
    }
    record("start");
    mergeStatus(status, script_.startCode, {"device", 2, "driver"});
    script_.listener = &listener;
    if (script_.demotesAtStart) {
      listener.routeDemoted(nullptr);
    }
  }
  void stopNotifications() noexcept override {
    record("stop");
    script_.listener = nullptr;
  }
  bool isListenerThread() const noexcept override {
    return std::this_thread::get_id() == script_.listenerThread;
  }
  nQUENRA1400::nZOAPAL000::iInterfaceProxy_routing& proxy() noexcept override {
    return script_.router;
  }

 private:
  void record(const char* event, const char* argument = "") {
    if (!script_.router.isQuiet) {
      script_.events.push_back(std::string(event) + argument);
    }
  }

  tRoutingDeviceScript& script_;
};

}  // namespace nTests

#endif
