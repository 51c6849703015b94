#ifndef SIMULATOR_MANAGEMENTSERVICE_MANAGEMENTOBJECTS_H
#define SIMULATOR_MANAGEMENTSERVICE_MANAGEMENTOBJECTS_H

#include <windows.h>
// Requires windows.h.
#include <wbemcli.h>

#include <memory>

#include "simulator/managementservice/imanagementscenario.h"

namespace nSimulator {

inline constexpr CLSID kManagementLocatorClass = {
    0x4590F811, 0x1D3A, 0x11D0, {0x89, 0x1F, 0x00, 0xAA, 0x00, 0x4B, 0x2E, 0x24}};

// Creates the locator of the management service, which knows the namespace of the volume encryption
// and one query, for the protection of drive C:. The caller owns the reference. Returns null, with
// the error in `result`, if the scenario fails the step or memory is short.
[[nodiscard]] IWbemLocator* makeLocator(const std::shared_ptr<iManagementScenario>& scenario,
                                        HRESULT& result) noexcept;

}  // namespace nSimulator

#endif
