// The SMBIOS provider on arbitrary tables, versions, field ids, instances and buffer sizes.
//
// An input is: the length of the version text and its bytes; the number of questions, modulo 9; per
// question a field id of four bytes, an instance of one and a buffer size of two, little-endian; the
// rest is the table. Fields that the input is too short for are zero. When the number of questions is
// kLargeTables or more, the table follows a structure of 64 KiB, so that its offsets exceed 16 bits.
#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include "tests/component/zosmbios/structureswalk.h"
#include "zosmbios/czosmbiosprovider.h"

namespace {

using namespace nQUENRA1400::nZOSMBIOS_1_1;
using nTests::tWalkedStructure;
using nZOAPALS100::tStatus;
using tBytes = std::span<const uint8_t>;
using tWalk = std::vector<tWalkedStructure>;

void require(bool condition, const char* invariant) {
  if (!condition) {
    std::fprintf(stderr, "violated: %s\n", invariant);
    std::abort();
  }
}

class tInput {
 public:
  explicit tInput(tBytes bytes) : bytes_(bytes) {}

  tBytes take(size_t count) {
    const tBytes taken = bytes_.first(std::min(count, bytes_.size()));
    bytes_ = bytes_.subspan(taken.size());
    return taken;
  }
  uint32_t number(size_t width) {
    const tBytes taken = take(width);
    uint32_t value = 0;
    for (size_t i = 0; i < taken.size(); ++i) {
      value |= uint32_t{taken[i]} << (8 * i);
    }
    return value;
  }
  tBytes rest() { return take(bytes_.size()); }

 private:
  tBytes bytes_;
};

constexpr uint32_t kQuestionCounts = 9;
constexpr uint32_t kLargeTables = 128;
constexpr size_t kLargeStructure = 65536;

std::vector<uint8_t> tableOf(tBytes bytes, bool isLarge) {
  std::vector<uint8_t> table;
  if (isLarge) {
    table = {126, 4, 0, 0};
    table.resize(kLargeStructure - 2, 'x');
    table.insert(table.end(), {0, 0});
  }
  table.insert(table.end(), bytes.begin(), bytes.end());
  return table;
}

struct tQuestion {
  tFieldId field;
  uint32_t instance;
  uint32_t size;
};

class tProvider final : public cZoSmBiosProvider {
 public:
  void load(tStatus&) noexcept override { require(false, "a provider with a table loads none"); }
};

// Compares every structure found by the walk and by the index.
void compareStructures(const tStructureTable& table, const tWalk& walked) {
  tStructureIndex index;
  index.build(table);
  require(index.isUsable(), "a table is indexed");
  std::array<uint32_t, 256> counts{};
  std::optional<tStructureOffset> next = table.firstStructure();
  for (const tWalkedStructure& structure : walked) {
    require(next == structure.offset, "the walk finds a structure");
    const uint32_t instance = counts[structure.type]++;
    require(index.findStructure(structure.type, instance) == next, "the index finds a structure");
    next = table.nextStructure(*next);
  }
  require(!next, "the walk ends with the last structure");
  for (size_t type = 0; type < counts.size(); ++type) {
    require(!index.findStructure(static_cast<uint8_t>(type), counts[type]),
            "the index finds no structure after the last");
  }
}

void compareEnumeration(const tStructureTable& table, const tWalk& walked, uint8_t type) {
  tStructuresOfType structures(table, type);
  for (const tWalkedStructure& structure : walked) {
    require(structure.type != type || structures.next() == structure.offset,
            "the enumeration finds a structure");
  }
  require(!structures.next(), "the enumeration ends with the last structure");
}

// The value of a numeric field; none if the table does not contain all its bytes.
std::optional<uint64_t> bytesOfField(tBytes table, const tWalk& walked, tFieldId field,
                                     uint32_t instance, size_t width) {
  const auto structure = walkedStructure(walked, structureTypeOf(field), instance);
  if (!structure || *structure + 1 >= table.size()) {
    return std::nullopt;
  }
  const size_t length = table[*structure + 1];
  const size_t offset = offsetOf(field);
  if (*structure + length > table.size() || offset + width > length) {
    return std::nullopt;
  }
  uint64_t value = 0;
  for (size_t i = 0; i < width; ++i) {
    value |= uint64_t{table[*structure + offset + i]} << (8 * i);
  }
  return value;
}

template <class Value>
void askNumber(cZoSmBiosProvider& provider, const tWalk& walked, tWidthClass width,
               const tQuestion& question,
               int32_t (cZoSmBiosProvider::*read)(tFieldId, uint32_t, Value*) noexcept) {
  constexpr auto kUntouched = static_cast<Value>(0x5E5E5E5E5E5E5E5E);
  const tFieldId field =
      makeFieldId(width, structureTypeOf(question.field), offsetOf(question.field));
  const auto expected =
      bytesOfField(provider.table().bytes(), walked, field, question.instance, sizeof(Value));
  const auto value = std::make_unique<Value>(kUntouched);
  const int32_t code = (provider.*read)(field, question.instance, value.get());
  require((code == 0) == expected.has_value(), "a number is read exactly when it is there");
  require(*value == expected.value_or(kUntouched), "a number has the table's bytes");
  require(code == 0 || code == kFieldNotFound || code == kTableMalformed, "a number's code");

  const int32_t codeAsAsked = (provider.*read)(question.field, question.instance, value.get());
  require(codeAsAsked == (widthClassOf(question.field) == width ? code : kFieldNotFound),
          "a number of another width is not found");
}

struct tTextAnswer {
  int32_t code;
  uint32_t size;
};

// Reads into a buffer of exactly `size` bytes.
tTextAnswer askText(cZoSmBiosProvider& provider, tFieldId field, uint32_t instance, uint32_t size) {
  const auto buffer = std::make_unique<char[]>(size);
  std::fill_n(buffer.get(), size, '#');
  tStatus status;
  uint32_t inOut = size;
  provider.getString(field, instance, buffer.get(), &inOut, status);
  if (status.code == 0) {
    require(std::memchr(buffer.get(), 0, size) != nullptr, "a text has its NUL");
    require(inOut == size, "a text that fits keeps the size");
  } else if (status.code == kNoString) {
    require(size == 0 || buffer[0] == '\0', "no string is an empty text");
  } else {
    require(size == 0 || buffer[0] == '#', "a text that is not read leaves the buffer");
  }
  return {status.code, inOut};
}

void askText(cZoSmBiosProvider& provider, const tQuestion& question, tFieldId field) {
  const tTextAnswer answer = askText(provider, field, question.instance, question.size);
  if (answer.code == kBufferTooSmall) {
    const bool isVersion = widthClassOf(field) == tWidthClass::provider;
    require(answer.size > question.size, "the size needed is larger");
    require(answer.size <= (isVersion ? 256 : 129), "no text is larger than the longest");
    require(askText(provider, field, question.instance, answer.size).code == 0,
            "the size needed is enough");
    require(askText(provider, field, question.instance, answer.size - 1).code == kBufferTooSmall,
            "the size needed is the least");
  } else {
    require(answer.size == question.size, "the size is reported only when it is too small");
    require(answer.code == 0 || answer.code == kNoString || answer.code == kFieldNotFound ||
                answer.code == kTableMalformed,
            "a text's code");
  }
}

void ask(cZoSmBiosProvider& provider, const tWalk& walked, const tQuestion& question) {
  const auto type = structureTypeOf(question.field);
  tStatus status;
  tStructureOffset found = 0;
  provider.findStructure(type, question.instance, &found, status);
  const auto expected = walkedStructure(walked, type, question.instance);
  require((status.code == 0) == expected.has_value() && found == expected.value_or(0),
          "the provider finds what the walk finds");
  const auto plain = provider.table().findStructure(type, question.instance);
  require(plain.has_value() == expected.has_value() && plain.value_or(0) == expected.value_or(0),
          "the table finds what the walk finds");
  compareEnumeration(provider.table(), walked, type);

  askNumber(provider, walked, tWidthClass::byte, question, &cZoSmBiosProvider::readByte);
  askNumber(provider, walked, tWidthClass::word, question, &cZoSmBiosProvider::readWord);
  askNumber(provider, walked, tWidthClass::quadWord, question, &cZoSmBiosProvider::readQword);
  askText(provider, question, question.field);
  askText(provider, question, textField(type, offsetOf(question.field)));
  askText(provider, question, kVersionText);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  tInput input({data, size});
  const tBytes version = input.take(input.number(1));
  const uint32_t count = input.number(1);
  std::vector<tQuestion> questions(count % kQuestionCounts);
  for (tQuestion& question : questions) {
    question.field = input.number(4);
    question.instance = input.number(1);
    question.size = input.number(2);
  }
  const std::vector<uint8_t> table = tableOf(input.rest(), count >= kLargeTables);

  tProvider provider;
  tStatus status;
  const std::vector<char> versionText(version.begin(), version.end());
  provider.install(table, versionText, status);
  require(status.code == 0, "a table is installed");
  const tWalk walked = nTests::walkStructures(table);
  compareStructures(provider.table(), walked);
  for (const tQuestion& question : questions) {
    ask(provider, walked, question);
  }
  return 0;
}
