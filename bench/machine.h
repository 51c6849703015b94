// The machine that the measurements of calls use: the simulated machine under Wine, or its model in the
// same process on Linux.
#ifndef BENCH_MACHINE_H
#define BENCH_MACHINE_H

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "bench/measurement.h"
#include "quenra.h"
#include "simulator/control/tsimulatedmachine.h"
#include "tests/builders/smbiostablebuilder.h"

namespace nBench {

// A table of at least `size` bytes: structures of other vendors, and then those of a machine that the
// library supports, so that a walk passes through the table.
[[nodiscard]] inline std::vector<uint8_t> machineTable(size_t size) {
  const std::vector<uint8_t> supported = nTests::tReferenceTable().build();
  nTests::tSmbiosTableBuilder builder;
  size_t built = supported.size();
  while (built < size) {
    constexpr uint8_t kOtherVendors = 0xDD;
    constexpr size_t kBody = 20;
    constexpr size_t kStructure = 4 + kBody + 14 + 1;
    builder.structure(kOtherVendors, std::vector<uint8_t>(kBody, 0x11), {"filling text "});
    built += kStructure;
  }
  return builder.bytes(supported).build();
}

// A machine with a table and an open controller, for the lifetime of the object.
class tOpenMachine {
 public:
  explicit tOpenMachine(std::vector<uint8_t> table) : table_(std::move(table)) {
    machine_.reset();
    machine_.setTable(table_);
    uint64_t handle = 0;
    if (QUENRA_openController(&handle) != 0) {
      fail("the controller cannot be opened");
    }
  }
  tOpenMachine(const tOpenMachine&) = delete;
  tOpenMachine& operator=(const tOpenMachine&) = delete;
  ~tOpenMachine() {
    QUENRA_closeController(QUENRA_HANDLE);
    machine_.reset();
  }

  [[nodiscard]] const std::vector<uint8_t>& table() const { return table_; }
  [[nodiscard]] nSimulator::tSimulatedMachine& control() { return machine_; }

 private:
  nSimulator::tSimulatedMachine machine_;
  std::vector<uint8_t> table_;
};

}  // namespace nBench

#endif
