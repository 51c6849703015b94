#ifndef TESTS_COMPONENT_USER_FIRMWARE_PLAINIMAGE_H
#define TESTS_COMPONENT_USER_FIRMWARE_PLAINIMAGE_H

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace nTests {

// A second implementation of the format of firmware images, simple and slow: the reference for the
// parser and its kernels.
[[nodiscard]] std::vector<uint8_t> plainDecode(std::string_view text);

struct tPlainRecord {
  std::vector<uint8_t> data;
  std::string targetDevice;
  std::string version;
  std::string targetFileName;
  bool operator==(const tPlainRecord&) const = default;
};

struct tPlainImage {
  std::vector<tPlainRecord> records;
  int32_t code = 0;
  uint32_t line = 0;
};

[[nodiscard]] tPlainImage plainParse(std::string_view image);

}  // namespace nTests

#endif
