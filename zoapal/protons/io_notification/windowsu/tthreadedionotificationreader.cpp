#include "zoapal/protons/io_notification/windowsu/tthreadedionotificationreader.h"

#include "zoapal/protons/thread/windowsu/threadname.h"

namespace nQUENRA1400::nZOAPAL000 {
namespace {

using nZOAPALS100::tStatus;

constexpr DWORD kPauseMilliseconds = 1;

}  // namespace

tThreadedIONotificationReader::~tThreadedIONotificationReader() {
  // Whenever there is a thread, also one that start() was not content with.
  if (thread_.isStarted()) {
    wakeUntilItIsHeard();
    thread_.join();
  }
}

// Without a wake-up the thread would never end.
void tThreadedIONotificationReader::wakeUntilItIsHeard() noexcept {
  tStatus unreported;
  tIONotificationReader::wake(unreported);
  // A warning is a failure as well: the wake-up was not posted.
  while (unreported.code != 0) {
    Sleep(kPauseMilliseconds);
    unreported = {};
    tIONotificationReader::wake(unreported);
  }
}

void tThreadedIONotificationReader::start(tCallback callback, tStatus& status) noexcept {
  if (status.isError()) {
    return;
  }
  callback_ = callback;
  thread_.start(runLoop, this, status);
  thread_.setPriority(THREAD_PRIORITY_NORMAL, status);
  if (thread_.isStarted()) {
    nameThreadForDebuggers(thread_.id());
  }
  running_ = !status.isError();
}

unsigned __stdcall tThreadedIONotificationReader::runLoop(void* reader) noexcept {
  static_cast<tThreadedIONotificationReader*>(reader)->loop();
  return 0;
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
