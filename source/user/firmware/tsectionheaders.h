#ifndef SOURCE_USER_FIRMWARE_TSECTIONHEADERS_H
#define SOURCE_USER_FIRMWARE_TSECTIONHEADERS_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "source/user/firmware/timagetext.h"
#include "zoapal/protons/status/zoerrstatus.h"

namespace nQUENRA1400 {

inline constexpr std::string_view kTargetBios = "BIOS";
inline constexpr std::string_view kCapsuleUpdate = "CapsuleUpdate";

// What a section tells about itself. A field that cannot be read stays 0 or empty.
struct tSectionHeader {
  uint32_t headerVersion = 0;
  std::string updateType;
  std::string version;
  std::string targetDevice;
  std::string targetFileName;  // read for a BIOS capsule only
  uint32_t crc = 0;
  uint32_t byteCount = 0;

  [[nodiscard]] bool isBiosWith(std::string_view type) const noexcept {
    return targetDevice == kTargetBios && updateType == type;
  }
};

// Reads the headers of an image, section by section, in the order in which they come.
class tSectionHeaders {
 public:
  explicit tSectionHeaders(const tImageText& text) noexcept : text_(text) {}

  // The first section at or after a position, or tImageText::kNotFound. Positions may not decrease
  // from call to call, those given to read() included.
  [[nodiscard]] size_t findSection(size_t from) noexcept;

  // The header of the section that starts at a position. Reports the first field that cannot be read.
  [[nodiscard]] tSectionHeader read(size_t section, zoerr::Status& status);

 private:
  enum tKey {
    keyHeaderVersion,
    keyUpdateType,
    keyVersion,
    keyTargetDevice,
    keyTargetFileName,
    keyCrc,
    keyByteCount,
    keyCount,
  };
  static constexpr std::array<std::string_view, keyCount> kKeys = {
      "HeaderVersion::", "UpdateType::",
      "\nVersion::",  // with the line feed, because HeaderVersion ends in it too
      "TargetDevice::",  "TargetFileName::", "CRC::", "ByteCount::",
  };

  struct tPlace {
    bool isKnown = false;
    size_t position = 0;
  };

  [[nodiscard]] size_t find(tKey key, size_t from) noexcept;
  void readField(tKey key, size_t section, uint32_t& value, zoerr::Status& status);
  void readField(tKey key, size_t section, std::string& value, zoerr::Status& status);

  const tImageText& text_;
  // A key that a section lacks is taken from a later one. That place is kept: were it searched for
  // in each section anew, an image could be made that takes hours.
  std::array<tPlace, keyCount> places_;
};

}  // namespace nQUENRA1400

#endif
