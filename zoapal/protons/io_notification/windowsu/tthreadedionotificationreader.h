#ifndef ZOAPAL_PROTONS_IO_NOTIFICATION_WINDOWSU_TTHREADEDIONOTIFICATIONREADER_H
#define ZOAPAL_PROTONS_IO_NOTIFICATION_WINDOWSU_TTHREADEDIONOTIFICATIONREADER_H

#include "zoapal/protons/io_notification/windowsu/tionotificationreader.h"
#include "zoapal/protons/thread/windowsu/tthread.h"

namespace nQUENRA1400::nZOAPAL000 {

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
