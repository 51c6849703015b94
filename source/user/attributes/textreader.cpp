#include <algorithm>
#include <cstdint>
#include <limits>
#include <string_view>

#include "source/user/attributes/attributes.h"
#include "source/user/attributes/attributetables.h"
#include "source/user/attributes/normalisedtext.h"
#include "source/user/machine/drivercalls.h"
#include "source/user/machine/smbiosfields.h"

namespace nQUENRA1400 {
namespace {

using nZOAPALS100::tSourceLocation;
using nZOSMBIOS_1_1::tFieldId;

constexpr auto kMartenNotOpen = sessionLocation(449);
constexpr auto kSerialNumberNotApplicable = sessionLocation(493);
constexpr auto kIdentifierNotApplicable = sessionLocation(537);
constexpr auto kEarlyPlatform = sessionLocation(545);
constexpr auto kVersionIsBiosVersion = sessionLocation(622);
constexpr auto kUnknownAttribute = sessionLocation(893);
constexpr auto kTextDoesNotFit = sessionLocation(2770);
constexpr auto kBufferMissing = sessionLocation(2771);
constexpr auto kNoRoomForNul = sessionLocation(2772);

constexpr std::string_view kNotApplicable = "Not Applicable";
constexpr auto kFirmwareVersionNumber = tAttributeId(QUENRA_ATTRIBUTE_FIRMWARE_VERSION).number();
constexpr uint32_t kGenerationWithIdentifier = 7;

// The layers below take sizes of 32 bits, more than any text needs.
uint32_t saturated(uint64_t size) noexcept {
  return static_cast<uint32_t>(std::min<uint64_t>(size, std::numeric_limits<uint32_t>::max()));
}

class tTextReading {
 public:
  tTextReading(const tAttributeAccess& access, tAttributeId attribute, char* buffer, uint64_t* size,
               zoerr::Status& status) noexcept
      : access_(access), attribute_(attribute), buffer_(buffer), size_(size), status_(status) {}

  void readFromMarten() const noexcept;
  void readRow(const tTextRow& row) const noexcept;

 private:
  void terminate(uint32_t filled) const noexcept;
  bool readField(tFieldId field, uint32_t instance) const noexcept;
  void readApplicable(tFieldId field, const tSourceLocation& notApplicable) const noexcept;
  void readUnlikeBiosVersion(tFieldId field) const noexcept;
  void readOnLaterPlatforms(tFieldId field) const noexcept;
  void readOfMemoryModule(tFieldId field) const noexcept;
  void readNormalised(tFieldId field, uint32_t instance, tSegments segments) const noexcept;
  void readNormalisedEntry(const tListSource& list, tSegments segments) const noexcept;
  void rejectText(const tSourceLocation& location) const noexcept;
  void deliver(std::string_view text) const noexcept;

  const tAttributeAccess& access_;
  const tAttributeId attribute_;
  char* const buffer_;
  uint64_t* const size_;
  zoerr::Status& status_;
};

void tTextReading::readFromMarten() const noexcept {
  if (size_ == nullptr) {
    return;
  }
  if (buffer_ == nullptr && *size_ != 0) {
    status_.set(nZOAPALS100::kInvalidParameter, kBufferMissing);
    return;
  }
  const uint32_t offered = saturated(*size_);
  uint32_t answered = offered;
  const int32_t code =
      readFromDriver(access_.marten, attribute_.value(), buffer_, answered, status_);
  if (code == QUENRA_STATUS_BUFFER_TOO_SMALL) {
    *size_ = answered;
  } else if (code >= 0) {
    // The driver cannot have filled more than the buffer.
    terminate(std::min(answered, offered));
  }
}

// Terminates the text in the first `filled` bytes of the buffer, which a driver may leave without a NUL.
// A text that leaves no space for the NUL is too long: a truncated text would be a different one.
void tTextReading::terminate(uint32_t filled) const noexcept {
  const bool isTerminated = std::string_view(buffer_, filled).find('\0') != std::string_view::npos;
  if (isTerminated || filled < *size_) {
    if (!isTerminated) {
      buffer_[filled] = '\0';
    }
    *size_ = filled;
    return;
  }
  if (filled != 0) {
    buffer_[0] = '\0';
  }
  *size_ = uint64_t{filled} + 1;
  status_.set(QUENRA_STATUS_BUFFER_TOO_SMALL, kNoRoomForNul);
}

void tTextReading::readRow(const tTextRow& row) const noexcept {
  const uint32_t instance = attribute_.instance();
  switch (row.rule) {
    case tTextRule::asItIs:
      readField(row.field, instance);
      break;
    case tTextRule::applicable:
      readApplicable(row.field, kSerialNumberNotApplicable);
      break;
    case tTextRule::unlikeBiosVersion:
      readUnlikeBiosVersion(row.field);
      break;
    case tTextRule::onLaterPlatforms:
      readOnLaterPlatforms(row.field);
      break;
    case tTextRule::ofMemoryModule:
      readOfMemoryModule(row.field);
      break;
    case tTextRule::normalised:
      readNormalised(row.field, instance, tSegments::one);
      break;
    case tTextRule::normalisedList:
      readNormalisedEntry(*row.list, tSegments::one);
      break;
    case tTextRule::normalisedGroupsList:
      readNormalisedEntry(*row.list, tSegments::separatedByCommas);
      break;
  }
}

// True when the text has been read into the caller's buffer. Without a size nothing is read.
bool tTextReading::readField(tFieldId field, uint32_t instance) const noexcept {
  if (size_ == nullptr) {
    return false;
  }
  uint32_t size = saturated(*size_);
  nZOAPALS100::tFailureRecord failure;
  access_.provider.readText(field, instance, buffer_, &size, failure);
  if (!failure.exists()) {
    return true;
  }
  if (failure.code() == nZOSMBIOS_1_1::kBufferTooSmall) {
    *size_ = size;
  }
  if (failure.code() == nZOAPALS100::kInvalidParameter) {
    status_.mergeFrom(failure.record());
  }
  mergeProviderResult(failure.code(), status_);
  return false;
}

// Reports that the attribute is not supported, and clears the buffer, which holds a placeholder.
void tTextReading::rejectText(const tSourceLocation& location) const noexcept {
  buffer_[0] = '\0';
  status_.set(QUENRA_STATUS_NOT_SUPPORTED, location);
}

void tTextReading::readApplicable(tFieldId field,
                                  const tSourceLocation& notApplicable) const noexcept {
  if (readField(field, attribute_.instance()) && buffer_ == kNotApplicable) {
    rejectText(notApplicable);
  }
}

void tTextReading::readUnlikeBiosVersion(tFieldId field) const noexcept {
  if (!readField(field, attribute_.instance())) {
    return;
  }
  const tProviderText biosVersion(access_.provider, nPlatformFields::kBiosVersion, 0);
  mergeProviderResult(biosVersion.result(), status_);
  if (biosVersion.result() == 0 && buffer_ == biosVersion.view()) {
    rejectText(kVersionIsBiosVersion);
  }
}

void tTextReading::readOnLaterPlatforms(tFieldId field) const noexcept {
  if (size_ == nullptr) {
    return;
  }
  uint32_t generation = 0;
  readUnsignedAttribute(access_, QUENRA_ATTRIBUTE_PLATFORM_GENERATION, generation, status_);
  if (status_.isError()) {
    return;
  }
  if (generation < kGenerationWithIdentifier) {
    status_.set(QUENRA_STATUS_NOT_SUPPORTED, kEarlyPlatform);
    return;
  }
  readApplicable(field, kIdentifierNotApplicable);
}

void tTextReading::readOfMemoryModule(tFieldId field) const noexcept {
  if (size_ == nullptr) {
    return;
  }
  const uint32_t instance = access_.memoryModules.instanceOf(attribute_.instance(), status_);
  if (!status_.isError()) {
    readField(field, instance);
  }
}

void tTextReading::readNormalised(tFieldId field, uint32_t instance,
                                  tSegments segments) const noexcept {
  const tProviderText text(access_.provider, field, instance);
  mergeProviderResult(text.result(), status_);
  if (text.result() == 0) {
    // The outcome is that of this read alone: drops an earlier warning.
    status_.clear();
    deliver(tNormalisedText(text.view(), segments).view());
  }
}

void tTextReading::readNormalisedEntry(const tListSource& list, tSegments segments) const noexcept {
  uint8_t count = 0;
  mergeProviderResult(access_.provider.readByte(list.count, 0, &count), status_);
  if (status_.isError()) {
    return;
  }
  const uint32_t position = attribute_.instance();
  if (position >= count || position >= list.capacity) {
    status_.set(QUENRA_STATUS_NOT_SUPPORTED, sessionLocation(list.line));
    return;
  }
  readNormalised(list.entry(position), 0, segments);
}

void tTextReading::deliver(std::string_view text) const noexcept {
  const uint64_t needed = text.size() + 1;
  if (size_ == nullptr || *size_ < needed) {
    if (size_ != nullptr) {
      *size_ = needed;
    }
    status_.set(QUENRA_STATUS_BUFFER_TOO_SMALL, kTextDoesNotFit);
  } else if (buffer_ == nullptr) {
    status_.set(nZOAPALS100::kInvalidParameter, kBufferMissing);
  } else {
    buffer_[text.copy(buffer_, text.size())] = '\0';
  }
}

}  // namespace

void readTextAttribute(const tAttributeAccess& access, uint32_t attribute, char* buffer,
                       uint64_t* size, zoerr::Status& status) noexcept {
  if (status.isError()) {
    return;
  }
  const tAttributeId id(attribute);
  const tTextReading reading(access, id, buffer, size, status);
  if (!access.martenIsOpen && id.selectsMarten()) {
    status.set(QUENRA_STATUS_NO_CONTROLLER, kMartenNotOpen);
  } else if (access.martenIsOpen && id.number() == kFirmwareVersionNumber &&
             !id.selectsController()) {
    reading.readFromMarten();
  } else if (const tTextRow* row = findTextRow(id.base())) {
    reading.readRow(*row);
  } else {
    status.set(QUENRA_STATUS_NOT_SUPPORTED, kUnknownAttribute);
  }
}

}  // namespace nQUENRA1400
