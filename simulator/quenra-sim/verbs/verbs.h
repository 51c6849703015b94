// The verbs of quenra-sim: the names of their arguments, the functions that run them, and the values
// and documents that they share.
#ifndef SIMULATOR_QUENRA_SIM_VERBS_VERBS_H
#define SIMULATOR_QUENRA_SIM_VERBS_VERBS_H

#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <cstddef>
#include <cstdint>
#include <iostream>
#include <optional>
#include <string>
#include <string_view>

#include "simulator/protocol/controlprotocol.h"
#include "tools/commandline/grammar.h"
#include "tools/commandline/utf8text.h"

namespace nSimulator {

using nCommandLine::tArguments;
using nCommandLine::tOfferedWord;
using nCommandLine::tUsageError;
using nCommandLine::tWordSet;

// Runs quenra-sim with the arguments of `main` and returns its exit code. Unless `isWine`, every
// verb but those of the help fails.
[[nodiscard]] int runProgram(int argumentCount, const char* const* arguments, bool isWine);

// The exit codes, documented in docs/simulator.md.
enum tExitCode : int {
  kDone = 0,
  kFailed = 1,        // the machine or the system rejected a request
  kWrongUsage = 2,    // the command line is invalid
  kNotInstalled = 4,  // no simulated machine is installed
};

// ---- The grammar ----

extern const nCommandLine::tGrammar kGrammar;  // a row for each verb
extern const tWordSet kAcceptanceWords;        // in the order of tSimulatorAcceptance
extern const tWordSet kEncryptionWords;        // states of the encryption, and kFail
extern const tWordSet kInterfaceWords;         // kController and kMarten
extern const tWordSet kRequestWords;           // requests that a script can match
extern const tWordSet kStepWords;              // steps of a query of the encryption
extern const tWordSet kToolWords;              // in the order of tDriverStoreTool

// The names of positionals and options, shared by the rows and the verbs that read them.
namespace nWords {
inline constexpr std::string_view kFile = "file";
inline constexpr std::string_view kHandle = "handle";
inline constexpr std::string_view kId = "id";
inline constexpr std::string_view kInterface = "interface";
inline constexpr std::string_view kRequest = "request";
inline constexpr std::string_view kState = "state";
inline constexpr std::string_view kStep = "step";
inline constexpr std::string_view kTicket = "ticket";
inline constexpr std::string_view kWhen = "when";

inline constexpr std::string_view kAddCode = "--add-code";
inline constexpr std::string_view kBytes = "--bytes";
inline constexpr std::string_view kClear = "--clear";
inline constexpr std::string_view kCode = "--code";
inline constexpr std::string_view kControllers = "--controllers";
inline constexpr std::string_view kDevicePaths = "--device-paths";
inline constexpr std::string_view kExitCode = "--exit-code";
inline constexpr std::string_view kFrom = "--from";
inline constexpr std::string_view kJson = "--json";
inline constexpr std::string_view kMartens = "--martens";
inline constexpr std::string_view kNumber = "--number";
inline constexpr std::string_view kPathLength = "--path-length";
inline constexpr std::string_view kSeconds = "--seconds";
inline constexpr std::string_view kSkip = "--skip";
inline constexpr std::string_view kStructureByte = "--structure-byte";
inline constexpr std::string_view kStructureText = "--structure-text";
inline constexpr std::string_view kTable = "--table";
inline constexpr std::string_view kText = "--text";
inline constexpr std::string_view kTimeout = "--timeout";
inline constexpr std::string_view kTimes = "--times";
inline constexpr std::string_view kTopography = "--topography";
inline constexpr std::string_view kTruncate = "--truncate";
inline constexpr std::string_view kVersionText = "--version-text";
inline constexpr std::string_view kWindowsError = "--windows-error";
inline constexpr std::string_view kWithoutStructure = "--without-structure";

// Values of positionals.
inline constexpr std::string_view kAny = "any";
inline constexpr std::string_view kController = "controller";
inline constexpr std::string_view kFail = "fail";
inline constexpr std::string_view kMarten = "marten";
}  // namespace nWords

// ---- The functions that run the verbs: `runStatus` runs `quenra-sim status` ----

// machineverbs.cpp
void runInstall(const tArguments& arguments);
void runUninstall(const tArguments& arguments);
void runWait(const tArguments& arguments);
void runStatus(const tArguments& arguments);
void runReset(const tArguments& arguments);
// Restores the default machine, its services included.
void resetSimulation();
// scenarioverb.cpp
void runScenario(const tArguments& arguments);
// loadverb.cpp
void runLoad(const tArguments& arguments);
// answerverbs.cpp
void runAttributeSet(const tArguments& arguments);
void runAttributeRemove(const tArguments& arguments);
void runAttributeAllowWrites(const tArguments& arguments);
void runAttributeRefuseWrites(const tArguments& arguments);
void runAnswerAdd(const tArguments& arguments);
void runAnswerClear(const tArguments& arguments);
// requestverbs.cpp
void runPendingList(const tArguments& arguments);
void runPendingAcceptance(const tArguments& arguments);
void runPendingAccept(const tArguments& arguments);
void runPendingComplete(const tArguments& arguments);
void runRoutes(const tArguments& arguments);
void runDemote(const tArguments& arguments);
// recordverbs.cpp
void runLog(const tArguments& arguments);
void runCounters(const tArguments& arguments);
void runFirmware(const tArguments& arguments);
// serviceverbs.cpp
void runEncryption(const tArguments& arguments);
void runDriverStore(const tArguments& arguments);

// ---- Values of arguments: arguments.cpp ----

// "Usage: quenra-sim demote TICKET"
[[nodiscard]] std::string usageOf(const tArguments& arguments);

// The number of a positional or an option. Throws tUsageError if it is outside the bounds.
[[nodiscard]] std::optional<uint64_t> optionalNumber(const tArguments& arguments,
                                                     std::string_view name, uint64_t minimum = 0,
                                                     uint64_t maximum = UINT32_MAX);
// As above, for a required positional or an option with a default.
[[nodiscard]] uint64_t number(const tArguments& arguments, std::string_view name,
                              uint64_t defaultValue = 0, uint64_t maximum = UINT32_MAX);
// Converts and checks one value of an argument.
[[nodiscard]] uint64_t numberOf(const tArguments& arguments, std::string_view name,
                                const std::string& text, uint64_t minimum, uint64_t maximum);

// The interface that the positional names. Throws tUsageError for another word.
[[nodiscard]] tSimulatorInterface interfaceOf(const tArguments& arguments);

// The index of a positional's word in its set. Throws tUsageError for another word.
[[nodiscard]] size_t indexOf(std::string_view kind, const std::string& word, const tWordSet& set);

// Throws tUsageError if the command line has the option: "--seconds has no meaning without working".
void rejectOption(const tArguments& arguments, std::string_view option, std::string_view reason);

// ---- Output ----

// Two digits for each byte.
[[nodiscard]] inline std::string hexadecimal(const uint8_t* bytes, size_t size) {
  constexpr char kDigits[] = "0123456789abcdef";
  std::string text;
  for (size_t i = 0; i < size; ++i) {
    text += kDigits[bytes[i] >> 4];
    text += kDigits[bytes[i] & 0xF];
  }
  return text;
}

// Writes one JSON document to standard output on destruction.
class tJsonDocument {
 public:
  tJsonDocument() = default;
  tJsonDocument(const tJsonDocument&) = delete;
  tJsonDocument& operator=(const tJsonDocument&) = delete;
  ~tJsonDocument() { std::cout << buffer_.GetString() << '\n'; }

  void begin() { writer_.StartObject(); }
  void end() { writer_.EndObject(); }
  void beginList(const char* key) {
    writer_.Key(key);
    writer_.StartArray();
  }
  void endList() { writer_.EndArray(); }
  void member(const char* key, uint64_t value) {
    writer_.Key(key);
    writer_.Uint64(value);
  }
  void member(const char* key, const std::string& value) {
    writer_.Key(key);
    const std::string text = nCommandLine::jsonText(value);
    writer_.RawValue(text.data(), text.size(), rapidjson::kStringType);
  }

 private:
  rapidjson::StringBuffer buffer_;
  rapidjson::Writer<rapidjson::StringBuffer> writer_{buffer_};
};

}  // namespace nSimulator

#endif
