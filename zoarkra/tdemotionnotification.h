#ifndef ZOARKRA_TDEMOTIONNOTIFICATION_H
#define ZOARKRA_TDEMOTIONNOTIFICATION_H

#include "zoapal/protons/io_notification/windowsu/tionotification.h"
#include "zoarkra/iroutingdevice.h"

namespace zoark {

// A session's registration for demotions.
class tDemotionNotification final : public nQUENRA1400::nZOAPAL000::tIONotification {
 public:
  // Whom to tell; not changed while it is enabled.
  void setListener(iDemotionListener* listener) noexcept { listener_ = listener; }

  // The callback of a reader at which only such notifications arrive. The end of the registration,
  // a wait that failed and notices for nobody are told to nobody.
  static void takeNotice(uint32_t kind, nQUENRA1400::nZOAPAL000::tIONotification* notification,
                         const uint8_t* payload, uint32_t payloadSize,
                         nZOAPALS100::tStatus& status) noexcept;

 private:
  iDemotionListener* listener_ = nullptr;
};

}  // namespace zoark

#endif
