#include "tests/component/apalcodegen/hexbytes.h"

#include <array>
#include <cstdio>
#include <sstream>

namespace nTests {

std::vector<uint8_t> bytesOf(std::string_view hexadecimal) {
  std::istringstream words{std::string(hexadecimal)};
  std::vector<uint8_t> bytes;
  for (std::string word; words >> word;) {
    bytes.push_back(static_cast<uint8_t>(std::stoul(word, nullptr, 16)));
  }
  return bytes;
}

std::string hexadecimalOf(std::span<const uint8_t> bytes) {
  std::string text;
  for (const uint8_t byte : bytes) {
    std::array<char, 4> word{};
    std::snprintf(word.data(), word.size(), "%s%02x", text.empty() ? "" : " ", byte);
    text += word.data();
  }
  return text;
}

}  // namespace nTests
