#include "tools/quenra/interruption/tconsoleinterruption.h"

#include <windows.h>

#include <atomic>

namespace nCommandLine {
namespace {

std::atomic<bool> hasComeYet{false};

// Runs on a thread of the system. Windows ends the process when this returns from a close event.
BOOL WINAPI take(DWORD event) {
  hasComeYet = true;
  if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT) {
    Sleep(INFINITE);
  }
  return TRUE;
}

}  // namespace

void tConsoleInterruption::await() noexcept {
  SetConsoleCtrlHandler(take, TRUE);
}

bool tConsoleInterruption::hasCome() noexcept {
  return hasComeYet;
}

}  // namespace nCommandLine
