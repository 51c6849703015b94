// Pending requests and notifications when memory is short.
#include "quenra_status.h"
#include "tests/component/protons/driver/drivertest.h"
#include "tests/component/protons/io_notification/notificationtest.h"
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
  expectFailure(QUENRA_STATUS_MEMORY_FULL, 246);
  EXPECT_EQ(faultPlan().callCount(tCall::beginThread), threads);
  status = {};
  EXPECT_NE(proxy.beginPendingRequest(1, 2, 3, request, status), 0u);
  proxy.endPendingRequest(request);
}

class NotificationMemory : public NotificationTest {};

TEST_F(NotificationMemory, EachFailingAllocation_ReportsMemoryFullAndLeavesNothing) {
  unsigned allocations = 0;
  {
    tIONotificationReader reader(makePort());
    tIONotification notification;
    const tAllocationPlan plan(0);
    ASSERT_TRUE(notification.enable(reader, proxy, kMask, status));
    allocations = plan.count();
    notification.disable();
  }
  // The delivery and its entry; the registration, the notification's entry, the registration's entry.
  EXPECT_EQ(allocations, 5u);
  for (unsigned nth = 1; nth <= allocations; ++nth) {
    SCOPED_TRACE(nth);
    proxy.close();
    tStatus own;
    openController(proxy, own);
    ASSERT_EQ(own.code, QUENRA_STATUS_SUCCESS);
    tIONotificationReader reader(makePort());
    tIONotification notification;
    {
      const tAllocationPlan plan(nth);
      EXPECT_FALSE(notification.enable(reader, proxy, kMask, own));
    }
    EXPECT_EQ(own.code, QUENRA_STATUS_MEMORY_FULL);
    EXPECT_EQ(own.line, nth <= 2 ? 315u : 120u);
    own = {};
    EXPECT_TRUE(notification.enable(reader, proxy, kMask, own)) << "the next time works";
    notification.disable();
  }
}

TEST_F(NotificationMemory, ReaderMadeWithoutMemory_EnablesNothing) {
  tUniquePort port = makePort();
  std::unique_ptr<tIONotificationReader> reader;
  {
    const tAllocationPlan plan(2);
    reader = std::make_unique<tIONotificationReader>(std::move(port));
  }
  tIONotification notification;
  EXPECT_FALSE(notification.enable(*reader, proxy, kMask, status));
  EXPECT_EQ(status.code, QUENRA_STATUS_MEMORY_FULL);
  status = {};
  reader->wake(status);
  EXPECT_EQ(waitOn(*reader).kind, kWakeUp);
  proxy.close();
}

}  // namespace
}  // namespace nTests
