#ifndef SIMULATOR_MANAGEMENTSERVICE_MANAGEMENTOBJECTS_H
#define SIMULATOR_MANAGEMENTSERVICE_MANAGEMENTOBJECTS_H

#include <windows.h>
// Needs windows.h first.
#include <wbemcli.h>

#include <memory>

#include "simulator/managementservice/imanagementscenario.h"

namespace nSimulator {

inline constexpr CLSID kManagementLocatorClass = {
    0x4590F811, 0x1D3A, 0x11D0, {0x89, 0x1F, 0x00, 0xAA, 0x00, 0x4B, 0x2E, 0x24}};

// The management service from its locator on. It knows the namespace of the volume encryption and
// one query, for the protection of drive C:. The reference is the caller's. Null, with the error in
// `result`, when the scenario refuses or memory is short.
[[nodiscard]] IWbemLocator* makeLocator(const std::shared_ptr<iManagementScenario>& scenario,
                                        HRESULT& result) noexcept;

}  // namespace nSimulator

#endif
