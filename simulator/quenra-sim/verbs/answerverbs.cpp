// attribute and answer: the answers of the driver.
#include <algorithm>
#include <charconv>
#include <optional>
#include <string>
#include <vector>

#include "protocol/controllerrequests.h"
#include "protocol/pendingrequests.h"
#include "simulator/control/tsimulatedmachine.h"
#include "simulator/quenra-sim/verbs/verbs.h"
#include "tools/commandline/argumenttext.h"

namespace nSimulator {
namespace {

// "01 02", "0102" or "01,02".
std::vector<uint8_t> bytesOf(std::string text) {
  std::erase_if(text, [](char c) { return c == ' ' || c == ','; });
  std::vector<uint8_t> bytes;
  for (size_t i = 0; i < text.size(); i += 2) {
    uint8_t byte = 0;
    const char* const first = text.data() + i;
    const auto end = std::from_chars(first, text.data() + std::min(i + 2, text.size()), byte, 16);
    if (end.ec != std::errc() || end.ptr != first + 2) {
      throw tUsageError("'" + text + "' is not a list of bytes of two hexadecimal digits",
                        "Give --bytes such a list, for example '04 03 02 01'.");
    }
    bytes.push_back(byte);
  }
  return bytes;
}

uint32_t idOf(const tArguments& arguments) {
  return static_cast<uint32_t>(number(arguments, nWords::kId));
}

// A request that a script can match, with its code on the two interfaces; 0 matches any request.
struct tRequestRow {
  std::string_view name;
  std::string_view meaning;
  uint32_t controllerCode;
  uint32_t martenCode;
};
constexpr tRequestRow kRequests[] = {
    {"get-attribute", "Reading an attribute", REQUEST_GET_ATTRIBUTE, REQUEST_GET_ATTRIBUTE},
    {"set-attribute", "Writing an attribute", REQUEST_SET_ATTRIBUTE, REQUEST_SET_ATTRIBUTE},
    {"exchange-values", "Reading the SMBIOS table", REQUEST_EXCHANGE_VALUES,
     REQUEST_EXCHANGE_VALUES},
    {"send-command", "Sending firmware", REQUEST_CONTROLLER_SEND_COMMAND,
     REQUEST_MARTEN_SEND_COMMAND},
    {"pending-request", "A request that stays pending", REQUEST_PENDING_NARROW,
     REQUEST_PENDING_NARROW},
    {"pending-request-wide", "... in its wide form", REQUEST_PENDING_WIDE, REQUEST_PENDING_WIDE},
    {"end-pending", "Ending a pending request", REQUEST_END_PENDING, REQUEST_END_PENDING},
    {nWords::kAny, "Any request", 0, 0},
};

std::vector<tOfferedWord> requests() {
  std::vector<tOfferedWord> words;
  for (const tRequestRow& row : kRequests) {
    words.push_back({row.name, row.meaning});
  }
  return words;
}

uint32_t requestCodeOf(const std::string& name, tSimulatorInterface interfaceKind) {
  nCommandLine::requireWord("request", name, kRequestWords);
  const auto* const request = std::ranges::find(kRequests, name, &tRequestRow::name);
  return interfaceKind == kSimulatorInterfaceMarten ? request->martenCode : request->controllerCode;
}

int32_t statusCode(const std::string& text) {
  const auto code = nCommandLine::parseStatusCode(text);
  if (!code) {
    throw tUsageError(nCommandLine::numberFault(text, "a status code", INT32_MIN),
                      "Codes are 32-bit numbers, decimal or hexadecimal after 0x.");
  }
  return *code;
}

// Reads the options of the choice between the answers.
void setAnswer(tSimulatorScript& script, const tArguments& arguments) {
  if (const auto code = arguments.optional(nWords::kCode)) {
    script.action = kSimulatorActionAnswerCode;
    script.driverStatus = statusCode(*code);
  } else if (const auto error = optionalNumber(arguments, nWords::kWindowsError, 1, UINT16_MAX)) {
    script.action = kSimulatorActionFail;
    script.windowsError = static_cast<uint32_t>(*error);
  } else if (const auto size =
                 optionalNumber(arguments, nWords::kTruncate, 0, SIMULATOR_OUTPUT_CAPACITY)) {
    script.action = kSimulatorActionTruncate;
    script.replySize = static_cast<uint32_t>(*size);
  } else if (const auto added = arguments.optional(nWords::kAddCode)) {
    script.action = kSimulatorActionAddCode;
    script.driverStatus = statusCode(*added);
  } else {
    throw tUsageError(
        "the answer is missing: use --code, --windows-error, --truncate or --add-code",
        usageOf(arguments));
  }
}

}  // namespace

constinit const tWordSet kRequestWords{"requests", requests};

void runAttributeSet(const tArguments& arguments) {
  const tSimulatorInterface kind = interfaceOf(arguments);
  const uint32_t id = idOf(arguments);
  if (const auto value = optionalNumber(arguments, nWords::kNumber)) {
    tSimulatedMachine().setAttributeU32(kind, id, static_cast<uint32_t>(*value));
  } else if (const auto text = arguments.optional(nWords::kText)) {
    tSimulatedMachine().setAttributeText(kind, id, *text);
  } else if (const auto bytes = arguments.optional(nWords::kBytes)) {
    const std::vector<uint8_t> parsed = bytesOf(*bytes);
    tSimulatedMachine().setAttribute(kind, id, parsed);
  } else {
    throw tUsageError("the value is missing: use --number, --text or --bytes", usageOf(arguments));
  }
}

void runAttributeRemove(const tArguments& arguments) {
  const tSimulatorInterface kind = interfaceOf(arguments);
  const uint32_t id = idOf(arguments);
  tSimulatedMachine().removeAttribute(kind, id);
}

void runAttributeAllowWrites(const tArguments& arguments) {
  const tSimulatorInterface kind = interfaceOf(arguments);
  const uint32_t id = idOf(arguments);
  tSimulatedMachine().allowWrites(kind, id);
}

void runAttributeRefuseWrites(const tArguments& arguments) {
  const tSimulatorInterface kind = interfaceOf(arguments);
  const uint32_t id = idOf(arguments);
  tSimulatedMachine().refuseWrites(kind, id);
}

void runAnswerAdd(const tArguments& arguments) {
  tSimulatorScript script{};
  const tSimulatorInterface kind = interfaceOf(arguments);
  const std::string any(nWords::kAny);
  script.interfaceKind = kind;
  script.requestCode = requestCodeOf(arguments.optional(nWords::kRequest).value_or(any), kind);
  script.skip = static_cast<uint32_t>(number(arguments, nWords::kSkip));
  script.times = static_cast<uint32_t>(number(arguments, nWords::kTimes, 1));
  setAnswer(script, arguments);
  tSimulatedMachine().addScript(script);
}

void runAnswerClear(const tArguments& /*arguments*/) {
  tSimulatedMachine().clearScripts();
}

}  // namespace nSimulator
