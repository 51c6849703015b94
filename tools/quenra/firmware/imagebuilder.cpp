#include "tools/quenra/firmware/firmwareimage.h"

#include <algorithm>
#include <cstdint>
#include <memory>

#include "source/user/firmware/decoding/plainsteps.h"
#include "source/user/firmware/decoding/selection.h"
#include "source/user/firmware/imageformat.h"
#include "tools/quenra/text/numbertext.h"

namespace nCommandLine {
namespace {

namespace nImageFormat = nQUENRA1400::nImageFormat;
using nImageFormat::kLineEnd;

constexpr size_t kGroupBytes = 3;
constexpr size_t kGroupCharacters = 4;

void appendGroup(std::string& text, std::string_view group) {
  uint32_t bits = 0;
  for (size_t i = 0; i < kGroupBytes; ++i) {
    bits = bits << 8 | (i < group.size() ? static_cast<uint8_t>(group[i]) : 0U);
  }
  for (size_t i = 0; i < kGroupCharacters; ++i) {
    const uint32_t sextet = bits >> (18 - 6 * i) & 0x3F;
    text += i <= group.size() ? nQUENRA1400::nFirmwareDecoding::kBase64Alphabet[sextet] : '=';
  }
}

std::string base64(std::string_view bytes) {
  std::string text;
  text.reserve((bytes.size() / kGroupBytes + 1) * kGroupCharacters);
  for (; !bytes.empty(); bytes.remove_prefix(std::min(kGroupBytes, bytes.size()))) {
    appendGroup(text, bytes.substr(0, kGroupBytes));
  }
  return text;
}

std::string wrapped(std::string_view text, size_t lineLength) {
  const size_t length = lineLength == 0 ? std::max<size_t>(text.size(), 1) : lineLength;
  std::string lines;
  lines.reserve(text.size() + (text.size() / length + 1) * kLineEnd.size());
  for (; !text.empty(); text.remove_prefix(std::min(length, text.size()))) {
    lines.append(text.substr(0, length)).append(kLineEnd);
  }
  return lines;
}

// The CRC of the decoded payload, computed by the library's own decoder.
uint32_t crcOf(std::string_view encoded) {
  const auto data = std::make_unique_for_overwrite<uint8_t[]>(encoded.size() + 1);
  const auto* const text = reinterpret_cast<const uint8_t*>(encoded.data());
  return nQUENRA1400::nFirmwareDecoding::bestKernels().decode(text, encoded.size(), data.get()).crc;
}

}  // namespace

std::string sectionText(const tNewSection& section) {
  const std::string payload = base64(section.payload);
  std::string text;
  const auto line = [&text](std::string_view key, std::string_view value) {
    text.append(key).append(value).append(kLineEnd);
  };
  line(nImageFormat::kHeaderVersionKey, std::to_string(nImageFormat::kHeaderVersion));
  line(nImageFormat::kUpdateTypeKey,
       section.fileName.empty() ? nImageFormat::kFirmwareUpdate : nImageFormat::kCapsuleUpdate);
  line(nImageFormat::kVersionKey.substr(1), section.version);
  line(nImageFormat::kTargetDeviceKey, section.device);
  if (!section.fileName.empty()) {
    line(nImageFormat::kTargetFileNameKey, section.fileName);
  }
  line(nImageFormat::kCrcKey, hexadecimalText(crcOf(payload), 8));
  line(nImageFormat::kByteCountKey, std::to_string(section.payload.size()));
  return text.append(kLineEnd).append(wrapped(payload, section.lineLength));
}

}  // namespace nCommandLine
