#include "source/user/update/tmartenmarker.h"

#include <string_view>

#include "quenra_attributes.h"
#include "source/user/attributes/drivercalls.h"
#include "source/user/update/martentext.h"

namespace nQUENRA1400 {
namespace {

constexpr uint32_t kMarker = QUENRA_ATTRIBUTE_FIRMWARE_VERSION;
constexpr std::string_view kIncomplete = "0.0.0f0";

// Writes the text without a NUL.
void write(nZOAPAL000::iInterfaceProxy_hostMarten& marten, std::string_view text,
           nZOAPALS100::tStatus& status) noexcept {
  marten.setAttribute(kMarker, addressOf(text.data()), static_cast<int32_t>(text.size()), status);
}

}  // namespace

tMartenMarker::~tMartenMarker() {
  if (marten_ != nullptr && saved_) {
    // A record without the error of the update: the driver layer sends nothing for one that holds an error.
    nZOAPALS100::tStatus unreported;
    write(*marten_, *saved_, unreported);
  }
}

void tMartenMarker::overwrite(zoerr::Status& status) {
  if (marten_ == nullptr || status.isError()) {
    return;
  }
  std::string before = readMartenText(*marten_, kMarker, status);
  if (status.isError()) {
    return;
  }
  saved_ = std::move(before);
  nZOAPALS100::tStatus record = recordFor(status);
  write(*marten_, kIncomplete, record);
  status.mergeFrom(record);
}

}  // namespace nQUENRA1400
