#include "source/user/update/driverpackage.h"

#include <windows.h>

#include "source/user/failuresites.h"
#include "zoapal/protons/handles/windowsu/tuniquehandle.h"

namespace nQUENRA1400 {
namespace {

// Null is the invalid handle of a process and of its thread, as of an event.
using tUniqueProcess = nZOAPAL000::tUniqueHandle<nZOAPAL000::tObjectPolicy>;
using tUniqueThread = tUniqueProcess;

constexpr DWORD kTimeoutMilliseconds = 300000;

bool toolExists() noexcept {
  const DWORD attributes = GetFileAttributesA(kDriverStoreTool);
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
}

// Returns the tool's process; an empty handle if it cannot be started. The system may write to the command
// line.
tUniqueProcess startTool(std::string commandLine) noexcept {
  STARTUPINFOA startup{};
  startup.cb = sizeof startup;
  PROCESS_INFORMATION started{};
  if (!CreateProcessA(kDriverStoreTool, commandLine.data(), nullptr, nullptr, TRUE,
                      CREATE_NO_WINDOW, nullptr, nullptr, &startup, &started)) {
    return {};
  }
  const tUniqueThread thread(started.hThread);
  return tUniqueProcess(started.hProcess);
}

}  // namespace

void installDriverPackage(const std::string& infPath, zoerr::Status& status) {
  if (status.isError()) {
    return;
  }
  // The path is not quoted, even if it has blanks.
  std::string commandLine = " /add-driver " + infPath + " /install";
  if (!toolExists()) {
    report(nUpdateSites::kToolMissing, status);
    return;
  }
  const tUniqueProcess tool = startTool(std::move(commandLine));
  if (!tool) {
    report(nUpdateSites::kToolNotStarted, status);
    return;
  }
  WaitForSingleObject(tool.get(), kTimeoutMilliseconds);
}

}  // namespace nQUENRA1400
