#ifndef ZOAPAL_PROTONS_IO_NOTIFICATION_WINDOWSU_TIONOTIFICATIONREADER_H
#define ZOAPAL_PROTONS_IO_NOTIFICATION_WINDOWSU_TIONOTIFICATIONREADER_H

#include <windows.h>

#include <cstdint>
#include <memory>

#include "protocol/pendingrequests.h"
#include "zoapal/protons/driver/windowsu/tportregistry.h"
#include "zoapal/protons/handles/windowsu/tuniquehandle.h"
#include "zoapal/protons/status/tstatus.h"
#include "zoapal/protons/thread/windowsu/tthread.h"

namespace nQUENRA1400::nZOAPAL000 {

// A port for a notification reader, which one thread reads. None when the status holds an error or
// the system refuses, which is located at "tionotification" line 31.
[[nodiscard]] tUniquePort createCompletionPort(nZOAPALS100::tStatus& status) noexcept;

// The result kinds of a wait.
inline constexpr uint32_t kNotificationDelivered = 0;
inline constexpr uint32_t kNotificationRegistrationEnded = 1;
inline constexpr uint32_t kNotificationWakeUp = 2;

inline constexpr uint32_t kNotificationPayloadCapacity = NOTIFICATION_PAYLOAD_CAPACITY;

// Reads the completion port at which notices arrive. Failures are located at "tionotification".
//
// Windows owns a request until its packet is dequeued. Destroying the reader therefore cancels every
// request that completes to its port and dequeues the packets before it closes the port, for at most
// two seconds: requests that a misbehaving driver does not complete by then stay allocated.
class tIONotificationReader {
 public:
  // Takes ownership of the port.
  explicit tIONotificationReader(tUniquePort port) noexcept;
  tIONotificationReader(const tIONotificationReader&) = delete;
  tIONotificationReader& operator=(const tIONotificationReader&) = delete;
  virtual ~tIONotificationReader();

  // Waits for the next notice and returns its notification; null for a wake-up, for a notice of a
  // notification that is not enabled at this reader, and on failure. `payload` has
  // kNotificationPayloadCapacity bytes, the first `payloadSize` of which are set. Failures: of the
  // wait, line 59, kTimeOut after `timeoutMs`; a payload that is too large, kNotificationTooLarge at
  // line 76, after which that device delivers nothing until it is closed. One thread at a time.
  virtual tIONotification* wait(uint32_t& kind, uint8_t* payload, uint32_t& payloadSize,
                                nZOAPALS100::tStatus& status, uint32_t timeoutMs) noexcept;
  // Ends one wait with kNotificationWakeUp. Failure: line 101. Any thread.
  virtual void wake(nZOAPALS100::tStatus& status) noexcept;

  [[nodiscard]] HANDLE port() const noexcept { return port_.get(); }
  // Null if the constructor ran out of memory.
  [[nodiscard]] const std::shared_ptr<tPortRegistry>& registry() const noexcept {
    return registry_;
  }

 private:
  void drain() noexcept;
  [[nodiscard]] tIONotification* readDelivery(const tDequeued& dequeued, uint8_t* payload,
                                              uint32_t& payloadSize,
                                              nZOAPALS100::tStatus& status) noexcept;
  [[nodiscard]] tIONotification* endRegistration(const tDequeued& dequeued,
                                                 uint32_t& kind) noexcept;
  void discard(const tDequeued& dequeued) noexcept;

  tUniquePort port_;
  std::shared_ptr<tPortRegistry> registry_;
};

// A reader with a thread of its own, which passes every notice to a callback. Destroying it waits for
// a callback that is running; the callback must not destroy it.
class tThreadedIONotificationReader : public tIONotificationReader {
 public:
  // Called on the reader's thread for everything but wake-ups, also for a failed wait, with its failure
  // in the status. `notification` may be null; `payload` has `payloadSize` bytes. Must not throw.
  using tCallback = void (*)(uint32_t kind, tIONotification* notification, const uint8_t* payload,
                             uint32_t payloadSize, nZOAPALS100::tStatus& status) noexcept;

  using tIONotificationReader::tIONotificationReader;
  ~tThreadedIONotificationReader() override;

  // At most once. Fails as tThread does, when the thread cannot be started or its priority set.
  void start(tCallback callback, nZOAPALS100::tStatus& status) noexcept;
  [[nodiscard]] bool isRunning() const noexcept { return running_; }
  // True inside the callback.
  [[nodiscard]] bool isCurrentThread() const noexcept { return thread_.isCurrent(); }

 private:
  static void runLoop(void* reader) noexcept;
  void loop() noexcept;
  void wakeAndJoin() noexcept;

  tCallback callback_ = nullptr;
  tThread thread_;
  bool running_ = false;
};

}  // namespace nQUENRA1400::nZOAPAL000

#endif
