#include "source/user/update/payloadfiles.h"

#include <fstream>

#include "source/user/location.h"
#include "source/user/statuscodes.h"
#include "source/user/update/environmentstep.h"
#include "zoapal/protons/text/windowsu/codepage.h"

namespace nQUENRA1400 {
namespace {

constexpr auto kCannotBeOpened = sessionLocation(2978);
constexpr auto kFolderNotCreated = sessionLocation(2979);
constexpr auto kNameNotConverted = sessionLocation(2980);

std::u16string widePath(const tFirmwarePayload& payload, const tUpdateFolder& folder,
                        zoerr::Status& status) {
  std::u16string path;
  runEnvironmentStep(kNameNotConverted, status, [&] {
    path = folder.pathOf(nZOAPAL000::utf16FromCodePage(payload.targetFileName));
  });
  return path;
}

std::string narrowPath(const std::u16string& path, zoerr::Status& status) {
  std::string narrow;
  runEnvironmentStep(kNameNotConverted, status,
                     [&] { narrow = nZOAPAL000::codePageFromUtf16(path); });
  return narrow;
}

// Returns false when the file cannot be opened.
bool writeFile(const tFirmwarePayload& payload, const std::string& path) {
  std::ofstream file(path, std::ios::binary | std::ios::out | std::ios::trunc);
  if (!file.is_open()) {
    return false;
  }
  const void* const bytes = payload.data;
  file.write(static_cast<const char*>(bytes), static_cast<std::streamsize>(payload.byteCount));
  return true;
}

// Returns false when the file cannot be opened, or another process writes to it too.
bool writeAndHold(const tFirmwarePayload& payload, const std::u16string& path,
                  const std::string& narrow, tUpdateFolder& folder) {
  // Two sections may name the same file, which is held since the first of them. Names of many forms are
  // the same for the system: the attempt shows it.
  const bool isWritten =
      writeFile(payload, narrow) || (folder.deferHolding() && writeFile(payload, narrow));
  return isWritten && folder.hold(path);
}

void reportFile(tUpdateFolder& folder, zoerr::Status& status) noexcept {
  folder.remove();
  status.set(kUpdateEnvironment, kCannotBeOpened);
}

void writePayloadFile(const tFirmwarePayload& payload, tUpdateFolder& folder,
                      zoerr::Status& status) {
  const std::u16string path = widePath(payload, folder, status);
  runEnvironmentStep(kFolderNotCreated, status, [&] { folder.create(); });
  const std::string narrow = narrowPath(path, status);
  if (!status.isError() && !writeAndHold(payload, path, narrow, folder)) {
    reportFile(folder, status);
  }
}

}  // namespace

std::string payloadFilePath(const tFirmwarePayload& payload, const tUpdateFolder& folder,
                            zoerr::Status& status) {
  return narrowPath(widePath(payload, folder, status), status);
}

void writePayloadFiles(const tFirmwarePayloads& payloads, tUpdateFolder& folder,
                       zoerr::Status& status) {
  for (const tFirmwarePayload& payload : payloads) {
    if (status.isError()) {
      return;
    }
    if (!payload.targetFileName.empty()) {
      writePayloadFile(payload, folder, status);
    }
  }
  if (!status.isError() && !folder.holdDeferred()) {
    reportFile(folder, status);
  }
}

}  // namespace nQUENRA1400
