#include <algorithm>
#include <iostream>
#include <string>

#include "quenra_version.h"
#include "simulator/control/tsimulatedmachine.h"
#include "simulator/quenra-sim/verbs/verbs.h"
#include "tools/commandline/generatedtexts.h"

namespace nSimulator {
namespace {

constexpr const char* kOutsideWine =
    "the simulated machine runs under Wine only: on Windows it would replace parts of the system";

struct tFunctionRow {
  std::string_view verb;
  void (*run)(const tArguments& arguments);
  bool requiresWine = true;
};

void printHelp(const tArguments& arguments) {
  std::cout << nCommandLine::requestedHelp(kGrammar, arguments);
}

void printCompletion(const tArguments& arguments) {
  std::cout << nCommandLine::requestedShell(arguments).script(kGrammar);
}

void printVersion(const tArguments& /*arguments*/) {
  std::cout << kGrammar.program << " " QUENRA_VERSION "\n";
}

constexpr tFunctionRow kFunctions[] = {
    {"install", runInstall},
    {"uninstall", runUninstall},
    {"wait", runWait},
    {"status", runStatus},
    {"reset", runReset},
    {"scenario", runScenario},
    {"load", runLoad},
    {"attribute set", runAttributeSet},
    {"attribute remove", runAttributeRemove},
    {"attribute allow-writes", runAttributeAllowWrites},
    {"attribute refuse-writes", runAttributeRefuseWrites},
    {"answer add", runAnswerAdd},
    {"answer clear", runAnswerClear},
    {"pending list", runPendingList},
    {"pending acceptance", runPendingAcceptance},
    {"pending accept", runPendingAccept},
    {"pending complete", runPendingComplete},
    {"routes", runRoutes},
    {"demote", runDemote},
    {"log", runLog},
    {"counters", runCounters},
    {"firmware", runFirmware},
    {"encryption", runEncryption},
    {"driver-store", runDriverStore},
    {"completion", printCompletion, false},
    {nCommandLine::kHelpVerb, printHelp, false},
    {nCommandLine::kVersionVerb.name, printVersion, false},
};

int report(const std::string& fault, tExitCode code) {
  nCommandLine::printFault(std::cerr, kGrammar.program, fault);
  return code;
}

void run(const tArguments& arguments, bool isWine) {
  const tFunctionRow& row =
      *std::ranges::find(kFunctions, arguments.verb().name, &tFunctionRow::verb);
  if (row.requiresWine && !isWine) {
    throw std::runtime_error(kOutsideWine);
  }
  row.run(arguments);
}

// The words of a shell's command line after the program's name.
nCommandLine::tCommandWords wordsOf(int argumentCount, const char* const* arguments) {
  const nCommandLine::tCommandWords words(arguments, static_cast<size_t>(argumentCount));
  return words.subspan(words.empty() ? 0 : 1);
}

}  // namespace

int runProgram(int argumentCount, const char* const* arguments, bool isWine) {
  try {
    run(nCommandLine::parseArguments(kGrammar, wordsOf(argumentCount, arguments)), isWine);
    return kDone;
  } catch (const tUsageError& error) {
    report(error.what(), kWrongUsage);
    nCommandLine::printRemedy(std::cerr, error.suggestions(), error.advice());
    return kWrongUsage;
  } catch (const tControlError& error) {
    return report(error.what(), error.windowsError() == 0 ? kNotInstalled : kFailed);
  } catch (const std::exception& error) {
    return report(error.what(), kFailed);
  }
}

}  // namespace nSimulator
