#include "simulator/quenra-sim/installation/managementservice.h"

#include <windows.h>

#include <array>
#include <optional>
#include <string>

#include "simulator/quenra-sim/installation/ownfolder.h"
#include "simulator/quenra-sim/installation/windowserror.h"

namespace nSimulator {
namespace {

// The key in which COM looks up the server of the service's locator.
constexpr const char* kServer =
    "Software\\Classes\\CLSID\\{4590F811-1D3A-11D0-891F-00AA004B2E24}\\InprocServer32";
// The key's default value is the server; the second value saves the system's server.
constexpr const char* kDefault = "";
constexpr const char* kSystemsOwn = "QuenraSimulatorReplaced";

std::optional<std::string> value(const char* name) {
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

void setValue(const char* name, const std::string& text) {
  const LSTATUS result = RegSetKeyValueA(HKEY_LOCAL_MACHINE, kServer, name, REG_EXPAND_SZ,
                                         text.c_str(), static_cast<DWORD>(text.size() + 1));
  SetLastError(static_cast<DWORD>(result));
  require(result == ERROR_SUCCESS, "the management service cannot be registered");
}

}  // namespace

void installManagementService() {
  if (!value(kSystemsOwn)) {
    setValue(kSystemsOwn, value(kDefault).value_or(""));
  }
  setValue(kDefault, ownFolder() + "quenrasimmanagement.dll");
}

void removeManagementService() {
  if (const auto systemsOwn = value(kSystemsOwn)) {
    setValue(kDefault, *systemsOwn);
    RegDeleteKeyValueA(HKEY_LOCAL_MACHINE, kServer, kSystemsOwn);
  }
}

}  // namespace nSimulator
