// The order in which the end of a session releases its device. Native only: the fake Windows records
// every call.
#include <string>
#include <vector>

#include "protocol/pendingrequests.h"
#include "tests/component/zoarkra/routingdevicetest.h"

namespace nTests {
namespace {

using nFakeWindows::faultPlan;
using nFakeWindows::tCall;
using nFakeWindows::tCallRecord;
using tSteps = std::vector<std::string>;

// The step of a release that a call carries out; empty for any other call.
std::string stepOf(const tCallRecord& record) {
  switch (record.call) {
    case tCall::deviceIoControl:
      return record.argument == std::to_string(REQUEST_UNREGISTER_NOTIFICATION) ? "unregister" : "";
    case tCall::postQueuedCompletionStatus:
      return "wake the reader";
    case tCall::waitForSingleObject:
      return "join the reader";
    case tCall::closeHandle:
      return "close the " + record.argument;
    default:
      return "";
  }
}

tSteps steps() {
  tSteps found;
  for (const tCallRecord& record : faultPlan().calls()) {
    if (const std::string step = stepOf(record); !step.empty()) {
      found.push_back(step);
    }
  }
  return found;
}

class SessionEnd : public RoutingDeviceTest {
 protected:
  void SetUp() override {
    RoutingDeviceTest::SetUp();
    openAndStart();
    ASSERT_EQ(status.code, 0);
    faultPlan().reset();
  }
};

const tSteps kStop{"unregister", "wake the reader", "join the reader", "close the thread",
                   "close the completion port"};
const tSteps kClose{"close the file", "close the event"};

tSteps joined(const tSteps& first, const tSteps& second) {
  tSteps both = first;
  both.insert(both.end(), second.begin(), second.end());
  return both;
}

TEST_F(SessionEnd, DestroyedDevice_UnregistersThenEndsTheReaderThenClosesTheFile) {
  device.reset();
  EXPECT_EQ(steps(), joined(kStop, kClose));
}

TEST_F(SessionEnd, StoppedNotifications_LeaveTheFileOpenUntilTheDeviceEnds) {
  device->stopNotifications();
  EXPECT_EQ(steps(), kStop);
  faultPlan().reset();
  device.reset();
  EXPECT_EQ(steps(), kClose);
}

TEST_F(SessionEnd, RefusedUnregistration_EndsTheReaderBeforeTheFileAsWell) {
  faultPlan().failCall(tCall::deviceIoControl, 1, ERROR_ACCESS_DENIED);
  device.reset();
  EXPECT_EQ(steps(), joined(kStop, kClose));
}

TEST_F(SessionEnd, DestroyedDuringACallback_ClosesNothingBeforeTheCallbackReturns) {
  listener.mayLeave = false;
  notify(machine());
  ASSERT_TRUE(becomesTrue([this] { return listener.isInside.load(); }));
  faultPlan().reset();
  // The reader is joined while its callback runs: no handle is closed by then.
  faultPlan().beforeCall(tCall::waitForSingleObject, 1, [this] {
    EXPECT_TRUE(listener.isInside);
    EXPECT_EQ(faultPlan().callCount(tCall::closeHandle), 0u);
    listener.mayLeave = true;
  });
  device.reset();
  EXPECT_FALSE(listener.isInside);
  EXPECT_EQ(steps(), joined(kStop, kClose));
}

}  // namespace
}  // namespace nTests
