#ifndef SOURCE_USER_FIRMWARE_TSECTIONHEADERS_H
#define SOURCE_USER_FIRMWARE_TSECTIONHEADERS_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

#include "source/user/firmware/imageformat.h"
#include "source/user/firmware/tfirmwarepayload.h"
#include "source/user/firmware/timagetext.h"
#include "zoapal/protons/status/zoerrstatus.h"

namespace nQUENRA1400 {

// The characters of an image from one position up to another.
struct tTextRange {
  size_t begin = 0;
  size_t end = 0;

  [[nodiscard]] bool isEmpty() const noexcept { return begin == end; }
  [[nodiscard]] bool contains(const tTextRange& other) const noexcept {
    return begin <= other.begin && other.end <= end;
  }
  bool operator==(const tTextRange&) const = default;
};

// Converts the number at the beginning of a text as C does with a 32-bit result: blanks, a sign, digits;
// hexadecimal when the text begins with "0x" in lower case. The rest is ignored. Returns 0 when there is
// no number, and all ones when it is too large, whatever its sign; otherwise a minus sign negates it
// modulo 2^32.
[[nodiscard]] uint32_t numberOf(std::string_view text) noexcept;

// Returns the range between the first two double quotes of a value if the second one is its last
// character, otherwise the complete value; nothing when a quote is opened and never closed. The quotes
// are positions in the value, or tImageText::kNotFound.
[[nodiscard]] std::optional<tTextRange> withoutQuotes(tTextRange value, size_t firstQuote,
                                                      size_t secondQuote) noexcept;

// The fields of a section's header. A field that cannot be read is 0 or empty.
struct tSectionHeader {
  uint32_t headerVersion = 0;
  tSharedText updateType;
  tSharedText version;
  tSharedText targetDevice;
  tSharedText targetFileName;    // read for a BIOS capsule only
  bool isDriverPackage = false;  // ".inf" occurs in the file name
  uint32_t crc = 0;
  uint32_t byteCount = 0;

  [[nodiscard]] bool isBiosWith(std::string_view type) const noexcept {
    return targetDevice == nImageFormat::kBios && updateType == type;
  }
  // True if the section goes to the front of the order of application.
  [[nodiscard]] bool isAppliedFirst() const noexcept {
    return isBiosWith(nImageFormat::kFirmwareUpdate) || isDriverPackage;
  }
};

// Reads the headers of an image, section by section, in the order of the image.
//
// A section takes a key that it lacks from a later one, so thousands of sections can share a key and a
// long line can have thousands of keys. Every search, number and text is therefore remembered: all
// headers together cost time and memory in proportion to the image.
class tSectionHeaders {
 public:
  explicit tSectionHeaders(const tImageText& text) noexcept : text_(text) {}

  // Returns the start of the first section at or after a position, or tImageText::kNotFound. Positions
  // must not decrease from call to call, including those passed to read().
  [[nodiscard]] size_t findSection(size_t from) noexcept;

  // Reads the header of the section that starts at a position. Reports the first field that cannot be
  // read. Throws std::bad_alloc.
  [[nodiscard]] tSectionHeader read(size_t section, zoerr::Status& status);

 private:
  struct tField {
    // A key ends in two colons. Payloads have none, so a search for the first of them passes a payload
    // at the speed of memory.
    explicit constexpr tField(std::string_view fieldName) noexcept
        : name(fieldName), key(fieldName, fieldName.size() - 2) {}

    std::string_view name;
    tForwardSearch key;
    tForwardSearch lineEnd{nImageFormat::kLineEnd};
  };
  struct tNumber : tField {
    using tField::tField;

    size_t position = tImageText::kNotFound;  // of the key whose value is known
    uint32_t value = 0;
  };
  struct tText : tField {
    using tField::tField;

    tForwardSearch firstQuote{"\""};
    tForwardSearch secondQuote{"\""};
    tTextRange copied;  // the range of the image that `copy` holds
    tSharedText copy;
  };

  // Both report why they cannot read the field, and do nothing when the status holds an error.
  void readNumber(tNumber& field, size_t section, uint32_t& value, zoerr::Status& status) noexcept;
  tTextRange readText(tText& field, size_t section, tSharedText& value, zoerr::Status& status);

  // Returns the value of a text field without its quotes.
  [[nodiscard]] tTextRange findText(tText& field, size_t section, zoerr::Status& status) noexcept;
  [[nodiscard]] size_t textEnd(size_t from) noexcept;

  const tImageText& text_;
  size_t textEnd_ = tImageText::kNotFound;
  tNumber headerVersion_{nImageFormat::kHeaderVersionKey};
  tText updateType_{nImageFormat::kUpdateTypeKey};
  tText version_{nImageFormat::kVersionKey};
  tText targetDevice_{nImageFormat::kTargetDeviceKey};
  tText targetFileName_{nImageFormat::kTargetFileNameKey};
  tForwardSearch driverPackage_{nImageFormat::kDriverPackage};
  tNumber crc_{nImageFormat::kCrcKey};
  tNumber byteCount_{nImageFormat::kByteCountKey};
};

}  // namespace nQUENRA1400

#endif
