#include "tools/quenra/firmware/sectionfault.h"

#include <rapidjson/document.h>

#include <algorithm>
#include <iterator>

#include "quenra_status.h"
#include "tools/quenra/tables/statustable.h"

namespace nCommandLine {
namespace {

// One row for each error that docs/firmware-image.md lists.
// clang-format off
constexpr tSectionFault kFaults[] = {
    {QUENRA_STATUS_IMAGE_VERSION, 164, "HeaderVersion is not 1",
     "Use a newer version of the library, or an older image."},
    {QUENRA_STATUS_INVALID_IMAGE, 176, "UpdateType is neither FWUpdate nor CapsuleUpdate",
     "Values are case-sensitive, and nothing may follow them."},
    {QUENRA_STATUS_INVALID_IMAGE, 186, "TargetDevice is none of BIOS, MARTEN and SAFEMODE",
     "Values are case-sensitive, and nothing may follow them."},
    {QUENRA_STATUS_OUT_OF_MEMORY, 214, "the empty line that ends the header is missing, or memory for the payload is short",
     "End the header with an empty line; lines end in CR LF."},
    {QUENRA_STATUS_INVALID_IMAGE, 241, "the payload does not decode to ByteCount bytes",
     "Fetch the image again: it was truncated or changed, or its header has no end."},
    {QUENRA_STATUS_INVALID_IMAGE, 258, "CRC mismatch",
     "Fetch the image again: it was changed, or built with another CRC."},
    {QUENRA_STATUS_INVALID_IMAGE, 339, "a number of the header is empty",
     "Give HeaderVersion, CRC and ByteCount a number."},
    {QUENRA_STATUS_OUT_OF_MEMORY, 351, "a number of the header is missing, or its line does not end",
     "Give the section HeaderVersion, CRC and ByteCount; lines end in CR LF."},
    {QUENRA_STATUS_INVALID_IMAGE, 409, "a text of the header is missing",
     "Give the section UpdateType, Version and TargetDevice, and a BIOS capsule TargetFileName."},
    {QUENRA_STATUS_INVALID_IMAGE, 425, "a text of the header is empty",
     "Give UpdateType, Version, TargetDevice and TargetFileName a value."},
    {QUENRA_STATUS_INVALID_IMAGE, 487, "a double quote of the header is never closed",
     "Close it, or leave both out."},
};
// clang-format on

}  // namespace

uint32_t lineOf(const zoerr::Status& status) {
  rapidjson::Document description;
  description.Parse(status.description == nullptr ? "" : status.description);
  const bool isTold = !description.HasParseError() && description.IsObject() &&
                      description.HasMember("line") && description["line"].IsUint();
  return isTold ? description["line"].GetUint() : 0;
}

tSectionFault faultOf(const zoerr::Status& status) {
  const uint32_t line = lineOf(status);
  const auto* const row = std::ranges::find_if(kFaults, [&](const tSectionFault& fault) {
    return fault.code == status.code && fault.line == line;
  });
  if (row != std::end(kFaults)) {
    return *row;
  }
  const tStatusExplanation explanation = explainStatus(status.code);
  return {status.code, line, explanation.meaning, explanation.advice};
}

}  // namespace nCommandLine
