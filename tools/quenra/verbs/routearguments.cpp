#include "tools/quenra/verbs/routearguments.h"

#include <algorithm>
#include <iterator>

#include "tools/quenra/grammar/words.h"
#include "tools/quenra/output/diagnostics.h"
#include "tools/quenra/text/names.h"

namespace nCommandLine {
namespace {

void judgeTerminal(const std::string& name, const std::vector<tTerminal>& terminals) {
  if (std::ranges::find(terminals, name, &tTerminal::name) == terminals.end()) {
    std::vector<std::string_view> names;
    std::ranges::transform(terminals, std::back_inserter(names), &tTerminal::name);
    throw tCommandError("unknown terminal '" + name + "'",
                        "Run 'quenra terminals' to list the terminals.", suggest(name, names));
  }
}

}  // namespace

tWantedRoute wantedRoute(const tArguments& arguments, tRoutingSession& session) {
  const std::vector<tTerminal> terminals = session.terminals();
  tWantedRoute wanted{arguments.text(nWords::kFrom), arguments.text(nWords::kTo),
                      arguments.has(nWords::kInvert)};
  judgeTerminal(wanted.from, terminals);
  judgeTerminal(wanted.to, terminals);
  return wanted;
}

void refuseRoute(const tWantedRoute& wanted) {
  throw tCommandError(tExitCode::notSupported,
                      "there is no route from " + wanted.from + " to " + wanted.to +
                          (wanted.inverted ? " that inverts the signal" : ""),
                      std::nullopt);
}

}  // namespace nCommandLine
