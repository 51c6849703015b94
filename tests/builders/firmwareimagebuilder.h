#ifndef TESTS_BUILDERS_FIRMWAREIMAGEBUILDER_H
#define TESTS_BUILDERS_FIRMWAREIMAGEBUILDER_H

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace nTests {

// The CRC of an image's payload, bit by bit.
[[nodiscard]] uint32_t firmwareCrc(std::span<const uint8_t> data);

// Padded, in lines of `lineLength` characters that end in CR LF; 0: without line ends.
[[nodiscard]] std::string encodeBase64(std::span<const uint8_t> data, size_t lineLength = 0);

// Pseudo-random bytes, the same in each run.
[[nodiscard]] std::vector<uint8_t> firmwareBytes(size_t count, uint32_t seed = 1);

// One section of a firmware image. Valid by default: a BIOS firmware update with a payload of a
// hundred bytes.
class tFirmwareSection {
 public:
  explicit tFirmwareSection(std::string_view targetDevice = "BIOS",
                            std::string_view updateType = "FWUpdate");

  // A capsule that is written to a file.
  [[nodiscard]] static tFirmwareSection capsule(std::string_view fileName);

  // Sets the line of a key, named without its colons, or adds one at the end of the header.
  tFirmwareSection& with(std::string_view key, std::string_view value);
  tFirmwareSection& without(std::string_view key);
  tFirmwareSection& version(std::string_view version) { return with("Version", version); }

  // Sets the payload together with its CRC and length.
  tFirmwareSection& payload(std::span<const uint8_t> data, size_t lineLength = 76);
  // Sets the Base64 text only; CRC and length stay.
  tFirmwareSection& payloadText(std::string_view text);

  // Changes the text between header and payload, an empty line.
  tFirmwareSection& separator(std::string_view separator);
  tFirmwareSection& reverseHeader();

  [[nodiscard]] std::string text() const;
  [[nodiscard]] const std::vector<uint8_t>& data() const { return data_; }

 private:
  std::vector<std::pair<std::string, std::string>> header_;
  std::string separator_ = "\r\n";
  std::vector<uint8_t> data_;
  std::string payloadText_;
};

[[nodiscard]] std::string firmwareImage(const std::vector<tFirmwareSection>& sections);

// ---- Images that take long to parse ----

// An image whose sections share as much as the format allows. A parser that repeats a step for each
// section sharing its result takes time quadratic in the size of the image.
struct tExpensiveImage {
  const char* name;
  // Builds a valid image of `sections` sections; its size is proportional to their number.
  std::string (*build)(size_t sections);
};

[[nodiscard]] std::span<const tExpensiveImage> expensiveImages();

}  // namespace nTests

#endif
