#include "tests/component/protons/driver/drivertest.h"
#include "tests/fakewindows/allocationplan.h"

namespace nTests {
namespace {

using nFakeWindows::faultPlan;
using nFakeWindows::tAllocationPlan;
using nFakeWindows::tCall;

using PendingMemory = PendingRequest;

TEST_F(PendingMemory, Begun_AllocatesOnce) {
  unsigned allocations = 0;
  {
    const tAllocationPlan plan(0);
    ASSERT_NE(proxy.beginPendingRequest(1, 2, 3, request, status), 0u);
    proxy.endPendingRequest(request);
    allocations = plan.count();
  }
  EXPECT_EQ(allocations, 1u);
}

TEST_F(PendingMemory, ShortOfMemory_IsNotBegun) {
  const unsigned threads = faultPlan().callCount(tCall::beginThread);
  {
    const tAllocationPlan plan(1);
    EXPECT_EQ(proxy.beginPendingRequest(1, 2, 3, request, status), 0u);
  }
  expectFailure(-52000, 246);
  EXPECT_EQ(faultPlan().callCount(tCall::beginThread), threads);
  status = {};
  EXPECT_NE(proxy.beginPendingRequest(1, 2, 3, request, status), 0u);
  proxy.endPendingRequest(request);
}

}  // namespace
}  // namespace nTests
