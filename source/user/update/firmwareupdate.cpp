#include "source/user/update/firmwareupdate.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "quenra.h"
#include "source/user/failuresites.h"
#include "source/user/firmware/imageformat.h"
#include "source/user/firmware/tfirmwareimageparser.h"
#include "source/user/machine/drivercalls.h"
#include "source/user/machine/smbiosfields.h"
#include "source/user/preconditions/preconditions.h"
#include "source/user/update/driverpackage.h"
#include "source/user/update/environmentstep.h"
#include "source/user/update/tmartenmarker.h"
#include "source/user/update/updatefiles.h"
#include "source/user/update/updateplan.h"

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

void checkMachine(const tAttributeAccess& access, zoerr::Status& status) noexcept {
  const bool isEncrypted = IsSystemDriveEncrypted(status);
  if (status.isError()) {
    return;
  }
  if (isEncrypted) {
    report(nUpdateSites::kDriveEncrypted, status);
    return;
  }
  const auto permitted = isPermitted(access.provider, kFirmwareUpdatePermission);
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

// The facts about a payload's section. With QUENRA_UPDATE_NEWER it reads the installed version of its
// device; reports why the Marten's cannot be read.
tSectionFacts factsOf(const tAttributeAccess& access, const tFirmwarePayload& payload,
                      uint32_t flags, zoerr::Status& status) {
  tSectionFacts facts{payload.targetDevice, payload.targetFileName, packedVersion(payload.version)};
  if (flags != QUENRA_UPDATE_NEWER) {
    return facts;
  }
  if (facts.targetDevice == nImageFormat::kBios) {
    facts.installedVersion = installedBiosVersion(access);
  } else if (facts.targetDevice == nImageFormat::kMarten && access.martenIsOpen) {
    facts.installedVersion = packedVersion(readMartenText(access.marten, kMartenVersion, status));
  }
  return facts;
}

tUpdatePlan planFor(const tAttributeAccess& access, const tFirmwarePayloads& payloads,
                    uint32_t flags, zoerr::Status& status) {
  std::vector<tSectionFacts> sections;
  sections.reserve(payloads.size());
  for (const tFirmwarePayload& payload : payloads) {
    if (status.isError()) {
      return {};
    }
    sections.push_back(factsOf(access, payload, flags, status));
  }
  tUpdatePlan plan = planUpdate(sections, access.martenIsOpen);
  if (const tFailureSite* const refusal = plan.refusal()) {
    report(*refusal, status);
  }
  return plan;
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

void apply(const tAttributeAccess& access, const tFirmwarePayload& payload, tSectionAction action,
           tUpdateFolder& folder, zoerr::Status& status) {
  switch (action) {
    case tSectionAction::sendToController:
      return sendToDriver(access.controller, payload.data, payload.byteCount, status);
    case tSectionAction::sendToMarten:
      return sendToDriver(access.marten, payload.data, payload.byteCount, status);
    case tSectionAction::installPackage:
      return install(payload, folder, status);
    case tSectionAction::writeFile:  // Written before any section is applied.
    case tSectionAction::nothing:
    case tSectionAction::leaveOut:
    case tSectionAction::refuse:
    case tSectionAction::keepBack:
      return;
  }
}

void applyAll(const tAttributeAccess& access, const tFirmwarePayloads& payloads,
              const tUpdatePlan& plan, tUpdateFolder& folder, zoerr::Status& status) {
  tMartenMarker marker(access.martenIsOpen ? &access.marten : nullptr);
  marker.overwrite(status);
  writePayloadFiles(payloads, folder, status);
  for (size_t i = 0; i < payloads.size() && !status.isError(); ++i) {
    apply(access, payloads[i], plan.sections[i].action, folder, status);
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
  const tUpdatePlan plan = planFor(access, sections.payloads, flags, status);
  if (!status.isError() && !plan.isEverythingCurrent) {
    applyAll(access, sections.payloads, plan, *folder, status);
  }
}

}  // namespace nQUENRA1400
