#include "tools/quenra/reading/machinereading.h"

#include <algorithm>
#include <map>

#include "tools/quenra/catalogue/attributecatalogue.h"

namespace nCommandLine {
namespace {

bool hasText(const tReading& reading) {
  const auto* const text = std::get_if<std::string>(&reading.value);
  return reading.state() == tReadingState::value && text != nullptr && !text->empty();
}

// How many instances each kind has on this machine, found out once.
class tInstanceCounter {
 public:
  explicit tInstanceCounter(const tController& controller) : controller_(controller) {}

  uint32_t countOf(const tInstanceRow& instances) {
    const auto known = counts_.find(&instances);
    if (known != counts_.end()) {
      return known->second;
    }
    const uint32_t count = instances.most == 1 ? 1 : readCount(instances);
    return counts_[&instances] = std::clamp(count, uint32_t{1}, instances.most);
  }

 private:
  [[nodiscard]] uint32_t readCount(const tInstanceRow& instances) const {
    if (instances.countAttribute == 0) {
      return namedProcessors();
    }
    const tReading reading = controller_.read({instances.countAttribute});
    return reading.state() == tReadingState::value ? std::get<uint32_t>(reading.value) : 0;
  }
  // No attribute counts the processors. In a malformed table every further instance reads as an
  // empty text, so a processor without maker and name ends the row.
  [[nodiscard]] uint32_t namedProcessors() const {
    uint32_t count = 0;
    while (count < nInstances::kInstanceLimit && isNamed(static_cast<uint8_t>(count))) {
      ++count;
    }
    return count;
  }
  [[nodiscard]] bool isNamed(uint8_t processor) const {
    return hasText(controller_.read({QUENRA_ATTRIBUTE_PROCESSOR_VERSION, processor})) ||
           hasText(controller_.read({QUENRA_ATTRIBUTE_PROCESSOR_MANUFACTURER, processor}));
  }

  const tController& controller_;
  std::map<const tInstanceRow*, uint32_t> counts_;
};

}  // namespace

std::vector<tAttributeReadings> readMachine(const tController& controller) {
  tInstanceCounter counter(controller);
  std::vector<tAttributeReadings> machine;
  for (const tAttributeRow& row : kAttributes) {
    tAttributeReadings attribute{&row, {}};
    const uint32_t count = counter.countOf(*row.instances);
    for (uint32_t instance = 0; instance < count; ++instance) {
      attribute.readings.push_back(controller.read({row.id, static_cast<uint8_t>(instance)}));
    }
    machine.push_back(std::move(attribute));
  }
  return machine;
}

}  // namespace nCommandLine
