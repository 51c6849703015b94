#ifndef ZOSMBIOS_LOCATION_H
#define ZOSMBIOS_LOCATION_H

#include "zoapal/protons/status/tstatus.h"

namespace nQUENRA1400::nZOSMBIOS_1_1 {

// Locations in the provider and in its Windows loader.
[[nodiscard]] constexpr nZOAPALS100::tSourceLocation providerLocation(uint32_t line) noexcept {
  return {"dep_mirror\\deps\\zosmbios\\includes\\czosmbiosprovider", line};
}
[[nodiscard]] constexpr nZOAPALS100::tSourceLocation windowsProviderLocation(
    uint32_t line) noexcept {
  return {"dep_mirror\\deps\\zosmbios\\includes\\czosmbioswindowsprovider", line};
}

}  // namespace nQUENRA1400::nZOSMBIOS_1_1

#endif
