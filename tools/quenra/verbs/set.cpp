#include <vector>

#include "tools/quenra/output/diagnostics.h"
#include "tools/quenra/reading/readingoutput.h"
#include "tools/quenra/reading/tcontroller.h"
#include "tools/quenra/text/numbertext.h"
#include "tools/quenra/text/utf8text.h"
#include "tools/quenra/verbs/attributeargument.h"
#include "tools/quenra/verbs/verbs.h"

namespace nCommandLine {
namespace {

[[noreturn]] void refuse(const std::string& what, std::string advice) {
  throw tCommandError(what, std::move(advice), {});
}

bool isSettingOfBoth(const tAttributeAddress& address) noexcept {
  return address.attribute == QUENRA_TEXT_SETTING_OF_BOTH;
}

void judgeSettingOfBoth(tWantedAttribute& wanted) {
  tAttributeAddress& address = wanted.address;
  if (address.instance != 0) {
    refuse(wanted.name() + " has no instances", "Leave the instance out.");
  }
  if (address.which == tInterface::controller) {
    refuse(wanted.name() + " cannot be written to the controller interface alone",
           "It goes to both interfaces, or with --marten to the Marten interface.");
  }
  if (address.which == tInterface::byDefault) {
    address.which = tInterface::both;
  }
}

// The library evaluates the selector for some attributes only. Refuses a selector it would ignore.
void judgeInterface(tWantedAttribute& wanted) {
  const tAttributeAddress& address = wanted.address;
  if (isSettingOfBoth(address)) {
    judgeSettingOfBoth(wanted);
  } else if (address.which == tInterface::both) {
    refuse(wanted.name() + " cannot be written to both interfaces at once",
           "Only text-setting-of-both can.");
  } else if (address.type() == tAttributeType::text && address.which != tInterface::byDefault) {
    refuse(
        "the interface of " + wanted.name() + " cannot be chosen",
        "A text goes to the controller interface, or to the Marten interface where the controller "
        "does not accept it.");
  }
}

void judgeText(const std::string& text) {
  // The limit of QUENRA_setAttributeUTF8.
  constexpr size_t kMaxTextSize = 255;
  if (!isUtf8(text)) {
    refuse("the value is not a Unicode text", "Texts are written as UTF-8.");
  }
  if (text.size() > kMaxTextSize) {
    refuse("the text has " + std::to_string(text.size()) + " bytes; at most " +
               std::to_string(kMaxTextSize) + " are accepted",
           "Shorten the text; a character outside ASCII has 2 to 4 bytes.");
  }
}

tAttributeValue parsedValue(tAttributeType type, const std::string& text) {
  if (type == tAttributeType::text) {
    judgeText(text);
    return text;
  }
  const auto number = parseUnsigned(text);
  if (!number) {
    refuse(numberFault(text, "an unsigned 32-bit number"),
           "Give it in decimal, or in hexadecimal after 0x, without its unit.");
  }
  return *number;
}

// Part of a sentence: "product-name is read-only on this machine".
std::string placeOf(tInterface which) {
  switch (which) {
    case tInterface::controller:
      return "the controller interface";
    case tInterface::marten:
      return "the Marten interface";
    default:
      return "this machine";
  }
}

tCommandError refusalOf(const tWantedAttribute& wanted, int32_t code) {
  const tInterface which = wanted.address.which;
  const bool isReadable = wanted.row != nullptr && wanted.row->isReadable();
  return {
      tExitCode::notSupported,
      isReadable ? wanted.name() + " is read-only on " + placeOf(which)
                 : placeOf(which == tInterface::both ? tInterface::byDefault : which) +
                       " does not accept " + wanted.name(),
      code,
      tSiteExplanation{{}, "Run 'quenra attributes' to list the attributes that can be written."}};
}

// The controller is open, so an interface or a field of the SMBIOS table is missing.
tCommandError absenceOf(const tWantedAttribute& wanted, int32_t code) {
  const bool isMarten = wanted.address.which == tInterface::marten;
  return {tExitCode::notSupported,
          wanted.label() + " is not available: " +
              (isMarten ? "the machine has no Marten interface"
                        : "the SMBIOS table lacks the fields that allow text settings"),
          code,
          tSiteExplanation{{},
                           isMarten ? "Leave out the Marten interface."
                                    : "Update the machine's firmware, which makes the table."}};
}

void judgeWriting(const tWantedAttribute& wanted, int32_t code, std::vector<tWarning>& warnings) {
  if (code > 0) {
    warnings.push_back({"writing " + wanted.label(), code});
  }
  if (code == QUENRA_STATUS_NOT_SUPPORTED) {
    throw refusalOf(wanted, code);
  }
  if (code == QUENRA_STATUS_NO_CONTROLLER) {
    throw absenceOf(wanted, code);
  }
  if (code < 0) {
    throw tCommandError(tExitCode::failure, "cannot write " + wanted.label(), code);
  }
}

int32_t write(iQuenra& library, const tWantedAttribute& wanted, const tAttributeValue& value,
              std::vector<tWarning>& warnings) {
  const tController controller(library);
  judgeOpening(controller, warnings);
  const int32_t code = controller.write(wanted.address, value);
  judgeWriting(wanted, code, warnings);
  return code;
}

void printDocument(std::ostream& stream, const tWantedAttribute& wanted,
                   const tAttributeValue& value, int32_t code,
                   const std::vector<tWarning>& warnings) {
  tJsonDocument document("set", tExitCode::done, warnings);
  document.beginObject("attribute");
  writeAddress(document, wanted.row, wanted.address);
  writeValue(document, wanted.row, value);
  document.status("status", code);
  document.endObject();
  document.writeTo(stream);
}

}  // namespace

tExitCode runSet(const tArguments& arguments, const tVerbContext& context) {
  tWantedAttribute wanted = attributeToWrite(arguments);
  judgeInterface(wanted);
  const tAttributeValue value = parsedValue(wanted.address.type(), arguments.text(nWords::kValue));

  std::vector<tWarning> warnings;
  const int32_t code = write(context.ports.library, wanted, value, warnings);
  context.streams.appliedChange = wanted.label() + " is set to " + shownValue(wanted.row, value);
  printWarnings(context.streams.error, warnings);
  if (context.json) {
    printDocument(context.streams.out, wanted, value, code, warnings);
  } else if (context.streams.outIsTerminal) {
    context.streams.out << wanted.label() << ": set to " << shownValue(wanted.row, value) << '\n';
  }
  return tExitCode::done;
}

}  // namespace nCommandLine
