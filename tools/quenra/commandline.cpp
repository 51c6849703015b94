#include "tools/quenra/commandline.h"

#include "tools/quenra/grammar/parser.h"
#include "tools/quenra/output/diagnostics.h"
#include "tools/quenra/verbtable.h"

namespace nCommandLine {
namespace {

tExitCode report(const tCommandError& error, const tVerbContext& context, tCommandWords words) {
  printError(context.streams.error, error);
  if (context.json) {
    writeErrorDocument(context.streams.out, error, verbIn(kGrammar, words));
  }
  return error.exitCode();
}

tExitCode runWords(const tVerbContext& context, tCommandWords words) {
  try {
    const tArguments arguments = parseArguments(kGrammar, words);
    return arguments.verb().run(arguments, context);
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

int runCommandLine(int argc, const char* const* argv, tStreams& streams, const tPorts& ports) {
  const tCommandWords words =
      tCommandWords(argv, static_cast<size_t>(argc)).subspan(argc > 0 ? 1 : 0);
  tExitCode exitCode = runWords({ports, streams, requestsJson(words), kGrammar}, words);
  if (!streams.out.flush()) {
    // The caller must not mistake a truncated answer for a complete one.
    exitCode = reportOutputFailure(streams);
  }
  return exitNumber(exitCode);
}

}  // namespace nCommandLine
