// The fixture of the notification tests, native and on Windows.
#ifndef TESTS_COMPONENT_PROTONS_IO_NOTIFICATION_NOTIFICATIONTEST_H
#define TESTS_COMPONENT_PROTONS_IO_NOTIFICATION_NOTIFICATIONTEST_H

#include <string>
#include <vector>

#include "tests/component/protons/driver/drivertest.h"
#include "zoapal/protons/io_notification/windowsu/tionotification.h"
#include "zoapal/protons/io_notification/windowsu/tionotificationreader.h"

namespace nTests {

using nQUENRA1400::nZOAPAL000::tIONotification;
using nQUENRA1400::nZOAPAL000::tIONotificationReader;
using nQUENRA1400::nZOAPAL000::tThreadedIONotificationReader;
using nQUENRA1400::nZOAPAL000::tUniquePort;

inline constexpr uint32_t kMask = 0x80000000;
inline constexpr uint32_t kDelivered = 0;
inline constexpr uint32_t kRegistrationEnded = 1;
inline constexpr uint32_t kWakeUp = 2;
inline constexpr uint32_t kShortTime = 50;     // milliseconds in which no notice may arrive
inline constexpr uint32_t kLongTime = 20'000;  // milliseconds in which one must arrive

inline tUniquePort makePort() {
  return tUniquePort(CreateIoCompletionPort(INVALID_HANDLE_VALUE, nullptr, 0, 1));
}

// The results of one wait.
struct tNotice {
  tIONotification* notification = nullptr;
  uint32_t kind = 99;
  std::string payload;
  int32_t code = 0;
  uint32_t line = 0;
};

inline tNotice waitOn(tIONotificationReader& reader, uint32_t timeoutMs = kLongTime) {
  tNotice notice;
  tStatus status;
  uint8_t payload[32] = {};
  uint32_t size = 99;
  notice.notification = reader.wait(notice.kind, payload, size, status, timeoutMs);
  notice.payload.assign(payload, payload + size);
  notice.code = status.code;
  notice.line = status.line;
  return notice;
}

class NotificationTest : public DriverTest {
 protected:
  void notify(const std::string& payload, uint32_t mask = kMask, uint64_t notification = 0) {
    tSimulatorNotice notice{};
    notice.mask = mask;
    notice.notification = notification;
    notice.payloadSize = static_cast<uint32_t>(payload.size());
    payload.copy(reinterpret_cast<char*>(notice.payload), sizeof notice.payload);
    machine().notify(notice);
  }
  size_t requests(uint32_t code) {
    size_t count = 0;
    for (const tSimulatorLogEntry& entry : logged(kSimulatorEventRequest)) {
      count += entry.requestCode == code ? 1 : 0;
    }
    return count;
  }
};

}  // namespace nTests

#endif
