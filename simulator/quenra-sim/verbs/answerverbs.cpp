// attribute and answer: the answers of the driver.
#include <algorithm>
#include <charconv>
#include <iterator>
#include <optional>
#include <string>
#include <vector>

#include "protocol/controllerrequests.h"
#include "protocol/pendingrequests.h"
#include "simulator/control/tsimulatedmachine.h"
#include "simulator/quenra-sim/verbs/verbs.h"

namespace nSimulator {
namespace {

struct tAttributeArguments {
  uint32_t interfaceKind = 0;
  uint32_t attribute = 0;
  std::optional<uint32_t> number;
  std::optional<std::string> text;
  std::optional<std::string> bytes;
};

// The parsed arguments. Actions read them after parsing.
tAttributeArguments theAttribute;

// "01 02", "0102" or "01,02".
std::vector<uint8_t> bytesOf(std::string text) {
  std::erase_if(text, [](char c) { return c == ' ' || c == ','; });
  std::vector<uint8_t> bytes;
  for (size_t i = 0; i < text.size(); i += 2) {
    uint8_t byte = 0;
    const char* const first = text.data() + i;
    const auto end = std::from_chars(first, text.data() + std::min(i + 2, text.size()), byte, 16);
    if (end.ec != std::errc() || end.ptr != first + 2) {
      throw tUsageError("'" + text + "' is not a list of bytes of two hexadecimal digits");
    }
    bytes.push_back(byte);
  }
  return bytes;
}

void setAttribute(const tAttributeArguments& arguments) {
  if (!arguments.number && !arguments.text && !arguments.bytes) {
    throw tUsageError("the value is missing: use --number, --text or --bytes");
  }
  const auto kind = static_cast<tSimulatorInterface>(arguments.interfaceKind);
  const std::vector<uint8_t> bytes =
      arguments.bytes ? bytesOf(*arguments.bytes) : std::vector<uint8_t>();
  tSimulatedMachine machine;
  if (arguments.number) {
    machine.setAttributeU32(kind, arguments.attribute, *arguments.number);
  } else if (arguments.text) {
    machine.setAttributeText(kind, arguments.attribute, *arguments.text);
  } else {
    machine.setAttribute(kind, arguments.attribute, bytes);
  }
}

void addTarget(CLI::App* verb, tAttributeArguments& arguments) {
  verb->add_option("interface", arguments.interfaceKind, "controller or marten")
      ->required()
      ->transform(interfaceNames());
  verb->add_option("id", arguments.attribute,
                   "The attribute's id with its instance; the selector is ignored")
      ->required();
}

// Adds a verb whose only arguments identify the attribute.
void addSwitch(CLI::App* verb, tAction& action, const char* name, const char* description,
               void (tSimulatedMachine::*change)(tSimulatorInterface, uint32_t)) {
  CLI::App* const switchVerb = verb->add_subcommand(name, description);
  addTarget(switchVerb, theAttribute);
  switchVerb->callback([&action, change] {
    action = [change] {
      tSimulatedMachine machine;
      (machine.*change)(static_cast<tSimulatorInterface>(theAttribute.interfaceKind),
                        theAttribute.attribute);
    };
  });
}

struct tAnswerArguments {
  tSimulatorScript script{};
  std::string request = "any";
  std::optional<int32_t> code;
  std::optional<uint32_t> windowsError;
  std::optional<uint32_t> truncate;
  std::optional<int32_t> addCode;
};

// A request that a script can match, with its code on the two interfaces; 0 matches any request.
struct tRequestName {
  const char* name;
  uint32_t controllerCode;
  uint32_t martenCode;
};
constexpr tRequestName kRequests[] = {
    {"get-attribute", REQUEST_GET_ATTRIBUTE, REQUEST_GET_ATTRIBUTE},
    {"set-attribute", REQUEST_SET_ATTRIBUTE, REQUEST_SET_ATTRIBUTE},
    {"exchange-values", REQUEST_EXCHANGE_VALUES, REQUEST_EXCHANGE_VALUES},
    {"send-command", REQUEST_CONTROLLER_SEND_COMMAND, REQUEST_MARTEN_SEND_COMMAND},
    {"pending-request", REQUEST_PENDING_NARROW, REQUEST_PENDING_NARROW},
    {"pending-request-wide", REQUEST_PENDING_WIDE, REQUEST_PENDING_WIDE},
    {"end-pending", REQUEST_END_PENDING, REQUEST_END_PENDING},
    {"any", 0, 0},
};

std::vector<std::string> requestNames() {
  std::vector<std::string> names;
  for (const tRequestName& request : kRequests) {
    names.emplace_back(request.name);
  }
  return names;
}

uint32_t requestCodeOf(const tAnswerArguments& arguments) {
  const auto* const request =
      std::find_if(std::begin(kRequests), std::end(kRequests),
                   [&](const tRequestName& row) { return row.name == arguments.request; });
  return arguments.script.interfaceKind == kSimulatorInterfaceMarten ? request->martenCode
                                                                     : request->controllerCode;
}

void addScript(tAnswerArguments arguments) {
  tSimulatorScript& script = arguments.script;
  script.requestCode = requestCodeOf(arguments);
  if (arguments.code) {
    script.action = kSimulatorActionAnswerCode;
    script.driverStatus = *arguments.code;
  } else if (arguments.windowsError) {
    script.action = kSimulatorActionFail;
    script.windowsError = *arguments.windowsError;
  } else if (arguments.truncate) {
    script.action = kSimulatorActionTruncate;
    script.replySize = *arguments.truncate;
  } else if (arguments.addCode) {
    script.action = kSimulatorActionAddCode;
    script.driverStatus = *arguments.addCode;
  } else {
    throw tUsageError(
        "the answer is missing: use --code, --windows-error, --truncate or --add-code");
  }
  tSimulatedMachine().addScript(script);
}

void addActions(CLI::App* verb, tAnswerArguments& arguments) {
  CLI::Option_group* const actions = verb->add_option_group("Action");
  actions->add_option("--code", arguments.code,
                      "Do not carry out the request; the driver answers with this status code");
  actions
      ->add_option("--windows-error", arguments.windowsError,
                   "Fail the request with this Windows error")
      ->check(between(1, 65535));
  actions
      ->add_option("--truncate", arguments.truncate,
                   "Carry out the request; truncate the reply to this many bytes")
      ->check(between(0, SIMULATOR_OUTPUT_CAPACITY));
  actions->add_option(
      "--add-code", arguments.addCode,
      "Carry out the request; the driver reports this status code, such as a warning");
  actions->require_option(0, 1);
}

}  // namespace

void addAttribute(CLI::App& app, tAction& action) {
  tAttributeArguments& arguments = theAttribute;
  CLI::App* const verb =
      app.add_subcommand("attribute", "Change the driver's answer for an attribute");
  verb->require_subcommand(1);
  CLI::App* const setVerb = verb->add_subcommand("set", "Set the value of an attribute");
  addTarget(setVerb, arguments);
  CLI::Option* const number = setVerb->add_option("--number", arguments.number, "32-bit number");
  CLI::Option* const text = setVerb->add_option("--text", arguments.text, "Text")->excludes(number);
  setVerb->add_option("--bytes", arguments.bytes, "Bytes in hexadecimal")
      ->excludes(number)
      ->excludes(text);
  setVerb->callback([&action] { action = [] { setAttribute(theAttribute); }; });
  addSwitch(verb, action, "remove", "Make the driver reject an attribute",
            &tSimulatedMachine::removeAttribute);
  addSwitch(verb, action, "allow-writes",
            "Accept writes of the library to an attribute that has a value",
            &tSimulatedMachine::allowWrites);
  addSwitch(verb, action, "refuse-writes", "Reject writes of the library to an attribute",
            &tSimulatedMachine::refuseWrites);
}

void addAnswer(CLI::App& app, tAction& action) {
  static tAnswerArguments arguments;
  CLI::App* const verb =
      app.add_subcommand("answer",
                         "Script the answers to requests; scripts are tried in the "
                         "order in which they were added");
  verb->require_subcommand(1);
  CLI::App* const addVerb = verb->add_subcommand("add", "Add a script");
  addVerb->add_option("interface", arguments.script.interfaceKind, "controller or marten")
      ->required()
      ->transform(interfaceNames());
  addVerb
      ->add_option("request", arguments.request,
                   "get-attribute, set-attribute, exchange-values, send-command, pending-request, "
                   "pending-request-wide, end-pending or any")
      ->check(wordsOf("a request", requestNames()))
      ->capture_default_str();
  addVerb->add_option("--skip", arguments.script.skip, "Matching requests to let through first")
      ->capture_default_str();
  arguments.script.times = 1;
  addVerb
      ->add_option("--times", arguments.script.times,
                   "Matching requests to answer after those; 0: all")
      ->capture_default_str();
  addActions(addVerb, arguments);
  addVerb->callback([&action] { action = [] { addScript(arguments); }; });
  verb->add_subcommand("clear", "Remove all scripts")->callback([&action] {
    action = [] { tSimulatedMachine().clearScripts(); };
  });
}

}  // namespace nSimulator
