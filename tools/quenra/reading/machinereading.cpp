#include "tools/quenra/reading/machinereading.h"

#include <algorithm>
#include <map>

#include "tools/quenra/tables/attributetable.h"

namespace nCommandLine {
namespace {

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

uint32_t countInstances(const tController& controller, const tInstanceRow& instances) {
  if (instances.most == 1) {
    return 1;
  }
  if (instances.countAttribute == 0) {
    return countNamedProcessors(controller);
  }
  const tReading reading = controller.read({instances.countAttribute});
  return reading.state() == tReadingState::value
             ? std::min(std::get<uint32_t>(reading.value), instances.most)
             : 0;
}

std::vector<tAttributeReadings> readMachine(const tController& controller) {
  tInstanceCounter counter(controller);
  std::vector<tAttributeReadings> machine;
  for (const tAttributeRow& row : kAttributes) {
    machine.push_back(row.perInterface ? readPerInterface(controller, row)
                                       : readAll(controller, row, counter.countOf(*row.instances)));
  }
  return machine;
}

}  // namespace nCommandLine
