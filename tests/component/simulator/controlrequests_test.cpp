#include <map>
#include <string>
#include <vector>

#include "protocol/controllerrequests.h"
#include "protocol/pendingrequests.h"
#include "protocol/routingrequests.h"
#include "tests/builders/repositoryfile.h"
#include "tests/component/simulator/modeltest.h"

namespace nTests {
namespace {

class ModelControl : public ModelTest {};

TEST_F(ModelControl, Start_ReportsThePresenceToTheHost) {
  ASSERT_EQ(presences.size(), 1u);
  EXPECT_EQ(presences[0].controllers, 1u);
  EXPECT_EQ(presences[0].martens, 1u);
  EXPECT_EQ(presences[0].devicePaths, 1u);
}

TEST_F(ModelControl, PresenceThatChanges_IsReportedToTheHostOnce) {
  const tSimulatorPresence requested = {2, 0, 1};
  ASSERT_EQ(control(SIMULATOR_SET_PRESENCE, requested).windowsError, kWindowsErrorNone);
  ASSERT_EQ(control(SIMULATOR_SET_PRESENCE, requested).windowsError, kWindowsErrorNone);
  EXPECT_EQ(presences.size(), 2u);
  const auto reported = recordOf<tSimulatorPresence>(control(SIMULATOR_GET_PRESENCE, {}, 12));
  EXPECT_EQ(reported.controllers, 2u);
  EXPECT_EQ(reported.martens, 0u);
}

TEST_F(ModelControl, PresenceOutOfRange_IsRejected) {
  for (const tSimulatorPresence& requested :
       {tSimulatorPresence{3, 0, 0}, tSimulatorPresence{0, 3, 0}, tSimulatorPresence{0, 0, 2}}) {
    EXPECT_EQ(control(SIMULATOR_SET_PRESENCE, requested).windowsError,
              kWindowsErrorInvalidParameter);
  }
  EXPECT_EQ(presences.size(), 1u);
}

TEST_F(ModelControl, TableAndText_AreAcceptedUpToTheirCapacity) {
  const std::vector<uint8_t> largest(SIMULATOR_TABLE_CAPACITY, 7);
  EXPECT_EQ(control(SIMULATOR_SET_TABLE, largest).windowsError, kWindowsErrorNone);
  EXPECT_EQ(control(SIMULATOR_GET_TABLE, {}, SIMULATOR_TABLE_CAPACITY).bytes, largest);
  EXPECT_EQ(control(SIMULATOR_GET_TABLE, {}, SIMULATOR_TABLE_CAPACITY - 1).windowsError,
            kWindowsErrorInsufficientBuffer);
  const std::vector<uint8_t> tooLarge(SIMULATOR_TABLE_CAPACITY + 1, 7);
  EXPECT_EQ(control(SIMULATOR_SET_TABLE, tooLarge).windowsError, kWindowsErrorInvalidParameter);
  EXPECT_EQ(control(SIMULATOR_SET_VERSION_TEXT, std::vector<uint8_t>(SIMULATOR_TEXT_CAPACITY))
                .windowsError,
            kWindowsErrorNone);
  EXPECT_EQ(control(SIMULATOR_SET_VERSION_TEXT, std::vector<uint8_t>(SIMULATOR_TEXT_CAPACITY + 1))
                .windowsError,
            kWindowsErrorInvalidParameter);
  EXPECT_EQ(control(SIMULATOR_SET_TABLE).windowsError, kWindowsErrorNone) << "a table may be empty";
}

TEST_F(ModelControl, AttributesOfAnotherInterfaceOrTooLarge_AreRejected) {
  tSimulatorAttribute attribute{};
  attribute.interfaceKind = kSimulatorInterfaceDevicePath;
  EXPECT_EQ(control(SIMULATOR_SET_ATTRIBUTE, attribute).windowsError,
            kWindowsErrorInvalidParameter);
  EXPECT_EQ(control(SIMULATOR_REMOVE_ATTRIBUTE, attribute).windowsError,
            kWindowsErrorInvalidParameter);
  attribute.interfaceKind = kSimulatorInterfaceMarten;
  attribute.size = SIMULATOR_VALUE_CAPACITY + 1;
  EXPECT_EQ(control(SIMULATOR_SET_ATTRIBUTE, attribute).windowsError,
            kWindowsErrorInvalidParameter);
}

TEST_F(ModelControl, AttributesBeyondTheCapacity_AreRejected) {
  tSimulatorAttribute attribute{};
  attribute.interfaceKind = kSimulatorInterfaceMarten;
  uint32_t error = 0;
  for (uint32_t i = 0; i <= SIMULATOR_ATTRIBUTE_CAPACITY && error == 0; ++i) {
    attribute.attribute = 0x70000000 + i;
    error = control(SIMULATOR_SET_ATTRIBUTE, attribute).windowsError;
  }
  EXPECT_EQ(error, kWindowsErrorNoSystemResources);
  attribute.attribute = 0x70000000;
  EXPECT_EQ(control(SIMULATOR_SET_ATTRIBUTE, attribute).windowsError, kWindowsErrorNone)
      << "an existing one can still be changed";
}

TEST_F(ModelControl, InputOfAWrongSize_IsRejected) {
  const std::vector<uint8_t> oneByte(1);
  for (const uint32_t code :
       {SIMULATOR_RESET,         SIMULATOR_SET_PRESENCE,     SIMULATOR_GET_PRESENCE,
        SIMULATOR_GET_TABLE,     SIMULATOR_SET_ATTRIBUTE,    SIMULATOR_REMOVE_ATTRIBUTE,
        SIMULATOR_ADD_SCRIPT,    SIMULATOR_CLEAR_SCRIPTS,    SIMULATOR_READ_LOG,
        SIMULATOR_CLEAR_LOG,     SIMULATOR_ALLOW_WRITES,     SIMULATOR_REFUSE_WRITES,
        SIMULATOR_READ_COUNTERS, SIMULATOR_SET_ACCEPTANCE,   SIMULATOR_ACCEPT_PENDING,
        SIMULATOR_READ_PENDING,  SIMULATOR_COMPLETE_PENDING, SIMULATOR_NOTIFY,
        SIMULATOR_DEMOTE_ROUTE,  SIMULATOR_READ_ROUTES,      SIMULATOR_SET_PATH_LENGTH,
        SIMULATOR_READ_FIRMWARE, SIMULATOR_CLEAR_FIRMWARE}) {
    EXPECT_EQ(control(code, oneByte, 1).windowsError, kWindowsErrorInvalidParameter)
        << std::hex << code;
  }
  EXPECT_EQ(control(SIMULATOR_CONTROL_CODE(0x9FF)).windowsError, kWindowsErrorInvalidFunction);
}

TEST_F(ModelControl, Reset_RestoresTheDefaultMachine) {
  const tAnswer before = control(SIMULATOR_GET_TABLE, {}, SIMULATOR_TABLE_CAPACITY);
  control(SIMULATOR_SET_TABLE);
  control(SIMULATOR_SET_PRESENCE, tSimulatorPresence{0, 0, 0});
  tSimulatorScript script{};
  script.interfaceKind = kSimulatorInterfaceController;
  script.action = kSimulatorActionAnswerCode;
  control(SIMULATOR_ADD_SCRIPT, script);
  request(kSimulatorInterfaceController, 1, {}, 0);
  ASSERT_EQ(control(SIMULATOR_RESET).windowsError, kWindowsErrorNone);
  EXPECT_EQ(control(SIMULATOR_GET_TABLE, {}, SIMULATOR_TABLE_CAPACITY).bytes, before.bytes);
  EXPECT_EQ(recordOf<tSimulatorPresence>(control(SIMULATOR_GET_PRESENCE, {}, 12)).controllers, 1u);
  EXPECT_TRUE(log().empty());
  EXPECT_EQ(request(kSimulatorInterfaceController, 1, {}, 0).windowsError,
            kWindowsErrorInvalidFunction)
      << "not scripted";
  EXPECT_EQ(presences.size(), 3u);
}

// ---- The log ----

TEST_F(ModelControl, Log_StoresRequestAndReply) {
  tGetAttributeRequest sent{};
  sent.attribute = 0x12345678;
  request(kSimulatorInterfaceMarten, REQUEST_GET_ATTRIBUTE, sent, 8);
  const auto entries = log();
  ASSERT_EQ(entries.size(), 1u);
  EXPECT_EQ(entries[0].sequence, 1u);
  EXPECT_EQ(entries[0].process, kProcess);
  EXPECT_EQ(entries[0].event, uint32_t{kSimulatorEventRequest});
  EXPECT_EQ(entries[0].interfaceKind, uint32_t{kSimulatorInterfaceMarten});
  EXPECT_EQ(entries[0].requestCode, REQUEST_GET_ATTRIBUTE);
  EXPECT_EQ(entries[0].inputSize, 24u);
  EXPECT_EQ(std::memcmp(entries[0].input, &sent, sizeof sent), 0)
      << "the request, although the reply has overwritten it";
  EXPECT_EQ(entries[0].outputSize, 8u);
  int32_t status = 0;
  std::memcpy(&status, entries[0].output + 4, sizeof status);
  EXPECT_EQ(status, SIMULATOR_STATUS_NOT_SUPPORTED);
}

TEST_F(ModelControl, Log_KeepsTheLatestEntries) {
  for (unsigned i = 0; i < SIMULATOR_LOG_CAPACITY + 10; ++i) {
    request(kSimulatorInterfaceMarten, i + 1, {}, 0);
  }
  const auto entries = log();
  ASSERT_EQ(entries.size(), size_t{SIMULATOR_LOG_CAPACITY});
  EXPECT_EQ(entries.front().sequence, 11u);
  EXPECT_EQ(entries.front().requestCode, 11u);
  EXPECT_EQ(entries.back().sequence, SIMULATOR_LOG_CAPACITY + 10u);
  EXPECT_EQ(log(SIMULATOR_LOG_CAPACITY + 10).size(), 1u);
  EXPECT_TRUE(log(SIMULATOR_LOG_CAPACITY + 11).empty());
}

TEST_F(ModelControl, Log_ReturnsTheEntriesThatFitTheBuffer) {
  for (unsigned i = 0; i < 3; ++i) {
    request(kSimulatorInterfaceMarten, 1, {}, 0);
  }
  const uint64_t from = 1;
  const auto entry = static_cast<uint32_t>(sizeof(tSimulatorLogEntry));
  EXPECT_EQ(
      request(kSimulatorInterfaceControl, SIMULATOR_READ_LOG, from, 2 * entry + 1).bytes.size(),
      2 * entry);
  EXPECT_EQ(request(kSimulatorInterfaceControl, SIMULATOR_READ_LOG, from, entry - 1).windowsError,
            kWindowsErrorInsufficientBuffer);
}

TEST_F(ModelControl, ClearedLog_NumbersFromOneAgain) {
  request(kSimulatorInterfaceMarten, 1, {}, 0);
  control(SIMULATOR_CLEAR_LOG);
  EXPECT_TRUE(log().empty());
  request(kSimulatorInterfaceMarten, 1, {}, 0);
  EXPECT_EQ(log().at(0).sequence, 1u);
}

// ---- The document ----

TEST(SimulatorLimits, Document_ListsTheCapacities) {
  std::map<std::string, std::string> documented;
  for (const std::vector<std::string>& row : tableUnder("docs/simulator.md", "## Limits")) {
    documented[row[0]] = row[1];
  }
  const std::map<std::string, std::string> capacities = {
      {"routing sessions, as registered notifications",
       std::to_string(SIMULATOR_NOTIFICATION_CAPACITY)},
      {"routes", std::to_string(SIMULATOR_ROUTE_CAPACITY)},
      {"pending requests", std::to_string(SIMULATOR_PENDING_CAPACITY)},
      {"attributes of both interfaces", std::to_string(SIMULATOR_ATTRIBUTE_CAPACITY)},
      {"scripted answers", std::to_string(SIMULATOR_SCRIPT_CAPACITY)},
      {"requests of the log", std::to_string(SIMULATOR_LOG_CAPACITY)},
      {"received firmware payloads", std::to_string(SIMULATOR_PAYLOAD_CAPACITY)}};
  EXPECT_EQ(documented, capacities);
}

constexpr uint32_t kNoTerminal = 99;

// The counters of created and released objects, for each way in which an object is released.
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
