#ifndef TOOLS_QUENRA_READING_MACHINEREADING_H
#define TOOLS_QUENRA_READING_MACHINEREADING_H

#include <vector>

#include "tools/quenra/reading/tcontroller.h"
#include "tools/quenra/tables/attributetable.h"

namespace nCommandLine {

// Reads one attribute with all its instances, in order, or with the value of each interface. If the
// machine has no instance or does not report their number, returns the reading of instance 0, which
// holds the reason.
struct tAttributeReadings {
  const tAttributeRow* row;
  std::vector<tReading> readings;
};

// The number of instances on this machine, limited to those that the library serves.
[[nodiscard]] uint32_t countInstances(const tController& controller, const tInstanceRow& instances);

// Reads every attribute of the table, in its order.
[[nodiscard]] std::vector<tAttributeReadings> readMachine(const tController& controller);

}  // namespace nCommandLine

#endif
