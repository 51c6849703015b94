#ifndef TESTS_BUILDERS_SMBIOSSTRUCTURE_H
#define TESTS_BUILDERS_SMBIOSSTRUCTURE_H

#include <cstdint>
#include <string>
#include <vector>

namespace nTests {

// One structure of an SMBIOS table, its fields set by their offsets.
class tSmbiosStructure {
 public:
  // `length` is that of the formatted area, its header of four bytes included.
  tSmbiosStructure(uint8_t type, uint8_t length) : type_(type), body_(length - 4u) {}

  tSmbiosStructure& byte(uint8_t offset, uint8_t value) {
    body_.at(offset - 4u) = value;
    return *this;
  }
  tSmbiosStructure& word(uint8_t offset, uint16_t value) { return number(offset, value, 2); }
  tSmbiosStructure& quadWord(uint8_t offset, uint64_t value) { return number(offset, value, 8); }
  // Adds the string and makes the byte at the offset refer to it.
  tSmbiosStructure& text(uint8_t offset, std::string value) {
    strings_.push_back(std::move(value));
    return byte(offset, static_cast<uint8_t>(strings_.size()));
  }
  // Resizes the formatted area; bytes past the new length are discarded.
  tSmbiosStructure& cutTo(uint8_t length) {
    body_.resize(length - 4u);
    return *this;
  }

  [[nodiscard]] uint8_t type() const { return type_; }
  [[nodiscard]] const std::vector<uint8_t>& body() const { return body_; }
  [[nodiscard]] const std::vector<std::string>& strings() const { return strings_; }

 private:
  tSmbiosStructure& number(uint8_t offset, uint64_t value, unsigned width) {
    for (unsigned i = 0; i < width; ++i) {
      byte(static_cast<uint8_t>(offset + i), static_cast<uint8_t>(value >> (8 * i)));
    }
    return *this;
  }

  uint8_t type_;
  std::vector<uint8_t> body_;
  std::vector<std::string> strings_;
};

}  // namespace nTests

#endif
