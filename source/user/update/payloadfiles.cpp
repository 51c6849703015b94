#include "source/user/update/payloadfiles.h"

#include <fstream>

#include "source/user/location.h"
#include "source/user/statuscodes.h"
#include "zoapal/protons/text/windowsu/codepage.h"

namespace nQUENRA1400 {
namespace {

constexpr auto kCannotBeOpened = sessionLocation(2978);

// False when the file cannot be opened.
bool writeFile(const tFirmwarePayload& payload, const std::string& path) {
  std::ofstream file(path, std::ios::binary | std::ios::out | std::ios::trunc);
  if (!file.is_open()) {
    return false;
  }
  const void* const bytes = payload.data;
  file.write(static_cast<const char*>(bytes), static_cast<std::streamsize>(payload.byteCount));
  return true;
}

}  // namespace

std::string payloadFilePath(const tFirmwarePayload& payload, const tUpdateFolder& folder) {
  return nZOAPAL000::codePageFromUtf16(
      folder.pathOf(nZOAPAL000::utf16FromCodePage(payload.targetFileName)));
}

void writePayloadFiles(const tFirmwarePayloads& payloads, const tUpdateFolder& folder,
                       zoerr::Status& status) {
  for (const tFirmwarePayload& payload : payloads) {
    if (status.isError()) {
      return;
    }
    if (!payload.targetFileName.empty()) {
      folder.create();
      if (!writeFile(payload, payloadFilePath(payload, folder))) {
        folder.remove();
        status.set(kUpdateEnvironment, kCannotBeOpened);
      }
    }
  }
}

}  // namespace nQUENRA1400
