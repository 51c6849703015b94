#include "tools/quenra/verbs/completion.h"

#include <algorithm>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

#include "tools/quenra/completion/shells.h"
#include "tools/quenra/grammar/words.h"
#include "tools/quenra/output/diagnostics.h"
#include "tools/quenra/output/tjsondocument.h"
#include "tools/quenra/text/names.h"

namespace nCommandLine {
namespace {

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

tExitCode runCompletion(const tArguments& arguments, const tVerbContext& context) {
  const tShellRow& shell = knownShell(arguments.text(nWords::kShell));
  if (context.json) {
    tJsonDocument document("completion", tExitCode::done);
    document.text("shell", shell.name);
    document.text("script", shell.script());
    document.writeTo(context.streams.out);
  } else {
    context.streams.out << shell.script();
  }
  return tExitCode::done;
}

}  // namespace nCommandLine
