// Trigger routes through the exports, on the router of the simulated machine.
#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <memory>
#include <thread>
#include <vector>

#include "protocol/routingrequests.h"
#include "quenra_routing.h"
#include "tests/contract/contracttest.h"

extern "C" int routingExample(int argc, char** argv);

namespace nTests {
namespace {

using testing::HasSubstr;

char* supplyBuffer(char* current, size_t required, const char*, size_t) {
  return static_cast<char*>(std::realloc(current, required));
}

// A client: a status, an output argument, and a session with the device of the machine.
class tRoutingClient {
 public:
  explicit tRoutingClient(zoroco_DemotionCallback callback = nullptr, void* context = nullptr)
      : session(zoroco_ra_quenra_createSessionWithDemotionFunc(devicePath().c_str(), &supplyBuffer,
                                                               callback, context, &status)) {}
  tRoutingClient(const tRoutingClient&) = delete;
  tRoutingClient& operator=(const tRoutingClient&) = delete;
  ~tRoutingClient() {
    zoroco_ra_quenra_destroySession(session);
    zoerr_Status_release(&status);
    std::free(output);
  }

  static std::string devicePath() { return readText(QUENRA_ATTRIBUTE_DEVICE_PATH, 256).text; }

  // The answer to a calculation from one terminal to another.
  std::string calculate(const std::string& from, const std::string& to,
                        const std::string& modifiers = "{}") {
    const std::string seeds = R"([{"terminal":")" + from + R"(","cost":5,"constraints":{}}])";
    const std::string destinations = R"([")" + to + R"("])";
    count = zoroco_ra_quenra_calculateRoute(session, seeds.c_str(), destinations.c_str(),
                                            modifiers.c_str(), &output, &status);
    return answer();
  }
  // The ticket of the first route of such an answer.
  uint32_t ticketFor(const std::string& from, const std::string& to) {
    const std::string routes = calculate(from, to);
    EXPECT_EQ(routes.substr(0, 11), R"([{"ticket":)") << description();
    return routes.size() < 12 ? 0 : static_cast<uint32_t>(std::stoul(routes.substr(11)));
  }
  [[nodiscard]] std::string answer() const { return output == nullptr ? "(none)" : output; }
  [[nodiscard]] std::string description() const {
    return status.description == nullptr ? "" : status.description;
  }

  zoerr_Status status = zoerr_Status_initial();
  char* output = nullptr;
  uint32_t count = 0;
  zoroco_RoutingAdaptorSession* session;
};

class Routing : public ContractTest {};

TEST_F(Routing, LifeOfARoute_LeavesNothingReserved) {
  tRoutingClient client;
  ASSERT_NE(client.session, nullptr) << client.description();
  const uint32_t ticket = client.ticketFor("TRIG_SMB", "PXI_Trig0");
  EXPECT_EQ(client.count, 1u);
  EXPECT_THAT(client.answer(), HasSubstr(R"("destination":"PXI_Trig0",)"));
  zoroco_ra_quenra_reserveRoute(client.session, ticket, &client.output, &client.status);
  zoroco_ra_quenra_programRoute(client.session, ticket, &client.status);
  zoroco_ra_quenra_getRouteTerminalPath(client.session, ticket, &client.output, &client.status);
  EXPECT_EQ(client.answer(), R"(["TRIG_SMB","PXI_Trig0"])");
  ASSERT_EQ(machine().routes().size(), 1u);
  EXPECT_EQ(machine().routes()[0].state, static_cast<uint32_t>(kSimulatorRouteProgrammed));
  zoroco_ra_quenra_unprogramRoute(client.session, ticket, 0, 0);
  zoroco_ra_quenra_unreserveRoute(client.session, ticket, 0, 0);
  zoroco_ra_quenra_destroyRoute(client.session, ticket, 0, 0);
  EXPECT_TRUE(machine().routes().empty());
  EXPECT_EQ(client.status.code, 0) << client.description();
}

TEST_F(Routing, RequiredInversion_IsPartOfTheAnswer) {
  tRoutingClient client;
  EXPECT_THAT(client.calculate("TRIG_SMB", "PXI_Trig0", R"({"required":{"inversionNeeded":true}})"),
              HasSubstr(R"("indexOfStartingSeed":0,"constraints":{"inversionNeeded":true}}])"));
}

TEST_F(Routing, LineOfAnotherSession_IsRejectedWithItsHolder) {
  tRoutingClient holder;
  tRoutingClient client;
  const uint32_t held = holder.ticketFor("TRIG_SMB", "PXI_Trig0");
  zoroco_ra_quenra_reserveRoute(holder.session, held, &holder.output, &holder.status);
  const uint32_t wanted = client.ticketFor("WD_Terminal", "PXI_Trig0");
  zoroco_ra_quenra_reserveRoute(client.session, wanted, &client.output, &client.status);
  EXPECT_EQ(client.status.code, QUENRA_STATUS_ROUTE_CONFLICT);
  EXPECT_EQ(client.description(),
            R"({"file":"tInterfaceProxy_routing","line":161,"component":"quenra"})");
  EXPECT_EQ(client.answer(), R"([{"sessionId":)" + std::to_string(machine().routes()[0].session) +
                                 R"(,"ticket":)" + std::to_string(held) + "}]");
}

TEST_F(Routing, DestroyedSession_LeavesItsRoutesToTheDriver) {
  {
    tRoutingClient holder;
    const uint32_t ticket = holder.ticketFor("TRIG_SMB", "PXI_Trig0");
    zoroco_ra_quenra_reserveRoute(holder.session, ticket, &holder.output, &holder.status);
  }
  EXPECT_TRUE(machine().routes().empty()) << "the driver releases them when the device is closed";
}

TEST_F(Routing, LongPath_IsWrittenInFull) {
  tRoutingClient client;
  const uint32_t ticket = client.ticketFor("TRIG_SMB", "PXI_Trig0");
  machine().setPathLength(1000);
  zoroco_ra_quenra_getRouteTerminalPath(client.session, ticket, &client.output, &client.status);
  EXPECT_EQ(client.status.code, 0) << client.description();
  const std::string path = client.answer();
  EXPECT_EQ(std::count(path.begin(), path.end(), ','), 999);
}

// The next requests for a path fail in the transport, which leaves the count untouched.
void failPathRequests(nSimulator::tSimulatedMachine& machine, uint32_t times) {
  constexpr uint32_t kInsufficientBuffer = 122;
  tSimulatorScript script{};
  script.interfaceKind = kSimulatorInterfaceDevicePath;
  script.requestCode = REQUEST_GET_ROUTE_TERMINAL_PATH;
  script.times = times;
  script.action = kSimulatorActionFail;
  script.windowsError = kInsufficientBuffer;
  machine.addScript(script);
}

// The capacities that requests for a path have offered.
std::vector<uint32_t> capacitiesOf(const std::vector<tSimulatorLogEntry>& entries) {
  std::vector<uint32_t> capacities;
  for (const tSimulatorLogEntry& entry : entries) {
    tTicketListRequest request;
    std::memcpy(&request, entry.input, sizeof request);
    capacities.push_back(request.count);
  }
  return capacities;
}

TEST_F(Routing, PathBufferTooSmallForTheTransport_IsRepeatedOnce) {
  tRoutingClient client;
  const uint32_t ticket = client.ticketFor("TRIG_SMB", "PXI_Trig0");
  failPathRequests(machine(), 1);
  zoroco_ra_quenra_getRouteTerminalPath(client.session, ticket, &client.output, &client.status);
  EXPECT_EQ(client.status.code, 0) << client.description();
  EXPECT_EQ(client.answer(), R"(["TRIG_SMB","PXI_Trig0"])");
  const auto capacities = capacitiesOf(requests(REQUEST_GET_ROUTE_TERMINAL_PATH));
  ASSERT_EQ(capacities.size(), 2u);
  EXPECT_EQ(capacities[0], capacities[1]);
}

TEST_F(Routing, PathBufferTooSmallForTheTransportTwice_FailsWithPathTooLong) {
  tRoutingClient client;
  const uint32_t ticket = client.ticketFor("TRIG_SMB", "PXI_Trig0");
  const std::string earlier = client.answer();
  failPathRequests(machine(), 0);
  zoroco_ra_quenra_getRouteTerminalPath(client.session, ticket, &client.output, &client.status);
  EXPECT_EQ(client.status.code, QUENRA_STATUS_PATH_TOO_LONG);
  EXPECT_EQ(client.description(),
            R"({"file":"tdeviceinterfaceproxy","line":115,"component":"quenra"})");
  EXPECT_EQ(client.answer(), earlier);
  EXPECT_EQ(requests(REQUEST_GET_ROUTE_TERMINAL_PATH).size(), 2u);
}

TEST_F(Routing, StepOutOfOrder_IsRejectedByTheDriver) {
  tRoutingClient client;
  const uint32_t ticket = client.ticketFor("TRIG_SMB", "PXI_Trig0");
  zoroco_ra_quenra_programRoute(client.session, ticket, &client.status);
  EXPECT_EQ(client.status.code, SIMULATOR_STATUS_WRONG_ORDER);
  EXPECT_EQ(client.description(),
            R"({"file":"tInterfaceProxy_routing","line":187,"component":"quenra"})");
}

TEST_F(Routing, UnknownTicket_CanBeTornDown) {
  tRoutingClient client;
  zoroco_ra_quenra_unprogramRoute(client.session, 4711, 0, 0);
  zoroco_ra_quenra_unreserveRoute(client.session, 4711, 0, 0);
  zoroco_ra_quenra_destroyRoute(client.session, 4711, 0, 0);
  EXPECT_EQ(client.status.code, 0);
}

TEST_F(Routing, UnknownTerminal_IsRejectedByTheDriver) {
  tRoutingClient client;
  EXPECT_EQ(client.calculate("TRIG_SMB", "PXI_Trig8"), "(none)");
  EXPECT_EQ(client.status.code, SIMULATOR_STATUS_NO_SUCH_TERMINAL);
  EXPECT_EQ(client.description(),
            R"({"file":"tInterfaceProxy_routing","line":104,"component":"quenra"})");
}

TEST_F(Routing, BadRequest_IsNotSent) {
  tRoutingClient client;
  EXPECT_EQ(client.calculate("TRIG_SMB", "PXI_Trig0", "5"), "(none)");
  EXPECT_EQ(client.status.code, QUENRA_STATUS_INVALID_PARAMETER);
  EXPECT_TRUE(requests(REQUEST_CALCULATE_ROUTE).empty());
}

TEST_F(Routing, ResetOfATerminal_IsCalculatedAndDone) {
  tRoutingClient client;
  auto* const iterator = zoroco_ra_quenra_getAllTerminals(client.session, &client.status, 0);
  zoroco_ra_quenra_TerminalIterator_calculateResetTerminal(client.session, iterator, "default",
                                                           &client.status);
  zoroco_ra_quenra_TerminalIterator_resetTerminal(iterator, "floating", &client.status);
  EXPECT_EQ(client.status.code, 0) << client.description();
  zoroco_ra_quenra_TerminalIterator_destroy(iterator);
  ASSERT_EQ(requests(REQUEST_RESET_TERMINAL).size(), 1u);
  EXPECT_EQ(requests(REQUEST_CALCULATE_RESET_TERMINAL).size(), 1u);
}

TEST_F(Routing, Demotion_CallsTheCallbackOfTheRoutesSession) {
  std::atomic<int> reason = 0;
  tRoutingClient other([](void* context, int32_t, zoerr_Status*,
                          void*) { *static_cast<std::atomic<int>*>(context) = -1; },
                       &reason);
  tRoutingClient client([](void* context, int32_t why, zoerr_Status*,
                           void*) { *static_cast<std::atomic<int>*>(context) = why; },
                        &reason);
  const uint32_t ticket = client.ticketFor("TRIG_SMB", "PXI_Trig0");
  zoroco_ra_quenra_reserveRoute(client.session, ticket, &client.output, &client.status);
  machine().demoteRoute(ticket);
  for (int i = 0; reason == 0 && i < 2000; ++i) {
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  EXPECT_EQ(reason, 101);
}

// The first two notifications that a callback receives.
struct tNotifications {
  static void run(void* context, int32_t, zoerr_Status*, void* notification) {
    auto& self = *static_cast<tNotifications*>(context);
    if (self.count < 2) {
      self.received[self.count] = notification;
    }
    ++self.count;
  }
  [[nodiscard]] bool haveArrived(size_t expected) const {
    for (int i = 0; count < expected && i < 2000; ++i) {
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return count >= expected;
  }

  std::array<std::atomic<void*>, 2> received{};
  std::atomic<size_t> count = 0;
};

TEST_F(Routing, NotificationOfADemotion_IdentifiesItsSession) {
  tNotifications first;
  tNotifications second;
  tRoutingClient firstClient(&tNotifications::run, &first);
  tRoutingClient secondClient(&tNotifications::run, &second);
  tSimulatorNotice notice{};
  notice.mask = ROUTING_NOTIFICATION_DEMOTED;
  machine().notify(notice);
  ASSERT_TRUE(first.haveArrived(1) && second.haveArrived(1));
  machine().notify(notice);
  ASSERT_TRUE(first.haveArrived(2) && second.haveArrived(2));
  EXPECT_NE(first.received[0], nullptr);
  EXPECT_EQ(first.received[0], first.received[1]);
  EXPECT_EQ(second.received[0], second.received[1]);
  EXPECT_NE(first.received[0], second.received[0]);
}

// A callback that the test observes and holds.
struct tSlowCallback {
  static void run(void* context, int32_t, zoerr_Status*, void*) {
    auto& self = *static_cast<tSlowCallback*>(context);
    ++self.calls;
    self.isInside = true;
    while (!self.mayLeave) {
      std::this_thread::yield();
    }
    self.isInside = false;
  }
  // False after 20 s.
  [[nodiscard]] static bool becomesTrue(const std::function<bool()>& condition) {
    for (int i = 0; !condition() && i < 2000; ++i) {
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return condition();
  }

  std::atomic<int> calls = 0;
  std::atomic<bool> isInside = false;
  std::atomic<bool> mayLeave = false;
};

TEST_F(Routing, DestructionWhileTheCallbackRuns_WaitsForIt) {
  tSlowCallback callback;
  auto client = std::make_unique<tRoutingClient>(&tSlowCallback::run, &callback);
  const uint32_t ticket = client->ticketFor("TRIG_SMB", "PXI_Trig0");
  zoroco_ra_quenra_reserveRoute(client->session, ticket, &client->output, &client->status);
  machine().demoteRoute(ticket);
  ASSERT_TRUE(tSlowCallback::becomesTrue([&] { return callback.isInside.load(); }));
  std::atomic<bool> isDestroyed = false;
  std::thread destroyer([&] {
    client.reset();
    isDestroyed = true;
  });
  std::this_thread::sleep_for(std::chrono::milliseconds(50));
  EXPECT_FALSE(isDestroyed);
  callback.mayLeave = true;
  destroyer.join();
  EXPECT_FALSE(callback.isInside);
  EXPECT_EQ(callback.calls, 1);
}

// A callback that destroys its own session.
struct tDestroyingCallback {
  static void run(void* context, int32_t, zoerr_Status*, void*) {
    auto& self = *static_cast<tDestroyingCallback*>(context);
    zoroco_ra_quenra_destroySession(self.session);
    ++self.calls;
  }

  std::atomic<zoroco_RoutingAdaptorSession*> session = nullptr;
  std::atomic<int> calls = 0;
};

TEST_F(Routing, SessionDestroyedInItsOwnCallback_StaysOpen) {
  tDestroyingCallback callback;
  tRoutingClient client(&tDestroyingCallback::run, &callback);
  callback.session = client.session;
  tSimulatorNotice notice{};
  notice.mask = ROUTING_NOTIFICATION_DEMOTED;
  for (int round = 1; round <= 2; ++round) {
    machine().notify(notice);
    ASSERT_TRUE(tSlowCallback::becomesTrue([&] { return callback.calls == round; }));
  }
  zoroco_ra_quenra_getHandledConstraints(client.session, &client.output, &client.status);
  EXPECT_EQ(client.status.code, QUENRA_STATUS_SUCCESS);
  EXPECT_EQ(client.answer(), R"(["inversionNeeded"])");
}

TEST_F(Routing, SessionDestroyedInTheCallbackOfAnother_IsClosed) {
  auto victim = std::make_unique<tRoutingClient>();
  tDestroyingCallback callback;
  callback.session = victim->session;
  tRoutingClient client(&tDestroyingCallback::run, &callback);
  tSimulatorNotice notice{};
  notice.mask = ROUTING_NOTIFICATION_DEMOTED;
  machine().notify(notice);
  ASSERT_TRUE(tSlowCallback::becomesTrue([&] { return callback.calls == 1; }));
  zoroco_ra_quenra_programRoute(victim->session, 1, &victim->status);
  EXPECT_EQ(victim->status.code, QUENRA_STATUS_INVALID_PARAMETER);
}

TEST_F(Routing, HandleOfADestroyedSession_StaysInvalidWhileOthersAreCreated) {
  zoroco_RoutingAdaptorSession* const stale = tRoutingClient().session;
  for (int round = 0; round < 20; ++round) {
    const tRoutingClient another;
    ASSERT_NE(another.session, nullptr);
    zoerr_Status status = zoerr_Status_initial();
    zoroco_ra_quenra_programRoute(stale, 1, &status);
    EXPECT_EQ(status.code, QUENRA_STATUS_INVALID_PARAMETER) << round;
    zoerr_Status_release(&status);
  }
}

TEST_F(Routing, MoreSessionsThanTheDriverRegisters_FailWithMemoryFull) {
  std::vector<std::unique_ptr<tRoutingClient>> clients;
  for (int i = 0; i < SIMULATOR_NOTIFICATION_CAPACITY; ++i) {
    clients.push_back(std::make_unique<tRoutingClient>());
    ASSERT_NE(clients.back()->session, nullptr) << i;
  }
  const tRoutingClient refused;
  EXPECT_EQ(refused.session, nullptr);
  EXPECT_EQ(refused.status.code, QUENRA_STATUS_MEMORY_FULL);
  clients.pop_back();
  EXPECT_NE(tRoutingClient().session, nullptr);
}

TEST_F(Routing, HandleOfADestroyedIterator_StaysInvalidWhileOthersAreCreated) {
  tRoutingClient client;
  zoroco_TerminalIterator* const stale =
      zoroco_ra_quenra_getAllTerminals(client.session, &client.status, 0);
  ASSERT_NE(stale, nullptr);
  zoroco_ra_quenra_TerminalIterator_destroy(stale);
  for (int round = 0; round < 20; ++round) {
    zoroco_TerminalIterator* const another =
        zoroco_ra_quenra_getAllTerminals(client.session, &client.status, 0);
    EXPECT_TRUE(zoroco_ra_quenra_TerminalIterator_isEnd(stale)) << round;
    EXPECT_FALSE(zoroco_ra_quenra_TerminalIterator_isEnd(another)) << round;
    zoroco_ra_quenra_TerminalIterator_destroy(another);
  }
}

TEST_F(Routing, DestructionOnAnotherThreadWhileDemotionsArrive_DeliversNothingAfterwards) {
  std::atomic<bool> isOver = false;
  std::thread notifier([&isOver] {
    nSimulator::tSimulatedMachine sender;
    tSimulatorNotice notice{};
    notice.mask = ROUTING_NOTIFICATION_DEMOTED;
    while (!isOver) {
      try {
        sender.notify(notice);
      } catch (const nSimulator::tControlError&) {
        // No session is registered, or the driver holds too many notices back.
      }
    }
  });
  for (int round = 0; round < 20; ++round) {
    tSlowCallback callback;
    callback.mayLeave = true;
    auto client = std::make_unique<tRoutingClient>(&tSlowCallback::run, &callback);
    EXPECT_TRUE(tSlowCallback::becomesTrue([&] { return callback.calls > 3; }));
    std::thread([&client] { client.reset(); }).join();
    const int calls = callback.calls;
    EXPECT_FALSE(callback.isInside);
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
    EXPECT_EQ(callback.calls, calls);
  }
  isOver = true;
  notifier.join();
}

TEST_F(Routing, RouterOfAnotherName_FailsWithBadSelector) {
  machine().setTopographyName("other");
  tRoutingClient client;
  EXPECT_EQ(client.session, nullptr);
  EXPECT_EQ(client.status.code, QUENRA_STATUS_BAD_SELECTOR);
  EXPECT_THAT(client.description(), HasSubstr(R"("zoark_debug":"Topography not found: other"})"));
}

TEST_F(Routing, MissingDevice_FailsWithNotFound) {
  zoerr_Status status = zoerr_Status_initial();
  EXPECT_EQ(zoroco_ra_quenra_createSession(R"(\\?\nothing)", &supplyBuffer, &status), nullptr);
  EXPECT_EQ(status.code, QUENRA_STATUS_NOT_FOUND);
  EXPECT_STREQ(status.description,
               R"({"file":"tdeviceinterfaceproxy","line":43,"component":"quenra"})");
  zoerr_Status_release(&status);
}

// The program of docs/routing.md. It waits for a key and finds the end of its input.
TEST_F(Routing, ProgramOfTheDocumentation_ConnectsTwoTerminals) {
#ifdef _WIN32
  constexpr const char* kEmptyInput = "NUL";
#else
  constexpr const char* kEmptyInput = "/dev/null";
#endif
  ASSERT_NE(std::freopen(kEmptyInput, "r", stdin), nullptr);
  std::string words[] = {"routing", tRoutingClient::devicePath(), "TRIG_SMB", "PXI_Trig0"};
  char* arguments[] = {words[0].data(), words[1].data(), words[2].data(), words[3].data()};
  testing::internal::CaptureStdout();
  const int exitCode = routingExample(4, arguments);
  EXPECT_THAT(testing::internal::GetCapturedStdout(),
              testing::EndsWith("terminal PXI_Trig7\nconnected: [\"TRIG_SMB\",\"PXI_Trig0\"]\n"));
  EXPECT_EQ(exitCode, 0);
  EXPECT_TRUE(machine().routes().empty());
}

}  // namespace
}  // namespace nTests
