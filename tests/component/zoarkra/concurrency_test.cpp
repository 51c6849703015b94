// State that threads share: the path capacity of the process, and a session while demotions arrive. A
// separate program, since the capacity never shrinks.
#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "tests/component/zoarkra/scriptedrouter.h"
#include "zoapal/protons/status/zoerrstatus.h"
#include "zoarkra/arkroutingadaptorsession.h"

namespace nTests {
namespace {

// ---- The path capacity of the process ----

// A client whose answers last until the next one.
char* supplyScratchBuffer(char*, size_t required, const char*, size_t) {
  thread_local std::vector<char> buffer;
  buffer.resize(required);
  return buffer.data();
}

struct tRoutingClient {
  std::vector<std::string> fetch(uint32_t length) {
    script.router.path.assign(length, 4);
    script.router.calls.clear();
    char* output = nullptr;
    session.getRouteTerminalPath(7, &output, status);
    return script.router.calls;
  }

  tRoutingDeviceScript script;
  zoerr::tOwnedStatus status;
  zoark::ARKRoutingAdaptorSession session{std::make_unique<tScriptedRoutingDevice>(script),
                                          "device",
                                          {&supplyScratchBuffer, nullptr, nullptr},
                                          status};
};

using tCalls = std::vector<std::string>;
const std::string kCapacity32 = "getRouteTerminalPath(7, capacity 32)";
const std::string kCapacity33 = "getRouteTerminalPath(7, capacity 33)";
const std::string kCapacity40 = "getRouteTerminalPath(7, capacity 40)";

TEST(PathCapacity, LongerPaths_RaiseItFrom32ForAllSessions) {
  tRoutingClient first;
  EXPECT_EQ(first.fetch(32), tCalls{kCapacity32});
  EXPECT_EQ(first.fetch(33), (tCalls{kCapacity32, kCapacity33}));
  EXPECT_EQ(first.fetch(40), (tCalls{kCapacity33, kCapacity40}));
  EXPECT_EQ(first.fetch(40), tCalls{kCapacity40});
  tRoutingClient second;
  EXPECT_EQ(second.fetch(1), tCalls{kCapacity40});
}

TEST(PathCapacity, MaximumCount_IsRememberedAndALargerOneIsNot) {
  tRoutingClient client;
  EXPECT_EQ(client.fetch(1024).back(), "getRouteTerminalPath(7, capacity 1024)");
  EXPECT_THROW(client.fetch(1025), zoerr::Exception);
  EXPECT_EQ(client.fetch(1), tCalls{"getRouteTerminalPath(7, capacity 1024)"});
}

TEST(PathCapacity, RaisedByManyThreads_ServesThemAll) {
  constexpr uint32_t kThreads = 8;
  constexpr uint32_t kMaxLength = 400;
  std::vector<std::jthread> threads;
  for (uint32_t i = 0; i < kThreads; ++i) {
    threads.emplace_back([i] {
      tRoutingClient client;
      for (uint32_t length = i; length <= kMaxLength; length += kThreads) {
        const tCalls calls = client.fetch(length);
        EXPECT_GE(calls.size(), 1u);
        EXPECT_LE(calls.size(), 2u);
        EXPECT_EQ(client.status.code, 0);
      }
    });
  }
}

// ---- Demotions during a session ----

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

TEST(SessionThreads, DemotionsDuringASession_FindACompleteClient) {
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
