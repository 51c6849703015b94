#include "source/user/update/tmartenmarker.h"

#include <string>

#include "quenra_attributes.h"
#include "quenra_status.h"
#include "tests/component/user/readingtest.h"

namespace nTests {
namespace {

using namespace std::string_literals;

constexpr uint32_t kVersion = QUENRA_ATTRIBUTE_FIRMWARE_VERSION;

class MartenText : public testing::Test {
 protected:
  std::string read() {
    zoerr::tOwnedStatus status;
    std::string text = nQUENRA1400::readMartenText(marten, kVersion, status);
    failure = failureOf(status);
    return text;
  }

  tScriptedMarten marten;
  tFailure failure{};  // of the last read
};

TEST_F(MartenText, WithNul_EndsBeforeIt) {
  marten.replyWithText(kVersion, "1.4.0f7");
  EXPECT_EQ(read(), "1.4.0f7");
  EXPECT_EQ(failure, (tFailure{QUENRA_STATUS_SUCCESS, 0}));
  EXPECT_THAT(marten.requests, testing::ElementsAre(tAttributeRequest{kVersion, 0, 0},
                                                    tAttributeRequest{kVersion, 8, 0}));
  marten.replies[kVersion] = {"1.4\0f7"s, 0};
  EXPECT_EQ(read(), "1.4");
}

// An update writes the version without a NUL.
TEST_F(MartenText, WithoutNul_IsComplete) {
  marten.replies[kVersion] = {"0.0.0f0", 0};
  EXPECT_EQ(read(), "0.0.0f0");
  EXPECT_EQ(failure, (tFailure{QUENRA_STATUS_SUCCESS, 0}));
}

TEST_F(MartenText, Empty_IsReadWithOneRequest) {
  marten.replies[kVersion] = {"", 0};
  EXPECT_EQ(read(), "");
  EXPECT_EQ(failure, (tFailure{QUENRA_STATUS_SUCCESS, 0}));
  EXPECT_EQ(marten.requests.size(), 1u);
}

TEST_F(MartenText, DriverWarning_IsReportedWithTheText) {
  marten.replies[kVersion] = {"1.4.0f7", 9};
  EXPECT_EQ(read(), "1.4.0f7");
  EXPECT_EQ(failure, (tFailure{9, 3}));
}

TEST_F(MartenText, DriverFailure_IsReportedWithoutAText) {
  EXPECT_EQ(read(), "");
  EXPECT_EQ(failure, (tFailure{QUENRA_STATUS_NOT_SUPPORTED, 1}));
  EXPECT_EQ(marten.requests.size(), 1u);
}

TEST_F(MartenText, ImplausibleSize_IsOutOfMemoryWithoutASecondRequest) {
  marten.replies[kVersion] = {std::string((1 << 20) + 1, 'x'), 0};
  EXPECT_EQ(read(), "");
  EXPECT_EQ(failure, (tFailure{QUENRA_STATUS_OUT_OF_MEMORY, 1701}));
  EXPECT_EQ(marten.requests.size(), 1u);
  marten.replies[kVersion].bytes.resize(1 << 20);
  EXPECT_EQ(read().size(), 1u << 20);
}

}  // namespace
}  // namespace nTests
