// Records of machines, and a driver that answers from one.
#ifndef TESTS_COMPONENT_CAPTURE_RECORDEDMACHINE_H
#define TESTS_COMPONENT_CAPTURE_RECORDEDMACHINE_H

#include <random>
#include <string>

#include "tools/capture/machinerecord.h"
#include "tools/quenra/capture/imachinedriver.h"
#include "tools/quenra/capture/recordedinterfaces.h"
#include "tools/quenra/reading/iquenra.h"

namespace nTests {

// The driver of a recorded machine. The record must outlive the object.
class tRecordDriver final : public nCommandLine::iMachineDriver {
 public:
  explicit tRecordDriver(const nCapture::tMachineRecord& record) : record_(record) {}

  [[nodiscard]] int32_t openController() noexcept override { return open(record_.controller); }
  [[nodiscard]] int32_t openMarten() noexcept override { return open(record_.marten); }
  [[nodiscard]] nCommandLine::tControllerInterface& controller() noexcept override {
    return controller_;
  }
  [[nodiscard]] nCommandLine::tMartenInterface& marten() noexcept override { return marten_; }
  void close() noexcept override { isOpen = false; }
  [[nodiscard]] uint32_t devicePaths() noexcept override { return record_.devicePaths; }
  [[nodiscard]] nCapture::tTopography topography() override {
    return record_.topography.value_or(nCapture::tTopography{});
  }
  [[nodiscard]] std::string systemVersion() override { return record_.versions.system; }

  bool isOpen = false;

 private:
  int32_t open(const nCapture::tInterface& interface) noexcept {
    isOpen = true;
    return interface.opening ? interface.opening->code : 0;
  }

  const nCapture::tMachineRecord& record_;
  nCommandLine::tReplayedController controller_{record_.controller, record_.handover};
  nCommandLine::tReplayedMarten marten_{record_.marten};
};

// The installation of a recorded machine. The record must outlive the object.
class tRecordInstallation final : public nCommandLine::iInstallation {
 public:
  explicit tRecordInstallation(const nCapture::tMachineRecord& record) : record_(record) {}

  [[nodiscard]] std::string libraryVersion() override { return record_.versions.library; }
  [[nodiscard]] bool isAdministrator() noexcept override { return true; }

 private:
  const nCapture::tMachineRecord& record_;
};

// A supported machine with both interfaces, as its driver answers: without the results of the library.
[[nodiscard]] nCapture::tMachineRecord referenceMachine();

// A machine that is usual in some respects and not in others: damaged tables, missing interfaces, codes in
// place of attributes, texts that are not UTF-8.
[[nodiscard]] nCapture::tMachineRecord randomMachine(std::mt19937& random);

// Captures a machine whose driver and library answer from a record.
[[nodiscard]] nCapture::tMachineRecord captured(const nCapture::tMachineRecord& machine);

// The capture file of a record, without durations.
[[nodiscard]] std::string textWithoutDurations(const nCapture::tMachineRecord& record);

}  // namespace nTests

#endif
