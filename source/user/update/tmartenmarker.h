#ifndef SOURCE_USER_UPDATE_TMARTENMARKER_H
#define SOURCE_USER_UPDATE_TMARTENMARKER_H

#include <cstdint>
#include <optional>
#include <string>

#include "codegen/apalcodegen/tinterfaceproxy_hostmarten.h"
#include "zoapal/protons/status/zoerrstatus.h"

namespace nQUENRA1400 {

// Reads a text attribute of the Marten interface up to its first NUL. The first of two requests fails
// with QUENRA_STATUS_BUFFER_TOO_SMALL to report the size; other codes of the driver reach the status.
// Returns an empty text when the status holds an error. Reports QUENRA_STATUS_OUT_OF_MEMORY for an
// implausible size. Throws std::bad_alloc.
[[nodiscard]] std::string readMartenText(nZOAPAL000::iInterfaceProxy_hostMarten& marten,
                                         uint32_t attribute, zoerr::Status& status);

// The Marten's version marker, which an update overwrites with a text that means "incomplete". The
// destructor restores the text that was there before, unless keep() was called.
class tMartenMarker {
 public:
  // Does nothing if the interface is null.
  explicit tMartenMarker(nZOAPAL000::iInterfaceProxy_hostMarten* marten) noexcept
      : marten_(marten) {}
  tMartenMarker(const tMartenMarker&) = delete;
  tMartenMarker& operator=(const tMartenMarker&) = delete;
  ~tMartenMarker();

  // Saves the text and overwrites it. If it cannot be read, the status reports why, and the destructor
  // restores nothing. Throws std::bad_alloc.
  void overwrite(zoerr::Status& status);
  // Keeps the marker as it is.
  void keep() noexcept { saved_.reset(); }

 private:
  nZOAPAL000::iInterfaceProxy_hostMarten* marten_;
  std::optional<std::string> saved_;
};

}  // namespace nQUENRA1400

#endif
