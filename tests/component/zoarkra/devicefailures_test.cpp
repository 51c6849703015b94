// Each Windows call and each allocation of opening and starting a device fails in turn. Native only.
#include "tests/component/zoarkra/routingdevicetest.h"
#include "tests/fakewindows/allocationplan.h"

namespace nTests {
namespace {

using nFakeWindows::faultPlan;
using nFakeWindows::tAllocationPlan;
using nFakeWindows::tCall;

constexpr uint32_t kAccessDenied = 5;

struct tReport {
  int32_t code;
  std::string file;
  uint32_t line;
  bool operator==(const tReport&) const = default;
};

std::ostream& operator<<(std::ostream& out, const tReport& report) {
  return out << report.code << " " << report.file << " " << report.line;
}

// The code and location that the device reports when the nth call of a function fails.
tReport reportOf(tCall call, unsigned nth) {
  const bool first = nth == 1;
  switch (call) {
    case tCall::createFile:
      return {-52009, "tdeviceinterfaceproxy", 43};
    case tCall::createEvent:
      return {-52009, "tdeviceinterfaceproxy", 51};
    case tCall::createIoCompletionPort:
      return first ? tReport{-52009, "tionotification", 31}
                   : tReport{-52009, "tdeviceinterfaceproxy", 315};
    case tCall::beginThread:
      return {-52008, "thread", 471};
    case tCall::deviceIoControl:
      return first ? tReport{-52009, "tdeviceinterfaceproxy", 333}
                   : tReport{-52009, "tionotification", 134};
    default:
      // A failed wait or clean-up has no effect.
      return {0, "", 0};
  }
}

class DeviceFailures : public RoutingDeviceTest {
 protected:
  tReport start() {
    status = {};
    device = std::make_unique<zoark::tRoutingDevice>();
    openAndStart();
    return {status.code, status.file, status.line};
  }
};

TEST_F(DeviceFailures, FailureOfEachCall_HasItsLocationAndLeavesNothing) {
  for (const tCall call : {tCall::createFile, tCall::createEvent, tCall::createIoCompletionPort,
                           tCall::beginThread, tCall::deviceIoControl}) {
    for (unsigned nth = 1; nth <= 2; ++nth) {
      faultPlan().reset();
      start();
      if (faultPlan().callCount(call) < nth) {
        continue;
      }
      device.reset();
      faultPlan().reset();
      faultPlan().failCall(call, nth, kAccessDenied);
      SCOPED_TRACE(std::string(nFakeWindows::nameOf(call)) + ", call " + std::to_string(nth));
      EXPECT_EQ(start(), reportOf(call, nth));
      device.reset();
      faultPlan().reset();
      EXPECT_EQ(start(), (tReport{0, "", 0})) << "the next start succeeds";
      notify(machine());
      EXPECT_TRUE(becomesTrue([this] { return listener.count > 0; }));
      device.reset();
      listener.count = 0;
    }
  }
}

TEST_F(DeviceFailures, FailureOfEachAllocation_LeavesNothing) {
  for (unsigned nth = 1;; ++nth) {
    const tAllocationPlan plan(nth);
    try {
      start();
      EXPECT_TRUE(status.code == 0 || status.code == -52000) << status.code;
    } catch (const std::bad_alloc&) {
    }
    device.reset();
    if (plan.count() < nth) {
      EXPECT_EQ(status.code, 0);
      break;
    }
  }
}

}  // namespace
}  // namespace nTests
