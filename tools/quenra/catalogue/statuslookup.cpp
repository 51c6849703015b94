#include "tools/quenra/catalogue/statuslookup.h"

#include <algorithm>

#include "tools/quenra/catalogue/suggestion.h"

namespace nCommandLine {
namespace {

constexpr std::string_view kConstantPrefix = "QUENRA_STATUS_";

std::string nameIn(std::string_view text) {
  std::string name = comparableName(text);
  const std::string prefix = comparableName(kConstantPrefix);
  return name.starts_with(prefix) ? name.substr(prefix.size()) : name;
}

tStatusExplanation foreignStatus(int32_t code) noexcept {
  const std::string_view meaning =
      code < 0 ? "A failure that the library does not define; it was passed on as the driver "
                 "reported it."
               : "A warning that the library does not define; it was passed on as the driver "
                 "reported it.";
  return {code, "", meaning, "Look the code up in the documentation of the driver."};
}

}  // namespace

std::string_view severityName(tSeverity severity) noexcept {
  switch (severity) {
    case tSeverity::success:
      return "success";
    case tSeverity::warning:
      return "warning";
    case tSeverity::failure:
      break;
  }
  return "failure";
}

tStatusExplanation explainStatus(int32_t code) noexcept {
  const auto row = std::ranges::find(kStatuses, code, &tStatusRow::code);
  return row == kStatuses.end()
             ? foreignStatus(code)
             : tStatusExplanation{row->code, row->constant, row->meaning, row->advice};
}

const tStatusRow* findStatus(std::string_view name) {
  const std::string wanted = nameIn(name);
  const auto row = std::ranges::find_if(kStatuses, [&wanted](const tStatusRow& candidate) {
    return nameIn(candidate.constant) == wanted;
  });
  return row == kStatuses.end() ? nullptr : &*row;
}

std::vector<std::string> suggestStatuses(std::string_view name) {
  // Compare without the common prefix: it would make every name look similar.
  std::vector<std::string_view> names;
  for (const tStatusRow& row : kStatuses) {
    names.push_back(row.constant.substr(kConstantPrefix.size()));
  }
  std::vector<std::string> suggestions = suggest(nameIn(name), names);
  for (std::string& suggestion : suggestions) {
    suggestion.insert(0, kConstantPrefix);
  }
  return suggestions;
}

std::string codeAndConstant(int32_t code) {
  const tStatusExplanation status = explainStatus(code);
  std::string text = std::to_string(code);
  return status.known() ? text.append(" ").append(status.constant) : text;
}

}  // namespace nCommandLine
