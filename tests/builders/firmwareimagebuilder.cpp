#include "tests/builders/firmwareimagebuilder.h"

#include <algorithm>
#include <array>
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

// ---- Images that take long to parse ----

namespace {

// About the size of one section, so that the shared value makes up half of the image.
constexpr size_t kCharactersPerSection = 90;

std::string padding(size_t sections, char character) {
  return std::string(sections * kCharactersPerSection, character);
}

// Sections that lack one header line; only the last section has it.
std::string sharing(size_t sections, tFirmwareSection section, std::string_view key,
                    std::string_view value) {
  section.payload({});
  std::vector<tFirmwareSection> all(sections, tFirmwareSection(section).without(key));
  all.push_back(section.with(key, value));
  return firmwareImage(all);
}

std::string bySharedNumber(size_t sections) {
  const std::string blanks = padding(sections / 2, ' ');
  return sharing(sections, tFirmwareSection("MARTEN"), "CRC", blanks + "0" + blanks);
}

std::string bySharedUpdateType(size_t sections) {
  return sharing(sections, tFirmwareSection("MARTEN"), "UpdateType",
                 padding(sections, '-') + "\"FWUpdate\"");
}

std::string bySharedVersion(size_t sections) {
  return sharing(sections, tFirmwareSection("MARTEN"), "Version", padding(sections, '0'));
}

std::string bySharedDevice(size_t sections) {
  return sharing(sections, tFirmwareSection(), "TargetDevice",
                 padding(sections, '-') + "\"MARTEN\"");
}

std::string bySharedFileName(size_t sections) {
  return sharing(sections, tFirmwareSection::capsule(""), "TargetFileName",
                 padding(sections, '.') + "inf");
}

// The shared line ends with the image, without a line end.
std::string bySharedOpenLine(size_t sections) {
  constexpr std::array<uint8_t, 5> kDecodedKey = {0x55, 0xEA, 0xEC, 0x8A, 0x89};
  tFirmwareSection section("MARTEN");
  section.payload({}).without("Version");
  const std::vector<tFirmwareSection> all(sections, section);
  section.payload(kDecodedKey).payloadText("\nVersion::" + padding(sections, '-'));
  return firmwareImage(all) + section.text();
}

std::string byFirstPlaces(size_t sections) {
  tFirmwareSection section("BIOS");
  section.payload({});
  return firmwareImage(std::vector<tFirmwareSection>(2 * sections, section));
}

constexpr tExpensiveImage kImages[] = {
    {"SharedNumber", &bySharedNumber},     {"SharedUpdateType", &bySharedUpdateType},
    {"SharedVersion", &bySharedVersion},   {"SharedDevice", &bySharedDevice},
    {"SharedFileName", &bySharedFileName}, {"SharedOpenLine", &bySharedOpenLine},
    {"FirstPlaces", &byFirstPlaces},
};

}  // namespace

std::span<const tExpensiveImage> expensiveImages() {
  return kImages;
}

}  // namespace nTests
