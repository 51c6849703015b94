// The verbs that print the texts generated from the grammar, and the version.
#include <string>

#include "quenra_version.h"
#include "tools/commandline/generatedtexts.h"
#include "tools/quenra/output/tjsondocument.h"
#include "tools/quenra/verbs/verbs.h"

namespace nCommandLine {
tExitCode runHelp(const tArguments& arguments, const tVerbContext& context) {
  const std::string text = requestedHelp(context.grammar, arguments);
  if (context.json) {
    tJsonDocument document("help", tExitCode::done);
    document.text("text", text);
    document.writeTo(context.streams.out);
  } else {
    context.streams.out << text;
  }
  return tExitCode::done;
}

tExitCode runCompletion(const tArguments& arguments, const tVerbContext& context) {
  const tShellRow& shell = requestedShell(arguments);
  if (context.json) {
    tJsonDocument document("completion", tExitCode::done);
    document.text("shell", shell.name);
    document.text("script", shell.script(context.grammar));
    document.writeTo(context.streams.out);
  } else {
    context.streams.out << shell.script(context.grammar);
  }
  return tExitCode::done;
}

tExitCode runVersion(const tArguments& /*arguments*/, const tVerbContext& context) {
  if (context.json) {
    tJsonDocument document("version", tExitCode::done);
    document.text("version", QUENRA_VERSION);
    document.writeTo(context.streams.out);
  } else {
    context.streams.out << "quenra " QUENRA_VERSION "\n";
  }
  return tExitCode::done;
}

}  // namespace nCommandLine
