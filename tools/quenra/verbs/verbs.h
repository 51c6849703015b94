// The verbs of the command line: what a verb receives, the names of its arguments, and the function
// that runs it.
#ifndef TOOLS_QUENRA_VERBS_VERBS_H
#define TOOLS_QUENRA_VERBS_VERBS_H

#include <string_view>

#include "tools/commandline/grammar.h"
#include "tools/quenra/capture/imachinedriver.h"
#include "tools/quenra/output/diagnostics.h"
#include "tools/quenra/output/streams.h"
#include "tools/quenra/output/tjsondocument.h"
#include "tools/quenra/programs/programs.h"
#include "tools/quenra/reading/iquenra.h"
#include "tools/quenra/routing/irouting.h"
#include "tools/quenra/update/updateports.h"

namespace nCommandLine {

// The interfaces of the program to its machine, besides its streams and files.
struct tPorts {
  iQuenra& library;
  iRouting& routing;
  iUpdateFacts& updateFacts;
  iInterruption& interruption;
  iUpdateLock& updateLock;
  iInstallation& installation;
  iMachineDriver& driver;
  iPrograms& programs;
};

// The arguments of every verb. A verb prints its answer and returns the exit code, or throws
// tCommandError; until then it prints nothing but progress messages, and none with --json.
struct tVerbContext {
  const tPorts& ports;
  tStreams& streams;
  bool json;  // the standard output is for JSON only
  const tGrammar& grammar;
  tEventLines* events = nullptr;  // with --json-lines only

  // Prints the document of the verb.
  void print(tJsonDocument& document) const {
    if (events == nullptr) {
      document.writeTo(streams.out);
    } else {
      events->writeResult(document);
    }
  }
};

using tVerbFunction = tExitCode (*)(const tArguments& arguments, const tVerbContext& context);

// The names of positionals and options, shared by the rows and the verbs that read them.
namespace nWords {
inline constexpr std::string_view kAfter = "after";
inline constexpr std::string_view kAttribute = "attribute";
inline constexpr std::string_view kBefore = "before";
inline constexpr std::string_view kCode = "code";
inline constexpr std::string_view kFile = "file";
inline constexpr std::string_view kImage = "image";
inline constexpr std::string_view kPayload = "payload";
inline constexpr std::string_view kProgram = "program";
inline constexpr std::string_view kValue = "value";

inline constexpr std::string_view kAllowAnyPath = "--allow-any-path";
inline constexpr std::string_view kAnonymous = "--anonymous";
inline constexpr std::string_view kAppend = "--append";
inline constexpr std::string_view kBoth = "--both";
inline constexpr std::string_view kController = "--controller";
inline constexpr std::string_view kDevice = "--device";
inline constexpr std::string_view kFileName = "--file-name";
inline constexpr std::string_view kFirmwareVersion = "--firmware-version";
inline constexpr std::string_view kFor = "--for";
inline constexpr std::string_view kForce = "--force";
inline constexpr std::string_view kFormat = "--format";
inline constexpr std::string_view kFrom = "--from";
inline constexpr std::string_view kGrace = "--grace";
inline constexpr std::string_view kHolders = "--holders";
inline constexpr std::string_view kImageOption = "--image";
inline constexpr std::string_view kInstance = "--instance";
inline constexpr std::string_view kInvert = "--invert";
inline constexpr std::string_view kLabel = "--label";
inline constexpr std::string_view kJsonLines = "--json-lines";
inline constexpr std::string_view kLineLength = "--line-length";
inline constexpr std::string_view kMarten = "--marten";
inline constexpr std::string_view kNoWait = "--no-wait";
inline constexpr std::string_view kOnlyNewer = "--only-newer";
inline constexpr std::string_view kOutput = "--output";
inline constexpr std::string_view kPlan = "--plan";
inline constexpr std::string_view kPseudonymKey = "--pseudonym-key";
inline constexpr std::string_view kSection = "--section";
inline constexpr std::string_view kSubject = "--subject";
inline constexpr std::string_view kTo = "--to";
inline constexpr std::string_view kUntilDemoted = "--until-demoted";
inline constexpr std::string_view kWait = "--wait";
inline constexpr std::string_view kWatch = "--watch";
}  // namespace nWords

// The values of --format.
inline constexpr std::string_view kOpenMetrics = "openmetrics";
inline constexpr std::string_view kPrometheusText = "prometheus";

// ---- The controller ----

// `quenra info`: all attributes by subject. Shows an absent attribute as absent. Any other failure
// to read one sets the exit code to `failure`; the remaining attributes are still shown.
[[nodiscard]] tExitCode runInfo(const tArguments& arguments, const tVerbContext& context);
// `quenra get`: one attribute or several.
[[nodiscard]] tExitCode runGet(const tArguments& arguments, const tVerbContext& context);
// `quenra set`: writes one attribute.
[[nodiscard]] tExitCode runSet(const tArguments& arguments, const tVerbContext& context);
// `quenra self-test`: opens the controller and lets the library test itself.
[[nodiscard]] tExitCode runSelfTest(const tArguments& arguments, const tVerbContext& context);
// `quenra doctor`: checks everything that a working controller and an update require.
[[nodiscard]] tExitCode runDoctor(const tArguments& arguments, const tVerbContext& context);

// ---- The machine for other programs and readers ----

// `quenra metrics`: the state of this machine for Prometheus. The exit code is `done` also if the
// controller cannot be opened: the metrics report it.
[[nodiscard]] tExitCode runMetrics(const tArguments& arguments, const tVerbContext& context);

// `quenra report`: a page that describes the machine, with what needs attention first. A machine that
// cannot be opened is described as far as possible, with exit code `done`.
[[nodiscard]] tExitCode runReport(const tArguments& arguments, const tVerbContext& context);

// ---- Trigger routes ----

// `quenra terminals`: the trigger terminals of the controller.
[[nodiscard]] tExitCode runTerminals(const tArguments& arguments, const tVerbContext& context);
// `quenra route plan`: lists the routes between two terminals without connecting any.
[[nodiscard]] tExitCode runRoutePlan(const tArguments& arguments, const tVerbContext& context);
// `quenra route connect`: connects two terminals and holds the route.
[[nodiscard]] tExitCode runRouteConnect(const tArguments& arguments, const tVerbContext& context);

// ---- Firmware ----

// `quenra firmware inspect`: shows a firmware image.
[[nodiscard]] tExitCode runFirmwareInspect(const tArguments& arguments,
                                           const tVerbContext& context);
// `quenra firmware verify`: checks a firmware image.
[[nodiscard]] tExitCode runFirmwareVerify(const tArguments& arguments, const tVerbContext& context);
// `quenra firmware build`: builds a firmware image.
[[nodiscard]] tExitCode runFirmwareBuild(const tArguments& arguments, const tVerbContext& context);
// `quenra firmware extract`: writes the payload of a section to a file.
[[nodiscard]] tExitCode runFirmwareExtract(const tArguments& arguments,
                                           const tVerbContext& context);
// `quenra update`: applies a firmware image, or prints the plan of the update.
[[nodiscard]] tExitCode runUpdate(const tArguments& arguments, const tVerbContext& context);

// ---- A machine that is not present ----

// `quenra capture`: writes everything about this machine that a support engineer needs to a file.
[[nodiscard]] tExitCode runCapture(const tArguments& arguments, const tVerbContext& context);
// `quenra diff`: compares two captures.
[[nodiscard]] tExitCode runDiff(const tArguments& arguments, const tVerbContext& context);

// ---- Reference; no controller is needed ----

// `quenra attributes`: the table of attributes.
[[nodiscard]] tExitCode runAttributes(const tArguments& arguments, const tVerbContext& context);
// `quenra explain`: meaning and remedy of a status code.
[[nodiscard]] tExitCode runExplain(const tArguments& arguments, const tVerbContext& context);
// `quenra completion`: the script that a shell loads.
[[nodiscard]] tExitCode runCompletion(const tArguments& arguments, const tVerbContext& context);
// `quenra help` and --help: the help of the program or of a verb, or the manual page.
[[nodiscard]] tExitCode runHelp(const tArguments& arguments, const tVerbContext& context);
// `quenra --version`.
[[nodiscard]] tExitCode runVersion(const tArguments& arguments, const tVerbContext& context);

}  // namespace nCommandLine

#endif
