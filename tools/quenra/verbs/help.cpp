// The verbs that print the texts generated from the grammar, and the version.
#include <algorithm>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

#include "quenra_version.h"
#include "tools/quenra/grammar/generatedtexts.h"
#include "tools/quenra/output/tjsondocument.h"
#include "tools/quenra/text/argumenttext.h"
#include "tools/quenra/verbs/verbs.h"

namespace nCommandLine {
namespace {

std::string helpFor(const tArguments& arguments, const tGrammar& grammar) {
  if (!arguments.has(nWords::kManual)) {
    const std::string action = arguments.text(nWords::kAction);
    return helpText(grammar, arguments.text(kHelpTopic) + (action.empty() ? "" : " " + action));
  }
  if (arguments.has(kHelpTopic)) {
    throw tCommandError("the manual page documents all verbs", "Give a verb or --manual, not both.",
                        {});
  }
  return manualPage(grammar);
}

const tShellRow& knownShell(std::string_view name) {
  const auto* const shell = std::ranges::find(kShells, name, &tShellRow::name);
  if (shell == std::ranges::end(kShells)) {
    std::vector<std::string_view> names;
    std::ranges::transform(kShells, std::back_inserter(names), &tShellRow::name);
    throw tCommandError("unknown shell '" + std::string(name) + "'", "Use bash or powershell.",
                        suggest(name, names));
  }
  return *shell;
}

}  // namespace

tExitCode runHelp(const tArguments& arguments, const tVerbContext& context) {
  const std::string text = helpFor(arguments, context.grammar);
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
  const tShellRow& shell = knownShell(arguments.text(nWords::kShell));
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
