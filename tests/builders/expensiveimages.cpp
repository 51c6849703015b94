#include "tests/builders/expensiveimages.h"

#include <array>
#include <cstdint>
#include <string_view>
#include <vector>

#include "tests/builders/firmwareimagebuilder.h"

namespace nTests {
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
