// SMBIOS tables: structures set by their offsets, and complete tables, well-formed or not.
#ifndef TESTS_BUILDERS_SMBIOSTABLEBUILDER_H
#define TESTS_BUILDERS_SMBIOSTABLEBUILDER_H

#include <cstdint>
#include <random>
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

// Builds SMBIOS structure tables, well-formed or not.
class tSmbiosTableBuilder {
 public:
  // Appends a structure: `body` follows the four header bytes, `strings` is its string set.
  tSmbiosTableBuilder& structure(uint8_t type, const std::vector<uint8_t>& body,
                                 const std::vector<std::string>& strings = {});
  // Appends raw bytes.
  tSmbiosTableBuilder& bytes(const std::vector<uint8_t>& raw);
  [[nodiscard]] std::vector<uint8_t> build() const { return table_; }

 private:
  std::vector<uint8_t> table_;
  uint16_t nextHandle_ = 0;
};

// A table of up to a few hundred bytes, mostly structures, usually damaged: wrong lengths, missing
// NULs, changed bytes, a truncated end.
[[nodiscard]] std::vector<uint8_t> randomTable(std::mt19937& random);

// The SMBIOS table of a machine that the library supports. Every field that an attribute reads
// has a distinct value. A test changes the fields that it examines.
//
// Memory: four sockets, of which 0 and 2 are populated. Two processors.
class tReferenceTable {
 public:
  tReferenceTable();

  // The instance-th structure of a type; throws std::out_of_range if it does not exist.
  [[nodiscard]] tSmbiosStructure& structure(uint8_t type, unsigned instance = 0);
  tReferenceTable& remove(uint8_t type);
  [[nodiscard]] std::vector<uint8_t> build() const;

 private:
  std::vector<tSmbiosStructure> structures_;
};

}  // namespace nTests

#endif
