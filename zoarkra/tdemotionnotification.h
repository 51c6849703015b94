#ifndef ZOARKRA_TDEMOTIONNOTIFICATION_H
#define ZOARKRA_TDEMOTIONNOTIFICATION_H

#include "zoapal/protons/io_notification/windowsu/tionotification.h"
#include "zoarkra/iroutingdevice.h"

namespace zoark {

// A session's registration for demotions.
class tDemotionNotification final : public nQUENRA1400::nZOAPAL000::tIONotification {
 public:
  // Must not change while the notification is enabled.
  void setListener(iDemotionListener* listener) noexcept { listener_ = listener; }

  // The callback of a reader that serves only such notifications. It ignores the end of the
  // registration, a failed wait and a delivery without a notification.
  static void receive(uint32_t kind, nQUENRA1400::nZOAPAL000::tIONotification* notification,
                      const uint8_t* payload, uint32_t payloadSize,
                      nZOAPALS100::tStatus& status) noexcept;

 private:
  iDemotionListener* listener_ = nullptr;
};

}  // namespace zoark

#endif
