// Growth of the description: by the default function, and by a client's own function.
#include <gtest/gtest.h>

#include <ostream>
#include <string>

#include "tests/component/protons/status/descriptiontext.h"
#include "zoapal/protons/status/descriptionwriter.h"
#include "zoapal/protons/status/zoerrstatus.h"

namespace nTests {
namespace {

using nZOAPALS100::tSourceLocation;
using zoerr::defaultReallocate;
using zoerr::tOwnedStatus;

// ---- The default function ----

struct tGrowth {
  uint32_t request;
  uint32_t capacity;
};

std::ostream& operator<<(std::ostream& out, const tGrowth& growth) {
  return out << growth.request << " bytes";
}

class DefaultReallocate : public testing::TestWithParam<tGrowth> {};

TEST_P(DefaultReallocate, WithoutADescription_MakesAnEmptyOne) {
  tOwnedStatus status;
  ASSERT_TRUE(defaultReallocate(status, GetParam().request));
  EXPECT_EQ(status.capacity, GetParam().capacity);
  EXPECT_EQ(descriptionOf(status), "{}");
}

TEST_P(DefaultReallocate, WithADescription_KeepsItsText) {
  tOwnedStatus status;
  ASSERT_TRUE(status.set(-3, {"file", 1}));
  const std::string before = descriptionOf(status);
  ASSERT_TRUE(defaultReallocate(status, GetParam().request));
  EXPECT_EQ(status.capacity, GetParam().capacity);
  EXPECT_EQ(descriptionOf(status), before);
}

INSTANTIATE_TEST_SUITE_P(Requests, DefaultReallocate,
                         testing::Values(tGrowth{1, 512}, tGrowth{4, 512}, tGrowth{511, 512},
                                         tGrowth{512, 512}, tGrowth{513, 1024}, tGrowth{1020, 1024},
                                         tGrowth{1024, 1024}, tGrowth{1025, 2048},
                                         tGrowth{65537, 131072}));

TEST(DefaultReallocateOnce, SufficientCapacity_ChangesNothing) {
  tOwnedStatus status;
  ASSERT_TRUE(defaultReallocate(status, 600));
  const char* const buffer = status.description;
  for (const uint32_t request : {1u, 4u, 512u, 1023u, 1024u}) {
    EXPECT_TRUE(defaultReallocate(status, request));
    EXPECT_EQ(status.description, buffer);
    EXPECT_EQ(status.capacity, 1024u);
  }
}

TEST(DefaultReallocateOnce, TextShorterThanAnEmptyDescription_IsKeptAsItIs) {
  for (const std::string text : {"", "x"}) {
    tOwnedStatus status;
    ASSERT_TRUE(defaultReallocate(status, 4));
    text.copy(status.description, text.size());
    status.description[text.size()] = '\0';
    ASSERT_TRUE(defaultReallocate(status, 1024));
    EXPECT_EQ(std::string(status.description), text);
  }
}

TEST(DefaultReallocateOnce, Zero_FreesTheDescription) {
  tOwnedStatus status;
  ASSERT_TRUE(defaultReallocate(status, 4));
  EXPECT_TRUE(defaultReallocate(status, 0));
  EXPECT_EQ(status.capacity, 0u);
  EXPECT_EQ(status.description, nullptr);
}

TEST(DefaultReallocateOnce, ZeroWithoutADescription_Succeeds) {
  tOwnedStatus status;
  EXPECT_TRUE(defaultReallocate(status, 0));
  EXPECT_EQ(status.capacity, 0u);
  EXPECT_EQ(status.description, nullptr);
}

TEST(DefaultReallocateOnce, AboveTwoGigabytes_FailsAndKeepsTheBuffer) {
  tOwnedStatus status;
  ASSERT_TRUE(status.set(-3, {"file", 1}));
  const char* const buffer = status.description;
  for (const uint32_t request : {0x80000000u, 0xFFFFFFFFu}) {
    EXPECT_FALSE(defaultReallocate(status, request));
    EXPECT_EQ(status.description, buffer);
    EXPECT_EQ(status.capacity, 512u);
  }
}

// ---- The function of a client ----

constexpr tSourceLocation kPlace{"file", 1, "quenra", "constant"};

class ClientReallocation : public testing::Test {
 protected:
  using tReallocate = bool (*)(zoerr::Status&, uint32_t);

  static zoerr::Status statusOf(tReallocate reallocate) {
    zoerr::Status status;
    status.reallocate = reallocate;
    return status;
  }
  static void expectCodeWithoutDescription(const zoerr::Status& status) {
    EXPECT_EQ(status.code, -3);
    EXPECT_EQ(status.capacity, 0u);
    EXPECT_EQ(status.description, nullptr);
  }

  tClientHeap client_;
};

TEST_F(ClientReallocation, Refused_StoresTheCodeAlone) {
  zoerr::Status status = statusOf(&tClientHeap::refuse);
  EXPECT_TRUE(status.set(-3, kPlace));
  expectCodeWithoutDescription(status);
  EXPECT_EQ(tClientHeap::requests(), std::vector<uint32_t>{4});
}

TEST_F(ClientReallocation, RefusedForAConstant_StoresTheCodeAlone) {
  zoerr::Status status = statusOf(&tClientHeap::refuse);
  EXPECT_TRUE(status.setWithConstant(-3, kPlace));
  expectCodeWithoutDescription(status);
}

TEST_F(ClientReallocation, PretendedToHaveGrown_StoresTheCodeAlone) {
  zoerr::Status status = statusOf(&tClientHeap::pretend);
  EXPECT_TRUE(status.set(-3, kPlace));
  expectCodeWithoutDescription(status);
}

TEST_F(ClientReallocation, CapacityWithoutADescription_IsIgnored) {
  zoerr::Status status = statusOf(&tClientHeap::refuse);
  status.capacity = 100;
  EXPECT_TRUE(status.set(-3, kPlace));
  EXPECT_EQ(status.code, -3);
  EXPECT_EQ(status.description, nullptr);
}

TEST_F(ClientReallocation, MissingFunction_StoresTheCodeAlone) {
  zoerr::Status status = statusOf(nullptr);
  EXPECT_TRUE(status.set(-3, kPlace));
  expectCodeWithoutDescription(status);
  EXPECT_TRUE(statusOf(nullptr).setWithConstant(-3, kPlace));
}

TEST_F(ClientReallocation, ExactlyTheRequest_EndsWhereItNoLongerGrows) {
  zoerr::Status status = statusOf(&tClientHeap::giveExactly);
  EXPECT_TRUE(status.set(-3, kPlace));
  EXPECT_EQ(status.code, -3);
  EXPECT_EQ(tClientHeap::requests(), (std::vector<uint32_t>{4, 4}));
  EXPECT_EQ(descriptionOf(status), "{}");
}

TEST_F(ClientReallocation, DescriptionOfTheClient_GrowsByTwiceLessFour) {
  zoerr::Status status = tClientHeap::statusWithDescription(100);
  const std::string file(300, 'f');
  EXPECT_TRUE(status.set(-3, {file.c_str(), 1}));
  EXPECT_EQ(tClientHeap::requests(), (std::vector<uint32_t>{196, 388}));
  EXPECT_EQ(descriptionOf(status), R"({"file":")" + file + R"(","line":1,"component":"quenra"})");
}

TEST_F(ClientReallocation, RefusedAfterAMember_KeepsTheMembersThatFit) {
  zoerr::Status status = tClientHeap::statusWithDescription(24);
  status.reallocate = &tClientHeap::refuse;
  EXPECT_TRUE(status.set(-3, {"file", 1}));
  EXPECT_EQ(status.code, -3);
  EXPECT_EQ(descriptionOf(status), R"({"file":"file"})");
}

TEST_F(ClientReallocation, RefusedForTheComponent_KeepsFileAndLine) {
  zoerr::Status status = tClientHeap::statusWithDescription(30);
  status.reallocate = &tClientHeap::refuse;
  EXPECT_TRUE(status.set(-3, {"file", 1}));
  EXPECT_EQ(status.code, -3);
  EXPECT_EQ(descriptionOf(status), R"({"file":"file","line":1})");
}

TEST_F(ClientReallocation, RefusedAfterTheConstant_KeepsTheConstant) {
  zoerr::Status status = tClientHeap::statusWithDescription(36);
  status.reallocate = &tClientHeap::refuse;
  EXPECT_TRUE(status.setWithConstant(-3, kPlace));
  EXPECT_EQ(status.code, -3);
  EXPECT_EQ(descriptionOf(status), R"({"error_constant":"constant"})");
}

TEST_F(ClientReallocation, PretendedAfterAMember_KeepsTheMembersThatFit) {
  zoerr::Status status = tClientHeap::statusWithDescription(24);
  status.reallocate = &tClientHeap::pretend;
  EXPECT_TRUE(status.set(-3, {"file", 1}));
  EXPECT_EQ(descriptionOf(status), R"({"file":"file"})");
}

TEST_F(ClientReallocation, MissingAfterAMember_KeepsTheMembersThatFit) {
  zoerr::Status status = tClientHeap::statusWithDescription(24);
  status.reallocate = nullptr;
  EXPECT_TRUE(status.set(-3, {"file", 1}));
  EXPECT_EQ(descriptionOf(status), R"({"file":"file"})");
  status.releaseDescription();
}

TEST_F(ClientReallocation, SmallestDescription_IsMadeEmpty) {
  zoerr::Status status = tClientHeap::statusWithDescription(zoerr::kMinDescription);
  status.reallocate = &tClientHeap::refuse;
  status.description[0] = 'x';
  EXPECT_TRUE(status.set(-3, {"file", 1}));
  EXPECT_EQ(descriptionOf(status), "{}");
}

TEST_F(ClientReallocation, DescriptionWithoutItsMarker_IsGivenOne) {
  zoerr::Status status = tClientHeap::statusWithDescription(200);
  status.description[199] = '\0';
  EXPECT_TRUE(status.set(-3, {"file", 1}));
  EXPECT_EQ(descriptionOf(status), R"({"file":"file","line":1,"component":"quenra"})");
}

TEST_F(ClientReallocation, Release_GoesThroughTheClient) {
  zoerr::Status status = tClientHeap::statusWithDescription(100);
  status.releaseDescription();
  EXPECT_EQ(tClientHeap::requests(), std::vector<uint32_t>{0});
  EXPECT_EQ(status.description, nullptr);
}

TEST_F(ClientReallocation, ReleaseWithoutADescription_DoesNotCallTheClient) {
  zoerr::Status status = statusOf(&tClientHeap::giveExactly);
  status.releaseDescription();
  EXPECT_TRUE(tClientHeap::requests().empty());
}

TEST_F(ClientReallocation, OwnedStatus_ReleasesAtItsEnd) {
  {
    zoerr::tOwnedStatus status;
    status.reallocate = &tClientHeap::giveExactly;
    status.mergeFrom([] {
      nZOAPALS100::tStatus failure;
      mergeStatus(failure, -3, kPlace);
      return failure;
    }());
    EXPECT_EQ(tClientHeap::requests(), std::vector<uint32_t>{258});
  }
  EXPECT_EQ(tClientHeap::requests(), (std::vector<uint32_t>{258, 0}));
}

}  // namespace
}  // namespace nTests
