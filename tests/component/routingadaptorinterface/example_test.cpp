// The program of docs/routing.md, compiled from that page as C and as C++, on a scripted device.
#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <vector>

#include "tests/component/routingadaptorinterface/routingclient.h"

extern "C" int routingExample(int argc, char** argv);
int routingExampleInCpp(int argc, char** argv);

namespace nTests {
namespace {

using tStrings = std::vector<std::string>;

#ifdef _WIN32
constexpr const char* kEmptyInput = "NUL";
#else
constexpr const char* kEmptyInput = "/dev/null";
#endif

// The output and the exit code of the program. It waits for a key and finds the end of its input.
struct tRun {
  int exitCode;
  std::string output;
};

using tProgram = int (*)(int argc, char** argv);

tRun run(tProgram program, tStrings words) {
  std::vector<char*> arguments;
  for (std::string& word : words) {
    arguments.push_back(word.data());
  }
  EXPECT_NE(std::freopen(kEmptyInput, "r", stdin), nullptr);
  testing::internal::CaptureStdout();
  const int exitCode = program(static_cast<int>(arguments.size()), arguments.data());
  return {exitCode, testing::internal::GetCapturedStdout()};
}

class RoutingExample : public testing::TestWithParam<tProgram> {
 protected:
  RoutingExample() { useDevice(script_); }

  tRun connect() { return run(GetParam(), {"routing", "device", "TRIG_SMB", "PXI_Trig0"}); }
  // The requests after the one for the topography name.
  [[nodiscard]] tStrings calls() const {
    return {script_.router.calls.begin() + 1, script_.router.calls.end()};
  }

  tRoutingDeviceScript script_;
};

constexpr const char* kTerminals =
    "terminal FLOAT\nterminal TRIG_SMB\nterminal WD_Terminal\nterminal PXI_Trig0\n"
    "terminal PXI_Trig1\nterminal PXI_Trig2\nterminal PXI_Trig3\nterminal PXI_Trig4\n"
    "terminal PXI_Trig5\nterminal PXI_Trig6\nterminal PXI_Trig7\n";
constexpr const char* kCalculation =
    "calculateRoute([2/0/0] -> [4], required 0, optional 0, options 0, capacity 2)";

TEST_P(RoutingExample, Route_IsConnectedAndTornDown) {
  script_.router.routes = {{7, 4, 1, 0, 0, {}}};
  script_.router.path = {2, 4};
  const tRun result = connect();
  EXPECT_EQ(result.output, std::string(kTerminals) + "connected: [\"TRIG_SMB\",\"PXI_Trig0\"]\n");
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(calls(), (tStrings{kCalculation, "reserveRoute(7, capacity 8)", "programRoute(7)",
                               "getRouteTerminalPath(7, capacity 32)", "unprogramRoute(7)",
                               "unreserveRoute(7)", "destroyRoute(7)"}));
  EXPECT_EQ(script_.events, (tStrings{"open device", "start", "stop", "closed"}));
}

TEST_P(RoutingExample, MissingRoute_IsPrinted) {
  const tRun result = connect();
  EXPECT_EQ(result.output, std::string(kTerminals) + "no such route\n");
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(calls(), tStrings{kCalculation});
}

TEST_P(RoutingExample, Conflict_IsPrintedAndTheRouteTornDown) {
  script_.router.routes = {{7, 4, 1, 0, 0, {}}};
  script_.router.conflicts = {{3, 4, 0}};
  script_.router.codes = {0, 0, QUENRA_STATUS_ROUTE_CONFLICT};
  const tRun result = connect();
  EXPECT_EQ(result.output, std::string(kTerminals) +
                               "conflict: [{\"sessionId\":3,\"ticket\":4}]\n"
                               "failed: -89137 "
                               "{\"file\":\"router\",\"line\":9,\"component\":\"driver\"}\n");
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_EQ(calls(), (tStrings{kCalculation, "reserveRoute(7, capacity 8)", "unprogramRoute(7)",
                               "unreserveRoute(7)", "destroyRoute(7)"}));
}

TEST_P(RoutingExample, MissingDevice_IsPrinted) {
  script_.openCode = QUENRA_STATUS_NOT_FOUND;
  const tRun result = connect();
  EXPECT_EQ(result.output,
            "failed: -52006 "
            "{\"file\":\"device\",\"line\":1,\"component\":\"driver\"}\n");
  EXPECT_EQ(result.exitCode, 1);
}

TEST_P(RoutingExample, ProgramWithoutArguments_PrintsItsUsage) {
  const tRun result = run(GetParam(), {"routing"});
  EXPECT_EQ(result.output, "usage: routing DEVICE FROM TO\n");
  EXPECT_EQ(result.exitCode, 1);
}

INSTANTIATE_TEST_SUITE_P(, RoutingExample, testing::Values(&routingExample, &routingExampleInCpp),
                         [](const testing::TestParamInfo<tProgram>& program) {
                           return program.param == &routingExample ? "InC" : "InCpp";
                         });

}  // namespace
}  // namespace nTests
