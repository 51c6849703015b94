#include "tools/quenra/reading/reading.h"

#include <algorithm>

#include "tools/commandline/argumenttext.h"
#include "tools/commandline/utf8text.h"
#include "tools/quenra/tables/statustable.h"

namespace nCommandLine {
namespace {

// The size word of an SMBIOS Memory Device.
constexpr uint32_t kSizeInKibibytes = 0x8000;
constexpr uint32_t kSizeElsewhere = 0x7FFF;  // 32 GiB or more, which the word cannot represent
constexpr uint32_t kSizeUnknown = 0xFFFF;

bool isSizeInMebibytes(uint32_t size) noexcept {
  return (size & kSizeInKibibytes) == 0 && size != kSizeElsewhere;
}

std::string memorySizeText(uint32_t size) {
  if (size == kSizeUnknown) {
    return "unknown";
  }
  if (size == kSizeElsewhere) {
    return "32 GiB or more";
  }
  return isSizeInMebibytes(size) ? std::to_string(size) + " MiB"
                                 : std::to_string(size & ~kSizeInKibibytes) + " KiB";
}

std::string interfaceSetText(uint32_t set) {
  std::string names;
  if ((set & QUENRA_SELECTOR_CONTROLLER) != 0) {
    names = "controller";
  }
  if ((set & QUENRA_SELECTOR_MARTEN) != 0) {
    names += names.empty() ? "Marten" : ", Marten";
  }
  return hexadecimalText(set) + (names.empty() ? "" : " (" + names + ")");
}

std::string numberText(const tAttributeRow& row, uint32_t number) {
  const auto named = std::ranges::find(row.names, number, &tNamedValue::value);
  if (named != row.names.end()) {
    return std::to_string(number).append(" (").append(named->name).append(")");
  }
  std::string text = std::to_string(number);
  return row.unit.empty() ? text : text.append(" ").append(row.unit);
}

std::string unsignedText(const tAttributeRow& row, uint32_t number) {
  switch (row.form) {
    case tValueForm::hexadecimal:
      return hexadecimalText(number);
    case tValueForm::memorySize:
      return memorySizeText(number);
    case tValueForm::interfaceSet:
      return interfaceSetText(number);
    case tValueForm::plain:
      break;
  }
  return numberText(row, number);
}

void writeNoValue(tJsonDocument& document) {
  document.null("value");
  document.null("shown");
  document.null("unit");
}

}  // namespace

std::string_view interfaceName(tInterface which) noexcept {
  switch (which) {
    case tInterface::controller:
      return "controller";
    case tInterface::marten:
      return "marten";
    case tInterface::both:
      return "both";
    case tInterface::byDefault:
      break;
  }
  return "default";
}

std::string_view stateName(tReadingState state) noexcept {
  switch (state) {
    case tReadingState::value:
      return "value";
    case tReadingState::notSupported:
      return "notSupported";
    case tReadingState::notAvailable:
      return "notAvailable";
    case tReadingState::failed:
      break;
  }
  return "failed";
}

tReadingState tReading::state() const noexcept {
  if (code >= 0) {
    return tReadingState::value;
  }
  switch (code) {
    case QUENRA_STATUS_NOT_SUPPORTED:
      return tReadingState::notSupported;
    case QUENRA_STATUS_NO_CONTROLLER:
      return tReadingState::notAvailable;
    default:
      return tReadingState::failed;
  }
}

std::string plainValue(const tAttributeValue& value) {
  if (const auto* const text = std::get_if<std::string>(&value)) {
    return printableText(*text);
  }
  return std::to_string(std::get<uint32_t>(value));
}

std::string shownValue(const tAttributeRow* row, const tAttributeValue& value) {
  const auto* const number = std::get_if<uint32_t>(&value);
  return row == nullptr || number == nullptr ? plainValue(value) : unsignedText(*row, *number);
}

std::optional<uint64_t> memorySizeInBytes(uint32_t size) noexcept {
  constexpr uint64_t kKibibyte = 1024;
  if (size == kSizeUnknown || size == kSizeElsewhere) {
    return std::nullopt;
  }
  return isSizeInMebibytes(size) ? size * kKibibyte * kKibibyte
                                 : (size & ~kSizeInKibibytes) * kKibibyte;
}

std::string shownReading(const tAttributeRow* row, const tReading& reading) {
  switch (reading.state()) {
    case tReadingState::value:
      return shownValue(row, reading.value);
    case tReadingState::notSupported:
      return "not supported";
    case tReadingState::notAvailable:
      return "not available";
    case tReadingState::failed:
      break;
  }
  return "failed: " + codeAndConstant(reading.code);
}

std::string_view unitOf(const tAttributeRow* row, const tAttributeValue& value) {
  const auto* const number = std::get_if<uint32_t>(&value);
  if (row == nullptr || number == nullptr) {
    return "";
  }
  const bool otherUnit = row->form == tValueForm::memorySize && !isSizeInMebibytes(*number);
  return otherUnit ? "" : row->unit;
}

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
