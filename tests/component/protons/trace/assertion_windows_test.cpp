// Stands in for a debugger, from which a failed assertion is to be seen.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <windows.h>

#include <string>
#include <vector>

namespace nTests {
namespace {

struct tDebuggedProcess {
  std::vector<std::string> texts;  // to the debugger output
  int breakpoints = 0;             // behind the one with which the system starts a debugged process
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

// How the debugger treats the breakpoint at which the program stops.
enum class tBreakpoint {
  leaveToTheProgram,
  goOn
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
        ADD_FAILURE() << "the program neither stops nor ends";
        TerminateProcess(process_, 1);
        break;
      }
      ContinueDebugEvent(event.dwProcessId, event.dwThreadId, answerTo(event));
    } while (event.dwDebugEventCode != EXIT_PROCESS_DEBUG_EVENT);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    return seen_;
  }

 private:
  DWORD answerTo(const DEBUG_EVENT& event) {
    switch (event.dwDebugEventCode) {
      case OUTPUT_DEBUG_STRING_EVENT:
        seen_.texts.push_back(textOf(process_, event.u.DebugString));
        return DBG_CONTINUE;
      case EXCEPTION_DEBUG_EVENT:
        return answerTo(event.u.Exception);
      case EXIT_PROCESS_DEBUG_EVENT:
        seen_.exitCode = event.u.ExitProcess.dwExitCode;
        return DBG_CONTINUE;
      default:
        return DBG_CONTINUE;
    }
  }

  DWORD answerTo(const EXCEPTION_DEBUG_INFO& exception) {
    if (exception.ExceptionRecord.ExceptionCode != static_cast<DWORD>(EXCEPTION_BREAKPOINT)) {
      return static_cast<DWORD>(DBG_EXCEPTION_NOT_HANDLED);
    }
    if (!started_) {
      started_ = true;
      return DBG_CONTINUE;
    }
    ++seen_.breakpoints;
    return breakpoint_ == tBreakpoint::goOn ? DBG_CONTINUE
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

TEST(Assertion, Failed_PrintsItsLineAndStopsAtABreakpoint) {
  expectStopped(
      tDebugger(tBreakpoint::leaveToTheProgram).run(programBesideThisOne("failed_assertion.exe")));
}

TEST(Assertion, FailedUnderADebuggerThatGoesOn_EndsAllTheSame) {
  expectStopped(tDebugger(tBreakpoint::goOn).run(programBesideThisOne("failed_assertion.exe")));
}

}  // namespace
}  // namespace nTests
