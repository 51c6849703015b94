#ifndef SIMULATOR_QUENRA_SIM_VERBS_VERB_H
#define SIMULATOR_QUENRA_SIM_VERBS_VERB_H

#include <CLI/CLI.hpp>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include "simulator/control/tsimulatedmachine.h"
#include "simulator/protocol/controlprotocol.h"

namespace nSimulator {

// The exit codes, documented in docs/simulator.md.
enum tExitCode : int {
  kDone = 0,
  kFailed = 1,        // the machine or the system rejected a request
  kWrongUsage = 2,    // the command line is invalid
  kNotInstalled = 4,  // no simulated machine is installed
};

// The action of a command line, set by the verb that is parsed.
using tAction = std::function<void()>;

// A command line that is well-formed but contradicts itself or the machine.
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

// Validates an option's value: a word of the list, converted to its number. The message for any
// other word ends with the list: "'foo' is not an interface: use controller or marten".
struct tNamedNumber {
  std::string name;
  uint32_t number;
};
[[nodiscard]] CLI::Validator namesOf(std::string kind, std::vector<tNamedNumber> names);
[[nodiscard]] CLI::Validator wordsOf(std::string kind, std::vector<std::string> words);
// "5 is out of range (0 to 2)"
[[nodiscard]] CLI::Validator between(int64_t least, int64_t most);

[[nodiscard]] CLI::Validator interfaceNames();

// Rethrows the error of a request, with `message` if the machine did not find its object.
[[noreturn]] void throwRefusal(const tControlError& error, const std::string& message);

}  // namespace nSimulator

#endif
