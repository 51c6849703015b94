// load: the simulated machine becomes the machine of a capture.
#include <algorithm>
#include <bit>
#include <cerrno>
#include <fstream>
#include <iterator>
#include <system_error>

#include "protocol/routingrequests.h"
#include "simulator/control/tsimulatedmachine.h"
#include "simulator/quenra-sim/installation/installation.h"
#include "simulator/quenra-sim/verbs/verbs.h"
#include "simulator/scenario/servicescenarios.h"
#include "source/user/failuresites.h"
#include "tools/capture/capturefile.h"

namespace nSimulator {
namespace {

using nCapture::tAttributeAnswer;
using nCapture::tMachineRecord;
using nCapture::tSizesAnswer;

tMachineRecord readCapture(const std::string& name) {
  std::ifstream file(name, std::ios::binary);
  if (!file) {
    const std::error_code reason(errno, std::generic_category());
    throw tUsageError("cannot read '" + name + "': " + reason.message(),
                      "Name a file that 'quenra capture' has written.");
  }
  const std::string text{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  try {
    return nCapture::parseCapture(text);
  } catch (const nCapture::tCaptureFault& fault) {
    throw tUsageError("'" + name + "' is not a capture: " + fault.what(),
                      "Name a file that 'quenra capture' has written.");
  }
}

[[noreturn]] void reject(const std::string& fact) {
  throw std::runtime_error("cannot load the capture: " + fact);
}

void requireAtMost(size_t number, size_t capacity, const std::string& what) {
  if (number > capacity) {
    reject("it has " + std::to_string(number) + " " + what + ", the simulated machine at most " +
           std::to_string(capacity));
  }
}

// Finds everything that the simulated machine cannot imitate before the first change.
void check(const tMachineRecord& record) {
  requireAtMost(record.controller.present, 2, "controller interfaces");
  requireAtMost(record.marten.present, 2, "Marten interfaces");
  requireAtMost(record.devicePaths, 1, "trigger routers");
  requireAtMost(record.handover.table.size(), SIMULATOR_TABLE_CAPACITY, "bytes of SMBIOS table");
  requireAtMost(record.handover.versionText.size(), SIMULATOR_TEXT_CAPACITY,
                "bytes of SMBIOS version");
  requireAtMost(record.controller.attributes.size() + record.marten.attributes.size(),
                SIMULATOR_ATTRIBUTE_CAPACITY, "attributes of the driver");
  if (record.topography) {
    requireAtMost(record.topography->name.size(), SIMULATOR_TOPOGRAPHY_NAME_CAPACITY - 1,
                  "bytes in the name of its topography");
  }
  for (const nCapture::tInterface* const interface : {&record.controller, &record.marten}) {
    if (interface->opening && interface->opening->code < 0) {
      reject("a device interface of the machine could not be opened, with code " +
             std::to_string(interface->opening->code) + "; every simulated one can");
    }
    for (const tAttributeAnswer& answer : interface->attributes) {
      requireAtMost(answer.value.size(), SIMULATOR_VALUE_CAPACITY, "bytes in an attribute");
    }
  }
}

// The simulated driver needs about this long for a request by itself.
constexpr nCapture::tDuration kOwnTime{500};

uint32_t delayOf(const nCapture::tResult& result) {
  const nCapture::tDuration delay = std::clamp(result.duration - kOwnTime, nCapture::tDuration(0),
                                               nCapture::tDuration(SIMULATOR_MAX_DELAY));
  return static_cast<uint32_t>(delay.count());
}

void loadAttribute(tSimulatedMachine& machine, tSimulatorInterface kind,
                   const tAttributeAnswer& answer) {
  machine.setAttribute(kind, answer.id, answer.value);
  machine.setAttributeAnswer(
      {kind, answer.id, answer.result.code, answer.size, delayOf(answer.result)});
}

tSimulatorSizesAnswer sizesOf(const tSizesAnswer& answer) {
  return {answer.result.code, answer.textSize, std::bit_cast<uint32_t>(answer.tableSize),
          delayOf(answer.result)};
}

void loadHandover(tSimulatedMachine& machine, const nCapture::tHandover& handover) {
  machine.setTable(handover.table);
  const void* const text = handover.versionText.data();
  machine.setVersionText({static_cast<const char*>(text), handover.versionText.size()});
  if (handover.query) {
    // A machine whose sizes could not be queried was asked for nothing more.
    const tSizesAnswer& query = *handover.query;
    machine.setHandoverAnswer({sizesOf(query), sizesOf(handover.values.value_or(query))});
  }
}

void loadTopography(tSimulatedMachine& machine, const nCapture::tTopography& topography) {
  machine.setTopographyName(std::string(topography.name.begin(), topography.name.end()) + '\0');
  if (topography.result.code != 0) {
    tSimulatorScript script{};
    script.interfaceKind = kSimulatorInterfaceDevicePath;
    script.requestCode = REQUEST_GET_TOPOGRAPHY_NAME;
    script.action =
        topography.result.code < 0 ? kSimulatorActionAnswerCode : kSimulatorActionAddCode;
    script.driverStatus = topography.result.code;
    machine.addScript(script);
  }
}

// The library's lines for the steps of the encryption query.
struct tStepLine {
  uint32_t line;
  std::string_view step;
};
namespace nUpdateSites = nQUENRA1400::nUpdateSites;
constexpr tStepLine kStepLines[] = {{nUpdateSites::kNoLocator.location.line, "locator"},
                                    {nUpdateSites::kNamespaceNotReached.location.line, "connect"},
                                    {nUpdateSites::kQueryFailed.location.line, "query"}};

tEncryption encryptionOf(const nCapture::tUpdateEnvironment& environment) {
  const auto* const failing =
      std::ranges::find(kStepLines, environment.encryptionLine, &tStepLine::line);
  if (environment.encryptionCode < 0 && failing != std::end(kStepLines)) {
    return {"off", std::string(failing->step)};
  }
  return {environment.driveIsEncrypted ? "on" : "off", ""};
}

tDriverStoreTool toolOf(const nCapture::tUpdateEnvironment& environment) {
  return !environment.toolExists           ? tDriverStoreTool::missing
         : environment.toolStartError != 0 ? tDriverStoreTool::broken
                                           : tDriverStoreTool::working;
}

void loadMachine(const tMachineRecord& record) {
  tSimulatedMachine machine;
  machine.clearAttributes();
  loadHandover(machine, record.handover);
  for (const tAttributeAnswer& answer : record.controller.attributes) {
    loadAttribute(machine, kSimulatorInterfaceController, answer);
  }
  for (const tAttributeAnswer& answer : record.marten.attributes) {
    loadAttribute(machine, kSimulatorInterfaceMarten, answer);
  }
  if (record.topography) {
    loadTopography(machine, *record.topography);
  }
  machine.setPresence({record.controller.present, record.marten.present, record.devicePaths});
}

}  // namespace

void runLoad(const tArguments& arguments) {
  const tMachineRecord record = readCapture(arguments.text(nWords::kFile));
  check(record);
  resetSimulation();
  loadMachine(record);
  setEncryption(encryptionOf(record.updateEnvironment));
  installDriverStoreTool(toolOf(record.updateEnvironment));
}

}  // namespace nSimulator
