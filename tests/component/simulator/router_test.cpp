#include <gmock/gmock.h>

#include "protocol/pendingrequests.h"
#include "protocol/routingrequests.h"
#include "tests/component/simulator/modeltest.h"

namespace nTests {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr uint64_t kList = 0x8000;
constexpr uint32_t kWatchdog = 3;
constexpr uint32_t kTrig1 = 5;

class ModelRouter : public ModelTest {
 protected:
  template <class Record>
  Record call(uint32_t code, const std::vector<uint8_t>& sent, uint64_t file) {
    return recordOf<Record>(request(kRouting, code, sent, sizeof(Record), 0, file));
  }
  template <class Record>
  void put(uint64_t address, const std::vector<Record>& records) {
    if (!records.empty()) {
      std::memcpy(memory.data() + address, records.data(), records.size() * sizeof(Record));
    }
  }
  tCalculateRouteReply calculate(const std::vector<tRouteSeed>& seeds,
                                 const std::vector<uint32_t>& destinations,
                                 tRouteModifiers modifiers = {}, uint64_t file = 1,
                                 uint32_t options = 0) {
    put(kSeeds, seeds);
    put(kDestinations, destinations);
    put(kModifiers, std::vector<tRouteModifiers>{modifiers});
    tCalculateRouteRequest sent{};
    sent.modifiers = kModifiers;
    sent.seeds = kSeeds;
    sent.seedCount = static_cast<uint32_t>(seeds.size());
    sent.destinations = kDestinations;
    sent.destinationCount = static_cast<uint32_t>(destinations.size());
    sent.options = options;
    sent.routes = kRoutes;
    sent.routeCapacity = sent.destinationCount * 2;
    return call<tCalculateRouteReply>(REQUEST_CALCULATE_ROUTE, bytes(sent), file);
  }
  tRouteRecord route(uint32_t index) {
    tRouteRecord record{};
    std::memcpy(&record, memory.data() + kRoutes + index * sizeof record, sizeof record);
    return record;
  }
  // Calculates a route from the trigger connector to a line; returns its ticket.
  uint32_t ticketTo(uint32_t destination, uint64_t file = 1, uint32_t source = kConnector) {
    EXPECT_EQ(calculate({{source, 0, 0}}, {destination}, {}, file).routeCount, 1u);
    return route(0).ticket;
  }
  int32_t step(uint32_t code, uint32_t ticket, uint64_t file = 1) {
    return call<tStatusReply>(code, bytes(tTicketRequest{ticket, 0}), file).driverStatus;
  }
  tTicketListReply list(uint32_t code, uint32_t ticket, uint32_t capacity, uint64_t file = 1) {
    return call<tTicketListReply>(code, bytes(tTicketListRequest{ticket, 0, kList, capacity, 0}),
                                  file);
  }
  int32_t reserve(uint32_t ticket, uint64_t file = 1) {
    return list(REQUEST_RESERVE_ROUTE, ticket, 8, file).driverStatus;
  }
  std::vector<tSimulatorRoute> routes() {
    return records<tSimulatorRoute>(SIMULATOR_READ_ROUTES, SIMULATOR_ROUTE_CAPACITY);
  }
};

// ---- Calculation ----

TEST_F(ModelRouter, RouteFromTheCheapestSeed_IsFound) {
  const tCalculateRouteReply reply =
      calculate({{kConnector, 9, 0}, {kTrig1, 3, 0}, {kWatchdog, 9, 0}}, {kTrig0});
  EXPECT_EQ(reply.driverStatus, 0);
  EXPECT_EQ(reply.routeCount, 1u);
  EXPECT_EQ(reply.value, 1u);
  EXPECT_EQ(route(0).destination, kTrig0);
  EXPECT_EQ(route(0).seed, 1u);
  EXPECT_EQ(route(0).cost, 5u) << "3 of the seed, 2 between lines";
  EXPECT_EQ(route(0).inverts, 0u);
  EXPECT_NE(route(0).ticket, 0u);
}

TEST_F(ModelRouter, EveryDestination_HasItsRoute) {
  EXPECT_EQ(calculate({{kConnector, 0, 0}}, {kTrig0, kTrig1, 11}).routeCount, 3u);
  EXPECT_NE(route(0).ticket, route(1).ticket);
  EXPECT_EQ(route(2).destination, 11u);
}

TEST_F(ModelRouter, RequiredInversion_IsTheOnlyRoute) {
  EXPECT_EQ(calculate({{kConnector, 0, 0}}, {kTrig0}, {1, 0}).routeCount, 1u);
  EXPECT_EQ(route(0).inverts, 1u);
  EXPECT_EQ(calculate({{kConnector, 0, 0}}, {kWatchdog}, {1, 0}).routeCount, 0u)
      << "the watchdog has no inverter";
}

TEST_F(ModelRouter, OptionalInversion_IsOfferedBesideThePlainRoute) {
  EXPECT_EQ(calculate({{kConnector, 0, 0}}, {kTrig0}, {0, 1}).routeCount, 2u);
  EXPECT_EQ(route(0).inverts, 0u);
  EXPECT_EQ(route(1).inverts, 1u);
  EXPECT_GT(route(1).cost, route(0).cost);
}

TEST_F(ModelRouter, SeedThatNeedsInversion_StartsInvertingRoutesOnly) {
  EXPECT_EQ(calculate({{kConnector, 0, 1}}, {kTrig0}).routeCount, 1u);
  EXPECT_EQ(route(0).inverts, 1u);
}

TEST_F(ModelRouter, TerminalsThatCannotBeRouted_HaveNoRoute) {
  EXPECT_EQ(calculate({{1, 0, 0}}, {kTrig0}).routeCount, 0u)
      << "the floating terminal is not a source";
  EXPECT_EQ(calculate({{kConnector, 0, 0}}, {1}).routeCount, 0u);
  EXPECT_EQ(calculate({{kTrig0, 0, 0}}, {kTrig0}).routeCount, 0u) << "from itself";
  EXPECT_EQ(calculate({}, {kTrig0}).routeCount, 0u);
  EXPECT_EQ(calculate({{kConnector, 0, 0}}, {}).driverStatus, 0);
}

TEST_F(ModelRouter, UnknownTerminals_AreRejectedAndLeaveNoRoute) {
  EXPECT_EQ(calculate({{0, 0, 0}}, {kTrig0}).driverStatus, SIMULATOR_STATUS_NO_SUCH_TERMINAL);
  EXPECT_EQ(calculate({{kConnector, 0, 0}}, {kTrig0, 12}).driverStatus,
            SIMULATOR_STATUS_NO_SUCH_TERMINAL);
  EXPECT_THAT(routes(), IsEmpty());
}

TEST_F(ModelRouter, InaccessibleMemory_IsRejectedAndLeavesNoRoute) {
  put(kSeeds, std::vector<tRouteSeed>{{kConnector, 0, 0}});
  put(kDestinations, std::vector<uint32_t>{kTrig0});
  const tCalculateRouteRequest good{kModifiers, kSeeds, 1, 0, kDestinations, 1, 0, kRoutes, 2, 0};
  for (uint64_t tCalculateRouteRequest::*address :
       {&tCalculateRouteRequest::modifiers, &tCalculateRouteRequest::seeds,
        &tCalculateRouteRequest::destinations, &tCalculateRouteRequest::routes}) {
    tCalculateRouteRequest sent = good;
    sent.*address = 0xFFFFFFFFF0;
    EXPECT_EQ(call<tCalculateRouteReply>(REQUEST_CALCULATE_ROUTE, bytes(sent), 1).driverStatus,
              SIMULATOR_STATUS_BAD_ADDRESS);
  }
  EXPECT_THAT(routes(), IsEmpty());
}

TEST_F(ModelRouter, ReservedLine_CostsMoreUnlessReservationsAreIgnored) {
  reserve(ticketTo(kTrig0));
  calculate({{kWatchdog, 0, 0}}, {kTrig0}, {}, 2);
  EXPECT_EQ(route(0).cost, 1001u);
  calculate({{kWatchdog, 0, 0}}, {kTrig0}, {}, 2, ROUTE_OPTION_IGNORE_RESERVATIONS);
  EXPECT_EQ(route(0).cost, 1u);
}

TEST_F(ModelRouter, RoutesBeyondTheCapacity_AreRejected) {
  while (routes().size() < SIMULATOR_ROUTE_CAPACITY) {
    ticketTo(kTrig0);
  }
  EXPECT_EQ(calculate({{kConnector, 0, 0}}, {kTrig0}).driverStatus,
            SIMULATOR_STATUS_TOO_MANY_ROUTES);
  EXPECT_THAT(routes(), SizeIs(SIMULATOR_ROUTE_CAPACITY));
}

// ---- The life of a route ----

TEST_F(ModelRouter, StepsOutOfOrder_AreRejected) {
  const uint32_t ticket = ticketTo(kTrig0);
  EXPECT_EQ(step(REQUEST_PROGRAM_ROUTE, ticket), SIMULATOR_STATUS_WRONG_ORDER);
  EXPECT_EQ(step(REQUEST_UNRESERVE_ROUTE, ticket), SIMULATOR_STATUS_WRONG_ORDER);
  EXPECT_EQ(reserve(ticket), 0);
  EXPECT_EQ(reserve(ticket), SIMULATOR_STATUS_WRONG_ORDER);
  EXPECT_EQ(step(REQUEST_UNPROGRAM_ROUTE, ticket), SIMULATOR_STATUS_WRONG_ORDER);
  EXPECT_EQ(step(REQUEST_PROGRAM_ROUTE, ticket), 0);
  EXPECT_EQ(step(REQUEST_UNRESERVE_ROUTE, ticket), SIMULATOR_STATUS_WRONG_ORDER);
  EXPECT_EQ(step(REQUEST_UNPROGRAM_ROUTE, ticket), 0);
  EXPECT_EQ(step(REQUEST_UNRESERVE_ROUTE, ticket), 0);
  EXPECT_EQ(step(REQUEST_DESTROY_ROUTE, ticket), 0);
  EXPECT_EQ(step(REQUEST_DESTROY_ROUTE, ticket), SIMULATOR_STATUS_NO_SUCH_TICKET);
  EXPECT_THAT(routes(), IsEmpty());
}

TEST_F(ModelRouter, DestroyedInAnyState_FreesItsLine) {
  const uint32_t ticket = ticketTo(kTrig0);
  reserve(ticket);
  step(REQUEST_PROGRAM_ROUTE, ticket);
  EXPECT_EQ(step(REQUEST_DESTROY_ROUTE, ticket), 0);
  EXPECT_EQ(reserve(ticketTo(kTrig0, 2, kWatchdog), 2), 0);
}

TEST_F(ModelRouter, Ticket_BelongsToItsSession) {
  const uint32_t ticket = ticketTo(kTrig0, 1);
  for (const uint32_t code : {REQUEST_PROGRAM_ROUTE, REQUEST_UNPROGRAM_ROUTE,
                              REQUEST_UNRESERVE_ROUTE, REQUEST_DESTROY_ROUTE}) {
    EXPECT_EQ(step(code, ticket, 2), SIMULATOR_STATUS_NO_SUCH_TICKET);
  }
  EXPECT_EQ(reserve(ticket, 2), SIMULATOR_STATUS_NO_SUCH_TICKET);
  EXPECT_EQ(list(REQUEST_GET_ROUTE_TERMINAL_PATH, ticket, 8, 2).driverStatus,
            SIMULATOR_STATUS_NO_SUCH_TICKET);
}

TEST_F(ModelRouter, LineHeldByAnotherSource_IsRejectedWithItsHolder) {
  const uint32_t held = ticketTo(kTrig0, 7);
  ASSERT_EQ(reserve(held, 7), 0);
  const uint32_t requested = ticketTo(kTrig0, 8, kWatchdog);
  const tTicketListReply rejected = list(REQUEST_RESERVE_ROUTE, requested, 8, 8);
  EXPECT_EQ(rejected.driverStatus, DRIVER_STATUS_ROUTE_CONFLICT);
  EXPECT_EQ(rejected.count, 1u);
  tRouteConflict conflict{};
  std::memcpy(&conflict, memory.data() + kList, sizeof conflict);
  EXPECT_EQ(conflict.session, 7u);
  EXPECT_EQ(conflict.ticket, held);
  step(REQUEST_UNRESERVE_ROUTE, held, 7);
  EXPECT_EQ(reserve(requested, 8), 0);
}

TEST_F(ModelRouter, LineHeldByTheSameSource_IsShared) {
  ASSERT_EQ(reserve(ticketTo(kTrig0, 7), 7), 0);
  EXPECT_EQ(reserve(ticketTo(kTrig0, 8), 8), 0);
}

TEST_F(ModelRouter, ConflictsBeyondTheBuffer_AreCounted) {
  for (uint64_t session = 1; session <= 9; ++session) {
    ASSERT_EQ(reserve(ticketTo(kTrig0, session), session), 0);
  }
  const tTicketListReply rejected =
      list(REQUEST_RESERVE_ROUTE, ticketTo(kTrig0, 20, kWatchdog), 8, 20);
  EXPECT_EQ(rejected.count, 9u);
  EXPECT_EQ(memory[kList + 8 * sizeof(tRouteConflict)], 0xEE) << "the ninth is not written";
}

TEST_F(ModelRouter, EndOfASession_ReleasesItsRoutes) {
  const uint32_t ticket = ticketTo(kTrig0, 7);
  reserve(ticket, 7);
  step(REQUEST_PROGRAM_ROUTE, ticket, 7);
  cleanUp(7);
  EXPECT_THAT(routes(), IsEmpty());
  EXPECT_EQ(reserve(ticketTo(kTrig0, 8, kWatchdog), 8), 0);
}

TEST_F(ModelRouter, Tickets_AreNeverUsedTwice) {
  const uint32_t first = ticketTo(kTrig0);
  step(REQUEST_DESTROY_ROUTE, first);
  EXPECT_NE(ticketTo(kTrig0), first);
  control(SIMULATOR_RESET);
  EXPECT_GT(ticketTo(kTrig0), first);
}

// ---- Paths ----

TEST_F(ModelRouter, Path_LeadsFromTheSourceToTheDestination) {
  const uint32_t ticket = ticketTo(kTrig0);
  const tTicketListReply reply = list(REQUEST_GET_ROUTE_TERMINAL_PATH, ticket, 32);
  EXPECT_EQ(reply.driverStatus, 0);
  EXPECT_EQ(reply.count, 2u);
  uint32_t path[2] = {};
  std::memcpy(path, memory.data() + kList, sizeof path);
  EXPECT_THAT(path, ElementsAre(kConnector, kTrig0));
}

TEST_F(ModelRouter, PathThatIsTooLong_ReturnsItsLength) {
  ASSERT_EQ(control(SIMULATOR_SET_PATH_LENGTH, uint32_t{40}).windowsError, kWindowsErrorNone);
  const uint32_t ticket = ticketTo(kTrig0);
  const tTicketListReply tooLong = list(REQUEST_GET_ROUTE_TERMINAL_PATH, ticket, 39);
  EXPECT_EQ(tooLong.driverStatus, DRIVER_STATUS_PATH_TOO_LONG);
  EXPECT_EQ(tooLong.count, 40u);
  EXPECT_EQ(memory[kList], 0xEE);
  EXPECT_EQ(list(REQUEST_GET_ROUTE_TERMINAL_PATH, ticket, 40).driverStatus, 0);
  uint32_t path[40] = {};
  std::memcpy(path, memory.data() + kList, sizeof path);
  EXPECT_EQ(path[0], kConnector);
  EXPECT_EQ(path[1], 4u);
  EXPECT_EQ(path[38], 9u);
  EXPECT_EQ(path[39], kTrig0);
  EXPECT_EQ(control(SIMULATOR_SET_PATH_LENGTH, uint32_t{1}).windowsError,
            kWindowsErrorInvalidParameter);
}

// ---- Terminals and the topography ----

TEST_F(ModelRouter, TopographyName_IsTruncatedToTheBuffer) {
  const auto name = [this](uint64_t buffer, uint32_t size) {
    return call<tStatusReply>(REQUEST_GET_TOPOGRAPHY_NAME,
                              bytes(tGetTopographyNameRequest{buffer, size, 0}), 1)
        .driverStatus;
  };
  EXPECT_EQ(name(kList, 128), 0);
  EXPECT_EQ(std::memcmp(memory.data() + kList, "pxiContTriggerRouter\0\xEE", 22), 0);
  EXPECT_EQ(name(kList + 0x100, 3), 0);
  EXPECT_EQ(std::memcmp(memory.data() + kList + 0x100, "pxi\xEE", 4), 0);
  EXPECT_EQ(name(0, 128), SIMULATOR_STATUS_BAD_ADDRESS);
  const std::string other = "other";
  control(SIMULATOR_SET_TOPOGRAPHY_NAME, std::vector<uint8_t>(other.begin(), other.end()));
  name(kList + 0x200, 128);
  EXPECT_EQ(std::memcmp(memory.data() + kList + 0x200, "other\xEE", 6), 0);
}

TEST_F(ModelRouter, ResetTerminal_DemotesTheRoutesThatDriveIt) {
  const uint32_t ticket = ticketTo(kTrig0);
  reserve(ticket);
  step(REQUEST_PROGRAM_ROUTE, ticket);
  const auto reset = [this](uint32_t terminal) {
    return call<tStatusReply>(REQUEST_RESET_TERMINAL, bytes(tResetTerminalRequest{terminal, 0, 0}),
                              9)
        .driverStatus;
  };
  EXPECT_EQ(reset(kTrig1), 0);
  EXPECT_EQ(routes()[0].state, uint32_t{kSimulatorRouteProgrammed});
  EXPECT_EQ(reset(kTrig0), 0);
  EXPECT_EQ(routes()[0].state, uint32_t{kSimulatorRouteCalculated});
  EXPECT_EQ(reset(0), SIMULATOR_STATUS_NO_SUCH_TERMINAL);
}

TEST_F(ModelRouter, RestingSource_IsReturnedForBothStates) {
  const auto source = [this](uint32_t terminal, int32_t floating) {
    return call<tRoutingValueReply>(
        REQUEST_CALCULATE_RESET_TERMINAL,
        bytes(tCalculateResetTerminalRequest{0, terminal, floating, 0, 0}), 1);
  };
  EXPECT_EQ(source(kTrig0, 0).value, 1u);
  EXPECT_EQ(source(kConnector, 0).value, kWatchdog);
  EXPECT_EQ(source(kConnector, 1).value, 1u);
  EXPECT_EQ(source(12, 0).driverStatus, SIMULATOR_STATUS_NO_SUCH_TERMINAL);
}

TEST_F(ModelRouter, DemotedRoute_LosesItsLineAndItsSessionIsNotified) {
  const tRegisterNotificationRequest sent{0xABCD, ROUTING_NOTIFICATION_DEMOTED, 0};
  EXPECT_EQ(request(kRouting, REQUEST_REGISTER_NOTIFICATION, bytes(sent), 0, 50, 7).windowsError,
            kWindowsErrorIoPending);
  EXPECT_EQ(request(kRouting, REQUEST_ARM_DELIVERY, {}, 48, 51, 7).windowsError,
            kWindowsErrorIoPending);
  const uint32_t ticket = ticketTo(kTrig0, 7);
  EXPECT_EQ(control(SIMULATOR_DEMOTE_ROUTE, ticket).windowsError, kWindowsErrorNotFound)
      << "it holds no line yet";
  reserve(ticket, 7);
  EXPECT_EQ(control(SIMULATOR_DEMOTE_ROUTE, ticket).windowsError, kWindowsErrorNone);
  ASSERT_THAT(completions, SizeIs(1));
  EXPECT_EQ(completions[0].token, 51u);
  tNotificationDelivery delivery{};
  std::memcpy(&delivery, completions[0].output.data(), sizeof delivery);
  EXPECT_EQ(delivery.notification, 0xABCDu);
  EXPECT_EQ(delivery.payloadSize, 4u);
  EXPECT_EQ(std::memcmp(delivery.payload, &ticket, 4), 0);
  EXPECT_EQ(reserve(ticketTo(kTrig0, 8, kWatchdog), 8), 0) << "the line is free";
}

}  // namespace
}  // namespace nTests
