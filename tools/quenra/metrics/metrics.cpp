#include "tools/quenra/metrics/metrics.h"

#include <algorithm>
#include <chrono>
#include <iterator>
#include <map>
#include <utility>

#include "quenra_version.h"
#include "source/user/update/updateplan.h"
#include "tools/quenra/reading/reading.h"
#include "tools/quenra/reading/tcontroller.h"
#include "tools/quenra/routing/troutingsession.h"
#include "tools/quenra/tables/statustable.h"
#include "tools/quenra/update/updateplan.h"

namespace nCommandLine {
namespace {

using std::chrono::microseconds;
using tLabels = std::vector<tMetricLabel>;

// ---- Numbers ----

constexpr int64_t kMillion = 1'000'000;

// "2.000135", without the locale and the rounding of floating-point numbers.
std::string secondsText(microseconds time) {
  const std::string fraction = std::to_string(kMillion + time.count() % kMillion);
  return std::to_string(time.count() / kMillion) + "." + fraction.substr(1);
}

std::string truthText(bool truth) {
  return truth ? "1" : "0";
}

class tTimer {
 public:
  [[nodiscard]] microseconds elapsed() const noexcept {
    return std::chrono::duration_cast<microseconds>(tClock::now() - start_);
  }

 private:
  using tClock = std::chrono::steady_clock;

  tClock::time_point start_ = tClock::now();
};

// Opens a controller and measures the time, also of a failure.
struct tTimedController {
  explicit tTimedController(iQuenra& library) : controller(library), opening(timer.elapsed()) {}

  tTimer timer;  // started before the next member is constructed
  tController controller;
  microseconds opening;
};

// ---- Families: their names and units follow the rules of Prometheus ----

class tCollector {
 public:
  explicit tCollector(iQuenra& library) : opened_(library) {}

  std::vector<tMetricFamily> collect() {
    addProcess();
    addOpening();
    if (isOpen()) {
      addMachine();
      addFirmware();
      addMemory();
    }
    addSelfTest();
    addStatuses();
    addTime();
    return std::move(families_);
  }

 private:
  [[nodiscard]] const tController& controller() const noexcept { return opened_.controller; }
  [[nodiscard]] bool isOpen() const noexcept { return controller().code() >= 0; }

  void add(std::string_view name, tMetricType type, std::string_view unit, std::string_view help,
           std::vector<tMetricSample> samples) {
    families_.push_back({name, type, unit, help, std::move(samples)});
  }
  void addGauge(std::string_view name, std::string_view help, std::string value) {
    add(name, tMetricType::gauge, "", help, {{{}, std::move(value)}});
  }
  void addDuration(std::string_view name, std::string_view help, microseconds time) {
    add(name, tMetricType::gauge, "seconds", help, {{{}, secondsText(time)}});
  }

  // Reads an attribute. A failure becomes a sample of quenra_status.
  tReading read(const tAttributeAddress& address) {
    tReading reading = controller().read(address);
    note(reading);
    return reading;
  }
  void note(const tReading& reading) {
    const tAttributeRow* const row = findAttribute(reading.address.attribute);
    if (reading.state() == tReadingState::failed && row != nullptr) {
      // One sample for all instances: the first code.
      statuses_.emplace("read " + std::string(row->name), reading.code);
    }
  }
  // Empty if it has no value.
  std::string textOf(uint32_t attribute) {
    const tReading reading = read({attribute});
    return reading.state() == tReadingState::value ? std::get<std::string>(reading.value) : "";
  }

  void addProcess() {
    add("quenra_build", tMetricType::info, "", "The program that collected the metrics.",
        {{{{"version", QUENRA_VERSION}}, "1"}});
    add("quenra_routes_programmed", tMetricType::counter, "",
        "Trigger routes that this process has programmed.",
        {{{}, std::to_string(routeCounters().programmed)}});
    add("quenra_routes_demoted", tMetricType::counter, "",
        "Trigger routes of this process that the driver has demoted.",
        {{{}, std::to_string(routeCounters().demoted)}});
  }

  void addOpening() {
    addGauge("quenra_controller_up", "1 if the controller could be opened, else 0.",
             truthText(isOpen()));
    addDuration("quenra_controller_open_duration_seconds",
                "Time to open the controller, or until opening failed.", opened_.opening);
    statuses_.emplace("open", controller().code());
  }

  void addMachine() {
    add("quenra_machine", tMetricType::info, "", "The controller.",
        {{{{"manufacturer", textOf(QUENRA_ATTRIBUTE_SYSTEM_MANUFACTURER)},
           {"product", textOf(QUENRA_ATTRIBUTE_PRODUCT_NAME)},
           {"serial_number", textOf(QUENRA_ATTRIBUTE_SERIAL_NUMBER)}},
          "1"}});
  }

  void addFirmware() {
    const tUpdateMachine machine = readUpdateMachine(controller());
    note(machine.takesUpdates);
    note(machine.bios);
    if (machine.hasMarten) {
      note(machine.marten);
    }
    std::vector<tMetricSample> versions;
    std::vector<tMetricSample> orders;
    const auto addDevice = [&](const char* device, const std::optional<std::string>& version) {
      if (version) {
        versions.push_back({{{"device", device}, {"version", *version}}, "1"});
        if (const uint32_t order = nQUENRA1400::packedVersion(*version); order != 0) {
          orders.push_back({{{"device", device}}, std::to_string(order)});
        }
      }
    };
    addDevice("BIOS", machine.biosVersion());
    addDevice("MARTEN", machine.martenVersion());
    add("quenra_firmware", tMetricType::info, "", "The installed firmware.", std::move(versions));
    add("quenra_firmware_version_order", tMetricType::gauge, "",
        "A number that is greater for a newer version of the same device.", std::move(orders));
    if (machine.takesUpdates.state() == tReadingState::value) {
      addGauge("quenra_firmware_update_supported",
               "1 if the machine supports firmware updates, else 0.",
               truthText(std::get<uint32_t>(machine.takesUpdates.value) != 0));
    }
    addGauge("quenra_firmware_restart_pending",
             "1 if an update awaits a restart of the machine, else 0.",
             truthText(machine.awaitsRestart()));
  }

  void addMemory() {
    const tReading count = read({QUENRA_ATTRIBUTE_MEMORY_MODULE_COUNT});
    if (count.state() != tReadingState::value) {
      return;
    }
    const uint32_t modules = std::min(std::get<uint32_t>(count.value), kInstanceLimit);
    addGauge("quenra_memory_modules", "Populated memory modules.", std::to_string(modules));
    std::vector<tMetricSample> sizes;
    for (uint32_t module = 0; module < modules; ++module) {
      const tReading size = read({QUENRA_ATTRIBUTE_MEMORY_SIZE, static_cast<uint8_t>(module)});
      const auto bytes = size.state() == tReadingState::value
                             ? memorySizeInBytes(std::get<uint32_t>(size.value))
                             : std::nullopt;
      if (bytes) {
        sizes.push_back({{{"module", std::to_string(module)}}, std::to_string(*bytes)});
      }
    }
    add("quenra_memory_module_size_bytes", tMetricType::gauge, "bytes",
        "Size of a memory module, if its firmware field can represent it.", std::move(sizes));
  }

  void addSelfTest() {
    bool passed = false;  // also without a controller
    if (isOpen()) {
      const tTimer timer;
      const int32_t code = controller().selfTest();
      passed = code >= 0;
      addDuration("quenra_self_test_duration_seconds", "Time of the self-test.", timer.elapsed());
      statuses_.emplace("self-test", code);
    }
    addGauge("quenra_self_test_passed",
             "1 if the self-test passed; 0 if it failed or the controller could not be opened.",
             truthText(passed));
  }

  void addStatuses() {
    std::vector<tMetricSample> samples;
    for (const auto& [operation, code] : statuses_) {
      samples.push_back({{{"operation", operation},
                          {"code", std::to_string(code)},
                          {"constant", std::string(explainStatus(code).constant)}},
                         "1"});
    }
    add("quenra_status", tMetricType::info, "",
        "Status codes of opening, of the self-test, and of attributes that could not be read.",
        std::move(samples));
  }

  void addTime() {
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    add("quenra_last_collection_timestamp_seconds", tMetricType::gauge, "seconds",
        "Time at which the metrics were collected, in seconds since 1970-01-01 UTC.",
        {{{}, secondsText(std::chrono::duration_cast<microseconds>(now))}});
  }

  tTimedController opened_;
  std::map<std::string, int32_t> statuses_;  // by operation
  std::vector<tMetricFamily> families_;
};

constexpr std::string_view kLabels[] = {"version",       "manufacturer", "product",
                                        "serial_number", "device",       "module",
                                        "operation",     "code",         "constant"};

}  // namespace

std::vector<tMetricFamily> collectMetrics(iQuenra& library) {
  return tCollector(library).collect();
}

bool isMetricLabel(std::string_view name) noexcept {
  return std::ranges::find(kLabels, name) != std::end(kLabels);
}

}  // namespace nCommandLine
