#include "tools/quenra/output/readingjson.h"

#include "tools/quenra/output/valuetext.h"
#include "tools/quenra/text/numbertext.h"

namespace nCommandLine {
namespace {

void writeNoValue(tJsonDocument& document) {
  document.null("value");
  document.null("shown");
  document.null("unit");
}

}  // namespace

void writeAddress(tJsonDocument& document, const tAttributeRow* row,
                  const tAttributeAddress& address) {
  constexpr int kIdDigits = 8;
  document.optionalText("name", row == nullptr ? "" : row->name);
  document.text("id", hexadecimalText(address.attribute, kIdDigits));
  document.number("instance", address.instance);
  document.text("interface", interfaceName(address.which));
  document.text("type", typeName(address.type()));
}

void writeValue(tJsonDocument& document, const tAttributeRow* row, const tAttributeValue& value) {
  if (const auto* const text = std::get_if<std::string>(&value)) {
    document.text("value", *text);
  } else {
    document.number("value", std::get<uint32_t>(value));
  }
  document.text("shown", shownValue(row, value));
  document.optionalText("unit", unitOf(row, value));
}

void writeReading(tJsonDocument& document, const tAttributeRow* row, const tReading& reading) {
  writeAddress(document, row, reading.address);
  document.text("state", stateName(reading.state()));
  if (reading.state() == tReadingState::value) {
    writeValue(document, row, reading.value);
  } else {
    writeNoValue(document);
  }
  document.status("status", reading.code);
}

}  // namespace nCommandLine
