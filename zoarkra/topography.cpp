#include "zoarkra/topography.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <iterator>

#include "protocol/routingrequests.h"
#include "quenra_routing.h"
#include "zoapal/protons/trace/ttrace.h"
#include "zoarkra/failure.h"

namespace zoark {
namespace {

constexpr auto kTopographyNotFound = registrationLocation(52, kBadSelectorConstant);
constexpr const char* kDebugComponent = "zoark_debug";

constexpr const char* kPublic = ZOROCO_VISIBILITY_PUBLIC;
constexpr const char* kPrivate = ZOROCO_VISIBILITY_PRIVATE;
constexpr const char* kPxiTrig = ZOROCO_BUS_TYPE_PXI_TRIGGER;
constexpr const char* kNone = nullptr;
constexpr uint32_t kNoLine = ZOROCO_NO_BUS_LINE;

// The order is that of the iterator.
// clang-format off
constexpr tTerminal kPxiControllerTerminals[] = {
// name        id  external owned visibility bus type line    bus name alias canonical masked out
{"FLOAT",       1, false, true,  kPrivate, kNone,    kNoLine, kNone, false, "FLOAT",       false},
{"TRIG_SMB",    2, false, true,  kPublic,  kNone,    kNoLine, kNone, false, "TRIG_SMB",    false},
{"WD_Terminal", 3, false, true,  kPrivate, kNone,    kNoLine, kNone, false, "WD_Terminal", false},
{"PXI_Trig0",   4, true,  false, kPublic,  kPxiTrig, 0,       kNone, false, "PXI_Trig0",   false},
{"PXI_Trig1",   5, true,  false, kPublic,  kPxiTrig, 1,       kNone, false, "PXI_Trig1",   false},
{"PXI_Trig2",   6, true,  false, kPublic,  kPxiTrig, 2,       kNone, false, "PXI_Trig2",   false},
{"PXI_Trig3",   7, true,  false, kPublic,  kPxiTrig, 3,       kNone, false, "PXI_Trig3",   false},
{"PXI_Trig4",   8, true,  false, kPublic,  kPxiTrig, 4,       kNone, false, "PXI_Trig4",   false},
{"PXI_Trig5",   9, true,  false, kPublic,  kPxiTrig, 5,       kNone, false, "PXI_Trig5",   false},
{"PXI_Trig6",  10, true,  false, kPublic,  kPxiTrig, 6,       kNone, false, "PXI_Trig6",   false},
{"PXI_Trig7",  11, true,  false, kPublic,  kPxiTrig, 7,       kNone, false, "PXI_Trig7",   false},
};
// clang-format on

constexpr tTopography kTopographies[] = {
    {"pxiContTriggerRouter",
     std::size(kPxiControllerTerminals),
     kPxiControllerTerminals,
     {0xD0, 0x0A}},
};

// The driver chooses the name: a line end in it must not begin another line of the debugger output.
template <size_t Size>
void printLine(std::array<char, Size> message) {
  std::ranges::replace_if(
      message.data(), message.data() + std::strlen(message.data()),
      [](char character) {
        return static_cast<unsigned char>(character) < 0x20 || character == 0x7F;
      },
      '?');
  nQUENRA1400::nZOAPAL000::debugPrintf("[%s] %s\n", kDebugComponent, message.data());
}

[[noreturn]] void raiseNotFound(std::string_view name) {
  constexpr std::string_view kBeginning = "Topography not found: ";
  std::array<char, kBeginning.size() + ROUTING_TOPOGRAPHY_NAME_SIZE + 1> message{};
  std::snprintf(message.data(), message.size(), "%.*s%.*s", static_cast<int>(kBeginning.size()),
                kBeginning.data(), static_cast<int>(name.size()), name.data());
  printLine(message);
  zoerr::tOwnedStatus status;
  status.setWithConstant(kBadSelector, kTopographyNotFound);
  appendMember(status, kDebugComponent, message.data());
  throw zoerr::Exception(status);
}

constexpr auto kUnknownMode = adaptorLocation(512, kBadSelectorConstant);

struct tMode {
  const char* name;
  uint32_t floating;
};

constexpr tMode kModes[] = {
    {ZOROCO_RESET_DEFAULT, 0},
    {ZOROCO_RESET_FLOATING, 1},
};

}  // namespace

const tTopography& findTopography(std::string_view name) {
  const auto* const found =
      std::find_if(std::begin(kTopographies), std::end(kTopographies),
                   [name](const tTopography& topography) { return name == topography.name; });
  if (found == std::end(kTopographies)) {
    raiseNotFound(name);
  }
  return *found;
}

uint32_t terminalIdOf(const tTopography& topography, std::string_view name) noexcept {
  const auto terminals = topography.terminals();
  const auto found = std::find_if(terminals.begin(), terminals.end(),
                                  [name](const tTerminal& t) { return name == t.name; });
  return found == terminals.end() ? ROUTE_NO_TERMINAL : found->id;
}

const char* terminalNameOf(const tTopography& topography, uint32_t id) noexcept {
  const auto terminals = topography.terminals();
  const auto found = std::find_if(terminals.begin(), terminals.end(),
                                  [id](const tTerminal& t) { return id == t.id; });
  return found == terminals.end() ? "" : found->name;
}

uint32_t floatingFlagOf(const char* mode) {
  for (const tMode& known : kModes) {
    if (mode != nullptr && std::strcmp(mode, known.name) == 0) {
      return known.floating;
    }
  }
  raise(kBadSelector, kUnknownMode);
}

}  // namespace zoark
