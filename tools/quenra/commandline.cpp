#include "tools/quenra/commandline.h"

#include <span>
#include <string_view>

#include "tools/quenra/arguments.h"
#include "tools/quenra/exitcode.h"
#include "tools/quenra/output/diagnostics.h"
#include "tools/quenra/output/tjsondocument.h"
#include "tools/quenra/tcommanderror.h"
#include "tools/quenra/verbs/attributes.h"
#include "tools/quenra/verbs/explain.h"
#include "tools/quenra/verbs/get.h"
#include "tools/quenra/verbs/info.h"
#include "tools/quenra/verbs/verbcontext.h"

namespace nCommandLine {
namespace {

using tWords = std::span<const char* const>;

tExitCode printHelp(const tVerbContext& context, std::string_view text) {
  if (context.json) {
    tJsonDocument document("help", tExitCode::done);
    document.text("text", text);
    document.writeTo(context.streams.out);
  } else {
    context.streams.out << text;
  }
  return tExitCode::done;
}

tExitCode printVersion(const tVerbContext& context) {
  if (context.json) {
    tJsonDocument document("version", tExitCode::done);
    document.text("version", QUENRA_VERSION);
    document.writeTo(context.streams.out);
  } else {
    context.streams.out << "quenra " QUENRA_VERSION "\n";
  }
  return tExitCode::done;
}

tExitCode runVerb(const tArguments& arguments, const tVerbContext& context) {
  switch (arguments.verb) {
    case tVerb::info:
      return runInfo(context);
    case tVerb::get:
      return runGet(arguments.get, context);
    case tVerb::attributes:
      return runAttributes(context);
    case tVerb::explain:
      return runExplain(arguments.code, context);
    case tVerb::version:
      return printVersion(context);
    case tVerb::help:
      break;
  }
  return printHelp(context, arguments.helpText);
}

tExitCode report(const tCommandError& error, const tVerbContext& context, tWords words) {
  printError(context.streams.error, error);
  if (context.json) {
    writeErrorDocument(context.streams.out, error, verbIn(words));
  }
  return error.exitCode();
}

tExitCode runWords(const tVerbContext& context, tWords words) {
  try {
    return runVerb(parseArguments(words), context);
  } catch (const tCommandError& error) {
    return report(error, context, words);
  } catch (const std::exception& exception) {
    return report({tExitCode::failure, exception.what(), std::nullopt}, context, words);
  }
}

}  // namespace

int runCommandLine(int argc, const char* const* argv, tStreams& streams, iQuenra& library) {
  const tWords words = tWords(argv, static_cast<size_t>(argc)).subspan(argc > 0 ? 1 : 0);
  tExitCode exitCode = runWords({library, streams, wantsJson(words)}, words);
  // A full disk or a closed pipe: nobody is to take half an answer for one.
  if (!streams.out.flush()) {
    printError(streams.error,
               {tExitCode::failure, "the output could not be written", std::nullopt});
    exitCode = tExitCode::failure;
  }
  return exitNumber(exitCode);
}

}  // namespace nCommandLine
