#include "source/user/firmware/tsectionheaders.h"

#include <algorithm>
#include <charconv>
#include <system_error>

#include "source/user/failuresites.h"

namespace nQUENRA1400 {
namespace {

constexpr auto kNotFound = tImageText::kNotFound;

// Accepts digits only: neither blanks nor a sign.
uint32_t magnitudeOf(std::string_view digits, int base, bool isNegative) noexcept {
  uint32_t value = 0;
  const auto result = std::from_chars(digits.data(), digits.data() + digits.size(), value, base);
  if (result.ec == std::errc::result_out_of_range) {
    return UINT32_MAX;
  }
  return isNegative ? 0 - value : value;
}

}  // namespace

uint32_t numberOf(std::string_view text) noexcept {
  constexpr std::string_view kHexadecimal = "0x";
  if (text.starts_with(kHexadecimal)) {
    return magnitudeOf(text.substr(kHexadecimal.size()), 16, false);
  }
  text.remove_prefix(std::min(text.find_first_not_of(" \t\n\v\f\r"), text.size()));
  const bool isNegative = text.starts_with('-');
  if (isNegative || text.starts_with('+')) {
    text.remove_prefix(1);
  }
  return magnitudeOf(text, 10, isNegative);
}

std::optional<tTextRange> withoutQuotes(tTextRange value, size_t firstQuote,
                                        size_t secondQuote) noexcept {
  if (firstQuote == tImageText::kNotFound) {
    return value;
  }
  if (secondQuote == tImageText::kNotFound) {
    return std::nullopt;
  }
  return secondQuote + 1 == value.end ? tTextRange{firstQuote + 1, secondQuote} : value;
}

size_t tSectionHeaders::findSection(size_t from) noexcept {
  return headerVersion_.key.find(text_, from);
}

size_t tSectionHeaders::textEnd(size_t from) noexcept {
  if (textEnd_ == kNotFound) {
    textEnd_ = text_.findEnd(from);
  }
  return textEnd_;
}

void tSectionHeaders::readNumber(tNumber& field, size_t section, uint32_t& value,
                                 zoerr::Status& status) noexcept {
  if (status.isError()) {
    return;
  }
  const size_t start = field.key.find(text_, section);
  const size_t end = start == kNotFound ? kNotFound : field.lineEnd.find(text_, start);
  if (end == kNotFound) {
    // A value without one of its ends would be larger than any memory.
    report(nImageSites::kNumberNotDelimited, status);
    return;
  }
  const std::string_view text = text_.between(start + field.name.size(), end);
  if (text.empty()) {
    report(nImageSites::kNumberEmpty, status);
    return;
  }
  if (field.position != start) {
    field.position = start;
    field.value = numberOf(text);
  }
  value = field.value;
}

tTextRange tSectionHeaders::findText(tText& field, size_t section, zoerr::Status& status) noexcept {
  const size_t start = field.key.find(text_, section);
  if (start == kNotFound) {
    report(nImageSites::kTextMissing, status);
    return {};
  }
  tTextRange value{start + field.name.size(), field.lineEnd.find(text_, start)};
  if (value.end == kNotFound) {
    value.end = textEnd(value.begin);
  }
  if (value.isEmpty()) {
    report(nImageSites::kTextEmpty, status);
    return {};
  }
  const size_t first = field.firstQuote.find(text_, value.begin, value.end);
  const size_t second =
      first == kNotFound ? kNotFound : field.secondQuote.find(text_, first + 1, value.end);
  if (const auto unquoted = withoutQuotes(value, first, second)) {
    return *unquoted;
  }
  report(nImageSites::kQuoteNotClosed, status);
  return {};
}

tTextRange tSectionHeaders::readText(tText& field, size_t section, tSharedText& value,
                                     zoerr::Status& status) {
  if (status.isError()) {
    return {};
  }
  const tTextRange range = findText(field, section, status);
  if (status.isError()) {
    return {};
  }
  if (!field.copied.contains(range)) {
    field.copy = tSharedText(text_.between(range.begin, range.end));
    field.copied = range;
  }
  value = field.copy.part(range.begin - field.copied.begin, range.end - range.begin);
  return range;
}

tSectionHeader tSectionHeaders::read(size_t section, zoerr::Status& status) {
  tSectionHeader header;
  readNumber(headerVersion_, section, header.headerVersion, status);
  readText(updateType_, section, header.updateType, status);
  readText(version_, section, header.version, status);
  readText(targetDevice_, section, header.targetDevice, status);
  if (header.isBiosWith(nImageFormat::kCapsuleUpdate)) {
    const tTextRange name = readText(targetFileName_, section, header.targetFileName, status);
    header.isDriverPackage = driverPackage_.find(text_, name.begin, name.end) != kNotFound;
  }
  readNumber(crc_, section, header.crc, status);
  readNumber(byteCount_, section, header.byteCount, status);
  return header;
}

}  // namespace nQUENRA1400
