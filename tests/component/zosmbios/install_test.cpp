#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <string_view>
#include <thread>
#include <vector>

#include "tests/builders/smbiostablebuilder.h"
#include "tests/component/zosmbios/ttestprovider.h"
#include "zosmbios/fieldid.h"

namespace nTests {
namespace {

using namespace nQUENRA1400::nZOSMBIOS_1_1;
using nZOAPALS100::tStatus;

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
  EXPECT_EQ(readByteOf(provider), -240052);
  EXPECT_EQ(readString(provider, textField(9, 5)), (tStringRead{-240052, 860, kUntouched}));
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

TEST(Clear, NothingThere_IsAllowed) {
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

}  // namespace
}  // namespace nTests
