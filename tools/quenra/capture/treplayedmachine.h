// A machine that is not present: the library's answers for a record of it, by the library's own code.
#ifndef TOOLS_QUENRA_CAPTURE_TREPLAYEDMACHINE_H
#define TOOLS_QUENRA_CAPTURE_TREPLAYEDMACHINE_H

#include <memory>
#include <string>

#include "tools/capture/machinerecord.h"
#include "tools/quenra/capture/recordedinterfaces.h"
#include "tools/quenra/capture/tmachinereader.h"
#include "tools/quenra/output/diagnostics.h"
#include "tools/quenra/reading/iquenra.h"
#include "tools/quenra/update/updateports.h"

namespace nCommandLine {

// Reads a capture file. Throws tCommandError with the path, the reason and a remedy.
[[nodiscard]] nCapture::tMachineRecord readCapture(const std::string& path);

// The library on the recorded machine.
class tReplayedLibrary final : public tReadOnlyLibrary {
 public:
  // The record must outlive the object.
  explicit tReplayedLibrary(const nCapture::tMachineRecord& record) noexcept : record_(record) {}

  // A machine whose interfaces the library could not open fails with the recorded code.
  int32_t openController(uint64_t* handle) noexcept override;
  void closeController(uint64_t handle) noexcept override;
  int32_t performSelfTest(uint64_t handle) noexcept override;
  [[nodiscard]] uint32_t presentInterfaces(tInterface which) const noexcept override;

 private:
  // The driver that answers, and the library's session with it.
  struct tSession {
    explicit tSession(const nCapture::tMachineRecord& record) noexcept
        : controller(record.controller, record.handover),
          marten(record.marten),
          reader(controller, record.controller.isOpen(), marten, record.marten.isOpen()) {}

    tReplayedController controller;
    tReplayedMarten marten;
    tMachineReader reader;
  };

  [[nodiscard]] tMachineReader* reader() noexcept override {
    return session_ ? &session_->reader : nullptr;
  }
  [[nodiscard]] int32_t readDevicePath(char* buffer, uint64_t* size) noexcept override;

  const nCapture::tMachineRecord& record_;
  std::unique_ptr<tSession> session_;
};

// The system of the machine. Its folder for temporary files is not part of a record and counts as usable.
class tReplayedUpdateFacts final : public iUpdateFacts {
 public:
  explicit tReplayedUpdateFacts(const nCapture::tUpdateEnvironment& environment) noexcept
      : environment_(environment) {}

  [[nodiscard]] tDriveProtection driveProtection() noexcept override;
  [[nodiscard]] tDriverStoreTool driverStoreTool() override;
  [[nodiscard]] std::string temporaryFolder() override { return ""; }
  [[nodiscard]] std::error_code temporaryFolderFailure() override { return {}; }

 private:
  const nCapture::tUpdateEnvironment& environment_;
};

}  // namespace nCommandLine

#endif
