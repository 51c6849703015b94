#include "zoapal/protons/status/zoerrstatus.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <string>
#include <type_traits>

#include "tests/component/protons/status/descriptiontext.h"

namespace nTests {
namespace {

using zoerr::Exception;
using zoerr::ExceptionBase;
using zoerr::Status;
using zoerr::tOwnedStatus;

static_assert(std::is_nothrow_copy_constructible_v<Exception>);
static_assert(std::is_nothrow_copy_assignable_v<Exception>);

// A failure with its description.
class ExceptionTest : public testing::Test {
 protected:
  ExceptionTest() {
    raised.set(-77, {"file", 5});
    text = descriptionOf(raised);
  }
  tOwnedStatus raised;
  std::string text;
};

TEST_F(ExceptionTest, Fresh_HoldsNothing) {
  const Exception exception;
  EXPECT_EQ(exception.status().code, 0);
  EXPECT_EQ(exception.status().description, nullptr);
  EXPECT_STREQ(exception.what(), "");
}

TEST_F(ExceptionTest, OfASuccess_HoldsNothingAndLeavesTheDescription) {
  tOwnedStatus status;
  ASSERT_TRUE(zoerr::defaultReallocate(status, 4));
  const ExceptionBase exception(status);
  EXPECT_EQ(exception.status().code, 0);
  EXPECT_EQ(exception.status().description, nullptr);
  EXPECT_NE(status.description, nullptr);
}

TEST_F(ExceptionTest, OfAFailure_TakesOwnershipOfItsDescription) {
  const char* const buffer = raised.description;
  const Exception exception(raised);
  EXPECT_EQ(exception.status().code, -77);
  EXPECT_EQ(exception.status().description, buffer);
  EXPECT_EQ(descriptionOf(exception.status()), text);
  EXPECT_STREQ(exception.what(), text.c_str());
  EXPECT_EQ(raised.description, nullptr);
  EXPECT_EQ(raised.capacity, 0u);
  EXPECT_EQ(raised.code, -77);
}

TEST_F(ExceptionTest, OfAConstantFailure_CopiesItsText) {
  const Status& constant = raised;
  const Exception exception(constant);
  EXPECT_EQ(descriptionOf(exception.status()), text);
  EXPECT_NE(exception.status().description, raised.description);
  EXPECT_EQ(descriptionOf(raised), text);
}

TEST_F(ExceptionTest, OfAClientsFailure_CopiesItsTextAndLeavesTheClientsMemory) {
  const tClientHeap heap;
  Status client = tClientHeap::statusWithDescription(64);
  ASSERT_TRUE(client.set(-5, {"f", 1}));
  const std::string before = descriptionOf(client);
  {
    const Exception exception(client);
    EXPECT_EQ(exception.status().code, -5);
    EXPECT_EQ(descriptionOf(exception.status()), before);
  }
  EXPECT_EQ(descriptionOf(client), before);
  client.releaseDescription();
}

TEST_F(ExceptionTest, Copied_LeavesTheFirstAsItWas) {
  const Exception first(raised);
  const Exception second(first);
  const Exception third(first);
  for (const Exception* exception : {&first, &second, &third}) {
    EXPECT_EQ(exception->status().code, -77);
    EXPECT_EQ(descriptionOf(exception->status()), text);
  }
}

TEST_F(ExceptionTest, Assigned_ReplacesWhatWasThere) {
  tOwnedStatus other;
  other.set(-78, {"other", 6});
  Exception exception(other);
  exception = Exception(raised);
  EXPECT_EQ(exception.status().code, -77);
  EXPECT_EQ(descriptionOf(exception.status()), text);
  const Exception& itself = exception;
  exception = itself;
  EXPECT_EQ(descriptionOf(exception.status()), text);
  exception = Exception();
  EXPECT_EQ(exception.status().code, 0);
  EXPECT_EQ(exception.status().description, nullptr);
}

TEST_F(ExceptionTest, Thrown_IsCaughtAsEachOfItsKinds) {
  EXPECT_THROW(throw Exception(raised), ExceptionBase);
  EXPECT_THROW(throw Exception(raised), std::exception);
  try {
    throw Exception(static_cast<const Status&>(raised));
  } catch (const ExceptionBase& exception) {
    EXPECT_EQ(exception.status().code, -77);
  }
}

// ---- Merging one status into another of its kind ----

TEST_F(ExceptionTest, MergedStatus_CopiesCodeAndText) {
  tOwnedStatus status;
  EXPECT_TRUE(status.mergeFrom(raised));
  EXPECT_EQ(status.code, -77);
  EXPECT_EQ(descriptionOf(status), text);
  EXPECT_NE(status.description, raised.description);
}

TEST_F(ExceptionTest, MergedStatus_FollowsTheMergeRule) {
  tOwnedStatus status;
  status.set(-1, {"first", 1});
  const std::string before = descriptionOf(status);
  EXPECT_TRUE(status.mergeFrom(raised));
  EXPECT_EQ(status.code, -1);
  EXPECT_EQ(descriptionOf(status), before);
  tOwnedStatus warning;
  warning.set(5, {"first", 1});
  EXPECT_TRUE(warning.mergeFrom(raised));
  EXPECT_EQ(warning.code, -77);
  EXPECT_EQ(descriptionOf(warning), text);
}

TEST_F(ExceptionTest, MergedStatusWithoutText_EmptiesADescription) {
  tOwnedStatus status;
  status.set(5, {"first", 1});
  Status bare;
  bare.code = -3;
  EXPECT_TRUE(status.mergeFrom(bare));
  EXPECT_EQ(status.code, -3);
  EXPECT_EQ(descriptionOf(status), "{}");
  tOwnedStatus fresh;
  EXPECT_TRUE(fresh.mergeFrom(bare));
  EXPECT_EQ(fresh.description, nullptr);
}

TEST_F(ExceptionTest, MergedIntoAClientsStatus_UsesTheClientsMemory) {
  const tClientHeap heap;
  Status client;
  client.reallocate = &tClientHeap::giveExactly;
  EXPECT_TRUE(client.mergeFrom(raised));
  EXPECT_EQ(descriptionOf(client), text);
  EXPECT_EQ(tClientHeap::requests(), std::vector<uint32_t>{static_cast<uint32_t>(text.size() + 2)});
  client.releaseDescription();
}

TEST_F(ExceptionTest, MergedIntoAClientThatRefuses_StoresTheCodeAlone) {
  for (auto* reallocate : {&tClientHeap::refuse, &tClientHeap::pretend}) {
    Status client;
    client.reallocate = reallocate;
    EXPECT_FALSE(client.mergeFrom(raised));
    EXPECT_EQ(client.code, -77);
    EXPECT_EQ(client.description, nullptr);
  }
}

TEST_F(ExceptionTest, MergedIntoASmallDescriptionThatOnlyPretendsToGrow_EmptiesIt) {
  Status client = tClientHeap::statusWithDescription(24);
  client.reallocate = &tClientHeap::pretend;
  EXPECT_FALSE(client.mergeFrom(raised));
  EXPECT_EQ(client.code, -77);
  EXPECT_EQ(descriptionOf(client), "{}");
}

TEST_F(ExceptionTest, MergedFromATextWithoutEnd_ReadsNotBeyondIt) {
  const auto buffer = std::make_unique<char[]>(8);
  std::memset(buffer.get(), 'x', 8);
  Status broken;
  broken.code = -3;
  broken.capacity = 8;
  broken.description = buffer.get();
  tOwnedStatus status;
  EXPECT_TRUE(status.mergeFrom(broken));
  EXPECT_EQ(status.code, -3);
  EXPECT_EQ(status.description, nullptr);
}

TEST_F(ExceptionTest, MergedIntoItself_ChangesNothing) {
  EXPECT_TRUE(raised.mergeFrom(static_cast<const Status&>(raised)));
  EXPECT_EQ(descriptionOf(raised), text);
}

}  // namespace
}  // namespace nTests
