// The loader on a scripted firmware-table service, and the shortage of memory for a table or its index.
#include <gtest/gtest.h>
#include <windows.h>

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tests/builders/smbiostablebuilder.h"
#include "tests/component/interceptedcalls.h"
#include "tests/component/zosmbios/ttestprovider.h"
#include "zosmbios/czosmbioswindowsprovider.h"
#include "zosmbios/fieldid.h"
#include "zosmbios/tstructuretable.h"

namespace nTests {
namespace {

// The operating system's firmware-table service as the loader calls it: scripted answers and
// recorded calls.
struct tFirmwareTableService {
  std::vector<uint8_t> answer;           // with the header that precedes the structures
  std::optional<uint32_t> reportedSize;  // the answer to the first call; the answer's size if none
  std::optional<uint32_t> receivedSize;  // the answer to the second call; likewise
  uint32_t firstError = 0;               // the last error that each call leaves
  uint32_t secondError = 0;

  struct tCall {
    uint32_t provider;
    uint32_t table;
    bool hasBuffer;
    uint32_t size;
    bool operator==(const tCall&) const = default;
  };
  std::vector<tCall> calls;
};

// The instance that the loader calls.
tFirmwareTableService& firmwareTableService() {
  static tFirmwareTableService service;
  return service;
}

DWORD lastError = 0;

}  // namespace
}  // namespace nTests

extern "C" {

DWORD WINAPI GetLastError() {
  return nTests::lastError;
}

UINT WINAPI GetSystemFirmwareTable(DWORD provider, DWORD table, PVOID buffer, DWORD size) {
  nTests::tFirmwareTableService& service = nTests::firmwareTableService();
  service.calls.push_back({provider, table, buffer != nullptr, size});
  const auto actualSize = static_cast<uint32_t>(service.answer.size());
  if (buffer == nullptr) {
    nTests::lastError = service.firstError;
    return service.reportedSize.value_or(actualSize);
  }
  nTests::lastError = service.secondError;
  std::copy_n(service.answer.begin(), std::min(size, actualSize), static_cast<uint8_t*>(buffer));
  return service.receivedSize.value_or(actualSize);
}

}  // extern "C"

namespace nTests {
namespace {

using nZOAPALS100::tStatus;
using namespace nQUENRA1400::nZOSMBIOS_1_1;
using tCalls = std::vector<tFirmwareTableService::tCall>;

constexpr uint32_t kRawSmbios = 0x52534D42;

std::vector<uint8_t> structures() {
  return tSmbiosTableBuilder().structure(9, {42, 1}, {"text"}).build();
}

// The service's answer: calling method, major, minor, revision, length, structures.
std::vector<uint8_t> rawTable(const std::vector<uint8_t>& table, size_t declaredLength,
                              uint8_t major = 3, uint8_t minor = 4) {
  std::vector<uint8_t> raw{0x5A, major, minor, 0x5B};
  for (unsigned shift = 0; shift < 32; shift += 8) {
    raw.push_back(static_cast<uint8_t>(declaredLength >> shift));
  }
  raw.insert(raw.end(), table.begin(), table.end());
  return raw;
}

class Loader : public testing::Test {
 protected:
  Loader() {
    service() = {};
    service().answer = rawTable(structures(), structures().size());
  }

  static tFirmwareTableService& service() { return firmwareTableService(); }

  void load() { provider_.load(status_); }
  void expectFailure(uint32_t line, uint32_t osError) {
    EXPECT_EQ(status_.code, QUENRA_STATUS_SMBIOS_NO_TABLE);
    EXPECT_STREQ(status_.component, "quenra");
    EXPECT_STREQ(status_.file, "dep_mirror\\deps\\zosmbios\\includes\\czosmbioswindowsprovider");
    EXPECT_EQ(status_.line, line);
    EXPECT_EQ(provider_.lastOsError(), osError);
    EXPECT_FALSE(provider_.hasTable());
  }
  // Loads while the nth allocation fails, and checks how that is reported.
  void loadShortOfMemory(unsigned nth) {
    service().calls.reserve(2);  // so that recording a call does not allocate
    {
      const tShortMemory shortMemory(nth);
      load();
      EXPECT_TRUE(shortMemory.wasMet());
    }
    EXPECT_EQ(status_.code, QUENRA_STATUS_MEMORY_FULL);
    EXPECT_STREQ(status_.file, "memoryallocation");
    EXPECT_EQ(status_.line, 327u);
    EXPECT_FALSE(provider_.hasTable());
  }
  int readByte() {
    uint8_t value = 0;
    const int32_t code = provider_.readByte(byteField(9, 4), 0, &value);
    return code == 0 ? value : code;
  }

  cZoSmBiosWindowsProvider provider_;
  tStatus status_;
};

TEST_F(Loader, Table_IsFetchedInTwoCalls) {
  load();
  EXPECT_EQ(status_.code, 0);
  EXPECT_EQ(readByte(), 42);
  EXPECT_EQ(readString(provider_, textField(9, 5)).text, "text");
  const auto size = static_cast<uint32_t>(service().answer.size());
  EXPECT_EQ(service().calls, (tCalls{{kRawSmbios, 0, false, 0}, {kRawSmbios, 0, true, size}}));
}

TEST_F(Loader, Version_IsMajorAndMinor) {
  load();
  EXPECT_EQ(readString(provider_, kVersionText).text, "3.4");
}

TEST_F(Loader, MaximumVersion_FitsItsText) {
  service().answer = rawTable(structures(), structures().size(), 255, 255);
  load();
  EXPECT_EQ(readString(provider_, kVersionText).text, "255.255");
}

TEST_F(Loader, Length_EndsTheTable) {
  std::vector<uint8_t> withMore = structures();
  withMore.insert(withMore.end(), {10, 5, 0, 0, 1, 0, 0});
  service().answer = rawTable(withMore, structures().size());
  load();
  EXPECT_EQ(status_.code, 0);
  EXPECT_EQ(provider_.table().bytes().size(), structures().size());
}

TEST_F(Loader, LengthOfTheCompleteAnswer_IsAccepted) {
  load();
  EXPECT_EQ(provider_.table().bytes().size(), structures().size());
}

TEST_F(Loader, LengthOneByteTooLarge_IsNoTable) {
  service().answer = rawTable(structures(), structures().size() + 1);
  service().secondError = 13;
  load();
  expectFailure(69, 13);
}

TEST_F(Loader, MaximumLength_IsNoTable) {
  service().answer = rawTable(structures(), 0xFFFFFFFF);
  load();
  expectFailure(69, 0);
}

TEST_F(Loader, AnswerOfAHeaderAlone_IsATableOfNoBytes) {
  service().answer = rawTable({}, 0);
  load();
  EXPECT_EQ(status_.code, 0);
  EXPECT_TRUE(provider_.hasTable());
  EXPECT_TRUE(provider_.table().bytes().empty());
  EXPECT_STREQ(provider_.versionText(), "3.4");
}

TEST_F(Loader, AnswerSmallerThanItsHeader_IsNoTable) {
  for (size_t size = 1; size < 8; ++size) {
    service().answer = std::vector<uint8_t>(size);
    service().secondError = static_cast<uint32_t>(20 + size);
    status_ = {};
    load();
    expectFailure(69, static_cast<uint32_t>(20 + size));
  }
}

TEST_F(Loader, SizeZero_IsNoTableWithTheSystemsError) {
  service().reportedSize = 0;
  service().firstError = 1168;
  load();
  expectFailure(48, 1168);
  EXPECT_EQ(service().calls.size(), 1u);
}

TEST_F(Loader, ShorterSecondAnswer_IsNoTableWithTheSystemsError) {
  service().receivedSize = static_cast<uint32_t>(service().answer.size() - 1);
  service().secondError = 31;
  load();
  expectFailure(69, 31);
}

TEST_F(Loader, LongerSecondAnswer_IsNoTableWithTheSystemsError) {
  service().receivedSize = static_cast<uint32_t>(service().answer.size() + 1);
  service().secondError = 122;
  load();
  expectFailure(69, 122);
}

TEST_F(Loader, NoSecondAnswer_IsNoTableWithTheSystemsError) {
  service().receivedSize = 0;
  service().secondError = 5;
  load();
  expectFailure(69, 5);
}

TEST_F(Loader, NoMemoryForTheAnswer_IsReportedAndMakesNoFurtherCall) {
  loadShortOfMemory(1);
  EXPECT_EQ(service().calls.size(), 1u);
}

TEST_F(Loader, NoMemoryForTheTable_IsReportedAndLeavesNone) {
  loadShortOfMemory(2);
  EXPECT_EQ(service().calls.size(), 2u);
}

TEST_F(Loader, Again_ReplacesTheTable) {
  load();
  service().answer = rawTable(tSmbiosTableBuilder().structure(9, {43}).build(), 7, 2, 8);
  load();
  EXPECT_EQ(readByte(), 43);
  EXPECT_STREQ(provider_.versionText(), "2.8");
}

TEST_F(Loader, AgainWithoutSuccess_LeavesNoTable) {
  load();
  service().reportedSize = 0;
  service().firstError = 7;
  load();
  expectFailure(48, 7);
}

TEST_F(Loader, StatusWithAnError_MakesNoCallAndKeepsTheTable) {
  load();
  service().calls.clear();
  tStatus failed;
  mergeStatus(failed, -3, {"first", 1});
  provider_.load(failed);
  EXPECT_TRUE(service().calls.empty());
  EXPECT_EQ(readByte(), 42);
  EXPECT_EQ(failed.code, -3);
}

TEST_F(Loader, FirstReader_LoadsForAll) {
  EXPECT_EQ(readByte(), 42);
  EXPECT_EQ(readByte(), 42);
  EXPECT_EQ(service().calls.size(), 2u);
}

TEST_F(Loader, ReaderAfterAFailure_TriesAgain) {
  service().reportedSize = 0;
  EXPECT_EQ(readByte(), QUENRA_STATUS_SMBIOS_NO_TABLE);
  service().reportedSize.reset();
  EXPECT_EQ(readByte(), 42);
}

TEST_F(Loader, InstalledTable_IsNotReplacedByAReader) {
  const std::vector<uint8_t> table = tSmbiosTableBuilder().structure(9, {44}).build();
  provider_.install(table, std::string_view("9.9"), status_);
  EXPECT_EQ(readByte(), 44);
  EXPECT_TRUE(service().calls.empty());
}

// ---- Shortage of memory ----

std::vector<uint8_t> tableWith(uint8_t value) {
  return tSmbiosTableBuilder().structure(8, {1}).structure(9, {value}).build();
}

void expectByte(tTestProvider& provider, uint8_t expected) {
  uint8_t value = 0;
  EXPECT_EQ(provider.readByte(byteField(9, 4), 0, &value), 0);
  EXPECT_EQ(value, expected);
}

// Installs while the nth allocation fails, and checks that there was one.
void installShortOfMemory(tTestProvider& provider, uint8_t value, unsigned nth, tStatus& status) {
  const std::vector<uint8_t> table = tableWith(value);
  const tShortMemory shortMemory(nth);
  provider.install(table, std::string_view("2.0"), status);
  EXPECT_TRUE(shortMemory.wasMet());
}

TEST(ShortMemory, NoneForTheTable_KeepsTheOldOne) {
  tTestProvider provider(tableWith(42), "3.4");
  tStatus status;
  installShortOfMemory(provider, 43, 1, status);
  EXPECT_EQ(status.code, QUENRA_STATUS_MEMORY_FULL);
  EXPECT_STREQ(status.file, "memoryallocation");
  EXPECT_EQ(status.line, 327u);
  expectByte(provider, 42);
  EXPECT_STREQ(provider.versionText(), "3.4");
}

TEST(ShortMemory, NoneForTheFirstTable_LeavesNone) {
  tTestProvider provider;
  tStatus status;
  installShortOfMemory(provider, 43, 1, status);
  EXPECT_EQ(status.code, QUENRA_STATUS_MEMORY_FULL);
  EXPECT_FALSE(provider.hasTable());
}

TEST(ShortMemory, IndexWithoutMemory_FindsNothing) {
  const std::vector<uint8_t> table = tableWith(42);
  tStructureIndex index;
  {
    const tShortMemory shortMemory(1);
    index.build(tStructureTable(table));
    EXPECT_TRUE(shortMemory.wasMet());
  }
  EXPECT_FALSE(index.isUsable());
  EXPECT_EQ(index.findStructure(9, 0), std::nullopt);
}

TEST(ShortMemory, NoneForTheIndex_FallsBackToTheWalk) {
  tTestProvider provider(tableWith(42), "3.4");
  tStatus status;
  installShortOfMemory(provider, 43, 2, status);
  EXPECT_EQ(status.code, 0);
  expectByte(provider, 43);
  EXPECT_STREQ(provider.versionText(), "2.0");
}

}  // namespace
}  // namespace nTests
