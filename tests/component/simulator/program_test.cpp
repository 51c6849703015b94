#include "simulator/quenra-sim/verbs/verbs.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace nTests {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using tWords = std::vector<std::string>;

struct tRun {
  int exitCode;
  std::string out;
  std::string error;
};

tRun run(tWords words, bool isWine) {
  words.insert(words.begin(), "quenra-sim");
  std::vector<char*> arguments;
  for (std::string& word : words) {
    arguments.push_back(word.data());
  }
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  const int exitCode =
      nSimulator::runProgram(static_cast<int>(arguments.size()), arguments.data(), isWine);
  return {exitCode, testing::internal::GetCapturedStdout(), testing::internal::GetCapturedStderr()};
}

TEST(OutsideWine, EveryVerb_IsRejected) {
  for (const tWords& words :
       {tWords{"install"}, tWords{"uninstall"}, tWords{"reset"}, tWords{"driver-store", "missing"},
        tWords{"encryption", "on"}, tWords{"status"}, tWords{"scenario", "--martens", "0"}}) {
    const tRun result = run(words, false);
    EXPECT_EQ(result.exitCode, 1) << words.front();
    EXPECT_THAT(result.out, IsEmpty());
    EXPECT_EQ(result.error,
              "quenra-sim: the simulated machine runs under Wine only: on Windows it would replace "
              "parts of the system\n");
  }
}

TEST(OutsideWine, Help_IsPrinted) {
  const tRun result = run({"--help"}, false);
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_THAT(result.out, HasSubstr("install"));
}

TEST(Usage, InvalidWord_IsReported) {
  const std::pair<tWords, const char*> cases[] = {
      {{"foo"}, "quenra-sim: unknown subcommand 'foo'; run 'quenra-sim --help' for help\n"},
      {{}, "quenra-sim: a subcommand is missing; run 'quenra-sim --help' for help\n"},
      {{"attribute", "foo"},
       "quenra-sim: unknown subcommand 'foo'; run 'quenra-sim attribute --help' for help\n"},
      {{"status", "--jsn"},
       "quenra-sim: unknown option '--jsn'; run 'quenra-sim status --help' for help\n"},
      {{"status", "now"},
       "quenra-sim: unexpected argument 'now'; run 'quenra-sim status --help' for help\n"},
      {{"demote"}, "quenra-sim: ticket is missing; run 'quenra-sim demote --help' for help\n"},
      {{"attribute", "remove", "foo", "1"},
       "quenra-sim: 'foo' is not an interface: use controller or marten; run 'quenra-sim attribute "
       "remove --help' for help\n"},
      {{"answer", "add", "marten", "foo"},
       "quenra-sim: 'foo' is not a request: use get-attribute, set-attribute, exchange-values, "
       "send-command, pending-request, pending-request-wide, end-pending or any; run 'quenra-sim "
       "answer add --help' for help\n"},
      {{"scenario", "--martens", "3"},
       "quenra-sim: 3 is out of range (0 to 2); run 'quenra-sim scenario --help' for help\n"},
      {{"scenario", "--martens", "many"},
       "quenra-sim: 'many' is not an integer (0 to 2); run 'quenra-sim scenario --help' for "
       "help\n"},
  };
  for (const auto& [words, message] : cases) {
    const tRun result = run(words, true);
    EXPECT_EQ(result.exitCode, 2) << message;
    EXPECT_THAT(result.out, IsEmpty());
    EXPECT_EQ(result.error, message);
  }
}

TEST(Usage, WordWithControlCharacters_IsReportedPrintably) {
  EXPECT_THAT(run({"\x1B[31m\xE2\x80\xAE"}, true).error, HasSubstr("'\\x1B[31m\\u202E'"));
}

}  // namespace
}  // namespace nTests
