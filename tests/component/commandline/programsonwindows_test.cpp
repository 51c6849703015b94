// Real programs: this one, started with a filter that selects one of the helpers below.
#include "tools/quenra/programs/programsonwindows.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <windows.h>

#include <array>
#include <chrono>
#include <cstdlib>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace nTests {
namespace {

using nCommandLine::iProgram;
using nCommandLine::tProgramOutput;
using std::chrono::milliseconds;
using tWords = std::vector<std::string>;

constexpr milliseconds kLongTime{20000};

// ---- The helpers ----

TEST(StartedProgram, DISABLED_EndsWithACode) {
  std::_Exit(static_cast<int>(std::strtoul(std::getenv("QUENRA_TEST_CODE"), nullptr, 0)));
}

TEST(StartedProgram, DISABLED_StaysForAMinute) {
  const std::string name = std::getenv("QUENRA_TEST_EVENT");
  SetEvent(OpenEventA(EVENT_MODIFY_STATE, FALSE, name.c_str()));
  const HANDLE stop = OpenEventA(SYNCHRONIZE, FALSE, (name + "-stop").c_str());
  WaitForSingleObject(stop == nullptr ? GetCurrentProcess() : stop, 60000);
}

// 1 if the handle of the parent is valid here.
TEST(StartedProgram, DISABLED_ReportsAHandle) {
  const auto number = std::strtoull(std::getenv("QUENRA_TEST_HANDLE"), nullptr, 10);
  DWORD flags = 0;
  std::_Exit(GetHandleInformation(reinterpret_cast<HANDLE>(number), &flags) ? 1 : 0);
}

TEST(StartedProgram, DISABLED_StartsAnotherThatStays) {
  std::string line = "\"" + std::string(std::getenv("QUENRA_TEST_PROGRAM")) +
                     "\" --gtest_also_run_disabled_tests "
                     "--gtest_filter=StartedProgram.DISABLED_StaysForAMinute";
  STARTUPINFOA startup{};
  startup.cb = sizeof startup;
  PROCESS_INFORMATION started{};
  const bool isStarted = CreateProcessA(nullptr, line.data(), nullptr, nullptr, FALSE, 0, nullptr,
                                        nullptr, &startup, &started) != FALSE;
  std::_Exit(isStarted ? 0 : 1);
}

// ---- The tests ----

class ProgramsOnWindows : public testing::Test {
 protected:
  static std::string ownPath() {
    std::array<char, MAX_PATH> path{};
    GetModuleFileNameA(nullptr, path.data(), static_cast<DWORD>(path.size()));
    return path.data();
  }
  std::unique_ptr<iProgram> start(const std::string& helper) {
    std::error_code failure;
    const tWords words{ownPath(), "--gtest_also_run_disabled_tests", "--gtest_brief=1",
                       "--gtest_filter=StartedProgram.DISABLED_" + helper};
    auto program = programs_.start(words, tProgramOutput::toErrorStream, failure);
    EXPECT_NE(program, nullptr) << failure.message();
    return program;
  }
  static void setVariable(const char* name, const std::string& value) {
    _putenv_s(name, value.c_str());
  }
  // An event that a helper sets when it runs.
  static HANDLE runningEvent(const std::string& name) {
    setVariable("QUENRA_TEST_EVENT", name);
    return CreateEventA(nullptr, TRUE, FALSE, name.c_str());
  }
  // Waits until no process has the event open, and so until the helper has ended.
  static bool isClosedSoon(const std::string& name) {
    for (int i = 0; i < 200; ++i) {
      const HANDLE event = OpenEventA(SYNCHRONIZE, FALSE, name.c_str());
      if (event == nullptr) {
        return true;
      }
      CloseHandle(event);
      std::this_thread::sleep_for(milliseconds(50));
    }
    return false;
  }

  nCommandLine::tPrograms programs_;
};

TEST_F(ProgramsOnWindows, ExitCode_HasAllItsBits) {
  for (const uint32_t code : {0U, 7U, 256U, 0xC0000005U}) {
    setVariable("QUENRA_TEST_CODE", std::to_string(code));
    const auto program = start("EndsWithACode");
    EXPECT_EQ(program->wait(kLongTime), code);
    EXPECT_EQ(program->wait(milliseconds(0)), code) << "and stays known";
  }
}

TEST_F(ProgramsOnWindows, MissingProgram_HasTheReasonOfTheSystem) {
  std::error_code failure;
  const tWords words{"no-such-program.exe"};
  EXPECT_EQ(programs_.start(words, tProgramOutput::inherited, failure), nullptr);
  EXPECT_EQ(failure, std::errc::no_such_file_or_directory);
}

TEST_F(ProgramsOnWindows, InheritableHandle_IsNotPassedOn) {
  SECURITY_ATTRIBUTES inheritable{sizeof inheritable, nullptr, TRUE};
  const HANDLE event = CreateEventA(&inheritable, TRUE, FALSE, nullptr);
  setVariable("QUENRA_TEST_HANDLE", std::to_string(reinterpret_cast<uintptr_t>(event)));
  EXPECT_EQ(start("ReportsAHandle")->wait(kLongTime), 0u);
  CloseHandle(event);
}

TEST_F(ProgramsOnWindows, Terminate_EndsTheProgram) {
  const HANDLE running = runningEvent("quenra-test-terminate");
  const auto program = start("StaysForAMinute");
  ASSERT_EQ(WaitForSingleObject(running, 20000), WAIT_OBJECT_0);
  EXPECT_EQ(program->wait(milliseconds(10)), std::nullopt);
  program->terminate();
  EXPECT_EQ(program->wait(kLongTime), 1u);
  CloseHandle(running);
}

TEST_F(ProgramsOnWindows, Terminate_EndsTheProcessesOfAProgramThatHasEnded) {
  setVariable("QUENRA_TEST_PROGRAM", ownPath());
  const HANDLE running = runningEvent("quenra-test-children");
  const auto program = start("StartsAnotherThatStays");
  ASSERT_EQ(program->wait(kLongTime), 0u);
  ASSERT_EQ(WaitForSingleObject(running, 20000), WAIT_OBJECT_0) << "the other process runs";
  program->terminate();
  CloseHandle(running);
  EXPECT_TRUE(isClosedSoon("quenra-test-children")) << "a process of the program still runs";
}

TEST_F(ProgramsOnWindows, ProcessesOfAProgramThatHasEnded_Continue) {
  setVariable("QUENRA_TEST_PROGRAM", ownPath());
  const HANDLE running = runningEvent("quenra-test-left");
  const HANDLE stop = CreateEventA(nullptr, TRUE, FALSE, "quenra-test-left-stop");
  auto program = start("StartsAnotherThatStays");
  ASSERT_EQ(program->wait(kLongTime), 0u);
  ASSERT_EQ(WaitForSingleObject(running, 20000), WAIT_OBJECT_0);
  CloseHandle(running);
  program.reset();
  std::this_thread::sleep_for(milliseconds(300));
  const HANDLE left = OpenEventA(EVENT_MODIFY_STATE, FALSE, "quenra-test-left");
  EXPECT_NE(left, nullptr);
  CloseHandle(left);
  SetEvent(stop);
  EXPECT_TRUE(isClosedSoon("quenra-test-left"));
  CloseHandle(stop);
}

TEST_F(ProgramsOnWindows, Destructor_EndsARunningProgram) {
  const HANDLE running = runningEvent("quenra-test-destructor");
  auto program = start("StaysForAMinute");
  ASSERT_EQ(WaitForSingleObject(running, 20000), WAIT_OBJECT_0);
  CloseHandle(running);
  program.reset();
  EXPECT_TRUE(isClosedSoon("quenra-test-destructor"));
}

}  // namespace
}  // namespace nTests
