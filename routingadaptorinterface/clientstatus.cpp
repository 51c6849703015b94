#include "routingadaptorinterface/clientstatus.h"

#include <string_view>

#include "zoapal/protons/status/descriptionwriter.h"
#include "zoapal/protons/status/mergerule.h"

namespace zoroco {
namespace {

static_assert(sizeof(zoerr_Status) == sizeof(zoerr::Status));
static_assert(offsetof(zoerr_Status, code) == offsetof(zoerr::Status, code));
static_assert(offsetof(zoerr_Status, capacity) == offsetof(zoerr::Status, capacity));
static_assert(offsetof(zoerr_Status, reallocate) == offsetof(zoerr::Status, reallocate));
static_assert(offsetof(zoerr_Status, description) == offsetof(zoerr::Status, description));

bool hasRoom(const zoerr_Status& client, size_t bytes) noexcept {
  return client.description != nullptr && client.capacity >= bytes;
}

bool makeRoom(zoerr_Status& client, size_t bytes) noexcept {
  return hasRoom(client, bytes) ||
         (client.reallocate != nullptr &&
          client.reallocate(&client, static_cast<uint32_t>(bytes)) && hasRoom(client, bytes));
}

}  // namespace

void mergeIntoClient(zoerr_Status& client, const zoerr::Status& source) noexcept {
  if (!nZOAPALS100::replacesCode(client.code, source.code)) {
    return;
  }
  client.code = source.code;
  if (hasRoom(client, zoerr::kSmallestDescription)) {
    zoerr::resetDescription(client.description, client.capacity);
  }
  const std::string_view text = zoerr::descriptionText(source.description, source.capacity);
  // The text's NUL and the marker need room as well.
  if (!text.empty() && makeRoom(client, text.size() + 2)) {
    zoerr::replaceDescription(client.description, client.capacity, text);
  }
}

}  // namespace zoroco
