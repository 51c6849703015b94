#include "tools/quenra/verbs/help.h"

#include "tools/quenra/grammar/helptext.h"
#include "tools/quenra/grammar/words.h"
#include "tools/quenra/manual/manualpage.h"
#include "tools/quenra/output/diagnostics.h"
#include "tools/quenra/output/tjsondocument.h"

namespace nCommandLine {
namespace {

std::string wantedText(const tArguments& arguments) {
  if (!arguments.has(nWords::kManual)) {
    const std::string action = arguments.text(nWords::kAction);
    return helpText(arguments.text(nWords::kVerb) + (action.empty() ? "" : " " + action));
  }
  if (arguments.has(nWords::kVerb)) {
    throw tCommandError("the manual page is of the whole program",
                        "Give a verb or --manual, not both.", {});
  }
  return manualPage();
}

}  // namespace

tExitCode runHelp(const tArguments& arguments, const tVerbContext& context) {
  const std::string text = wantedText(arguments);
  if (context.json) {
    tJsonDocument document("help", tExitCode::done);
    document.text("text", text);
    document.writeTo(context.streams.out);
  } else {
    context.streams.out << text;
  }
  return tExitCode::done;
}

}  // namespace nCommandLine
