// The command line in a test: its output, its files, and doubles of the machine.
#ifndef TESTS_COMPONENT_COMMANDLINE_COMMANDLINETEST_H
#define TESTS_COMPONENT_COMMANDLINE_COMMANDLINETEST_H

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <rapidjson/document.h>

#include <atomic>
#include <chrono>
#include <deque>
#include <filesystem>
#include <functional>
#include <memory>
#include <regex>
#include <span>
#include <string>
#include <string_view>
#include <system_error>
#include <thread>
#include <vector>

#include "quenra_version.h"
#include "tests/builders/ttemporaryfolder.h"
#include "tests/component/capture/recordedmachine.h"
#include "tests/component/commandline/tscriptedlibrary.h"
#include "tests/component/commandline/tscriptedrouting.h"
#include "tools/quenra/output/streams.h"
#include "tools/quenra/programs/programs.h"
#include "tools/quenra/update/updateports.h"

namespace nTests {

// A machine that accepts updates, unless a test changes it.
class tScriptedFacts final : public nCommandLine::iUpdateFacts {
 public:
  [[nodiscard]] nCommandLine::tDriveProtection driveProtection() noexcept override {
    return protection;
  }
  [[nodiscard]] nCommandLine::tDriverStoreTool driverStoreTool() override { return tool; }
  [[nodiscard]] std::string temporaryFolder() override { return temporary; }
  [[nodiscard]] std::error_code temporaryFolderFailure() override { return temporaryFailure; }

  nCommandLine::tDriveProtection protection;
  nCommandLine::tDriverStoreTool tool;
  std::string temporary = "C:\\Temp";
  std::error_code temporaryFailure;
};

// A lock that no other update holds, unless a test scripts its states.
class tScriptedLock final : public nCommandLine::iUpdateLock {
 public:
  [[nodiscard]] nCommandLine::tLockState acquire(
      std::chrono::milliseconds /*timeout*/) noexcept override {
    using nCommandLine::tLockState;
    tLockState state = tLockState::acquired;
    if (!states.empty()) {
      state = states.front();
      states.pop_front();
    }
    held += state == tLockState::acquired || state == tLockState::abandoned ? 1 : 0;
    return state;
  }
  [[nodiscard]] std::error_code failure() const noexcept override {
    return std::make_error_code(std::errc::permission_denied);
  }
  void release() noexcept override { --held; }

  std::deque<nCommandLine::tLockState> states;  // results of the next calls; acquired after them
  int held = 0;
};

// The installed library and the account; an administrator with the matching library.
class tScriptedInstallation final : public nCommandLine::iInstallation {
 public:
  [[nodiscard]] std::string libraryVersion() override { return version; }
  [[nodiscard]] bool isAdministrator() noexcept override { return isElevated; }

  std::string version = QUENRA_VERSION;
  bool isElevated = true;
};

// Programs that end by themselves with the first poll, unless a test changes it.
class tScriptedPrograms final : public nCommandLine::iPrograms {
 public:
  [[nodiscard]] std::unique_ptr<nCommandLine::iProgram> start(std::span<const std::string> words,
                                                              nCommandLine::tProgramOutput output,
                                                              std::error_code& failure) override;

  std::error_code startFailure;
  uint32_t exitCode = 0;
  int polls = 1;                  // until the program ends by itself
  bool endsOnRequest = true;      // with the next poll
  bool acceptsRequests = true;    // the system can send Ctrl-Break
  std::function<void()> onStart;  // runs when the program has been started
  std::vector<std::string> words;
  nCommandLine::tProgramOutput output = nCommandLine::tProgramOutput::inherited;
  // "start", "request", "terminate", "end" for the first poll with an exit code, "release".
  std::vector<std::string> calls;
};

// The files of a test, in a temporary folder of their own.
class tTestFiles {
 public:
  // The path of a file in the folder, as a user types it.
  [[nodiscard]] std::string path(std::string_view name) const;
  // The same; also writes the file.
  std::string file(std::string_view name, std::string_view content) const;
  // The content of a file; "(none)" if it does not exist.
  [[nodiscard]] std::string content(std::string_view name) const;
  // The number of files.
  [[nodiscard]] size_t files() const;

 private:
  [[nodiscard]] std::filesystem::path pathOf(std::string_view name) const;

  tTemporaryFolder folder_;
};

// A user who presses Ctrl-C immediately or never.
class tScriptedInterruption final : public nCommandLine::iInterruption {
 public:
  void intercept() noexcept override { isIntercepted = true; }
  [[nodiscard]] bool hasOccurred() noexcept override {
    ++polls;
    return isIntercepted && isPressed;
  }
  void rearm() noexcept override { isPressed = furtherPresses-- > 0; }
  // For another thread: waits until hasOccurred() was called this many times.
  void waitForPolls(int times) const {
    while (polls < times) {
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
  }

  bool isIntercepted = false;
  bool isPressed = false;
  int furtherPresses = 0;  // after the first one was answered
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
  tScriptedInstallation installation_;
  nCapture::tMachineRecord machine_ = referenceMachine();  // the machine below the library
  tRecordDriver driver_{machine_};
  tScriptedPrograms programs_;

 private:
  tRun runWith(const std::vector<std::string>& words, bool terminal);
  int runOn(const std::vector<std::string>& words, nCommandLine::tStreams& streams);
};

// The words of a verb, as separate arguments.
[[nodiscard]] std::vector<std::string> wordsOf(std::string_view verb);

// The text contains a match of the regular expression. Those of GoogleTest's ContainsRegex have no brackets on
// Windows.
MATCHER_P(ContainsExpression, expression, std::string("contains ") + expression) {
  return std::regex_search(std::string(arg), std::regex(expression));
}

// The names of an object's members, in order.
[[nodiscard]] std::vector<std::string> memberNames(const rapidjson::Value& object);

// The array item whose member has this text; fails the test if no item has.
[[nodiscard]] const rapidjson::Value& itemWith(const rapidjson::Value& array, const char* member,
                                               std::string_view text);

}  // namespace nTests

#endif
