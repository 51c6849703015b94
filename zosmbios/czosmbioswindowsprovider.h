#ifndef ZOSMBIOS_CZOSMBIOSWINDOWSPROVIDER_H
#define ZOSMBIOS_CZOSMBIOSWINDOWSPROVIDER_H

#include "zosmbios/czosmbiosprovider.h"

namespace nQUENRA1400::nZOSMBIOS_1_1 {

// The provider whose own table comes from the firmware-table service of the operating system.
class cZoSmBiosWindowsProvider final : public cZoSmBiosProvider {
 public:
  constexpr cZoSmBiosWindowsProvider() noexcept = default;

  // kNoTable when the service gives no table, one of another size than it said, or one that does
  // not hold what its header promises; kMemoryFull. The system's error is kept as lastOsError.
  void load(nZOAPALS100::tStatus& status) noexcept override;
};

}  // namespace nQUENRA1400::nZOSMBIOS_1_1

#endif
