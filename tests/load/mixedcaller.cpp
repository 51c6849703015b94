#include "tests/load/mixedcaller.h"

#include <algorithm>
#include <array>
#include <vector>

#include "protocol/controllerrequests.h"
#include "protocol/interfaces.h"
#include "quenra.h"
#include "zoapal/protons/driver/windowsu/tdeviceinterfaceproxy.h"
#include "zoapal/protons/driver/windowsu/tpendingrequest.h"
#include "zoapal/protons/enumeration/windows/tdeviceinterfaceiterator.h"

namespace nTests {
namespace {

using nQUENRA1400::nZOAPAL000::tDeviceInterfaceIterator;
using nQUENRA1400::nZOAPAL000::tDeviceInterfaceProxy;
using nQUENRA1400::nZOAPAL000::tPendingRequest;
using nZOAPALS100::tStatus;

constexpr uint32_t kTexts[] = {QUENRA_ATTRIBUTE_SYSTEM_MANUFACTURER,
                               QUENRA_ATTRIBUTE_PRODUCT_NAME,
                               QUENRA_ATTRIBUTE_SERIAL_NUMBER,
                               QUENRA_ATTRIBUTE_SYSTEM_VERSION,
                               QUENRA_ATTRIBUTE_FIRMWARE_VERSION,
                               QUENRA_ATTRIBUTE_FIRMWARE_VERSION | QUENRA_SELECTOR_MARTEN,
                               QUENRA_ATTRIBUTE_MEMORY_MANUFACTURER,
                               QUENRA_ATTRIBUTE_MEMORY_LOCATOR + 1,
                               QUENRA_ATTRIBUTE_PROCESSOR_VERSION,
                               QUENRA_ATTRIBUTE_BUS_LOCATION,
                               QUENRA_ATTRIBUTE_DEVICE_PATH};
constexpr uint32_t kNumbers[] = {QUENRA_ATTRIBUTE_CONTROLLER_KIND,
                                 QUENRA_ATTRIBUTE_MEMORY_SIZE + 1,
                                 QUENRA_ATTRIBUTE_MEMORY_MODULE_COUNT,
                                 QUENRA_ATTRIBUTE_PROCESSOR_THREAD_COUNT,
                                 QUENRA_ATTRIBUTE_PROCESSOR_SETTING,
                                 QUENRA_ATTRIBUTE_DRIVER_SETTING_1,
                                 QUENRA_ATTRIBUTE_DRIVER_SETTING_2,
                                 QUENRA_ATTRIBUTE_DRIVER_SETTING_2 | QUENRA_SELECTOR_MARTEN,
                                 QUENRA_ATTRIBUTE_INTERFACES_PRESENT};
constexpr uint32_t kUnknownAttribute = 0x7FFFFF00;
constexpr uint64_t kTextCapacity = 256;
constexpr uint32_t kMaxCallsPerOpening = 24;
constexpr uint32_t kMaxRoutesPerSession = 4;

void check(const tStatus& status, tFaults faults, const char* what) {
  require(!status.isError() || faults == tFaults::anywhere,
          std::string(what) + " returns " + std::to_string(status.code));
}

void callWhilePending(tDeviceInterfaceProxy& proxy, tFaults faults) {
  tStatus status;
  const tExchangeValuesRequest request{};
  tExchangeValuesReply reply{};
  proxy.deviceControl(REQUEST_EXCHANGE_VALUES, &request, sizeof request, &reply, sizeof reply,
                      status);
  check(status, faults, "a call during a pending request");
}

// Opens a channel to the controller's driver, begins requests that stay pending, makes another call
// meanwhile, and ends most of them; closing the channel ends the rest. Returns the number begun.
uint32_t beginPendingRequests(tRandom& random, tFaults faults) {
  constexpr uint64_t kWide = uint64_t{5} << 32;
  tStatus status;
  tDeviceInterfaceProxy proxy;
  tDeviceInterfaceIterator iterator(kControllerInterfaceClass, status);
  iterator.openCurrent(proxy, status);
  check(status, faults, "opening the channel");
  std::array<tPendingRequest, 3> requests;
  uint32_t begun = 0;
  for (tPendingRequest& request : requests) {
    tStatus own;
    const uint64_t b = random.oneIn(2) ? kWide : random.below(100);
    begun += proxy.beginPendingRequest(1, b, 3, request, own) != 0 ? 1 : 0;
    check(own, faults, "beginning a pending request");
    callWhilePending(proxy, faults);
  }
  for (tPendingRequest& request : requests) {
    if (!random.oneIn(4)) {
      proxy.endPendingRequest(request);
    }
  }
  return begun;
}

}  // namespace

bool tMixedCaller::check(int32_t code, const char* what) {
  if (code < 0) {
    require(work_.route.faults == tFaults::anywhere,
            std::string(what) + " returns " + std::to_string(code));
    ++work_.tally->failures;
  }
  return code >= 0;
}

void tMixedCaller::performRandomOperation() {
  enter(tStep::betweenSteps);
  switch (random_.below(8)) {
    case 0:
      return useRoutes();
    case 1:
      return usePendingRequests();
    case 2:
      return readDevicePath();
    default:
      return useController();
  }
}

void tMixedCaller::useController() {
  enter(tStep::openController);
  uint64_t handle = 0;
  if (!check(QUENRA_openController(&handle), "opening the controller")) {
    require(handle == 0, "a failed open returns no handle");
    return;
  }
  require(handle == QUENRA_HANDLE, "the handle is QUENRA_HANDLE");
  ++work_.tally->opens;
  for (uint32_t calls = random_.below(kMaxCallsPerOpening); calls != 0; --calls) {
    useOpenController();
  }
  enter(tStep::closeController);
  QUENRA_closeController(handle);
}

void tMixedCaller::useOpenController() {
  switch (random_.below(12)) {
    case 0:
      return writeUnsigned();
    case 1:
      return writeText();
    case 2:
      return selfTest();
    case 3:
      return readOtherTypes();
    case 4:
      return passInvalidArguments();
    case 5:
      return update();
    case 6:
    case 7:
    case 8:
      return readText();
    default:
      return readUnsigned();
  }
}

void tMixedCaller::readText() {
  enter(tStep::readAttribute);
  // Exactly the size passed to the library, so that an overrun by one byte is detected.
  std::vector<char> buffer(kTextCapacity, '#');
  uint64_t size = buffer.size();
  if (check(QUENRA_getAttributeUTF8(QUENRA_HANDLE, random_.oneOf(kTexts), buffer.data(), &size),
            "reading a text")) {
    require(std::find(buffer.begin(), buffer.end(), '\0') != buffer.end() ||
                work_.route.faults == tFaults::anywhere,
            "a text has a NUL");
  }
  ++work_.tally->reads;
}

void tMixedCaller::readUnsigned() {
  enter(tStep::readAttribute);
  uint32_t value = 0;
  check(QUENRA_getAttributeU32(QUENRA_HANDLE, random_.oneOf(kNumbers), &value), "reading a number");
  ++work_.tally->reads;
}

void tMixedCaller::readOtherTypes() {
  enter(tStep::readAttribute);
  int32_t number = 7;
  double fraction = 7;
  require(QUENRA_getAttributeI32(QUENRA_HANDLE, QUENRA_ATTRIBUTE_DRIVER_SETTING_1, &number) ==
                  QUENRA_STATUS_NOT_SUPPORTED &&
              number == 7,
          "no attribute is signed");
  require(QUENRA_getAttributeDBL(QUENRA_HANDLE, QUENRA_ATTRIBUTE_DRIVER_SETTING_1, &fraction) ==
                  QUENRA_STATUS_NOT_SUPPORTED &&
              fraction == 7,
          "no attribute is a floating-point number");
  ++work_.tally->others;
}

void tMixedCaller::writeUnsigned() {
  enter(tStep::writeAttribute);
  const uint32_t attribute = random_.oneIn(2)
                                 ? uint32_t{QUENRA_ATTRIBUTE_DRIVER_SETTING_1}
                                 : QUENRA_ATTRIBUTE_DRIVER_SETTING_2 | QUENRA_SELECTOR_MARTEN;
  check(QUENRA_setAttributeU32(QUENRA_HANDLE, attribute, random_.below(1000)), "writing a number");
  ++work_.tally->writes;
}

void tMixedCaller::writeText() {
  enter(tStep::writeAttribute);
  const std::string text(random_.below(kTextCapacity), 'x');
  check(QUENRA_setAttributeUTF8(QUENRA_HANDLE, QUENRA_TEXT_SETTING_OF_BOTH, text.c_str()),
        "writing a text");
  ++work_.tally->writes;
}

void tMixedCaller::selfTest() {
  enter(tStep::selfTest);
  require(QUENRA_performSelfTest(QUENRA_HANDLE) == 0, "the self-test of an open controller passes");
  ++work_.tally->others;
}

void tMixedCaller::update() {
  if (!work_.updatesAreCheap && !random_.oneIn(64)) {
    return;
  }
  enter(tStep::update);
  const std::string& image =
      (*work_.images)[random_.below(static_cast<uint32_t>(work_.images->size()))];
  check(QUENRA_updateFirmware2(QUENRA_HANDLE, image.data(), image.size(), 1), "updating firmware");
  ++work_.tally->updates;
}

void tMixedCaller::passInvalidArguments() {
  enter(tStep::readAttribute);
  uint32_t value = 7;
  uint64_t none = 0;
  require(QUENRA_getAttributeU32(0, QUENRA_ATTRIBUTE_DRIVER_SETTING_1, &value) ==
                  QUENRA_STATUS_INVALID_HANDLE &&
              value == 7,
          "a wrong handle is reported");
  require(QUENRA_getAttributeU32(QUENRA_HANDLE, kUnknownAttribute, &value) < 0,
          "an unknown attribute is reported");
  require(QUENRA_getAttributeU32(QUENRA_HANDLE, QUENRA_ATTRIBUTE_DRIVER_SETTING_1, nullptr) ==
              QUENRA_STATUS_INVALID_PARAMETER,
          "a null pointer is reported");
  require(QUENRA_getAttributeUTF8(QUENRA_HANDLE, QUENRA_ATTRIBUTE_PRODUCT_NAME, nullptr, &none) < 0,
          "a text needs a buffer");
  require(QUENRA_setAttributeUTF8(QUENRA_HANDLE, QUENRA_TEXT_SETTING_OF_BOTH,
                                  std::string(kTextCapacity, 'x').c_str()) < 0,
          "a text that is too long is reported");
  require(QUENRA_updateFirmware2(QUENRA_HANDLE, "HeaderVersion::9", 16, 1) < 0,
          "a malformed image is reported");
  ++work_.tally->others;
}

void tMixedCaller::useRoutes() {
  tRouteClient client(work_.route);
  for (uint32_t routes = random_.below(kMaxRoutesPerSession); routes != 0; --routes) {
    client.useRoute();
  }
  if (random_.oneIn(4)) {
    client.iterateTerminals();
  }
  if (random_.oneIn(4)) {
    client.abandonRoute();
  }
  client.end();
}

void tMixedCaller::usePendingRequests() {
  enter(tStep::pendingRequest);
  work_.tally->pendings += beginPendingRequests(random_, work_.route.faults);
}

void tMixedCaller::readDevicePath() {
  enter(tStep::readAttribute);
  std::vector<char> buffer(kTextCapacity);
  uint64_t size = buffer.size();
  check(QUENRA_getAttributeUTF8(QUENRA_HANDLE, QUENRA_ATTRIBUTE_DEVICE_PATH, buffer.data(), &size),
        "reading the device path");
  ++work_.tally->reads;
}

}  // namespace nTests
