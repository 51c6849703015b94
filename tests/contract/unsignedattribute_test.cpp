#include <cstring>

#include "protocol/controllerrequests.h"
#include "tests/contract/contracttest.h"

namespace nTests {
namespace {

class UnsignedAttribute : public ContractTest {
 protected:
  void openOn(const tReferenceTable& table) {
    useTable(table);
    open();
  }
  static constexpr int32_t kNotSupported = QUENRA_STATUS_NOT_SUPPORTED;
  static constexpr uint32_t kOther = 0xFFFFFFFF;
};

// ---- Every row that is one field ----

struct tUnsignedCase {
  uint32_t attribute;
  uint8_t structure;
  uint8_t offset;
  uint32_t value;
  // The value when the structure lies partly outside the table.
  tUnsignedRead malformed = {0, 0};
};
void PrintTo(const tUnsignedCase& row, std::ostream* out) {
  *out << "attribute " << std::hex << row.attribute;
}

class UnsignedTable : public UnsignedAttribute, public testing::WithParamInterface<tUnsignedCase> {
 protected:
  void SetUp() override {
    UnsignedAttribute::SetUp();
    usePresence(1, 0);
  }
  // A machine without the fields that identify it is not supported, and does not open.
  bool opensOn(const tReferenceTable& table) {
    useTable(table);
    uint64_t handle = 0;
    const int32_t code = QUENRA_openController(&handle);
    if (code == 0) {
      return true;
    }
    switch (GetParam().structure) {
      case 0x96:
        EXPECT_EQ(code, QUENRA_STATUS_NO_CONTROLLER);
        break;
      case 0x11:
        EXPECT_EQ(code, QUENRA_STATUS_NOT_SUPPORTED);
        break;
      default:
        ADD_FAILURE() << "does not open: " << code;
    }
    return false;
  }
};

TEST_P(UnsignedTable, ReadsItsField) {
  open();
  EXPECT_EQ(readUnsigned(GetParam().attribute), value(GetParam().value));
  EXPECT_EQ(readUnsigned(GetParam().attribute | QUENRA_SELECTOR_CONTROLLER),
            value(GetParam().value));
}

TEST_P(UnsignedTable, WithoutValuePointer_FailsWithInvalidParameter) {
  open();
  EXPECT_EQ(QUENRA_getAttributeU32(QUENRA_HANDLE, GetParam().attribute, nullptr),
            QUENRA_STATUS_INVALID_PARAMETER);
}

TEST_P(UnsignedTable, WithAStructureThatIsTooShort_IsNotSupported) {
  tReferenceTable table;
  table.structure(GetParam().structure).cutTo(GetParam().offset);
  if (!opensOn(table)) {
    return;
  }
  EXPECT_EQ(readUnsigned(GetParam().attribute), noValue(kNotSupported));
}

TEST_P(UnsignedTable, WithoutItsStructure_IsNotSupported) {
  if (!opensOn(tReferenceTable().remove(GetParam().structure))) {
    return;
  }
  EXPECT_EQ(readUnsigned(GetParam().attribute), noValue(kNotSupported));
}

TEST_P(UnsignedTable, WithAStructureThatTheTableCutsOff_ReadsAsNothing) {
  const uint8_t type = GetParam().structure;
  std::vector<uint8_t> bytes = tReferenceTable().remove(type).build();
  bytes.insert(bytes.end(), {type, 0xFF, 0x00, 0x00, 0x04, 0x05});
  machine().setTable(bytes);
  uint64_t handle = 0;
  const int32_t code = QUENRA_openController(&handle);
  if (type == 0x96) {
    EXPECT_EQ(code, QUENRA_STATUS_NO_CONTROLLER);
  } else if (type == 0x11) {
    // The array counts four devices, and this is the only one.
    EXPECT_EQ(code, QUENRA_STATUS_NOT_SUPPORTED);
  } else {
    EXPECT_EQ(code, 0);
    EXPECT_EQ(readUnsigned(GetParam().attribute), GetParam().malformed);
  }
}

INSTANTIATE_TEST_SUITE_P(
    Rows, UnsignedTable,
    testing::Values(
        tUnsignedCase{QUENRA_ATTRIBUTE_PLATFORM_CODE, 0x96, 0x06, 0xABCD},
        tUnsignedCase{QUENRA_ATTRIBUTE_PLATFORM_OPTION, 0x96, 0x0B, 0x5A},
        tUnsignedCase{QUENRA_ATTRIBUTE_MEMORY_TYPE, 0x11, 0x12, 0x1A},
        tUnsignedCase{QUENRA_ATTRIBUTE_MEMORY_SPEED, 0x11, 0x15, 2400},
        tUnsignedCase{QUENRA_ATTRIBUTE_MEMORY_CONFIGURED_SPEED, 0x11, 0x20, 2100},
        tUnsignedCase{QUENRA_ATTRIBUTE_MEMORY_SIZE, 0x11, 0x0C, 0x2000},
        tUnsignedCase{QUENRA_ATTRIBUTE_PROCESSOR_STEPPING, 0x04, 0x08, 5},
        tUnsignedCase{QUENRA_ATTRIBUTE_PROCESSOR_MAXIMUM_SPEED, 0x04, 0x14, 4200},
        tUnsignedCase{QUENRA_ATTRIBUTE_PROCESSOR_THREAD_COUNT, 0x04, 0x25, 8},
        tUnsignedCase{
            QUENRA_ATTRIBUTE_PLATFORM_REVISION, 0xB4, 0x07, 0x20, {QUENRA_STATUS_NOT_SUPPORTED, 0}},
        tUnsignedCase{QUENRA_ATTRIBUTE_PLATFORM_REVISION_BASE, 0xB4, 0x06, 0x44},
        tUnsignedCase{QUENRA_ATTRIBUTE_SLOT_COUNT, 0x98, 0x04, 4},
        tUnsignedCase{
            QUENRA_ATTRIBUTE_SLOT_NUMBER, 0x98, 0x09, 21, {QUENRA_STATUS_NOT_SUPPORTED, 0}},
        tUnsignedCase{QUENRA_ATTRIBUTE_LINK_KIND, 0x99, 0x04, 2, {0, 0xFFFFFFFF}},
        tUnsignedCase{QUENRA_ATTRIBUTE_EXPANSION_KIND, 0x9A, 0x04, 1, {0, 0xFFFFFFFF}},
        tUnsignedCase{QUENRA_ATTRIBUTE_CAPABILITY_1, 0x9F, 0x04, 0x31},
        tUnsignedCase{QUENRA_ATTRIBUTE_CAPABILITY_2, 0x9F, 0x05, 0x32},
        tUnsignedCase{QUENRA_ATTRIBUTE_TEXT_SETTING_SUPPORT, 0x9D, 0x04, 3},
        tUnsignedCase{QUENRA_ATTRIBUTE_BRIDGE_COUNT, 0xA3, 0x06, 5},
        tUnsignedCase{QUENRA_ATTRIBUTE_PLATFORM_GENERATION, 0x96, 0x04, 7}));

// ---- Ids that are not in the table ----

TEST_F(UnsignedAttribute, WithAnUnknownId_IsNotSupportedAndReadsAsZero) {
  open();
  for (const uint32_t attribute :
       {0u, 0x20000000u, 0x20000700u, 0x10000600u, 0x21000600u, 0x28000300u, 0x28000600u, ~0u}) {
    EXPECT_EQ(readUnsigned(attribute), noValue(kNotSupported)) << std::hex << attribute;
  }
}

// ---- Instances ----

TEST_F(UnsignedAttribute, OfASecondProcessor_IsReadByInstance) {
  open();
  EXPECT_EQ(readUnsigned(QUENRA_ATTRIBUTE_PROCESSOR_STEPPING + 1), value(6));
  EXPECT_EQ(readUnsigned(QUENRA_ATTRIBUTE_PROCESSOR_MAXIMUM_SPEED + 1), value(4201));
  EXPECT_EQ(readUnsigned(QUENRA_ATTRIBUTE_PROCESSOR_THREAD_COUNT + 1), value(9));
  EXPECT_EQ(readUnsigned(QUENRA_ATTRIBUTE_PROCESSOR_THREAD_COUNT + 2), noValue(kNotSupported));
}

TEST_F(UnsignedAttribute, OfASecondPopulatedModule_SkipsTheEmptySocket) {
  open();
  EXPECT_EQ(readUnsigned(QUENRA_ATTRIBUTE_MEMORY_TYPE + 1), value(0x1C));
  EXPECT_EQ(readUnsigned(QUENRA_ATTRIBUTE_MEMORY_SPEED + 1), value(2402));
  EXPECT_EQ(readUnsigned(QUENRA_ATTRIBUTE_MEMORY_CONFIGURED_SPEED + 1), value(2102));
  EXPECT_EQ(readUnsigned(QUENRA_ATTRIBUTE_MEMORY_SIZE + 1), value(0x2002));
}

TEST_F(UnsignedAttribute, OfAnAbsentModule_IsNotSupported) {
  open();
  for (const uint32_t attribute :
       {QUENRA_ATTRIBUTE_MEMORY_TYPE, QUENRA_ATTRIBUTE_MEMORY_SPEED,
        QUENRA_ATTRIBUTE_MEMORY_CONFIGURED_SPEED, QUENRA_ATTRIBUTE_MEMORY_SIZE}) {
    EXPECT_EQ(readUnsigned(attribute + 2), noValue(kNotSupported));
    EXPECT_EQ(readUnsigned(attribute + 255), noValue(kNotSupported));
  }
}

TEST_F(UnsignedAttribute, WithOneStructureOnly_HasNoSecondInstance) {
  open();
  EXPECT_EQ(readUnsigned(QUENRA_ATTRIBUTE_PLATFORM_CODE + 1), noValue(kNotSupported));
  EXPECT_EQ(readUnsigned(QUENRA_ATTRIBUTE_LINK_KIND + 1), noValue(kNotSupported));
}

TEST_F(UnsignedAttribute, ModuleCountWithAnInstance_IsNotSupportedYetWritten) {
  open();
  EXPECT_EQ(readUnsigned(QUENRA_ATTRIBUTE_MEMORY_MODULE_COUNT), value(2));
  EXPECT_EQ(readUnsigned(QUENRA_ATTRIBUTE_MEMORY_MODULE_COUNT + 1),
            (tUnsignedRead{kNotSupported, 2}));
}

// ---- Lists ----

TEST_F(UnsignedAttribute, OfAList_IsReadByPosition) {
  open();
  for (uint32_t i = 0; i < 4; ++i) {
    EXPECT_EQ(readUnsigned(QUENRA_ATTRIBUTE_SLOT_NUMBER + i), value(21 + i));
  }
}

TEST_F(UnsignedAttribute, OfAList_BeyondItsCountOrCapacity_IsNotSupported) {
  tReferenceTable table;
  table.structure(0x98).byte(0x04, 10);
  openOn(table);
  EXPECT_EQ(readUnsigned(QUENRA_ATTRIBUTE_SLOT_NUMBER + 4), noValue(kNotSupported));
  EXPECT_EQ(readUnsigned(QUENRA_ATTRIBUTE_SLOT_NUMBER + 10), noValue(kNotSupported));
}

TEST_F(UnsignedAttribute, OfAnEmptyList_IsNotSupportedAlsoWithMarten) {
  tReferenceTable table;
  table.structure(0x98).byte(0x04, 0);
  machine().setAttributeU32(kSimulatorInterfaceMarten, QUENRA_ATTRIBUTE_SLOT_NUMBER, 77);
  openOn(table);
  EXPECT_EQ(readUnsigned(QUENRA_ATTRIBUTE_SLOT_NUMBER), noValue(kNotSupported));
}

// ---- The controller's kind ----

TEST_F(UnsignedAttribute, ControllerKind_FollowsTheBusStructures) {
  tReferenceTable table;
  const auto kindOn = [this](const tReferenceTable& changed) {
    useTable(changed);
    const tOpenController controller;
    EXPECT_EQ(controller.code(), 0);
    return readUnsigned(QUENRA_ATTRIBUTE_CONTROLLER_KIND);
  };
  EXPECT_EQ(kindOn(table), value(1));
  table.structure(0x97).byte(0x04, 0);
  EXPECT_EQ(kindOn(table), value(2)) << "a bus without a text does not count";
  table.remove(0x97);
  EXPECT_EQ(kindOn(table), value(2));
  table.structure(0x98).cutTo(0x05);
  EXPECT_EQ(kindOn(table), value(2)) << "the count of its slots is enough";
  table.remove(0x98);
  EXPECT_EQ(kindOn(table), value(3));
  table.structure(0x9F).cutTo(0x05);
  EXPECT_EQ(kindOn(table), value(3)) << "its first byte is enough";
  table.remove(0x9F);
  EXPECT_EQ(kindOn(table), value(4));
  table.structure(0x96).byte(0x0C, 1);
  EXPECT_EQ(kindOn(table), value(1));
  table.structure(0x96).byte(0x0C, 5);
  EXPECT_EQ(kindOn(table), value(5));
  table.structure(0x96).byte(0x0C, 0);
  EXPECT_EQ(kindOn(table), value(kOther));
  table.structure(0x96).byte(0x0C, 6);
  EXPECT_EQ(kindOn(table), value(kOther));
  table.structure(0x96).cutTo(0x0C);
  EXPECT_EQ(kindOn(table), value(kOther));
}

TEST_F(UnsignedAttribute, ControllerKindWithAnInstance_IsNotSupportedYetWritten) {
  open();
  EXPECT_EQ(readUnsigned(QUENRA_ATTRIBUTE_CONTROLLER_KIND + 1), (tUnsignedRead{kNotSupported, 1}));
}

// ---- Rules ----

TEST_F(UnsignedAttribute, PlatformRevision_IsOneOfFour) {
  for (const uint8_t revision : std::initializer_list<uint8_t>{0x10, 0x15, 0x20, 0x30}) {
    tReferenceTable table;
    table.structure(0xB4).byte(0x07, revision);
    useTable(table);
    const tOpenController controller;
    EXPECT_EQ(readUnsigned(QUENRA_ATTRIBUTE_PLATFORM_REVISION), value(revision));
  }
  for (const uint8_t revision : std::initializer_list<uint8_t>{0x00, 0x11, 0x31, 0xFF}) {
    tReferenceTable table;
    table.structure(0xB4).byte(0x07, revision);
    useTable(table);
    const tOpenController controller;
    EXPECT_EQ(readUnsigned(QUENRA_ATTRIBUTE_PLATFORM_REVISION), noValue(kNotSupported));
  }
}

struct tKindCase {
  uint32_t attribute;
  uint8_t structure;
  const char* name;
  uint32_t kind;
};
class NamedKind : public UnsignedAttribute, public testing::WithParamInterface<tKindCase> {};

TEST_P(NamedKind, ByText_IsItsNumberOrOther) {
  tReferenceTable table;
  table.structure(GetParam().structure).text(0x04, GetParam().name);
  openOn(table);
  EXPECT_EQ(readUnsigned(GetParam().attribute), value(GetParam().kind));
}
INSTANTIATE_TEST_SUITE_P(
    Names, NamedKind,
    testing::Values(tKindCase{QUENRA_ATTRIBUTE_LINK_KIND, 0x99, "ExpressCard", 1},
                    tKindCase{QUENRA_ATTRIBUTE_LINK_KIND, 0x99, "GPIB", 2},
                    tKindCase{QUENRA_ATTRIBUTE_LINK_KIND, 0x99, "Thunderbolt", 3},
                    tKindCase{QUENRA_ATTRIBUTE_LINK_KIND, 0x99, "thunderbolt", QUENRA_KIND_OTHER},
                    tKindCase{QUENRA_ATTRIBUTE_LINK_KIND, 0x99, "GPIB ", QUENRA_KIND_OTHER},
                    tKindCase{QUENRA_ATTRIBUTE_EXPANSION_KIND, 0x9A, "PCI", 1},
                    tKindCase{QUENRA_ATTRIBUTE_EXPANSION_KIND, 0x9A, "PCIe", QUENRA_KIND_OTHER}));

// ---- Firmware update support ----

struct tSupportCase {
  uint8_t capability;
  uint8_t restriction;
  uint32_t supported;
};
class UpdateSupport : public UnsignedAttribute, public testing::WithParamInterface<tSupportCase> {};

TEST_P(UpdateSupport, NeedsACapabilityAndNoRestriction) {
  tReferenceTable table;
  table.structure(0x9E).byte(0x04, GetParam().capability).byte(0x05, GetParam().restriction);
  openOn(table);
  EXPECT_EQ(readUnsigned(QUENRA_ATTRIBUTE_FIRMWARE_UPDATE_SUPPORT), value(GetParam().supported));
}
INSTANTIATE_TEST_SUITE_P(Bytes, UpdateSupport,
                         testing::Values(tSupportCase{1, 0, 1}, tSupportCase{1, 1, 1},
                                         tSupportCase{255, 1, 1}, tSupportCase{1, 2, 0},
                                         tSupportCase{0, 0, 0}, tSupportCase{0, 2, 0}));

TEST_F(UnsignedAttribute, UnreadableUpdateSupport_FailsWithNoController) {
  tReferenceTable table;
  table.structure(0x9E).cutTo(0x05);
  machine().setAttributeU32(kSimulatorInterfaceMarten, QUENRA_ATTRIBUTE_FIRMWARE_UPDATE_SUPPORT, 1);
  openOn(table);
  EXPECT_EQ(readUnsigned(QUENRA_ATTRIBUTE_FIRMWARE_UPDATE_SUPPORT),
            noValue(QUENRA_STATUS_NO_CONTROLLER));
}

TEST_F(UnsignedAttribute, UpdateSupportWithAnInstance_IsNotSupported) {
  open();
  EXPECT_EQ(readUnsigned(QUENRA_ATTRIBUTE_FIRMWARE_UPDATE_SUPPORT + 1), noValue(kNotSupported));
}

// ---- Interfaces present ----

TEST_F(UnsignedAttribute, InterfacesPresent_IncludeAnOpenMarten) {
  {
    const tOpenController controller;
    EXPECT_EQ(readUnsigned(QUENRA_ATTRIBUTE_INTERFACES_PRESENT), value(0x300000));
  }
  usePresence(1, 0);
  open();
  EXPECT_EQ(readUnsigned(QUENRA_ATTRIBUTE_INTERFACES_PRESENT), value(0x100000));
}

// ---- The Marten interface in place of a field ----

struct tFallbackCase {
  uint32_t attribute;
  uint8_t structure;
};
void PrintTo(const tFallbackCase& row, std::ostream* out) {
  *out << "attribute " << std::hex << row.attribute;
}
class MartenInPlaceOfAField : public UnsignedAttribute,
                              public testing::WithParamInterface<tFallbackCase> {
 protected:
  static constexpr uint32_t kMartensValue = 0xABCDEF99;  // no rule returns it

  // Opens a machine without the structure, whose Marten has the attribute.
  void openWithoutStructure(uint32_t martens) {
    tReferenceTable table;
    if (GetParam().structure == 0x11) {
      table.structure(0x10).word(0x0D, 0);
    }
    table.remove(GetParam().structure);
    useTable(table);
    usePresence(1, martens);
    machine().setAttributeU32(kSimulatorInterfaceMarten, GetParam().attribute, kMartensValue);
    machine().setAttributeU32(kSimulatorInterfaceMarten, GetParam().attribute + 1, kMartensValue);
    open();
  }
};

TEST_P(MartenInPlaceOfAField, Value_IsReturnedUnchanged) {
  openWithoutStructure(1);
  EXPECT_EQ(readUnsigned(GetParam().attribute), value(kMartensValue));
}

// The first four bytes of the request are the id.
TEST_P(MartenInPlaceOfAField, WithASelector_ReceivesTheCompleteId) {
  openWithoutStructure(1);
  for (const uint32_t selector : {uint32_t{QUENRA_SELECTOR_CONTROLLER}, 0x00300000u, 0x00F00000u}) {
    machine().clearLog();
    EXPECT_EQ(readUnsigned(GetParam().attribute | selector), value(kMartensValue));
    const auto entries = requests(REQUEST_GET_ATTRIBUTE);
    ASSERT_EQ(entries.size(), 1u);
    EXPECT_EQ(entries[0].interfaceKind, kSimulatorInterfaceMarten);
    uint32_t received = 0;
    std::memcpy(&received, entries[0].input, sizeof received);
    EXPECT_EQ(received, GetParam().attribute | selector);
  }
}

TEST_P(MartenInPlaceOfAField, WhenClosed_LeavesTheError) {
  openWithoutStructure(0);
  EXPECT_EQ(readUnsigned(GetParam().attribute), noValue(kNotSupported));
}

TEST_P(MartenInPlaceOfAField, WithAnInstance_ReceivesNoRequest) {
  openWithoutStructure(1);
  machine().clearLog();
  EXPECT_EQ(readUnsigned(GetParam().attribute + 1), noValue(kNotSupported));
  EXPECT_TRUE(requests(REQUEST_GET_ATTRIBUTE).empty());
}

TEST_P(MartenInPlaceOfAField, Rejecting_LeavesTheFirstError) {
  openWithoutStructure(1);
  tSimulatorScript script{};
  script.interfaceKind = kSimulatorInterfaceMarten;
  script.action = kSimulatorActionAnswerCode;
  script.driverStatus = -4711;
  machine().addScript(script);
  EXPECT_EQ(readUnsigned(GetParam().attribute), noValue(kNotSupported));
}

TEST_P(MartenInPlaceOfAField, WithTheFieldPresent_IsNotRead) {
  machine().setAttributeU32(kSimulatorInterfaceMarten, GetParam().attribute, kMartensValue);
  open();
  const tUnsignedRead read = readUnsigned(GetParam().attribute);
  EXPECT_EQ(read.code, 0);
  EXPECT_NE(read.value, kMartensValue);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, MartenInPlaceOfAField,
    testing::Values(tFallbackCase{QUENRA_ATTRIBUTE_MEMORY_TYPE, 0x11},
                    tFallbackCase{QUENRA_ATTRIBUTE_MEMORY_SPEED, 0x11},
                    tFallbackCase{QUENRA_ATTRIBUTE_MEMORY_CONFIGURED_SPEED, 0x11},
                    tFallbackCase{QUENRA_ATTRIBUTE_MEMORY_SIZE, 0x11},
                    tFallbackCase{QUENRA_ATTRIBUTE_PROCESSOR_STEPPING, 0x04},
                    tFallbackCase{QUENRA_ATTRIBUTE_PROCESSOR_MAXIMUM_SPEED, 0x04},
                    tFallbackCase{QUENRA_ATTRIBUTE_PROCESSOR_THREAD_COUNT, 0x04},
                    tFallbackCase{QUENRA_ATTRIBUTE_PLATFORM_REVISION, 0xB4},
                    tFallbackCase{QUENRA_ATTRIBUTE_PLATFORM_REVISION_BASE, 0xB4},
                    tFallbackCase{QUENRA_ATTRIBUTE_SLOT_COUNT, 0x98},
                    tFallbackCase{QUENRA_ATTRIBUTE_SLOT_NUMBER, 0x98},
                    tFallbackCase{QUENRA_ATTRIBUTE_LINK_KIND, 0x99},
                    tFallbackCase{QUENRA_ATTRIBUTE_EXPANSION_KIND, 0x9A},
                    tFallbackCase{QUENRA_ATTRIBUTE_CAPABILITY_1, 0x9F},
                    tFallbackCase{QUENRA_ATTRIBUTE_CAPABILITY_2, 0x9F},
                    tFallbackCase{QUENRA_ATTRIBUTE_TEXT_SETTING_SUPPORT, 0x9D},
                    tFallbackCase{QUENRA_ATTRIBUTE_BRIDGE_COUNT, 0xA3}));

TEST_F(UnsignedAttribute, UnknownAttributes_AreNotReadFromMarten) {
  for (const uint32_t attribute : {0x20000700u, 0x28000300u}) {
    machine().setAttributeU32(kSimulatorInterfaceMarten, attribute, 5);
  }
  open();
  machine().clearLog();
  EXPECT_EQ(readUnsigned(0x20000700), noValue(kNotSupported));
  EXPECT_EQ(readUnsigned(0x28000300), noValue(kNotSupported));
  EXPECT_TRUE(requests(REQUEST_GET_ATTRIBUTE).empty());
}

}  // namespace
}  // namespace nTests
