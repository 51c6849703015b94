#include "tools/quenra/reading/tcontroller.h"

#include <algorithm>
#include <cstddef>
#include <map>

#include "quenra_status.h"

namespace nCommandLine {
namespace {

// ---- Reading an attribute ----

constexpr uint64_t kFirstBufferSize = 256;
// More than any real text needs. A greater size is a misbehaving driver: do not allocate it.
constexpr uint64_t kMaxBufferSize = uint64_t{1024} * 1024;
// The text may grow between two calls; the limit ends the loop under a misbehaving driver.
constexpr int kMaxAttempts = 8;

// The library leaves the buffer unchanged if the SMBIOS table is malformed, so it must hold an
// empty text before the call. The byte beyond `size` stays NUL if the library fills the rest.
int32_t readTextOnce(iQuenra& library, uint64_t handle, uint32_t id, std::string& text,
                     uint64_t& size) {
  text.assign(static_cast<size_t>(size) + 1, '\0');
  const int32_t code = library.getAttributeUTF8(handle, id, text.data(), &size);
  text.resize(text.find('\0'));
  return code;
}

int32_t readText(iQuenra& library, uint64_t handle, uint32_t id, std::string& text) {
  uint64_t size = kFirstBufferSize;
  int32_t code = QUENRA_STATUS_SUCCESS;
  for (int attempt = 0; attempt < kMaxAttempts; ++attempt) {
    const uint64_t given = size;
    code = readTextOnce(library, handle, id, text, size);
    if (code != QUENRA_STATUS_BUFFER_TOO_SMALL || size <= given || size > kMaxBufferSize) {
      break;
    }
  }
  return code;
}

// ---- Opening ----

constexpr const char* kFailure = "cannot open the controller";

std::string failureOf(const std::string& cause) {
  return std::string(kFailure) + ": " + cause;
}

tOpeningFailure tooMany(uint32_t count, const std::string& kind, const std::string& supported) {
  return {failureOf(std::to_string(count) + " " + kind + " interfaces are present; " + supported),
          {{}, "Disable the others in the system's device manager."},
          tOpeningCause::interfaces};
}

// ---- The complete machine ----

bool hasText(const tReading& reading) {
  const auto* const text = std::get_if<std::string>(&reading.value);
  return reading.state() == tReadingState::value && text != nullptr && !text->empty();
}

// No attribute counts the processors. In a malformed table every further instance reads as an empty
// text, so a processor without maker and name ends the count.
bool isNamedProcessor(const tController& controller, uint8_t processor) {
  return hasText(controller.read({QUENRA_ATTRIBUTE_PROCESSOR_VERSION, processor})) ||
         hasText(controller.read({QUENRA_ATTRIBUTE_PROCESSOR_MANUFACTURER, processor}));
}

uint32_t countNamedProcessors(const tController& controller) {
  uint32_t count = 0;
  while (count < kInstanceLimit && isNamedProcessor(controller, static_cast<uint8_t>(count))) {
    ++count;
  }
  return count;
}

// The number of instances of each kind on this machine, read once.
class tInstanceCounter {
 public:
  explicit tInstanceCounter(const tController& controller) : controller_(controller) {}

  uint32_t countOf(const tInstanceRow& instances) {
    const auto known = counts_.find(&instances);
    if (known != counts_.end()) {
      return known->second;
    }
    return counts_[&instances] = countInstances(controller_, instances);
  }

 private:
  const tController& controller_;
  std::map<const tInstanceRow*, uint32_t> counts_;
};

tAttributeReadings readAll(const tController& controller, const tAttributeRow& row,
                           uint32_t count) {
  tAttributeReadings attribute{&row, {}};
  for (uint32_t instance = 0; instance < std::max(count, uint32_t{1}); ++instance) {
    attribute.readings.push_back(controller.read({row.id, static_cast<uint8_t>(instance)}));
  }
  return attribute;
}

tAttributeReadings readPerInterface(const tController& controller, const tAttributeRow& row) {
  return {&row,
          {controller.read({row.id, 0, tInterface::controller}),
           controller.read({row.id, 0, tInterface::marten})}};
}

}  // namespace

tReading readAttribute(iQuenra& library, uint64_t handle, const tAttributeAddress& address) {
  tReading reading{address, QUENRA_STATUS_SUCCESS, uint32_t{0}};
  if (address.type() == tAttributeType::text) {
    std::string text;
    reading.code = readText(library, handle, address.id(), text);
    reading.value = std::move(text);
  } else {
    uint32_t value = 0;
    reading.code = library.getAttributeU32(handle, address.id(), &value);
    reading.value = value;
  }
  return reading;
}

tController::tController(iQuenra& library) noexcept
    : library_(library), code_(library.openController(&handle_)) {}

tController::~tController() {
  if (code_ >= 0) {
    library_.closeController(handle_);
  }
}

tReading tController::read(const tAttributeAddress& address) const {
  return readAttribute(library_, handle_, address);
}

int32_t tController::write(const tAttributeAddress& address, const tAttributeValue& value) const {
  if (const auto* const text = std::get_if<std::string>(&value)) {
    return library_.setAttributeUTF8(handle_, address.id(), text->c_str());
  }
  return library_.setAttributeU32(handle_, address.id(), std::get<uint32_t>(value));
}

int32_t tController::selfTest() const noexcept {
  return library_.performSelfTest(handle_);
}

uint32_t tController::presentInterfaces(tInterface which) const noexcept {
  return library_.presentInterfaces(which);
}

int32_t tController::update(std::string_view image, bool onlyNewer) const noexcept {
  constexpr uint32_t kOnlyNewer = 0;
  constexpr uint32_t kEverything = 1;
  return library_.updateFirmware2(handle_, image.data(), image.size(),
                                  onlyNewer ? kOnlyNewer : kEverything);
}

// ---- Opening ----

tExitCode exitCodeOfOpening(int32_t code) noexcept {
  switch (code) {
    case QUENRA_STATUS_NO_CONTROLLER:
      return tExitCode::noController;
    case QUENRA_STATUS_NOT_SUPPORTED:
      return tExitCode::notSupported;
    default:
      return tExitCode::failure;
  }
}

void checkOpening(int32_t code, std::vector<tWarning>& warnings) {
  if (code < 0) {
    throw tCommandError(exitCodeOfOpening(code), kFailure, code);
  }
  if (code > 0) {
    warnings.push_back({"opening the controller", code});
  }
}

tOpeningFailure explainOpeningFailure(const tController& controller) {
  const int32_t code = controller.code();
  const uint32_t controllers = controller.presentInterfaces(tInterface::controller);
  const uint32_t martens = controller.presentInterfaces(tInterface::marten);
  const bool isRejectedForTheirNumber = code == QUENRA_STATUS_GENERIC_FAILURE;
  if (isRejectedForTheirNumber && controllers > 1) {
    return tooMany(controllers, "controller", "exactly 1 is supported");
  }
  if (isRejectedForTheirNumber && martens > 1) {
    return tooMany(martens, "Marten", "at most 1 is supported");
  }
  // The codes for an SMBIOS table that cannot be read, or that names an unsupported machine.
  // Without a controller interface the same code means that no controller is present.
  const bool isCodeOfTable =
      code == QUENRA_STATUS_NO_CONTROLLER || code == QUENRA_STATUS_NOT_SUPPORTED;
  if (isCodeOfTable && controllers > 0) {
    return {failureOf("the driver replied, but its SMBIOS table is unusable or is not that of a "
                      "supported machine"),
            {{}, "Update the machine's firmware, which provides the table, and the driver."},
            tOpeningCause::table};
  }
  return {kFailure, {}};
}

void checkOpening(const tController& controller, std::vector<tWarning>& warnings) {
  const int32_t code = controller.code();
  if (code < 0) {
    const tOpeningFailure fault = explainOpeningFailure(controller);
    throw tCommandError(exitCodeOfOpening(code), fault.fact, code, fault.explanation);
  }
  checkOpening(code, warnings);
}

// ---- The complete machine ----

uint32_t countInstances(const tController& controller, const tInstanceRow& instances) {
  if (instances.maximum == 1) {
    return 1;
  }
  if (instances.countAttribute == 0) {
    return countNamedProcessors(controller);
  }
  const tReading reading = controller.read({instances.countAttribute});
  return reading.state() == tReadingState::value
             ? std::min(std::get<uint32_t>(reading.value), instances.maximum)
             : 0;
}

std::vector<tAttributeReadings> readMachine(const tController& controller,
                                            std::span<const tSubjectRow* const> subjects) {
  tInstanceCounter counter(controller);
  std::vector<tAttributeReadings> machine;
  for (const tAttributeRow& row : kAttributes) {
    if (std::ranges::find(subjects, row.subject) != subjects.end()) {
      machine.push_back(row.perInterface
                            ? readPerInterface(controller, row)
                            : readAll(controller, row, counter.countOf(*row.instances)));
    }
  }
  return machine;
}

}  // namespace nCommandLine
