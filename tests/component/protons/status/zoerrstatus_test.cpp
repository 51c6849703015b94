#include "zoapal/protons/status/zoerrstatus.h"

#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <string_view>

#include "quenra_status.h"
#include "tests/component/protons/status/descriptiontext.h"
#include "tests/component/protons/status/tstatusbytes.h"

namespace nTests {
namespace {

using nZOAPALS100::mergeStatus;
using nZOAPALS100::tSourceLocation;
using nZOAPALS100::tStatus;
using zoerr::tOwnedStatus;

// ---- Setting ----

constexpr tSourceLocation kSelector{"arkroutingadaptor", 450, "quenra", "zopalerr_badSelector"};
constexpr tSourceLocation kOther{"other", 7};

TEST(SetStatus, Fresh_HoldsNothing) {
  const tOwnedStatus status;
  EXPECT_EQ(status.code, QUENRA_STATUS_SUCCESS);
  EXPECT_EQ(status.capacity, 0u);
  EXPECT_EQ(status.reallocate, &zoerr::defaultReallocate);
  EXPECT_EQ(status.description, nullptr);
}

TEST(SetStatus, FirstError_DescribesItsLocation) {
  tOwnedStatus status;
  EXPECT_TRUE(status.set(QUENRA_STATUS_BAD_SELECTOR, kSelector));
  EXPECT_EQ(status.code, QUENRA_STATUS_BAD_SELECTOR);
  EXPECT_EQ(status.capacity, 512u);
  EXPECT_EQ(descriptionOf(status),
            R"({"file":"arkroutingadaptor","line":450,"component":"quenra"})");
}

TEST(SetStatus, WithConstant_BeginsWithTheConstant) {
  tOwnedStatus status;
  EXPECT_TRUE(status.setWithConstant(QUENRA_STATUS_BAD_SELECTOR, kSelector));
  EXPECT_EQ(status.code, QUENRA_STATUS_BAD_SELECTOR);
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
  EXPECT_EQ(status.code, QUENRA_STATUS_SUCCESS);
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
  EXPECT_EQ(status.code, QUENRA_STATUS_SUCCESS);
  EXPECT_EQ(status.capacity, 0u);
  EXPECT_EQ(status.description, nullptr);
  EXPECT_TRUE(status.set(-9, kSelector));
}

// ---- Merging a driver-layer status ----

tStatus driverStatus(int32_t code, const tSourceLocation& location) {
  tStatus status;
  mergeStatus(status, code, location);
  return status;
}

TEST(MergeFrom, Success_ChangesNothing) {
  tOwnedStatus status;
  EXPECT_TRUE(status.mergeFrom(tStatus()));
  EXPECT_EQ(status.code, QUENRA_STATUS_SUCCESS);
  EXPECT_EQ(status.description, nullptr);
}

TEST(MergeFrom, SuccessOnAWarning_KeepsTheWarningAndItsDescription) {
  tOwnedStatus status;
  status.set(5, {"f", 1});
  EXPECT_TRUE(status.mergeFrom(tStatus()));
  EXPECT_EQ(status.code, 5);
  EXPECT_EQ(descriptionOf(status), R"({"file":"f","line":1,"component":"quenra"})");
}

TEST(MergeFrom, Error_StoresCodeAndLocation) {
  tOwnedStatus status;
  EXPECT_TRUE(status.mergeFrom(
      driverStatus(QUENRA_STATUS_GENERIC_FAILURE, {"tdeviceinterfaceproxy", 110})));
  EXPECT_EQ(status.code, QUENRA_STATUS_GENERIC_FAILURE);
  EXPECT_EQ(status.capacity, 512u);
  EXPECT_EQ(descriptionOf(status),
            R"({"file":"tdeviceinterfaceproxy","line":110,"component":"quenra"})");
}

TEST(MergeFrom, Warning_StoresCodeAndLocation) {
  tOwnedStatus status;
  EXPECT_TRUE(status.mergeFrom(driverStatus(QUENRA_STATUS_IO_PENDING, {"f", 1})));
  EXPECT_EQ(status.code, QUENRA_STATUS_IO_PENDING);
  EXPECT_EQ(descriptionOf(status), R"({"file":"f","line":1,"component":"quenra"})");
}

TEST(MergeFrom, ErrorOnAWarning_ReplacesCodeAndDescription) {
  tOwnedStatus status;
  status.setWithConstant(5, {"a long name of a file", 1, "quenra", "constant"});
  EXPECT_TRUE(status.mergeFrom(driverStatus(-3, {"f", 2, "c"})));
  EXPECT_EQ(status.code, -3);
  EXPECT_EQ(descriptionOf(status), R"({"file":"f","line":2,"component":"c"})");
}

TEST(MergeFrom, AnythingOnAnError_ChangesNothingAndSucceeds) {
  for (const int32_t code : {-9, 9}) {
    tOwnedStatus status;
    status.set(-3, {"f", 1});
    EXPECT_TRUE(status.mergeFrom(driverStatus(code, {"other", 2, "c"})));
    EXPECT_EQ(status.code, -3);
    EXPECT_EQ(descriptionOf(status), R"({"file":"f","line":1,"component":"quenra"})");
  }
}

TEST(MergeFrom, EmptyFile_LeavesOutFileAndLine) {
  tOwnedStatus status;
  EXPECT_TRUE(status.mergeFrom(driverStatus(-3, {"", 110})));
  EXPECT_EQ(descriptionOf(status), R"({"component":"quenra"})");
}

TEST(MergeFrom, EmptyComponent_LeavesOutTheComponent) {
  tOwnedStatus status;
  EXPECT_TRUE(status.mergeFrom(driverStatus(-3, {"f", 110, ""})));
  EXPECT_EQ(descriptionOf(status), R"({"file":"f","line":110})");
}

TEST(MergeFrom, NoLocation_CreatesNoDescription) {
  tOwnedStatus status;
  EXPECT_TRUE(status.mergeFrom(driverStatus(-3, {"", 0, ""})));
  EXPECT_EQ(status.code, -3);
  EXPECT_EQ(status.description, nullptr);
}

TEST(MergeFrom, NoLocationOnADescribedWarning_EmptiesTheDescription) {
  tOwnedStatus status;
  status.set(5, {"f", 1});
  EXPECT_TRUE(status.mergeFrom(driverStatus(-3, {"", 0, ""})));
  EXPECT_EQ(status.code, -3);
  EXPECT_EQ(descriptionOf(status), "{}");
}

TEST(MergeFrom, ShortRecordOfEightBytes_StoresItsCodeAndReadsNothingElse) {
  tOwnedStatus status;
  const tStatusBytes shortRecord(8, 8, -3);
  EXPECT_TRUE(status.mergeFrom(shortRecord.record()));
  EXPECT_EQ(status.code, -3);
  EXPECT_EQ(status.description, nullptr);
}

TEST(MergeFrom, ShortRecordOnADescribedWarning_EmptiesTheDescription) {
  tOwnedStatus status;
  status.set(5, {"f", 1});
  const tStatusBytes shortRecord(8, 8, -3);
  EXPECT_TRUE(status.mergeFrom(shortRecord.record()));
  EXPECT_EQ(descriptionOf(status), "{}");
}

TEST(MergeFrom, RecordOneByteShort_StoresItsCodeOnly) {
  tStatus almostFull = driverStatus(-3, {"f", 1});
  almostFull.structSize = 207;
  tOwnedStatus status;
  EXPECT_TRUE(status.mergeFrom(almostFull));
  EXPECT_EQ(status.code, -3);
  EXPECT_EQ(status.description, nullptr);
}

TEST(MergeFrom, LargerRecord_CountsAsAFullOne) {
  tStatus larger = driverStatus(-3, {"f", 1});
  larger.structSize = 300;
  tOwnedStatus status;
  EXPECT_TRUE(status.mergeFrom(larger));
  EXPECT_EQ(descriptionOf(status), R"({"file":"f","line":1,"component":"quenra"})");
}

TEST(MergeFrom, Client_ReceivesOneRequestForCapacity) {
  const tClientHeap client;
  zoerr::Status status;
  status.reallocate = &tClientHeap::giveExactly;
  EXPECT_TRUE(status.mergeFrom(driverStatus(-3, {"f", 1})));
  EXPECT_EQ(tClientHeap::requests(), std::vector<uint32_t>{258});
  EXPECT_EQ(descriptionOf(status), R"({"file":"f","line":1,"component":"quenra"})");
}

TEST(MergeFrom, DescriptionSmallerThanALocation_IsGrownFirst) {
  const tClientHeap client;
  zoerr::Status status = tClientHeap::statusWithDescription(257);
  EXPECT_TRUE(status.mergeFrom(driverStatus(-3, {"f", 1})));
  EXPECT_EQ(tClientHeap::requests(), std::vector<uint32_t>{258});
  EXPECT_EQ(descriptionOf(status), R"({"file":"f","line":1,"component":"quenra"})");
}

TEST(MergeFrom, EscapesThatExceedTheCapacity_GrowItUntilTheyFit) {
  const tClientHeap client;
  zoerr::Status status;
  status.reallocate = &tClientHeap::giveExactly;
  const std::string file(100, '\x01');
  EXPECT_TRUE(status.mergeFrom(driverStatus(-3, {file.c_str(), 1})));
  EXPECT_EQ(tClientHeap::requests(), (std::vector<uint32_t>{258, 512, 1020}));
  EXPECT_EQ(descriptionOf(status).substr(0, 21), R"({"file":"\u0001\u0001)");
  EXPECT_EQ(descriptionOf(status).size(),
            600 + std::string(R"({"file":"","line":1,"component":"quenra"})").size());
}

TEST(MergeFrom, RefusedMemory_FailsAndKeepsTheCode) {
  const tClientHeap client;
  zoerr::Status status;
  status.reallocate = &tClientHeap::refuse;
  EXPECT_FALSE(status.mergeFrom(driverStatus(-3, {"f", 1})));
  EXPECT_EQ(status.code, -3);
  EXPECT_EQ(status.description, nullptr);
}

TEST(MergeFrom, RefusedMemoryNotNeeded_Succeeds) {
  const tClientHeap client;
  zoerr::Status status;
  status.reallocate = &tClientHeap::refuse;
  EXPECT_TRUE(status.mergeFrom(driverStatus(-3, {"", 0, ""})));
  EXPECT_TRUE(tClientHeap::requests().empty());
}

TEST(MergeFrom, GrowthRefusedLater_FailsAndLeavesAValidDescription) {
  const tClientHeap client;
  zoerr::Status status;
  status.reallocate = &tClientHeap::giveUpTo600;
  const std::string file(100, '\x01');
  EXPECT_FALSE(status.mergeFrom(driverStatus(-3, {file.c_str(), 1})));
  EXPECT_EQ(status.code, -3);
  EXPECT_TRUE(isJson(descriptionOf(status)));
}

std::string repeated(std::string_view text, size_t count) {
  std::string all;
  for (; count > 0; --count) {
    all += text;
  }
  return all;
}

TEST(MergeFrom, GrowthRefusedForTheLine_FailsAndKeepsTheFile) {
  const tClientHeap client;
  zoerr::Status status = tClientHeap::statusWithDescription(258);
  status.reallocate = &tClientHeap::refuse;
  const std::string file = repeated("\x01", 40);
  EXPECT_FALSE(status.mergeFrom(driverStatus(-3, {file.c_str(), 1, ""})));
  EXPECT_EQ(status.code, -3);
  EXPECT_EQ(descriptionOf(status), R"({"file":")" + repeated("\\u0001", 40) + R"("})");
}

TEST(MergeFrom, GrowthRefusedForTheComponent_FailsAndKeepsFileAndLine) {
  const tClientHeap client;
  zoerr::Status status = tClientHeap::statusWithDescription(258);
  status.reallocate = &tClientHeap::refuse;
  const std::string file = repeated("\x01", 38);
  EXPECT_FALSE(status.mergeFrom(driverStatus(-3, {file.c_str(), 1})));
  EXPECT_EQ(status.code, -3);
  EXPECT_EQ(descriptionOf(status), R"({"file":")" + repeated("\\u0001", 38) + R"(","line":1})");
}

TEST(MergeFrom, RefusedMemoryForAComponentAlone_FailsAndKeepsTheCode) {
  const tClientHeap client;
  zoerr::Status status;
  status.reallocate = &tClientHeap::refuse;
  EXPECT_FALSE(status.mergeFrom(driverStatus(-3, {"", 0, "quenra"})));
  EXPECT_EQ(status.code, -3);
  EXPECT_EQ(status.description, nullptr);
}

// The result reports failed allocations only: a description that rejects members is not one.
TEST(MergeFrom, ReallocatedBufferWithoutMarker_DropsTheLocationAndSucceeds) {
  const tClientHeap client;
  zoerr::Status status;
  status.reallocate = &tClientHeap::giveWithoutMarker;
  EXPECT_TRUE(status.mergeFrom(driverStatus(-3, {"f", 1})));
  EXPECT_EQ(status.code, -3);
  EXPECT_STREQ(status.description, "{}");
  EXPECT_EQ(tClientHeap::requests(), std::vector<uint32_t>{258});
}

TEST(MergeFrom, ReallocatedBufferWithUnusableText_DropsTheLocationAndSucceeds) {
  const tClientHeap client;
  zoerr::Status status;
  status.reallocate = &tClientHeap::giveUnusableText;
  EXPECT_TRUE(status.mergeFrom(driverStatus(-3, {"f", 1})));
  EXPECT_EQ(status.code, -3);
  EXPECT_STREQ(status.description, "\"}");
  EXPECT_EQ(tClientHeap::requests(), std::vector<uint32_t>{258});
}

// The buffer is too small to be reset to "{}", and the client's function copies its text.
TEST(MergeFrom, TinyDescriptionWithUnusableText_DropsTheLocationAndSucceeds) {
  const tClientHeap client;
  zoerr::Status status = tClientHeap::statusWithDescription(3);
  status.description[0] = 'x';
  status.description[1] = '\0';
  EXPECT_TRUE(status.mergeFrom(driverStatus(-3, {"f", 1})));
  EXPECT_EQ(status.code, -3);
  EXPECT_STREQ(status.description, "x");
}

}  // namespace
}  // namespace nTests
