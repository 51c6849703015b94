#include "tools/quenra/verbs/set.h"

#include <vector>

#include "tools/quenra/catalogue/numbertext.h"
#include "tools/quenra/grammar/words.h"
#include "tools/quenra/output/diagnostics.h"
#include "tools/quenra/output/readingjson.h"
#include "tools/quenra/output/utf8text.h"
#include "tools/quenra/output/valuetext.h"
#include "tools/quenra/reading/tcontroller.h"
#include "tools/quenra/verbs/attributeargument.h"
#include "tools/quenra/verbs/opening.h"

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

// The library follows a selector for some attributes only. Where it would write elsewhere than it is
// told, nothing is to be written.
void judgeInterface(tWantedAttribute& wanted) {
  const tAttributeAddress& address = wanted.address;
  if (isSettingOfBoth(address)) {
    judgeSettingOfBoth(wanted);
  } else if (address.which == tInterface::both) {
    refuse(wanted.name() + " cannot be written to both interfaces at once",
           "Only text-setting-of-both can.");
  } else if (address.type() == tAttributeType::text && address.which != tInterface::byDefault) {
    refuse(
        "for " + wanted.name() + " there is no choice of the interface",
        "A text is offered to the controller interface, and what that does not take to the Marten "
        "interface.");
  }
}

tAttributeValue parsedValue(tAttributeType type, const std::string& text) {
  if (type == tAttributeType::text) {
    if (!isUtf8(text)) {
      refuse("the value is no Unicode text", "Texts are written as UTF-8.");
    }
    return text;
  }
  const auto number = parseUnsigned(text);
  if (!number) {
    refuse("'" + text + "' is no unsigned 32-bit number",
           "Give it in decimal, or in hexadecimal after 0x, without its unit.");
  }
  return *number;
}

void judgeWriting(const tWantedAttribute& wanted, int32_t code, std::vector<tWarning>& warnings) {
  if (code > 0) {
    warnings.push_back({"writing " + wanted.label(), code});
  }
  if (code >= 0) {
    return;
  }
  // The controller is open: what is missing is an interface, or a field of this machine.
  const bool absent = code == QUENRA_STATUS_NOT_SUPPORTED || code == QUENRA_STATUS_NO_CONTROLLER;
  throw tCommandError(
      absent ? tExitCode::notSupported : tExitCode::failure,
      wanted.label() + (absent ? " cannot be written on this machine" : " cannot be written"),
      code);
}

int32_t write(iQuenra& library, const tWantedAttribute& wanted, const tAttributeValue& value,
              std::vector<tWarning>& warnings) {
  const tController controller(library);
  judgeOpening(controller.code(), warnings);
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
  printWarnings(context.streams.error, warnings);
  if (context.json) {
    printDocument(context.streams.out, wanted, value, code, warnings);
  } else if (context.streams.outIsTerminal) {
    context.streams.out << wanted.label() << ": set to " << shownValue(wanted.row, value) << '\n';
  }
  return tExitCode::done;
}

}  // namespace nCommandLine
