// Starts a program in which an assertion fails, with and without this process as its debugger.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <windows.h>

#include <string>
#include <vector>

namespace nTests {
namespace {

struct tDebuggedProcess {
  std::vector<std::string> texts;  // to the debugger output
  int breakpoints = 0;             // after the one with which the system starts a debugged process
  DWORD exitCode = 0;
};

std::string programBesideThisOne(const std::string& name) {
  char path[MAX_PATH] = {};
  GetModuleFileNameA(nullptr, path, sizeof path);
  const std::string own(path);
  return own.substr(0, own.find_last_of('\\') + 1) + name;
}

std::string textOf(HANDLE process, const OUTPUT_DEBUG_STRING_INFO& info) {
  std::string text(info.nDebugStringLength, '\0');
  SIZE_T read = 0;
  ReadProcessMemory(process, info.lpDebugStringData, text.data(), text.size(), &read);
  text.resize(text.find('\0') == std::string::npos ? read : text.find('\0'));
  return text;
}

// The debugger's reply to the breakpoint at which the program stops.
enum class tBreakpoint {
  passToProgram,
  resume
};

class tDebugger {
 public:
  explicit tDebugger(tBreakpoint breakpoint) : breakpoint_(breakpoint) {}

  tDebuggedProcess run(std::string program) {
    STARTUPINFOA startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION process{};
    if (!CreateProcessA(nullptr, program.data(), nullptr, nullptr, FALSE, DEBUG_ONLY_THIS_PROCESS,
                        nullptr, nullptr, &startup, &process)) {
      ADD_FAILURE() << program << " does not start: " << GetLastError();
      return seen_;
    }
    process_ = process.hProcess;
    DEBUG_EVENT event{};
    do {
      if (!WaitForDebugEvent(&event, 20000)) {
        ADD_FAILURE() << "the program does not end";
        TerminateProcess(process_, 1);
        break;
      }
      ContinueDebugEvent(event.dwProcessId, event.dwThreadId, replyTo(event));
    } while (event.dwDebugEventCode != EXIT_PROCESS_DEBUG_EVENT);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    return seen_;
  }

 private:
  DWORD replyTo(const DEBUG_EVENT& event) {
    switch (event.dwDebugEventCode) {
      case OUTPUT_DEBUG_STRING_EVENT:
        seen_.texts.push_back(textOf(process_, event.u.DebugString));
        return DBG_CONTINUE;
      case EXCEPTION_DEBUG_EVENT:
        return replyTo(event.u.Exception);
      case EXIT_PROCESS_DEBUG_EVENT:
        seen_.exitCode = event.u.ExitProcess.dwExitCode;
        return DBG_CONTINUE;
      default:
        return DBG_CONTINUE;
    }
  }

  DWORD replyTo(const EXCEPTION_DEBUG_INFO& exception) {
    if (exception.ExceptionRecord.ExceptionCode != static_cast<DWORD>(EXCEPTION_BREAKPOINT)) {
      return static_cast<DWORD>(DBG_EXCEPTION_NOT_HANDLED);
    }
    if (!started_) {
      started_ = true;
      return DBG_CONTINUE;
    }
    ++seen_.breakpoints;
    return breakpoint_ == tBreakpoint::resume ? DBG_CONTINUE
                                              : static_cast<DWORD>(DBG_EXCEPTION_NOT_HANDLED);
  }

  tBreakpoint breakpoint_;
  HANDLE process_ = nullptr;
  bool started_ = false;
  tDebuggedProcess seen_;
};

void expectStopped(const tDebuggedProcess& process) {
  EXPECT_THAT(process.texts, testing::ElementsAre("[quenra|tArray|64] !!ASSERT!!\n"));
  EXPECT_GE(process.breakpoints, 1);
  EXPECT_EQ(process.exitCode, static_cast<DWORD>(STATUS_BREAKPOINT));
}

TEST(Assertion, FailedUnderDebugger_PrintsItsLineAndStopsAtBreakpoint) {
  expectStopped(
      tDebugger(tBreakpoint::passToProgram).run(programBesideThisOne("failed_assertion.exe")));
}

TEST(Assertion, FailedUnderDebuggerThatResumes_EndsWithStatusBreakpoint) {
  expectStopped(tDebugger(tBreakpoint::resume).run(programBesideThisOne("failed_assertion.exe")));
}

struct tFinishedProcess {
  std::string output;
  DWORD exitCode = 0;
};

// Runs a program without a debugger and waits for its end.
tFinishedProcess runToEnd(std::string commandLine) {
  constexpr DWORD kTimeoutMilliseconds = 20000;
  SECURITY_ATTRIBUTES inheritable{sizeof inheritable, nullptr, TRUE};
  HANDLE read = nullptr;
  HANDLE write = nullptr;
  CreatePipe(&read, &write, &inheritable, 0);
  STARTUPINFOA startup{};
  startup.cb = sizeof startup;
  startup.dwFlags = STARTF_USESTDHANDLES;
  startup.hStdOutput = write;
  startup.hStdError = write;
  PROCESS_INFORMATION process{};
  tFinishedProcess finished;
  if (!CreateProcessA(nullptr, commandLine.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr,
                      &startup, &process)) {
    ADD_FAILURE() << commandLine << " does not start: " << GetLastError();
  } else {
    if (WaitForSingleObject(process.hProcess, kTimeoutMilliseconds) != WAIT_OBJECT_0) {
      ADD_FAILURE() << "the program does not end";
      TerminateProcess(process.hProcess, 1);
    }
    GetExitCodeProcess(process.hProcess, &finished.exitCode);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
  }
  CloseHandle(write);
  char buffer[512] = {};
  DWORD size = 0;
  while (ReadFile(read, buffer, sizeof buffer, &size, nullptr) && size != 0) {
    finished.output.append(buffer, size);
  }
  CloseHandle(read);
  return finished;
}

class AssertionInClient : public testing::TestWithParam<const char*> {};

TEST_P(AssertionInClient, FailedWithoutDebugger_EndsTheProcessPastEveryExceptionHandler) {
  const tFinishedProcess process =
      runToEnd(programBesideThisOne("failed_assertion.exe") + " " + GetParam());
  EXPECT_EQ(process.output, "");
  EXPECT_EQ(process.exitCode, static_cast<DWORD>(STATUS_BREAKPOINT));
}

INSTANTIATE_TEST_SUITE_P(Handlers, AssertionInClient,
                         testing::Values("none", "vectored", "filter", "frame"),
                         [](const auto& handler) { return std::string(handler.param); });

}  // namespace
}  // namespace nTests
