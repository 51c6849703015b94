#include "zoarkra/tdemotionnotification.h"

namespace zoark {

void tDemotionNotification::receive(uint32_t kind, tIONotification* notification, const uint8_t*,
                                    uint32_t, nZOAPALS100::tStatus& status) noexcept {
  if (kind != nQUENRA1400::nZOAPAL000::kNotificationDelivered || notification == nullptr ||
      status.isError()) {
    return;
  }
  iDemotionListener* const listener = static_cast<tDemotionNotification*>(notification)->listener_;
  if (listener != nullptr) {
    listener->routeDemoted(notification);
  }
}

}  // namespace zoark
