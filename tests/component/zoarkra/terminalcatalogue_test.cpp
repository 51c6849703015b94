// The command line's list of terminals equals the library's: completion cannot query the library.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tools/quenra/catalogue/terminalcatalogue.h"
#include "zoarkra/topography.h"

namespace nTests {
namespace {

TEST(TerminalCatalogue, Names_AreThoseOfTheLibraryInItsOrder) {
  std::vector<std::string> names;
  for (const nCommandLine::tTerminalRow& row : nCommandLine::kTerminals) {
    names.emplace_back(row.name);
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
