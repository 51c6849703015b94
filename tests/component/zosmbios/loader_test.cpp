#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/builders/smbiostablebuilder.h"
#include "tests/component/protons/status/shortmemory.h"
#include "tests/component/zosmbios/firmwaretableservice.h"
#include "tests/component/zosmbios/ttestprovider.h"
#include "zosmbios/czosmbioswindowsprovider.h"
#include "zosmbios/fieldid.h"

namespace nTests {
namespace {

using namespace nQUENRA1400::nZOSMBIOS_1_1;
using nZOAPALS100::tStatus;
using tCalls = std::vector<tFirmwareTableService::tCall>;

constexpr uint32_t kRawSmbios = 0x52534D42;

std::vector<uint8_t> structures() {
  return tSmbiosTableBuilder().structure(9, {42, 1}, {"text"}).build();
}

// The service's answer: calling method, major, minor, revision, length, structures.
std::vector<uint8_t> rawTable(const std::vector<uint8_t>& table, size_t toldLength,
                              uint8_t major = 3, uint8_t minor = 4) {
  std::vector<uint8_t> raw{0x5A, major, minor, 0x5B};
  for (unsigned shift = 0; shift < 32; shift += 8) {
    raw.push_back(static_cast<uint8_t>(toldLength >> shift));
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
    EXPECT_EQ(status_.code, -240060);
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
    EXPECT_EQ(status_.code, -52000);
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

TEST_F(Loader, LargestVersion_FitsItsText) {
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

TEST_F(Loader, LengthOfTheWholeAnswer_IsTaken) {
  load();
  EXPECT_EQ(provider_.table().bytes().size(), structures().size());
}

TEST_F(Loader, LengthOneByteTooLarge_IsNoTable) {
  service().answer = rawTable(structures(), structures().size() + 1);
  service().secondError = 13;
  load();
  expectFailure(69, 13);
}

TEST_F(Loader, LargestLength_IsNoTable) {
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
  service().toldSize = 0;
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

TEST_F(Loader, NoMemoryForTheAnswer_IsReportedAndAsksNoFurther) {
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
  service().toldSize = 0;
  service().firstError = 7;
  load();
  expectFailure(48, 7);
}

TEST_F(Loader, StatusWithAnError_AsksNothingAndKeepsTheTable) {
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
  service().toldSize = 0;
  EXPECT_EQ(readByte(), -240060);
  service().toldSize.reset();
  EXPECT_EQ(readByte(), 42);
}

TEST_F(Loader, InstalledTable_IsNotReplacedByAReader) {
  const std::vector<uint8_t> table = tSmbiosTableBuilder().structure(9, {44}).build();
  provider_.install(table, std::string_view("9.9"), status_);
  EXPECT_EQ(readByte(), 44);
  EXPECT_TRUE(service().calls.empty());
}

}  // namespace
}  // namespace nTests
