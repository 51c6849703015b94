#include "tests/builders/smbiostablebuilder.h"

#include <stdexcept>

namespace nTests {
namespace {

constexpr size_t kHeaderSize = 4;

unsigned below(std::mt19937& random, unsigned limit) {
  return std::uniform_int_distribution<unsigned>(0, limit - 1)(random);
}

// Few different types, so that instances beyond the first are common.
constexpr uint8_t kRandomTypes[] = {0, 1, 4, 17, 17, 0x96, 0xA3, 127, 255};

void addRandomStructure(tSmbiosTableBuilder& builder, std::mt19937& random) {
  std::vector<uint8_t> body(below(random, 24));
  for (uint8_t& byte : body) {
    byte = static_cast<uint8_t>(below(random, 6));
  }
  std::vector<std::string> strings(below(random, 4));
  for (std::string& text : strings) {
    text.assign(1 + below(random, 9), static_cast<char>('a' + below(random, 26)));
  }
  builder.structure(kRandomTypes[below(random, std::size(kRandomTypes))], body, strings);
}

}  // namespace

tSmbiosTableBuilder& tSmbiosTableBuilder::structure(uint8_t type, const std::vector<uint8_t>& body,
                                                    const std::vector<std::string>& strings) {
  const size_t length = body.size() + kHeaderSize;
  if (length > 255) {
    throw std::length_error("a structure's formatted area has at most 255 bytes");
  }
  bytes({type, static_cast<uint8_t>(length), static_cast<uint8_t>(nextHandle_),
         static_cast<uint8_t>(nextHandle_ >> 8)});
  ++nextHandle_;
  bytes(body);
  for (const std::string& text : strings) {
    bytes({text.begin(), text.end()});
    bytes({0});
  }
  if (strings.empty()) {
    bytes({0});
  }
  return bytes({0});
}

tSmbiosTableBuilder& tSmbiosTableBuilder::bytes(const std::vector<uint8_t>& raw) {
  table_.insert(table_.end(), raw.begin(), raw.end());
  return *this;
}

std::vector<uint8_t> randomTable(std::mt19937& random) {
  tSmbiosTableBuilder builder;
  for (unsigned structures = below(random, 12); structures > 0; --structures) {
    addRandomStructure(builder, random);
  }
  std::vector<uint8_t> table = builder.build();
  for (unsigned damages = below(random, 4); damages > 0 && !table.empty(); --damages) {
    table[below(random, static_cast<unsigned>(table.size()))] =
        static_cast<uint8_t>(below(random, 2) == 0 ? 0 : below(random, 256));
  }
  if (below(random, 3) == 0) {
    table.resize(below(random, static_cast<unsigned>(table.size()) + 1));
  }
  return table;
}

}  // namespace nTests
