#ifndef TESTS_BUILDERS_SMBIOSTABLEBUILDER_H
#define TESTS_BUILDERS_SMBIOSTABLEBUILDER_H

#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace nTests {

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

}  // namespace nTests

#endif
