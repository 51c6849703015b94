// The status codes of the library, each with its meaning and remedy.
#ifndef TOOLS_QUENRA_TABLES_STATUSTABLE_H
#define TOOLS_QUENRA_TABLES_STATUSTABLE_H

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace nCommandLine {

struct tStatusRow {
  int32_t code;
  std::string_view constant;
  std::string_view meaning;
  std::string_view advice;
};

// Every status code that include/quenra_status.h defines.
extern const std::span<const tStatusRow> kStatuses;

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

// Explains any code, also one of the driver, which the library returns unchanged.
[[nodiscard]] tStatusExplanation explainStatus(int32_t code) noexcept;

// Finds a row by its constant: 'QUENRA_STATUS_BUSY' or 'busy', in any case. Null if none matches.
[[nodiscard]] const tStatusRow* findStatus(std::string_view name);

[[nodiscard]] std::vector<std::string> suggestStatuses(std::string_view name);

// The code and its constant, if it has one: "-26934 QUENRA_STATUS_NOT_SUPPORTED".
[[nodiscard]] std::string codeAndConstant(int32_t code);

}  // namespace nCommandLine

#endif
