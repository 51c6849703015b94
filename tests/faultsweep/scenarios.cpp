#include "tests/faultsweep/scenarios.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <thread>

#include "quenra.h"
#include "quenra_routing.h"
#include "simulator/control/tsimulatedmachine.h"
#include "source/user/attributes/attributetables.h"
#include "tests/builders/firmwareimagebuilder.h"
#include "tests/builders/smbiostablebuilder.h"
#include "tests/fakewindows/faultplan.h"
#include "tests/fakewindows/processes.h"

namespace nTests {
namespace {

using nFakeWindows::tOffTheRecord;

constexpr uint32_t kSelectors[] = {QUENRA_SELECTOR_DEFAULT, QUENRA_SELECTOR_CONTROLLER,
                                   QUENRA_SELECTOR_MARTEN};

std::string hexadecimal(uint32_t number) {
  std::array<char, 16> text{};
  std::snprintf(text.data(), text.size(), "%08X", number);
  return text.data();
}

void noFurtherCheck(const tRun&) {}

// ---- The controller ----

void prepareController() {
  const tOffTheRecord offTheRecord;
  nSimulator::tSimulatedMachine machine;
  tReferenceTable table;
  table.structure(0x9E) = tSmbiosStructure(0x9E, 0x06).byte(4, 1).byte(5, 0);
  machine.setTable(table.build());
}

int32_t openController() {
  uint64_t handle = 17;
  const int32_t code = QUENRA_openController(&handle);
  EXPECT_EQ(handle, code < 0 ? 17u : QUENRA_HANDLE);
  return code;
}

void closeController() {
  QUENRA_closeController(QUENRA_HANDLE);
}

int32_t readText(uint32_t attribute) {
  std::array<char, 256> text{};
  uint64_t size = text.size();
  return QUENRA_getAttributeUTF8(QUENRA_HANDLE, attribute, text.data(), &size);
}

int32_t readUnsigned(uint32_t attribute) {
  uint32_t value = 0;
  return QUENRA_getAttributeU32(QUENRA_HANDLE, attribute, &value);
}

void openAndClose(tRun& run) {
  run.need("open", openController);
  run.silently("close", closeController);
  run.need("open again", openController);
  run.need("open once more", openController);
  run.silently("close once", closeController);
  run.silently("close twice", closeController);
}

void readTexts(tRun& run) {
  run.single("device path", [] { return readText(QUENRA_ATTRIBUTE_DEVICE_PATH); });
  run.need("open", openController);
  for (const nQUENRA1400::tTextRow& row : nQUENRA1400::nTextTable::kRows) {
    for (const uint32_t selector : kSelectors) {
      const uint32_t attribute = row.attribute + selector;
      run.single(hexadecimal(attribute), [=] { return readText(attribute); });
    }
  }
  run.silently("close", closeController);
}

void readNumbers(tRun& run) {
  run.need("open", openController);
  for (const nQUENRA1400::tUnsignedRow& row : nQUENRA1400::nUnsignedTable::kRows) {
    for (const uint32_t selector : kSelectors) {
      const uint32_t attribute = row.attribute + selector;
      run.single(hexadecimal(attribute), [=] { return readUnsigned(attribute); });
    }
  }
  run.single("signed", [] {
    int32_t value = 0;
    return QUENRA_getAttributeI32(QUENRA_HANDLE, QUENRA_ATTRIBUTE_MEMORY_SIZE, &value);
  });
  run.single("floating", [] {
    double value = 0;
    return QUENRA_getAttributeDBL(QUENRA_HANDLE, QUENRA_ATTRIBUTE_MEMORY_SIZE, &value);
  });
  run.silently("close", closeController);
}

int32_t writeText(uint32_t attribute) {
  return QUENRA_setAttributeUTF8(QUENRA_HANDLE, attribute, "a text");
}

void write(tRun& run) {
  run.need("open", openController);
  run.single("text of both", [] { return writeText(QUENRA_TEXT_SETTING_OF_BOTH); });
  run.single("text of both, on the Marten",
             [] { return writeText(QUENRA_TEXT_SETTING_OF_BOTH + QUENRA_SELECTOR_MARTEN); });
  run.single("text of the Marten only",
             [] { return writeText(QUENRA_ATTRIBUTE_FIRMWARE_VERSION); });
  run.single("text of no interface", [] { return writeText(QUENRA_ATTRIBUTE_PRODUCT_NAME); });
  run.single("number of the controller", [] {
    return QUENRA_setAttributeU32(QUENRA_HANDLE, QUENRA_ATTRIBUTE_DRIVER_SETTING_1, 7);
  });
  run.single("number of no interface", [] {
    return QUENRA_setAttributeU32(QUENRA_HANDLE,
                                  QUENRA_ATTRIBUTE_DRIVER_SETTING_2 + QUENRA_SELECTOR_MARTEN, 7);
  });
  run.single("self-test", [] { return QUENRA_performSelfTest(QUENRA_HANDLE); });
  run.silently("close", closeController);
}

// ---- Firmware ----

constexpr uint32_t kMarker = QUENRA_ATTRIBUTE_FIRMWARE_VERSION;
constexpr const char* kMarkerBefore = "1.4.0f7";
constexpr const char* kMarkerAfter = "0.0.0f0";

// A firmware image with a section of every kind.
const std::string& completeImage() {
  static const std::string image =
      firmwareImage({tFirmwareSection("MARTEN").version("9.0.0f0").payload(firmwareBytes(2000, 2)),
                     tFirmwareSection("SAFEMODE").payload(firmwareBytes(30, 3)),
                     tFirmwareSection::capsule("driver.inf").payload(firmwareBytes(50, 4)),
                     tFirmwareSection::capsule("bios.cap").payload(firmwareBytes(50, 4)),
                     tFirmwareSection("BIOS").version("9.0.0f0").payload(firmwareBytes(100, 1))});
  return image;
}

// Sets the marker to its value before an update.
void prepareUpdate() {
  const tOffTheRecord offTheRecord;
  static_cast<void>(completeImage());
  nFakeWindows::programs().reset();
  nFakeWindows::programs().install("C:\\Windows\\Sysnative\\pnputil.exe");
  nSimulator::tSimulatedMachine machine;
  machine.clearFirmware();
  machine.setAttributeText(kSimulatorInterfaceMarten, kMarker, kMarkerBefore);
  machine.allowWrites(kSimulatorInterfaceMarten, kMarker);
  prepareController();
}

void update(tRun& run, uint32_t options) {
  run.need("open", openController);
  run.need("update", [options] {
    return QUENRA_updateFirmware2(QUENRA_HANDLE, completeImage().data(), completeImage().size(),
                                  options);
  });
  run.silently("close", closeController);
}
void updateEverything(tRun& run) {
  update(run, QUENRA_UPDATE_ALL);
}
void updateOlderSections(tRun& run) {
  update(run, QUENRA_UPDATE_NEWER);
}

// The marker must show whether the last update was carried out.
void checkMarker(const tRun& run) {
  const tOffTheRecord offTheRecord;
  if (nSimulator::tSimulatedMachine().presence().martens == 0) {
    return;
  }
  const bool isDone = run.steps()[1].name == "update" && run.steps()[1].code >= 0;
  std::array<char, 64> text{};
  uint64_t size = text.size();
  EXPECT_EQ(openController(), 0);
  EXPECT_EQ(
      QUENRA_getAttributeUTF8(QUENRA_HANDLE, kMarker | QUENRA_SELECTOR_MARTEN, text.data(), &size),
      0);
  closeController();
  // If the update ran without a Marten, no marker was written.
  if (!isDone || std::string_view(text.data()) != kMarkerAfter) {
    EXPECT_STREQ(text.data(), kMarkerBefore);
  }
}

// ---- Routes ----

// A client of the routing functions. It owns the memory of the answers.
struct tClient {
  char name[256] = {};
  zoroco_RoutingAdaptorSession* session = nullptr;
  zoroco_TerminalIterator* terminals = nullptr;
  char answer[1024] = {};
  char* output = nullptr;
  uint32_t ticket = 0;
  int32_t created = 0;  // the code of creating its session
  std::atomic<int> demotions = 0;
};

// The client of the current run: reallocation functions have no context.
tClient* currentClient = nullptr;

char* reallocate(char*, size_t required, const char*, size_t) {
  return required <= sizeof currentClient->answer ? currentClient->answer : nullptr;
}

// Makes one call with its own status and returns the code.
template <class Call>
auto withStatus(Call call) {
  return [call] {
    zoerr_Status status = zoerr_Status_initial();
    call(status);
    zoerr_Status_release(&status);
    return status.code;
  };
}

void findDevice(tClient& client) {
  const tOffTheRecord offTheRecord;
  uint64_t size = sizeof client.name;
  EXPECT_EQ(QUENRA_getAttributeUTF8(0, QUENRA_ATTRIBUTE_DEVICE_PATH, client.name, &size), 0);
  currentClient = &client;
}

void createSession(tRun& run, tClient& client) {
  run.need("create session", withStatus([&client](zoerr_Status& status) {
             client.session = zoroco_ra_quenra_createSessionWithDemotionFunc(
                 client.name, reallocate,
                 [](void* context, int32_t, zoerr_Status*, void*) {
                   ++static_cast<tClient*>(context)->demotions;
                 },
                 &client, &status);
             client.created = status.code;
           }));
}

void makeRoute(tRun& run, tClient& client) {
  run.need("calculate", withStatus([&client](zoerr_Status& status) {
             zoroco_ra_quenra_calculateRoute(
                 client.session, R"([{"terminal":"TRIG_SMB","cost":5,"constraints":{}}])",
                 R"(["PXI_Trig0"])", "{}", &client.output, &status);
             constexpr std::string_view kStart = R"([{"ticket":)";
             if (status.code >= 0 && std::string_view(client.answer).starts_with(kStart)) {
               client.ticket =
                   static_cast<uint32_t>(std::strtoul(client.answer + kStart.size(), nullptr, 10));
             }
           }));
  run.need("reserve", withStatus([&client](zoerr_Status& status) {
             zoroco_ra_quenra_reserveRoute(client.session, client.ticket, &client.output, &status);
           }));
}

void tearDown(tRun& run, tClient& client) {
  run.silently("unprogram",
               [&client] { zoroco_ra_quenra_unprogramRoute(client.session, client.ticket, 0, 0); });
  run.silently("unreserve",
               [&client] { zoroco_ra_quenra_unreserveRoute(client.session, client.ticket, 0, 0); });
  run.silently("destroy route",
               [&client] { zoroco_ra_quenra_destroyRoute(client.session, client.ticket, 0, 0); });
  run.silently("destroy session", [&client] { zoroco_ra_quenra_destroySession(client.session); });
}

void listTerminals(tRun& run, tClient& client) {
  run.need("constraints", withStatus([&client](zoerr_Status& status) {
             zoroco_ra_quenra_getHandledConstraints(client.session, &client.output, &status);
           }));
  run.need("terminals", withStatus([&client](zoerr_Status& status) {
             client.terminals = zoroco_ra_quenra_getAllTerminals(client.session, &status, 0);
           }));
  run.need("attributes", withStatus([&client](zoerr_Status& status) {
             auto* const at = client.terminals;
             zoroco_ra_quenra_TerminalIterator_getStringAttribute(at, "name", &status);
             zoroco_ra_quenra_TerminalIterator_getBoolAttribute(at, "isExternal", &status);
             zoroco_ra_quenra_TerminalIterator_getU32Attribute(at, "id", &status);
             zoroco_ra_quenra_TerminalIterator_next(at, &status);
             EXPECT_EQ(zoroco_ra_quenra_TerminalIterator_isEnd(at), at == nullptr);
           }));
  run.single("calculate reset", withStatus([&client](zoerr_Status& status) {
               zoroco_ra_quenra_TerminalIterator_calculateResetTerminal(
                   client.session, client.terminals, "default", &status);
             }));
  run.single("reset", withStatus([&client](zoerr_Status& status) {
               zoroco_ra_quenra_TerminalIterator_resetTerminal(client.terminals, "floating",
                                                               &status);
             }));
  run.silently("destroy terminals",
               [&client] { zoroco_ra_quenra_TerminalIterator_destroy(client.terminals); });
}

void routingLife(tRun& run) {
  tClient client;
  findDevice(client);
  createSession(run, client);
  listTerminals(run, client);
  makeRoute(run, client);
  run.need("program", withStatus([&client](zoerr_Status& status) {
             zoroco_ra_quenra_programRoute(client.session, client.ticket, &status);
           }));
  run.single("path", withStatus([&client](zoerr_Status& status) {
               zoroco_ra_quenra_getRouteTerminalPath(client.session, client.ticket, &client.output,
                                                     &status);
             }));
  run.silently("announce", [&client] {
    zoroco_ra_quenra_beginExceptionalRouteDestruction(client.session, client.ticket, 0, 0);
  });
  tearDown(run, client);
}

// Without a registration the driver delivers no demotion.
void expectNoRegistration() {
  const tOffTheRecord offTheRecord;
  const tSimulatorCounters counters = nSimulator::tSimulatedMachine().counters();
  EXPECT_EQ(counters.registrationsBegun, counters.registrationsEnded);
}

int32_t demote(tClient& client) {
  constexpr int kTimeoutMilliseconds = 30000;
  {
    const tOffTheRecord offTheRecord;
    nSimulator::tSimulatedMachine().demoteRoute(client.ticket);
  }
  if (client.created != 0) {
    expectNoRegistration();
    return kNotDelivered;
  }
  for (int i = 0; client.demotions == 0 && i < kTimeoutMilliseconds; ++i) {
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  return client.demotions == 1 ? 0 : kNotDelivered;
}

void demotion(tRun& run) {
  tClient client;
  findDevice(client);
  createSession(run, client);
  makeRoute(run, client);
  run.need(kDemotionStep, [&client] { return demote(client); });
  tearDown(run, client);
}

const std::set<int32_t> kControllerCodes = {QUENRA_STATUS_OUT_OF_MEMORY, QUENRA_STATUS_MEMORY_FULL,
                                            QUENRA_STATUS_NO_CONTROLLER};
const std::set<int32_t> kUpdateCodes = {QUENRA_STATUS_OUT_OF_MEMORY, QUENRA_STATUS_MEMORY_FULL,
                                        QUENRA_STATUS_NO_CONTROLLER,
                                        QUENRA_STATUS_UPDATE_ENVIRONMENT};
const std::set<int32_t> kRouterCodes = {QUENRA_STATUS_MEMORY_FULL};

}  // namespace

const std::vector<tScenario>& scenarios() {
  static const std::vector<tScenario> all = {
      {"OpenAndClose", prepareController, openAndClose, noFurtherCheck, kControllerCodes},
      {"EveryText", prepareController, readTexts, noFurtherCheck, kControllerCodes},
      {"EveryNumber", prepareController, readNumbers, noFurtherCheck, kControllerCodes},
      {"Writes", prepareController, write, noFurtherCheck, kControllerCodes},
      {"CompleteUpdate", prepareUpdate, updateEverything, checkMarker, kUpdateCodes},
      {"ComparingUpdate", prepareUpdate, updateOlderSections, checkMarker, kUpdateCodes},
      {"RoutingLife", prepareController, routingLife, noFurtherCheck, kRouterCodes},
      {"Demotion", prepareController, demotion, noFurtherCheck, kRouterCodes},
  };
  return all;
}

}  // namespace nTests
