// No exception leaves an export.
#include "routingadaptorinterface/exceptionboundary.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "tests/component/protons/status/descriptiontext.h"
#include "tests/component/routingadaptorinterface/clientrecord.h"

namespace nTests {
namespace {

using zoroco::runSilently;
using zoroco::runWithoutThrowing;

TEST(RoutingBoundary, Success_ReturnsTheResultAndKeepsTheStatus) {
  tClientStatus client;
  EXPECT_EQ(runWithoutThrowing(&client, 7, [](zoerr::Status&) { return 8; }), 8);
  EXPECT_EQ(client.code, 0);
  EXPECT_EQ(client.description, nullptr);
}

TEST(RoutingBoundary, StatusWithAnError_RunsNothing) {
  tClientStatus client;
  client.code = -1;
  bool hasRun = false;
  EXPECT_EQ(runWithoutThrowing(&client, 7,
                               [&](zoerr::Status&) {
                                 hasRun = true;
                                 return 8;
                               }),
            7);
  EXPECT_FALSE(hasRun);
  EXPECT_EQ(client.code, -1);
}

TEST(RoutingBoundary, NoStatus_RunsNothing) {
  bool hasRun = false;
  EXPECT_EQ(runWithoutThrowing(nullptr, 7,
                               [&](zoerr::Status&) {
                                 hasRun = true;
                                 return 8;
                               }),
            7);
  EXPECT_FALSE(hasRun);
}

TEST(RoutingBoundary, Warning_ReachesTheOperationAndIsKept) {
  tClientStatus client;
  client.code = 5;
  EXPECT_EQ(runWithoutThrowing(&client, 7, [](zoerr::Status& own) { return own.code; }), 5);
  EXPECT_EQ(client.code, 5);
}

TEST(RoutingBoundary, ShortMemory_BecomesMemoryFull) {
  tClientStatus client;
  EXPECT_EQ(runWithoutThrowing(&client, 7, [](zoerr::Status&) -> int { throw std::bad_alloc(); }),
            7);
  EXPECT_EQ(client.code, -52000);
  EXPECT_EQ(descriptionOf(recordOf(client)),
            R"({"error_constant":"nZOAPALS100::tStatus::kMemoryFull",)"
            R"("file":"routingadaptorinterface\\routingadaptorexports","line":61,)"
            R"("component":"quenra"})");
}

TEST(RoutingBoundary, ShortMemoryUnderAWarning_ReplacesIt) {
  tClientStatus client;
  client.code = 5;
  runWithoutThrowing(&client, 7, [](zoerr::Status&) -> int { throw std::bad_alloc(); });
  EXPECT_EQ(client.code, -52000);
}

TEST(RoutingBoundary, ExceptionWithAStatus_IsThatStatus) {
  tClientStatus client;
  zoerr::tOwnedStatus raised;
  raised.set(-77, {"file", 5});
  EXPECT_EQ(runWithoutThrowing(&client, 7,
                               [&](zoerr::Status&) -> int { throw zoerr::Exception(raised); }),
            7);
  EXPECT_EQ(client.code, -77);
  EXPECT_EQ(descriptionOf(recordOf(client)), R"({"file":"file","line":5,"component":"quenra"})");
}

TEST(RoutingBoundary, WarningOfTheOperation_ArrivesWithItsDescription) {
  tClientStatus client;
  runWithoutThrowing(&client, 7, [](zoerr::Status& own) {
    own.set(5, {"file", 5});
    return 8;
  });
  EXPECT_EQ(client.code, 5);
  EXPECT_EQ(descriptionOf(recordOf(client)), R"({"file":"file","line":5,"component":"quenra"})");
}

TEST(RoutingBoundary, AnyOtherException_BecomesInternalError) {
  tClientStatus first;
  runWithoutThrowing(&first, 7, [](zoerr::Status&) -> int { throw std::runtime_error("fault"); });
  EXPECT_EQ(first.code, -52008);
  EXPECT_EQ(descriptionOf(recordOf(first)),
            R"({"file":"routingadaptorinterface\\routingadaptorexports","line":74,)"
            R"("component":"quenra"})");
  tClientStatus second;
  runWithoutThrowing(&second, 7, [](zoerr::Status&) -> int { throw 5; });
  EXPECT_EQ(second.code, -52008);
}

TEST(RoutingBoundary, ClientThatThrowsForTheDescriptionOfAWarning_HasNoResult) {
  zoerr_Status client{
      0, 0, [](zoerr_Status*, uint32_t) -> bool { throw std::runtime_error("client"); }, nullptr};
  EXPECT_EQ(runWithoutThrowing(&client, 7,
                               [](zoerr::Status& own) {
                                 own.set(5, {"file", 5});
                                 return 8;
                               }),
            7);
  EXPECT_EQ(client.code, QUENRA_STATUS_INTERNAL_ERROR);
}

TEST(RoutingBoundary, RunSilently_DropsEveryException) {
  EXPECT_EQ(runSilently(7, [] { return 8; }), 8);
  EXPECT_EQ(runSilently(7, []() -> int { throw std::bad_alloc(); }), 7);
  EXPECT_EQ(runSilently(7, []() -> int { throw zoerr::Exception(); }), 7);
  EXPECT_EQ(runSilently(7, []() -> int { throw 5; }), 7);
}

}  // namespace
}  // namespace nTests
