#include "source/user/update/firmwareupdate.h"

#include <optional>
#include <string>
#include <string_view>

#include "quenra.h"
#include "source/user/failuresites.h"
#include "source/user/firmware/imageformat.h"
#include "source/user/firmware/tfirmwareimageparser.h"
#include "source/user/machine/drivercalls.h"
#include "source/user/machine/smbiosfields.h"
#include "source/user/preconditions/preconditions.h"
#include "source/user/update/driverpackage.h"
#include "source/user/update/environmentstep.h"
#include "source/user/update/firmwareversion.h"
#include "source/user/update/tmartenmarker.h"
#include "source/user/update/updatefiles.h"

namespace nQUENRA1400 {
namespace {

constexpr auto kBadFlags = sessionLocation(1826);
constexpr auto kNoRandomBytes = sessionLocation(1827);
constexpr auto kNoTemporaryDirectory = sessionLocation(1828);

constexpr uint32_t kMartenVersion = QUENRA_ATTRIBUTE_FIRMWARE_VERSION | QUENRA_SELECTOR_MARTEN;

// The payloads of an image. Frees their data.
class tPayloadList {
 public:
  tPayloadList() = default;
  tPayloadList(const tPayloadList&) = delete;
  tPayloadList& operator=(const tPayloadList&) = delete;
  ~tPayloadList() { freePayloads(payloads); }

  tFirmwarePayloads payloads;
};

// The devices whose installed firmware is not older than a section of the image.
struct tCurrent {
  bool bios = false;
  bool marten = false;
};

void checkMachine(const tAttributeAccess& access, zoerr::Status& status) noexcept {
  const bool isEncrypted = IsSystemDriveEncrypted(status);
  if (status.isError()) {
    return;
  }
  if (isEncrypted) {
    report(nUpdateSites::kDriveEncrypted, status);
    return;
  }
  const auto permitted = isPermitted(access.provider, kFirmwareUpdate);
  if (!permitted) {
    report(nUpdateSites::kEligibilityUnknown, status);
  } else if (!*permitted) {
    report(nUpdateSites::kNotEligible, status);
  }
}

void checkFlags(uint32_t flags, zoerr::Status& status) noexcept {
  if (!status.isError() && flags != QUENRA_UPDATE_NEWER && flags != QUENRA_UPDATE_ALL) {
    status.set(QUENRA_STATUS_INVALID_VALUE, kBadFlags);
  }
}

// Returns 0, which is older than any version, if the version cannot be read.
uint32_t installedBiosVersion(const tAttributeAccess& access) noexcept {
  const tProviderText text(access.provider, nPlatformFields::kBiosVersion, 0);
  return text.result() == 0 ? packedVersion(text.view()) : 0;
}

void compareVersions(const tAttributeAccess& access, const tFirmwarePayload& payload,
                     tCurrent& current, zoerr::Status& status) {
  const uint32_t wanted = packedVersion(payload.version);
  if (payload.targetDevice == nImageFormat::kBios) {
    current.bios = current.bios || installedBiosVersion(access) >= wanted;
  } else if (payload.targetDevice == nImageFormat::kMarten) {
    const std::string installed = readMartenText(access.marten, kMartenVersion, status);
    current.marten = current.marten || (!status.isError() && wanted <= packedVersion(installed));
  }
}

tCurrent decide(const tAttributeAccess& access, const tFirmwarePayloads& payloads, uint32_t flags,
                zoerr::Status& status) {
  tCurrent current;
  for (const tFirmwarePayload& payload : payloads) {
    if (status.isError()) {
      break;
    }
    if (payload.targetDevice == nImageFormat::kMarten && !access.martenIsOpen) {
      report(nUpdateSites::kNoMarten, status);
    } else if (flags == QUENRA_UPDATE_NEWER) {
      compareVersions(access, payload, current, status);
    }
  }
  return current;
}

void install(const tFirmwarePayload& payload, tUpdateFolder& folder, zoerr::Status& status) {
  installDriverPackage(payloadFilePath(payload, folder, status), status);
  if (status.isError()) {
    folder.remove();
  }
}

// Returns nothing, with an error in the status, when the system has no random bytes or no temporary
// directory.
std::optional<tUpdateFolder> chooseFolder(zoerr::Status& status) {
  std::string name;
  std::optional<tUpdateFolder> folder;
  runEnvironmentStep(kNoRandomBytes, status, [&] { name = randomFolderName(); });
  runEnvironmentStep(kNoTemporaryDirectory, status, [&] { folder.emplace(name); });
  return folder;
}

// Sends firmware to its device and installs driver packages. Other payloads are only written to their files.
void apply(const tAttributeAccess& access, const tFirmwarePayload& payload, const tCurrent& current,
           tUpdateFolder& folder, zoerr::Status& status) {
  if (payload.targetDevice == nImageFormat::kBios && !current.bios &&
      payload.targetFileName.empty()) {
    sendToDriver(access.controller, payload.data, payload.byteCount, status);
  } else if (payload.targetFileName.view().find(nImageFormat::kDriverPackage) !=
             std::string_view::npos) {
    install(payload, folder, status);
  } else if (payload.targetDevice == nImageFormat::kMarten && !current.marten) {
    sendToDriver(access.marten, payload.data, payload.byteCount, status);
  }
}

void applyAll(const tAttributeAccess& access, const tFirmwarePayloads& payloads,
              const tCurrent& current, tUpdateFolder& folder, zoerr::Status& status) {
  tMartenMarker marker(access.martenIsOpen ? &access.marten : nullptr);
  marker.overwrite(status);
  writePayloadFiles(payloads, folder, status);
  for (const tFirmwarePayload& payload : payloads) {
    if (!status.isError()) {
      apply(access, payload, current, folder, status);
    }
  }
  if (!status.isError()) {
    marker.keep();
  }
}

}  // namespace

void updateFirmware(const tAttributeAccess& access, const void* image, size_t imageSize,
                    uint32_t flags, zoerr::Status& status) {
  if (status.isError()) {
    return;
  }
  checkMachine(access, status);
  checkFlags(flags, status);
  if (status.isError()) {
    return;
  }
  std::optional<tUpdateFolder> folder = chooseFolder(status);
  if (!folder) {
    return;
  }
  tPayloadList sections;
  tFirmwareImageParser().Parse(sections.payloads, image, imageSize, status);
  const tCurrent current = decide(access, sections.payloads, flags, status);
  if (!status.isError() && !(current.bios && current.marten)) {
    applyAll(access, sections.payloads, current, *folder, status);
  }
}

}  // namespace nQUENRA1400
