// The string, size and code that getString returns for buffers of every size.
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <ostream>
#include <string>

#include "tests/builders/smbiostablebuilder.h"
#include "tests/component/zosmbios/ttestprovider.h"
#include "zosmbios/fieldid.h"

namespace nTests {
namespace {

using namespace nQUENRA1400::nZOSMBIOS_1_1;
using nZOAPALS100::tStatus;

constexpr tFieldId kField = textField(9, 4);

class StringSize : public testing::Test {
 protected:
  static constexpr uint32_t kNeeded = 6;  // "hello" and its NUL

  struct tOutcome {
    int32_t code;
    uint32_t line;
    uint32_t size;
    std::string bytes;
    bool operator==(const tOutcome&) const = default;
    friend std::ostream& operator<<(std::ostream& out, const tOutcome& outcome) {
      return out << "code " << outcome.code << " of line " << outcome.line << ", size "
                 << outcome.size << ", '" << outcome.bytes << "'";
    }
  };
  // Reads into a buffer of exactly the size.
  tOutcome readWith(uint32_t size) {
    const auto buffer = std::make_unique<char[]>(size);
    std::fill_n(buffer.get(), size, '#');
    tStatus status;
    uint32_t inOut = size;
    provider_.getString(kField, 0, buffer.get(), &inOut, status);
    return {status.code, status.line, inOut, std::string(buffer.get(), size)};
  }

  tTestProvider provider_{tSmbiosTableBuilder().structure(9, {1}, {"hello"}).build()};
};

TEST_F(StringSize, TooSmall_TellsTheSizeNeededAndStoresNothing) {
  for (uint32_t size = 0; size < kNeeded; ++size) {
    EXPECT_EQ(readWith(size), (tOutcome{-240051, 486, kNeeded, std::string(size, '#')}));
  }
}

TEST_F(StringSize, ExactSize_TakesTextAndNul) {
  EXPECT_EQ(readWith(kNeeded), (tOutcome{0, 0, kNeeded, std::string("hello\0", kNeeded)}));
}

TEST_F(StringSize, MoreThanNeeded_KeepsSizeAndRest) {
  EXPECT_EQ(readWith(9), (tOutcome{0, 0, 9, std::string("hello\0###", 9)}));
}

TEST_F(StringSize, ReportedSize_SufficesForTheSecondCall) {
  tStatus first;
  uint32_t size = 0;
  provider_.getString(kField, 0, nullptr, &size, first);
  ASSERT_EQ(first.code, -240051);
  EXPECT_EQ(readWith(size), (tOutcome{0, 0, kNeeded, std::string("hello\0", kNeeded)}));
}

TEST_F(StringSize, NoBufferOfSufficientSize_IsAnInvalidParameter) {
  tStatus status;
  uint32_t size = kNeeded;
  provider_.getString(kField, 0, nullptr, &size, status);
  EXPECT_EQ(status.code, -52005);
  EXPECT_EQ(status.line, 487u);
  EXPECT_EQ(size, kNeeded);
}

TEST_F(StringSize, NoSize_IsAnInvalidParameter) {
  tStatus status;
  char buffer = '#';
  provider_.getString(kField, 0, &buffer, nullptr, status);
  EXPECT_EQ(status.code, -52005);
  EXPECT_EQ(status.line, 488u);
  EXPECT_EQ(buffer, '#');
}

}  // namespace
}  // namespace nTests
