#include <optional>

#include "protocol/controllerrequests.h"
#include "protocol/pendingrequests.h"
#include "simulator/control/tsimulatedmachine.h"
#include "simulator/quenra-sim/verbs/verb.h"

namespace nSimulator {
namespace {

struct tArguments {
  tSimulatorScript script{};
  std::string request = "any";
  std::optional<int32_t> code;
  std::optional<uint32_t> windowsError;
  std::optional<uint32_t> truncate;
  std::optional<int32_t> addCode;
};

uint32_t requestCodeOf(const tArguments& arguments) {
  const std::string& name = arguments.request;
  if (name == "get-attribute") {
    return REQUEST_GET_ATTRIBUTE;
  }
  if (name == "set-attribute") {
    return REQUEST_SET_ATTRIBUTE;
  }
  if (name == "exchange-values") {
    return REQUEST_EXCHANGE_VALUES;
  }
  if (name == "pending-request") {
    return REQUEST_PENDING_NARROW;
  }
  if (name == "pending-request-wide") {
    return REQUEST_PENDING_WIDE;
  }
  if (name == "end-pending") {
    return REQUEST_END_PENDING;
  }
  if (name == "send-command") {
    return arguments.script.interfaceKind == kSimulatorInterfaceMarten
               ? REQUEST_MARTEN_SEND_COMMAND
               : REQUEST_CONTROLLER_SEND_COMMAND;
  }
  return 0;
}

void add(tArguments arguments) {
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

void addHow(CLI::App* verb, tArguments& arguments) {
  CLI::Option_group* const how = verb->add_option_group("How");
  how->add_option("--code", arguments.code,
                  "Do not carry it out; the driver answers with this status code");
  how->add_option("--windows-error", arguments.windowsError,
                  "The request itself fails with this Windows error")
      ->check(between(1, 65535));
  how->add_option("--truncate", arguments.truncate, "Carry it out; cut the reply to so many bytes")
      ->check(between(0, SIMULATOR_OUTPUT_CAPACITY));
  how->add_option("--add-code", arguments.addCode,
                  "Carry it out; the driver reports this status code, as a warning would be");
  how->require_option(0, 1);
}

}  // namespace

void addAnswer(CLI::App& app, tAction& action) {
  static tArguments arguments;
  CLI::App* const verb =
      app.add_subcommand("answer",
                         "Script how requests are answered; scripts are tried in the "
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
      ->check(
          wordsOf("a request", {"get-attribute", "set-attribute", "exchange-values", "send-command",
                                "pending-request", "pending-request-wide", "end-pending", "any"}))
      ->capture_default_str();
  addVerb->add_option("--skip", arguments.script.skip, "Let so many requests through first")
      ->capture_default_str();
  arguments.script.times = 1;
  addVerb->add_option("--times", arguments.script.times, "Answer so many; 0: all that follow")
      ->capture_default_str();
  addHow(addVerb, arguments);
  addVerb->callback([&action] { action = [] { add(arguments); }; });
  verb->add_subcommand("clear", "Forget all scripts")->callback([&action] {
    action = [] { tSimulatedMachine().clearScripts(); };
  });
}

}  // namespace nSimulator
