#ifndef SOURCE_USER_MACHINE_TMEMORYMODULES_H
#define SOURCE_USER_MACHINE_TMEMORYMODULES_H

#include <cstdint>
#include <vector>

#include "zoapal/protons/status/zoerrstatus.h"
#include "zosmbios/czosmbiosprovider.h"

namespace nQUENRA1400 {

// The populated memory modules of the machine, in the order of the SMBIOS table. A module's index
// is its position among the populated ones; its instance numbers its Memory Device structure among
// all, empty sockets included.
class tMemoryModules {
 public:
  // Lists the modules, in time linear in the table's size. Reports QUENRA_STATUS_NOT_SUPPORTED when the
  // table has no memory array or fewer devices than the array's count, and kMemoryFull; the list is
  // empty then.
  void find(nZOSMBIOS_1_1::cZoSmBiosProvider& provider, zoerr::Status& status) noexcept;

  [[nodiscard]] uint32_t count() const noexcept { return static_cast<uint32_t>(instances_.size()); }

  // 0 and QUENRA_STATUS_NOT_SUPPORTED when the index is not below the count.
  [[nodiscard]] uint32_t instanceOf(uint32_t index, zoerr::Status& status) const noexcept;

 private:
  void append(uint32_t instance, zoerr::Status& status) noexcept;

  std::vector<uint32_t> instances_;
};

}  // namespace nQUENRA1400

#endif
