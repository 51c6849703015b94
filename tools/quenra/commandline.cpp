#include "tools/quenra/commandline.h"

#include <algorithm>

#include "tools/commandline/grammar.h"
#include "tools/quenra/output/diagnostics.h"

namespace nCommandLine {
namespace {

struct tFunctionRow {
  std::string_view verb;
  tVerbFunction function;
};

constexpr tFunctionRow kFunctions[] = {
    {"info", runInfo},
    {"get", runGet},
    {"set", runSet},
    {"self-test", runSelfTest},
    {"metrics", runMetrics},
    {"doctor", runDoctor},
    {"report", runReport},
    {"terminals", runTerminals},
    {"route plan", runRoutePlan},
    {"route connect", runRouteConnect},
    {"firmware inspect", runFirmwareInspect},
    {"firmware verify", runFirmwareVerify},
    {"firmware build", runFirmwareBuild},
    {"firmware extract", runFirmwareExtract},
    {"update", runUpdate},
    {"capture", runCapture},
    {"diff", runDiff},
    {"attributes", runAttributes},
    {"explain", runExplain},
    {"completion", runCompletion},
    {kHelpVerb, runHelp},
    {kVersionVerb.name, runVersion},
};

tExitCode report(const tCommandError& error, const tVerbContext& context, tCommandWords words) {
  printError(context.streams.error, error);
  if (context.json) {
    tJsonDocument document("error", error.exitCode());
    writeError(document, error, verbIn(kGrammar, words));
    context.print(document);
  }
  return error.exitCode();
}

tExitCode runWords(const tVerbContext& context, tCommandWords words) {
  try {
    const tArguments arguments = parseArguments(kGrammar, words);
    return functionOf(arguments.verb())(arguments, context);
  } catch (const tUsageError& error) {
    return report(error, context, words);
  } catch (const tCommandError& error) {
    return report(error, context, words);
  } catch (const std::exception& exception) {
    return report({tExitCode::failure, exception.what(), std::nullopt}, context, words);
  }
}

// Reports a closed pipe only if the verb has changed the machine: a reader such as `head` closes
// the pipe once it has enough output.
tExitCode reportOutputFailure(const tStreams& streams) {
  const std::error_code failure =
      streams.outBuffer == nullptr ? std::error_code() : streams.outBuffer->failure();
  const std::string message =
      "cannot write the output" + (failure ? ": " + reasonOf(failure) : std::string());
  if (!streams.appliedChange.empty()) {
    printError(streams.error, {tExitCode::outputFailedAfterChange, message, std::nullopt,
                               "The change was applied: " + streams.appliedChange +
                                   ". Do not repeat the command."});
    return tExitCode::outputFailedAfterChange;
  }
  if (!isClosedPipe(failure)) {
    printError(streams.error, {tExitCode::failure, message, std::nullopt});
  }
  return tExitCode::failure;
}

}  // namespace

tVerbFunction functionOf(const tVerbRow& verb) noexcept {
  const auto* const row = std::ranges::find(kFunctions, verb.name, &tFunctionRow::verb);
  return row == std::ranges::end(kFunctions) ? nullptr : row->function;
}

int runCommandLine(int argc, const char* const* argv, tStreams& streams, const tPorts& ports) {
  const tCommandWords words =
      tCommandWords(argv, static_cast<size_t>(argc)).subspan(argc > 0 ? 1 : 0);
  tEventLines events(streams.out);
  const bool hasEvents = hasOption(words, nWords::kJsonLines);
  tExitCode exitCode = runWords({ports, streams, hasEvents || hasOption(words, kJsonOption.name),
                                 kGrammar, hasEvents ? &events : nullptr},
                                words);
  if (!streams.out.flush()) {
    // The caller must not mistake a truncated answer for a complete one.
    exitCode = reportOutputFailure(streams);
  }
  return exitNumber(exitCode);
}

}  // namespace nCommandLine
