#include "source/user/firmware/tsectionheaders.h"

#include "source/user/firmware/fieldvalues.h"
#include "source/user/firmware/parserlocation.h"
#include "source/user/statuscodes.h"

namespace nQUENRA1400 {
namespace {

constexpr auto kNumberEmpty = parserLocation(339);
constexpr auto kNumberNotDelimited = parserLocation(351);
constexpr auto kTextMissing = parserLocation(409);
constexpr auto kTextEmpty = parserLocation(425);
constexpr auto kQuoteNotClosed = parserLocation(487);

constexpr std::string_view kLineEnd = "\r\n";
constexpr size_t kColons = 2;  // at the end of a key

}  // namespace

size_t tSectionHeaders::find(tKey key, size_t from) noexcept {
  tPlace& place = places_[key];
  if (!place.isKnown || place.position < from) {
    const std::string_view text = kKeys[key];
    // Payloads have no colons.
    place = {true, text_.find(text, from, tImageText::kNotFound, text.size() - kColons)};
  }
  return place.position;
}

size_t tSectionHeaders::findSection(size_t from) noexcept {
  return find(keyHeaderVersion, from);
}

void tSectionHeaders::readField(tKey key, size_t section, uint32_t& value, zoerr::Status& status) {
  if (status.isError()) {
    return;
  }
  const size_t start = find(key, section);
  const size_t end =
      start == tImageText::kNotFound ? tImageText::kNotFound : text_.find(kLineEnd, start);
  if (end == tImageText::kNotFound) {
    // Without both its ends the value would be larger than any memory.
    status.set(kOutOfMemory, kNumberNotDelimited);
    return;
  }
  const std::string_view text = text_.between(start + kKeys[key].size(), end);
  if (text.empty()) {
    status.set(kInvalidImage, kNumberEmpty);
    return;
  }
  value = numberOf(text);
}

void tSectionHeaders::readField(tKey key, size_t section, std::string& value,
                                zoerr::Status& status) {
  if (status.isError()) {
    return;
  }
  const size_t start = find(key, section);
  if (start == tImageText::kNotFound) {
    status.set(kInvalidImage, kTextMissing);
    return;
  }
  const size_t begin = start + kKeys[key].size();
  const size_t lineEnd = text_.find(kLineEnd, start);
  const std::string_view text =
      text_.between(begin, lineEnd == tImageText::kNotFound ? text_.findEnd(begin) : lineEnd);
  if (text.empty()) {
    status.set(kInvalidImage, kTextEmpty);
    return;
  }
  if (const auto unquoted = withoutQuotes(text)) {
    value = *unquoted;
  } else {
    status.set(kInvalidImage, kQuoteNotClosed);
  }
}

tSectionHeader tSectionHeaders::read(size_t section, zoerr::Status& status) {
  tSectionHeader header;
  readField(keyHeaderVersion, section, header.headerVersion, status);
  readField(keyUpdateType, section, header.updateType, status);
  readField(keyVersion, section, header.version, status);
  readField(keyTargetDevice, section, header.targetDevice, status);
  if (header.isBiosWith(kCapsuleUpdate)) {
    readField(keyTargetFileName, section, header.targetFileName, status);
  }
  readField(keyCrc, section, header.crc, status);
  readField(keyByteCount, section, header.byteCount, status);
  return header;
}

}  // namespace nQUENRA1400
