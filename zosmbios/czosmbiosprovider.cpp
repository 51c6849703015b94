#include "zosmbios/czosmbiosprovider.h"

#include <algorithm>
#include <cstring>
#include <string_view>

namespace nQUENRA1400::nZOSMBIOS_1_1 {
namespace {

using nZOAPALS100::kInvalidParameter;
using nZOAPALS100::tFailureRecord;
using nZOAPALS100::tSourceLocation;
using nZOAPALS100::tStatus;

constexpr tSourceLocation providerLocation(uint32_t line) noexcept {
  return {"dep_mirror\\deps\\zosmbios\\includes\\czosmbiosprovider", line};
}
constexpr auto kStructureOutsideTable = providerLocation(174);
constexpr auto kFormattedAreaOutsideTable = providerLocation(189);
constexpr auto kUnknownWidth = providerLocation(226);
constexpr auto kFieldBeyondStructure = providerLocation(235);
constexpr auto kProviderValueInstance = providerLocation(287);
constexpr auto kVersionWithoutBuffer = providerLocation(302);
constexpr auto kVersionBufferTooSmall = providerLocation(314);
constexpr auto kUnknownProviderValue = providerLocation(325);
constexpr auto kStringAbsent = providerLocation(378);
constexpr auto kSetLeavesTable = providerLocation(394);
constexpr auto kSetEnds = providerLocation(405);
constexpr auto kStringEmpty = providerLocation(438);
constexpr auto kStringTooLong = providerLocation(462);
constexpr auto kStringBufferTooSmall = providerLocation(486);
constexpr auto kStringWithoutBuffer = providerLocation(487);
constexpr auto kSizeMissing = providerLocation(488);
constexpr auto kNumberReadAsString = providerLocation(497);
constexpr auto kStructureNotFound = providerLocation(860);

// Bytes of a field of a width class; 0 for a class that fields of structures do not have.
constexpr uint32_t widthOf(tWidthClass width) noexcept {
  switch (width) {
    case tWidthClass::text:
    case tWidthClass::byte:
      return 1;
    case tWidthClass::word:
      return 2;
    case tWidthClass::doubleWord:
      return 4;
    case tWidthClass::quadWord:
      return 8;
    case tWidthClass::provider:
      break;
  }
  return 0;
}

// String `number`, from 1, of the string set that starts at `set`, a byte offset in the table. Reports
// kTableMalformed when the set runs past the end of the table, has fewer strings, or the string is
// longer than kMaxStringLength.
std::string_view findString(const tStructureTable& table, size_t set, uint8_t number,
                            tFailureRecord& failure) noexcept {
  const auto bytes = table.bytes();
  auto position = bytes.begin() + static_cast<ptrdiff_t>(std::min(set, bytes.size()));
  for (uint8_t passed = 1; passed < number; ++passed) {
    if (position != bytes.end() && *position == 0) {
      failure.merge(kTableMalformed, kSetEnds);
      return {};
    }
    const auto nul = std::find(position, bytes.end(), uint8_t{0});
    if (nul == bytes.end()) {
      failure.merge(kTableMalformed, kSetLeavesTable);
      return {};
    }
    position = nul + 1;
  }
  if (position == bytes.end() || *position == 0) {
    failure.merge(kTableMalformed, kStringEmpty);
    return {};
  }
  const auto searched =
      std::min(bytes.end() - position, ptrdiff_t{cZoSmBiosProvider::kMaxStringLength} + 1);
  const auto nul = std::find(position, position + searched, uint8_t{0});
  if (nul == position + searched) {
    failure.merge(kTableMalformed, kStringTooLong);
    return {};
  }
  const void* const first = &*position;
  return {static_cast<const char*>(first), static_cast<size_t>(nul - position)};
}

struct tCopySites {
  const tSourceLocation& tooSmall;
  const tSourceLocation& withoutBuffer;
};

// Copies a text by the size rule of getString.
void copyText(std::string_view text, char* buffer, uint32_t* size, const tCopySites& sites,
              tFailureRecord& failure) noexcept {
  const auto needed = static_cast<uint32_t>(text.size() + 1);
  if (*size < needed) {
    *size = needed;
    failure.merge(kBufferTooSmall, sites.tooSmall);
  } else if (buffer == nullptr) {
    failure.merge(kInvalidParameter, sites.withoutBuffer);
  } else {
    text.copy(buffer, text.size());
    buffer[text.size()] = '\0';
  }
}

}  // namespace

void cZoSmBiosProvider::install(std::span<const uint8_t> table, std::span<const char> version,
                                tStatus& status) noexcept {
  nZOAPAL000::tByteBuffer copy = nZOAPAL000::allocateBytes(table.size(), status);
  if (copy == nullptr) {
    return;
  }
  std::copy(table.begin(), table.end(), copy.get());
  storage_ = std::move(copy);
  table_ = tStructureTable({storage_.get(), table.size()});
  index_.build(table_);

  const size_t length = std::min<size_t>(version.size(), kVersionTextCapacity - 1);
  const auto end =
      std::find(version.begin(), version.begin() + static_cast<ptrdiff_t>(length), '\0');
  *std::copy(version.begin(), end, versionText_) = '\0';
}

void cZoSmBiosProvider::clear() noexcept {
  storage_.reset();
  table_ = tStructureTable();
  index_.clear();
}

struct cZoSmBiosProvider::tRefusal {
  int32_t code;
  tSourceLocation location;
};

inline const cZoSmBiosProvider::tRefusal* cZoSmBiosProvider::locate(
    uint8_t type, uint32_t instance, tStructureOffset& structure) const noexcept {
  static constexpr tRefusal kAbsent{kFieldNotFound, kStructureNotFound};
  const auto found = index_.isUsable() ? index_.findStructure(type, instance)
                                       : table_.findStructure(type, instance);
  if (!found) {
    return &kAbsent;
  }
  structure = *found;
  return nullptr;
}

inline const cZoSmBiosProvider::tRefusal* cZoSmBiosProvider::refusalOf(
    tStructureOffset structure, tFieldId field) const noexcept {
  static constexpr tRefusal kStructureOutside{kTableMalformed, kStructureOutsideTable};
  static constexpr tRefusal kAreaOutside{kTableMalformed, kFormattedAreaOutsideTable};
  static constexpr tRefusal kWidth{kTableMalformed, kUnknownWidth};
  static constexpr tRefusal kBeyond{kFieldNotFound, kFieldBeyondStructure};
  const auto bytes = table_.bytes();
  if (size_t{structure} + 2 > bytes.size()) {
    return &kStructureOutside;
  }
  const uint32_t length = bytes[size_t{structure} + 1];
  if (size_t{structure} + length > bytes.size()) {
    return &kAreaOutside;
  }
  const uint32_t width = widthOf(widthClassOf(field));
  if (width == 0) {
    return &kWidth;
  }
  return offsetOf(field) + width > length ? &kBeyond : nullptr;
}

void cZoSmBiosProvider::findStructure(uint8_t type, uint32_t instance, tStructureOffset* structure,
                                      tStatus& status) const noexcept {
  if (status.isError()) {
    return;
  }
  if (const tRefusal* const refusal = locate(type, instance, *structure)) {
    mergeStatus(status, refusal->code, refusal->location);
  }
}

void cZoSmBiosProvider::checkField(tStructureOffset structure, tFieldId field,
                                   tStatus& status) const noexcept {
  if (status.isError()) {
    return;
  }
  if (const tRefusal* const refusal = refusalOf(structure, field)) {
    mergeStatus(status, refusal->code, refusal->location);
  }
}

template <class Value>
int32_t cZoSmBiosProvider::readNumberAt(tStructureOffset structure, tWidthClass width,
                                        tFieldId field, Value* value) const noexcept {
  if (widthClassOf(field) != width) {
    return kFieldNotFound;
  }
  if (const tRefusal* const refusal = refusalOf(structure, field)) {
    return refusal->code;
  }
  std::memcpy(value, table_.bytes().data() + structure + offsetOf(field), sizeof *value);
  return 0;
}

template <class Value>
int32_t cZoSmBiosProvider::readNumber(tWidthClass width, tFieldId field, uint32_t instance,
                                      Value* value) noexcept {
  if (value == nullptr) {
    return kInvalidParameter;
  }
  if (!hasTable()) {
    tStatus loading;
    load(loading);
    if (loading.isError()) {
      return loading.code;
    }
  }
  tStructureOffset structure = 0;
  if (const tRefusal* const refusal = locate(structureTypeOf(field), instance, structure)) {
    return refusal->code;
  }
  return readNumberAt(structure, width, field, value);
}

int32_t cZoSmBiosProvider::readByte(tFieldId field, uint32_t instance, uint8_t* value) noexcept {
  return readNumber(tWidthClass::byte, field, instance, value);
}

int32_t cZoSmBiosProvider::readWord(tFieldId field, uint32_t instance, uint16_t* value) noexcept {
  return readNumber(tWidthClass::word, field, instance, value);
}

int32_t cZoSmBiosProvider::readQword(tFieldId field, uint32_t instance, uint64_t* value) noexcept {
  return readNumber(tWidthClass::quadWord, field, instance, value);
}

int32_t cZoSmBiosProvider::readNextWord(tStructuresOfType& structures, tFieldId field,
                                        uint16_t& value) const noexcept {
  const auto structure = structures.next();
  return structure ? readNumberAt(*structure, tWidthClass::word, field, &value) : kFieldNotFound;
}

void cZoSmBiosProvider::getString(tFieldId field, uint32_t instance, char* buffer, uint32_t* size,
                                  tStatus& status) noexcept {
  if (status.isError()) {
    return;
  }
  tFailureRecord failure;
  readText(field, instance, buffer, size, failure);
  if (failure.exists()) {
    mergeStatus(status, failure.code(), failure.record().location());
  }
}

void cZoSmBiosProvider::readText(tFieldId field, uint32_t instance, char* buffer, uint32_t* size,
                                 tFailureRecord& failure) noexcept {
  if (size == nullptr) {
    failure.merge(kInvalidParameter, kSizeMissing);
    return;
  }
  if (!hasTable()) {
    load(failure.create());
    if (failure.record().isError()) {
      return;
    }
    failure.discard();
  }
  const tWidthClass width = widthClassOf(field);
  if (width == tWidthClass::text) {
    readStructureText(field, instance, buffer, size, failure);
  } else if (width == tWidthClass::provider) {
    readVersion(field, instance, buffer, size, failure);
  } else {
    failure.merge(kFieldNotFound, kNumberReadAsString);
  }
}

void cZoSmBiosProvider::readStructureText(tFieldId field, uint32_t instance, char* buffer,
                                          uint32_t* size, tFailureRecord& failure) const noexcept {
  tStructureOffset structure = 0;
  const tRefusal* refusal = locate(structureTypeOf(field), instance, structure);
  if (refusal == nullptr) {
    refusal = refusalOf(structure, field);
  }
  if (refusal != nullptr) {
    failure.merge(refusal->code, refusal->location);
    return;
  }
  const uint8_t number = table_.bytes()[size_t{structure} + offsetOf(field)];
  if (number == 0) {
    failure.merge(kNoString, kStringAbsent);
    if (buffer != nullptr && *size != 0) {
      *buffer = '\0';
    }
    return;
  }
  const std::string_view text = findString(table_, table_.stringSetOf(structure), number, failure);
  if (!failure.exists()) {
    copyText(text, buffer, size, {kStringBufferTooSmall, kStringWithoutBuffer}, failure);
  }
}

void cZoSmBiosProvider::readVersion(tFieldId field, uint32_t instance, char* buffer, uint32_t* size,
                                    tFailureRecord& failure) const noexcept {
  if (instance != 0) {
    failure.merge(kFieldNotFound, kProviderValueInstance);
  } else if ((field & 0xFFFFF) != kVersionText) {
    failure.merge(kFieldNotFound, kUnknownProviderValue);
  } else {
    copyText(versionText_, buffer, size, {kVersionBufferTooSmall, kVersionWithoutBuffer}, failure);
  }
}

}  // namespace nQUENRA1400::nZOSMBIOS_1_1
