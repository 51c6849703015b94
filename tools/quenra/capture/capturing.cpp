#include "tools/quenra/capture/capturing.h"

#include <algorithm>
#include <chrono>
#include <map>
#include <utility>

#include "quenra_attributes.h"
#include "quenra_status.h"
#include "quenra_version.h"
#include "tools/quenra/capture/recordedinterfaces.h"
#include "tools/quenra/capture/tmachinereader.h"
#include "tools/quenra/capture/treplayedmachine.h"
#include "tools/quenra/reading/tcontroller.h"
#include "tools/quenra/routing/troutingsession.h"

namespace nCommandLine {
namespace {

using nCapture::tDuration;
using nCapture::tMachineRecord;
using nCapture::tReadingRecord;
using nCapture::tResult;

// ---- Time ----

class tElapsed {
 public:
  [[nodiscard]] tDuration get() const noexcept {
    return std::chrono::duration_cast<tDuration>(tClock::now() - start_);
  }

 private:
  using tClock = std::chrono::steady_clock;

  tClock::time_point start_ = tClock::now();
};

// The code of a call, with its duration.
template <class Call>
tResult timed(Call call) {
  const tElapsed elapsed;
  const int32_t code = call();
  return {code, elapsed.get()};
}

// Measures the calls of a library. A text that is longer than the first buffer takes two calls.
class tTimedLibrary final : public iQuenra {
 public:
  explicit tTimedLibrary(iQuenra& library) noexcept : library_(library) {}

  [[nodiscard]] tDuration openingTime() const noexcept { return openingTime_; }
  // Of all reads of an attribute.
  [[nodiscard]] tDuration timeOf(uint32_t attribute) const {
    const auto found = times_.find(attribute);
    return found == times_.end() ? tDuration(0) : found->second;
  }

  int32_t openController(uint64_t* handle) noexcept override {
    const tResult result = timed([&] { return library_.openController(handle); });
    openingTime_ = result.duration;
    return result.code;
  }
  void closeController(uint64_t handle) noexcept override { library_.closeController(handle); }
  int32_t getAttributeUTF8(uint64_t handle, uint32_t attribute, char* buffer,
                           uint64_t* size) noexcept override {
    return count(attribute,
                 [&] { return library_.getAttributeUTF8(handle, attribute, buffer, size); });
  }
  int32_t getAttributeU32(uint64_t handle, uint32_t attribute, uint32_t* value) noexcept override {
    return count(attribute, [&] { return library_.getAttributeU32(handle, attribute, value); });
  }
  int32_t setAttributeUTF8(uint64_t handle, uint32_t attribute,
                           const char* text) noexcept override {
    return library_.setAttributeUTF8(handle, attribute, text);
  }
  int32_t setAttributeU32(uint64_t handle, uint32_t attribute, uint32_t value) noexcept override {
    return library_.setAttributeU32(handle, attribute, value);
  }
  int32_t updateFirmware2(uint64_t handle, const void* image, uint64_t size,
                          uint32_t options) noexcept override {
    return library_.updateFirmware2(handle, image, size, options);
  }
  int32_t performSelfTest(uint64_t handle) noexcept override {
    return library_.performSelfTest(handle);
  }
  [[nodiscard]] uint32_t presentInterfaces(tInterface which) const noexcept override {
    return library_.presentInterfaces(which);
  }

 private:
  template <class Call>
  int32_t count(uint32_t attribute, Call call) {
    const tResult result = timed(call);
    times_[attribute] += result.duration;
    return result.code;
  }

  iQuenra& library_;
  tDuration openingTime_{0};
  std::map<uint32_t, tDuration> times_;
};

// ---- Readings ----

nCapture::tReadingValue valueOf(const tReading& reading) {
  if (reading.state() != tReadingState::value) {
    return {};
  }
  return std::visit([](const auto& value) { return nCapture::tReadingValue(value); },
                    reading.value);
}

tReadingRecord recordOf(const tAttributeRow& row, const tReading& reading) {
  return {
      std::string(row.name), reading.address.id(), {reading.code, tDuration(0)}, valueOf(reading)};
}

// Reads the machine as `info` does, and the attributes with a value per interface also without the
// interface, as `get` does.
std::vector<tReadingRecord> readEverything(const tController& controller) {
  std::vector<tReadingRecord> records;
  for (const tAttributeReadings& attribute : readMachine(controller)) {
    for (const tReading& reading : attribute.readings) {
      records.push_back(recordOf(*attribute.row, reading));
    }
    if (attribute.row->perInterface) {
      records.push_back(recordOf(*attribute.row, controller.read({attribute.row->id})));
    }
  }
  return records;
}

// A controller that cannot be opened has one readable attribute: the path of the trigger router.
std::vector<tReadingRecord> readWithoutController(const tController& controller) {
  const tAttributeRow* const row = findAttribute(uint32_t{QUENRA_ATTRIBUTE_DEVICE_PATH});
  return {recordOf(*row, controller.read({row->id}))};
}

std::vector<tReadingRecord> readThrough(const tController& controller) {
  return controller.code() < 0 ? readWithoutController(controller) : readEverything(controller);
}

// ---- Through the library ----

void captureLibrary(iQuenra& library, tMachineRecord& record) {
  tTimedLibrary timedLibrary(library);
  const tController controller(timedLibrary);
  record.opening = {controller.code(), timedLibrary.openingTime()};
  record.readings = readThrough(controller);
  for (tReadingRecord& reading : record.readings) {
    reading.result.duration = timedLibrary.timeOf(reading.id);
  }
  if (controller.code() >= 0) {
    record.selfTest = timed([&] { return controller.selfTest(); });
  } else {
    record.selfTest.code = controller.code();
  }
}

nCapture::tTerminalRecord recordOf(const tTerminal& terminal) {
  nCapture::tTerminalRecord record{terminal.name,       terminal.id,      terminal.visibility,
                                   terminal.busType,    terminal.busName, std::nullopt,
                                   terminal.isExternal, terminal.isOwned};
  if (terminal.busLine != tTerminal::kNoBusLine) {
    record.busLine = terminal.busLine;
  }
  return record;
}

std::vector<nCapture::tTerminalRecord> listTerminals(const tCapturePorts& ports) {
  tDemotions demotions;
  tRoutingSession session(ports.routing, routingDevice(ports.library), demotions);
  std::vector<nCapture::tTerminalRecord> records;
  for (const tTerminal& terminal : session.terminals()) {
    records.push_back(recordOf(terminal));
  }
  return records;
}

nCapture::tTerminals captureTerminals(const tCapturePorts& ports) {
  nCapture::tTerminals terminals;
  terminals.listing = timed([&]() -> int32_t {
    try {
      terminals.terminals = listTerminals(ports);
      return QUENRA_STATUS_SUCCESS;
    } catch (const tCommandError& error) {
      return error.status().value_or(QUENRA_STATUS_GENERIC_FAILURE);
    }
  });
  return terminals;
}

// ---- Through the driver ----

// The library over recording interfaces. Counts of interfaces and the self-test are not the driver's.
class tRecordedLibrary final : public tReadOnlyLibrary {
 public:
  tRecordedLibrary(iMachineDriver& driver, tMachineRecord& record) noexcept
      : record_(record),
        controller_(driver.controller(), record.controller, record.handover),
        marten_(driver.marten(), record.marten),
        reader_(controller_, record.controller.isOpen(), marten_, record.marten.isOpen()) {}

  int32_t openController(uint64_t* handle) noexcept override {
    *handle = 0;
    return reader_.identify();
  }
  void closeController(uint64_t /*handle*/) noexcept override {}
  int32_t performSelfTest(uint64_t /*handle*/) noexcept override { return record_.selfTest.code; }
  [[nodiscard]] uint32_t presentInterfaces(tInterface which) const noexcept override {
    return which == tInterface::marten ? record_.marten.present : record_.controller.present;
  }

 private:
  [[nodiscard]] tMachineReader* reader() noexcept override { return &reader_; }
  [[nodiscard]] int32_t readDevicePath(char* /*buffer*/, uint64_t* /*size*/) noexcept override {
    return QUENRA_STATUS_NO_CONTROLLER;
  }

  tMachineRecord& record_;
  tRecordingController controller_;
  tRecordingMarten marten_;
  tMachineReader reader_;
};

void captureDriver(iMachineDriver& driver, tMachineRecord& record) {
  // The library opens exactly one controller interface and at most one Marten interface.
  if (record.controller.present != 1 || record.marten.present > 1) {
    return;
  }
  record.controller.opening = timed([&] { return driver.openController(); });
  if (record.marten.present == 1) {
    record.marten.opening = timed([&] { return driver.openMarten(); });
  }
  if (record.hasOpenInterfaces()) {
    tRecordedLibrary library(driver, record);
    const tController controller(library);
    static_cast<void>(readThrough(controller));
  }
  driver.close();
}

// ---- The system ----

nCapture::tUpdateEnvironment captureEnvironment(iUpdateFacts& facts) {
  const tDriveProtection drive = facts.driveProtection();
  const tDriverStoreTool tool = facts.driverStoreTool();
  return {drive.isOn,  drive.code,         drive.line, tool.windowsFolder,
          tool.exists, tool.isSystemOwned, tool.owner, tool.startFailure.value()};
}

bool isSameResult(const tReadingRecord& left, const tReadingRecord& right) {
  return left.id == right.id && left.result.code == right.result.code && left.value == right.value;
}

}  // namespace

tMachineRecord captureMachine(const tCapturePorts& ports) {
  tMachineRecord record;
  record.versions = {QUENRA_VERSION, ports.installation.libraryVersion(),
                     ports.driver.systemVersion()};
  record.controller.present = ports.library.presentInterfaces(tInterface::controller);
  record.marten.present = ports.library.presentInterfaces(tInterface::marten);
  record.devicePaths = ports.driver.devicePaths();
  if (record.devicePaths != 0) {
    record.topography = ports.driver.topography();
  }
  captureLibrary(ports.library, record);
  record.terminals = captureTerminals(ports);
  captureDriver(ports.driver, record);
  record.updateEnvironment = captureEnvironment(ports.updateFacts);
  return record;
}

std::vector<std::string> deviationsOf(const tMachineRecord& record) {
  tReplayedLibrary library(record);
  const tController controller(library);
  if (controller.code() != record.opening.code) {
    return {"opening"};
  }
  const std::vector<tReadingRecord> replayed = readThrough(controller);
  std::vector<std::string> names;
  for (size_t i = 0; i < std::max(replayed.size(), record.readings.size()); ++i) {
    const bool isInBoth = i < replayed.size() && i < record.readings.size();
    if (!isInBoth || !isSameResult(replayed[i], record.readings[i])) {
      names.push_back(i < record.readings.size() ? record.readings[i].name : replayed[i].name);
    }
  }
  return names;
}

}  // namespace nCommandLine
