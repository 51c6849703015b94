#include "tests/load/workerprocess.h"

#include <array>
#include <system_error>

namespace nTests {

tWorkerProcess::tWorkerProcess(const std::string& arguments) {
  std::array<char, MAX_PATH> program{};
  GetModuleFileNameA(nullptr, program.data(), program.size());
  std::string commandLine = '"' + std::string(program.data()) + "\" " + arguments;
  STARTUPINFOA startup{};
  startup.cb = sizeof startup;
  if (!CreateProcessA(program.data(), commandLine.data(), nullptr, nullptr, TRUE, 0, nullptr,
                      nullptr, &startup, &process_)) {
    throw std::system_error(static_cast<int>(GetLastError()), std::system_category(), commandLine);
  }
}

tWorkerProcess::~tWorkerProcess() {
  if (!hasEnded()) {
    kill();
  }
  CloseHandle(process_.hThread);
  CloseHandle(process_.hProcess);
}

void tWorkerProcess::kill() {
  constexpr UINT kKilled = 9;
  TerminateProcess(process_.hProcess, kKilled);
  WaitForSingleObject(process_.hProcess, INFINITE);
}

bool tWorkerProcess::hasEnded() const {
  return WaitForSingleObject(process_.hProcess, 0) == WAIT_OBJECT_0;
}

DWORD tWorkerProcess::exitCode() const {
  DWORD code = 0;
  GetExitCodeProcess(process_.hProcess, &code);
  return code;
}

}  // namespace nTests
