#ifndef TESTS_COMPONENT_APALCODEGEN_HEXBYTES_H
#define TESTS_COMPONENT_APALCODEGEN_HEXBYTES_H

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace nTests {

// "0A ff 00" as bytes, and back as "0a ff 00".
std::vector<uint8_t> bytesOf(std::string_view hexadecimal);
std::string hexadecimalOf(std::span<const uint8_t> bytes);

}  // namespace nTests

#endif
