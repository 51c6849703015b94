#include "tests/component/protons/io_notification/notificationtest.h"
#include "tests/fakewindows/allocationplan.h"

namespace nTests {
namespace {

using nFakeWindows::tAllocationPlan;

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
    ASSERT_EQ(own.code, 0);
    tIONotificationReader reader(makePort());
    tIONotification notification;
    {
      const tAllocationPlan plan(nth);
      EXPECT_FALSE(notification.enable(reader, proxy, kMask, own));
    }
    EXPECT_EQ(own.code, -52000);
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
  EXPECT_EQ(status.code, -52000);
  status = {};
  reader->wake(status);
  EXPECT_EQ(waitOn(*reader).kind, kWakeUp);
  proxy.close();
}

}  // namespace
}  // namespace nTests
