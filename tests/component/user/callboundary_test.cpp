#include "source/user/exports/callboundary.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace nTests {
namespace {

using nQUENRA1400::runWithoutThrowing;

TEST(ExceptionBoundary, WithoutException_LeavesTheStatusToTheOperation) {
  zoerr::tOwnedStatus status;
  runWithoutThrowing(status, [&status] { status.code = 3; });
  EXPECT_EQ(status.code, 3);
}

TEST(ExceptionBoundary, ShortMemory_BecomesOutOfMemory) {
  zoerr::tOwnedStatus status;
  runWithoutThrowing(status, [] { throw std::bad_alloc(); });
  EXPECT_EQ(status.code, QUENRA_STATUS_OUT_OF_MEMORY);
}

TEST(ExceptionBoundary, ExceptionWithAStatus_IsThatStatus) {
  zoerr::tOwnedStatus raised;
  raised.set(-77, {"file", 5});
  zoerr::tOwnedStatus status;
  runWithoutThrowing(status, [&raised] { throw zoerr::Exception(raised); });
  EXPECT_EQ(status.code, -77);
  EXPECT_STREQ(status.description, R"({"file":"file","line":5,"component":"quenra"})");
}

TEST(ExceptionBoundary, AnythingElse_BecomesInternalError) {
  zoerr::tOwnedStatus status;
  runWithoutThrowing(status, [] { throw std::runtime_error("unforeseen"); });
  EXPECT_EQ(status.code, QUENRA_STATUS_INTERNAL_ERROR);
  zoerr::tOwnedStatus other;
  runWithoutThrowing(other, [] { throw 5; });
  EXPECT_EQ(other.code, QUENRA_STATUS_INTERNAL_ERROR);
}

}  // namespace
}  // namespace nTests
