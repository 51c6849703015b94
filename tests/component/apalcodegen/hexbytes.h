#ifndef TESTS_COMPONENT_APALCODEGEN_HEXBYTES_H
#define TESTS_COMPONENT_APALCODEGEN_HEXBYTES_H

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace nTests {

// Convert "0A ff 00" to bytes, and bytes to "0a ff 00".
std::vector<uint8_t> bytesOf(std::string_view hexadecimal);
std::string hexadecimalOf(std::span<const uint8_t> bytes);

}  // namespace nTests

#endif
