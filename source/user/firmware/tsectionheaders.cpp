#include "source/user/firmware/tsectionheaders.h"

#include "source/user/firmware/parserlocation.h"
#include "source/user/statuscodes.h"

namespace nQUENRA1400 {
namespace {

constexpr auto kNumberEmpty = parserLocation(339);
constexpr auto kNumberNotDelimited = parserLocation(351);
constexpr auto kTextMissing = parserLocation(409);
constexpr auto kTextEmpty = parserLocation(425);
constexpr auto kQuoteNotClosed = parserLocation(487);

constexpr auto kNotFound = tImageText::kNotFound;

}  // namespace

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
    status.set(kOutOfMemory, kNumberNotDelimited);
    return;
  }
  const std::string_view text = text_.between(start + field.name.size(), end);
  if (text.empty()) {
    status.set(kInvalidImage, kNumberEmpty);
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
    status.set(kInvalidImage, kTextMissing);
    return {};
  }
  tTextRange value{start + field.name.size(), field.lineEnd.find(text_, start)};
  if (value.end == kNotFound) {
    value.end = textEnd(value.begin);
  }
  if (value.isEmpty()) {
    status.set(kInvalidImage, kTextEmpty);
    return {};
  }
  const size_t first = field.firstQuote.find(text_, value.begin, value.end);
  const size_t second =
      first == kNotFound ? kNotFound : field.secondQuote.find(text_, first + 1, value.end);
  if (const auto unquoted = withoutQuotes(value, first, second)) {
    return *unquoted;
  }
  status.set(kInvalidImage, kQuoteNotClosed);
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
  if (header.isBiosWith(kCapsuleUpdate)) {
    const tTextRange name = readText(targetFileName_, section, header.targetFileName, status);
    header.isDriverPackage = driverPackage_.find(text_, name.begin, name.end) != kNotFound;
  }
  readNumber(crc_, section, header.crc, status);
  readNumber(byteCount_, section, header.byteCount, status);
  return header;
}

}  // namespace nQUENRA1400
