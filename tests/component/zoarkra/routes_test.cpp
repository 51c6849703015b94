// Routes from their calculation to their destruction, and the answers that describe them.
#include <algorithm>
#include <cstring>

#include "tests/component/zoarkra/sessiontest.h"
#include "zoarkra/arkterminaliterator.h"

namespace nTests {
namespace {

// ---- Calculation ----

constexpr const char* kSeeds =
    R"([{"terminal":"TRIG_SMB","cost":1,"constraints":{"inversionNeeded":true}},)"
    R"({"terminal":"PXI_Trig7","cost":2,"constraints":{}}])";
constexpr const char* kDestinations = R"(["PXI_Trig0","PXI_Trig1"])";
constexpr const char* kModifiers =
    R"({"required":{"inversionNeeded":true},)"
    R"("optional":{"inversionNeeded":true,"calculateIgnoresReservations":true}})";
constexpr const char* kCalculation =
    "calculateRoute([2/1/1 11/2/0] -> [4 5], required 1, optional 1, options 1, capacity 4)";

class Calculation : public SessionTest {
 protected:
  uint32_t calculate(const char* seeds = kSeeds, const char* destinations = kDestinations,
                     const char* modifiers = kModifiers) {
    return session_->calculateRoute({seeds, destinations, modifiers}, answer_.output(), status_);
  }
};

TEST_F(Calculation, Request_ReachesTheDriverAsRecords) {
  calculate();
  EXPECT_EQ(calls(), tStrings{kCalculation});
}

TEST_F(Calculation, Routes_AreWrittenInTheirOrder) {
  router().routes = {
      {7, 4, 1, 0, 1, {}}, {4294967295, 5, 4294967295, 1, 0, {}}, {8, 11, 3, 2, 255, {}}};
  router().value = 77;
  EXPECT_EQ(calculate(), 77u);
  EXPECT_EQ(answer_.text(),
            R"([{"ticket":7,"destination":"PXI_Trig0","cost":1,"indexOfStartingSeed":0,)"
            R"("constraints":{"inversionNeeded":true}},)"
            R"({"ticket":4294967295,"destination":"PXI_Trig1","cost":4294967295,)"
            R"("indexOfStartingSeed":1,"constraints":{}},)"
            R"({"ticket":8,"destination":"PXI_Trig7","cost":3,"indexOfStartingSeed":2,)"
            R"("constraints":{"inversionNeeded":true}}])");
  EXPECT_EQ(status_.code, 0);
}

TEST_F(Calculation, NoRoute_IsWrittenAsAnEmptyArray) {
  EXPECT_EQ(calculate(), 0u);
  EXPECT_EQ(answer_.text(), "[]");
}

TEST_F(Calculation, RouteToAnUnknownTerminal_HasAnEmptyName) {
  router().routes = {{7, 99, 1, 0, 0, {}}};
  calculate();
  EXPECT_EQ(answer_.text(),
            R"([{"ticket":7,"destination":"","cost":1,"indexOfStartingSeed":0,"constraints":{}}])");
}

TEST_F(Calculation, MoreRoutesThanTheCapacity_AreCutOff) {
  router().routes.assign(3, {7, 4, 1, 0, 0, {}});
  router().reportedRouteCount = 0xFFFFFFFF;
  calculate(kSeeds, R"(["PXI_Trig0"])", "{}");
  const std::string route =
      R"({"ticket":7,"destination":"PXI_Trig0","cost":1,"indexOfStartingSeed":0,"constraints":{}})";
  EXPECT_EQ(answer_.text(), "[" + route + "," + route + "]");
}

TEST_F(Calculation, EmptyRequest_IsSent) {
  calculate("[]", "[]", "{}");
  EXPECT_EQ(calls(), tStrings{"calculateRoute([] -> [], required 0, optional 0, options 0, "
                              "capacity 0)"});
  EXPECT_EQ(answer_.text(), "[]");
}

TEST_F(Calculation, UnknownTerminals_AreSentAsZero) {
  calculate(R"([{"terminal":"nothing","cost":1,"constraints":{}}])", R"(["nowhere"])", "{}");
  EXPECT_EQ(calls(), tStrings{"calculateRoute([0/1/0] -> [0], required 0, optional 0, options 0, "
                              "capacity 2)"});
}

TEST_F(Calculation, BadRequest_IsNotSent) {
  EXPECT_EQ(failureOf([&] { calculate(kSeeds, "[5]"); }),
            (tFailure{QUENRA_STATUS_INVALID_PARAMETER,
                      R"({"error_constant":"zoapalerr_invalidParameter",)"
                      R"("file":"RoCoUtils","line":142,"component":"quenra",)"
                      R"("zoroco_debug":"Terminals must be strings","json":"[5]"})"}));
  EXPECT_TRUE(calls().empty());
  EXPECT_EQ(answer_.text(), "(none)");
}

TEST_F(Calculation, RefusedByTheDriver_HasNoAnswer) {
  router().codes = {-7};
  router().routes = {{7, 4, 1, 0, 0, {}}};
  EXPECT_EQ(failureOf([&] { calculate(); }), failureOfRouter(-7));
  EXPECT_EQ(answer_.text(), "(none)");
  EXPECT_TRUE(tAnswer::requests().empty());
}

TEST_F(Calculation, WarningOfTheDriver_ComesWithTheAnswer) {
  router().codes = {7};
  router().value = 5;
  EXPECT_EQ(calculate(), 5u);
  EXPECT_EQ(status_.code, 7);
  EXPECT_EQ(answer_.text(), "[]");
}

TEST_F(Calculation, RequestUnderAWarning_SendsTheWarning) {
  status_.code = 5;
  calculate();
  EXPECT_EQ(calls(), tStrings{std::string(kCalculation) + " st=5"});
}

TEST_F(Calculation, ClientWithoutABuffer_FailsAfterTheCalculation) {
  create({&tAnswer::refuse, nullptr, nullptr});
  EXPECT_EQ(failureOf([&] { calculate(); }), kNoBuffer);
  EXPECT_EQ(answer_.text(), "(none)");
  EXPECT_EQ(calls().back(), kCalculation);
}

TEST_F(Calculation, ClientWithoutAReallocationFunction_FailsWithMemoryFull) {
  create({nullptr, nullptr, nullptr});
  EXPECT_EQ(failureOf([&] { calculate(); }), kNoBuffer);
}

TEST_F(Calculation, RequestWithoutAnOutput_IsNotSent) {
  EXPECT_EQ(failureOf([&] {
              session_->calculateRoute({kSeeds, kDestinations, kModifiers}, nullptr, status_);
            }),
            kOutputMissing);
  EXPECT_TRUE(calls().empty());
}

// ---- Answers of any operation ----

TEST_F(Calculation, ReallocationFunction_IsCalledOnceWithTheSizeOfTheAnswer) {
  calculate();
  ASSERT_EQ(tAnswer::requests().size(), 1u);
  EXPECT_EQ(tAnswer::requests()[0].required, 3u);
  EXPECT_EQ(tAnswer::requests()[0].requiredAgain, 3u);
  EXPECT_EQ(tAnswer::requests()[0].text, "[]");
}

TEST_F(Calculation, SecondAnswer_ReplacesTheFirst) {
  calculate();
  router().routes = {{7, 4, 1, 0, 0, {}}};
  calculate();
  EXPECT_EQ(answer_.text().substr(0, 12), R"([{"ticket":7)");
  EXPECT_EQ(tAnswer::requests().size(), 2u);
}

TEST_F(Calculation, ReallocationFunctionThatCopiesTheText_ReceivesItAgain) {
  create({[](char*, size_t required, const char* text, size_t) {
            char* const buffer = new char[required];
            std::memcpy(buffer, text, required);
            return buffer;
          },
          nullptr, nullptr});
  calculate();
  EXPECT_EQ(answer_.text(), "[]");
}

TEST_F(Calculation, HandledConstraints_AreInversionNeededAlone) {
  session_->getHandledConstraints(answer_.output(), status_);
  EXPECT_EQ(answer_.text(), R"(["inversionNeeded"])");
  EXPECT_TRUE(calls().empty());
  EXPECT_EQ(failureOf([&] { session_->getHandledConstraints(nullptr, status_); }), kOutputMissing);
}

class RouteLife : public SessionTest {
 protected:
  // Reserves against conflicts. The driver reports `count` of them, or their true count if 0.
  tFailure reserveAgainst(std::vector<tRouteConflict> conflicts, uint32_t count = 0) {
    router().codes = {QUENRA_STATUS_ROUTE_CONFLICT};
    router().conflicts = std::move(conflicts);
    router().reportedConflictCount = count;
    return failureOf([&] { session_->reserveRoute(7, answer_.output(), status_); });
  }
  void getPath() { session_->getRouteTerminalPath(7, answer_.output(), status_); }
  // The capacity that the next path request offers.
  uint32_t pathCapacity() {
    getPath();
    constexpr std::string_view kCapacity = "capacity ";
    const std::string& call = calls().back();
    const size_t at = call.find(kCapacity) + kCapacity.size();
    const auto capacity = static_cast<uint32_t>(std::stoul(call.substr(at)));
    router().calls.clear();
    return capacity;
  }
};

std::string pathCall(uint32_t capacity) {
  return "getRouteTerminalPath(7, capacity " + std::to_string(capacity) + ")";
}

// ---- Reservation ----

TEST_F(RouteLife, SuccessfulReservation_WritesNoOutput) {
  session_->reserveRoute(7, answer_.output(), status_);
  EXPECT_EQ(calls(), tStrings{"reserveRoute(7, capacity 8)"});
  EXPECT_EQ(answer_.text(), "(none)");
  EXPECT_TRUE(tAnswer::requests().empty());
  EXPECT_EQ(status_.code, 0);
}

TEST_F(RouteLife, Conflicts_AreReportedInTheirOrder) {
  EXPECT_EQ(reserveAgainst({{18446744073709551615u, 4294967295, 0}, {3, 4, 0}}),
            failureOfRouter(QUENRA_STATUS_ROUTE_CONFLICT));
  EXPECT_EQ(answer_.text(), R"([{"sessionId":18446744073709551615,"ticket":4294967295},)"
                            R"({"sessionId":3,"ticket":4}])");
  EXPECT_EQ(calls().size(), 1u);
}

TEST_F(RouteLife, ConflictWithoutRecords_IsReportedAsAnEmptyArray) {
  EXPECT_EQ(reserveAgainst({}), failureOfRouter(QUENRA_STATUS_ROUTE_CONFLICT));
  EXPECT_EQ(answer_.text(), "[]");
}

TEST_F(RouteLife, NineConflicts_EndWithTheZerosOfAnUnfilledRecord) {
  const std::vector<tRouteConflict> conflicts(9, {5, 6, 0});
  EXPECT_EQ(reserveAgainst(conflicts), failureOfRouter(QUENRA_STATUS_ROUTE_CONFLICT));
  std::string expected;
  for (int i = 0; i < 8; ++i) {
    expected += R"({"sessionId":5,"ticket":6},)";
  }
  EXPECT_EQ(answer_.text(), "[" + expected + R"({"sessionId":0,"ticket":0}])");
}

TEST_F(RouteLife, MaximumNumberOfConflicts_AreReported) {
  EXPECT_EQ(reserveAgainst({{5, 6, 0}}, 1024), failureOfRouter(QUENRA_STATUS_ROUTE_CONFLICT));
  const std::string report = answer_.text();
  EXPECT_EQ(std::count(report.begin(), report.end(), '{'), 1024);
}

TEST_F(RouteLife, MoreConflictsThanTheMaximum_FailWithMemoryFull) {
  for (const uint32_t count : {1025u, 1048576u, 4000000000u}) {
    EXPECT_EQ(reserveAgainst({{5, 6, 0}}, count), kCountImplausible) << count;
    EXPECT_EQ(answer_.text(), "(none)");
  }
}

TEST_F(RouteLife, ConflictsWithoutABuffer_FailWithMemoryFull) {
  create({&tAnswer::refuse, nullptr, nullptr});
  EXPECT_EQ(reserveAgainst({{1, 2, 0}}), kNoBuffer);
}

TEST_F(RouteLife, ConflictsWithoutAnOutput_FailWithInvalidParameter) {
  router().codes = {QUENRA_STATUS_ROUTE_CONFLICT};
  EXPECT_EQ(failureOf([&] { session_->reserveRoute(7, nullptr, status_); }), kOutputMissing);
}

TEST_F(RouteLife, SuccessfulReservation_NeedsNoOutput) {
  session_->reserveRoute(7, nullptr, status_);
  EXPECT_EQ(status_.code, 0);
}

TEST_F(RouteLife, ReservationRefusedForAnotherReason_WritesNoOutput) {
  router().codes = {-7};
  router().conflicts = {{1, 2, 0}};
  EXPECT_EQ(failureOf([&] { session_->reserveRoute(7, answer_.output(), status_); }),
            failureOfRouter(-7));
  EXPECT_EQ(answer_.text(), "(none)");
}

TEST_F(RouteLife, ReservationWithAWarning_Succeeds) {
  router().codes = {7};
  session_->reserveRoute(7, answer_.output(), status_);
  EXPECT_EQ(status_.code, 7);
  EXPECT_EQ(answer_.text(), "(none)");
}

TEST_F(RouteLife, ConflictUnderAWarning_IsReported) {
  status_.code = 5;
  EXPECT_EQ(reserveAgainst({}), failureOfRouter(QUENRA_STATUS_ROUTE_CONFLICT));
  EXPECT_EQ(calls(), tStrings{"reserveRoute(7, capacity 8) st=5"});
}

// ---- Programming and teardown ----

TEST_F(RouteLife, Programming_SendsOneRequest) {
  session_->programRoute(7, status_);
  EXPECT_EQ(calls(), tStrings{"programRoute(7)"});
}

TEST_F(RouteLife, ProgrammingThatTheDriverRefuses_FailsWithItsCode) {
  router().codes = {-7};
  EXPECT_EQ(failureOf([&] { session_->programRoute(7, status_); }), failureOfRouter(-7));
}

TEST_F(RouteLife, ProgrammingWithAWarning_Succeeds) {
  router().codes = {7};
  session_->programRoute(7, status_);
  EXPECT_EQ(status_.code, 7);
}

TEST_F(RouteLife, Teardown_SendsOneRequestForEachStep) {
  session_->unprogramRoute(7, 1, 2);
  session_->unreserveRoute(8, 3, 4);
  session_->destroyRoute(9, 5, 6);
  EXPECT_EQ(calls(), (tStrings{"unprogramRoute(7)", "unreserveRoute(8)", "destroyRoute(9)"}));
}

TEST_F(RouteLife, TeardownThatTheDriverRefuses_FailsWithItsCode) {
  router().codes = {-1, -2, -3};
  EXPECT_EQ(failureOf([&] { session_->unprogramRoute(7, 0, 0); }), failureOfRouter(-1));
  EXPECT_EQ(failureOf([&] { session_->unreserveRoute(7, 0, 0); }), failureOfRouter(-2));
  EXPECT_EQ(failureOf([&] { session_->destroyRoute(7, 0, 0); }), failureOfRouter(-3));
}

TEST_F(RouteLife, TeardownWithWarnings_Succeeds) {
  router().codes = {1, 2, 3};
  session_->unprogramRoute(7, 0, 0);
  session_->unreserveRoute(7, 0, 0);
  session_->destroyRoute(7, 0, 0);
  EXPECT_EQ(calls().size(), 3u);
}

TEST_F(RouteLife, ExceptionalDestruction_SendsNoRequest) {
  session_->beginExceptionalRouteDestruction(7, 0, 0);
  EXPECT_TRUE(calls().empty());
}

TEST_F(RouteLife, StepsInAnyOrder_AreSent) {
  session_->destroyRoute(7, 0, 0);
  session_->programRoute(7, status_);
  session_->reserveRoute(7, answer_.output(), status_);
  EXPECT_EQ(calls(),
            (tStrings{"destroyRoute(7)", "programRoute(7)", "reserveRoute(7, capacity 8)"}));
}

// ---- Paths ----

TEST_F(RouteLife, Path_IsWrittenAsNamesInItsOrder) {
  router().path = {2, 4, 11, 4};
  getPath();
  EXPECT_EQ(answer_.text(), R"(["TRIG_SMB","PXI_Trig0","PXI_Trig7","PXI_Trig0"])");
}

TEST_F(RouteLife, EmptyPath_IsAnEmptyArray) {
  getPath();
  EXPECT_EQ(answer_.text(), "[]");
}

TEST_F(RouteLife, UnknownTerminalsOfAPath_AreEmptyNames) {
  router().path = {0, 4, 99};
  getPath();
  EXPECT_EQ(answer_.text(), R"(["","PXI_Trig0",""])");
}

TEST_F(RouteLife, LongPath_IsRequestedTwiceAndItsLengthRemembered) {
  const uint32_t capacity = pathCapacity();
  router().path.assign(capacity + 8, 4);
  getPath();
  EXPECT_EQ(calls(), (tStrings{pathCall(capacity), pathCall(capacity + 8)}));
  EXPECT_EQ(answer_.text().size(), (capacity + 8) * std::string_view(R"("PXI_Trig0",)").size() + 1);
  router().calls.clear();
  create({&tAnswer::supplyBuffer, nullptr, nullptr});
  getPath();
  EXPECT_EQ(calls().back(), pathCall(capacity + 8));
}

TEST_F(RouteLife, PathThatGrowsBetweenTheRequests_IsNotRequestedAThirdTime) {
  const uint32_t capacity = pathCapacity();
  router().codes = {QUENRA_STATUS_PATH_TOO_LONG, QUENRA_STATUS_PATH_TOO_LONG};
  router().reportedPathLength = capacity + 1;
  EXPECT_EQ(failureOf([&] { getPath(); }), failureOfRouter(QUENRA_STATUS_PATH_TOO_LONG));
  EXPECT_EQ(calls(), (tStrings{pathCall(capacity), pathCall(capacity + 1)}));
  EXPECT_EQ(answer_.text(), "[]") << "the answer of pathCapacity()";
}

TEST_F(RouteLife, PathRefusedAtTheSecondRequest_FailsWithThatCode) {
  router().codes = {QUENRA_STATUS_PATH_TOO_LONG, -7};
  EXPECT_EQ(failureOf([&] { getPath(); }), failureOfRouter(-7));
}

TEST_F(RouteLife, PathThatTheDriverRefuses_IsRequestedOnce) {
  router().codes = {-7};
  EXPECT_EQ(failureOf([&] { getPath(); }), failureOfRouter(-7));
  EXPECT_EQ(calls().size(), 1u);
  EXPECT_EQ(answer_.text(), "(none)");
}

TEST_F(RouteLife, PathReportedLongerThanItsBuffer_IsCutOff) {
  const uint32_t capacity = pathCapacity();
  router().reportedPathLength = 0xFFFFFFFF;
  router().path = {4};
  getPath();
  std::string expected = R"(["PXI_Trig0")";
  for (uint32_t i = 1; i < capacity; ++i) {
    expected += R"(,"")";
  }
  EXPECT_EQ(answer_.text(), expected + "]");
}

TEST_F(RouteLife, PathLongerThanTheMaximum_FailsWithMemoryFullAndIsNotRemembered) {
  const uint32_t capacity = pathCapacity();
  for (const uint32_t count : {1025u, 1048576u, 4000000000u}) {
    router().codes = {QUENRA_STATUS_PATH_TOO_LONG};
    router().reportedPathLength = count;
    router().calls.clear();
    EXPECT_EQ(failureOf([&] { getPath(); }), kCountImplausible) << count;
    EXPECT_EQ(calls(), tStrings{pathCall(capacity)});
  }
  router().reportedPathLength = 0;
  EXPECT_EQ(pathCapacity(), capacity);
}

TEST_F(RouteLife, PathUnderAWarning_SendsTheWarningTwice) {
  const uint32_t capacity = pathCapacity();
  router().path.assign(capacity + 1, 4);
  status_.code = 5;
  getPath();
  EXPECT_EQ(calls(), (tStrings{pathCall(capacity) + " st=5", pathCall(capacity + 1) + " st=5"}));
}

TEST_F(RouteLife, PathWithAWarning_IsWritten) {
  router().codes = {7};
  router().path = {4};
  getPath();
  EXPECT_EQ(status_.code, 7);
  EXPECT_EQ(answer_.text(), R"(["PXI_Trig0"])");
}

TEST_F(RouteLife, PathWithoutAnOutput_IsNotRequested) {
  EXPECT_EQ(failureOf([&] { session_->getRouteTerminalPath(7, nullptr, status_); }),
            kOutputMissing);
  EXPECT_TRUE(calls().empty());
}

// ---- Terminals of a session ----

TEST_F(RouteLife, TerminalsOfTheSession_Are11OnItsInterface) {
  const auto iterator = session_->getAllTerminals(status_, 99);
  iterator->resetTerminal("floating", status_);
  EXPECT_EQ(calls(), tStrings{"resetTerminal(1, 1)"});
  int count = 0;
  for (; !iterator->isEnd(); iterator->next(status_)) {
    ++count;
  }
  EXPECT_EQ(count, 11);
}

TEST_F(RouteLife, CalculatedReset_SendsTerminalAndMode) {
  const auto iterator = session_->getAllTerminals(status_, 0);
  iterator->next(status_);
  router().value = 4294967295;
  EXPECT_EQ(session_->calculateResetTerminal(*iterator, "default", status_), 4294967295u);
  EXPECT_EQ(session_->calculateResetTerminal(*iterator, "floating", status_), 4294967295u);
  EXPECT_EQ(calls(),
            (tStrings{"calculateResetTerminal(0, 2, 0)", "calculateResetTerminal(0, 2, 1)"}));
}

TEST_F(RouteLife, FailedCalculatedReset_HasTheCodeOfAReset) {
  const auto iterator = session_->getAllTerminals(status_, 0);
  const auto calculate = [&](const char* mode) {
    return failureOf([&] { session_->calculateResetTerminal(*iterator, mode, status_); });
  };
  EXPECT_EQ(calculate("Default").code, QUENRA_STATUS_BAD_SELECTOR);
  EXPECT_EQ(calculate(nullptr).code, QUENRA_STATUS_BAD_SELECTOR);
  EXPECT_TRUE(calls().empty());
  router().codes = {-7};
  EXPECT_EQ(calculate("default"), failureOfRouter(-7));
  while (!iterator->isEnd()) {
    iterator->next(status_);
  }
  EXPECT_EQ(calculate("default").code, QUENRA_STATUS_INVALID_PARAMETER);
  EXPECT_EQ(calls().size(), 1u);
}

TEST_F(RouteLife, CalculatedResetWithAWarning_ReturnsItsValue) {
  const auto iterator = session_->getAllTerminals(status_, 0);
  router().codes = {7};
  router().value = 5;
  EXPECT_EQ(session_->calculateResetTerminal(*iterator, "default", status_), 5u);
  EXPECT_EQ(status_.code, 7);
}

}  // namespace
}  // namespace nTests
