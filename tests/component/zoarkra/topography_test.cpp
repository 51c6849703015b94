// The terminals of the controller, the mapping between their names and ids, and the list of the command
// line.
#include "zoarkra/topography.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/component/protons/trace/debuggerlistener.h"
#include "tests/component/zoarkra/sessiontest.h"
#include "tools/quenra/verbtable.h"

namespace nTests {
namespace {

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
