#ifndef SIMULATOR_QUENRA_SIM_VERBS_VERB_H
#define SIMULATOR_QUENRA_SIM_VERBS_VERB_H

#include <CLI/CLI.hpp>
#include <functional>
#include <stdexcept>
#include <string>

#include "simulator/control/controlprotocol.h"

namespace nSimulator {

// How the program ends. The values are documented: docs/simulator.md.
enum tExitCode : int {
  kDone = 0,
  kFailed = 1,        // the machine or the system refused
  kWrongUsage = 2,    // the command line makes no sense
  kNotInstalled = 4,  // there is no simulated machine
};

// What a command line asks for, as one action; a verb sets it when it is chosen.
using tAction = std::function<void()>;

// A command line that is well-formed but makes no sense.
class tUsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

void addInstall(CLI::App& app, tAction& action);
void addUninstall(CLI::App& app, tAction& action);
void addWait(CLI::App& app, tAction& action);
void addStatus(CLI::App& app, tAction& action);
void addReset(CLI::App& app, tAction& action);
void addScenario(CLI::App& app, tAction& action);
void addAttribute(CLI::App& app, tAction& action);
void addAnswer(CLI::App& app, tAction& action);
void addPending(CLI::App& app, tAction& action);
void addRoutes(CLI::App& app, tAction& action);
void addCounters(CLI::App& app, tAction& action);
void addLog(CLI::App& app, tAction& action);
void addFirmware(CLI::App& app, tAction& action);
void addEncryption(CLI::App& app, tAction& action);
void addDriverStore(CLI::App& app, tAction& action);

// "controller" or "marten" on the command line.
[[nodiscard]] CLI::CheckedTransformer interfaceNames();

}  // namespace nSimulator

#endif
