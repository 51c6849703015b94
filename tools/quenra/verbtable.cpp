#include "tools/quenra/commandline.h"

#include <iterator>

#include "source/user/firmware/imageformat.h"
#include "tools/commandline/generatedtexts.h"
#include "tools/quenra/tables/attributetable.h"
#include "tools/quenra/tables/statustable.h"
#include "tools/quenra/verbs/verbs.h"

namespace nCommandLine {
namespace {

using tWords = std::vector<tOfferedWord>;

template <class Rows, class Row>
void append(tWords& words, const Rows& rows, std::string_view Row::*word,
            std::string_view Row::*meaning) {
  for (const Row& row : rows) {
    words.push_back({row.*word, row.*meaning});
  }
}

tWords readable() {
  tWords words;
  append(words, kAttributes, &tAttributeRow::name, &tAttributeRow::description);
  return words;
}

tWords writable() {
  tWords words;
  for (const auto rows : {kAttributes, kSettings}) {
    for (const tAttributeRow& row : rows) {
      if (row.isWritable()) {
        words.push_back({row.name, row.description});
      }
    }
  }
  return words;
}

tWords statuses() {
  tWords words;
  append(words, kStatuses, &tStatusRow::constant, &tStatusRow::meaning);
  return words;
}

tWords verbs() {
  return kGrammar.verbWords();
}

tWords firmwareActions() {
  return kGrammar.actionWords("firmware");
}

tWords routeActions() {
  return kGrammar.actionWords("route");
}

tWords devices() {
  namespace nImageFormat = nQUENRA1400::nImageFormat;
  return {{nImageFormat::kBios, "The BIOS of the controller"},
          {nImageFormat::kMarten, "The Marten"},
          {nImageFormat::kSafeMode, "The safe mode"}};
}

tWords terminals() {
  return {std::begin(kTerminalNames), std::end(kTerminalNames)};
}

constexpr std::string_view kInterface = "interface";

constexpr tOptionRow kInstance{nWords::kInstance, "N",
                               "Memory module, processor or list position, from 0"};

// ---- info ----

constexpr tExampleRow kInfoExamples[] = {
    {"info", "all attributes of this machine"},
    {"info --json", "the same as JSON"},
};

// ---- get ----

constexpr tPositionalRow kGetPositionals[] = {
    {nWords::kAttribute, "NAME|ID",
     "Name of the attribute, or its id in decimal or in hexadecimal after 0x", &kReadableWords},
};
constexpr tOptionRow kGetOptions[] = {
    kInstance,
    {nWords::kController, "", "Read from the controller interface", kInterface},
    {nWords::kMarten, "", "Read from the Marten interface", kInterface},
};
constexpr tExampleRow kGetExamples[] = {
    {"get product-name", "one attribute by its name"},
    {"get 0x10000100", "... and by its id"},
    {"get memory-size --instance 1", "the second populated memory module"},
    {"get firmware-version --controller", "the BIOS, not the Marten"},
};

// ---- set ----

constexpr tPositionalRow kSetPositionals[] = {
    {nWords::kAttribute, "NAME|ID",
     "Name of the attribute, or its id in decimal or in hexadecimal after 0x", &kWritableWords},
    {nWords::kValue, "VALUE",
     "A text, or a number in decimal or in hexadecimal after 0x, without its unit"},
};
constexpr tOptionRow kSetOptions[] = {
    kInstance,
    {nWords::kController, "", "Write to the controller interface, the default of numbers",
     kInterface},
    {nWords::kMarten, "", "Write to the Marten interface", kInterface},
    {nWords::kBoth, "", "Write to both, the default of text-setting-of-both", kInterface},
};
constexpr tExampleRow kSetExamples[] = {
    {"set driver-setting-1 7", "a number"},
    {"set driver-setting-2 0x1F --marten", "... on the Marten interface"},
    {"set text-setting-of-both rack-7", "a text for both interfaces"},
    {"set text-setting-of-both --marten -- -7", "... for one, beginning with a dash"},
};

// ---- self-test ----

constexpr tExampleRow kSelfTestExamples[] = {
    {"self-test", "check that the controller can be opened and used"},
};

// ---- terminals, route ----

constexpr tOptionRow kFrom{nWords::kFrom, "A", "Source terminal", {}, true, &kTerminalWords};
constexpr tOptionRow kTo{nWords::kTo, "B", "Destination terminal", {}, true, &kTerminalWords};
constexpr tOptionRow kInvert{nWords::kInvert, "", "Invert the signal"};

constexpr tExampleRow kTerminalsExamples[] = {
    {"terminals", "the terminals that a route can connect"},
};
constexpr tOptionRow kRoutePlanOptions[] = {kFrom, kTo, kInvert};
constexpr tExampleRow kRoutePlanExamples[] = {
    {"route plan --from TRIG_SMB --to PXI_Trig0", "the routes, with their paths and costs"},
};
constexpr tOptionRow kRouteConnectOptions[] = {
    kFrom,
    kTo,
    kInvert,
    {nWords::kFor, "SECONDS",
     "Hold the route for SECONDS, such as 2 or 0.25, instead of until Ctrl-C"},
};
constexpr tExampleRow kRouteConnectExamples[] = {
    {"route connect --from TRIG_SMB --to PXI_Trig0", "until Ctrl-C"},
    {"route connect --from PXI_Trig0 --to TRIG_SMB --invert --for 60", "a minute, inverted"},
};

// ---- firmware ----

constexpr tPositionalRow kImagePositionals[] = {
    {nWords::kImage, "IMAGE", "File of the firmware image"},
};
constexpr tPositionalRow kPayloadPositionals[] = {
    {nWords::kPayload, "PAYLOAD", "File of the payload"},
};
constexpr tOptionRow kFirmwareBuildOptions[] = {
    {nWords::kOutput, "IMAGE", "File of the firmware image; must not exist", {}, true},
    {nWords::kDevice,
     "BIOS|MARTEN|SAFEMODE",
     "The device that the section is for",
     {},
     true,
     &kDeviceWords},
    {nWords::kFirmwareVersion, "VERSION", "The version of the payload, such as 1.4.2f7", {}, true},
    {nWords::kFileName, "NAME", "Build a capsule for the BIOS: a file of this plain name"},
    {nWords::kLineLength, "N",
     "Characters in a line of the payload (default 76); 0 for a single line"},
    {nWords::kAppend, "", "Add the section to an existing image"},
    {nWords::kForce, "", "Replace an existing image"},
};
constexpr tExampleRow kFirmwareInspectExamples[] = {
    {"firmware inspect update.fwi", "the sections of an image"},
};
constexpr tExampleRow kFirmwareVerifyExamples[] = {
    {"firmware verify update.fwi", "check an image"},
};
constexpr tExampleRow kFirmwareBuildExamples[] = {
    {"firmware build a.bin --output update.fwi --device MARTEN --firmware-version 1.4.2f7",
     "an image of one section"},
    {"firmware build b.bin --append --output update.fwi --device BIOS --firmware-version 3.1.0f2",
     "... and a second one"},
};

// ---- update ----

constexpr tOptionRow kUpdateOptions[] = {
    {nWords::kOnlyNewer, "",
     "Leave out the firmware of a device if one of its sections is not newer"},
    {nWords::kForce, "", "With --only-newer, compare although an update awaits a restart"},
    {nWords::kAllowAnyPath, "", "Accept file names that are not plain, such as paths"},
    {nWords::kNoWait, "", "Fail when another update is running, instead of waiting for its end"},
    {nWords::kPlan, "", "Change nothing; show the plan and every obstacle"},
};
constexpr tExampleRow kUpdateExamples[] = {
    {"update --plan update.fwi", "the plan of an update, and its obstacles"},
    {"update update.fwi", "apply the image regardless of the installed versions"},
    {"update update.fwi --only-newer", "... except firmware that is not newer"},
};

// ---- attributes ----

constexpr tExampleRow kAttributesExamples[] = {
    {"attributes", "names, ids and types"},
};

// ---- explain ----

constexpr tPositionalRow kExplainPositionals[] = {
    {nWords::kCode, "CODE", "The code in decimal or in hexadecimal after 0x, or its constant",
     &kStatusWords},
};
constexpr tExampleRow kExplainExamples[] = {
    {"explain -26934", "the meaning of a code and its remedy"},
    {"explain QUENRA_STATUS_BUSY", "... by its constant"},
};

// ---- completion ----

constexpr tPositionalRow kCompletionPositionals[] = {
    {kCompletionShell, "bash|powershell", "The shell", &kShellWords},
};
constexpr tExampleRow kCompletionExamples[] = {
    {"completion bash", "the script; 'source <(...)' loads it"},
    {"completion powershell", "... for '| Out-String | Invoke-Expression'"},
};

// ---- help ----

constexpr tPositionalRow kHelpPositionals[] = {
    {kHelpTopic, "VERB", "The verb", &kVerbWords, false},
    {kHelpAction, "ACTION", "The action, if the verb has actions", nullptr, false},
};
constexpr tOptionRow kHelpOptions[] = {
    {kHelpManual, "", "Print the manual page quenra(1) instead, as man reads it"},
};
constexpr tExampleRow kHelpExamples[] = {
    {"help get", "the help of one verb"},
    {"help --manual", "the manual page; '| man -l -' shows it"},
};

constexpr tVerbGroupRow kGroups[] = {
    {"route", "Plan trigger routes, and connect them", &kRouteWords},
    {"firmware", "Inspect, verify and build firmware images", &kFirmwareWords},
};

// clang-format off
constexpr tVerbRow kRows[] = {
    {"info", "Show all attributes of this machine, by subject",
     "An attribute that the machine does not have is shown as such and is not an error. Other reads that fail are shown with their code.",
     {}, {}, kInfoExamples},

    {"get", "Show one attribute",
     "On a terminal a number comes with its unit and its meaning; elsewhere the bare value is printed. "
     "Without an interface option the library chooses the interface.",
     kGetPositionals, kGetOptions, kGetExamples},

    {"set", "Write one attribute",
     "The driver decides which attributes it accepts. Numbers go to the controller interface, or with "
     "--marten to the Marten interface. A text goes to the controller interface, or to the Marten "
     "interface where the controller does not accept it; text-setting-of-both goes to both, or with "
     "--marten to the Marten interface alone. On a terminal a line confirms the value that was "
     "written; elsewhere success is silent. A value that begins with a dash follows --, after all "
     "options.",
     kSetPositionals, kSetOptions, kSetExamples},

    {"self-test", "Test the controller",
     "Opens the controller and runs the self-test of the library, which passes if the controller can be opened.",
     {}, {}, kSelfTestExamples},

    {"terminals", "List the trigger terminals",
     "A trigger route begins and ends at one of them: the trigger lines of the chassis, the trigger "
     "connector, the watchdog.",
     {}, {}, kTerminalsExamples},

    {"route plan", "Show the routes between two terminals",
     "The driver calculates them; nothing is reserved. A cost far above the others is that of a line "
     "that another route holds. Without a route the exit code is 3.",
     {}, kRoutePlanOptions, kRoutePlanExamples},

    {"route connect", "Connect two terminals",
     "Calculates a route, reserves it, programs it, and holds it until Ctrl-C or for the given time; "
     "then releases it in order. When other routes hold a line that it needs, their tickets and "
     "sessions are reported. When the driver demotes the route and takes its line away, the standard "
     "error stream reports it at once, and the exit code is 1.",
     {}, kRouteConnectOptions, kRouteConnectExamples},

    {"firmware inspect", "Show the sections of a firmware image",
     "Each section with its device, type, version, file name, size and CRC, its place in the order of application, and the verdict of the library. A section that the library rejects is shown with the reason; the sections after it are checked as well, although one fault prevents the whole image from being applied. Needs no controller.",
     kImagePositionals, {}, kFirmwareInspectExamples},

    {"firmware verify", "Check whether an update would apply a firmware image",
     "The exit code is 1 when a section is refused or has a file name that is not plain, or the file has "
     "no section; every fault is printed on the standard error stream. The devices of the machine and "
     "their versions are not considered. Needs no controller.",
     kImagePositionals, {}, kFirmwareVerifyExamples},

    {"firmware build", "Build a firmware image, one section at a time",
     "A version has the form major.minor.update, a phase letter (d, a, b or f) and a build number: "
     "1.4.2f7. The image is read back before it is written, and an existing file is replaced with "
     "--force only. Needs no controller.",
     kPayloadPositionals, kFirmwareBuildOptions, kFirmwareBuildExamples},

    {"update", "Apply a firmware image, or show its plan",
     "Prints the plan, shows the elapsed time of the update, and reports the result of each section. An "
     "update with an obstacle is not started: every obstacle is printed on the standard error stream "
     "with a remedy. An update that would send, install and write nothing does not call the library. "
     "Ctrl-C does not interrupt an update that has started. With --plan nothing is changed, and the "
     "exit code is that of the update.",
     kImagePositionals, kUpdateOptions, kUpdateExamples},

    {"attributes", "List every attribute with its id, type, access and unit",
     "Needs no controller.",
     {}, {}, kAttributesExamples},

    {"explain", "Explain a status code and its remedy",
     "Codes that the library does not define are those of the driver, returned unchanged. Needs no controller.",
     kExplainPositionals, {}, kExplainExamples},

    {"completion", "Print the script that completes command lines in a shell",
     "Shells then complete verbs, options, names of attributes, terminals and devices, constants of "
     "status codes, and file names. Needs no controller.",
     kCompletionPositionals, {}, kCompletionExamples},

    {kHelpVerb, "Show the help of the program or of a verb",
     "",
     kHelpPositionals, kHelpOptions, kHelpExamples},
};
// clang-format on

constexpr tOptionRow kOptionsOfEveryVerb[] = {kHelpOption, kJsonOption};

constexpr tEnvironmentRow kEnvironment[] = {
    {"NO_COLOR", "If it is set and not empty, output on a terminal has no styles."},
};

constexpr const tWordSet* kWordSets[] = {
    &kReadableWords, &kWritableWords, &kStatusWords, &kVerbWords,     &kFirmwareWords,
    &kRouteWords,    &kShellWords,    &kDeviceWords, &kTerminalWords,
};

}  // namespace

constinit const tWordSet kReadableWords{"attributes", readable};
constinit const tWordSet kWritableWords{"writable", writable};
constinit const tWordSet kStatusWords{"statuses", statuses};
constinit const tWordSet kVerbWords{"verbs", verbs};
constinit const tWordSet kFirmwareWords{"firmware", firmwareActions};
constinit const tWordSet kRouteWords{"route", routeActions};
constinit const tWordSet kDeviceWords{"devices", devices};
constinit const tWordSet kTerminalWords{"terminals", terminals};

constinit const tGrammar kGrammar{
    "quenra",
    "show the controller of a PXI chassis and change its settings",
    "quenra shows the controller of a PXI chassis as aligned tables or as JSON. Only the verbs "
    "set, route connect and update change the controller. quenra also inspects and builds firmware "
    "images. Results are printed on standard output; failures and warnings are printed on standard "
    "error, each with its code, its constant and advice. With --json, standard output is exactly "
    "one JSON document, also after a failure.",
    kRows,
    kGroups,
    kWordSets,
    &kVerbWords,
    kOptionsOfEveryVerb,
    kExitCodes,
    kEnvironment,
};

}  // namespace nCommandLine
