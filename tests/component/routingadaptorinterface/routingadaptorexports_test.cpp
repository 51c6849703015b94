// The routing exports as a client calls them.
#include <gtest/gtest.h>

#include <initializer_list>
#include <new>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include "routingadaptorinterface/handles.h"
#include "tests/component/protons/status/descriptiontext.h"
#include "tests/component/routingadaptorinterface/routingclient.h"
#include "tests/component/routingadaptorinterface/routingheader.h"
#include "tests/component/zoarkra/sessiontest.h"

#ifndef _WIN32
#include "tests/fakewindows/threads.h"
#endif

namespace nTests {
namespace {

using tStrings = std::vector<std::string>;

constexpr const char* kSeeds = R"([{"terminal":"TRIG_SMB","cost":1,"constraints":{}}])";
constexpr const char* kDestinations = R"(["PXI_Trig0"])";
constexpr const char* kCalculation =
    "calculateRoute([2/1/0] -> [4], required 0, optional 0, options 0, capacity 2)";
constexpr const char* kNoHandle =
    R"({"error_constant":"zoapalerr_invalidParameter",)"
    R"("file":"routingadaptorinterface\\routingadaptorexports","line":48,"component":"quenra"})";

class RoutingExports : public testing::Test {
 protected:
  RoutingExports() {
    useDevice(script_);
    session_ = zoroco_ra_quenra_createSession("device", &tAnswer::supplyBuffer, &status_);
    script_.router.calls.clear();
  }
  ~RoutingExports() override {
    zoroco_ra_quenra_TerminalIterator_destroy(iterator_);
    zoroco_ra_quenra_destroySession(session_);
  }

  zoroco_TerminalIterator* iterator() {
    if (iterator_ == nullptr) {
      iterator_ = zoroco_ra_quenra_getAllTerminals(session_, &status_, 0);
    }
    return iterator_;
  }
  [[nodiscard]] const tStrings& calls() const { return script_.router.calls; }
  [[nodiscard]] std::string description() const { return descriptionOf(recordOf(status_)); }

  tRoutingDeviceScript script_;
  tClientStatus status_;
  tAnswer answer_;
  zoroco_RoutingAdaptorSession* session_ = nullptr;
  zoroco_TerminalIterator* iterator_ = nullptr;
};

TEST_F(RoutingExports, ExportsOfAProgramInC_AreComplete) {
  std::set<std::string> names;
  for (const tExport& entry : kExportsOfC) {
    EXPECT_NE(entry.function, nullptr) << entry.name;
    names.insert(entry.name);
  }
  EXPECT_EQ(names.size(), 22u);
}

TEST_F(RoutingExports, Version_IsThree) {
  EXPECT_EQ(zoroco_ra_quenra_getAPIVersion(), 3u);
}

// ---- Sessions ----

TEST_F(RoutingExports, Session_IsOpenUntilItIsDestroyed) {
  ASSERT_NE(session_, nullptr);
  EXPECT_EQ(script_.events, (tStrings{"open device", "start"}));
  zoroco_ra_quenra_destroySession(session_);
  session_ = nullptr;
  EXPECT_EQ(script_.events, (tStrings{"open device", "start", "stop", "closed"}));
}

TEST_F(RoutingExports, SessionWithoutACallback_DropsDemotions) {
  ASSERT_NE(script_.listener, nullptr);
  script_.listener->routeDemoted(&script_);
  EXPECT_EQ(status_.code, 0);
}

TEST_F(RoutingExports, SessionWithACallback_CallsItOnADemotion) {
  static std::vector<std::string> received;
  received.clear();
  int context = 0;
  auto* const session = zoroco_ra_quenra_createSessionWithDemotionFunc(
      "device", &tAnswer::supplyBuffer,
      [](void* itsContext, int32_t reason, zoerr_Status* status, void* notification) {
        EXPECT_EQ(itsContext, notification);
        received.push_back(std::to_string(reason) + " " + std::to_string(status->code));
      },
      &context, &status_);
  script_.listener->routeDemoted(&context);
  EXPECT_EQ(received, tStrings{"101 0"});
  zoroco_ra_quenra_destroySession(session);
}

TEST_F(RoutingExports, SessionThatCannotBeCreated_IsNullWithAStatus) {
  script_.openCode = QUENRA_STATUS_NOT_FOUND;
  EXPECT_EQ(zoroco_ra_quenra_createSession("device", &tAnswer::supplyBuffer, &status_), nullptr);
  EXPECT_EQ(status_.code, QUENRA_STATUS_NOT_FOUND);
  EXPECT_EQ(description(), R"({"file":"device","line":1,"component":"driver"})");
}

TEST_F(RoutingExports, SessionOfAnUnknownTopography_IsNullWithAStatus) {
  script_.router.topographyName = "other";
  EXPECT_EQ(zoroco_ra_quenra_createSession("device", &tAnswer::supplyBuffer, &status_), nullptr);
  EXPECT_EQ(status_.code, QUENRA_STATUS_BAD_SELECTOR);
  EXPECT_EQ(description(),
            R"({"error_constant":"zopalerr_badSelector",)"
            R"("file":"zoarkra\\topographyinforegistration","line":52,"component":"quenra",)"
            R"("zoark_debug":"Topography not found: other"})");
}

TEST_F(RoutingExports, NullHandle_CanBeDestroyed) {
  script_.events.clear();
  zoroco_ra_quenra_destroySession(nullptr);
  zoroco_ra_quenra_TerminalIterator_destroy(nullptr);
  EXPECT_TRUE(script_.events.empty());
}

TEST_F(RoutingExports, SessionWithAWarningThatCannotBeDescribed_IsDestroyed) {
  zoroco_ra_quenra_destroySession(session_);
  session_ = nullptr;
  script_.events.clear();
  script_.openCode = 5;
  zoerr_Status status{0, 0, [](zoerr_Status*, uint32_t) -> bool { throw 5; }, nullptr};
  EXPECT_EQ(zoroco_ra_quenra_createSession("device", &tAnswer::supplyBuffer, &status), nullptr);
  EXPECT_EQ(status.code, QUENRA_STATUS_INTERNAL_ERROR);
  EXPECT_EQ(script_.events, (tStrings{"open device", "start", "stop", "closed"}));
}

// ---- Client functions that fail ----

// Every answer of a session with this reallocation function fails; the client's pointer and its
// buffer stay as they were.
void expectNoAnswer(zoroco_Reallocate reallocate, tRoutingDeviceScript& script, int32_t code,
                    const char* description) {
  tClientStatus ignored;
  auto* const session = zoroco_ra_quenra_createSession("device", reallocate, &ignored);
  char buffer[] = "earlier answer";
  const auto expectFailure = [&](auto call) {
    tClientStatus status;
    char* output = buffer;
    call(&output, &status);
    EXPECT_EQ(status.code, code);
    EXPECT_EQ(descriptionOf(recordOf(status)), description);
    EXPECT_EQ(output, buffer);
    EXPECT_STREQ(buffer, "earlier answer");
  };
  expectFailure([&](char** output, zoerr_Status* status) {
    zoroco_ra_quenra_getHandledConstraints(session, output, status);
  });
  expectFailure([&](char** output, zoerr_Status* status) {
    EXPECT_EQ(zoroco_ra_quenra_calculateRoute(session, kSeeds, kDestinations, "{}", output, status),
              0u);
  });
  expectFailure([&](char** output, zoerr_Status* status) {
    script.router.codes = {QUENRA_STATUS_ROUTE_CONFLICT};
    zoroco_ra_quenra_reserveRoute(session, 7, output, status);
  });
  expectFailure([&](char** output, zoerr_Status* status) {
    zoroco_ra_quenra_getRouteTerminalPath(session, 7, output, status);
  });
  zoroco_ra_quenra_destroySession(session);
}

TEST_F(RoutingExports, ReallocationThatReturnsNull_FailsWithMemoryFull) {
  script_.router.value = 77;
  expectNoAnswer([](char*, size_t, const char*, size_t) -> char* { return nullptr; }, script_,
                 QUENRA_STATUS_MEMORY_FULL,
                 R"({"error_constant":"zoapalerr_memoryFull",)"
                 R"("file":"zoarkra\\arkroutingadaptor","line":127,"component":"quenra"})");
}

TEST_F(RoutingExports, ReallocationThatThrowsAnything_FailsWithInternalError) {
  script_.router.value = 77;
  for (const zoroco_Reallocate reallocate : std::initializer_list<zoroco_Reallocate>{
           [](char*, size_t, const char*, size_t) -> char* { throw 5; },
           [](char*, size_t, const char*, size_t) -> char* { throw std::runtime_error("client"); },
           [](char*, size_t, const char*, size_t) -> char* { throw std::bad_alloc(); }}) {
    expectNoAnswer(reallocate, script_, QUENRA_STATUS_INTERNAL_ERROR,
                   R"({"file":"zoarkra\\arkroutingadaptor","line":131,"component":"quenra"})");
  }
}

TEST_F(RoutingExports, StatusReallocationThatThrows_LeavesTheErrorWithoutADescription) {
  zoerr_Status status{0, 0, [](zoerr_Status*, uint32_t) -> bool { throw 5; }, nullptr};
  zoroco_ra_quenra_calculateRoute(session_, "5", kDestinations, "{}", answer_.output(), &status);
  EXPECT_EQ(status.code, QUENRA_STATUS_INVALID_PARAMETER);
  EXPECT_EQ(status.description, nullptr);
}

// ---- Rules of all exports ----

// Calls each export that has a status, with pointers that it must not follow.
void callEverything(zoerr_Status* status) {
  auto* const session = reinterpret_cast<zoroco_RoutingAdaptorSession*>(uintptr_t{8});
  auto* const iterator = reinterpret_cast<zoroco_TerminalIterator*>(uintptr_t{16});
  const auto* const text = reinterpret_cast<const char*>(uintptr_t{24});
  auto** const output = reinterpret_cast<char**>(uintptr_t{32});
  EXPECT_EQ(zoroco_ra_quenra_createSession(text, nullptr, status), nullptr);
  EXPECT_EQ(zoroco_ra_quenra_createSessionWithDemotionFunc(text, nullptr, nullptr, nullptr, status),
            nullptr);
  zoroco_ra_quenra_getHandledConstraints(session, output, status);
  EXPECT_EQ(zoroco_ra_quenra_calculateRoute(session, text, text, text, output, status), 0u);
  zoroco_ra_quenra_reserveRoute(session, 7, output, status);
  zoroco_ra_quenra_programRoute(session, 7, status);
  zoroco_ra_quenra_getRouteTerminalPath(session, 7, output, status);
  EXPECT_EQ(zoroco_ra_quenra_getAllTerminals(session, status, 0), nullptr);
  zoroco_ra_quenra_TerminalIterator_next(iterator, status);
  EXPECT_EQ(zoroco_ra_quenra_TerminalIterator_getStringAttribute(iterator, text, status), nullptr);
  EXPECT_FALSE(zoroco_ra_quenra_TerminalIterator_getBoolAttribute(iterator, text, status));
  EXPECT_EQ(zoroco_ra_quenra_TerminalIterator_getU32Attribute(iterator, text, status), 0u);
  zoroco_ra_quenra_TerminalIterator_resetTerminal(iterator, text, status);
  EXPECT_EQ(
      zoroco_ra_quenra_TerminalIterator_calculateResetTerminal(session, iterator, text, status),
      0u);
}

TEST_F(RoutingExports, StatusWithAnError_FollowsNoPointer) {
  status_.code = -1;
  callEverything(&status_);
  EXPECT_EQ(status_.code, -1);
  EXPECT_EQ(status_.description, nullptr);
  EXPECT_TRUE(calls().empty());
}

TEST_F(RoutingExports, NullStatus_FollowsNoPointer) {
  callEverything(nullptr);
  EXPECT_TRUE(calls().empty());
}

TEST_F(RoutingExports, NullSession_FailsWithInvalidParameter) {
  const auto expectRefused = [](auto call) {
    tClientStatus status;
    call(&status);
    EXPECT_EQ(status.code, QUENRA_STATUS_INVALID_PARAMETER);
    EXPECT_EQ(descriptionOf(recordOf(status)), kNoHandle);
  };
  expectRefused([&](zoerr_Status* status) {
    zoroco_ra_quenra_getHandledConstraints(nullptr, answer_.output(), status);
  });
  expectRefused([&](zoerr_Status* status) {
    zoroco_ra_quenra_calculateRoute(nullptr, "[]", "[]", "{}", answer_.output(), status);
  });
  expectRefused([&](zoerr_Status* status) {
    zoroco_ra_quenra_reserveRoute(nullptr, 7, answer_.output(), status);
  });
  expectRefused([](zoerr_Status* status) { zoroco_ra_quenra_programRoute(nullptr, 7, status); });
  expectRefused([&](zoerr_Status* status) {
    zoroco_ra_quenra_getRouteTerminalPath(nullptr, 7, answer_.output(), status);
  });
  expectRefused([](zoerr_Status* status) {
    EXPECT_EQ(zoroco_ra_quenra_getAllTerminals(nullptr, status, 0), nullptr);
  });
  expectRefused([&](zoerr_Status* status) {
    zoroco_ra_quenra_TerminalIterator_calculateResetTerminal(nullptr, iterator(), "default",
                                                             status);
  });
  expectRefused([&](zoerr_Status* status) {
    zoroco_ra_quenra_TerminalIterator_calculateResetTerminal(session_, nullptr, "default", status);
  });
}

TEST_F(RoutingExports, NullIterator_FailsWithInvalidParameter) {
  const auto expectRefused = [](auto call) {
    tClientStatus status;
    call(&status);
    EXPECT_EQ(status.code, QUENRA_STATUS_INVALID_PARAMETER);
    EXPECT_EQ(descriptionOf(recordOf(status)), kNoHandle);
  };
  expectRefused(
      [](zoerr_Status* status) { zoroco_ra_quenra_TerminalIterator_next(nullptr, status); });
  expectRefused([](zoerr_Status* status) {
    zoroco_ra_quenra_TerminalIterator_getStringAttribute(nullptr, "name", status);
  });
  expectRefused([](zoerr_Status* status) {
    zoroco_ra_quenra_TerminalIterator_getBoolAttribute(nullptr, "isOwned", status);
  });
  expectRefused([](zoerr_Status* status) {
    zoroco_ra_quenra_TerminalIterator_getU32Attribute(nullptr, "id", status);
  });
  expectRefused([](zoerr_Status* status) {
    zoroco_ra_quenra_TerminalIterator_resetTerminal(nullptr, "default", status);
  });
  EXPECT_TRUE(zoroco_ra_quenra_TerminalIterator_isEnd(nullptr));
}

// ---- Routes ----

TEST_F(RoutingExports, LifeOfARoute_SendsOneRequestForEachStep) {
  script_.router.routes = {{7, 4, 1, 0, 0, {}}};
  script_.router.value = 77;
  script_.router.path = {2, 4};
  EXPECT_EQ(zoroco_ra_quenra_calculateRoute(session_, kSeeds, kDestinations, "{}", answer_.output(),
                                            &status_),
            77u);
  EXPECT_EQ(answer_.text(),
            R"([{"ticket":7,"destination":"PXI_Trig0","cost":1,"indexOfStartingSeed":0,)"
            R"("constraints":{}}])");
  zoroco_ra_quenra_reserveRoute(session_, 7, answer_.output(), &status_);
  zoroco_ra_quenra_programRoute(session_, 7, &status_);
  zoroco_ra_quenra_getRouteTerminalPath(session_, 7, answer_.output(), &status_);
  EXPECT_EQ(answer_.text(), R"(["TRIG_SMB","PXI_Trig0"])");
  zoroco_ra_quenra_beginExceptionalRouteDestruction(session_, 7, 1, 2);
  zoroco_ra_quenra_unprogramRoute(session_, 7, 1, 2);
  zoroco_ra_quenra_unreserveRoute(session_, 7, 1, 2);
  zoroco_ra_quenra_destroyRoute(session_, 7, 1, 2);
  EXPECT_EQ(calls(), (tStrings{kCalculation, "reserveRoute(7, capacity 8)", "programRoute(7)",
                               "getRouteTerminalPath(7, capacity 32)", "unprogramRoute(7)",
                               "unreserveRoute(7)", "destroyRoute(7)"}));
  EXPECT_EQ(status_.code, 0);
}

TEST_F(RoutingExports, HandledConstraints_AreInversionNeededAlone) {
  zoroco_ra_quenra_getHandledConstraints(session_, answer_.output(), &status_);
  EXPECT_EQ(answer_.text(), R"(["inversionNeeded"])");
}

TEST_F(RoutingExports, BadRequest_IsDescribedInTheStatus) {
  EXPECT_EQ(zoroco_ra_quenra_calculateRoute(session_, R"([{"terminal":5}])", kDestinations, "{}",
                                            answer_.output(), &status_),
            0u);
  EXPECT_EQ(status_.code, QUENRA_STATUS_INVALID_PARAMETER);
  EXPECT_EQ(description(),
            R"({"error_constant":"zoapalerr_invalidParameter","file":"RoCoUtils","line":104,)"
            R"("component":"quenra","zoroco_debug":"terminal name must be a string",)"
            R"("json":"[{\"terminal\":5}]"})");
  EXPECT_TRUE(calls().empty());
}

TEST_F(RoutingExports, Conflict_IsWrittenAndReported) {
  script_.router.codes = {QUENRA_STATUS_ROUTE_CONFLICT};
  script_.router.conflicts = {{3, 4, 0}};
  zoroco_ra_quenra_reserveRoute(session_, 7, answer_.output(), &status_);
  EXPECT_EQ(status_.code, QUENRA_STATUS_ROUTE_CONFLICT);
  EXPECT_EQ(answer_.text(), R"([{"sessionId":3,"ticket":4}])");
  EXPECT_EQ(description(), R"({"file":"router","line":9,"component":"driver"})");
}

TEST_F(RoutingExports, FailureOfTheDriver_ReturnsNoValue) {
  script_.router.codes = {-7};
  script_.router.value = 77;
  EXPECT_EQ(zoroco_ra_quenra_calculateRoute(session_, kSeeds, kDestinations, "{}", answer_.output(),
                                            &status_),
            0u);
  EXPECT_EQ(status_.code, -7);
}

TEST_F(RoutingExports, WarningOfTheDriver_IsReportedWithTheValue) {
  script_.router.codes = {7};
  script_.router.value = 77;
  EXPECT_EQ(zoroco_ra_quenra_calculateRoute(session_, kSeeds, kDestinations, "{}", answer_.output(),
                                            &status_),
            77u);
  EXPECT_EQ(status_.code, 7);
  zoroco_ra_quenra_programRoute(session_, 7, &status_);
  EXPECT_EQ(calls().back(), "programRoute(7) st=7");
}

TEST_F(RoutingExports, MoreConflictsThanTheMaximum_FailWithMemoryFull) {
  script_.router.codes = {QUENRA_STATUS_ROUTE_CONFLICT};
  script_.router.reportedConflictCount = 4'000'000'000;
  zoroco_ra_quenra_reserveRoute(session_, 7, answer_.output(), &status_);
  EXPECT_EQ(status_.code, QUENRA_STATUS_MEMORY_FULL);
  EXPECT_EQ(answer_.text(), "(none)");
}

TEST_F(RoutingExports, TeardownThatTheDriverRefuses_Returns) {
  script_.router.codes = {-1, -2, -3};
  zoroco_ra_quenra_unprogramRoute(session_, 7, 0, 0);
  zoroco_ra_quenra_unreserveRoute(session_, 7, 0, 0);
  zoroco_ra_quenra_destroyRoute(session_, 7, 0, 0);
  EXPECT_EQ(calls(), (tStrings{"unprogramRoute(7)", "unreserveRoute(7)", "destroyRoute(7)"}));
}

TEST_F(RoutingExports, TeardownOfANullSession_DoesNothing) {
  zoroco_ra_quenra_unprogramRoute(nullptr, 7, 0, 0);
  zoroco_ra_quenra_unreserveRoute(nullptr, 7, 0, 0);
  zoroco_ra_quenra_destroyRoute(nullptr, 7, 0, 0);
  zoroco_ra_quenra_beginExceptionalRouteDestruction(nullptr, 7, 0, 0);
  EXPECT_TRUE(calls().empty());
}

// ---- Terminals ----

TEST_F(RoutingExports, WalkOverTheTerminals_ReturnsEachOfThem) {
  std::string names;
  uint32_t owned = 0;
  uint32_t ids = 0;
  while (!zoroco_ra_quenra_TerminalIterator_isEnd(iterator())) {
    names += zoroco_ra_quenra_TerminalIterator_getStringAttribute(iterator(), "name", &status_);
    names += ' ';
    ids += zoroco_ra_quenra_TerminalIterator_getU32Attribute(iterator(), "id", &status_);
    owned +=
        zoroco_ra_quenra_TerminalIterator_getBoolAttribute(iterator(), "isOwned", &status_) ? 1 : 0;
    zoroco_ra_quenra_TerminalIterator_next(iterator(), &status_);
  }
  EXPECT_EQ(names,
            "FLOAT TRIG_SMB WD_Terminal PXI_Trig0 PXI_Trig1 PXI_Trig2 PXI_Trig3 PXI_Trig4 "
            "PXI_Trig5 PXI_Trig6 PXI_Trig7 ");
  EXPECT_EQ(ids, 66u);
  EXPECT_EQ(owned, 3u);
  EXPECT_EQ(status_.code, 0);
}

TEST_F(RoutingExports, AttributeOfAnotherType_FailsWithBadSelector) {
  EXPECT_FALSE(zoroco_ra_quenra_TerminalIterator_getBoolAttribute(iterator(), "name", &status_));
  EXPECT_EQ(status_.code, QUENRA_STATUS_BAD_SELECTOR);
  EXPECT_EQ(description(),
            R"({"error_constant":"zopalerr_badSelector","file":"zoarkra\\arkroutingadaptor",)"
            R"("line":450,"component":"quenra"})");
}

TEST_F(RoutingExports, ResetOfATerminal_SendsItsRequest) {
  script_.router.value = 9;
  zoroco_ra_quenra_TerminalIterator_resetTerminal(iterator(), "floating", &status_);
  EXPECT_EQ(zoroco_ra_quenra_TerminalIterator_calculateResetTerminal(session_, iterator(),
                                                                     "default", &status_),
            9u);
  EXPECT_EQ(calls(), (tStrings{"resetTerminal(1, 1)", "calculateResetTerminal(0, 1, 0)"}));
  zoroco_ra_quenra_TerminalIterator_resetTerminal(iterator(), "Floating", &status_);
  EXPECT_EQ(status_.code, QUENRA_STATUS_BAD_SELECTOR);
  EXPECT_EQ(calls().size(), 2u);
}

#ifndef _WIN32
// ---- The lock of the live handles. The fake Windows counts its acquisitions. ----

using nFakeWindows::slimLockCounts;
using nFakeWindows::tSlimLockCounts;
using zoroco::tHandleKind;
using zoroco::tLiveHandles;

TEST(LiveHandles, Lookups_DoNotExcludeEachOther) {
  tLiveHandles handles;
  const int session = 0;
  const int iterator = 0;
  handles.add(&session, tHandleKind::session);
  handles.add(&iterator, tHandleKind::iterator, &session);
  const tSlimLockCounts before = slimLockCounts();
  EXPECT_TRUE(handles.isLive(&session, tHandleKind::session));
  EXPECT_TRUE(handles.isOwnerLive(&iterator));
  const tSlimLockCounts after = slimLockCounts();
  EXPECT_EQ(after.shared - before.shared, 2u);
  EXPECT_EQ(after.exclusive, before.exclusive);
}

TEST(LiveHandles, Changes_ExcludeEverythingElse) {
  tLiveHandles handles;
  const int session = 0;
  const tSlimLockCounts before = slimLockCounts();
  handles.add(&session, tHandleKind::session);
  EXPECT_TRUE(handles.remove(&session, tHandleKind::session));
  const tSlimLockCounts after = slimLockCounts();
  EXPECT_EQ(after.exclusive - before.exclusive, 2u);
  EXPECT_EQ(after.shared, before.shared);
}
#endif

}  // namespace
}  // namespace nTests
