#include "simulator/quenra-sim/installation/driverstoretool.h"

#include <windows.h>

#include <fstream>
#include <string>

#include "simulator/quenra-sim/installation/ownfolder.h"
#include "simulator/quenra-sim/installation/windowserror.h"

namespace nSimulator {
namespace {

// The library uses this fixed path, whatever the system folder is.
constexpr const char* kFolder = "C:\\Windows\\Sysnative";
constexpr const char* kTool = "C:\\Windows\\Sysnative\\pnputil.exe";
constexpr const char* kNoProgram = "This file is no program.\n";

bool isThere() {
  return GetFileAttributesA(kTool) != INVALID_FILE_ATTRIBUTES;
}

bool isInUse(DWORD error) {
  return error == ERROR_SHARING_VIOLATION || error == ERROR_ACCESS_DENIED;
}

// Waits for a running tool. The system still locks the file for a moment after the tool has ended.
void remove() {
  constexpr ULONGLONG kPatienceMilliseconds = 10000;
  constexpr DWORD kPauseMilliseconds = 20;
  const ULONGLONG end = GetTickCount64() + kPatienceMilliseconds;
  bool removed = DeleteFileA(kTool) || !isThere();
  while (!removed && isInUse(GetLastError()) && GetTickCount64() < end) {
    Sleep(kPauseMilliseconds);
    removed = DeleteFileA(kTool) || !isThere();
  }
  require(removed, std::string(kTool) + " cannot be removed");
}

void writeNoProgram() {
  std::ofstream file(kTool, std::ios::binary);
  file << kNoProgram;
  file.close();
  require(file.good(), std::string(kTool) + " cannot be written");
}

}  // namespace

void putDriverStoreTool(tDriverStoreTool state) {
  CreateDirectoryA(kFolder, nullptr);
  remove();
  if (state == tDriverStoreTool::broken) {
    writeNoProgram();
  } else if (state == tDriverStoreTool::working) {
    const std::string own = ownFolder() + "quenrasimpnputil.exe";
    require(CopyFileA(own.c_str(), kTool, FALSE), own + " cannot be copied to " + kTool);
  }
}

tDriverStoreTool driverStoreTool() {
  std::ifstream file(kTool, std::ios::binary);
  std::string start(2, '\0');
  if (!file.read(start.data(), 2)) {
    return tDriverStoreTool::missing;
  }
  return start == "MZ" ? tDriverStoreTool::working : tDriverStoreTool::broken;
}

}  // namespace nSimulator
