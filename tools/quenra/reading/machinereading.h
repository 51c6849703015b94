#ifndef TOOLS_QUENRA_READING_MACHINEREADING_H
#define TOOLS_QUENRA_READING_MACHINEREADING_H

#include <vector>

#include "tools/quenra/catalogue/attributerow.h"
#include "tools/quenra/reading/tcontroller.h"

namespace nCommandLine {

// One attribute with all its instances, in order. Where the machine has no instance, or does not
// say how many, there is one reading, of instance 0, that says why.
struct tAttributeReadings {
  const tAttributeRow* row;
  std::vector<tReading> readings;
};

// Reads the whole catalogue, in its order.
[[nodiscard]] std::vector<tAttributeReadings> readMachine(const tController& controller);

}  // namespace nCommandLine

#endif
