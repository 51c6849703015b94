#include <algorithm>
#include <iostream>
#include <string>

#include "quenra_version.h"
#include "simulator/control/tsimulatedmachine.h"
#include "simulator/quenra-sim/verbs/verbs.h"
#include "tools/commandline/argumenttext.h"
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

// ---- Values of arguments ----

namespace {

// As the help shows it: "--times", "TICKET".
std::string shownName(const tArguments& arguments, std::string_view name) {
  const auto positionals = arguments.verb().positionals;
  const auto row = std::ranges::find(positionals, name, &nCommandLine::tPositionalRow::name);
  return std::string(row == positionals.end() ? name : row->valueName);
}

}  // namespace

std::string usageOf(const tArguments& arguments) {
  return "Usage: " + nCommandLine::synopsis(kGrammar, arguments.verb());
}

uint64_t numberOf(const tArguments& arguments, std::string_view name, const std::string& text,
                  uint64_t minimum, uint64_t maximum) {
  const auto value = nCommandLine::parseUnsigned64(text);
  if (!value || *value < minimum || *value > maximum) {
    throw tUsageError(
        nCommandLine::numberFault(text, "an integer", static_cast<int64_t>(minimum), maximum),
        "Give " + shownName(arguments, name) + " as an integer from " + std::to_string(minimum) +
            " to " + std::to_string(maximum) + ", in decimal or in hexadecimal after 0x.");
  }
  return *value;
}

std::optional<uint64_t> optionalNumber(const tArguments& arguments, std::string_view name,
                                       uint64_t minimum, uint64_t maximum) {
  const auto text = arguments.optional(name);
  return text ? std::optional(numberOf(arguments, name, *text, minimum, maximum)) : std::nullopt;
}

uint64_t number(const tArguments& arguments, std::string_view name, uint64_t defaultValue,
                uint64_t maximum) {
  return optionalNumber(arguments, name, 0, maximum).value_or(defaultValue);
}

size_t indexOf(std::string_view kind, const std::string& word, const tWordSet& set) {
  nCommandLine::requireWord(kind, word, set);
  const auto words = set.words();
  const auto found = std::ranges::find(words, word, &nCommandLine::tOfferedWord::word);
  return static_cast<size_t>(found - words.begin());
}

tSimulatorInterface interfaceOf(const tArguments& arguments) {
  const std::string word = arguments.text(nWords::kInterface);
  nCommandLine::requireWord("interface", word, kInterfaceWords);
  return word == nWords::kMarten ? kSimulatorInterfaceMarten : kSimulatorInterfaceController;
}

void rejectOption(const tArguments& arguments, std::string_view option, std::string_view reason) {
  if (arguments.has(option)) {
    throw tUsageError(std::string(option).append(" has no meaning ").append(reason),
                      "Leave " + std::string(option) + " out.");
  }
}

}  // namespace nSimulator
