// The outcome of an update, section by section. The library reports one code for all sections; the
// plan and the state of the machine identify the step that failed.
#ifndef TOOLS_QUENRA_UPDATE_UPDATERESULT_H
#define TOOLS_QUENRA_UPDATE_UPDATERESULT_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/quenra/output/diagnostics.h"
#include "tools/quenra/update/iupdatefacts.h"
#include "tools/quenra/update/updateplan.h"

namespace nCommandLine {

enum class tSectionResult : uint8_t {
  applied,
  handedOver,  // to the driver store, whose result the library does not examine
  failed,
  notApplied,
  unknown,  // the failure does not show how far the update proceeded
};

// "not-applied"
[[nodiscard]] std::string_view resultName(tSectionResult result) noexcept;

struct tUpdateFailure {
  std::string fact;  // the step that failed, with the reason of the system if known
  tSiteExplanation explanation;
  int32_t code = 0;
  uint32_t line = 0;                             // 0 if unknown
  std::optional<size_t> section = std::nullopt;  // its position in the image, from 1
};

struct tUpdateResult {
  std::vector<tSectionResult> sections;  // parallel to the plan
  std::optional<tUpdateFailure> failure;
};

[[nodiscard]] tUpdateResult successOf(const std::vector<tPlannedSection>& plan);

// Precondition: `code` is negative, and `plan` has no refused section.
[[nodiscard]] tUpdateResult failureOf(int32_t code, const std::vector<tPlannedSection>& plan,
                                      const tUpdateMachine& machine, iUpdateFacts& facts);

}  // namespace nCommandLine

#endif
