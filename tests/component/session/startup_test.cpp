// The library when its lock could not be created while it was loaded. A separate program, because a
// process loads the library once.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "quenra.h"
#include "quenra_routing.h"
#include "tests/fakewindows/fakewindowstest.h"

namespace nTests {
namespace {

using nFakeWindows::faultPlan;
using nFakeWindows::tCall;

// Runs before the library's own initialisation, whose priority is the default one.
[[gnu::constructor(101)]] void refuseTheFirstLock() {
  faultPlan().failCall(tCall::initializeCriticalSectionEx, 1, 8 /* ERROR_NOT_ENOUGH_MEMORY */);
}

TEST(FailedStart, IsWhatOpeningReports) {
  uint64_t handle = 17;
  EXPECT_EQ(QUENRA_openController(&handle), QUENRA_STATUS_MEMORY_FULL);
  EXPECT_EQ(handle, 17u);
  EXPECT_EQ(QUENRA_openController(nullptr), QUENRA_STATUS_INVALID_PARAMETER);
}

TEST(FailedStart, IsWhatReadsReportForTheRightHandle) {
  uint32_t value = 17;
  EXPECT_EQ(QUENRA_getAttributeU32(QUENRA_HANDLE, QUENRA_ATTRIBUTE_PLATFORM_CODE, &value),
            QUENRA_STATUS_MEMORY_FULL);
  EXPECT_EQ(value, 17u);
  EXPECT_EQ(QUENRA_getAttributeU32(1, QUENRA_ATTRIBUTE_PLATFORM_CODE, &value),
            QUENRA_STATUS_INVALID_HANDLE);
  int32_t number = 0;
  EXPECT_EQ(QUENRA_getAttributeI32(QUENRA_HANDLE, 0, &number), QUENRA_STATUS_MEMORY_FULL);
  double floating = 0;
  EXPECT_EQ(QUENRA_getAttributeDBL(QUENRA_HANDLE, 0, &floating), QUENRA_STATUS_MEMORY_FULL);
  uint64_t size = 0;
  EXPECT_EQ(QUENRA_getAttributeUTF8(QUENRA_HANDLE, QUENRA_ATTRIBUTE_PRODUCT_NAME, nullptr, &size),
            QUENRA_STATUS_MEMORY_FULL);
  EXPECT_EQ(QUENRA_performSelfTest(QUENRA_HANDLE), QUENRA_STATUS_MEMORY_FULL);
  EXPECT_EQ(QUENRA_setAttributeU32(QUENRA_HANDLE, QUENRA_ATTRIBUTE_PLATFORM_CODE, 1),
            QUENRA_STATUS_MEMORY_FULL);
}

TEST(FailedStart, IsNoControllerForWritingAText) {
  EXPECT_EQ(QUENRA_setAttributeUTF8(QUENRA_HANDLE, QUENRA_ATTRIBUTE_PRODUCT_NAME, "abc"),
            QUENRA_STATUS_NO_CONTROLLER);
  EXPECT_EQ(QUENRA_setAttributeUTF8(1, QUENRA_ATTRIBUTE_PRODUCT_NAME, "abc"),
            QUENRA_STATUS_INVALID_HANDLE);
}

// ---- Routing ----

// No session can be created, so that the handle is invalid too: the start-up failure comes first.
zoroco_RoutingAdaptorSession* const kSession = nullptr;
zoroco_TerminalIterator* const kIterator = nullptr;

// Runs an export and expects it to report the start-up failure and a neutral result.
template <class Export>
void expectStartUpFailure(Export run) {
  zoerr_Status status = zoerr_Status_initial();
  EXPECT_FALSE(run(&status));
  EXPECT_EQ(status.code, QUENRA_STATUS_MEMORY_FULL);
  ASSERT_NE(status.description, nullptr);
  EXPECT_THAT(status.description, testing::HasSubstr("tcriticalsection"));
  zoerr_Status_release(&status);
}

TEST(FailedStart, RoutingExportWithAStatus_ReportsTheStartUpFailure) {
  char* output = nullptr;
  expectStartUpFailure([](zoerr_Status* status) {
    return zoroco_ra_quenra_createSession("device", nullptr, status) != nullptr;
  });
  expectStartUpFailure([](zoerr_Status* status) {
    return zoroco_ra_quenra_createSessionWithDemotionFunc("device", nullptr, nullptr, nullptr,
                                                          status) != nullptr;
  });
  expectStartUpFailure([&](zoerr_Status* status) {
    zoroco_ra_quenra_getHandledConstraints(kSession, &output, status);
    return output != nullptr;
  });
  expectStartUpFailure([&](zoerr_Status* status) {
    return zoroco_ra_quenra_calculateRoute(kSession, "[]", "[]", "{}", &output, status) != 0;
  });
  expectStartUpFailure([&](zoerr_Status* status) {
    zoroco_ra_quenra_reserveRoute(kSession, 1, &output, status);
    return output != nullptr;
  });
  expectStartUpFailure([](zoerr_Status* status) {
    zoroco_ra_quenra_programRoute(kSession, 1, status);
    return false;
  });
  expectStartUpFailure([&](zoerr_Status* status) {
    zoroco_ra_quenra_getRouteTerminalPath(kSession, 1, &output, status);
    return output != nullptr;
  });
  expectStartUpFailure([](zoerr_Status* status) {
    return zoroco_ra_quenra_getAllTerminals(kSession, status, 0) != nullptr;
  });
}

TEST(FailedStart, IteratorExportWithAStatus_ReportsTheStartUpFailure) {
  expectStartUpFailure([](zoerr_Status* status) {
    zoroco_ra_quenra_TerminalIterator_next(kIterator, status);
    return false;
  });
  expectStartUpFailure([](zoerr_Status* status) {
    return zoroco_ra_quenra_TerminalIterator_getStringAttribute(kIterator, "name", status) !=
           nullptr;
  });
  expectStartUpFailure([](zoerr_Status* status) {
    return zoroco_ra_quenra_TerminalIterator_getBoolAttribute(kIterator, "isOwned", status);
  });
  expectStartUpFailure([](zoerr_Status* status) {
    return zoroco_ra_quenra_TerminalIterator_getU32Attribute(kIterator, "id", status) != 0;
  });
  expectStartUpFailure([](zoerr_Status* status) {
    zoroco_ra_quenra_TerminalIterator_resetTerminal(kIterator, "default", status);
    return false;
  });
  expectStartUpFailure([](zoerr_Status* status) {
    return zoroco_ra_quenra_TerminalIterator_calculateResetTerminal(kSession, kIterator, "default",
                                                                    status) != 0;
  });
}

TEST(FailedStart, RoutingStatusInError_IsKept) {
  zoerr_Status status = zoerr_Status_initial();
  status.code = QUENRA_STATUS_BUSY;
  zoroco_ra_quenra_programRoute(kSession, 1, &status);
  EXPECT_EQ(status.code, QUENRA_STATUS_BUSY);
}

TEST(FailedStart, RoutingExportWithoutAStatus_IgnoresIt) {
  EXPECT_EQ(zoroco_ra_quenra_getAPIVersion(), 3u);
  EXPECT_TRUE(zoroco_ra_quenra_TerminalIterator_isEnd(kIterator));
  zoroco_ra_quenra_unprogramRoute(kSession, 1, 0, 0);
  zoroco_ra_quenra_unreserveRoute(kSession, 1, 0, 0);
  zoroco_ra_quenra_beginExceptionalRouteDestruction(kSession, 1, 0, 0);
  zoroco_ra_quenra_destroyRoute(kSession, 1, 0, 0);
  zoroco_ra_quenra_TerminalIterator_destroy(kIterator);
  zoroco_ra_quenra_destroySession(kSession);
}

// ---- Exports that need no session ----

TEST(FailedStart, LeavesTheDevicePathReadable) {
  char path[256];
  uint64_t size = sizeof path;
  EXPECT_EQ(QUENRA_getAttributeUTF8(0, QUENRA_ATTRIBUTE_DEVICE_PATH, path, &size), 0);
}

TEST(FailedStart, LetsClosingDoNothing) {
  // The fake Windows would stop at a lock that was never created.
  QUENRA_closeController(QUENRA_HANDLE);
  EXPECT_EQ(nFakeWindows::criticalSections(), 0);
}

}  // namespace
}  // namespace nTests
