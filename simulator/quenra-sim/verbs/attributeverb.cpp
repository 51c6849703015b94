#include <algorithm>
#include <charconv>
#include <optional>
#include <vector>

#include "simulator/control/tsimulatedmachine.h"
#include "simulator/quenra-sim/verbs/verb.h"

namespace nSimulator {

namespace {

struct tArguments {
  uint32_t interfaceKind = 0;
  uint32_t attribute = 0;
  std::optional<uint32_t> number;
  std::optional<std::string> text;
  std::optional<std::string> bytes;
};

// The parsed command line. Actions read it after parsing.
tArguments theArguments;

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

void set(const tArguments& arguments) {
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

void addTarget(CLI::App* verb, tArguments& arguments) {
  verb->add_option("interface", arguments.interfaceKind, "controller or marten")
      ->required()
      ->transform(interfaceNames());
  verb->add_option("id", arguments.attribute,
                   "The attribute's id with its instance; the selector does not count")
      ->required();
}

// Adds a verb whose only arguments identify the attribute.
void addSwitch(CLI::App* verb, tAction& action, const char* name, const char* description,
               void (tSimulatedMachine::*change)(tSimulatorInterface, uint32_t)) {
  CLI::App* const switchVerb = verb->add_subcommand(name, description);
  addTarget(switchVerb, theArguments);
  switchVerb->callback([&action, change] {
    action = [change] {
      tSimulatedMachine machine;
      (machine.*change)(static_cast<tSimulatorInterface>(theArguments.interfaceKind),
                        theArguments.attribute);
    };
  });
}

}  // namespace

void addAttribute(CLI::App& app, tAction& action) {
  tArguments& arguments = theArguments;
  CLI::App* const verb =
      app.add_subcommand("attribute", "Change the attributes that the driver answers");
  verb->require_subcommand(1);
  CLI::App* const setVerb = verb->add_subcommand("set", "Give an attribute a value");
  addTarget(setVerb, arguments);
  CLI::Option* const number = setVerb->add_option("--number", arguments.number, "32-bit number");
  CLI::Option* const text = setVerb->add_option("--text", arguments.text, "Text")->excludes(number);
  setVerb->add_option("--bytes", arguments.bytes, "Bytes in hexadecimal")
      ->excludes(number)
      ->excludes(text);
  setVerb->callback([&action] { action = [] { set(theArguments); }; });
  addSwitch(verb, action, "remove", "Make the driver refuse an attribute",
            &tSimulatedMachine::removeAttribute);
  addSwitch(verb, action, "allow-writes", "Let the library write an attribute that has a value",
            &tSimulatedMachine::allowWrites);
  addSwitch(verb, action, "refuse-writes", "Make the driver refuse to write an attribute",
            &tSimulatedMachine::refuseWrites);
}

}  // namespace nSimulator
