#include "tools/quenra/verbs/help.h"

#include "tools/quenra/grammar/parser.h"
#include "tools/quenra/grammar/words.h"
#include "tools/quenra/output/tjsondocument.h"

namespace nCommandLine {

tExitCode runHelp(const tArguments& arguments, const tVerbContext& context) {
  const std::string text = helpText(arguments.text(nWords::kVerb));
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
