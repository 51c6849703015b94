#ifndef ZOSMBIOS_CZOSMBIOSWINDOWSPROVIDER_H
#define ZOSMBIOS_CZOSMBIOSWINDOWSPROVIDER_H

#include "zosmbios/czosmbiosprovider.h"

namespace nQUENRA1400::nZOSMBIOS_1_1 {

// Loads the table from the firmware-table service of the operating system.
class cZoSmBiosWindowsProvider final : public cZoSmBiosProvider {
 public:
  constexpr cZoSmBiosWindowsProvider() noexcept = default;

  // Reports kNoTable when the service returns no table, a table of another size than it announced, or
  // fewer bytes than the table's header says, and stores the system's error as lastOsError. Reports
  // kMemoryFull when memory is short.
  void load(nZOAPALS100::tStatus& status) noexcept override;
};

}  // namespace nQUENRA1400::nZOSMBIOS_1_1

#endif
