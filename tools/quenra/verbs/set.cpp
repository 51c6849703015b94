#include <vector>

#include "tools/commandline/argumenttext.h"
#include "tools/commandline/utf8text.h"
#include "tools/quenra/output/diagnostics.h"
#include "tools/quenra/reading/reading.h"
#include "tools/quenra/reading/tcontroller.h"
#include "tools/quenra/verbs/attributeargument.h"
#include "tools/quenra/verbs/verbs.h"

namespace nCommandLine {
namespace {

[[noreturn]] void reject(const std::string& what, std::string advice) {
  throw tUsageError(what, std::move(advice), {});
}

bool isSettingOfBoth(const tAttributeAddress& address) noexcept {
  return address.attribute == QUENRA_TEXT_SETTING_OF_BOTH;
}

void checkSettingOfBoth(tAttributeArgument& argument) {
  tAttributeAddress& address = argument.address;
  if (address.instance != 0) {
    reject(argument.name() + " has no instances", "Leave the instance out.");
  }
  if (address.which == tInterface::controller) {
    reject(argument.name() + " cannot be written to the controller interface alone",
           "It goes to both interfaces, or with --marten to the Marten interface.");
  }
  if (address.which == tInterface::byDefault) {
    address.which = tInterface::both;
  }
}

// The library evaluates the selector for some attributes only. Rejects a selector it would ignore.
void checkInterface(tAttributeArgument& argument) {
  const tAttributeAddress& address = argument.address;
  if (isSettingOfBoth(address)) {
    checkSettingOfBoth(argument);
  } else if (address.which == tInterface::both) {
    reject(argument.name() + " cannot be written to both interfaces at once",
           "Only text-setting-of-both can.");
  } else if (address.type() == tAttributeType::text && address.which != tInterface::byDefault) {
    reject(
        "the interface of " + argument.name() + " cannot be chosen",
        "A text goes to the controller interface, or to the Marten interface where the controller "
        "does not accept it.");
  }
}

void checkText(const std::string& text) {
  // The limit of QUENRA_setAttributeUTF8.
  constexpr size_t kMaxTextSize = 255;
  if (!isUtf8(text)) {
    reject("the value is not a Unicode text", "Texts are written as UTF-8.");
  }
  if (text.size() > kMaxTextSize) {
    reject("the text has " + std::to_string(text.size()) + " bytes; at most " +
               std::to_string(kMaxTextSize) + " are accepted",
           "Shorten the text; a character outside ASCII has 2 to 4 bytes.");
  }
}

tAttributeValue parsedValue(tAttributeType type, const std::string& text) {
  if (type == tAttributeType::text) {
    checkText(text);
    return text;
  }
  const auto number = parseUnsigned(text);
  if (!number) {
    reject(numberFault(text, "an unsigned 32-bit number"),
           "Give it in decimal, or in hexadecimal after 0x, without its unit.");
  }
  return *number;
}

// Part of a sentence: "product-name is read-only on this machine".
std::string targetOf(tInterface which) {
  switch (which) {
    case tInterface::controller:
      return "the controller interface";
    case tInterface::marten:
      return "the Marten interface";
    case tInterface::byDefault:
    case tInterface::both:
      break;
  }
  return "this machine";
}

tCommandError refusalOf(const tAttributeArgument& argument, int32_t code) {
  const tInterface which = argument.address.which;
  const bool isReadable = argument.row != nullptr && argument.row->isReadable();
  return {
      tExitCode::notSupported,
      isReadable ? argument.name() + " is read-only on " + targetOf(which)
                 : targetOf(which) + " does not accept " + argument.name(),
      code,
      tSiteExplanation{{}, "Run 'quenra attributes' to list the attributes that can be written."}};
}

// The controller is open, so an interface or a field of the SMBIOS table is missing.
tCommandError absenceOf(const tAttributeArgument& argument, int32_t code) {
  const bool isMarten = argument.address.which == tInterface::marten;
  return {tExitCode::notSupported,
          argument.label() + " is not available: " +
              (isMarten ? "the machine has no Marten interface"
                        : "the SMBIOS table lacks the fields that allow text settings"),
          code,
          tSiteExplanation{{},
                           isMarten ? "Leave out the Marten interface."
                                    : "Update the machine's firmware, which provides the table."}};
}

void checkWriting(const tAttributeArgument& argument, int32_t code,
                  std::vector<tWarning>& warnings) {
  if (code > 0) {
    warnings.push_back({"writing " + argument.label(), code});
  }
  if (code == QUENRA_STATUS_NOT_SUPPORTED) {
    throw refusalOf(argument, code);
  }
  if (code == QUENRA_STATUS_NO_CONTROLLER) {
    throw absenceOf(argument, code);
  }
  if (code < 0) {
    throw tCommandError(tExitCode::failure, "cannot write " + argument.label(), code);
  }
}

int32_t write(iQuenra& library, const tAttributeArgument& argument, const tAttributeValue& value,
              std::vector<tWarning>& warnings) {
  const tController controller(library);
  checkOpening(controller, warnings);
  const int32_t code = controller.write(argument.address, value);
  checkWriting(argument, code, warnings);
  return code;
}

void printDocument(std::ostream& stream, const tAttributeArgument& argument,
                   const tAttributeValue& value, int32_t code,
                   const std::vector<tWarning>& warnings) {
  tJsonDocument document("set", tExitCode::done, warnings);
  document.beginObject("attribute");
  writeAddress(document, argument.row, argument.address);
  writeValue(document, argument.row, value);
  document.status("status", code);
  document.endObject();
  document.writeTo(stream);
}

}  // namespace

tExitCode runSet(const tArguments& arguments, const tVerbContext& context) {
  tAttributeArgument argument = parseAttributeToWrite(arguments);
  checkInterface(argument);
  const tAttributeValue value =
      parsedValue(argument.address.type(), arguments.text(nWords::kValue));

  std::vector<tWarning> warnings;
  const int32_t code = write(context.ports.library, argument, value, warnings);
  context.streams.appliedChange =
      argument.label() + " is set to " + shownValue(argument.row, value);
  printWarnings(context.streams.error, warnings);
  if (context.json) {
    printDocument(context.streams.out, argument, value, code, warnings);
  } else if (context.streams.outIsTerminal) {
    context.streams.out << argument.label() << ": set to " << shownValue(argument.row, value)
                        << '\n';
  }
  return tExitCode::done;
}

}  // namespace nCommandLine
