#ifndef ZOAPAL_PROTONS_IO_NOTIFICATION_WINDOWSU_TIONOTIFICATIONREADER_H
#define ZOAPAL_PROTONS_IO_NOTIFICATION_WINDOWSU_TIONOTIFICATIONREADER_H

#include <windows.h>

#include <cstdint>
#include <memory>

#include "protocol/notificationrequests.h"
#include "zoapal/protons/handles/windowsu/tuniquehandle.h"
#include "zoapal/protons/io_notification/windowsu/notificationregistry.h"
#include "zoapal/protons/status/tstatus.h"

namespace nQUENRA1400::nZOAPAL000 {

// What a wait ended with.
inline constexpr uint32_t kNotificationDelivered = 0;
inline constexpr uint32_t kNotificationRegistrationEnded = 1;
inline constexpr uint32_t kNotificationWakeUp = 2;

inline constexpr uint32_t kNotificationPayloadCapacity = NOTIFICATION_PAYLOAD_CAPACITY;

// Reads the completion port at which notices arrive. Failures are located at "tionotification".
class tIONotificationReader {
 public:
  // Takes the port over.
  explicit tIONotificationReader(tUniquePort port) noexcept;
  tIONotificationReader(const tIONotificationReader&) = delete;
  tIONotificationReader& operator=(const tIONotificationReader&) = delete;
  virtual ~tIONotificationReader();

  // Waits for the next notice and returns whom it is for; null for a wake-up, for one that nobody
  // here is registered for, and on failure. `payload` has kNotificationPayloadCapacity bytes, of
  // which `payloadSize` count. Failures: of the wait, line 59, kTimeOut when the time is over; a
  // payload that is too large, kNotificationTooLarge at line 76, after which nothing more is delivered
  // from that device. One thread at a time.
  virtual tIONotification* wait(uint32_t& kind, uint8_t* payload, uint32_t& payloadSize,
                                nZOAPALS100::tStatus& status, uint32_t timeoutMs) noexcept;
  // Ends one wait with kNotificationWakeUp. Failure: line 101. Any thread.
  virtual void wake(nZOAPALS100::tStatus& status) noexcept;

  [[nodiscard]] HANDLE port() const noexcept { return port_.get(); }
  // Null when memory was short.
  [[nodiscard]] const std::shared_ptr<tNotificationRegistry>& registry() const noexcept {
    return registry_;
  }

 private:
  tUniquePort port_;
  std::shared_ptr<tNotificationRegistry> registry_;
};

}  // namespace nQUENRA1400::nZOAPAL000

#endif
