// The functions with which the test of a binding arranges the fake Windows that libquenra.so calls.
// README.md documents them.
#include <algorithm>
#include <cstdint>
#include <cstring>
#include <exception>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

#include "quenra.h"
#include "simulator/control/tsimulatedmachine.h"
#include "tests/builders/firmwareimagebuilder.h"
#include "tests/builders/smbiostablebuilder.h"
#include "tests/fakewindows/com.h"
#include "tests/fakewindows/disk.h"
#include "tests/fakewindows/faultplan.h"
#include "tests/fakewindows/machine.h"
#include "tests/fakewindows/objects.h"
#include "tests/fakewindows/processes.h"

namespace {

using nFakeWindows::faultPlan;
using nFakeWindows::objects;
using nSimulator::tSimulatedMachine;
using nTests::tReferenceTable;
using nTests::tSmbiosStructure;

thread_local std::string lastError;

// Performs a step; its failure becomes the last error of the thread.
template <class Step>
int32_t perform(Step step) noexcept {
  try {
    const nFakeWindows::tOffTheRecord offTheRecord;
    step();
    lastError.clear();
    return 0;
  } catch (const std::exception& failure) {
    lastError = failure.what();
    return -1;
  }
}

// Copies as much of a text as fits the buffer, with a NUL. Returns the size needed for all of it.
uint64_t answer(const std::string& text, char* buffer, uint64_t size) {
  if (buffer != nullptr && size != 0) {
    const size_t length = std::min<uint64_t>(text.size(), size - 1);
    std::memcpy(buffer, text.data(), length);
    buffer[length] = '\0';
  }
  return text.size() + 1;
}

std::string linesOf(const std::vector<std::string>& lines) {
  std::string text;
  for (const std::string& line : lines) {
    text += line + '\n';
  }
  return text;
}

template <class Collect>
uint64_t answerLines(char* buffer, uint64_t size, Collect collect) noexcept {
  std::string text;
  if (perform([&] { text = linesOf(collect()); }) != 0) {
    return 0;
  }
  return answer(text, buffer, size);
}

std::string hexadecimal(std::span<const uint8_t> bytes) {
  constexpr char kDigits[] = "0123456789abcdef";
  std::string text;
  for (const uint8_t byte : bytes) {
    text += {kDigits[byte >> 4], kDigits[byte & 15]};
  }
  return text;
}

// The machine's table, which later changes extend.
tReferenceTable& table() {
  static tReferenceTable theTable;
  return theTable;
}

void installTable() {
  tSimulatedMachine().setTable(table().build());
}

void closeController() {
  uint32_t ignored = 0;
  while (QUENRA_getAttributeU32(QUENRA_HANDLE, QUENRA_ATTRIBUTE_MEMORY_MODULE_COUNT, &ignored) !=
         QUENRA_STATUS_INVALID_HANDLE) {
    QUENRA_closeController(QUENRA_HANDLE);
  }
}

void restoreDefaults() {
  nFakeWindows::machine().reset();
  nFakeWindows::com()->reset();
  nFakeWindows::programs().reset();
  nFakeWindows::disk().reset();
  tSimulatedMachine().reset();
  table() = tReferenceTable();
  installTable();
  // Joining would wait for the thread of a routing session that a test has not closed.
  if (objects().open().empty()) {
    objects().waitForThreads();
  }
}

// The machine is ready when the library has been loaded. The library itself may not be.
const bool isReady = perform(restoreDefaults) == 0;

nFakeWindows::tCall callOf(const std::string& name) {
  for (size_t i = 0; i < nFakeWindows::kCalls; ++i) {
    const auto call = static_cast<nFakeWindows::tCall>(i);
    if (name == nameOf(call)) {
      return call;
    }
  }
  throw std::invalid_argument("the fake Windows has no function '" + name + "' that can fail");
}

tSimulatorInterface interfaceOf(uint32_t kind) {
  if (kind < kSimulatorInterfaceController || kind > kSimulatorInterfaceDevicePath) {
    throw std::invalid_argument("no interface " + std::to_string(kind) +
                                ": 1 controller, 2 Marten, 3 device path");
  }
  return static_cast<tSimulatorInterface>(kind);
}

tSimulatorScript scriptFor(uint32_t interfaceKind, uint32_t requestCode, uint32_t skip,
                           uint32_t times, tSimulatorAction action) {
  tSimulatorScript script{};
  script.interfaceKind = interfaceOf(interfaceKind);
  script.requestCode = requestCode;
  script.skip = skip;
  script.times = times;
  script.action = action;
  return script;
}

const char* nameOfState(uint32_t state) {
  constexpr const char* kNames[] = {"calculated", "reserved", "programmed"};
  return state < std::size(kNames) ? kNames[state] : "unknown";
}

}  // namespace

extern "C" {

const char* fakequenra_lastError(void) {
  return lastError.c_str();
}

// ---- The machine ----

int32_t fakequenra_reset(void) {
  return perform([] {
    faultPlan().reset();
    closeController();
    restoreDefaults();
  });
}

int32_t fakequenra_setPresence(uint32_t controllers, uint32_t martens, uint32_t devicePaths) {
  return perform([=] { tSimulatedMachine().setPresence({controllers, martens, devicePaths}); });
}

int32_t fakequenra_setTableText(uint8_t type, uint8_t offset, const char* text) {
  return perform([=] {
    table().structure(type).text(offset, text);
    installTable();
  });
}

int32_t fakequenra_setTableByte(uint8_t type, uint8_t offset, uint8_t value) {
  return perform([=] {
    table().structure(type).byte(offset, value);
    installTable();
  });
}

int32_t fakequenra_resizeTableStructure(uint8_t type, uint8_t length) {
  return perform([=] {
    table().structure(type).cutTo(length);
    installTable();
  });
}

int32_t fakequenra_removeTableStructures(uint8_t type) {
  return perform([=] {
    table().remove(type);
    installTable();
  });
}

int32_t fakequenra_setAttributeU32(uint32_t interfaceKind, uint32_t attribute, uint32_t value) {
  return perform(
      [=] { tSimulatedMachine().setAttributeU32(interfaceOf(interfaceKind), attribute, value); });
}

int32_t fakequenra_setAttributeText(uint32_t interfaceKind, uint32_t attribute, const char* text) {
  return perform(
      [=] { tSimulatedMachine().setAttributeText(interfaceOf(interfaceKind), attribute, text); });
}

int32_t fakequenra_removeAttribute(uint32_t interfaceKind, uint32_t attribute) {
  return perform(
      [=] { tSimulatedMachine().removeAttribute(interfaceOf(interfaceKind), attribute); });
}

int32_t fakequenra_allowWrites(uint32_t interfaceKind, uint32_t attribute) {
  return perform([=] { tSimulatedMachine().allowWrites(interfaceOf(interfaceKind), attribute); });
}

int32_t fakequenra_refuseWrites(uint32_t interfaceKind, uint32_t attribute) {
  return perform([=] { tSimulatedMachine().refuseWrites(interfaceOf(interfaceKind), attribute); });
}

// ---- Firmware ----

int32_t fakequenra_prepareUpdates(const char* version) {
  return perform([=] {
    table().structure(0x9E) = tSmbiosStructure(0x9E, 0x06).byte(4, 1).byte(5, 0);
    table().structure(0x00) = tSmbiosStructure(0x00, 0x18).text(5, version);
    installTable();
    tSimulatedMachine machine;
    machine.setAttributeText(kSimulatorInterfaceMarten, QUENRA_ATTRIBUTE_FIRMWARE_VERSION, version);
    machine.allowWrites(kSimulatorInterfaceMarten, QUENRA_ATTRIBUTE_FIRMWARE_VERSION);
    machine.clearFirmware();
    nFakeWindows::programs().install("C:\\Windows\\Sysnative\\pnputil.exe");
  });
}

int32_t fakequenra_encryptDrive(void) {
  return perform([] { nFakeWindows::com()->useVolumes({{VT_I4, 1}}); });
}

uint64_t fakequenra_firmwareImage(const char* device, const char* version, uint32_t payloadSize,
                                  char* buffer, uint64_t size) {
  std::string image;
  const int32_t built = perform([&] {
    image = nTests::firmwareImage({nTests::tFirmwareSection(device).version(version).payload(
        nTests::firmwareBytes(payloadSize))});
  });
  return built == 0 ? answer(image, buffer, size) : 0;
}

uint64_t fakequenra_receivedFirmware(char* buffer, uint64_t size) {
  return answerLines(buffer, size, [] {
    std::vector<std::string> lines;
    for (const tSimulatorPayload& payload : tSimulatedMachine().firmware()) {
      lines.push_back(nSimulator::interfaceName(payload.interfaceKind) + ' ' +
                      std::to_string(payload.size) + ' ' + hexadecimal(payload.sha256));
    }
    return lines;
  });
}

uint64_t fakequenra_startedPrograms(char* buffer, uint64_t size) {
  return answerLines(buffer, size, [] {
    std::vector<std::string> lines;
    for (const nFakeWindows::tStartedProgram& program : nFakeWindows::programs().started()) {
      lines.push_back(program.commandLine);
    }
    return lines;
  });
}

// ---- Failures ----

int32_t fakequenra_failCall(const char* function, uint32_t nth, uint32_t error) {
  return perform([=] {
    const nFakeWindows::tCall call = callOf(function);
    if (nth == 0) {
      faultPlan().failEveryCall(call, error);
    } else {
      faultPlan().failCall(call, faultPlan().callCount(call) + nth, error);
    }
  });
}

int32_t fakequenra_failRequests(uint32_t interfaceKind, uint32_t requestCode, uint32_t skip,
                                uint32_t times, uint32_t windowsError) {
  return perform([=] {
    tSimulatorScript script =
        scriptFor(interfaceKind, requestCode, skip, times, kSimulatorActionFail);
    script.windowsError = windowsError;
    tSimulatedMachine().addScript(script);
  });
}

int32_t fakequenra_answerRequests(uint32_t interfaceKind, uint32_t requestCode, uint32_t skip,
                                  uint32_t times, int32_t code) {
  return perform([=] {
    // A warning accompanies the result of the request; a failure replaces it.
    const tSimulatorAction action = code > 0 ? kSimulatorActionAddCode : kSimulatorActionAnswerCode;
    tSimulatorScript script = scriptFor(interfaceKind, requestCode, skip, times, action);
    script.driverStatus = code;
    tSimulatedMachine().addScript(script);
  });
}

// ---- Routes ----

int32_t fakequenra_demoteRoute(uint32_t ticket) {
  return perform([=] { tSimulatedMachine().demoteRoute(ticket); });
}

int32_t fakequenra_setPathLength(uint32_t length) {
  return perform([=] { tSimulatedMachine().setPathLength(length); });
}

uint64_t fakequenra_routes(char* buffer, uint64_t size) {
  return answerLines(buffer, size, [] {
    std::vector<std::string> lines;
    for (const tSimulatorRoute& route : tSimulatedMachine().routes()) {
      lines.push_back(std::to_string(route.ticket) + ' ' + nameOfState(route.state));
    }
    return lines;
  });
}

// ---- Records ----

uint64_t fakequenra_log(char* buffer, uint64_t size) {
  return answerLines(buffer, size, [] {
    std::vector<std::string> lines;
    for (const tSimulatorLogEntry& entry : tSimulatedMachine().log()) {
      lines.push_back(nSimulator::requestLogLine(entry));
    }
    return lines;
  });
}

int32_t fakequenra_clearLog(void) {
  return perform([] { tSimulatedMachine().clearLog(); });
}

uint64_t fakequenra_openObjects(char* buffer, uint64_t size) {
  return answerLines(buffer, size, [] { return objects().open(); });
}

}  // extern "C"
