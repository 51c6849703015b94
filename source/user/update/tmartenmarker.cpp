#include "source/user/update/tmartenmarker.h"

#include <cstring>
#include <string_view>

#include "quenra_attributes.h"
#include "source/user/failuresites.h"
#include "source/user/machine/drivercalls.h"
#include "source/user/update/updateplan.h"

namespace nQUENRA1400 {
namespace {

constexpr auto kSizeImplausible = sessionLocation(1701);

// Far more than any text of a controller.
constexpr uint32_t kMaxSize = 1u << 20;

constexpr uint32_t kMarker = QUENRA_ATTRIBUTE_FIRMWARE_VERSION;

// Writes the text without a NUL.
void write(nZOAPAL000::iInterfaceProxy_hostMarten& marten, std::string_view text,
           nZOAPALS100::tStatus& status) noexcept {
  marten.setAttribute(kMarker, addressOf(text.data()), static_cast<int32_t>(text.size()), status);
}

}  // namespace

std::string readMartenText(nZOAPAL000::iInterfaceProxy_hostMarten& marten, uint32_t attribute,
                           zoerr::Status& status) {
  uint32_t size = 0;
  readFromDriver(marten, attribute, nullptr, size, status);
  if (status.code == QUENRA_STATUS_BUFFER_TOO_SMALL) {
    status.clear();
  }
  if (status.isError() || size == 0) {
    return {};
  }
  if (size > kMaxSize) {
    status.set(QUENRA_STATUS_OUT_OF_MEMORY, kSizeImplausible);
    return {};
  }
  std::string text(size, '\0');
  readFromDriver(marten, attribute, text.data(), size, status);
  if (status.isError()) {
    return {};
  }
  text.resize(strnlen(text.data(), text.size()));
  return text;
}

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
  write(*marten_, kIncompleteVersion, record);
  status.mergeFrom(record);
}

}  // namespace nQUENRA1400
