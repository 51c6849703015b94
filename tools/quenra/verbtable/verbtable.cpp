// The grammar of quenra. The rows of each family of verbs are in a header of their own.
#include <algorithm>
#include <array>

#include "tools/commandline/generatedtexts.h"
#include "tools/quenra/commandline.h"
#include "tools/quenra/verbtable/capturerows.h"
#include "tools/quenra/verbtable/controllerrows.h"
#include "tools/quenra/verbtable/firmwarerows.h"
#include "tools/quenra/verbtable/monitoringrows.h"
#include "tools/quenra/verbtable/referencerows.h"
#include "tools/quenra/verbtable/routerows.h"

namespace nCommandLine {
namespace {

template <size_t... Counts>
consteval auto joined(const tVerbRow (&... families)[Counts]) {
  std::array<tVerbRow, (Counts + ...)> rows{};
  auto at = rows.begin();
  ((at = std::ranges::copy(families, at).out), ...);
  return rows;
}

// In the order of the help and the manual page.
constexpr auto kVerbs = joined(nRows::kControllerVerbs, nRows::kMonitoringVerbs, nRows::kRouteVerbs,
                               nRows::kFirmwareVerbs, nRows::kCaptureVerbs, nRows::kReferenceVerbs);

constexpr tVerbGroupRow kGroups[] = {
    {"route", "Plan trigger routes, and connect them", &kRouteWords},
    {"firmware", "Inspect, verify, build and extract firmware images", &kFirmwareWords},
};

constexpr tOptionRow kOptionsOfEveryVerb[] = {kHelpOption, kJsonOption};

constexpr tEnvironmentRow kEnvironment[] = {
    {"NO_COLOR", "If it is set and not empty, output on a terminal has no styles."},
};

constexpr const tWordSet* kWordSets[] = {
    &kReadableWords, &kWritableWords, &kStatusWords,   &kVerbWords,   &kFirmwareWords, &kRouteWords,
    &kShellWords,    &kDeviceWords,   &kTerminalWords, &kFormatWords, &kSubjectWords,
};

}  // namespace

constinit const tGrammar kGrammar{
    "quenra",
    "show the controller of a PXI chassis and change its settings",
    "quenra shows the controller of a PXI chassis as aligned tables or as JSON. Only the verbs "
    "set, route connect and update change the controller. quenra also inspects and builds firmware "
    "images. Results are printed on standard output; failures and warnings are printed on standard "
    "error, each with its code, its constant and advice. With --json, standard output is exactly "
    "one JSON document, also after a failure.",
    kVerbs,
    kGroups,
    kWordSets,
    &kVerbWords,
    kOptionsOfEveryVerb,
    kExitCodes,
    kEnvironment,
};

}  // namespace nCommandLine
