// The creation, use and destruction of a session while demotions arrive on another thread.
#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <thread>

#include "tests/component/zoarkra/tscriptedrouter.h"
#include "zoarkra/arkroutingadaptorsession.h"

namespace nTests {
namespace {

// A device that delivers demotions without a pause, from its start until it is stopped.
class tBusyDevice final : public zoark::iRoutingDevice {
 public:
  ~tBusyDevice() override { tBusyDevice::stopNotifications(); }

  void open(const char*, nZOAPALS100::tStatus&) noexcept override { router_.isQuiet = true; }
  void startNotifications(zoark::iDemotionListener& listener, nZOAPALS100::tStatus&) override {
    notifier_ = std::jthread([&listener](const std::stop_token& stop) {
      while (!stop.stop_requested()) {
        listener.routeDemoted(nullptr);
      }
    });
  }
  void stopNotifications() noexcept override { notifier_ = {}; }
  bool isListenerThread() const noexcept override {
    return std::this_thread::get_id() == notifier_.get_id();
  }
  nQUENRA1400::nZOAPAL000::iInterfaceProxy_routing& proxy() noexcept override { return router_; }

 private:
  tScriptedRouter router_;
  std::jthread notifier_;
};

// The callback writes it without a lock, so that the thread sanitizer reports a second thread.
struct tClient {
  int count = 0;
  std::atomic<bool> isCalled = false;
};

void countDemotion(void* context, int32_t, zoerr_Status*, void*) {
  auto& client = *static_cast<tClient*>(context);
  ++client.count;
  client.isCalled = true;
}

TEST(SessionThreads, DemotionsDuringTheWholeSession_FindACompleteClient) {
  for (int round = 0; round < 50; ++round) {
    tClient client;
    zoerr::tOwnedStatus status;
    {
      zoark::ARKRoutingAdaptorSession session(std::make_unique<tBusyDevice>(), "device",
                                              {nullptr, &countDemotion, &client}, status);
      while (!client.isCalled) {
        session.programRoute(7, status);
      }
    }
    // The session is destroyed, so no other thread uses the client.
    EXPECT_GE(client.count, 1);
    EXPECT_EQ(status.code, 0);
  }
}

}  // namespace
}  // namespace nTests
