#include "simulator/quenra-sim/verbs/verbs.h"

#include <iostream>
#include <string>

#include "simulator/control/tsimulatedmachine.h"
#include "tools/commandline/utf8text.h"

namespace nSimulator {
namespace {

constexpr const char* kDescription =
    "Installs and controls the simulated controller.\n\n"
    "Exit codes: 0 success, 1 the machine or the system rejected a request, 2 invalid command "
    "line, "
    "4 no simulated machine is installed.";

int report(const std::string& message, tExitCode code) {
  std::cerr << "quenra-sim: " << nCommandLine::printableText(message) << '\n';
  return code;
}

constexpr const char* kOutsideWine =
    "the simulated machine runs under Wine only: on Windows it would replace parts of the system";

void addVerbs(CLI::App& app, tAction& action) {
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
  addDemote(app, action);
  addLog(app, action);
  addCounters(app, action);
  addFirmware(app, action);
  addEncryption(app, action);
  addDriverStore(app, action);
}

int carryOut(const tAction& action) {
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

int runProgram(int argumentCount, char** arguments, bool isWine) {
  CLI::App app(kDescription, "quenra-sim");
  app.require_subcommand(1);
  tAction action;
  addVerbs(app, action);
  try {
    app.parse(argumentCount, arguments);
  } catch (const CLI::Success& help) {
    return app.exit(help);
  } catch (const CLI::ParseError& error) {
    return report(usageFault(app, error, argumentCount, arguments), kWrongUsage);
  }
  return isWine ? carryOut(action) : report(kOutsideWine, kFailed);
}

}  // namespace nSimulator
