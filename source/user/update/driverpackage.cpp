#include "source/user/update/driverpackage.h"

#include <windows.h>

#include "source/user/location.h"
#include "source/user/statuscodes.h"
#include "zoapal/protons/handles/windowsu/tuniquehandle.h"

namespace nQUENRA1400 {
namespace {

// A process and its thread are handles of the same kind as an event: null stands for none.
using tUniqueProcess = nZOAPAL000::tUniqueHandle<nZOAPAL000::tObjectPolicy>;
using tUniqueThread = tUniqueProcess;

constexpr auto kToolMissing = sessionLocation(2331);
constexpr auto kToolNotStarted = sessionLocation(2359);

constexpr DWORD kPatienceMilliseconds = 300000;

bool isToolThere() noexcept {
  const DWORD attributes = GetFileAttributesA(kDriverStoreTool);
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
}

// The tool's process, or none. The system may write to the command line.
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
  // The path goes in as it is, blanks and all.
  std::string commandLine = " /add-driver " + infPath + " /install";
  if (!isToolThere()) {
    status.set(kUpdateEnvironment, kToolMissing);
    return;
  }
  const tUniqueProcess tool = startTool(std::move(commandLine));
  if (!tool) {
    status.set(kInvalidImage, kToolNotStarted);
    return;
  }
  WaitForSingleObject(tool.get(), kPatienceMilliseconds);
}

}  // namespace nQUENRA1400
