#include "tests/load/mixedcaller.h"

#include <algorithm>
#include <vector>

#include "quenra.h"
#include "tests/load/pendingcalls.h"

namespace nTests {
namespace {

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
constexpr uint64_t kTextRoom = 256;
constexpr uint32_t kMostCallsOfAnOpening = 24;
constexpr uint32_t kMostLivesOfASession = 4;

}  // namespace

bool tMixedCaller::check(int32_t code, const char* what) {
  if (code < 0) {
    require(work_.route.faults == tFaults::anywhere,
            std::string(what) + " gives " + std::to_string(code));
    ++work_.tally->failures;
  }
  return code >= 0;
}

void tMixedCaller::doSomething() {
  enter(tStep::betweenSteps);
  switch (random_.below(8)) {
    case 0:
      return useRoutes();
    case 1:
      return usePendingRequests();
    case 2:
      return askForThePath();
    default:
      return useController();
  }
}

void tMixedCaller::useController() {
  enter(tStep::openController);
  uint64_t handle = 0;
  if (!check(QUENRA_openController(&handle), "opening the controller")) {
    require(handle == 0, "a failed opening gives no handle");
    return;
  }
  require(handle == QUENRA_HANDLE, "there is one handle");
  ++work_.tally->opens;
  for (uint32_t calls = random_.below(kMostCallsOfAnOpening); calls != 0; --calls) {
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
      return misuse();
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
  std::vector<char> buffer(kTextRoom, '#');
  uint64_t size = buffer.size();
  if (check(QUENRA_getAttributeUTF8(QUENRA_HANDLE, random_.oneOf(kTexts), buffer.data(), &size),
            "reading a text")) {
    require(std::find(buffer.begin(), buffer.end(), '\0') != buffer.end() ||
                work_.route.faults == tFaults::anywhere,
            "a text ends");
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
          "there is no signed attribute");
  require(QUENRA_getAttributeDBL(QUENRA_HANDLE, QUENRA_ATTRIBUTE_DRIVER_SETTING_1, &fraction) ==
                  QUENRA_STATUS_NOT_SUPPORTED &&
              fraction == 7,
          "there is no floating-point attribute");
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
  const std::string text(random_.below(kTextRoom), 'x');
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

void tMixedCaller::misuse() {
  enter(tStep::readAttribute);
  uint32_t value = 7;
  uint64_t none = 0;
  require(QUENRA_getAttributeU32(0, QUENRA_ATTRIBUTE_DRIVER_SETTING_1, &value) ==
                  QUENRA_STATUS_INVALID_HANDLE &&
              value == 7,
          "a wrong handle is told");
  require(QUENRA_getAttributeU32(QUENRA_HANDLE, kUnknownAttribute, &value) < 0,
          "an unknown attribute is told");
  require(QUENRA_getAttributeU32(QUENRA_HANDLE, QUENRA_ATTRIBUTE_DRIVER_SETTING_1, nullptr) ==
              QUENRA_STATUS_INVALID_PARAMETER,
          "a null pointer is told");
  require(QUENRA_getAttributeUTF8(QUENRA_HANDLE, QUENRA_ATTRIBUTE_PRODUCT_NAME, nullptr, &none) < 0,
          "a text needs room");
  require(QUENRA_setAttributeUTF8(QUENRA_HANDLE, QUENRA_TEXT_SETTING_OF_BOTH,
                                  std::string(kTextRoom, 'x').c_str()) < 0,
          "a text that is too long is told");
  require(QUENRA_updateFirmware2(QUENRA_HANDLE, "HeaderVersion::9", 16, 1) < 0,
          "a malformed image is told");
  ++work_.tally->others;
}

void tMixedCaller::useRoutes() {
  tRouteClient client(work_.route);
  for (uint32_t lives = random_.below(kMostLivesOfASession); lives != 0; --lives) {
    client.liveOnce();
  }
  if (random_.oneIn(4)) {
    client.lookAtTerminals();
  }
  if (random_.oneIn(4)) {
    client.leaveARouteBehind();
  }
  client.end();
}

void tMixedCaller::usePendingRequests() {
  enter(tStep::pendingRequest);
  work_.tally->pendings += usePendingRequestsOnce(random_, work_.route.faults);
}

void tMixedCaller::askForThePath() {
  enter(tStep::readAttribute);
  std::vector<char> buffer(kTextRoom);
  uint64_t size = buffer.size();
  check(QUENRA_getAttributeUTF8(QUENRA_HANDLE, QUENRA_ATTRIBUTE_DEVICE_PATH, buffer.data(), &size),
        "asking for the device path");
  ++work_.tally->reads;
}

}  // namespace nTests
