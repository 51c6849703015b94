#include "tools/quenra/capture/treplayedmachine.h"

#include <algorithm>
#include <cstring>
#include <system_error>
#include <variant>

#include "quenra.h"
#include "quenra_attributes.h"
#include "quenra_status.h"
#include "tools/capture/capturefile.h"
#include "tools/quenra/firmware/files.h"

namespace nCommandLine {

nCapture::tMachineRecord readCapture(const std::string& path) {
  try {
    return nCapture::parseCapture(readFile(path));
  } catch (const nCapture::tCaptureFault& fault) {
    throw tCommandError(
        tExitCode::failure, "'" + path + "' is not a capture: " + std::string(fault.what()),
        std::nullopt, "Write a capture with 'quenra capture FILE' on the machine concerned.");
  }
}

// ---- The library ----

int32_t tReplayedLibrary::openController(uint64_t* handle) noexcept {
  // The capture opens the interfaces only if there is one controller and at most one Marten, as the
  // library demands; otherwise the library's own code was recorded.
  if (!record_.hasOpenInterfaces()) {
    return record_.opening.code;
  }
  session_ = std::make_unique<tSession>(record_);
  const int32_t code = session_->reader.identify();
  if (code < 0) {
    session_.reset();
    return code;
  }
  *handle = QUENRA_HANDLE;
  return code;
}

void tReplayedLibrary::closeController(uint64_t /*handle*/) noexcept {
  session_.reset();
}

int32_t tReplayedLibrary::readDevicePath(char* buffer, uint64_t* size) noexcept {
  const auto reading = std::ranges::find(record_.readings, QUENRA_ATTRIBUTE_DEVICE_PATH,
                                         &nCapture::tReadingRecord::id);
  if (reading == record_.readings.end()) {
    return QUENRA_STATUS_NO_CONTROLLER;
  }
  const auto* const text = std::get_if<std::string>(&reading->value);
  if (text == nullptr) {
    return reading->result.code;
  }
  const uint64_t needed = text->size() + 1;
  if (*size < needed) {
    *size = needed;
    return QUENRA_STATUS_BUFFER_TOO_SMALL;
  }
  std::memcpy(buffer, text->c_str(), static_cast<size_t>(needed));
  return reading->result.code;
}

int32_t tReplayedLibrary::performSelfTest(uint64_t /*handle*/) noexcept {
  return session_ ? record_.selfTest.code : int32_t{QUENRA_STATUS_INVALID_HANDLE};
}

uint32_t tReplayedLibrary::presentInterfaces(tInterface which) const noexcept {
  return which == tInterface::marten ? record_.marten.present : record_.controller.present;
}

// ---- The system ----

tDriveProtection tReplayedUpdateFacts::driveProtection() noexcept {
  return {environment_.driveIsEncrypted, environment_.encryptionCode, environment_.encryptionLine};
}

tDriverStoreTool tReplayedUpdateFacts::driverStoreTool() {
  return {environment_.windowsFolder, environment_.toolExists, environment_.toolIsSystemOwned,
          environment_.toolOwner,
          std::error_code(environment_.toolStartError, std::system_category())};
}

}  // namespace nCommandLine
