#include <gtest/gtest.h>

#include <memory>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "tests/component/zosmbios/ttestprovider.h"

namespace nTests {
namespace {

using namespace nQUENRA1400::nZOSMBIOS_1_1;
using nZOAPALS100::tStatus;

const std::vector<uint8_t> kTable{127, 4, 0, 0, 0, 0};

TEST(VersionText, Installed_IsRead) {
  tTestProvider provider(kTable, "3.4");
  EXPECT_EQ(readString(provider, 0xF0001), (tStringRead{0, 0, "3.4"}));
  EXPECT_STREQ(provider.versionText(), "3.4");
}

TEST(VersionText, Empty_IsAnEmptyTextWithoutWarning) {
  tTestProvider provider(kTable, "");
  EXPECT_EQ(readString(provider, 0xF0001), (tStringRead{0, 0, ""}));
}

struct tVersion {
  size_t handedOver;
  size_t kept;
};

std::ostream& operator<<(std::ostream& out, const tVersion& version) {
  return out << version.handedOver << " bytes";
}

class VersionLength : public testing::TestWithParam<tVersion> {};

TEST_P(VersionLength, WithoutNul_KeepsAtMost255Bytes) {
  tTestProvider provider(kTable, std::string(GetParam().handedOver, 'v'));
  EXPECT_EQ(readString(provider, 0xF0001), (tStringRead{0, 0, std::string(GetParam().kept, 'v')}));
}

TEST_P(VersionLength, LongerTextBefore_LeavesNothing) {
  tTestProvider provider(kTable, std::string(255, 'x'));
  tStatus status;
  provider.install(kTable, std::string(GetParam().handedOver, 'v'), status);
  EXPECT_EQ(provider.versionText(), std::string(GetParam().kept, 'v'));
}

INSTANTIATE_TEST_SUITE_P(Bytes, VersionLength,
                         testing::Values(tVersion{0, 0}, tVersion{1, 1}, tVersion{254, 254},
                                         tVersion{255, 255}, tVersion{256, 255},
                                         tVersion{1024, 255}));

TEST(VersionText, Nul_EndsIt) {
  tTestProvider provider(kTable, std::string_view("3.4\0more", 8));
  EXPECT_EQ(readString(provider, 0xF0001).text, "3.4");
}

TEST(VersionText, AnyOtherByte_IsPartOfIt) {
  std::string text;
  for (int byte = 1; byte < 256; ++byte) {
    text += static_cast<char>(byte);
  }
  tTestProvider provider(kTable, text);
  EXPECT_EQ(provider.versionText(), text);
}

TEST(VersionText, NulAtByte255And256_AreTheSame) {
  for (const size_t nul : {254u, 255u}) {
    std::string text(300, 'v');
    text[nul] = '\0';
    tTestProvider provider(kTable, text);
    EXPECT_EQ(provider.versionText(), std::string(nul, 'v'));
  }
}

TEST(VersionText, BufferOneByteTooSmall_TellsTheSizeNeeded) {
  tTestProvider provider(kTable, "3.4");
  const auto buffer = std::make_unique<char[]>(3);
  buffer[0] = '#';
  tStatus status;
  uint32_t size = 3;
  provider.getString(0xF0001, 0, buffer.get(), &size, status);
  EXPECT_EQ(status.code, -240051);
  EXPECT_EQ(status.line, 314u);
  EXPECT_EQ(size, 4u);
  EXPECT_EQ(buffer[0], '#');
}

TEST(VersionText, ExactBuffer_TakesTextAndNul) {
  tTestProvider provider(kTable, "3.4");
  const auto buffer = std::make_unique<char[]>(4);
  tStatus status;
  uint32_t size = 4;
  provider.getString(0xF0001, 0, buffer.get(), &size, status);
  EXPECT_EQ(status.code, 0);
  EXPECT_STREQ(buffer.get(), "3.4");
}

TEST(VersionText, SizeZero_NeedsNoBuffer) {
  tTestProvider provider(kTable, "3.4");
  tStatus status;
  uint32_t size = 0;
  provider.getString(0xF0001, 0, nullptr, &size, status);
  EXPECT_EQ(status.code, -240051);
  EXPECT_EQ(size, 4u);
}

TEST(VersionText, NoBufferOfSufficientSize_IsAnInvalidParameter) {
  tTestProvider provider(kTable, "3.4");
  tStatus status;
  uint32_t size = 4;
  provider.getString(0xF0001, 0, nullptr, &size, status);
  EXPECT_EQ(status.code, -52005);
  EXPECT_EQ(status.line, 302u);
}

TEST(VersionText, AnyOtherInstance_IsNotFound) {
  tTestProvider provider(kTable, "3.4");
  EXPECT_EQ(readString(provider, 0xF0001, 1), (tStringRead{-240052, 287, kUntouched}));
  EXPECT_EQ(readString(provider, 0xF0002, 1), (tStringRead{-240052, 287, kUntouched}));
}

TEST(VersionText, OtherProviderValues_AreNotFound) {
  tTestProvider provider(kTable, "3.4");
  for (const tFieldId field : {0xF0000u, 0xF0002u, 0xF0101u, 0xFFFFFu}) {
    EXPECT_EQ(readString(provider, field), (tStringRead{-240052, 325, kUntouched}));
  }
}

TEST(VersionText, BitsAboveTheWidthClass_AreIgnored) {
  tTestProvider provider(kTable, "3.4");
  EXPECT_EQ(readString(provider, 0xFFFF0001), (tStringRead{0, 0, "3.4"}));
}

TEST(VersionText, WithoutATable_IsLoaded) {
  tTestProvider provider;
  provider.loadWill(kTable);
  EXPECT_EQ(readString(provider, 0xF0001).text, "2.8");
  EXPECT_EQ(provider.loads(), 1);
}

}  // namespace
}  // namespace nTests
