#include "simulator/quenra-sim/installation/installation.h"

#include <windows.h>

#include <array>
#include <fstream>
#include <optional>
#include <string>

namespace nSimulator {
namespace {

// The key in which COM looks up the server of the service's locator.
constexpr const char* kServer =
    "Software\\Classes\\CLSID\\{4590F811-1D3A-11D0-891F-00AA004B2E24}\\InprocServer32";
// The default value of the key is the server; the other value saves the server of the system.
constexpr const char* kCurrentServer = "";
constexpr const char* kReplacedServer = "QuenraSimulatorReplaced";

std::optional<std::string> registeredServer(const char* name) {
  std::array<char, MAX_PATH> text{};
  auto size = static_cast<DWORD>(text.size());
  // Unexpanded, so that it can be restored unchanged.
  const DWORD types = RRF_RT_REG_SZ | RRF_RT_REG_EXPAND_SZ | RRF_NOEXPAND;
  if (RegGetValueA(HKEY_LOCAL_MACHINE, kServer, name, types, nullptr, text.data(), &size) !=
      ERROR_SUCCESS) {
    return std::nullopt;
  }
  return text.data();
}

void registerServer(const char* name, const std::string& text) {
  const LSTATUS result = RegSetKeyValueA(HKEY_LOCAL_MACHINE, kServer, name, REG_EXPAND_SZ,
                                         text.c_str(), static_cast<DWORD>(text.size() + 1));
  SetLastError(static_cast<DWORD>(result));
  require(result == ERROR_SUCCESS, "the management service cannot be registered");
}

// The library uses this fixed path, whatever the system folder is.
constexpr const char* kFolder = "C:\\Windows\\Sysnative";
constexpr const char* kTool = "C:\\Windows\\Sysnative\\pnputil.exe";

bool exists() {
  return GetFileAttributesA(kTool) != INVALID_FILE_ATTRIBUTES;
}

bool isInUse(DWORD error) {
  return error == ERROR_SHARING_VIOLATION || error == ERROR_ACCESS_DENIED;
}

// Waits for a running tool. The system still locks the file for a moment after the tool has ended.
void removeTool() {
  constexpr ULONGLONG kTimeoutMilliseconds = 10000;
  constexpr DWORD kPauseMilliseconds = 20;
  const ULONGLONG end = GetTickCount64() + kTimeoutMilliseconds;
  bool removed = DeleteFileA(kTool) || !exists();
  while (!removed && isInUse(GetLastError()) && GetTickCount64() < end) {
    Sleep(kPauseMilliseconds);
    removed = DeleteFileA(kTool) || !exists();
  }
  require(removed, std::string(kTool) + " cannot be removed");
}

void writeBrokenTool() {
  std::ofstream file(kTool, std::ios::binary);
  file << "This file is not a program.\n";
  file.close();
  require(file.good(), std::string(kTool) + " cannot be written");
}

}  // namespace

void installManagementService() {
  if (!registeredServer(kReplacedServer)) {
    registerServer(kReplacedServer, registeredServer(kCurrentServer).value_or(""));
  }
  registerServer(kCurrentServer, ownFolder() + "quenrasimmanagement.dll");
}

void removeManagementService() {
  if (const auto replacedServer = registeredServer(kReplacedServer)) {
    registerServer(kCurrentServer, *replacedServer);
    RegDeleteKeyValueA(HKEY_LOCAL_MACHINE, kServer, kReplacedServer);
  }
}

void installDriverStoreTool(tDriverStoreTool state) {
  CreateDirectoryA(kFolder, nullptr);
  removeTool();
  if (state == tDriverStoreTool::broken) {
    writeBrokenTool();
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
