// quenra-sim: the command line of the simulated machine.
#include <fcntl.h>
#include <io.h>

#include <cstdio>
#include <iostream>

#include "simulator/control/tsimulatedmachine.h"
#include "simulator/quenra-sim/verbs/verb.h"

namespace nSimulator {
namespace {

constexpr const char* kDescription =
    "Installs and controls the simulated controller.\n\n"
    "Exit codes: 0 done, 1 the machine or the system refused, 2 wrong usage, 4 no simulated "
    "machine.";

int report(const std::string& message, tExitCode code) {
  std::cerr << "quenra-sim: " << message << '\n';
  return code;
}

int run(int argumentCount, char** arguments) {
  CLI::App app(kDescription, "quenra-sim");
  app.require_subcommand(1);
  tAction action;
  addInstall(app, action);
  addUninstall(app, action);
  addWait(app, action);
  addStatus(app, action);
  addReset(app, action);
  addScenario(app, action);
  addAttribute(app, action);
  addAnswer(app, action);
  addPending(app, action);
  addRoutes(app, action);
  addLog(app, action);
  addCounters(app, action);
  addFirmware(app, action);
  addEncryption(app, action);
  addDriverStore(app, action);
  try {
    app.parse(argumentCount, arguments);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? kDone : kWrongUsage;
  }
  try {
    action();
    return kDone;
  } catch (const tUsageError& error) {
    return report(error.what(), kWrongUsage);
  } catch (const tControlError& error) {
    return report(error.what(), error.windowsError() == 0 ? kNotInstalled : kFailed);
  } catch (const std::exception& error) {
    return report(error.what(), kFailed);
  }
}

}  // namespace
}  // namespace nSimulator

int main(int argumentCount, char** arguments) {
  // Lines end the same way wherever the program runs.
  _setmode(_fileno(stdout), _O_BINARY);
  _setmode(_fileno(stderr), _O_BINARY);
  return nSimulator::run(argumentCount, arguments);
}
