#include "tests/builders/smbiostablebuilder.h"

#include <algorithm>
#include <stdexcept>
#include <string>

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

using std::to_string;

tSmbiosStructure processor(unsigned i) {
  tSmbiosStructure result(0x04, 0x30);
  result.text(0x07, "Processor maker " + to_string(i))
      .text(0x10, "Processor version " + to_string(i));
  result.quadWord(0x08, 0x1122334455667780 + 5 + i).word(0x14, static_cast<uint16_t>(4200 + i));
  result.byte(0x25, static_cast<uint8_t>(8 + i));
  return result;
}

tSmbiosStructure memoryDevice(unsigned i, bool populated) {
  tSmbiosStructure result(0x11, 0x28);
  result.word(0x0C, static_cast<uint16_t>(populated ? 0x2000 + i : 0));
  result.text(0x10, "DIMM " + to_string(i)).byte(0x12, static_cast<uint8_t>(0x1A + i));
  result.word(0x15, static_cast<uint16_t>(2400 + i)).text(0x17, "Memory maker " + to_string(i));
  result.text(0x18, "MS-" + to_string(i)).text(0x1A, "MP-" + to_string(i));
  result.word(0x20, static_cast<uint16_t>(2100 + i));
  return result;
}

tSmbiosStructure bridges() {
  tSmbiosStructure result(0xA3, 0x11);
  result.byte(0x06, 5);
  for (unsigned i = 0; i < 5; ++i) {
    const auto location = static_cast<uint8_t>(0x07 + 2 * i);
    result.text(location, to_string(i) + ":b");
    result.text(static_cast<uint8_t>(location + 1), to_string(i) + ":2,3:4");
  }
  return result;
}

tSmbiosStructure slots() {
  tSmbiosStructure result(0x98, 0x0D);
  result.byte(0x04, 4).text(0x05, "1:0").text(0x06, "2:0").text(0x07, "13:1").text(0x08, "4");
  result.byte(0x09, 21).byte(0x0A, 22).byte(0x0B, 23).byte(0x0C, 24);
  return result;
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

// ---- The reference table ----

tReferenceTable::tReferenceTable() {
  structures_ = {
      tSmbiosStructure(0x00, 0x18).text(0x05, "B-1.23"),
      tSmbiosStructure(0x01, 0x1B)
          .text(0x04, "Bench Works")
          .text(0x05, "BW-8135")
          .text(0x06, "V-7")
          .text(0x07, "S-0042"),
      processor(0),
      processor(1),
      tSmbiosStructure(0x10, 0x17).word(0x0D, 4),
      memoryDevice(0, true),
      memoryDevice(1, false),
      memoryDevice(2, true),
      memoryDevice(3, false),
      tSmbiosStructure(0x96, 0x0E)
          .byte(0x04, 7)
          .byte(0x05, 2)
          .word(0x06, 0xABCD)
          .text(0x09, "platform text 1")
          .text(0x0A, "platform text 2")
          .byte(0x0B, 0x5A)
          .byte(0x0C, 4)
          .text(0x0D, "PI-0001"),
      tSmbiosStructure(0x97, 0x05).text(0x04, "7:12"),
      slots(),
      tSmbiosStructure(0x99, 0x07).text(0x04, "GPIB").text(0x05, "3:4").text(0x06, "link text"),
      tSmbiosStructure(0x9A, 0x06).text(0x04, "PCI").text(0x05, "5:6"),
      tSmbiosStructure(0x9C, 0x05).text(0x04, "platform text 3"),
      tSmbiosStructure(0x9D, 0x05).byte(0x04, 3),
      tSmbiosStructure(0x9E, 0x06).byte(0x04, 1).byte(0x05, 1),
      tSmbiosStructure(0x9F, 0x06).byte(0x04, 0x31).byte(0x05, 0x32),
      bridges(),
      tSmbiosStructure(0xB4, 0x08).byte(0x06, 0x44).byte(0x07, 0x20),
      tSmbiosStructure(0x7F, 0x04),
  };
}

tSmbiosStructure& tReferenceTable::structure(uint8_t type, unsigned instance) {
  for (tSmbiosStructure& candidate : structures_) {
    if (candidate.type() == type && instance-- == 0) {
      return candidate;
    }
  }
  throw std::out_of_range("the reference table has no such structure");
}

tReferenceTable& tReferenceTable::remove(uint8_t type) {
  std::erase_if(structures_, [type](const tSmbiosStructure& s) { return s.type() == type; });
  return *this;
}

std::vector<uint8_t> tReferenceTable::build() const {
  tSmbiosTableBuilder builder;
  for (const tSmbiosStructure& structure : structures_) {
    builder.structure(structure.type(), structure.body(), structure.strings());
  }
  return builder.build();
}

}  // namespace nTests
