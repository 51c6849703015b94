#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "tests/component/protons/trace/debuggerlistener.h"
#include "tests/component/zoarkra/sessiontest.h"
#include "tests/fakewindows/debugger.h"
#include "tools/quenra/commandline.h"
#include "zoarkra/topography.h"

namespace nTests {
namespace {

// The creation and destruction of a session, and its demotions.
// The arguments of each call of a callback. One test at a time.
struct tDemotions {
  std::vector<void*> contexts;
  std::vector<int32_t> reasons;
  std::vector<int32_t> codes;
  std::vector<void*> notifications;
};

tDemotions& demotions() {
  static tDemotions recorded;
  return recorded;
}

void recordDemotion(void* context, int32_t reason, zoerr_Status* status, void* notification) {
  demotions().contexts.push_back(context);
  demotions().reasons.push_back(reason);
  demotions().codes.push_back(status->code);
  demotions().notifications.push_back(notification);
}

class SessionCreation : public SessionTest {
 protected:
  SessionCreation() {
    demotions() = {};
    session_.reset();
    script_.router.calls.clear();
  }
  const zoark::tClientFunctions client_{&tAnswer::supplyBuffer, &recordDemotion, &script_};
};

TEST_F(SessionCreation, SuccessfulCreation_OpensTheDeviceAndReadsTheTopographyName) {
  create(client_);
  EXPECT_EQ(script_.events, (tStrings{"open device", "start"}));
  EXPECT_EQ(calls(), tStrings{"getTopographyName(128)"});
  EXPECT_EQ(status_.code, 0);
}

TEST_F(SessionCreation, DestroyedSession_StopsNotificationsBeforeItCloses) {
  create(client_);
  session_.reset();
  EXPECT_EQ(script_.events, (tStrings{"open device", "start", "stop", "closed"}));
}

TEST_F(SessionCreation, SessionWithoutACallback_RegistersForNotifications) {
  create({&tAnswer::supplyBuffer, nullptr, nullptr});
  ASSERT_NE(script_.listener, nullptr);
  script_.listener->routeDemoted(nullptr);
  EXPECT_TRUE(demotions().reasons.empty());
}

TEST_F(SessionCreation, DeviceThatCannotBeOpened_LeavesNothing) {
  script_.openCode = QUENRA_STATUS_NOT_FOUND;
  EXPECT_EQ(
      failureOf([&] { create(client_); }),
      (tFailure{QUENRA_STATUS_NOT_FOUND, R"({"file":"device","line":1,"component":"driver"})"}));
  EXPECT_EQ(script_.events, (tStrings{"open device", "stop", "closed"}));
  EXPECT_TRUE(calls().empty());
}

TEST_F(SessionCreation, RefusedNotifications_LeaveNothing) {
  script_.startCode = QUENRA_STATUS_REQUEST_NOT_SUPPORTED;
  EXPECT_EQ(failureOf([&] { create(client_); }),
            (tFailure{QUENRA_STATUS_REQUEST_NOT_SUPPORTED,
                      R"({"file":"device","line":2,"component":"driver"})"}));
  EXPECT_EQ(script_.events, (tStrings{"open device", "start", "stop", "closed"}));
  EXPECT_TRUE(calls().empty());
}

TEST_F(SessionCreation, RefusedTopographyRequest_LeavesNothing) {
  router().codes = {-7};
  EXPECT_EQ(failureOf([&] { create(client_); }), failureOfRouter(-7));
  EXPECT_EQ(script_.events, (tStrings{"open device", "start", "stop", "closed"}));
}

TEST_F(SessionCreation, UnknownTopography_IsReportedAndTraced) {
  router().topographyName = "pxiContTriggerRouter2";
  tDebuggerListener listener;
  EXPECT_EQ(
      failureOf([&] { create(client_); }),
      (tFailure{QUENRA_STATUS_BAD_SELECTOR,
                R"({"error_constant":"zopalerr_badSelector",)"
                R"("file":"zoarkra\\topographyinforegistration","line":52,"component":"quenra",)"
                R"("zoark_debug":"Topography not found: pxiContTriggerRouter2"})"}));
  EXPECT_EQ(listener.take(),
            tStrings{"[zoark_debug] Topography not found: pxiContTriggerRouter2\n"});
  EXPECT_EQ(script_.events, (tStrings{"open device", "start", "stop", "closed"}));
}

TEST_F(SessionCreation, TopographyNameWithoutANul_IsReadToItsEnd) {
  router().topographyName = std::string(128, 'n');
  const tFailure failure = failureOf([&] { create(client_); });
  EXPECT_NE(failure.description.find(": " + std::string(128, 'n') + "\""), std::string::npos)
      << failure.description;
}

TEST_F(SessionCreation, TopographyNameWithBytesAfterItsNul_IsFound) {
  router().topographyName = std::string("pxiContTriggerRouter\0rest", 25);
  create(client_);
  EXPECT_NE(session_, nullptr);
}

TEST_F(SessionCreation, WarningsOfTheDriver_AreMergedIntoTheStatus) {
  script_.openCode = 3;
  router().codes = {4};
  create(client_);
  EXPECT_EQ(status_.code, 3);
  EXPECT_EQ(calls(), tStrings{"getTopographyName(128) st=3"});
}

TEST_F(SessionCreation, NullName_FailsWithInvalidParameter) {
  EXPECT_EQ(failureOf([&] { create(client_, nullptr); }),
            failureAtLine(203, QUENRA_STATUS_INVALID_PARAMETER, "zoapalerr_invalidParameter"));
  EXPECT_EQ(script_.events, (tStrings{"stop", "closed"}));
}

TEST_F(SessionCreation, NameOf256Characters_IsOpened) {
  const std::string name(256, 'n');
  create(client_, name.c_str());
  EXPECT_EQ(script_.events[0], "open " + name);
}

#ifndef _WIN32
TEST_F(SessionCreation, NameOf257Characters_EndsTheProcess) {
  const std::string name(257, 'n');
  EXPECT_EXIT(
      {
        nFakeWindows::showDebuggerOutput();
        create(client_, name.c_str());
      },
      testing::ExitedWithCode(nFakeWindows::kAssertionExitCode),
      "^\\[quenra\\|tArray\\|64\\] !!ASSERT!!\n$");
}

TEST_F(SessionCreation, UnterminatedNameOf257Bytes_EndsTheProcessWithoutReadingFurther) {
  // In memory of exactly its size.
  const std::vector<char> name(257, 'n');
  EXPECT_EXIT(
      {
        nFakeWindows::showDebuggerOutput();
        create(client_, name.data());
      },
      testing::ExitedWithCode(nFakeWindows::kAssertionExitCode),
      "^\\[quenra\\|tArray\\|64\\] !!ASSERT!!\n$");
}
#endif

TEST_F(SessionCreation, Demotion_CallsTheCallback) {
  create(client_);
  int notification = 0;
  script_.listener->routeDemoted(&notification);
  script_.listener->routeDemoted(&notification);
  EXPECT_EQ(demotions().contexts, (std::vector<void*>{&script_, &script_}));
  EXPECT_EQ(demotions().reasons, (std::vector<int32_t>{101, 101}));
  EXPECT_EQ(demotions().codes, (std::vector<int32_t>{0, 0}));
  EXPECT_EQ(demotions().notifications, (std::vector<void*>{&notification, &notification}));
}

TEST_F(SessionCreation, DemotionDuringTheCreation_IsDropped) {
  script_.demotesAtStart = true;
  create(client_);
  EXPECT_TRUE(demotions().reasons.empty());
}

TEST_F(SessionCreation, StatusThatACallbackFills_IsReleased) {
  create({&tAnswer::supplyBuffer,
          [](void*, int32_t, zoerr_Status* status, void*) {
            EXPECT_EQ(status->description, nullptr);
            status->code = -5;
            EXPECT_TRUE(status->reallocate(status, 100));
          },
          nullptr});
  script_.listener->routeDemoted(nullptr);
  script_.listener->routeDemoted(nullptr);
  EXPECT_EQ(status_.code, 0);
}

TEST_F(SessionCreation, StatusWithMemoryOfTheCallback_IsReleasedByItsFunction) {
  static std::vector<uint32_t> requested;
  static char buffer[] = "{}\0J";
  requested.clear();
  create({&tAnswer::supplyBuffer,
          [](void*, int32_t, zoerr_Status* status, void*) {
            status->description = buffer;
            status->capacity = sizeof buffer;
            status->reallocate = [](zoerr_Status*, uint32_t newCapacity) {
              requested.push_back(newCapacity);
              return true;
            };
          },
          nullptr});
  script_.listener->routeDemoted(nullptr);
  EXPECT_EQ(requested, std::vector<uint32_t>{0});
}

TEST_F(SessionCreation, ReleaseOfACallbackStatusThatThrows_LeavesTheSessionUsable) {
  static char buffer[] = "{}\0J";
  create({&tAnswer::supplyBuffer,
          [](void*, int32_t, zoerr_Status* status, void*) {
            status->description = buffer;
            status->capacity = sizeof buffer;
            status->reallocate = [](zoerr_Status*, uint32_t) -> bool {
              throw std::runtime_error("release");
            };
          },
          nullptr});
  script_.listener->routeDemoted(nullptr);
  session_->programRoute(7, status_);
  EXPECT_EQ(status_.code, 0);
}

TEST_F(SessionCreation, CallbackThatThrows_HasItsStatusReleased) {
  static char buffer[] = "{}\0J";
  static std::vector<uint32_t> released;
  released.clear();
  create({&tAnswer::supplyBuffer,
          [](void*, int32_t, zoerr_Status* status, void*) {
            status->description = buffer;
            status->capacity = sizeof buffer;
            status->reallocate = [](zoerr_Status*, uint32_t newCapacity) -> bool {
              released.push_back(newCapacity);
              throw std::runtime_error("release");
            };
            throw std::runtime_error("callback");
          },
          nullptr});
  script_.listener->routeDemoted(nullptr);
  EXPECT_EQ(released, std::vector<uint32_t>{0});
}

TEST_F(SessionCreation, CallbackThatThrows_LeavesTheSessionUsable) {
  create({&tAnswer::supplyBuffer,
          [](void*, int32_t, zoerr_Status*, void*) { throw std::runtime_error("callback"); },
          nullptr});
  script_.listener->routeDemoted(nullptr);
  session_->programRoute(7, status_);
  EXPECT_EQ(status_.code, 0);
}

// The terminals of the controller, the mapping between their names and ids, and the list of the command
// line.
using zoark::findTopography;
using zoark::terminalIdOf;
using zoark::terminalNameOf;
using zoark::tTerminal;
using zoark::tTopography;

const tTopography& controller() {
  return findTopography("pxiContTriggerRouter");
}

std::string textOf(const char* text) {
  return text == nullptr ? "null" : text;
}

std::string textOf(bool flag) {
  return flag ? "true" : "false";
}

std::string rowOf(const tTerminal& t) {
  return std::to_string(t.id) + " " + t.name + " " + t.visibility + " " + textOf(t.isExternal) +
         " " + textOf(t.isOwned) + " " + textOf(t.busType) + " " + std::to_string(t.busLine) + " " +
         textOf(t.busName) + " " + textOf(t.isAlias) + " " + t.canonicalName + " " +
         textOf(t.isMaskedOut);
}

TEST(Topography, TopographyOfTheController_Has11TerminalsInTheirOrder) {
  const std::vector<std::string> expected{
      "1 FLOAT private false true null 4294967295 null false FLOAT false",
      "2 TRIG_SMB public false true null 4294967295 null false TRIG_SMB false",
      "3 WD_Terminal private false true null 4294967295 null false WD_Terminal false",
      "4 PXI_Trig0 public true false PXI_Trig 0 null false PXI_Trig0 false",
      "5 PXI_Trig1 public true false PXI_Trig 1 null false PXI_Trig1 false",
      "6 PXI_Trig2 public true false PXI_Trig 2 null false PXI_Trig2 false",
      "7 PXI_Trig3 public true false PXI_Trig 3 null false PXI_Trig3 false",
      "8 PXI_Trig4 public true false PXI_Trig 4 null false PXI_Trig4 false",
      "9 PXI_Trig5 public true false PXI_Trig 5 null false PXI_Trig5 false",
      "10 PXI_Trig6 public true false PXI_Trig 6 null false PXI_Trig6 false",
      "11 PXI_Trig7 public true false PXI_Trig 7 null false PXI_Trig7 false",
  };
  std::vector<std::string> rows;
  for (const tTerminal& terminal : controller().terminals()) {
    rows.push_back(rowOf(terminal));
  }
  EXPECT_EQ(rows, expected);
}

TEST(Topography, TopographyOfTheController_HasItsTwoWords) {
  EXPECT_STREQ(controller().name, "pxiContTriggerRouter");
  EXPECT_EQ(controller().words[0], 0xD0u);
  EXPECT_EQ(controller().words[1], 0x0Au);
}

TEST(TerminalId, IdOfEachName_MapsBackToTheName) {
  for (const tTerminal& terminal : controller().terminals()) {
    EXPECT_EQ(terminalIdOf(controller(), terminal.name), terminal.id);
    EXPECT_STREQ(terminalNameOf(controller(), terminal.id), terminal.name);
  }
}

TEST(TerminalId, IdOfAnUnknownName_IsZero) {
  for (const std::string_view name :
       {std::string_view(""), std::string_view("PXI_Trig8"), std::string_view("pxi_trig0"),
        std::string_view("PXI_Trig"), std::string_view("PXI_Trig0 "),
        std::string_view("PXI_Trig0\0", 10), std::string_view("PXI_Trig0\0x", 11)}) {
    EXPECT_EQ(terminalIdOf(controller(), name), 0u) << name;
  }
}

TEST(TerminalName, NameOfAnUnknownId_IsEmpty) {
  for (const uint32_t id : {0u, 12u, 99u, 0xFFFFFFFFu}) {
    EXPECT_STREQ(terminalNameOf(controller(), id), "") << id;
  }
}

TEST(FindTopography, SimilarNames_AreNotFound) {
  for (const std::string name : {"", "pxiContTriggerRoute", "pxiContTriggerRouter2",
                                 "PxiContTriggerRouter", " pxiContTriggerRouter"}) {
    EXPECT_EQ(failureOf([&] { static_cast<void>(findTopography(name)); }),
              (tFailure{QUENRA_STATUS_BAD_SELECTOR,
                        R"({"error_constant":"zopalerr_badSelector",)"
                        R"("file":"zoarkra\\topographyinforegistration","line":52,)"
                        R"("component":"quenra","zoark_debug":"Topography not found: )" +
                            name + R"("})"}));
  }
}

TEST(FindTopography, NameOf128Bytes_IsReportedInFull) {
  const std::string name(128, 'n');
  const tFailure failure = failureOf([&] { static_cast<void>(findTopography(name)); });
  EXPECT_NE(failure.description.find("\"Topography not found: " + name + "\"}"), std::string::npos)
      << failure.description;
}

TEST(FindTopography, Failure_IsTraced) {
  tDebuggerListener listener;
  failureOf([] { static_cast<void>(findTopography("other")); });
  EXPECT_EQ(listener.take(),
            std::vector<std::string>{"[zoark_debug] Topography not found: other\n"});
}

TEST(FindTopography, NameWithLineEnds_IsTracedAsOneLine) {
  tDebuggerListener listener;
  const tFailure failure =
      failureOf([] { static_cast<void>(findTopography("x\r\n[quenra] forged\x1B\x7F")); });
  EXPECT_EQ(listener.take(),
            std::vector<std::string>{"[zoark_debug] Topography not found: x??[quenra] forged??\n"});
  EXPECT_NE(failure.description.find(R"(Topography not found: x\r\n[quenra] forged\u001b\u007f"})"),
            std::string::npos)
      << failure.description;
}

// ---- The list of the command line ----

TEST(TerminalCatalogue, Names_AreThoseOfTheLibraryInItsOrder) {
  std::vector<std::string> names;
  for (const nCommandLine::tOfferedWord& row : nCommandLine::kTerminalNames) {
    names.emplace_back(row.word);
  }
  std::vector<std::string> expected;
  for (const zoark::tTerminal& terminal :
       zoark::findTopography("pxiContTriggerRouter").terminals()) {
    expected.emplace_back(terminal.name);
  }
  EXPECT_EQ(names, expected);
}

}  // namespace
}  // namespace nTests
