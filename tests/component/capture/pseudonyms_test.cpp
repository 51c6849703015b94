#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <random>
#include <regex>
#include <string>
#include <string_view>
#include <variant>

#include "quenra_attributes.h"
#include "tests/builders/smbiostablebuilder.h"
#include "tests/component/capture/recordedmachine.h"
#include "tools/capture/capturefile.h"
#include "tools/quenra/capture/capturing.h"
#include "tools/quenra/capture/pseudonyms.h"

namespace nTests {
namespace {

using nCapture::tMachineRecord;
using nCommandLine::replaceSerialNumbers;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

constexpr uint8_t kSystem = 1;
constexpr uint8_t kSerialNumber = 0x07;

tMachineRecord machineWith(const std::function<void(tReferenceTable&)>& change) {
  tMachineRecord machine = referenceMachine();
  tReferenceTable table;
  change(table);
  machine.handover.table = table.build();
  const auto size = static_cast<int32_t>(machine.handover.table.size());
  machine.handover.query->tableSize = size;
  machine.handover.values->tableSize = size;
  return captured(machine);
}

tMachineRecord machineWithSerialNumber(const std::string& number) {
  return machineWith(
      [&](tReferenceTable& table) { table.structure(kSystem).text(kSerialNumber, number); });
}

std::string hexadecimal(std::string_view text) {
  std::string digits;
  for (const char character : text) {
    constexpr std::string_view kDigits = "0123456789abcdef";
    const auto byte = static_cast<unsigned char>(character);
    digits += kDigits[byte >> 4];
    digits += kDigits[byte & 0xF];
  }
  return digits;
}

// The table and all other bytes of the file in one line of digits, so that no line end hides a text.
std::string digitsOf(const tMachineRecord& record) {
  std::string text = nCapture::captureText(record);
  std::erase_if(text, [](char character) {
    return std::string_view("\n \",").find(character) != std::string_view::npos;
  });
  return text;
}

std::string serialNumberOf(const tMachineRecord& record) {
  const auto reading = std::ranges::find(record.readings, QUENRA_ATTRIBUTE_SERIAL_NUMBER,
                                         &nCapture::tReadingRecord::id);
  const auto* const text = std::get_if<std::string>(&reading->value);
  return text == nullptr ? "(none)" : *text;
}

TEST(Pseudonyms, SerialNumber_OccursNowhere) {
  tMachineRecord record = machineWith([](tReferenceTable& table) {
    table.structure(kSystem).text(kSerialNumber, "VQ02C47A9");
    table.structure(kSystem).text(0x06, "made as VQ02C47A9");
  });
  record.marten.attributes.front().value = {'n', ' ', 'v', 'q', '0', '2',
                                            'c', '4', '7', 'a', '9', 0};
  record.readings.back().value = std::string("path#VQ02C47A9#0");
  replaceSerialNumbers(record, "");
  EXPECT_TRUE(record.isAnonymous);
  EXPECT_THAT(nCapture::captureText(record), Not(HasSubstr("VQ02C47A9")));
  EXPECT_THAT(digitsOf(record), Not(HasSubstr(hexadecimal("VQ02C47A9"))));
  EXPECT_THAT(digitsOf(record), Not(HasSubstr(hexadecimal("vq02c47a9"))));
}

TEST(Pseudonyms, Pseudonym_HasTheFormOfTheOriginal) {
  tMachineRecord record = machineWithSerialNumber("VQ-02c47a.9");
  replaceSerialNumbers(record, "");
  // The expressions of GoogleTest's MatchesRegex have no brackets on Windows.
  static const std::regex kForm("[A-Z][A-Z]-[0-9][0-9][a-z][0-9][0-9][a-z]\\.[0-9]");
  EXPECT_TRUE(std::regex_match(serialNumberOf(record), kForm)) << serialNumberOf(record);
  EXPECT_NE(serialNumberOf(record), "VQ-02c47a.9");
}

TEST(Pseudonyms, EveryPlaceOfANumber_HasTheSamePseudonym) {
  tMachineRecord record = machineWithSerialNumber("VQ02C47A9");
  replaceSerialNumbers(record, "");
  EXPECT_THAT(digitsOf(record), HasSubstr(hexadecimal(serialNumberOf(record))));
}

TEST(Pseudonyms, SameNumberAndKey_HasTheSamePseudonym) {
  tMachineRecord first = machineWithSerialNumber("VQ02C47A9");
  tMachineRecord second = machineWithSerialNumber("VQ02C47A9");
  tMachineRecord otherKey = machineWithSerialNumber("VQ02C47A9");
  tMachineRecord otherNumber = machineWithSerialNumber("VQ02C47A8");
  replaceSerialNumbers(first, "key");
  replaceSerialNumbers(second, "key");
  replaceSerialNumbers(otherKey, "");
  replaceSerialNumbers(otherNumber, "key");
  EXPECT_EQ(serialNumberOf(first), serialNumberOf(second));
  EXPECT_NE(serialNumberOf(first), serialNumberOf(otherKey));
  EXPECT_NE(serialNumberOf(first), serialNumberOf(otherNumber));
}

TEST(Pseudonyms, NumberOfEveryStructure_IsReplaced) {
  tMachineRecord record = machineWith([](tReferenceTable& table) {
    table.structure(17).text(0x18, "MEMORY7715");
    table.structure(17).cutTo(0x22).text(0x19, "ASSET99182");
  });
  replaceSerialNumbers(record, "");
  EXPECT_THAT(digitsOf(record), Not(HasSubstr(hexadecimal("MEMORY7715"))));
  EXPECT_THAT(digitsOf(record), Not(HasSubstr(hexadecimal("ASSET99182"))));
}

TEST(Pseudonyms, Uuid_IsReplaced) {
  const auto withUuid = [](tReferenceTable& table) {
    table.structure(kSystem)
        .cutTo(0x1B)
        .quadWord(0x08, 0x1122334455667788)
        .quadWord(0x10, 0x99AABBCC);
  };
  tMachineRecord record = machineWith(withUuid);
  ASSERT_THAT(digitsOf(record), HasSubstr("8877665544332211"));
  replaceSerialNumbers(record, "");
  EXPECT_THAT(digitsOf(record), Not(HasSubstr("8877665544332211")));
}

TEST(Pseudonyms, UuidThatIsNotSet_Stays) {
  tMachineRecord record = machineWith([](tReferenceTable& table) {
    table.structure(kSystem).cutTo(0x1B).text(kSerialNumber, "Not Applicable");
  });
  replaceSerialNumbers(record, "");
  const nCapture::tBytes& table = record.handover.table;
  EXPECT_NE(std::search_n(table.begin(), table.end(), 16, 0), table.end());
}

class PlaceholderNumber : public testing::TestWithParam<const char*> {};

TEST_P(PlaceholderNumber, Stays) {
  tMachineRecord record = machineWithSerialNumber(GetParam());
  replaceSerialNumbers(record, "");
  EXPECT_THAT(digitsOf(record), HasSubstr(hexadecimal(GetParam())));
}
INSTANTIATE_TEST_SUITE_P(Texts, PlaceholderNumber,
                         testing::Values("Not Applicable", "To Be Filled By O.E.M.", "00000000",
                                         "None", "---"));

TEST(Pseudonyms, ShortNumber_IsReplacedWhereItIsTheCompleteText) {
  tMachineRecord record = machineWith([](tReferenceTable& table) {
    table.structure(kSystem).text(kSerialNumber, "7a2");
    table.structure(kSystem).text(0x06, "revision 7a2");
  });
  replaceSerialNumbers(record, "");
  EXPECT_NE(serialNumberOf(record), "7a2");
  EXPECT_THAT(digitsOf(record), HasSubstr(hexadecimal("revision 7a2")));
}

TEST(Pseudonyms, AnonymousCapture_IsReplayedWithItsResults) {
  tMachineRecord record = machineWithSerialNumber("  VQ02C47A9 ");
  replaceSerialNumbers(record, "key");
  EXPECT_THAT(nCommandLine::deviationsOf(record), IsEmpty());
}

TEST(Pseudonyms, DamagedTables_AreReplacedWithinTheirBounds) {
  std::mt19937 random(17);
  for (int i = 0; i < 500; ++i) {
    tMachineRecord record = referenceMachine();
    record.handover.table = randomTable(random);
    const size_t size = record.handover.table.size();
    replaceSerialNumbers(record, "");
    EXPECT_EQ(record.handover.table.size(), size);
  }
}

TEST(Pseudonyms, AccountOfTheDriverStoreTool_IsRemoved) {
  tMachineRecord record = captured(referenceMachine());
  record.updateEnvironment.toolOwner = "RACK-7\\tester";
  replaceSerialNumbers(record, "");
  EXPECT_EQ(record.updateEnvironment.toolOwner, "(removed)");
}

}  // namespace
}  // namespace nTests
