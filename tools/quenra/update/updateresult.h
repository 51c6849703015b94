// The outcome of an update, section by section. The library reports one code for all of them; the plan
// and the facts of the machine show which step a code belongs to.
#ifndef TOOLS_QUENRA_UPDATE_UPDATERESULT_H
#define TOOLS_QUENRA_UPDATE_UPDATERESULT_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/quenra/tcommanderror.h"
#include "tools/quenra/update/iupdatefacts.h"
#include "tools/quenra/update/updateplan.h"

namespace nCommandLine {

enum class tSectionResult : uint8_t {
  applied,
  handedOver,  // to the driver store, whose result the library does not examine
  failed,
  notApplied,
  unknown,  // a failure leaves open how far the update came
};

// "not-applied"
[[nodiscard]] std::string_view resultName(tSectionResult result) noexcept;

struct tUpdateFailure {
  std::string fact;  // the step that failed, with the reason of the system where there is one
  tSiteExplanation explanation;
  int32_t code = 0;
  uint32_t line = 0;                             // 0 where it is not known
  std::optional<size_t> section = std::nullopt;  // its place in the image, from 1
};

struct tUpdateResult {
  std::vector<tSectionResult> sections;  // parallel to the plan
  std::optional<tUpdateFailure> failure;
};

[[nodiscard]] tUpdateResult successOf(const std::vector<tPlannedSection>& plan);

// `code` is negative. `plan` has no section that is refused.
[[nodiscard]] tUpdateResult failureOf(int32_t code, const std::vector<tPlannedSection>& plan,
                                      const tUpdateMachine& machine, iUpdateFacts& facts);

}  // namespace nCommandLine

#endif
