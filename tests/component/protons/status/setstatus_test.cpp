#include <gtest/gtest.h>

#include <ostream>
#include <string>

#include "tests/component/protons/status/descriptiontext.h"
#include "zoapal/protons/status/zoerrstatus.h"

namespace nTests {
namespace {

using nZOAPALS100::tSourceLocation;
using zoerr::tOwnedStatus;

constexpr tSourceLocation kSelector{"arkroutingadaptor", 450, "quenra", "zopalerr_badSelector"};
constexpr tSourceLocation kOther{"other", 7};

TEST(SetStatus, Fresh_HoldsNothing) {
  const tOwnedStatus status;
  EXPECT_EQ(status.code, 0);
  EXPECT_EQ(status.capacity, 0u);
  EXPECT_EQ(status.reallocate, &zoerr::defaultReallocate);
  EXPECT_EQ(status.description, nullptr);
}

TEST(SetStatus, FirstError_DescribesItsLocation) {
  tOwnedStatus status;
  EXPECT_TRUE(status.set(-50003, kSelector));
  EXPECT_EQ(status.code, -50003);
  EXPECT_EQ(status.capacity, 512u);
  EXPECT_EQ(descriptionOf(status),
            R"({"file":"arkroutingadaptor","line":450,"component":"quenra"})");
}

TEST(SetStatus, WithConstant_BeginsWithTheConstant) {
  tOwnedStatus status;
  EXPECT_TRUE(status.setWithConstant(-50003, kSelector));
  EXPECT_EQ(status.code, -50003);
  EXPECT_EQ(status.capacity, 512u);
  EXPECT_EQ(descriptionOf(status),
            R"({"error_constant":"zopalerr_badSelector","file":"arkroutingadaptor",)"
            R"("line":450,"component":"quenra"})");
}

// Both setters follow the merge rule.
struct tSetter {
  const char* name;
  bool (zoerr::Status::*set)(int32_t, const tSourceLocation&) noexcept;
};
std::ostream& operator<<(std::ostream& out, const tSetter& setter) {
  return out << setter.name;
}

class Setter : public testing::TestWithParam<tSetter> {
 protected:
  static bool set(zoerr::Status& status, int32_t code, const tSourceLocation& location) {
    return (status.*GetParam().set)(code, location);
  }
};
INSTANTIATE_TEST_SUITE_P(Both, Setter,
                         testing::Values(tSetter{"set", &zoerr::Status::set},
                                         tSetter{"setWithConstant",
                                                 &zoerr::Status::setWithConstant}));

TEST_P(Setter, Success_ChangesNothing) {
  tOwnedStatus status;
  EXPECT_FALSE(set(status, 0, kSelector));
  EXPECT_EQ(status.code, 0);
  EXPECT_EQ(status.description, nullptr);
}

TEST_P(Setter, SecondError_LeavesTheFirstWithItsDescription) {
  tOwnedStatus status;
  set(status, -3, kOther);
  const std::string first = descriptionOf(status);
  EXPECT_FALSE(set(status, -9, kSelector));
  EXPECT_EQ(status.code, -3);
  EXPECT_EQ(descriptionOf(status), first);
}

TEST_P(Setter, SecondWarning_LeavesTheFirstWithItsDescription) {
  tOwnedStatus status;
  set(status, 5, kOther);
  const std::string first = descriptionOf(status);
  EXPECT_FALSE(set(status, 7, kSelector));
  EXPECT_EQ(status.code, 5);
  EXPECT_EQ(descriptionOf(status), first);
}

TEST_P(Setter, ErrorOnAWarning_ReplacesCodeAndDescription) {
  tOwnedStatus status;
  set(status, 5, kSelector);
  EXPECT_TRUE(set(status, -3, {"x", 1, "y", "z"}));
  tOwnedStatus alone;
  set(alone, -3, {"x", 1, "y", "z"});
  EXPECT_EQ(status.code, -3);
  EXPECT_EQ(descriptionOf(status), descriptionOf(alone));
}

TEST(SetStatus, BackslashInThePath_IsDoubled) {
  tOwnedStatus status;
  status.set(-3, {"source\\user\\\"file\"", 1});
  EXPECT_EQ(descriptionOf(status),
            R"({"file":"source\\user\\\"file\"","line":1,"component":"quenra"})");
}

TEST(SetStatus, LineAboveTheSignedRange_ShowsAsANegativeNumber) {
  tOwnedStatus status;
  status.set(-3, {"f", 0x80000000u});
  EXPECT_EQ(descriptionOf(status), R"({"file":"f","line":-2147483648,"component":"quenra"})");
}

TEST(SetStatus, FileOfFiveThousandCharacters_GrowsTheDescription) {
  tOwnedStatus status;
  const std::string file(5000, 'f');
  EXPECT_TRUE(status.set(-3, {file.c_str(), 1}));
  EXPECT_EQ(status.capacity, 8192u);
  EXPECT_EQ(descriptionOf(status), R"({"file":")" + file + R"(","line":1,"component":"quenra"})");
}

TEST(SetStatus, ConstantOfFiveThousandCharacters_GrowsTheDescription) {
  tOwnedStatus status;
  const std::string constant(5000, 'c');
  EXPECT_TRUE(status.setWithConstant(-3, {"f", 1, "quenra", constant.c_str()}));
  EXPECT_EQ(status.capacity, 8192u);
  EXPECT_EQ(descriptionOf(status),
            R"({"error_constant":")" + constant + R"(","file":"f","line":1,"component":"quenra"})");
}

TEST(SetStatus, AnyLengthOfFile_GivesSoundDescriptions) {
  for (size_t length = 400; length < 1100; ++length) {
    tOwnedStatus status;
    const std::string file(length, 'f');
    status.setWithConstant(-3, {file.c_str(), 12345, "quenra", "constant"});
    ASSERT_EQ(descriptionOf(status), R"({"error_constant":"constant","file":")" + file +
                                         R"(","line":12345,"component":"quenra"})");
  }
}

TEST(ClearStatus, Error_LeavesAFreshStatus) {
  tOwnedStatus status;
  status.set(-3, kOther);
  status.clear();
  EXPECT_EQ(status.code, 0);
  EXPECT_EQ(status.capacity, 0u);
  EXPECT_EQ(status.description, nullptr);
  EXPECT_TRUE(status.set(-9, kSelector));
}

}  // namespace
}  // namespace nTests
