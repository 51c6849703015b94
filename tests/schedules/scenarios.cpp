#include "tests/schedules/scenarios.h"

#include <array>
#include <atomic>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "protocol/interfaces.h"
#include "quenra.h"
#include "quenra_routing.h"
#include "simulator/control/tsimulatedmachine.h"
#include "source/user/exports/tprocessstate.h"
#include "tests/builders/firmwareimagebuilder.h"
#include "tests/builders/smbiostablebuilder.h"
#include "tests/fakewindows/com.h"
#include "tests/fakewindows/faultplan.h"
#include "tests/fakewindows/machine.h"
#include "tests/fakewindows/objects.h"
#include "tests/fakewindows/processes.h"
#include "tests/fakewindows/threads.h"
#include "zoapal/protons/driver/windowsu/tdeviceinterfaceproxy.h"
#include "zoapal/protons/driver/windowsu/tpendingrequest.h"
#include "zoapal/protons/enumeration/windows/tdeviceinterfaceiterator.h"
#include "zoapal/protons/io_notification/windowsu/tionotification.h"
#include "zoapal/protons/io_notification/windowsu/tionotificationreader.h"
#include "zoapal/protons/trace/ttrace.h"

namespace nTests {
namespace {

using nFakeWindows::objects;
using nFakeWindows::scheduler;
using nFakeWindows::tOffTheRecord;
using nQUENRA1400::nZOAPAL000::createCompletionPort;
using nQUENRA1400::nZOAPAL000::tDeviceInterfaceIterator;
using nQUENRA1400::nZOAPAL000::tDeviceInterfaceProxy;
using nQUENRA1400::nZOAPAL000::tIONotification;
using nQUENRA1400::nZOAPAL000::tPendingRequest;
using nQUENRA1400::nZOAPAL000::tThreadedIONotificationReader;
using nQUENRA1400::nZOAPAL000::tTrace;
using nZOAPALS100::tStatus;

void promise(bool isKept, const char* what) {
  if (!isKept) {
    nFakeWindows::stop("promise", what);
  }
}

// ---- The controller ----

constexpr uint32_t kMartenText = QUENRA_ATTRIBUTE_FIRMWARE_VERSION + QUENRA_SELECTOR_MARTEN;

void openController() {
  uint64_t handle = 17;
  promise(QUENRA_openController(&handle) == 0, "a controller opens beside other threads");
  promise(handle == QUENRA_HANDLE, "an open controller has its handle");
}

void closeController() {
  QUENRA_closeController(QUENRA_HANDLE);
}

int32_t readNumber(uint64_t handle) {
  constexpr uint32_t kUntouched = 0xFFFFFFFF;
  uint32_t value = kUntouched;
  const int32_t code = QUENRA_getAttributeU32(handle, QUENRA_ATTRIBUTE_MEMORY_MODULE_COUNT, &value);
  promise((code == 0) == (value != kUntouched), "a call that succeeds, and no other, has a value");
  return code;
}

int32_t readDriver(uint64_t handle) {
  std::array<char, 64> text{};
  uint64_t size = text.size();
  return QUENRA_getAttributeUTF8(handle, kMartenText, text.data(), &size);
}

void useController() {
  const unsigned reader = scheduler().start("reader", [] {
    openController();
    promise(readNumber(QUENRA_HANDLE) == 0, "an open controller is read from its table");
    closeController();
  });
  const unsigned writer = scheduler().start("writer", [] {
    openController();
    promise(QUENRA_setAttributeU32(QUENRA_HANDLE, QUENRA_ATTRIBUTE_DRIVER_SETTING_1, 7) == 0,
            "an open controller is written to");
    closeController();
  });
  openController();
  promise(readDriver(QUENRA_HANDLE) == 0, "an open controller is read from its driver");
  closeController();
  scheduler().join(reader);
  scheduler().join(writer);
}

void readDuringTheFirstOpen() {
  const unsigned reader = scheduler().start("reader", [] {
    const int32_t code = readNumber(QUENRA_HANDLE);
    promise(code == 0 || code == QUENRA_STATUS_INVALID_HANDLE,
            "a call beside the first open waits for it, or finds no controller");
  });
  openController();
  promise(readNumber(QUENRA_HANDLE) == 0, "an open controller is read");
  scheduler().join(reader);
  closeController();
}

void closeBesideOtherHandles() {
  openController();
  const unsigned other = scheduler().start("other", [] {
    promise(readNumber(17) == QUENRA_STATUS_INVALID_HANDLE, "another handle value is invalid");
    QUENRA_closeController(17);
    promise(readNumber(0) == QUENRA_STATUS_INVALID_HANDLE, "handle 0 is invalid");
  });
  const unsigned opener = scheduler().start("opener", [] {
    openController();
    promise(readNumber(QUENRA_HANDLE) == 0, "a controller opened during a close is read");
    closeController();
  });
  closeController();
  scheduler().join(other);
  scheduler().join(opener);
  promise(readNumber(QUENRA_HANDLE) == QUENRA_STATUS_INVALID_HANDLE,
          "after the last close there is no controller");
}

// The caller's mistake: it must not end the process.
void readBesideTheLastClose() {
  openController();
  const unsigned reader = scheduler().start("reader", [] {
    const int32_t code = readNumber(QUENRA_HANDLE);
    promise(code == 0 || code < 0, "a call beside the last close returns");
  });
  closeController();
  scheduler().join(reader);
}

// With failing calls: an open that fails leaves nothing, and one that succeeds can be read.
void openReadAndClose() {
  uint64_t handle = 17;
  const int32_t code = QUENRA_openController(&handle);
  promise((code < 0) == (handle == 17), "a failed open leaves the handle");
  if (code >= 0) {
    promise(readNumber(handle) == 0, "an open controller is read from its table");
    static_cast<void>(readDriver(handle));
    QUENRA_closeController(handle);
  }
}

void controllerWithFailures() {
  const unsigned another = scheduler().start("another", openReadAndClose);
  openReadAndClose();
  scheduler().join(another);
}

// ---- Firmware ----

constexpr uint32_t kMarker = QUENRA_ATTRIBUTE_FIRMWARE_VERSION;

const std::string& image() {
  static const std::string built =
      firmwareImage({tFirmwareSection("MARTEN").version("9.0.0f0").payload(firmwareBytes(40, 2)),
                     tFirmwareSection("SAFEMODE").payload(firmwareBytes(30, 3))});
  return built;
}

void updateBesideReaders() {
  const unsigned reader = scheduler().start("reader", [] {
    openController();
    promise(readNumber(QUENRA_HANDLE) == 0, "an open controller is read during an update");
    promise(readDriver(QUENRA_HANDLE) == 0, "its driver answers during an update");
    closeController();
  });
  openController();
  promise(
      QUENRA_updateFirmware2(QUENRA_HANDLE, image().data(), image().size(), QUENRA_UPDATE_ALL) == 0,
      "an update succeeds beside readers");
  closeController();
  scheduler().join(reader);
}

// ---- Notifications ----

constexpr uint32_t kMask = 0x80000000;

// Counts the calls of the callbacks.
struct tReceived {
  std::atomic<unsigned> notices = 0;
  std::atomic<unsigned> ends = 0;
};
tReceived received;

void receive(uint32_t kind, tIONotification* notification, const uint8_t*, uint32_t,
             tStatus& status) noexcept {
  scheduler().point("callback");
  received.notices += kind == 0 && notification != nullptr && !status.isError() ? 1 : 0;
  received.ends += kind == 1 ? 1 : 0;
}

// A device and a reader, as a routing session has them.
struct tNotified {
  tNotified() : reader(createCompletionPort(status)) {
    tDeviceInterfaceIterator iterator(kControllerInterfaceClass, status);
    iterator.openCurrent(proxy, status);
    promise(status.code == 0, "the device opens");
  }
  void start() {
    reader.start(&receive, status);
    promise(status.code == 0, "the reader starts");
  }

  tStatus status;
  tDeviceInterfaceProxy proxy;
  tThreadedIONotificationReader reader;
};

void enableAndDisable(tIONotification& notification, tThreadedIONotificationReader& reader,
                      tDeviceInterfaceProxy& proxy) {
  tStatus status;
  promise(notification.enable(reader, proxy, kMask, status), "a notification is enabled");
  promise(status.code == 0, "enabling reports no failure");
  notification.disable();
}

// An event of the device, if anything is registered for it.
void notify() {
  const tOffTheRecord offTheRecord;
  tSimulatorNotice notice{};
  notice.mask = kMask;
  notice.payloadSize = 4;
  try {
    nSimulator::tSimulatedMachine().notify(notice);
  } catch (const nSimulator::tControlError&) {
    // Nothing is registered at this moment.
  }
}

void twoNotificationsOfOneReader() {
  tNotified device;
  tIONotification first;
  tIONotification second;
  device.start();
  const unsigned another =
      scheduler().start("another", [&] { enableAndDisable(second, device.reader, device.proxy); });
  enableAndDisable(first, device.reader, device.proxy);
  scheduler().join(another);
}

void twoReaders() {
  const unsigned another = scheduler().start("another", [] {
    tNotified device;
    tIONotification notification;
    device.start();
    enableAndDisable(notification, device.reader, device.proxy);
  });
  {
    tNotified device;
    tIONotification notification;
    device.start();
    enableAndDisable(notification, device.reader, device.proxy);
  }
  scheduler().join(another);
}

void noticesDuringTheLifeOfANotification() {
  const unsigned events = scheduler().start("events", [] {
    scheduler().point("event");
    notify();
    scheduler().point("event");
    notify();
  });
  {
    tNotified device;
    tIONotification notification;
    device.start();
    enableAndDisable(notification, device.reader, device.proxy);
  }
  scheduler().join(events);
  promise(received.notices <= 2, "each notice arrives at most once");
}

void noticesOfAnEnabledNotification() {
  tNotified device;
  tIONotification notification;
  device.start();
  tStatus status;
  promise(notification.enable(device.reader, device.proxy, kMask, status), "it is enabled");
  const unsigned events = scheduler().start("events", [] {
    notify();
    scheduler().point("event");
    notify();
  });
  scheduler().join(events);
  scheduler().settle();
  promise(received.notices == 2, "each notice arrives once while the notification is enabled");
  notification.disable();
  scheduler().settle();
  promise(received.ends == 1, "the end of a registration arrives once");
}

// With failing calls: what is enabled is disabled, and the reader ends.
void notificationsWithFailures() {
  std::optional<tNotified> device;
  {
    const tOffTheRecord withoutFailures;
    device.emplace();
    device->start();
  }
  tIONotification first;
  tIONotification second;
  const unsigned another = scheduler().start("another", [&] {
    tStatus status;
    promise(second.enable(device->reader, device->proxy, kMask, status) == second.isEnabled(),
            "a notification is enabled or not");
    second.disable();
  });
  tStatus status;
  promise(first.enable(device->reader, device->proxy, kMask, status) == (status.code == 0),
          "a notification is enabled unless a failure is reported");
  notify();
  first.disable();
  scheduler().join(another);
}

// A reader without a thread: a thread would use the device.
void deviceClosedBeforeItsReader() {
  tNotified device;
  tIONotification notification;
  tStatus status;
  promise(notification.enable(device.reader, device.proxy, kMask, status), "it is enabled");
  const unsigned events = scheduler().start("events", [] { notify(); });
  notification.disable();
  device.proxy.close();
  scheduler().join(events);
}

void readerDestroyedBeforeItsNotification() {
  tNotified device;
  auto notification = std::make_unique<tIONotification>();
  {
    tStatus status;
    tThreadedIONotificationReader reader(createCompletionPort(status));
    reader.start(&receive, status);
    promise(notification->enable(reader, device.proxy, kMask, status), "it is enabled");
    const unsigned events = scheduler().start("events", [] { notify(); });
    notification->disable();
    scheduler().join(events);
  }
  notification.reset();
}

// ---- Routing sessions ----

std::string deviceName;

struct tRoutingSession {
  zoroco_RoutingAdaptorSession* session = nullptr;
  std::atomic<unsigned> demotions = 0;
  std::atomic<bool> isDestroyed = false;
};

void countDemotion(void* context, int32_t, zoerr_Status*, void*) {
  auto& client = *static_cast<tRoutingSession*>(context);
  promise(!client.isDestroyed, "no callback runs after its session was destroyed");
  scheduler().point("callback");
  promise(!client.isDestroyed, "destroying a session waits for its callback");
  ++client.demotions;
}

void createSession(tRoutingSession& client) {
  zoerr_Status status = zoerr_Status_initial();
  client.session = zoroco_ra_quenra_createSessionWithDemotionFunc(deviceName.c_str(), nullptr,
                                                                  &countDemotion, &client, &status);
  promise(status.code == 0 && client.session != nullptr, "a session is created");
  zoerr_Status_release(&status);
}

void destroySession(tRoutingSession& client) {
  zoroco_ra_quenra_destroySession(client.session);
  client.isDestroyed = true;
}

void demotionsDuringASession() {
  tRoutingSession client;
  const unsigned events = scheduler().start("events", [] {
    scheduler().point("event");
    notify();
    scheduler().point("event");
    notify();
  });
  createSession(client);
  destroySession(client);
  scheduler().join(events);
  promise(client.demotions <= 2, "each demotion arrives at most once");
}

void twoSessions() {
  const unsigned another = scheduler().start("another", [] {
    tRoutingSession client;
    createSession(client);
    destroySession(client);
  });
  tRoutingSession client;
  createSession(client);
  destroySession(client);
  scheduler().join(another);
  promise(nFakeWindows::moduleReferences() == 0, "a thread that has ended holds no reference");
}

// With failing calls: whatever happens, nothing is left and no thread waits for ever.
void sessionWithFailures() {
  tRoutingSession client;
  zoerr_Status status = zoerr_Status_initial();
  client.session = zoroco_ra_quenra_createSessionWithDemotionFunc(deviceName.c_str(), nullptr,
                                                                  &countDemotion, &client, &status);
  promise((status.code < 0) == (client.session == nullptr),
          "a session exists unless a failure is reported");
  const unsigned events = scheduler().start("events", [] { notify(); });
  destroySession(client);
  scheduler().join(events);
  zoerr_Status_release(&status);
}

// The library of its own that a run loads and unloads. It shares the threads with the loaded one.
void unloadAfterTheLastThread() {
  nQUENRA1400::nZOAPAL000::tStartUp startUp;
  nQUENRA1400::tProcessState library(startUp);
  library.load();
  zoerr::tOwnedStatus opening;
  library.open(opening);
  promise(opening.code == 0, "the library opens a session");
  tRoutingSession client;
  createSession(client);
  const unsigned loader = scheduler().start("loader", [&] {
    scheduler().await("FreeLibrary", {}, [&client] {
      return client.isDestroyed && nFakeWindows::moduleReferences() == 0;
    });
    library.unload();
  });
  destroySession(client);
  scheduler().join(loader);
  zoerr::tOwnedStatus unloaded;
  startUp.mergeInto(unloaded);
  promise(unloaded.code == QUENRA_STATUS_NOT_READY, "an unloaded library reports it");
  library.load();
  library.close();
  library.unload();
}

// ---- Pending requests ----

void completePending(uint32_t error) {
  const tOffTheRecord offTheRecord;
  nSimulator::tSimulatedMachine machine;
  const std::vector<tSimulatorPendingRequest> pending = machine.pending();
  if (!pending.empty()) {
    machine.completePending(pending.front().handle, error);
  }
}

void pendingRequests() {
  tStatus status;
  tDeviceInterfaceProxy proxy;
  tDeviceInterfaceIterator(kControllerInterfaceClass, status).openCurrent(proxy, status);
  promise(status.code == 0, "the device opens");
  const unsigned driver = scheduler().start("driver", [] {
    scheduler().point("event");
    completePending(0);
  });
  tPendingRequest request;
  static_cast<void>(proxy.beginPendingRequest(7, 8, 9, request, status));
  proxy.endPendingRequest(request);
  promise(request.handle() == 0, "a request that was ended has no handle");
  scheduler().join(driver);
}

void pendingRequestOfAClosedDevice() {
  tStatus status;
  auto proxy = std::make_unique<tDeviceInterfaceProxy>();
  tDeviceInterfaceIterator(kControllerInterfaceClass, status).openCurrent(*proxy, status);
  tPendingRequest request;
  promise(proxy->beginPendingRequest(7, 8, 9, request, status) != 0, "a request is begun");
  const unsigned other = scheduler().start("other", [] { completePending(ERROR_GEN_FAILURE); });
  proxy->close();
  scheduler().join(other);
}

// ---- The trace ----

// Fails when two threads write at the same time.
class tTouchyDestination final : public nQUENRA1400::nZOAPAL000::tConsoleTraceDestination {
 public:
  void write(const char*) noexcept override {
    promise(!isInside_, "the trace writes one text at a time");
    isInside_ = true;
    scheduler().point("write");
    isInside_ = false;
    ++texts;
  }

  std::atomic<unsigned> texts = 0;

 private:
  std::atomic<bool> isInside_ = false;
};

void trace() {
  tStatus status;
  tTouchyDestination destination;
  tTrace traced(destination, status);
  const unsigned second = scheduler().start("second", [&] { traced.write("second"); });
  const unsigned third = scheduler().start("third", [&] { traced.write("third"); });
  traced.write("first");
  scheduler().join(second);
  scheduler().join(third);
  promise(destination.texts == 3, "each text arrives once");
}

constexpr tScheduleScenario kScenarios[] = {
    {"controller", "three threads open, read, write and close", &useController, {2, 0}},
    {"open-failures",
     "two threads open, read and close with a failing call",
     &controllerWithFailures,
     {1, 1}},
    {"first-open", "a read beside the first open", &readDuringTheFirstOpen, {3, 0}},
    {"last-close",
     "the last close beside an open and calls with other handle values",
     &closeBesideOtherHandles,
     {2, 0}},
    {"close-and-read", "a read beside the last close", &readBesideTheLastClose, {3, 0}},
    {"update", "a firmware update beside a reader", &updateBesideReaders, {2, 0}},
    {"one-reader",
     "two notifications of one device at one reader",
     &twoNotificationsOfOneReader,
     {2, 0}},
    {"two-readers", "two devices, each with a notification and a reader", &twoReaders, {1, 0}},
    {"notices",
     "notices while a notification is enabled and disabled",
     &noticesDuringTheLifeOfANotification,
     {2, 0}},
    {"delivery", "notices of an enabled notification", &noticesOfAnEnabledNotification, {2, 0}},
    {"reader-ends",
     "a reader that ends before its notification",
     &readerDestroyedBeforeItsNotification,
     {2, 0}},
    {"device-ends",
     "a device that is closed before its reader",
     &deviceClosedBeforeItsReader,
     {3, 0}},
    {"demotions",
     "demotions while a routing session is created and destroyed",
     &demotionsDuringASession,
     {2, 0}},
    {"two-sessions", "two routing sessions", &twoSessions, {1, 0}},
    {"notify-failures",
     "two notifications at one reader with a failing call",
     &notificationsWithFailures,
     {1, 1}},
    {"unload",
     "a library that is unloaded after its last thread, with an open session",
     &unloadAfterTheLastThread,
     {2, 0}},
    {"failures", "a routing session with a failing call", &sessionWithFailures, {1, 1}},
    {"pending", "a pending request that completes while it is ended", &pendingRequests, {3, 0}},
    {"pending-close",
     "a pending request whose device is closed",
     &pendingRequestOfAClosedDevice,
     {3, 0}},
    {"trace", "three threads write to a trace", &trace, {3, 0}},
};

// Repeated attempts are milliseconds apart; the limits of the library begin at two seconds.
constexpr uint64_t kLongestMilliseconds = 1000;

}  // namespace

std::span<const tScheduleScenario> scheduleScenarios() {
  return kScenarios;
}

void prepareScenario() {
  nFakeWindows::faultPlan().reset();
  nFakeWindows::machine().reset();
  nFakeWindows::com()->reset();
  nFakeWindows::programs().reset();
  objects().repeatCompletions(1);
  objects().useFinalStatus(nFakeWindows::finalStatusOfThisRun());
  static_cast<void>(objects().takeLostPackets());
  received.notices = 0;
  received.ends = 0;
  static const std::vector<uint8_t> table = tReferenceTable().build();
  nSimulator::tSimulatedMachine machine;
  machine.setTable(table);
  machine.setAttributeText(kSimulatorInterfaceMarten, kMarker, "1.4.0f7");
  machine.allowWrites(kSimulatorInterfaceMarten, kMarker);
  deviceName = nSimulator::presentInterfaces(kDevicePathInterfaceClass).front();
}

void checkScenario() {
  promise(objects().open().empty(), "no object is left open");
  promise(objects().takeLostPackets() == 0, "every packet is dequeued before its port is closed");
  promise(nFakeWindows::criticalSections() == 1,
          "no critical section is left but the library's own");
  promise(nFakeWindows::moduleReferences() == 0, "no reference to the module is left");
  promise(scheduler().now() < kLongestMilliseconds, "no wait lasts until its limit");
}

}  // namespace nTests
