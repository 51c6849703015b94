// The status record of the routing header, in programs in C and in C++.
#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "tests/component/protons/status/descriptiontext.h"
#include "tests/component/routingadaptorinterface/clientrecord.h"
#include "tests/component/routingadaptorinterface/routingheader.h"

namespace nTests {
namespace {

constexpr tStatusFunctions kStatusFunctionsOfCpp{&zoerr_Status_initial, &zoerr_Status_reallocate,
                                                 &zoerr_Status_release};

struct tLanguage {
  const char* name;
  const tStatusFunctions* functions;
};

class ClientStatus : public testing::TestWithParam<tLanguage> {
 protected:
  ClientStatus() : status_(functions().initial()) {}
  ~ClientStatus() override { functions().release(&status_); }

  [[nodiscard]] static const tStatusFunctions& functions() { return *GetParam().functions; }
  [[nodiscard]] std::string description() const { return descriptionOf(recordOf(status_)); }

  zoerr_Status status_;
};

TEST_P(ClientStatus, Initially_IsSuccessWithoutADescription) {
  EXPECT_EQ(status_.code, 0);
  EXPECT_EQ(status_.capacity, 0u);
  EXPECT_EQ(status_.description, nullptr);
  EXPECT_NE(status_.reallocate, nullptr);
}

TEST_P(ClientStatus, FirstBuffer_IsAnEmptyObjectOf512Bytes) {
  EXPECT_TRUE(status_.reallocate(&status_, 4));
  EXPECT_EQ(status_.capacity, 512u);
  EXPECT_EQ(description(), "{}");
}

TEST_P(ClientStatus, Growth_GoesToTheNextPowerOfTwoAndKeepsTheText) {
  ASSERT_TRUE(status_.reallocate(&status_, 512));
  std::string_view(R"({"line":7})").copy(status_.description, 10);
  EXPECT_TRUE(status_.reallocate(&status_, 513));
  EXPECT_EQ(status_.capacity, 1024u);
  EXPECT_EQ(description(), R"({"line":7})");
}

TEST_P(ClientStatus, SufficientCapacity_ChangesNothing) {
  ASSERT_TRUE(status_.reallocate(&status_, 512));
  const char* const before = status_.description;
  EXPECT_TRUE(status_.reallocate(&status_, 512));
  EXPECT_EQ(status_.description, before);
}

TEST_P(ClientStatus, ImpossibleCapacity_IsRefused) {
  ASSERT_TRUE(status_.reallocate(&status_, 1));
  EXPECT_FALSE(status_.reallocate(&status_, 0x80000000));
  EXPECT_EQ(status_.capacity, 512u);
  EXPECT_EQ(description(), "{}");
}

TEST_P(ClientStatus, Released_KeepsItsCode) {
  status_.code = -5;
  ASSERT_TRUE(status_.reallocate(&status_, 1));
  functions().release(&status_);
  functions().release(&status_);
  EXPECT_EQ(status_.code, -5);
  EXPECT_EQ(status_.capacity, 0u);
  EXPECT_EQ(status_.description, nullptr);
}

TEST_P(ClientStatus, WithoutAReallocationFunction_CanBeReleased) {
  status_.reallocate = nullptr;
  functions().release(&status_);
  EXPECT_EQ(status_.description, nullptr);
}

INSTANTIATE_TEST_SUITE_P(In, ClientStatus,
                         testing::Values(tLanguage{"C", &kStatusFunctionsOfC},
                                         tLanguage{"Cpp", &kStatusFunctionsOfCpp}),
                         [](const auto& language) { return std::string(language.param.name); });

}  // namespace
}  // namespace nTests
