#ifndef TESTS_COMPONENT_COMMANDLINE_COMMANDLINETEST_H
#define TESTS_COMPONENT_COMMANDLINE_COMMANDLINETEST_H

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <rapidjson/document.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <string>
#include <string_view>
#include <system_error>
#include <thread>
#include <vector>

#include "tests/component/commandline/scriptedupdateports.h"
#include "tests/component/commandline/tscriptedlibrary.h"
#include "tests/component/commandline/tscriptedrouting.h"
#include "tools/quenra/output/streams.h"
#include "tools/quenra/output/waiting.h"

namespace nTests {

// A user who presses Ctrl-C immediately or never.
class tScriptedInterruption final : public nCommandLine::iInterruption {
 public:
  void intercept() noexcept override { isIntercepted = true; }
  [[nodiscard]] bool hasOccurred() noexcept override {
    ++polls;
    return isIntercepted && isPressed;
  }
  // For another thread: waits until hasOccurred() was called this many times.
  void waitForPolls(int times) const {
    while (polls < times) {
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
  }

  bool isIntercepted = false;
  bool isPressed = false;
  std::atomic<int> polls = 0;
};

// The exit code and output of one run of the program.
struct tRun {
  int exitCode;
  std::string out;
  std::string error;

  // The document on the standard output; fails the test unless there is exactly one.
  [[nodiscard]] rapidjson::Document document() const;
};

class CommandLineTest : public testing::Test {
 protected:
  ~CommandLineTest() override;

  // Runs the program with these arguments, without the program's name.
  tRun run(const std::vector<std::string>& words);
  tRun runOnTerminal(const std::vector<std::string>& words);
  // Runs with an output whose every write returns the result of `write`.
  tRun runOnOutput(const std::vector<std::string>& words, std::function<std::error_code()> write);

  tScriptedLibrary library_;
  tScriptedRouting routing_;
  tScriptedFacts facts_;
  tScriptedInterruption interruption_;
  tScriptedLock lock_;

 private:
  tRun runWith(const std::vector<std::string>& words, bool terminal);
  int runOn(const std::vector<std::string>& words, nCommandLine::tStreams& streams);
};

// The words of a verb, as separate arguments.
[[nodiscard]] std::vector<std::string> wordsOf(std::string_view verb);

// The names of an object's members, in order.
[[nodiscard]] std::vector<std::string> memberNames(const rapidjson::Value& object);

// The array item whose member has this text; fails the test if no item has.
[[nodiscard]] const rapidjson::Value& itemWith(const rapidjson::Value& array, const char* member,
                                               std::string_view text);

}  // namespace nTests

#endif
