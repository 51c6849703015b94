#include "tests/contract/contracttest.h"

namespace nTests {
namespace {

class TextAttribute : public ContractTest {
 protected:
  void openOn(const tReferenceTable& table) {
    useTable(table);
    open();
  }
  static constexpr int32_t kNotSupported = QUENRA_STATUS_NOT_SUPPORTED;
};

// ---- Every row of the table ----

struct tTextCase {
  uint32_t attribute;
  uint8_t structure;  // the type of the text's structure
  uint8_t offset;     // of the text in the structure
  const char* value;
};
void PrintTo(const tTextCase& row, std::ostream* out) {
  *out << "attribute " << std::hex << row.attribute;
}

class TextTable : public TextAttribute, public testing::WithParamInterface<tTextCase> {
 protected:
  // A machine whose product name cannot be read is not supported, and does not open.
  bool opensOn(const tReferenceTable& table) {
    if (GetParam().structure != 0x01 || GetParam().offset > 0x05) {
      openOn(table);
      return true;
    }
    useTable(table);
    const tOpenController controller;
    const bool namesTheManufacturer = GetParam().offset == 0x04;
    if (controller.code() == 0 && namesTheManufacturer) {
      open();
      return true;
    }
    EXPECT_EQ(controller.code(), QUENRA_STATUS_NO_CONTROLLER);
    return false;
  }
};

// Without a Marten interface every attribute comes from the machine's table.
TEST_P(TextTable, ReadsItsField) {
  usePresence(1, 0);
  open();
  EXPECT_EQ(readText(GetParam().attribute), text(GetParam().value));
}

TEST_P(TextTable, SelectedOnTheController_ReadsItsField) {
  open();
  EXPECT_EQ(readText(GetParam().attribute | QUENRA_SELECTOR_CONTROLLER), text(GetParam().value));
}

TEST_P(TextTable, WithAnUnknownSelector_ReadsItsField) {
  usePresence(1, 0);
  open();
  EXPECT_EQ(readText(GetParam().attribute | 0x00300000), text(GetParam().value));
}

TEST_P(TextTable, InABufferOfTheSizeNeeded_ReadsItsField) {
  usePresence(1, 0);
  open();
  const uint64_t needed = std::string_view(GetParam().value).size() + 1;
  EXPECT_EQ(readText(GetParam().attribute, needed), (tTextRead{0, GetParam().value, needed}));
}

TEST_P(TextTable, InABufferOneByteTooSmall_ReportsTheSizeNeeded) {
  usePresence(1, 0);
  open();
  const uint64_t needed = std::string_view(GetParam().value).size() + 1;
  const tTextRead read = readText(GetParam().attribute, needed - 1);
  EXPECT_EQ(read.code, QUENRA_STATUS_BUFFER_TOO_SMALL);
  EXPECT_EQ(read.size, needed);
}

TEST_P(TextTable, WithSizeZeroAndNoBuffer_ReportsTheSizeNeeded) {
  usePresence(1, 0);
  open();
  uint64_t size = 0;
  EXPECT_EQ(QUENRA_getAttributeUTF8(QUENRA_HANDLE, GetParam().attribute, nullptr, &size),
            QUENRA_STATUS_BUFFER_TOO_SMALL);
  EXPECT_EQ(size, std::string_view(GetParam().value).size() + 1);
}

TEST_P(TextTable, WithoutBuffer_FailsWithInvalidParameter) {
  usePresence(1, 0);
  open();
  uint64_t size = 200;
  EXPECT_EQ(QUENRA_getAttributeUTF8(QUENRA_HANDLE, GetParam().attribute, nullptr, &size),
            QUENRA_STATUS_INVALID_PARAMETER);
  EXPECT_EQ(size, 200u);
}

TEST_P(TextTable, WithASizeBeyond32Bits_ReadsItsField) {
  usePresence(1, 0);
  open();
  char buffer[200] = "";
  uint64_t size = (uint64_t{1} << 32) + 1;
  EXPECT_EQ(QUENRA_getAttributeUTF8(QUENRA_HANDLE, GetParam().attribute, buffer, &size), 0);
  EXPECT_STREQ(buffer, GetParam().value);
  EXPECT_EQ(size, (uint64_t{1} << 32) + 1);
}

TEST_P(TextTable, WithoutItsString_IsNotSupported) {
  usePresence(1, 0);
  tReferenceTable table;
  table.structure(GetParam().structure).byte(GetParam().offset, 0);
  if (!opensOn(table)) {
    return;
  }
  const tTextRead read = readText(GetParam().attribute);
  EXPECT_EQ(read.code, kNotSupported);
  EXPECT_EQ(read.size, kUntouchedSize);
}

TEST_P(TextTable, WithAStringNumberBeyondTheSet_ReadsAsNothing) {
  usePresence(1, 0);
  tReferenceTable table;
  table.structure(GetParam().structure).byte(GetParam().offset, 99);
  if (!opensOn(table)) {
    return;
  }
  EXPECT_EQ(readText(GetParam().attribute), noText(0));
}

TEST_P(TextTable, WithAStructureThatIsTooShort_IsNotSupported) {
  usePresence(1, 0);
  const tTextCase& row = GetParam();
  tReferenceTable table;
  table.structure(row.structure).cutTo(row.offset);
  if (!opensOn(table)) {
    return;
  }
  EXPECT_EQ(readText(row.attribute), noText(kNotSupported));
}

INSTANTIATE_TEST_SUITE_P(
    Rows, TextTable,
    testing::Values(
        tTextCase{QUENRA_ATTRIBUTE_SYSTEM_MANUFACTURER, 0x01, 0x04, "Bench Works"},
        tTextCase{QUENRA_ATTRIBUTE_PRODUCT_NAME, 0x01, 0x05, "BW-8135"},
        tTextCase{QUENRA_ATTRIBUTE_SERIAL_NUMBER, 0x01, 0x07, "S-0042"},
        tTextCase{QUENRA_ATTRIBUTE_SYSTEM_VERSION, 0x01, 0x06, "V-7"},
        tTextCase{QUENRA_ATTRIBUTE_FIRMWARE_VERSION, 0x00, 0x05, "B-1.23"},
        tTextCase{QUENRA_ATTRIBUTE_PLATFORM_IDENTIFIER, 0x96, 0x0D, "PI-0001"},
        tTextCase{QUENRA_ATTRIBUTE_PLATFORM_TEXT_1, 0x96, 0x09, "platform text 1"},
        tTextCase{QUENRA_ATTRIBUTE_PLATFORM_TEXT_2, 0x96, 0x0A, "platform text 2"},
        tTextCase{QUENRA_ATTRIBUTE_MEMORY_MANUFACTURER, 0x11, 0x17, "Memory maker 0"},
        tTextCase{QUENRA_ATTRIBUTE_MEMORY_PART_NUMBER, 0x11, 0x1A, "MP-0"},
        tTextCase{QUENRA_ATTRIBUTE_MEMORY_SERIAL_NUMBER, 0x11, 0x18, "MS-0"},
        tTextCase{QUENRA_ATTRIBUTE_MEMORY_LOCATOR, 0x11, 0x10, "DIMM 0"},
        tTextCase{QUENRA_ATTRIBUTE_PROCESSOR_MANUFACTURER, 0x04, 0x07, "Processor maker 0"},
        tTextCase{QUENRA_ATTRIBUTE_PROCESSOR_VERSION, 0x04, 0x10, "Processor version 0"},
        tTextCase{QUENRA_ATTRIBUTE_BUS_LOCATION, 0x97, 0x04, "07:12"},
        tTextCase{QUENRA_ATTRIBUTE_SLOT_LOCATION, 0x98, 0x05, "01:0"},
        tTextCase{QUENRA_ATTRIBUTE_LINK_LOCATION, 0x99, 0x05, "03:4"},
        tTextCase{QUENRA_ATTRIBUTE_LINK_TEXT, 0x99, 0x06, "link text"},
        tTextCase{QUENRA_ATTRIBUTE_EXPANSION_LOCATION, 0x9A, 0x05, "05:6"},
        tTextCase{QUENRA_ATTRIBUTE_PLATFORM_TEXT_3, 0x9C, 0x04, "platform text 3"},
        tTextCase{QUENRA_ATTRIBUTE_BRIDGE_LOCATION, 0xA3, 0x07, "00:b"},
        tTextCase{QUENRA_ATTRIBUTE_BRIDGE_MEMBERS, 0xA3, 0x08, "00:2,03:4"}));

// ---- Null sizes ----

TEST_F(TextAttribute, OrdinaryWithoutSize_IsNotReadAndNotAnError) {
  open();
  char buffer[200] = "untouched";
  for (const uint32_t attribute :
       {QUENRA_ATTRIBUTE_PRODUCT_NAME, QUENRA_ATTRIBUTE_SERIAL_NUMBER,
        QUENRA_ATTRIBUTE_SYSTEM_VERSION, QUENRA_ATTRIBUTE_PLATFORM_IDENTIFIER,
        QUENRA_ATTRIBUTE_MEMORY_LOCATOR, QUENRA_ATTRIBUTE_FIRMWARE_VERSION}) {
    EXPECT_EQ(QUENRA_getAttributeUTF8(QUENRA_HANDLE, attribute, buffer, nullptr), 0);
  }
  EXPECT_STREQ(buffer, "untouched");
}

TEST_F(TextAttribute, LocationWithoutSize_FailsWithBufferTooSmall) {
  open();
  char buffer[200] = "untouched";
  for (const uint32_t attribute : {QUENRA_ATTRIBUTE_BUS_LOCATION, QUENRA_ATTRIBUTE_SLOT_LOCATION,
                                   QUENRA_ATTRIBUTE_BRIDGE_MEMBERS}) {
    EXPECT_EQ(QUENRA_getAttributeUTF8(QUENRA_HANDLE, attribute, buffer, nullptr),
              QUENRA_STATUS_BUFFER_TOO_SMALL);
  }
  EXPECT_STREQ(buffer, "untouched");
}

// ---- Ids that are not in the table ----

TEST_F(TextAttribute, WithAnUnknownId_IsNotSupported) {
  open();
  for (const uint32_t attribute :
       {0u, 0x10000500u, 0x1000CB00u, 0x20000100u, 0x11000100u, 0x18000200u, 0x1FFFFFFFu, ~0u}) {
    EXPECT_EQ(readText(attribute), noText(kNotSupported)) << std::hex << attribute;
  }
}

// ---- Texts that mean a missing value ----

TEST_F(TextAttribute, SerialNumberNotApplicable_IsNotSupportedAndLeavesNoText) {
  tReferenceTable table;
  table.structure(0x01).text(0x07, "Not Applicable");
  openOn(table);
  EXPECT_EQ(readText(QUENRA_ATTRIBUTE_SERIAL_NUMBER), (tTextRead{kNotSupported, ""}));
  EXPECT_EQ(readText(QUENRA_ATTRIBUTE_SERIAL_NUMBER, 14).code, QUENRA_STATUS_BUFFER_TOO_SMALL);
}

TEST_F(TextAttribute, SerialNumberNotApplicable_HasASizeWhenQueried) {
  tReferenceTable table;
  table.structure(0x01).text(0x07, "Not Applicable");
  openOn(table);
  EXPECT_EQ(readText(QUENRA_ATTRIBUTE_SERIAL_NUMBER, 0),
            (tTextRead{QUENRA_STATUS_BUFFER_TOO_SMALL, "", sizeof "Not Applicable"}));
}

TEST_F(TextAttribute, MalformedText_SucceedsWhenQueriedAndLeavesTheSize) {
  tReferenceTable table;
  table.structure(0x01).byte(0x07, 99);
  openOn(table);
  EXPECT_EQ(readText(QUENRA_ATTRIBUTE_SERIAL_NUMBER, 0), (tTextRead{QUENRA_STATUS_SUCCESS, "", 0}));
}

TEST_F(TextAttribute, LongestMembersOfABridge_FitTheLargestTableText) {
  std::string members;
  while (members.size() + 3 <= 128) {
    members += "1:,";
  }
  tReferenceTable table;
  table.structure(0xA3).text(0x08, members);
  openOn(table);
  const tTextRead query = readText(QUENRA_ATTRIBUTE_BRIDGE_MEMBERS, 0);
  EXPECT_EQ(query.code, QUENRA_STATUS_BUFFER_TOO_SMALL);
  EXPECT_EQ(query.size, members.size() / 3 * 4 + 1);
  EXPECT_LE(query.size, QUENRA_MAX_TABLE_TEXT_SIZE);
}

TEST_F(TextAttribute, SerialNumberThatBeginsWithNotApplicable_IsRead) {
  tReferenceTable table;
  table.structure(0x01).text(0x07, "Not Applicable 2");
  openOn(table);
  EXPECT_EQ(readText(QUENRA_ATTRIBUTE_SERIAL_NUMBER), text("Not Applicable 2"));
}

TEST_F(TextAttribute, SystemVersionThatRepeatsTheBiosVersion_IsNotSupported) {
  tReferenceTable table;
  table.structure(0x01).text(0x06, "B-1.23");
  openOn(table);
  EXPECT_EQ(readText(QUENRA_ATTRIBUTE_SYSTEM_VERSION), (tTextRead{kNotSupported, ""}));
}

TEST_F(TextAttribute, SystemVersionWithoutBiosStructure_IsNotSupportedYetLeavesTheVersion) {
  openOn(tReferenceTable().remove(0x00));
  EXPECT_EQ(readText(QUENRA_ATTRIBUTE_SYSTEM_VERSION), (tTextRead{kNotSupported, "V-7"}));
}

TEST_F(TextAttribute, SystemVersionWithMalformedBiosVersion_IsRead) {
  tReferenceTable table;
  table.structure(0x00).byte(0x05, 99);
  openOn(table);
  EXPECT_EQ(readText(QUENRA_ATTRIBUTE_SYSTEM_VERSION), text("V-7"));
}

// ---- The platform identifier ----

TEST_F(TextAttribute, PlatformIdentifierBeforeGeneration7_IsNotSupported) {
  usePresence(1, 0);
  tReferenceTable table;
  table.structure(0x96).byte(0x04, 6);
  openOn(table);
  EXPECT_EQ(readText(QUENRA_ATTRIBUTE_PLATFORM_IDENTIFIER), noText(kNotSupported));
}

TEST_F(TextAttribute, PlatformIdentifierNotApplicable_IsNotSupportedAndLeavesNoText) {
  tReferenceTable table;
  table.structure(0x96).text(0x0D, "Not Applicable");
  openOn(table);
  EXPECT_EQ(readText(QUENRA_ATTRIBUTE_PLATFORM_IDENTIFIER), (tTextRead{kNotSupported, ""}));
}

// ---- Instances ----

TEST_F(TextAttribute, OfASecondProcessor_IsReadByInstance) {
  open();
  EXPECT_EQ(readText(QUENRA_ATTRIBUTE_PROCESSOR_MANUFACTURER + 1), text("Processor maker 1"));
  EXPECT_EQ(readText(QUENRA_ATTRIBUTE_PROCESSOR_VERSION + 1), text("Processor version 1"));
  EXPECT_EQ(readText(QUENRA_ATTRIBUTE_PROCESSOR_VERSION + 2), noText(kNotSupported));
}

TEST_F(TextAttribute, OfASecondPopulatedModule_SkipsTheEmptySocket) {
  open();
  EXPECT_EQ(readText(QUENRA_ATTRIBUTE_MEMORY_MANUFACTURER + 1), text("Memory maker 2"));
  EXPECT_EQ(readText(QUENRA_ATTRIBUTE_MEMORY_PART_NUMBER + 1), text("MP-2"));
  EXPECT_EQ(readText(QUENRA_ATTRIBUTE_MEMORY_SERIAL_NUMBER + 1), text("MS-2"));
  EXPECT_EQ(readText(QUENRA_ATTRIBUTE_MEMORY_LOCATOR + 1), text("DIMM 2"));
}

TEST_F(TextAttribute, OfAnAbsentModule_IsNotSupported) {
  open();
  for (const uint32_t attribute :
       {QUENRA_ATTRIBUTE_MEMORY_MANUFACTURER, QUENRA_ATTRIBUTE_MEMORY_PART_NUMBER,
        QUENRA_ATTRIBUTE_MEMORY_SERIAL_NUMBER, QUENRA_ATTRIBUTE_MEMORY_LOCATOR}) {
    EXPECT_EQ(readText(attribute + 2), noText(kNotSupported));
    EXPECT_EQ(readText(attribute + 255), noText(kNotSupported));
  }
}

TEST_F(TextAttribute, WithOneStructureOnly_HasNoSecondInstance) {
  open();
  for (const uint32_t attribute :
       {QUENRA_ATTRIBUTE_SYSTEM_MANUFACTURER, QUENRA_ATTRIBUTE_PLATFORM_TEXT_1,
        QUENRA_ATTRIBUTE_BUS_LOCATION, QUENRA_ATTRIBUTE_LINK_TEXT}) {
    EXPECT_EQ(readText(attribute + 1), noText(kNotSupported));
  }
}

// ---- Lists ----

TEST_F(TextAttribute, OfAList_IsReadByPosition) {
  open();
  const char* const slots[] = {"01:0", "02:0", "13:1", "4"};
  for (uint32_t i = 0; i < 4; ++i) {
    EXPECT_EQ(readText(QUENRA_ATTRIBUTE_SLOT_LOCATION + i), text(slots[i]));
  }
  for (uint32_t i = 0; i < 5; ++i) {
    EXPECT_EQ(readText(QUENRA_ATTRIBUTE_BRIDGE_LOCATION + i), text("0" + std::to_string(i) + ":b"));
    EXPECT_EQ(readText(QUENRA_ATTRIBUTE_BRIDGE_MEMBERS + i),
              text("0" + std::to_string(i) + ":2,03:4"));
  }
}

TEST_F(TextAttribute, OfAList_BeyondItsCount_IsNotSupported) {
  tReferenceTable table;
  table.structure(0x98).byte(0x04, 2);
  table.structure(0xA3).byte(0x06, 0);
  openOn(table);
  EXPECT_EQ(readText(QUENRA_ATTRIBUTE_SLOT_LOCATION + 1), text("02:0"));
  EXPECT_EQ(readText(QUENRA_ATTRIBUTE_SLOT_LOCATION + 2), noText(kNotSupported));
  EXPECT_EQ(readText(QUENRA_ATTRIBUTE_BRIDGE_LOCATION), noText(kNotSupported));
  EXPECT_EQ(readText(QUENRA_ATTRIBUTE_BRIDGE_MEMBERS), noText(kNotSupported));
}

TEST_F(TextAttribute, OfAList_BeyondTheStructuresCapacity_IsNotSupported) {
  tReferenceTable table;
  table.structure(0x98).byte(0x04, 10);
  table.structure(0xA3).byte(0x06, 10);
  openOn(table);
  EXPECT_EQ(readText(QUENRA_ATTRIBUTE_SLOT_LOCATION + 4), noText(kNotSupported));
  EXPECT_EQ(readText(QUENRA_ATTRIBUTE_BRIDGE_LOCATION + 5), noText(kNotSupported));
  EXPECT_EQ(readText(QUENRA_ATTRIBUTE_BRIDGE_MEMBERS + 5), noText(kNotSupported));
}

TEST_F(TextAttribute, OfAListThatTheTableCutsOff_IsNotSupported) {
  struct tCase {
    uint8_t structure;
    uint32_t attribute;
  };
  for (const auto& [type, attribute] : {tCase{0x98, QUENRA_ATTRIBUTE_SLOT_LOCATION},
                                        {0xA3, QUENRA_ATTRIBUTE_BRIDGE_LOCATION},
                                        {0xA3, QUENRA_ATTRIBUTE_BRIDGE_MEMBERS}}) {
    std::vector<uint8_t> bytes = tReferenceTable().remove(type).build();
    bytes.insert(bytes.end(), {type, 0xFF, 0, 0, 1, 1, 1, 1, 1});
    machine().setTable(bytes);
    const tOpenController controller;
    EXPECT_EQ(readText(attribute), noText(kNotSupported)) << std::hex << attribute;
  }
}

}  // namespace
}  // namespace nTests
