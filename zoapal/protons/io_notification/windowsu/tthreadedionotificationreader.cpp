#include "zoapal/protons/io_notification/windowsu/tthreadedionotificationreader.h"

#include "zoapal/protons/synchronization/windowsu/wait.h"
#include "zoapal/protons/thread/windowsu/tthread.h"

namespace nQUENRA1400::nZOAPAL000 {
namespace {

using nZOAPALS100::tStatus;

}  // namespace

tThreadedIONotificationReader::~tThreadedIONotificationReader() {
  // Also a thread whose priority start() could not set.
  if (thread_.isStarted()) {
    wakeAndJoin();
  }
}

// Without a wake-up the thread would never end.
void tThreadedIONotificationReader::wakeAndJoin() noexcept {
  constexpr uint32_t kLine = 40;
  repeatUntilDone(kLine, "ASSERT(PostQueuedCompletionStatus)", [this]() noexcept {
    tStatus posting;
    tIONotificationReader::wake(posting);
    // A warning is a failure as well: no wake-up was posted.
    return posting.code == 0;
  });
  thread_.join();
}

void tThreadedIONotificationReader::start(tCallback callback, tStatus& status) noexcept {
  if (status.isError()) {
    return;
  }
  callback_ = callback;
  thread_.start<&runLoop>(this, status);
  thread_.setPriority(THREAD_PRIORITY_NORMAL, status);
  if (thread_.isStarted()) {
    nameThreadForDebuggers(thread_.id());
  }
  running_ = !status.isError();
}

void tThreadedIONotificationReader::runLoop(void* reader) noexcept {
  static_cast<tThreadedIONotificationReader*>(reader)->loop();
}

void tThreadedIONotificationReader::loop() noexcept {
  for (;;) {
    tStatus status;
    uint32_t kind = kNotificationDelivered;
    uint32_t payloadSize = 0;
    uint8_t payload[kNotificationPayloadCapacity] = {};
    tIONotification* const notification = wait(kind, payload, payloadSize, status, INFINITE);
    if (kind == kNotificationWakeUp) {
      return;
    }
    callback_(kind, notification, payload, payloadSize, status);
  }
}

}  // namespace nQUENRA1400::nZOAPAL000
