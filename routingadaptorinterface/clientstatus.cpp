#include "routingadaptorinterface/clientstatus.h"

#include <string_view>

#include "zoapal/protons/status/descriptionwriter.h"
#include "zoapal/protons/status/tstatus.h"

namespace zoroco {
namespace {

static_assert(sizeof(zoerr_Status) == sizeof(zoerr::Status));
static_assert(offsetof(zoerr_Status, code) == offsetof(zoerr::Status, code));
static_assert(offsetof(zoerr_Status, capacity) == offsetof(zoerr::Status, capacity));
static_assert(offsetof(zoerr_Status, reallocate) == offsetof(zoerr::Status, reallocate));
static_assert(offsetof(zoerr_Status, description) == offsetof(zoerr::Status, description));

bool hasCapacity(const zoerr_Status& client, size_t bytes) noexcept {
  return client.description != nullptr && client.capacity >= bytes;
}

// False when the client supplies no such capacity. Throws what the client's function throws.
bool ensureCapacity(zoerr_Status& client, size_t bytes) {
  return hasCapacity(client, bytes) ||
         (client.reallocate != nullptr &&
          client.reallocate(&client, static_cast<uint32_t>(bytes)) && hasCapacity(client, bytes));
}

void copyDescription(zoerr_Status& client, std::string_view text) {
  // The text's NUL and the marker need space as well.
  if (!text.empty() && ensureCapacity(client, text.size() + 2)) {
    zoerr::replaceDescription(client.description, client.capacity, text);
  }
}

bool storeCode(zoerr_Status& client, int32_t code) noexcept {
  const bool isStored = nZOAPALS100::replacesCode(client.code, code);
  client.code = isStored ? code : client.code;
  return isStored;
}

}  // namespace

void mergeIntoClient(zoerr_Status& client, const zoerr::Status& source) noexcept {
  if (!storeCode(client, source.code)) {
    return;
  }
  if (hasCapacity(client, zoerr::kMinDescription)) {
    zoerr::resetDescription(client.description, client.capacity);
  }
  try {
    copyDescription(client, zoerr::descriptionText(source.description, source.capacity));
  } catch (...) {
    // The client's function is not called again, so this code has no description.
    storeCode(client, nZOAPALS100::kInternalError);
  }
}

}  // namespace zoroco
