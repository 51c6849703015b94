#ifndef TESTS_COMPONENT_ZOARKRA_TSCRIPTEDROUTINGDEVICE_H
#define TESTS_COMPONENT_ZOARKRA_TSCRIPTEDROUTINGDEVICE_H

#include <string>
#include <thread>
#include <vector>

#include "tests/component/zoarkra/tscriptedrouter.h"
#include "zoarkra/iroutingdevice.h"

namespace nTests {

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
      mergeStatus(status, script_.openCode, "driver", "device", 1);
    }
  }
  void startNotifications(zoark::iDemotionListener& listener,
                          nZOAPALS100::tStatus& status) override {
    if (status.isError()) {
      return;
    }
    record("start");
    mergeStatus(status, script_.startCode, "driver", "device", 2);
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
