#include <chrono>
#include <filesystem>
#include <functional>
#include <sstream>
#include <string>
#include <vector>

#include "quenra_attributes.h"
#include "quenra_version.h"
#include "tests/component/commandline/commandlinetest.h"
#include "tools/quenra/metrics/metrics.h"
#include "tools/quenra/routing/troutingsession.h"

namespace nTests {
namespace {

using nCommandLine::metricsText;
using nCommandLine::tMetricFamily;
using nCommandLine::tMetricFormat;
using nCommandLine::tMetricType;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

using tWords = std::vector<std::string>;

class Metrics : public CommandLineTest {
 protected:
  Metrics() {
    library_.text(QUENRA_ATTRIBUTE_SYSTEM_MANUFACTURER, "Maker");
    library_.text(QUENRA_ATTRIBUTE_PRODUCT_NAME, "qctl-8840");
    library_.text(QUENRA_ATTRIBUTE_SERIAL_NUMBER, "VQ02C47A9");
    library_.number(QUENRA_ATTRIBUTE_INTERFACES_PRESENT,
                    QUENRA_SELECTOR_CONTROLLER | QUENRA_SELECTOR_MARTEN);
    library_.text(kBios, "2.1.0f3");
    library_.text(kMarten, "1.4.0f7");
    library_.number(QUENRA_ATTRIBUTE_FIRMWARE_UPDATE_SUPPORT, 1);
    library_.number(QUENRA_ATTRIBUTE_MEMORY_MODULE_COUNT, 2);
    library_.number(QUENRA_ATTRIBUTE_MEMORY_SIZE, 16384);
    library_.number(QUENRA_ATTRIBUTE_MEMORY_SIZE + 1, 0x8000 | 512);
  }

  // The metrics of a run that succeeds without messages.
  std::string metrics(const tWords& more = {}) {
    tWords words{"metrics"};
    words.insert(words.end(), more.begin(), more.end());
    const tRun result = run(words);
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_THAT(result.error, IsEmpty());
    return result.out;
  }
  // Ends the watch during the collection of this number, from 1; runs `before` at the start of each.
  void interruptAt(int collection, std::function<void(int)> before = {}) {
    library_.beforeText([this, collection, before] {
      if (library_.opens > collected_) {
        collected_ = library_.opens;
        interruption_.isPressed = collected_ >= collection;
        if (before) {
          before(collected_);
        }
      }
    });
  }

  static constexpr uint32_t kBios = QUENRA_ATTRIBUTE_FIRMWARE_VERSION | QUENRA_SELECTOR_CONTROLLER;
  static constexpr uint32_t kMarten = QUENRA_ATTRIBUTE_FIRMWARE_VERSION | QUENRA_SELECTOR_MARTEN;

  tTestFiles folder_;

 private:
  int collected_ = 0;
};

TEST_F(Metrics, Machine_HasEveryMetric) {
  const std::string text = metrics();
  EXPECT_THAT(text, HasSubstr("\nquenra_build_info{version=\"" QUENRA_VERSION "\"} 1\n"));
  EXPECT_THAT(text, HasSubstr("\nquenra_controller_up 1\n"));
  EXPECT_THAT(text, ContainsExpression("\nquenra_controller_open_duration_seconds 0[.][0-9]{6}\n"));
  EXPECT_THAT(text, HasSubstr("\nquenra_machine_info{manufacturer=\"Maker\",product=\"qctl-8840\","
                              "serial_number=\"VQ02C47A9\"} 1\n"));
  EXPECT_THAT(text, HasSubstr("\nquenra_firmware_info{device=\"BIOS\",version=\"2.1.0f3\"} 1\n"
                              "quenra_firmware_info{device=\"MARTEN\",version=\"1.4.0f7\"} 1\n"));
  EXPECT_THAT(text, HasSubstr("\nquenra_firmware_update_supported 1\n"));
  EXPECT_THAT(text, HasSubstr("\nquenra_firmware_restart_pending 0\n"));
  EXPECT_THAT(text, HasSubstr("\nquenra_memory_modules 2\n"));
  EXPECT_THAT(text, HasSubstr("\nquenra_memory_module_size_bytes{module=\"0\"} 17179869184\n"
                              "quenra_memory_module_size_bytes{module=\"1\"} 524288\n"));
  EXPECT_THAT(text, ContainsExpression("\nquenra_self_test_duration_seconds 0[.][0-9]{6}\n"));
  EXPECT_THAT(text, HasSubstr("\nquenra_self_test_passed 1\n"));
  EXPECT_THAT(text, HasSubstr("\nquenra_status_info{operation=\"open\",code=\"0\","
                              "constant=\"QUENRA_STATUS_SUCCESS\"} 1\n"
                              "quenra_status_info{operation=\"self-test\",code=\"0\","
                              "constant=\"QUENRA_STATUS_SUCCESS\"} 1\n"));
  EXPECT_EQ(library_.selfTests, 1);
}

TEST_F(Metrics, OpenMetrics_DescribesFamiliesAndEnds) {
  const std::string text = metrics();
  EXPECT_THAT(text, StartsWith("# HELP quenra_build The program"));
  EXPECT_THAT(text, HasSubstr("\n# TYPE quenra_build info\nquenra_build_info{"));
  EXPECT_THAT(text, HasSubstr("\n# TYPE quenra_routes_programmed counter\n"
                              "quenra_routes_programmed_total "));
  EXPECT_THAT(text, HasSubstr("\n# TYPE quenra_memory_module_size_bytes gauge\n"
                              "# UNIT quenra_memory_module_size_bytes bytes\n"));
  EXPECT_TRUE(text.ends_with("\n# EOF\n"));
}

TEST_F(Metrics, TextFormat_DescribesSamplesWithTypesThatItHas) {
  const std::string text = metrics({"--format", "prometheus"});
  EXPECT_THAT(text, HasSubstr("# TYPE quenra_build_info gauge\nquenra_build_info{"));
  EXPECT_THAT(text, HasSubstr("\n# TYPE quenra_routes_programmed_total counter\n"
                              "quenra_routes_programmed_total "));
  EXPECT_THAT(text, Not(HasSubstr("# UNIT")));
  EXPECT_THAT(text, Not(HasSubstr("# EOF")));
}

TEST_F(Metrics, CollectionTime_IsNow) {
  const auto seconds = [] {
    return std::chrono::duration<double>(std::chrono::system_clock::now().time_since_epoch())
        .count();
  };
  const double before = seconds();
  const std::string text = metrics();
  const std::string name = "\nquenra_last_collection_timestamp_seconds ";
  const double collected = std::stod(text.substr(text.find(name) + name.size()));
  EXPECT_GE(collected, before - 0.001);
  EXPECT_LE(collected, seconds() + 0.001);
}

TEST_F(Metrics, VersionOrder_GrowsWithTheVersion) {
  const auto orderOf = [this](const char* version) {
    library_.text(kMarten, version);
    const std::string text = metrics();
    const std::string name = "\nquenra_firmware_version_order{device=\"MARTEN\"} ";
    const size_t at = text.find(name);
    return at == std::string::npos ? 0 : std::stoull(text.substr(at + name.size()));
  };
  EXPECT_LT(orderOf("1.4.0f7"), orderOf("1.4.0f8"));
  EXPECT_LT(orderOf("1.4.0b9"), orderOf("1.4.0f1"));
  EXPECT_LT(orderOf("1.9.0f1"), orderOf("2.0.0f1"));
  EXPECT_EQ(orderOf("unknown"), 0u) << "a text that is not a version has no order";
}

TEST_F(Metrics, HostileTexts_StayInsideTheirLabel) {
  library_.text(QUENRA_ATTRIBUTE_PRODUCT_NAME, "a\"} 7\nquenra_controller_up 0\\\x1B[31m\xFF");
  const std::string text = metrics();
  EXPECT_THAT(text, HasSubstr("product=\"a\\\"} 7\\\\x0Aquenra_controller_up 0\\\\\\\\x1B[31m"
                              "\xEF\xBF\xBD\",serial_number="));
  EXPECT_THAT(text, Not(HasSubstr("\nquenra_controller_up 0")));
}

TEST_F(Metrics, ControllerThatCannotBeOpened_IsDownWithItsCode) {
  library_.openCode = QUENRA_STATUS_NO_CONTROLLER;
  const std::string text = metrics();
  EXPECT_THAT(text, HasSubstr("\nquenra_controller_up 0\n"));
  EXPECT_THAT(text, HasSubstr("\nquenra_self_test_passed 0\n"));
  EXPECT_THAT(text, HasSubstr("\nquenra_status_info{operation=\"open\",code=\"-26932\","
                              "constant=\"QUENRA_STATUS_NO_CONTROLLER\"} 1\n"));
  EXPECT_THAT(text, ContainsExpression("\nquenra_controller_open_duration_seconds 0[.][0-9]{6}\n"));
  EXPECT_THAT(text, HasSubstr("\nquenra_last_collection_timestamp_seconds "));
  EXPECT_THAT(text, HasSubstr("\nquenra_build_info{"));
  EXPECT_TRUE(text.ends_with("\n# EOF\n"));
  for (const char* absent :
       {"quenra_machine", "quenra_firmware", "quenra_memory", "quenra_self_test_duration"}) {
    EXPECT_THAT(text, Not(HasSubstr(absent)));
  }
  EXPECT_EQ(library_.selfTests, 0);
}

TEST_F(Metrics, FailedSelfTest_KeepsTheOtherMetrics) {
  library_.selfTestCode = QUENRA_STATUS_TIME_OUT;
  const std::string text = metrics();
  EXPECT_THAT(text, HasSubstr("\nquenra_controller_up 1\n"));
  EXPECT_THAT(text, HasSubstr("\nquenra_self_test_passed 0\n"));
  EXPECT_THAT(text, HasSubstr("{operation=\"self-test\",code=\"-52007\","
                              "constant=\"QUENRA_STATUS_TIME_OUT\"} 1\n"));
  EXPECT_THAT(text, HasSubstr("quenra_self_test_duration_seconds "));
}

TEST_F(Metrics, CodeOfTheDriver_HasNoConstant) {
  library_.selfTestCode = -1;
  EXPECT_THAT(metrics(),
              HasSubstr("\nquenra_status_info{operation=\"self-test\",code=\"-1\"} 1\n"));
}

TEST_F(Metrics, Warnings_AreSuccesses) {
  library_.openCode = 77;
  library_.selfTestCode = 78;
  const std::string text = metrics();
  EXPECT_THAT(text, HasSubstr("\nquenra_controller_up 1\n"));
  EXPECT_THAT(text, HasSubstr("\nquenra_self_test_passed 1\n"));
  EXPECT_THAT(text, HasSubstr("operation=\"open\",code=\"77\""));
}

TEST_F(Metrics, AbsentAttributes_HaveNoSampleAndNoFailure) {
  for (const uint32_t id :
       {uint32_t{QUENRA_ATTRIBUTE_PRODUCT_NAME}, uint32_t{QUENRA_ATTRIBUTE_FIRMWARE_UPDATE_SUPPORT},
        uint32_t{QUENRA_ATTRIBUTE_MEMORY_MODULE_COUNT}, kBios}) {
    library_.code(id, QUENRA_STATUS_NOT_SUPPORTED);
  }
  const std::string text = metrics();
  EXPECT_THAT(text, HasSubstr("quenra_machine_info{manufacturer=\"Maker\",serial_number="));
  EXPECT_THAT(text, Not(HasSubstr("quenra_firmware_update_supported")));
  EXPECT_THAT(text, Not(HasSubstr("quenra_memory")));
  EXPECT_THAT(text, Not(HasSubstr("device=\"BIOS\"")));
  EXPECT_THAT(text, Not(HasSubstr("operation=\"read")));
}

TEST_F(Metrics, FailedReads_AreStatusesBesideTheOtherMetrics) {
  library_.code(QUENRA_ATTRIBUTE_MEMORY_SIZE + 1, QUENRA_STATUS_TIME_OUT);
  library_.code(kMarten, QUENRA_STATUS_GENERIC_FAILURE);
  library_.code(QUENRA_ATTRIBUTE_SERIAL_NUMBER, QUENRA_STATUS_TIME_OUT);
  const std::string text = metrics();
  EXPECT_THAT(text, HasSubstr("{operation=\"read memory-size\",code=\"-52007\","));
  EXPECT_THAT(text, HasSubstr("{operation=\"read firmware-version\",code=\"-52003\","));
  EXPECT_THAT(text, HasSubstr("{operation=\"read serial-number\",code=\"-52007\","));
  EXPECT_THAT(text, HasSubstr("\nquenra_memory_module_size_bytes{module=\"0\"} 17179869184\n#"));
  EXPECT_THAT(text, HasSubstr("device=\"BIOS\",version=\"2.1.0f3\""));
  EXPECT_THAT(text, Not(HasSubstr("device=\"MARTEN\"")));
}

TEST_F(Metrics, SizeThatTheFieldCannotRepresent_IsLeftOut) {
  library_.number(QUENRA_ATTRIBUTE_MEMORY_SIZE, 0x7FFF);
  library_.number(QUENRA_ATTRIBUTE_MEMORY_SIZE + 1, 0xFFFF);
  const std::string text = metrics();
  EXPECT_THAT(text, HasSubstr("\nquenra_memory_modules 2\n"));
  EXPECT_THAT(text, Not(HasSubstr("quenra_memory_module_size_bytes")));
}

TEST_F(Metrics, MachineWithoutMarten_HasNoVersionOfIt) {
  library_.number(QUENRA_ATTRIBUTE_INTERFACES_PRESENT, QUENRA_SELECTOR_CONTROLLER);
  library_.code(kMarten, QUENRA_STATUS_NO_CONTROLLER);
  EXPECT_THAT(metrics(), Not(HasSubstr("MARTEN")));
}

TEST_F(Metrics, UpdateBeforeItsRestart_IsPending) {
  library_.text(kMarten, "0.0.0f0");
  EXPECT_THAT(metrics(), HasSubstr("\nquenra_firmware_restart_pending 1\n"));
}

TEST_F(Metrics, RoutesOfTheProcess_AreCounted) {
  auto& counters = nCommandLine::routeCounters();
  const uint64_t programmed = counters.programmed;
  const uint64_t demoted = counters.demoted;
  library_.text(QUENRA_ATTRIBUTE_DEVICE_PATH, "device");
  routing_.afterProgramming = [this] { routing_.demote(101); };
  run({"route", "connect", "--from", "TRIG_SMB", "--to", "PXI_Trig0", "--for", "0"});
  routing_.codes["program"] = QUENRA_STATUS_DEVICE_REMOVED;
  run({"route", "connect", "--from", "TRIG_SMB", "--to", "PXI_Trig0", "--for", "0"});
  const std::string text = metrics();
  EXPECT_THAT(
      text, HasSubstr("\nquenra_routes_programmed_total " + std::to_string(programmed + 1) + "\n"));
  EXPECT_THAT(text,
              HasSubstr("\nquenra_routes_demoted_total " + std::to_string(demoted + 1) + "\n"));
}

TEST_F(Metrics, GivenLabels_AreOnEverySample) {
  const std::string text = metrics({"--label", "rack=7", "--label", "room=a \"b\"=c"});
  size_t samples = 0;
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) {
    if (!line.starts_with('#')) {
      ++samples;
      EXPECT_THAT(line, ContainsExpression("^[a-z_]+[{]rack=\"7\",room=\"a \\\\\"b\\\\\"=c\"[,}]"));
    }
  }
  EXPECT_GT(samples, 10u);
}

TEST_F(Metrics, WrongArguments_AreRejectedBeforeTheControllerIsOpened) {
  const tWords wrong[] = {{"--label", "rack"},
                          {"--label", "=7"},
                          {"--label", "7=7"},
                          {"--label", "__name__=7"},
                          {"--label", "ra-ck=7"},
                          {"--label", "version=7"},
                          {"--label", "rack=7", "--label", "rack=8"},
                          {"--format", "xml"},
                          {"--watch", "60"},
                          {"--watch", "0", "--output", folder_.path("a.prom")},
                          {"--watch", "x", "--output", folder_.path("a.prom")}};
  for (tWords words : wrong) {
    words.insert(words.begin(), "metrics");
    const tRun result = run(words);
    EXPECT_EQ(result.exitCode, 2) << testing::PrintToString(words);
    EXPECT_THAT(result.out, IsEmpty());
  }
  EXPECT_EQ(library_.opens, 0);
  EXPECT_EQ(folder_.files(), 0u);
}

TEST_F(Metrics, Output_ReplacesTheFile) {
  const std::string path = folder_.file("a.prom", "old");
  EXPECT_THAT(metrics({"--output", path}), IsEmpty());
  EXPECT_THAT(folder_.content("a.prom"), HasSubstr("\nquenra_controller_up 1\n"));
  EXPECT_EQ(folder_.files(), 1u);
}

TEST_F(Metrics, OutputThatCannotBeWritten_IsAFailure) {
  const tRun result = run({"metrics", "--output", folder_.path("none/a.prom")});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.error, HasSubstr("a.prom': no such directory\n"));
}

TEST_F(Metrics, Document_HoldsTheTextOrThePath) {
  const auto printed = run({"metrics", "--json"}).document();
  EXPECT_THAT(memberNames(printed), testing::ElementsAre("format", "kind", "exitCode", "warnings",
                                                         "metricFormat", "path", "text", "writes"));
  EXPECT_STREQ(printed["metricFormat"].GetString(), "openmetrics");
  EXPECT_THAT(printed["text"].GetString(), HasSubstr("\nquenra_controller_up 1\n"));
  EXPECT_TRUE(printed["path"].IsNull());
  const std::string path = folder_.path("a.prom");
  const auto written = run({"metrics", "--output", path, "--json"}).document();
  EXPECT_STREQ(written["path"].GetString(), path.c_str());
  EXPECT_TRUE(written["text"].IsNull());
  EXPECT_EQ(written["writes"].GetInt(), 1);
}

// ---- --watch ----

TEST_F(Metrics, Watch_RewritesTheFileUntilTheInterruption) {
  std::vector<std::string> found;
  interruptAt(3, [&](int) { found.push_back(folder_.content("a.prom")); });
  const std::string path = folder_.path("a.prom");
  const tRun result = run({"metrics", "--output", path, "--watch", "0.01"});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_THAT(result.error, IsEmpty());
  EXPECT_EQ(result.out, "writing '" + path + "' every 0.0 s, until Ctrl-C\n");
  ASSERT_EQ(found.size(), 3u);
  EXPECT_EQ(found[0], "(none)");
  for (size_t i = 1; i < found.size(); ++i) {
    EXPECT_TRUE(found[i].ends_with("# EOF\n")) << "a reader finds a complete file at any time";
  }
  EXPECT_NE(found[1], found[2]);
  EXPECT_NE(found[2], folder_.content("a.prom"));
  EXPECT_EQ(folder_.files(), 1u);
}

TEST_F(Metrics, WatchOfAFolderThatAppearsLater_ReportsTheFailureOnceAndRecovers) {
  const std::string folder = folder_.path("later");
  interruptAt(5, [&](int collection) {
    if (collection == 4) {
      std::filesystem::create_directory(folder);
    }
  });
  const std::string path = folder + "/a.prom";
  const tRun result = run({"metrics", "--output", path, "--watch", "0.01", "--json"});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(result.error, "quenra: writing '" + path + "' every 0.0 s, until Ctrl-C\n" +
                              "quenra: cannot write '" + path + "': no such directory\n" +
                              "  Trying again until it succeeds.\n" + "quenra: '" + path +
                              "' is written again\n");
  EXPECT_EQ(result.document()["writes"].GetInt(), 2);
}

TEST_F(Metrics, WatchThatEndsWithAnOldFile_IsAFailure) {
  interruptAt(2);
  const tRun result = run({"metrics", "--output", folder_.path("none/a.prom"), "--watch", "0.01"});
  EXPECT_EQ(result.exitCode, 1);
}

TEST_F(Metrics, WatchOfAControllerThatAppearsLater_ReportsBoth) {
  library_.openCode = QUENRA_STATUS_NO_CONTROLLER;
  interruption_.isPressed = true;
  const std::string path = folder_.path("a.prom");
  run({"metrics", "--output", path, "--watch", "60"});
  EXPECT_THAT(folder_.content("a.prom"), HasSubstr("\nquenra_controller_up 0\n"));
  library_.openCode = QUENRA_STATUS_SUCCESS;
  run({"metrics", "--output", path, "--watch", "60"});
  EXPECT_THAT(folder_.content("a.prom"), HasSubstr("\nquenra_controller_up 1\n"));
}

}  // namespace
}  // namespace nTests
