// Every reader on damaged copies of a well-formed table.
#include <gtest/gtest.h>

#include <array>
#include <initializer_list>
#include <map>
#include <ostream>
#include <random>
#include <string>
#include <tuple>
#include <vector>

#include "tests/builders/smbiostablebuilder.h"
#include "tests/component/zosmbios/ttestprovider.h"
#include "zosmbios/fieldid.h"

namespace nTests {
namespace {

using namespace nQUENRA1400::nZOSMBIOS_1_1;

std::vector<uint8_t> goodTable() {
  return tSmbiosTableBuilder()
      .structure(0, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10}, {"first", "second"})
      .structure(1, {1, 1, 2, 0, 9, 9}, {"a", std::string(128, 'b')})
      .structure(17, {1, 2, 3, 4, 5, 6, 7, 8, 9}, {"x", "yy", "zzz"})
      .structure(17, {3, 2, 1, 0, 5, 6, 7, 8, 9}, {"x2", "yy2", "zzz2"})
      .structure(150, {0, 0, 0, 0})
      .structure(127, {})
      .build();
}

struct tAnswer {
  int32_t code;
  uint64_t number;
  std::string text;
  bool operator==(const tAnswer&) const = default;
};
using tQuestion = std::tuple<tFieldId, uint32_t>;
using tAnswers = std::map<tQuestion, tAnswer>;

std::ostream& operator<<(std::ostream& out, const tAnswer& answer) {
  return out << "code " << answer.code << ", number " << answer.number << ", '" << answer.text
             << "'";
}

template <class Value>
tAnswer askNumber(tTestProvider& provider, tFieldId field, uint32_t instance,
                  int32_t (cZoSmBiosProvider::*read)(tFieldId, uint32_t, Value*) noexcept) {
  Value value = 0;
  const int32_t code = (provider.*read)(field, instance, &value);
  return {code, value, ""};
}

tAnswer ask(tTestProvider& provider, tFieldId field, uint32_t instance) {
  switch (widthClassOf(field)) {
    case tWidthClass::byte:
      return askNumber(provider, field, instance, &cZoSmBiosProvider::readByte);
    case tWidthClass::word:
      return askNumber(provider, field, instance, &cZoSmBiosProvider::readWord);
    case tWidthClass::quadWord:
      return askNumber(provider, field, instance, &cZoSmBiosProvider::readQword);
    default: {
      const tStringRead read = readString(provider, field, instance);
      return {read.code, 0, read.code == 0 ? read.text : ""};
    }
  }
}

// Every reader on every field of every structure of goodTable, and on a few past their ends.
tAnswers askEverything(const std::vector<uint8_t>& table) {
  constexpr std::array kWidths{tWidthClass::text, tWidthClass::byte, tWidthClass::word,
                               tWidthClass::quadWord};
  tTestProvider provider(table);
  tAnswers answers;
  for (const uint8_t type : std::initializer_list<uint8_t>{0, 1, 17, 127, 150}) {
    for (uint32_t instance = 0; instance < 3; ++instance) {
      for (uint8_t offset = 0; offset < 15; ++offset) {
        for (const tWidthClass width : kWidths) {
          const tFieldId field = makeFieldId(width, type, offset);
          answers[{field, instance}] = ask(provider, field, instance);
        }
      }
    }
  }
  return answers;
}

bool isKnownCode(int32_t code) {
  return code == 0 || code == 240050 || code == -240052 || code == -240053;
}

TEST(TruncatedTable, EveryPrefix_AnswersAsTheWholeTableOrFails) {
  const std::vector<uint8_t> whole = goodTable();
  const tAnswers expected = askEverything(whole);
  for (size_t size = 0; size < whole.size(); ++size) {
    SCOPED_TRACE(size);
    const std::vector<uint8_t> prefix(whole.begin(), whole.begin() + static_cast<ptrdiff_t>(size));
    for (const auto& [question, answer] : askEverything(prefix)) {
      ASSERT_TRUE(isKnownCode(answer.code)) << answer.code;
      ASSERT_TRUE(answer.code < 0 || answer == expected.at(question))
          << "field " << std::hex << std::get<0>(question);
    }
  }
}

TEST(TruncatedTable, WholeTable_AnswersSomething) {
  const tAnswers answers = askEverything(goodTable());
  EXPECT_EQ(answers.at({textField(0, 5), 0}), (tAnswer{0, 0, "second"}));
  EXPECT_EQ(answers.at({textField(17, 4), 1}), (tAnswer{0, 0, "zzz2"}));
  EXPECT_EQ(answers.at({byteField(17, 8), 1}), (tAnswer{0, 5, ""}));
  EXPECT_EQ(answers.at({quadWordField(0, 5), 0}), (tAnswer{0, 0x0908070605040302, ""}));
  EXPECT_EQ(answers.at({textField(150, 4), 0}), (tAnswer{240050, 0, ""}));
}

TEST(DamagedTable, EveryByteChangedInTurn_IsReadWithoutGoingAstray) {
  const std::vector<uint8_t> whole = goodTable();
  for (size_t position = 0; position < whole.size(); ++position) {
    for (const uint8_t value : std::initializer_list<uint8_t>{0, 1, 255}) {
      std::vector<uint8_t> damaged = whole;
      damaged[position] = value;
      for (const auto& [question, answer] : askEverything(damaged)) {
        ASSERT_TRUE(isKnownCode(answer.code)) << answer.code << " at " << position;
        ASSERT_LE(answer.text.size(), 128u) << position;
      }
    }
  }
}

TEST(DamagedTable, RandomTables_AreReadWithoutGoingAstray) {
  std::mt19937 random(3);
  for (int i = 0; i < 300; ++i) {
    for (const auto& [question, answer] : askEverything(randomTable(random))) {
      ASSERT_TRUE(isKnownCode(answer.code)) << answer.code << " in table " << i;
    }
  }
}

}  // namespace
}  // namespace nTests
