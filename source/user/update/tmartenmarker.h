#ifndef SOURCE_USER_UPDATE_TMARTENMARKER_H
#define SOURCE_USER_UPDATE_TMARTENMARKER_H

#include <optional>
#include <string>

#include "codegen/apalcodegen/iinterfaceproxy_hostmarten.h"
#include "zoapal/protons/status/zoerrstatus.h"

namespace nQUENRA1400 {

// The Marten's version marker. While an update runs it says that no version is complete; unless the
// update keeps it so, it gets its text back when the object ends, whatever the reason.
class tMartenMarker {
 public:
  // Without a Marten interface there is no marker, and nothing is done.
  explicit tMartenMarker(nZOAPAL000::iInterfaceProxy_hostMarten* marten) noexcept
      : marten_(marten) {}
  tMartenMarker(const tMartenMarker&) = delete;
  tMartenMarker& operator=(const tMartenMarker&) = delete;
  ~tMartenMarker();

  // Saves the text and overwrites it. Nothing is saved, and nothing will be given back, when it cannot
  // be read: the status tells. Throws std::bad_alloc.
  void overwrite(zoerr::Status& status);
  // The update is done.
  void keep() noexcept { saved_.reset(); }

 private:
  nZOAPAL000::iInterfaceProxy_hostMarten* marten_;
  std::optional<std::string> saved_;
};

}  // namespace nQUENRA1400

#endif
