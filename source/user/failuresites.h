// Codes and locations of the failures that the controller session and the parser of images report.
#ifndef SOURCE_USER_FAILURESITES_H
#define SOURCE_USER_FAILURESITES_H

#include <cstdint>

#include "quenra_status.h"
#include "zoapal/protons/status/tstatus.h"
#include "zoapal/protons/status/zoerrstatus.h"

namespace nQUENRA1400 {

// A site of the exports or the session.
[[nodiscard]] constexpr nZOAPALS100::tSourceLocation sessionLocation(uint32_t line) noexcept {
  return {"source\\user\\tControllerUserSession", line};
}

// A site of the parser of firmware images.
[[nodiscard]] constexpr nZOAPALS100::tSourceLocation parserLocation(uint32_t line) noexcept {
  return {"source\\user\\tFirmwareImageParser", line};
}

// A site that always reports the same code.
struct tFailureSite {
  int32_t code;
  nZOAPALS100::tSourceLocation location;
};

inline void report(const tFailureSite& site, zoerr::Status& status) noexcept {
  status.set(site.code, site.location);
}

// The sites of an update that the command line explains to its user.
namespace nUpdateSites {

// The machine.
inline constexpr tFailureSite kDriveEncrypted{QUENRA_STATUS_DRIVE_PROTECTED, sessionLocation(1787)};
inline constexpr tFailureSite kEligibilityUnknown{QUENRA_STATUS_NO_CONTROLLER,
                                                  sessionLocation(1798)};
inline constexpr tFailureSite kNotEligible{QUENRA_STATUS_NOT_SUPPORTED, sessionLocation(1810)};

// The query for the encryption of the system drive.
inline constexpr tFailureSite kComNotInitialised{QUENRA_STATUS_UPDATE_ENVIRONMENT,
                                                 sessionLocation(2831)};
inline constexpr tFailureSite kComSecurityRefused{QUENRA_STATUS_UPDATE_ENVIRONMENT,
                                                  sessionLocation(2847)};
inline constexpr tFailureSite kNoLocator{QUENRA_STATUS_UPDATE_ENVIRONMENT, sessionLocation(2863)};
inline constexpr tFailureSite kNamespaceNotReached{QUENRA_STATUS_UPDATE_ENVIRONMENT,
                                                   sessionLocation(2879)};
inline constexpr tFailureSite kQueryFailed{QUENRA_STATUS_UPDATE_ENVIRONMENT, sessionLocation(2912)};

// The sections of the image.
inline constexpr tFailureSite kNoMarten{QUENRA_STATUS_INVALID_IMAGE, sessionLocation(1868)};
inline constexpr tFailureSite kToolMissing{QUENRA_STATUS_UPDATE_ENVIRONMENT, sessionLocation(2331)};
inline constexpr tFailureSite kToolNotStarted{QUENRA_STATUS_INVALID_IMAGE, sessionLocation(2359)};

}  // namespace nUpdateSites

// The sites at which the parser refuses a section.
namespace nImageSites {

inline constexpr tFailureSite kUnknownHeaderVersion{QUENRA_STATUS_IMAGE_VERSION,
                                                    parserLocation(164)};
inline constexpr tFailureSite kUnknownUpdateType{QUENRA_STATUS_INVALID_IMAGE, parserLocation(176)};
inline constexpr tFailureSite kUnknownTargetDevice{QUENRA_STATUS_INVALID_IMAGE,
                                                   parserLocation(186)};
inline constexpr tFailureSite kPayloadNotAllocated{QUENRA_STATUS_OUT_OF_MEMORY,
                                                   parserLocation(214)};
inline constexpr tFailureSite kByteCountDiffers{QUENRA_STATUS_INVALID_IMAGE, parserLocation(241)};
inline constexpr tFailureSite kCrcDiffers{QUENRA_STATUS_INVALID_IMAGE, parserLocation(258)};
inline constexpr tFailureSite kNumberEmpty{QUENRA_STATUS_INVALID_IMAGE, parserLocation(339)};
inline constexpr tFailureSite kNumberNotDelimited{QUENRA_STATUS_OUT_OF_MEMORY, parserLocation(351)};
inline constexpr tFailureSite kTextMissing{QUENRA_STATUS_INVALID_IMAGE, parserLocation(409)};
inline constexpr tFailureSite kTextEmpty{QUENRA_STATUS_INVALID_IMAGE, parserLocation(425)};
inline constexpr tFailureSite kQuoteNotClosed{QUENRA_STATUS_INVALID_IMAGE, parserLocation(487)};

}  // namespace nImageSites

}  // namespace nQUENRA1400

#endif
