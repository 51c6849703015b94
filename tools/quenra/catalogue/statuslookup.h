#ifndef TOOLS_QUENRA_CATALOGUE_STATUSLOOKUP_H
#define TOOLS_QUENRA_CATALOGUE_STATUSLOOKUP_H

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "tools/quenra/catalogue/statuscatalogue.h"

namespace nCommandLine {

enum class tSeverity : uint8_t {
  success,
  warning,
  failure,
};

struct tStatusExplanation {
  int32_t code;
  std::string_view constant;  // empty for a code that the library does not define
  std::string_view meaning;
  std::string_view advice;

  [[nodiscard]] bool known() const noexcept { return !constant.empty(); }
};

[[nodiscard]] constexpr tSeverity severityOf(int32_t code) noexcept {
  return code == 0 ? tSeverity::success : (code < 0 ? tSeverity::failure : tSeverity::warning);
}
[[nodiscard]] std::string_view severityName(tSeverity severity) noexcept;

// Every code has an explanation: the driver has codes of its own, and they are passed on.
[[nodiscard]] tStatusExplanation explainStatus(int32_t code) noexcept;

// By constant: 'QUENRA_STATUS_BUSY' or 'busy', in any case. Null when there is none.
[[nodiscard]] const tStatusRow* findStatus(std::string_view name);

[[nodiscard]] std::vector<std::string> suggestStatuses(std::string_view name);

// The code and its constant, where it has one: "-26934 QUENRA_STATUS_NOT_SUPPORTED".
[[nodiscard]] std::string codeAndConstant(int32_t code);

}  // namespace nCommandLine

#endif
