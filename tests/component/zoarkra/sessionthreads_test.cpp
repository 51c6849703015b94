// A session that is made, used and destroyed while demotions arrive on another thread.
#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <thread>

#include "tests/component/zoarkra/tscriptedrouter.h"
#include "zoarkra/arkroutingadaptorsession.h"

namespace nTests {
namespace {

// A device that tells of demotions without a pause, from its start until it is stopped.
class tBusyDevice final : public zoark::iRoutingDevice {
 public:
  ~tBusyDevice() override { tBusyDevice::stopNotifications(); }

  void open(const char*, nZOAPALS100::tStatus&) noexcept override { router_.isQuiet = true; }
  void startNotifications(zoark::iDemotionListener& listener, nZOAPALS100::tStatus&) override {
    teller_ = std::jthread([&listener](const std::stop_token& stop) {
      while (!stop.stop_requested()) {
        listener.routeDemoted(nullptr);
      }
    });
  }
  void stopNotifications() noexcept override { teller_ = {}; }
  nQUENRA1400::nZOAPAL000::iInterfaceProxy_routing& proxy() noexcept override { return router_; }

 private:
  tScriptedRouter router_;
  std::jthread teller_;
};

// What the client's callback writes without any lock: only one thread may run it.
struct tClient {
  int count = 0;
  std::atomic<bool> hasBeenTold = false;
};

void takeDemotion(void* context, int32_t, zoerr_Status*, void*) {
  auto& client = *static_cast<tClient*>(context);
  ++client.count;
  client.hasBeenTold = true;
}

TEST(SessionThreads, DemotionsFromTheFirstMomentToTheLast_FindTheWholeClient) {
  for (int round = 0; round < 50; ++round) {
    tClient client;
    zoerr::tOwnedStatus status;
    {
      zoark::ARKRoutingAdaptorSession session(std::make_unique<tBusyDevice>(), "device",
                                              {nullptr, &takeDemotion, &client}, status);
      while (!client.hasBeenTold) {
        session.programRoute(7, status);
      }
    }
    // Destroyed: nobody else looks at the client any more.
    EXPECT_GE(client.count, 1);
    EXPECT_EQ(status.code, 0);
  }
}

}  // namespace
}  // namespace nTests
