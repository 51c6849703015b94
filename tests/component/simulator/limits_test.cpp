// The limits of the simulated driver as its document lists them.
#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "simulator/protocol/controlprotocol.h"
#include "tests/component/commandline/repositoryfile.h"

namespace nTests {
namespace {

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

}  // namespace
}  // namespace nTests
