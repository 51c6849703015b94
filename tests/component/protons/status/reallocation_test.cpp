// Statuses whose description grows through a client's own function, as they cross an interface.
#include <gtest/gtest.h>

#include <string>

#include "tests/component/protons/status/clientheap.h"
#include "tests/component/protons/status/descriptiontext.h"
#include "zoapal/protons/status/descriptionwriter.h"
#include "zoapal/protons/status/zoerrstatus.h"

namespace nTests {
namespace {

using nZOAPALS100::tSourceLocation;

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

TEST_F(ClientReallocation, CapacityWithoutADescription_IsNotBelieved) {
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

TEST_F(ClientReallocation, RefusedOnTheWay_KeepsTheMembersThatFit) {
  zoerr::Status status = tClientHeap::statusWithDescription(24);
  status.reallocate = &tClientHeap::refuse;
  EXPECT_TRUE(status.set(-3, {"file", 1}));
  EXPECT_EQ(status.code, -3);
  EXPECT_EQ(descriptionOf(status), R"({"file":"file"})");
}

TEST_F(ClientReallocation, PretendedOnTheWay_KeepsTheMembersThatFit) {
  zoerr::Status status = tClientHeap::statusWithDescription(24);
  status.reallocate = &tClientHeap::pretend;
  EXPECT_TRUE(status.set(-3, {"file", 1}));
  EXPECT_EQ(descriptionOf(status), R"({"file":"file"})");
}

TEST_F(ClientReallocation, MissingOnTheWay_KeepsTheMembersThatFit) {
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

TEST_F(ClientReallocation, ReleaseWithoutADescription_DoesNotBotherTheClient) {
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
