#include "tests/component/capture/recordedmachine.h"

#include <array>
#include <regex>
#include <string_view>
#include <vector>

#include "protocol/controllerrequests.h"
#include "quenra_attributes.h"
#include "quenra_status.h"
#include "quenra_version.h"
#include "tests/builders/smbiostablebuilder.h"
#include "tests/component/commandline/tscriptedrouting.h"
#include "tools/capture/capturefile.h"
#include "tools/quenra/capture/capturing.h"
#include "tools/quenra/capture/treplayedmachine.h"

namespace nTests {
namespace {

using nCapture::tAttributeAnswer;
using nCapture::tBytes;
using nCapture::tDuration;
using nCapture::tMachineRecord;

tBytes bytesOf(std::string_view text) {
  return {text.begin(), text.end()};
}

tAttributeAnswer answer(uint32_t id, tBytes value) {
  const auto size = static_cast<uint32_t>(value.size());
  return {id, {QUENRA_STATUS_SUCCESS, tDuration(80)}, size, std::move(value)};
}

void installTable(tMachineRecord& record, tBytes table) {
  record.handover.table = std::move(table);
  record.handover.versionText = {'3', '.', '2', 0};
  const nCapture::tSizesAnswer sizes{{DRIVER_STATUS_BUFFER_TOO_SMALL, tDuration(90)},
                                     4,
                                     static_cast<int32_t>(record.handover.table.size())};
  record.handover.query = sizes;
  record.handover.values = sizes;
  record.handover.values->result.code = QUENRA_STATUS_SUCCESS;
}

uint32_t below(std::mt19937& random, uint32_t limit) {
  return static_cast<uint32_t>(random() % limit);
}

// One of the codes that a driver returns.
int32_t randomCode(std::mt19937& random) {
  constexpr std::array<int32_t, 6> kCodes = {-1,     -26934, QUENRA_STATUS_TIME_OUT,
                                             -26930, 7,      QUENRA_STATUS_SUCCESS};
  return kCodes[below(random, kCodes.size())];
}

void spoilAttributes(nCapture::tInterface& interface, std::mt19937& random) {
  for (tAttributeAnswer& attribute : interface.attributes) {
    attribute.result.code = randomCode(random);
    if (attribute.result.code < 0) {
      attribute.value.clear();
    } else if (below(random, 3) == 0 && !attribute.value.empty()) {
      attribute.value.front() = 0xC3;  // the first byte of two
    }
  }
}

}  // namespace

tMachineRecord referenceMachine() {
  tMachineRecord record;
  record.versions = {QUENRA_VERSION, "1.0.0", "Windows 10.0.19045"};
  record.controller.present = 1;
  record.controller.opening = nCapture::tResult{};
  record.controller.attributes = {answer(QUENRA_ATTRIBUTE_PROCESSOR_SETTING, {2, 0, 0, 0}),
                                  answer(QUENRA_ATTRIBUTE_DRIVER_SETTING_1, {5, 0, 0, 0}),
                                  answer(QUENRA_ATTRIBUTE_DRIVER_SETTING_2, {250, 0, 0, 0})};
  record.marten.present = 1;
  record.marten.opening = nCapture::tResult{};
  constexpr uint32_t kOnMarten = QUENRA_ATTRIBUTE_FIRMWARE_VERSION | QUENRA_SELECTOR_MARTEN;
  tBytes version = bytesOf("1.4.0f7");
  version.push_back(0);
  record.marten.attributes = {answer(kOnMarten, version),
                              answer(QUENRA_ATTRIBUTE_FIRMWARE_VERSION, version)};
  record.devicePaths = 1;
  record.topography = nCapture::tTopography{{}, bytesOf("a router")};
  installTable(record, tReferenceTable().build());
  record.updateEnvironment = {false, 0, 0, "C:\\Windows", true, true, "BUILTIN\\Administrators", 0};
  return record;
}

tMachineRecord randomMachine(std::mt19937& random) {
  tMachineRecord record = referenceMachine();
  if (below(random, 2) == 0) {
    installTable(record, randomTable(random));
  }
  if (below(random, 3) == 0) {
    record.marten.present = below(random, 3);
  }
  if (below(random, 6) == 0) {
    record.controller.present = below(random, 3);
  }
  if (below(random, 4) == 0) {
    record.handover.values->result.code = randomCode(random);
  }
  if (below(random, 5) == 0) {
    record.handover.query->result.code = randomCode(random);
  }
  if (below(random, 2) == 0) {
    spoilAttributes(record.controller, random);
    spoilAttributes(record.marten, random);
  }
  if (below(random, 5) == 0) {
    record.marten.opening->code = QUENRA_STATUS_ACCESS_DENIED;
  }
  record.updateEnvironment.driveIsEncrypted = below(random, 2) == 0;
  // The code of the library for interfaces that it does not accept.
  record.opening.code = record.controller.present == 0 ? QUENRA_STATUS_NO_CONTROLLER
                        : record.controller.present > 1 || record.marten.present > 1
                            ? QUENRA_STATUS_GENERIC_FAILURE
                            : QUENRA_STATUS_ACCESS_DENIED;
  if (record.controller.present != 1 || record.marten.present > 1) {
    record.controller.opening.reset();
    record.marten.opening.reset();
  }
  if (record.marten.present == 0) {
    record.marten.opening.reset();
  }
  return record;
}

tMachineRecord captured(const tMachineRecord& machine) {
  nCommandLine::tReplayedLibrary library(machine);
  nCommandLine::tReplayedUpdateFacts facts(machine.updateEnvironment);
  tScriptedRouting routing;
  tRecordDriver driver(machine);
  tRecordInstallation installation(machine);
  return nCommandLine::captureMachine({library, routing, facts, driver, installation});
}

std::string textWithoutDurations(const tMachineRecord& record) {
  static const std::regex kDuration("\"microseconds\": [0-9]+");
  return std::regex_replace(nCapture::captureText(record), kDuration, "\"microseconds\": 0");
}

}  // namespace nTests
