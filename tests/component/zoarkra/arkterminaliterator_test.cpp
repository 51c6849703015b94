#include "zoarkra/arkterminaliterator.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "tests/component/zoarkra/scriptedrouter.h"
#include "tests/component/zoarkra/sessiontest.h"
#include "zoarkra/topography.h"

namespace nTests {
namespace {

using zoark::ARKTerminalIterator;

const std::vector<const char*> kStringNames{"name", "visibility", "busType", "busName",
                                            "canonicalName"};
const std::vector<const char*> kBoolNames{"isExternal", "isOwned", "isAlias", "isMaskedOut"};
const std::vector<const char*> kU32Names{"busLine", "id"};
const std::vector<const char*> kUnknownNames{"Name", "name ", " name", "",
                                             "nam",  "names", "ID",    nullptr};

const tFailure kPastTheEnd =
    failureAtLine(431, QUENRA_STATUS_INVALID_PARAMETER, "zoapalerr_invalidParameter");
const tFailure kUnknownAttribute =
    failureAtLine(450, QUENRA_STATUS_BAD_SELECTOR, "zopalerr_badSelector");
const tFailure kUnknownMode =
    failureAtLine(512, QUENRA_STATUS_BAD_SELECTOR, "zopalerr_badSelector");

class TerminalIterator : public testing::Test {
 protected:
  // Moves to the terminal with this name.
  void goTo(const char* name) {
    while (!iterator_.isEnd() && std::strcmp(string("name"), name) != 0) {
      iterator_.next(status_);
    }
    ASSERT_FALSE(iterator_.isEnd());
  }
  void goToTheEnd() {
    while (!iterator_.isEnd()) {
      iterator_.next(status_);
    }
  }
  const char* string(const char* name) { return iterator_.getStringAttribute(name, status_); }
  bool flag(const char* name) { return iterator_.getBoolAttribute(name, status_); }
  uint32_t number(const char* name) { return iterator_.getU32Attribute(name, status_); }

  tScriptedRouter router_;
  ARKTerminalIterator iterator_{zoark::findTopography("pxiContTriggerRouter"), router_};
  zoerr::tOwnedStatus status_;
};

TEST_F(TerminalIterator, CompleteWalk_Returns11TerminalsInTableOrder) {
  std::vector<std::string> walked;
  for (; !iterator_.isEnd(); iterator_.next(status_)) {
    walked.push_back(std::to_string(number("id")) + " " + string("name"));
  }
  EXPECT_EQ(walked,
            (std::vector<std::string>{"1 FLOAT", "2 TRIG_SMB", "3 WD_Terminal", "4 PXI_Trig0",
                                      "5 PXI_Trig1", "6 PXI_Trig2", "7 PXI_Trig3", "8 PXI_Trig4",
                                      "9 PXI_Trig5", "10 PXI_Trig6", "11 PXI_Trig7"}));
  EXPECT_TRUE(router_.calls.empty());
}

TEST_F(TerminalIterator, NextPastTheEnd_StaysAtTheEnd) {
  goToTheEnd();
  for (int i = 0; i < 100; ++i) {
    iterator_.next(status_);
    EXPECT_TRUE(iterator_.isEnd());
  }
}

TEST_F(TerminalIterator, BusTypeOfTheConnector_IsNull) {
  goTo("TRIG_SMB");
  EXPECT_EQ(string("busType"), nullptr);
  EXPECT_EQ(string("busName"), nullptr);
}

TEST_F(TerminalIterator, EveryAttributeOfATriggerLine_IsServedByItsType) {
  goTo("PXI_Trig3");
  EXPECT_STREQ(string("visibility"), "public");
  EXPECT_STREQ(string("busType"), "PXI_Trig");
  EXPECT_EQ(string("busName"), nullptr);
  EXPECT_STREQ(string("canonicalName"), "PXI_Trig3");
  EXPECT_TRUE(flag("isExternal"));
  EXPECT_FALSE(flag("isOwned"));
  EXPECT_FALSE(flag("isAlias"));
  EXPECT_FALSE(flag("isMaskedOut"));
  EXPECT_EQ(number("busLine"), 3u);
  EXPECT_EQ(number("id"), 7u);
}

TEST_F(TerminalIterator, BusLineOfTheFloatingTerminal_IsAllOnes) {
  goTo("FLOAT");
  EXPECT_EQ(number("busLine"), 4294967295u);
  EXPECT_STREQ(string("visibility"), "private");
  EXPECT_TRUE(flag("isOwned"));
  EXPECT_FALSE(flag("isExternal"));
}

TEST_F(TerminalIterator, NameOfAnotherType_FailsWithBadSelector) {
  for (const auto* names : {&kBoolNames, &kU32Names, &kUnknownNames}) {
    for (const char* name : *names) {
      EXPECT_EQ(failureOf([&] { string(name); }), kUnknownAttribute);
    }
  }
  for (const auto* names : {&kStringNames, &kU32Names, &kUnknownNames}) {
    for (const char* name : *names) {
      EXPECT_EQ(failureOf([&] { flag(name); }), kUnknownAttribute);
    }
  }
  for (const auto* names : {&kStringNames, &kBoolNames, &kUnknownNames}) {
    for (const char* name : *names) {
      EXPECT_EQ(failureOf([&] { number(name); }), kUnknownAttribute);
    }
  }
}

TEST_F(TerminalIterator, UnknownName_LeavesThePosition) {
  goTo("WD_Terminal");
  failureOf([&] { string("busLine"); });
  EXPECT_STREQ(string("name"), "WD_Terminal");
}

TEST_F(TerminalIterator, AttributePastTheEnd_FailsWithInvalidParameter) {
  goToTheEnd();
  EXPECT_EQ(failureOf([&] { string("name"); }), kPastTheEnd);
  EXPECT_EQ(failureOf([&] { flag("isOwned"); }), kPastTheEnd);
  EXPECT_EQ(failureOf([&] { number("id"); }), kPastTheEnd);
}

TEST_F(TerminalIterator, Reset_SendsTerminalAndMode) {
  goTo("PXI_Trig3");
  iterator_.resetTerminal("default", status_);
  iterator_.resetTerminal("floating", status_);
  EXPECT_EQ(router_.calls,
            (std::vector<std::string>{"resetTerminal(7, 0)", "resetTerminal(7, 1)"}));
  EXPECT_EQ(status_.code, 0);
}

TEST_F(TerminalIterator, ResetToAnUnknownMode_SendsNoRequest) {
  for (const char* mode : {"Default", "Floating", "floatingX", "default ", "", "float"}) {
    EXPECT_EQ(failureOf([&] { iterator_.resetTerminal(mode, status_); }), kUnknownMode);
  }
  EXPECT_EQ(failureOf([&] { iterator_.resetTerminal(nullptr, status_); }), kUnknownMode);
  EXPECT_TRUE(router_.calls.empty());
}

TEST_F(TerminalIterator, ResetPastTheEnd_SendsNoRequest) {
  goToTheEnd();
  EXPECT_EQ(failureOf([&] { iterator_.resetTerminal("default", status_); }), kPastTheEnd);
  EXPECT_TRUE(router_.calls.empty());
}

TEST_F(TerminalIterator, ResetThatTheDriverRefuses_FailsWithTheCodeOfTheDriver) {
  router_.codes = {-7};
  EXPECT_EQ(failureOf([&] { iterator_.resetTerminal("default", status_); }), failureOfRouter(-7));
}

TEST_F(TerminalIterator, ResetWithAWarningOfTheDriver_Succeeds) {
  router_.codes = {7};
  iterator_.resetTerminal("default", status_);
  EXPECT_EQ(status_.code, 7);
  EXPECT_EQ(descriptionOf(status_), R"({"file":"router","line":9,"component":"driver"})");
}

TEST_F(TerminalIterator, ResetUnderAWarning_SendsTheWarning) {
  status_.code = 5;
  iterator_.resetTerminal("default", status_);
  EXPECT_EQ(router_.calls, std::vector<std::string>{"resetTerminal(1, 0) st=5"});
  EXPECT_EQ(status_.code, 5);
}

}  // namespace
}  // namespace nTests
