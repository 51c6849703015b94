#include <gtest/gtest.h>

#include <string>

#include "tests/component/protons/status/clientheap.h"
#include "tests/component/protons/status/descriptiontext.h"
#include "tests/component/protons/status/tstatusbytes.h"
#include "zoapal/protons/status/zoerrstatus.h"

namespace nTests {
namespace {

using nZOAPALS100::mergeStatus;
using nZOAPALS100::tStatus;
using zoerr::tOwnedStatus;

tStatus driverStatus(int32_t code, const char* component, const char* file, uint32_t line) {
  tStatus status;
  mergeStatus(status, code, component, file, line);
  return status;
}

TEST(MergeFrom, Success_ChangesNothing) {
  tOwnedStatus status;
  EXPECT_TRUE(status.mergeFrom(tStatus()));
  EXPECT_EQ(status.code, 0);
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
  EXPECT_TRUE(status.mergeFrom(driverStatus(-52003, "quenra", "tdeviceinterfaceproxy", 110)));
  EXPECT_EQ(status.code, -52003);
  EXPECT_EQ(status.capacity, 512u);
  EXPECT_EQ(descriptionOf(status),
            R"({"file":"tdeviceinterfaceproxy","line":110,"component":"quenra"})");
}

TEST(MergeFrom, Warning_StoresCodeAndLocation) {
  tOwnedStatus status;
  EXPECT_TRUE(status.mergeFrom(driverStatus(52011, "quenra", "f", 1)));
  EXPECT_EQ(status.code, 52011);
  EXPECT_EQ(descriptionOf(status), R"({"file":"f","line":1,"component":"quenra"})");
}

TEST(MergeFrom, ErrorOnAWarning_ReplacesCodeAndDescription) {
  tOwnedStatus status;
  status.setWithConstant(5, {"a long name of a file", 1, "quenra", "constant"});
  EXPECT_TRUE(status.mergeFrom(driverStatus(-3, "c", "f", 2)));
  EXPECT_EQ(status.code, -3);
  EXPECT_EQ(descriptionOf(status), R"({"file":"f","line":2,"component":"c"})");
}

TEST(MergeFrom, AnythingOnAnError_ChangesNothingAndSucceeds) {
  for (const int32_t code : {-9, 9}) {
    tOwnedStatus status;
    status.set(-3, {"f", 1});
    EXPECT_TRUE(status.mergeFrom(driverStatus(code, "c", "other", 2)));
    EXPECT_EQ(status.code, -3);
    EXPECT_EQ(descriptionOf(status), R"({"file":"f","line":1,"component":"quenra"})");
  }
}

TEST(MergeFrom, EmptyFile_LeavesOutFileAndLine) {
  tOwnedStatus status;
  EXPECT_TRUE(status.mergeFrom(driverStatus(-3, "quenra", "", 110)));
  EXPECT_EQ(descriptionOf(status), R"({"component":"quenra"})");
}

TEST(MergeFrom, EmptyComponent_LeavesOutTheComponent) {
  tOwnedStatus status;
  EXPECT_TRUE(status.mergeFrom(driverStatus(-3, "", "f", 110)));
  EXPECT_EQ(descriptionOf(status), R"({"file":"f","line":110})");
}

TEST(MergeFrom, NoLocation_CreatesNoDescription) {
  tOwnedStatus status;
  EXPECT_TRUE(status.mergeFrom(driverStatus(-3, "", "", 0)));
  EXPECT_EQ(status.code, -3);
  EXPECT_EQ(status.description, nullptr);
}

TEST(MergeFrom, NoLocationOnADescribedWarning_EmptiesTheDescription) {
  tOwnedStatus status;
  status.set(5, {"f", 1});
  EXPECT_TRUE(status.mergeFrom(driverStatus(-3, "", "", 0)));
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
  tStatus almostFull = driverStatus(-3, "quenra", "f", 1);
  almostFull.structSize = 207;
  tOwnedStatus status;
  EXPECT_TRUE(status.mergeFrom(almostFull));
  EXPECT_EQ(status.code, -3);
  EXPECT_EQ(status.description, nullptr);
}

TEST(MergeFrom, LargerRecord_CountsAsAFullOne) {
  tStatus larger = driverStatus(-3, "quenra", "f", 1);
  larger.structSize = 300;
  tOwnedStatus status;
  EXPECT_TRUE(status.mergeFrom(larger));
  EXPECT_EQ(descriptionOf(status), R"({"file":"f","line":1,"component":"quenra"})");
}

TEST(MergeFrom, Client_ReceivesOneRequestForCapacity) {
  const tClientHeap client;
  zoerr::Status status;
  status.reallocate = &tClientHeap::giveExactly;
  EXPECT_TRUE(status.mergeFrom(driverStatus(-3, "quenra", "f", 1)));
  EXPECT_EQ(tClientHeap::requests(), std::vector<uint32_t>{258});
  EXPECT_EQ(descriptionOf(status), R"({"file":"f","line":1,"component":"quenra"})");
}

TEST(MergeFrom, DescriptionSmallerThanALocation_IsGrownFirst) {
  const tClientHeap client;
  zoerr::Status status = tClientHeap::statusWithDescription(257);
  EXPECT_TRUE(status.mergeFrom(driverStatus(-3, "quenra", "f", 1)));
  EXPECT_EQ(tClientHeap::requests(), std::vector<uint32_t>{258});
  EXPECT_EQ(descriptionOf(status), R"({"file":"f","line":1,"component":"quenra"})");
}

TEST(MergeFrom, EscapesThatExceedTheCapacity_GrowItUntilTheyFit) {
  const tClientHeap client;
  zoerr::Status status;
  status.reallocate = &tClientHeap::giveExactly;
  const std::string file(100, '\x01');
  EXPECT_TRUE(status.mergeFrom(driverStatus(-3, "quenra", file.c_str(), 1)));
  EXPECT_EQ(tClientHeap::requests(), (std::vector<uint32_t>{258, 512, 1020}));
  EXPECT_EQ(descriptionOf(status).substr(0, 21), R"({"file":"\u0001\u0001)");
  EXPECT_EQ(descriptionOf(status).size(),
            600 + std::string(R"({"file":"","line":1,"component":"quenra"})").size());
}

TEST(MergeFrom, RefusedMemory_FailsAndKeepsTheCode) {
  const tClientHeap client;
  zoerr::Status status;
  status.reallocate = &tClientHeap::refuse;
  EXPECT_FALSE(status.mergeFrom(driverStatus(-3, "quenra", "f", 1)));
  EXPECT_EQ(status.code, -3);
  EXPECT_EQ(status.description, nullptr);
}

TEST(MergeFrom, RefusedMemoryNotNeeded_Succeeds) {
  const tClientHeap client;
  zoerr::Status status;
  status.reallocate = &tClientHeap::refuse;
  EXPECT_TRUE(status.mergeFrom(driverStatus(-3, "", "", 0)));
  EXPECT_TRUE(tClientHeap::requests().empty());
}

TEST(MergeFrom, GrowthRefusedLater_FailsAndLeavesAValidDescription) {
  const tClientHeap client;
  zoerr::Status status;
  status.reallocate = &tClientHeap::giveUpTo600;
  const std::string file(100, '\x01');
  EXPECT_FALSE(status.mergeFrom(driverStatus(-3, "quenra", file.c_str(), 1)));
  EXPECT_EQ(status.code, -3);
  EXPECT_TRUE(isJson(descriptionOf(status)));
}

// The result reports failed allocations only: a description that rejects members is not one.
TEST(MergeFrom, ReallocatedBufferWithoutMarker_DropsTheLocationAndSucceeds) {
  const tClientHeap client;
  zoerr::Status status;
  status.reallocate = &tClientHeap::giveWithoutMarker;
  EXPECT_TRUE(status.mergeFrom(driverStatus(-3, "quenra", "f", 1)));
  EXPECT_EQ(status.code, -3);
  EXPECT_STREQ(status.description, "{}");
  EXPECT_EQ(tClientHeap::requests(), std::vector<uint32_t>{258});
}

TEST(MergeFrom, ReallocatedBufferWithUnusableText_DropsTheLocationAndSucceeds) {
  const tClientHeap client;
  zoerr::Status status;
  status.reallocate = &tClientHeap::giveUnusableText;
  EXPECT_TRUE(status.mergeFrom(driverStatus(-3, "quenra", "f", 1)));
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
  EXPECT_TRUE(status.mergeFrom(driverStatus(-3, "quenra", "f", 1)));
  EXPECT_EQ(status.code, -3);
  EXPECT_STREQ(status.description, "x");
}

}  // namespace
}  // namespace nTests
