// encryption and driver-store: the operating system services.
#include <windows.h>

#include <iostream>
#include <string>
#include <string_view>
#include <vector>

#include "simulator/quenra-sim/installation/installation.h"
#include "simulator/quenra-sim/verbs/verbs.h"
#include "simulator/scenario/servicescenarios.h"
#include "tools/commandline/utf8text.h"

namespace nSimulator {
namespace {

void showEncryption(bool asJson) {
  const tEncryption now = encryption();
  if (asJson) {
    tJsonDocument document;
    document.begin();
    document.member("protection", now.protection);
    document.member("failingStep", now.failingStep);
    document.end();
  } else {
    std::cout << "protection of drive C:  " << now.protection << '\n'
              << "step that fails         " << (now.failingStep.empty() ? "none" : now.failingStep)
              << '\n';
  }
}

// Converts text of the process code page for standard output.
std::string utf8(const std::string& text) {
  const auto length = static_cast<int>(text.size());
  std::wstring wide(text.size(), L'\0');
  wide.resize(static_cast<size_t>(
      MultiByteToWideChar(CP_ACP, 0, text.data(), length, wide.data(), length)));
  std::string result(wide.size() * 3, '\0');
  result.resize(static_cast<size_t>(
      WideCharToMultiByte(CP_UTF8, 0, wide.data(), static_cast<int>(wide.size()), result.data(),
                          static_cast<int>(result.size()), nullptr, nullptr)));
  return result;
}

std::string nameOf(tDriverStoreTool state) {
  return std::string(kToolWords.words()[static_cast<size_t>(state)].word);
}

void showRunsAsJson(const std::vector<tDriverStoreRun>& runs) {
  const tDriverStoreBehaviour behaviour = driverStoreBehaviour();
  tJsonDocument document;
  document.begin();
  document.member("tool", nameOf(driverStoreTool()));
  document.member("seconds", behaviour.seconds);
  document.member("exitCode", behaviour.exitCode);
  document.beginList("runs");
  for (const tDriverStoreRun& run : runs) {
    document.begin();
    document.member("commandLine", utf8(run.commandLine));
    document.member("file", utf8(run.file));
    if (run.isReadable) {
      document.member("size", run.size);
      document.member("sha256", run.sha256);
    }
    document.end();
  }
  document.endList();
  document.end();
}

void showRuns(bool asJson, bool clear) {
  const std::vector<tDriverStoreRun> runs = driverStoreRuns();
  if (asJson) {
    showRunsAsJson(runs);
  } else {
    std::cout << "the tool is " << nameOf(driverStoreTool()) << '\n';
    for (const tDriverStoreRun& run : runs) {
      std::cout << nCommandLine::printableText(utf8(run.file)) << ": ";
      if (run.isReadable) {
        std::cout << run.size << " bytes, sha256 " << run.sha256 << '\n';
      } else {
        std::cout << "not readable; the command line was '"
                  << nCommandLine::printableText(utf8(run.commandLine)) << "'\n";
      }
    }
  }
  if (clear) {
    clearDriverStoreRuns();
  }
}

std::vector<tOfferedWord> encryptionStates() {
  return {{kProtections[0], "Drive C: is not encrypted"},
          {kProtections[1], "Drive C: is encrypted"},
          {kProtections[2], "The state is unknown"},
          {kProtections[3], "The service reports no drive C:"},
          {nWords::kFail, "A step of the query fails"}};
}

std::vector<tOfferedWord> steps() {
  std::vector<tOfferedWord> words;
  for (const std::string_view step : kEncryptionSteps) {
    words.push_back({step, "This step of the query fails"});
  }
  return words;
}

std::vector<tOfferedWord> tools() {
  return {{"missing", "There is no tool"},
          {"broken", "The tool is a file that is not a program"},
          {"working", "The tool is installed"}};
}

void changeEncryption(const tArguments& arguments, const std::string& state) {
  rejectOption(arguments, nWords::kJson, "with a state");
  nCommandLine::requireWord("state", state, kEncryptionWords);
  const auto step = arguments.optional(nWords::kStep);
  if (state != nWords::kFail) {
    if (step) {
      throw tUsageError("unexpected argument '" + *step + "'", usageOf(arguments));
    }
    setEncryption({state, ""});
    return;
  }
  if (!step) {
    throw tUsageError("STEP is missing", usageOf(arguments));
  }
  nCommandLine::requireWord("step", *step, kStepWords);
  setEncryption({tEncryption().protection, *step});
}

void changeDriverStore(const tArguments& arguments, const std::string& state) {
  const auto tool = static_cast<tDriverStoreTool>(indexOf("state", state, kToolWords));
  rejectOption(arguments, nWords::kJson, "with a state");
  rejectOption(arguments, nWords::kClear, "with a state");
  const uint64_t seconds = number(arguments, nWords::kSeconds, 0, 3600);
  const uint64_t exitCode = number(arguments, nWords::kExitCode);
  if (tool == tDriverStoreTool::working) {
    setDriverStoreBehaviour({static_cast<uint32_t>(seconds), static_cast<uint32_t>(exitCode)});
  } else {
    rejectOption(arguments, nWords::kSeconds, "without working");
    rejectOption(arguments, nWords::kExitCode, "without working");
  }
  installDriverStoreTool(tool);
}

}  // namespace

constinit const tWordSet kEncryptionWords{"states", encryptionStates};
constinit const tWordSet kStepWords{"steps", steps};
constinit const tWordSet kToolWords{"tools", tools};

void runEncryption(const tArguments& arguments) {
  if (const auto state = arguments.optional(nWords::kState)) {
    changeEncryption(arguments, *state);
  } else {
    showEncryption(arguments.has(nWords::kJson));
  }
}

void runDriverStore(const tArguments& arguments) {
  if (const auto state = arguments.optional(nWords::kState)) {
    changeDriverStore(arguments, *state);
    return;
  }
  rejectOption(arguments, nWords::kSeconds, "without working");
  rejectOption(arguments, nWords::kExitCode, "without working");
  showRuns(arguments.has(nWords::kJson), arguments.has(nWords::kClear));
}

}  // namespace nSimulator
