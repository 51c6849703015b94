#include "tests/builders/firmwareimagebuilder.h"

#include <algorithm>
#include <random>

namespace nTests {

uint32_t firmwareCrc(std::span<const uint8_t> data) {
  uint32_t crc = 0xFFFFFFFF;
  for (const uint8_t byte : data) {
    crc ^= uint32_t{byte} << 24;
    for (int bit = 0; bit < 8; ++bit) {
      crc = (crc & 0x80000000) != 0 ? (crc << 1) ^ 0x1EDC6F41 : crc << 1;
    }
  }
  return ~crc;
}

std::string encodeBase64(std::span<const uint8_t> data, size_t lineLength) {
  constexpr std::string_view kAlphabet =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string text;
  size_t column = 0;
  const auto put = [&](char character) {
    text += character;
    if (++column == lineLength) {
      text += "\r\n";
      column = 0;
    }
  };
  for (size_t i = 0; i < data.size(); i += 3) {
    const size_t count = std::min<size_t>(3, data.size() - i);
    uint32_t bits = 0;
    for (size_t k = 0; k < 3; ++k) {
      bits = bits << 8 | (k < count ? data[i + k] : 0u);
    }
    for (size_t k = 0; k < 4; ++k) {
      put(k <= count ? kAlphabet[bits >> (18 - 6 * k) & 63] : '=');
    }
  }
  return text;
}

std::vector<uint8_t> firmwareBytes(size_t count, uint32_t seed) {
  std::mt19937 random(seed);
  std::vector<uint8_t> bytes(count);
  for (uint8_t& byte : bytes) {
    byte = static_cast<uint8_t>(random());
  }
  return bytes;
}

tFirmwareSection::tFirmwareSection(std::string_view targetDevice, std::string_view updateType) {
  with("HeaderVersion", "1");
  with("UpdateType", updateType);
  with("Version", "1.2.3f4");
  with("TargetDevice", targetDevice);
  payload(firmwareBytes(100));
}

tFirmwareSection tFirmwareSection::capsule(std::string_view fileName) {
  return tFirmwareSection("BIOS", "CapsuleUpdate").with("TargetFileName", fileName);
}

tFirmwareSection& tFirmwareSection::with(std::string_view key, std::string_view value) {
  const auto line = std::find_if(header_.begin(), header_.end(),
                                 [key](const auto& entry) { return entry.first == key; });
  if (line != header_.end()) {
    line->second = value;
  } else {
    header_.emplace_back(key, value);
  }
  return *this;
}

tFirmwareSection& tFirmwareSection::without(std::string_view key) {
  std::erase_if(header_, [key](const auto& entry) { return entry.first == key; });
  return *this;
}

tFirmwareSection& tFirmwareSection::payload(std::span<const uint8_t> data, size_t lineLength) {
  data_.assign(data.begin(), data.end());
  payloadText_ = encodeBase64(data, lineLength);
  with("CRC", std::to_string(firmwareCrc(data)));
  return with("ByteCount", std::to_string(data.size()));
}

tFirmwareSection& tFirmwareSection::payloadText(std::string_view text) {
  payloadText_ = text;
  return *this;
}

tFirmwareSection& tFirmwareSection::separator(std::string_view separator) {
  separator_ = separator;
  return *this;
}

tFirmwareSection& tFirmwareSection::reverseHeader() {
  // Text before the first key belongs to no section, so the first key stays in place.
  std::reverse(header_.begin() + 1, header_.end());
  return *this;
}

std::string tFirmwareSection::text() const {
  std::string text;
  for (const auto& [key, value] : header_) {
    text += key + "::" + value + "\r\n";
  }
  return text + separator_ + payloadText_;
}

std::string firmwareImage(const std::vector<tFirmwareSection>& sections) {
  std::string image;
  for (const tFirmwareSection& section : sections) {
    image += section.text();
  }
  return image;
}

}  // namespace nTests
