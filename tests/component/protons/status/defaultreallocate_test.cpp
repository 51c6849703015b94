#include <gtest/gtest.h>

#include <ostream>
#include <string>

#include "tests/component/protons/status/descriptiontext.h"
#include "zoapal/protons/status/zoerrstatus.h"

namespace nTests {
namespace {

using zoerr::defaultReallocate;
using zoerr::tOwnedStatus;

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

TEST(DefaultReallocateOnce, CapacityThatIsThere_ChangesNothing) {
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

}  // namespace
}  // namespace nTests
