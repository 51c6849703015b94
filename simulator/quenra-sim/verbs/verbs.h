#ifndef SIMULATOR_QUENRA_SIM_VERBS_VERBS_H
#define SIMULATOR_QUENRA_SIM_VERBS_VERBS_H

#include <CLI/CLI.hpp>
#include <functional>
#include <stdexcept>

namespace nSimulator {

// The exit codes, documented in docs/simulator.md.
enum tExitCode : int {
  kDone = 0,
  kFailed = 1,        // the machine or the system rejected a request
  kWrongUsage = 2,    // the command line is invalid
  kNotInstalled = 4,  // no simulated machine is installed
};

// A command line that is well-formed but contradicts itself or the machine.
class tUsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// The action of a command line, set by the verb that is parsed.
using tAction = std::function<void()>;

// machineverbs.cpp
void addInstall(CLI::App& app, tAction& action);
void addUninstall(CLI::App& app, tAction& action);
void addWait(CLI::App& app, tAction& action);
void addStatus(CLI::App& app, tAction& action);
void addReset(CLI::App& app, tAction& action);
// scenarioverb.cpp
void addScenario(CLI::App& app, tAction& action);
// answerverbs.cpp
void addAttribute(CLI::App& app, tAction& action);
void addAnswer(CLI::App& app, tAction& action);
// requestverbs.cpp
void addPending(CLI::App& app, tAction& action);
void addRoutes(CLI::App& app, tAction& action);
void addDemote(CLI::App& app, tAction& action);
// recordverbs.cpp
void addLog(CLI::App& app, tAction& action);
void addCounters(CLI::App& app, tAction& action);
void addFirmware(CLI::App& app, tAction& action);
// serviceverbs.cpp
void addEncryption(CLI::App& app, tAction& action);
void addDriverStore(CLI::App& app, tAction& action);

}  // namespace nSimulator

#endif
