// The grammar of quenra-sim: every verb, and the words that completion offers. A new verb requires a row
// and a function (program.cpp).
#include <vector>

#include "simulator/quenra-sim/verbs/verbs.h"
#include "tools/commandline/generatedtexts.h"

namespace nSimulator {
namespace {

using nCommandLine::tExampleRow;
using nCommandLine::tExitCodeRow;
using nCommandLine::tOptionRow;
using nCommandLine::tPositionalRow;
using nCommandLine::tVerbGroupRow;
using nCommandLine::tVerbRow;
using tWords = std::vector<tOfferedWord>;

// ---- Words ----

tWords interfaces() {
  return {{nWords::kController, "The controller interface"},
          {nWords::kMarten, "The Marten interface"}};
}

tWords verbs() {
  return kGrammar.verbWords();
}
tWords attributeActions() {
  return kGrammar.actionWords("attribute");
}
tWords answerActions() {
  return kGrammar.actionWords("answer");
}
tWords pendingActions() {
  return kGrammar.actionWords("pending");
}

constinit const tWordSet kVerbWords{"verbs", verbs};
constinit const tWordSet kAttributeWords{"attribute", attributeActions};
constinit const tWordSet kAnswerWords{"answer", answerActions};
constinit const tWordSet kPendingWords{"pending", pendingActions};

// ---- Arguments ----

constexpr tOptionRow kJson{nWords::kJson, "", "Print one JSON document"};
constexpr tOptionRow kClear{nWords::kClear, "", "Clear the record afterwards"};
constexpr tOptionRow kJsonOnly[] = {kJson};

constexpr tPositionalRow kInterface{nWords::kInterface, "controller|marten", "The interface",
                                    &kInterfaceWords};
constexpr tPositionalRow kId{nWords::kId, "ID",
                             "Id of the attribute with its instance; the selector is ignored"};
constexpr tPositionalRow kAttribute[] = {kInterface, kId};

constexpr tOptionRow kWaitOptions[] = {
    {nWords::kTimeout, "SECONDS", "Fail after SECONDS, up to 600 (default 15)"},
};
constexpr tOptionRow kScenarioOptions[] = {
    {nWords::kControllers, "N", "Controller interfaces present, up to 2"},
    {nWords::kMartens, "N", "Marten interfaces present, up to 2"},
    {nWords::kDevicePaths, "N", "Device path interfaces present, up to 1"},
    {nWords::kTable, "FILE", "File with the SMBIOS structure table that the driver returns"},
    {nWords::kStructureByte,
     "TYPE/OFFSET=VALUE",
     "Change a byte of the first structure of a type in that table; may be repeated",
     {},
     false,
     nullptr,
     true},
    {nWords::kStructureText,
     "TYPE/OFFSET=TEXT",
     "Change a text of the first structure of a type in that table; may be repeated",
     {},
     false,
     nullptr,
     true},
    {nWords::kWithoutStructure,
     "TYPE",
     "Remove the structures of a type from that table; may be repeated",
     {},
     false,
     nullptr,
     true},
    {nWords::kVersionText, "TEXT", "SMBIOS version text"},
    {nWords::kPathLength, "N",
     "Terminals in the path of every trigger route, at least 2; 0 for the real number"},
    {nWords::kTopography, "NAME", "Name of the topography of the trigger router"},
};

constexpr tPositionalRow kLoadPositionals[] = {
    {nWords::kFile, "CAPTURE", "File that 'quenra capture' has written"},
};

constexpr std::string_view kValue = "value";
constexpr tOptionRow kAttributeSetOptions[] = {
    {nWords::kNumber, "N", "A 32-bit number", kValue},
    {nWords::kText, "TEXT", "A text", kValue},
    {nWords::kBytes, "BYTES", "Bytes of two hexadecimal digits", kValue},
};

constexpr tPositionalRow kAnswerAddPositionals[] = {
    kInterface,
    {nWords::kRequest, "REQUEST", "The request (default any)", &kRequestWords, false},
};
constexpr std::string_view kAnswer = "answer";
constexpr tOptionRow kAnswerAddOptions[] = {
    {nWords::kSkip, "N", "Matching requests to let through first (default 0)"},
    {nWords::kTimes, "N", "Matching requests to answer after those (default 1); 0 for all"},
    {nWords::kCode, "CODE", "Answer with this status code without carrying out the request",
     kAnswer},
    {nWords::kWindowsError, "ERROR", "Fail the request with this Windows error", kAnswer},
    {nWords::kTruncate, "N", "Carry out the request, and truncate the reply to N bytes", kAnswer},
    {nWords::kAddCode, "CODE",
     "Carry out the request, and report this status code, such as a warning", kAnswer},
};

constexpr tPositionalRow kAcceptancePositionals[] = {
    {nWords::kWhen, "at-once|later|never",
     "at-once; later, with 'pending accept'; never, they complete without a handle",
     &kAcceptanceWords},
};
constexpr tPositionalRow kCompletePositionals[] = {
    {nWords::kHandle, "HANDLE",
     "As 'pending list' shows it; 0 for all requests that wait for acceptance"},
};
constexpr tOptionRow kCompleteOptions[] = {
    {nWords::kWindowsError, "ERROR", "Windows error of the completion (default 0, success)"},
};

constexpr tPositionalRow kDemotePositionals[] = {
    {nWords::kTicket, "TICKET", "A ticket from 'routes'"},
};
constexpr tOptionRow kLogOptions[] = {
    {nWords::kFrom, "N", "Begin at this sequence number (default 1)"},
    {nWords::kJson, "", "Print one JSON document, with bytes in hexadecimal"},
    {nWords::kClear, "", "Clear the log afterwards"},
};
constexpr tOptionRow kFirmwareOptions[] = {kJson, kClear};

constexpr tPositionalRow kEncryptionPositionals[] = {
    {nWords::kState, "STATE", "off, on, unknown, no-volume, or fail with a STEP", &kEncryptionWords,
     false},
    {nWords::kStep, "STEP",
     "Step of the query that fails: locator, connect, query, result or property", &kStepWords,
     false},
};
constexpr tPositionalRow kDriverStorePositionals[] = {
    {nWords::kState, "STATE", "missing, broken (a file that is not a program) or working",
     &kToolWords, false},
};
constexpr tOptionRow kDriverStoreOptions[] = {
    kJson,
    kClear,
    {nWords::kSeconds, "SECONDS", "With working: duration of a run, up to 3600 (default 0)"},
    {nWords::kExitCode, "CODE",
     "With working: exit code of a run (default 0, success if the package is readable)"},
};

constexpr tPositionalRow kCompletionPositionals[] = {
    {nCommandLine::kCompletionShell, "bash|powershell", "The shell", &nCommandLine::kShellWords},
};
constexpr tPositionalRow kHelpPositionals[] = {
    {nCommandLine::kHelpTopic, "VERB", "The verb", &kVerbWords, false},
    {nCommandLine::kHelpAction, "ACTION", "The action, if the verb has actions", nullptr, false},
};
constexpr tOptionRow kHelpOptions[] = {
    {nCommandLine::kHelpManual, "", "Print the manual page instead, as man reads it"},
};

// ---- Examples ----

constexpr tExampleRow kInstallExamples[] = {{"install", "a machine for ./dev wine"}};
constexpr tExampleRow kUninstallExamples[] = {{"uninstall", "no machine"}};
constexpr tExampleRow kWaitExamples[] = {{"wait --timeout 60", "for a slow system"}};
constexpr tExampleRow kStatusExamples[] = {{"status --json", "the devices as JSON"}};
constexpr tExampleRow kResetExamples[] = {{"reset", "before a test"}};
constexpr tExampleRow kScenarioExamples[] = {
    {"scenario --martens 0", "no Marten interface"},
    {"scenario --structure-byte 0x9D/4=0", "no text settings"},
    {"scenario --structure-text 1/7=VQ0300017", "another serial number"},
};
constexpr tExampleRow kLoadExamples[] = {{"load rack-7.json", "the machine of a capture"}};
constexpr tExampleRow kAttributeSetExamples[] = {
    {"attribute set marten 0x10000400 --text 1.4.0f9", "the version of the Marten"},
};
constexpr tExampleRow kAttributeRemoveExamples[] = {
    {"attribute remove controller 0x20044C00", "the driver does not have it"}};
constexpr tExampleRow kAllowWritesExamples[] = {
    {"attribute allow-writes marten 0x10000400", "the library can write it"}};
constexpr tExampleRow kRefuseWritesExamples[] = {
    {"attribute refuse-writes marten 0x10000400", "... and cannot"}};
constexpr tExampleRow kAnswerAddExamples[] = {
    {"answer add controller exchange-values --code -1", "the next opening fails"},
    {"answer add marten any --times 0 --add-code 7", "a warning for every request"},
};
constexpr tExampleRow kAnswerClearExamples[] = {{"answer clear", "no scripts"}};
constexpr tExampleRow kPendingListExamples[] = {{"pending list", "the requests and their handles"}};
constexpr tExampleRow kAcceptanceExamples[] = {
    {"pending acceptance later", "requests wait for 'pending accept'"}};
constexpr tExampleRow kAcceptExamples[] = {{"pending accept", "accept them now"}};
constexpr tExampleRow kCompleteExamples[] = {
    {"pending complete 4 --windows-error 121", "the request of handle 4 fails"}};
constexpr tExampleRow kRoutesExamples[] = {{"routes", "tickets, programs and states"}};
constexpr tExampleRow kDemoteExamples[] = {{"demote 4", "the route with ticket 4"}};
constexpr tExampleRow kLogExamples[] = {
    {"log --from 10", "all entries but the first nine"},
    {"log --json --clear", "as JSON; then empty it"},
};
constexpr tExampleRow kCountersExamples[] = {{"counters --json", "the counters as JSON"}};
constexpr tExampleRow kFirmwareExamples[] = {{"firmware", "sizes and SHA-256 of the payloads"}};
constexpr tExampleRow kEncryptionExamples[] = {
    {"encryption on", "drive C: is encrypted"},
    {"encryption fail connect", "the service has no such namespace"},
};
constexpr tExampleRow kDriverStoreExamples[] = {
    {"driver-store missing", "no tool for driver packages"},
    {"driver-store working --seconds 5 --exit-code 3", "a slow tool that fails"},
};
constexpr tExampleRow kCompletionExamples[] = {
    {"completion bash", "the script; 'source <(...)' loads it"}};
constexpr tExampleRow kHelpExamples[] = {{"help scenario", "the help of one verb"}};

// ---- The grammar ----

// clang-format off
constexpr tVerbGroupRow kGroups[] = {
    {"attribute", "Change the driver's answer for an attribute", &kAttributeWords},
    {"answer", "Script the answers to requests", &kAnswerWords},
    {"pending", "Show and control pending requests", &kPendingWords},
};

constexpr tVerbRow kRows[] = {
    {"install", "Install the simulated machine",
     "Installs the driver from the files beside this program, creates the devices, and replaces the operating system services. Replaces an earlier installation.",
     {}, {}, kInstallExamples},
    {"uninstall", "Remove the driver and the devices, and restore the services",
     "", {}, {}, kUninstallExamples},
    {"wait", "Wait until the machine is ready",
     "", {}, kWaitOptions, kWaitExamples},
    {"status", "Show the present devices",
     "", {}, kJsonOnly, kStatusExamples},
    {"reset", "Restore the default machine",
     "No scripted answers, an empty log, no received firmware, protection off, a working driver-store tool without recorded runs.",
     {}, {}, kResetExamples},
    {"scenario", "Change the machine that later programs find",
     "Nothing is changed if one of the options is wrong.",
     {}, kScenarioOptions, kScenarioExamples},
    {"load", "Become the machine of a capture",
     "The simulated driver returns the table, the answers and the codes of the capture, after the "
     "captured delays. Nothing is changed if the simulated machine cannot imitate the captured one. The "
     "path of the device and the version of the system stay those of the simulated machine.",
     kLoadPositionals, {}, kLoadExamples},
    {"attribute set", "Set the value of an attribute",
     "A text that begins with a dash follows an equals sign: --text=-a.",
     kAttribute, kAttributeSetOptions, kAttributeSetExamples},
    {"attribute remove", "Make the driver reject an attribute",
     "", kAttribute, {}, kAttributeRemoveExamples},
    {"attribute allow-writes", "Accept writes of the library to an attribute that has a value",
     "", kAttribute, {}, kAllowWritesExamples},
    {"attribute refuse-writes", "Reject writes of the library to an attribute",
     "", kAttribute, {}, kRefuseWritesExamples},
    {"answer add", "Add a script",
     "Scripts are tried in the order in which they were added.",
     kAnswerAddPositionals, kAnswerAddOptions, kAnswerAddExamples},
    {"answer clear", "Remove all scripts",
     "", {}, {}, kAnswerClearExamples},
    {"pending list", "Show the pending requests, oldest first",
     "", {}, kJsonOnly, kPendingListExamples},
    {"pending acceptance", "Set when later requests are accepted",
     "", kAcceptancePositionals, {}, kAcceptanceExamples},
    {"pending accept", "Accept the requests that wait for acceptance",
     "", {}, {}, kAcceptExamples},
    {"pending complete", "Complete requests from the driver's side",
     "", kCompletePositionals, kCompleteOptions, kCompleteExamples},
    {"routes", "Show the trigger routes of all programs, oldest first",
     "", {}, kJsonOnly, kRoutesExamples},
    {"demote", "Demote a trigger route and notify its program",
     "", kDemotePositionals, {}, kDemoteExamples},
    {"log", "Show the driver's requests and replies",
     "The driver keeps the latest 1024 entries.",
     {}, kLogOptions, kLogExamples},
    {"counters", "Show how many files, routes and other objects were begun and ended",
     "Files, registrations, routes and reservations, since the driver was started.",
     {}, kJsonOnly, kCountersExamples},
    {"firmware", "Show the firmware that the interfaces received",
     "The driver keeps the latest 64 payloads.",
     {}, kFirmwareOptions, kFirmwareExamples},
    {"encryption", "Show or change the encryption of drive C:",
     "The management service reports it.",
     kEncryptionPositionals, kJsonOnly, kEncryptionExamples},
    {"driver-store", "Show the runs of the driver-store tool, or change its behaviour",
     "", kDriverStorePositionals, kDriverStoreOptions, kDriverStoreExamples},
    {"completion", "Print the script that completes command lines in a shell",
     "", kCompletionPositionals, {}, kCompletionExamples},
    {nCommandLine::kHelpVerb, "Show the help of the program or of a verb",
     "", kHelpPositionals, kHelpOptions, kHelpExamples},
};
// clang-format on

constexpr const tWordSet* kWordSets[] = {
    &kVerbWords,       &kAttributeWords,           &kAnswerWords,
    &kPendingWords,    &kInterfaceWords,           &kRequestWords,
    &kAcceptanceWords, &kEncryptionWords,          &kStepWords,
    &kToolWords,       &nCommandLine::kShellWords,
};

constexpr tOptionRow kOptionsOfEveryVerb[] = {nCommandLine::kHelpOption};

constexpr tExitCodeRow kExitCodes[] = {
    {kDone, "done"},
    {kFailed, "the machine or the system rejected a request"},
    {kWrongUsage, "wrong usage"},
    {kNotInstalled, "no simulated machine is installed"},
};

}  // namespace

constinit const tWordSet kInterfaceWords{"interfaces", interfaces};

constinit const nCommandLine::tGrammar kGrammar{
    "quenra-sim",
    "install and control the simulated machine",
    "quenra-sim installs a simulated controller under Wine, and changes the machine that programs "
    "find. Results are printed on standard output; failures are printed on standard error, each "
    "with "
    "a remedy.",
    kRows,
    kGroups,
    kWordSets,
    &kVerbWords,
    kOptionsOfEveryVerb,
    kExitCodes,
    {},
};

}  // namespace nSimulator
