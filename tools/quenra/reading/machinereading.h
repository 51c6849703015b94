#ifndef TOOLS_QUENRA_READING_MACHINEREADING_H
#define TOOLS_QUENRA_READING_MACHINEREADING_H

#include <vector>

#include "tools/quenra/catalogue/attributerow.h"
#include "tools/quenra/reading/tcontroller.h"

namespace nCommandLine {

// One attribute with all its instances, in order, or with the value of each interface. Where the
// machine has no instance, or does not report their number, the one reading of instance 0 has the
// reason.
struct tAttributeReadings {
  const tAttributeRow* row;
  std::vector<tReading> readings;
};

// The number of instances that this machine has, at most those that the library answers for.
[[nodiscard]] uint32_t countInstances(const tController& controller, const tInstanceRow& instances);

// Reads the complete catalogue, in its order.
[[nodiscard]] std::vector<tAttributeReadings> readMachine(const tController& controller);

}  // namespace nCommandLine

#endif
