// The counters of objects begun and ended, for every way in which an object can end.
#include "protocol/pendingrequests.h"
#include "protocol/routingrequests.h"
#include "tests/component/simulator/modeltest.h"

namespace nTests {
namespace {

constexpr auto kRouting = kSimulatorInterfaceDevicePath;
constexpr uint64_t kSeeds = 0x1000;
constexpr uint64_t kDestinations = 0x2000;
constexpr uint64_t kModifiers = 0x3000;
constexpr uint64_t kRoutes = 0x4000;
constexpr uint32_t kConnector = 2;
constexpr uint32_t kTrig0 = 4;
constexpr uint32_t kNoTerminal = 99;

class ModelCounters : public ModelTest {
 protected:
  tSimulatorCounters counters() {
    return recordOf<tSimulatorCounters>(
        control(SIMULATOR_READ_COUNTERS, {}, sizeof(tSimulatorCounters)));
  }
  template <class Record>
  void put(uint64_t address, const Record& record) {
    std::memcpy(memory.data() + address, &record, sizeof record);
  }
  template <class Record>
  tAnswer send(uint32_t code, const Record& sent, uint32_t capacity, uint64_t token = 0) {
    return request(kRouting, code, bytes(sent), capacity, token);
  }
  // Calculates routes to the first line and to another terminal; returns the ticket of the first.
  uint32_t calculate(uint32_t other = kTrig0 + 1) {
    put(kSeeds, tRouteSeed{kConnector, 0, 0});
    put(kDestinations, kTrig0);
    put(kDestinations + 4, other);
    put(kModifiers, tRouteModifiers{});
    send(REQUEST_CALCULATE_ROUTE,
         tCalculateRouteRequest{kModifiers, kSeeds, 1, 0, kDestinations, 2, 0, kRoutes, 4, 0},
         sizeof(tCalculateRouteReply));
    tRouteRecord record{};
    std::memcpy(&record, memory.data() + kRoutes, sizeof record);
    return record.ticket;
  }
  void step(uint32_t code, uint32_t ticket) {
    send(code, tTicketRequest{ticket, 0}, sizeof(tStatusReply));
  }
  uint32_t calculateAndReserve() {
    const uint32_t ticket = calculate();
    send(REQUEST_RESERVE_ROUTE, tTicketListRequest{ticket, 0, 0, 0, 0}, sizeof(tTicketListReply));
    return ticket;
  }
  uint32_t calculateAndProgram() {
    const uint32_t ticket = calculateAndReserve();
    step(REQUEST_PROGRAM_ROUTE, ticket);
    return ticket;
  }
  void registerAndArm() {
    send(REQUEST_REGISTER_NOTIFICATION, tRegisterNotificationRequest{7, 1, 0}, 0, 0x10);
    request(kRouting, REQUEST_ARM_DELIVERY, {}, sizeof(tNotificationDelivery), 0x20);
  }
  void notify() {
    tSimulatorNotice notice{};
    notice.mask = 1;
    control(SIMULATOR_NOTIFY, notice);
  }
};

TEST_F(ModelCounters, BeforeAnything_AreZero) {
  const tSimulatorCounters zeros{};
  const tSimulatorCounters counted = counters();
  EXPECT_EQ(std::memcmp(&counted, &zeros, sizeof zeros), 0);
}

TEST_F(ModelCounters, RouteReleasedByItsClient_EndsEachStep) {
  const uint32_t ticket = calculateAndProgram();
  EXPECT_EQ(counters().routesCalculated, 2u);
  EXPECT_EQ(counters().reservationsBegun, 1u);
  EXPECT_EQ(counters().programmingsBegun, 1u);
  EXPECT_EQ(counters().programmingsEnded, 0u);
  step(REQUEST_UNPROGRAM_ROUTE, ticket);
  EXPECT_EQ(counters().programmingsEnded, 1u);
  EXPECT_EQ(counters().reservationsBegun, 1u) << "it stayed reserved";
  step(REQUEST_UNRESERVE_ROUTE, ticket);
  EXPECT_EQ(counters().reservationsEnded, 1u);
  EXPECT_EQ(counters().routesGone, 0u);
  step(REQUEST_DESTROY_ROUTE, ticket);
  EXPECT_EQ(counters().routesGone, 1u);
  EXPECT_EQ(counters().reservationsReleased, 0u);
}

TEST_F(ModelCounters, RejectedStep_IsNotCounted) {
  const uint32_t ticket = calculate();
  step(REQUEST_PROGRAM_ROUTE, ticket);
  step(REQUEST_UNRESERVE_ROUTE, ticket);
  EXPECT_EQ(counters().programmingsBegun, 0u);
  EXPECT_EQ(counters().reservationsEnded, 0u);
}

TEST_F(ModelCounters, CalculationThatFailsHalfway_LeavesNoRoute) {
  calculate(kNoTerminal);
  EXPECT_EQ(counters().routesCalculated, 1u);
  EXPECT_EQ(counters().routesGone, 1u);
}

TEST_F(ModelCounters, Demotion_EndsReservationAndProgramming) {
  control(SIMULATOR_DEMOTE_ROUTE, calculateAndProgram());
  control(SIMULATOR_DEMOTE_ROUTE, calculateAndReserve());
  EXPECT_EQ(counters().reservationsDemoted, 2u);
  EXPECT_EQ(counters().reservationsEnded, 0u);
  EXPECT_EQ(counters().programmingsEnded, 1u);
}

TEST_F(ModelCounters, RoutesOfAnEndedSession_AreReleased) {
  calculateAndProgram();
  calculateAndReserve();
  cleanUp(1);
  EXPECT_EQ(counters().routesGone, 4u);
  EXPECT_EQ(counters().reservationsReleased, 2u);
  EXPECT_EQ(counters().programmingsEnded, 1u);
}

TEST_F(ModelCounters, Reset_EndsEveryObjectAndKeepsTheCounts) {
  calculateAndProgram();
  registerAndArm();
  control(SIMULATOR_RESET);
  EXPECT_EQ(counters().routesCalculated, 2u);
  EXPECT_EQ(counters().routesGone, 2u);
  EXPECT_EQ(counters().reservationsReleased, 1u);
  EXPECT_EQ(counters().registrationsEnded, 1u);
  EXPECT_EQ(counters().deliveriesEnded, 1u);
}

TEST_F(ModelCounters, Notices_AreDeliveredOrDropped) {
  registerAndArm();
  notify();
  EXPECT_EQ(counters().noticesRaised, 1u);
  EXPECT_EQ(counters().noticesDelivered, 1u);
  EXPECT_EQ(counters().deliveriesEnded, 1u);
  for (uint32_t i = 0; i <= SIMULATOR_NOTIFICATION_CAPACITY; ++i) {
    notify();
  }
  EXPECT_EQ(counters().noticesDropped, 1u) << "one more than the capacity for held notices";
  request(kRouting, REQUEST_ARM_DELIVERY, {}, sizeof(tNotificationDelivery), 0x30);
  EXPECT_EQ(counters().noticesDelivered, 2u);
  EXPECT_EQ(counters().deliveriesArmed, 1u) << "the second completed immediately";
  cleanUp(1);
  EXPECT_EQ(counters().noticesRaised, counters().noticesDelivered + counters().noticesDropped);
  EXPECT_EQ(counters().registrationsBegun, counters().registrationsEnded);
}

TEST_F(ModelCounters, RequestsThatStayPending_AreCountedUntilTheyEnd) {
  tPendingNarrowRequest arguments{};
  arguments.handleAddress = 0x100;
  request(kSimulatorInterfaceController, REQUEST_PENDING_NARROW, bytes(arguments), 0, 0x10);
  request(kSimulatorInterfaceController, REQUEST_PENDING_NARROW, bytes(arguments), 0, 0x20);
  EXPECT_EQ(counters().pendingBegun, 2u);
  EXPECT_EQ(counters().pendingEnded, 0u);
  cancel(0x10);
  cleanUp(1);
  EXPECT_EQ(counters().pendingEnded, 2u);
}

TEST_F(ModelCounters, Files_AreCountedUnlessTheyAreForControl) {
  for (const auto kind : {kSimulatorInterfaceController, kSimulatorInterfaceMarten, kRouting,
                          kSimulatorInterfaceControl}) {
    open(5, kind);
    close(5, kind);
  }
  EXPECT_EQ(counters().filesOpened, 3u);
  EXPECT_EQ(counters().filesClosed, 3u);
}

TEST_F(ModelCounters, RequestWithInputOrASmallBuffer_IsRejected) {
  EXPECT_EQ(control(SIMULATOR_READ_COUNTERS, uint32_t{1}).windowsError,
            kWindowsErrorInvalidParameter);
  EXPECT_EQ(control(SIMULATOR_READ_COUNTERS, {}, sizeof(tSimulatorCounters) - 1).windowsError,
            kWindowsErrorInsufficientBuffer);
}

}  // namespace
}  // namespace nTests
