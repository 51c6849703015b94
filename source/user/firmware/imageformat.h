// The words of a firmware image. docs/firmware-image.md describes the format.
#ifndef SOURCE_USER_FIRMWARE_IMAGEFORMAT_H
#define SOURCE_USER_FIRMWARE_IMAGEFORMAT_H

#include <cstdint>
#include <string_view>

namespace nQUENRA1400::nImageFormat {

// Lines of the header: a key and a value.
inline constexpr std::string_view kLineEnd = "\r\n";
inline constexpr std::string_view kHeaderVersionKey = "HeaderVersion::";
inline constexpr std::string_view kUpdateTypeKey = "UpdateType::";
// With the line feed before it: HeaderVersion has the same ending.
inline constexpr std::string_view kVersionKey = "\nVersion::";
inline constexpr std::string_view kTargetDeviceKey = "TargetDevice::";
inline constexpr std::string_view kTargetFileNameKey = "TargetFileName::";
inline constexpr std::string_view kCrcKey = "CRC::";
inline constexpr std::string_view kByteCountKey = "ByteCount::";
// The first empty line ends the header.
inline constexpr std::string_view kHeaderEnd = "\r\n\r\n";

// The only version of the header.
inline constexpr uint32_t kHeaderVersion = 1;

// Values of UpdateType.
inline constexpr std::string_view kFirmwareUpdate = "FWUpdate";
inline constexpr std::string_view kCapsuleUpdate = "CapsuleUpdate";

// Values of TargetDevice.
inline constexpr std::string_view kBios = "BIOS";
inline constexpr std::string_view kMarten = "MARTEN";
inline constexpr std::string_view kSafeMode = "SAFEMODE";

// Marks the file name of a driver package, wherever it occurs in the name.
inline constexpr std::string_view kDriverPackage = ".inf";

}  // namespace nQUENRA1400::nImageFormat

#endif
