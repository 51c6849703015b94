// The installation of tables, and every reader on damaged copies of a well-formed table.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <initializer_list>
#include <map>
#include <ostream>
#include <random>
#include <string>
#include <string_view>
#include <thread>
#include <tuple>
#include <vector>

#include "tests/builders/smbiostablebuilder.h"
#include "tests/component/zosmbios/ttestprovider.h"
#include "zosmbios/fieldid.h"

namespace nTests {
namespace {

using nZOAPALS100::tStatus;
using namespace nQUENRA1400::nZOSMBIOS_1_1;

// ---- Installation ----

std::vector<uint8_t> tableWith(uint8_t value, const char* text = "text") {
  return tSmbiosTableBuilder().structure(9, {value, 1}, {text}).build();
}

int32_t readByteOf(tTestProvider& provider) {
  uint8_t value = 0;
  const int32_t code = provider.readByte(byteField(9, 4), 0, &value);
  return code == 0 ? value : code;
}

TEST(Install, Fresh_HasNoTable) {
  const tTestProvider provider;
  EXPECT_FALSE(provider.hasTable());
  EXPECT_STREQ(provider.versionText(), "");
  EXPECT_EQ(provider.lastOsError(), 0u);
}

TEST(Install, Table_IsACopy) {
  std::vector<uint8_t> table = tableWith(42);
  tTestProvider provider(table);
  std::fill(table.begin(), table.end(), uint8_t{0});
  EXPECT_EQ(readByteOf(provider), 42);
}

TEST(Install, Again_ReplacesTableAndVersion) {
  tTestProvider provider(tableWith(42), "3.4");
  tStatus status;
  provider.install(tableWith(43), std::string_view("2.0"), status);
  EXPECT_EQ(status.code, 0);
  EXPECT_EQ(readByteOf(provider), 43);
  EXPECT_STREQ(provider.versionText(), "2.0");
}

TEST(Install, OwnTable_StaysReadable) {
  tTestProvider provider(tableWith(42));
  tStatus status;
  provider.install(provider.table().bytes(), std::string_view("2.0"), status);
  EXPECT_EQ(readByteOf(provider), 42);
}

TEST(Install, NoBytes_IsATableInWhichNothingIsFound) {
  tTestProvider provider(std::vector<uint8_t>{});
  provider.loadWill(tableWith(42));
  EXPECT_TRUE(provider.hasTable());
  EXPECT_EQ(readByteOf(provider), QUENRA_STATUS_SMBIOS_NOT_FOUND);
  EXPECT_EQ(readString(provider, textField(9, 5)),
            (tStringRead{QUENRA_STATUS_SMBIOS_NOT_FOUND, 860, kUntouched}));
  EXPECT_EQ(readString(provider, kVersionText).text, "3.4");
  EXPECT_EQ(provider.loads(), 0);
}

TEST(Install, StatusWithAnError_KeepsTheOldTable) {
  tTestProvider provider(tableWith(42), "3.4");
  tStatus status;
  mergeStatus(status, -3, {"first", 1});
  provider.install(tableWith(43), std::string_view("2.0"), status);
  EXPECT_EQ(status.code, -3);
  EXPECT_EQ(readByteOf(provider), 42);
  EXPECT_STREQ(provider.versionText(), "3.4");
}

TEST(Clear, Table_IsGoneAndTheVersionStays) {
  tTestProvider provider(tableWith(42), "3.4");
  provider.clear();
  EXPECT_FALSE(provider.hasTable());
  EXPECT_STREQ(provider.versionText(), "3.4");
}

TEST(Clear, NextReader_LoadsAgain) {
  tTestProvider provider(tableWith(42));
  provider.loadWill(tableWith(43));
  provider.clear();
  EXPECT_EQ(readByteOf(provider), 43);
  EXPECT_EQ(provider.loads(), 1);
}

TEST(Clear, WithoutATable_IsAllowed) {
  tTestProvider provider;
  provider.clear();
  provider.clear();
  EXPECT_FALSE(provider.hasTable());
}

TEST(Readers, OnSeveralThreads_SeeTheSameTable) {
  tTestProvider provider(tableWith(42));
  std::atomic<int> wrong = 0;
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([&] {
      for (int repeat = 0; repeat < 500; ++repeat) {
        wrong += readByteOf(provider) != 42;
        wrong += readString(provider, textField(9, 5)).text != "text";
        wrong += readString(provider, kVersionText).text != "3.4";
      }
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  EXPECT_EQ(wrong, 0);
}

// ---- Damaged tables ----

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

struct tReading {
  int32_t code;
  uint64_t number;
  std::string text;
  bool operator==(const tReading&) const = default;
};
using tFieldOfInstance = std::tuple<tFieldId, uint32_t>;
using tReadings = std::map<tFieldOfInstance, tReading>;

std::ostream& operator<<(std::ostream& out, const tReading& reading) {
  return out << "code " << reading.code << ", number " << reading.number << ", '" << reading.text
             << "'";
}

template <class Value>
tReading readNumber(tTestProvider& provider, tFieldId field, uint32_t instance,
                    int32_t (cZoSmBiosProvider::*read)(tFieldId, uint32_t, Value*) noexcept) {
  Value value = 0;
  const int32_t code = (provider.*read)(field, instance, &value);
  return {code, value, ""};
}

tReading readField(tTestProvider& provider, tFieldId field, uint32_t instance) {
  switch (widthClassOf(field)) {
    case tWidthClass::byte:
      return readNumber(provider, field, instance, &cZoSmBiosProvider::readByte);
    case tWidthClass::word:
      return readNumber(provider, field, instance, &cZoSmBiosProvider::readWord);
    case tWidthClass::quadWord:
      return readNumber(provider, field, instance, &cZoSmBiosProvider::readQword);
    case tWidthClass::text:
    case tWidthClass::doubleWord:
    case tWidthClass::provider:
      break;
  }
  const tStringRead read = readString(provider, field, instance);
  return {read.code, 0, read.code == 0 ? read.text : ""};
}

// Every reader on every field of every structure of goodTable, and on a few past their ends.
tReadings readEverything(const std::vector<uint8_t>& table) {
  constexpr std::array kWidths{tWidthClass::text, tWidthClass::byte, tWidthClass::word,
                               tWidthClass::quadWord};
  tTestProvider provider(table);
  tReadings readings;
  for (const uint8_t type : std::initializer_list<uint8_t>{0, 1, 17, 127, 150}) {
    for (uint32_t instance = 0; instance < 3; ++instance) {
      for (uint8_t offset = 0; offset < 15; ++offset) {
        for (const tWidthClass width : kWidths) {
          const tFieldId field = makeFieldId(width, type, offset);
          readings[{field, instance}] = readField(provider, field, instance);
        }
      }
    }
  }
  return readings;
}

bool isKnownCode(int32_t code) {
  return code == 0 || code == QUENRA_STATUS_SMBIOS_NO_STRING ||
         code == QUENRA_STATUS_SMBIOS_NOT_FOUND || code == QUENRA_STATUS_SMBIOS_MALFORMED;
}

TEST(TruncatedTable, EveryPrefix_ReadsAsTheCompleteTableOrFails) {
  const std::vector<uint8_t> complete = goodTable();
  const tReadings expected = readEverything(complete);
  for (size_t size = 0; size < complete.size(); ++size) {
    SCOPED_TRACE(size);
    const std::vector<uint8_t> prefix(complete.begin(),
                                      complete.begin() + static_cast<ptrdiff_t>(size));
    for (const auto& [field, reading] : readEverything(prefix)) {
      ASSERT_TRUE(isKnownCode(reading.code)) << reading.code;
      ASSERT_TRUE(reading.code < 0 || reading == expected.at(field))
          << "field " << std::hex << std::get<0>(field);
    }
  }
}

TEST(TruncatedTable, CompleteTable_IsRead) {
  const tReadings readings = readEverything(goodTable());
  EXPECT_EQ(readings.at({textField(0, 5), 0}), (tReading{0, 0, "second"}));
  EXPECT_EQ(readings.at({textField(17, 4), 1}), (tReading{0, 0, "zzz2"}));
  EXPECT_EQ(readings.at({byteField(17, 8), 1}), (tReading{0, 5, ""}));
  EXPECT_EQ(readings.at({quadWordField(0, 5), 0}), (tReading{0, 0x0908070605040302, ""}));
  EXPECT_EQ(readings.at({textField(150, 4), 0}), (tReading{QUENRA_STATUS_SMBIOS_NO_STRING, 0, ""}));
}

TEST(DamagedTable, EveryByteChangedInTurn_IsReadWithinItsBounds) {
  const std::vector<uint8_t> complete = goodTable();
  for (size_t position = 0; position < complete.size(); ++position) {
    for (const uint8_t value : std::initializer_list<uint8_t>{0, 1, 255}) {
      std::vector<uint8_t> damaged = complete;
      damaged[position] = value;
      for (const auto& [field, reading] : readEverything(damaged)) {
        ASSERT_TRUE(isKnownCode(reading.code)) << reading.code << " at " << position;
        ASSERT_LE(reading.text.size(), 128u) << position;
      }
    }
  }
}

TEST(DamagedTable, RandomTables_AreReadWithinItsBounds) {
  std::mt19937 random(3);
  for (int i = 0; i < 300; ++i) {
    for (const auto& [field, reading] : readEverything(randomTable(random))) {
      ASSERT_TRUE(isKnownCode(reading.code)) << reading.code << " in table " << i;
    }
  }
}

}  // namespace
}  // namespace nTests
