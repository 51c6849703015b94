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
  // A whole structure: `body` is what follows the four header bytes, `strings` its string set.
  tSmbiosTableBuilder& structure(uint8_t type, const std::vector<uint8_t>& body,
                                 const std::vector<std::string>& strings = {});
  // Bytes as they are.
  tSmbiosTableBuilder& bytes(const std::vector<uint8_t>& raw);
  [[nodiscard]] std::vector<uint8_t> build() const { return table_; }

 private:
  std::vector<uint8_t> table_;
  uint16_t nextHandle_ = 0;
};

// A table of up to some hundred bytes, mostly structures, more often than not damaged: wrong
// lengths, missing NULs, bytes changed, an end cut off.
[[nodiscard]] std::vector<uint8_t> randomTable(std::mt19937& random);

}  // namespace nTests

#endif
