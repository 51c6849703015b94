#include "zoapal/protons/driver/windowsu/tdeviceinterfaceproxy.h"

#include <algorithm>
#include <thread>
#include <vector>

#include "protocol/controllerrequests.h"
#include "tests/fakewindows/fakewindowstest.h"

namespace nTests {
namespace {

using nFakeWindows::faultPlan;
using nFakeWindows::machine;
using nFakeWindows::tCall;
using nFakeWindows::tCompletion;
using nQUENRA1400::nZOAPAL000::tDeviceInterfaceProxy;
using nZOAPALS100::tStatus;

std::string controllerPath() {
  return machine().pathOf({kSimulatorInterfaceController, 0});
}

class DeviceInterfaceProxy : public nFakeWindows::FakeWindowsTest {
 protected:
  void TearDown() override {
    proxy.close();
    FakeWindowsTest::TearDown();
  }
  void open() {
    proxy.open(controllerPath().c_str(), status);
    ASSERT_EQ(status.code, 0);
    faultPlan().reset();
  }
  // Requests the sizes of the SMBIOS table; the reply has 12 bytes.
  uint32_t exchange() {
    const tExchangeValuesRequest request{};
    return proxy.deviceControl(REQUEST_EXCHANGE_VALUES, &request, sizeof request, &reply,
                               sizeof reply, status);
  }
  void expectFailure(int32_t code, uint32_t line) {
    EXPECT_EQ(status.code, code);
    EXPECT_EQ(status.line, line);
    EXPECT_STREQ(status.file, "tdeviceinterfaceproxy");
    EXPECT_STREQ(status.component, "quenra");
  }

  tStatus status;
  tDeviceInterfaceProxy proxy;
  tExchangeValuesReply reply{7, 7, 7};
};

// ---- Opening and closing ----

TEST_F(DeviceInterfaceProxy, OpensWithOneFileAndOneEvent) {
  EXPECT_FALSE(proxy.isOpen());
  proxy.open(controllerPath().c_str(), status);
  EXPECT_TRUE(proxy.isOpen());
  EXPECT_EQ(nFakeWindows::objects().open().size(), 2u);
  proxy.close();
  EXPECT_FALSE(proxy.isOpen());
  EXPECT_EQ(nFakeWindows::objects().open().size(), 0u);
  proxy.close();
}

TEST_F(DeviceInterfaceProxy, OpensByADevicePath) {
  nQUENRA1400::nZOAPAL000::tDevicePath path;
  const std::string text = controllerPath();
  std::copy(text.begin(), text.end(), path.text);
  path.length = static_cast<uint32_t>(text.size() + 1);
  proxy.open(path, status);
  EXPECT_TRUE(proxy.isOpen());
}

TEST_F(DeviceInterfaceProxy, OpenedTwice_ClosesTheFirst) {
  open();
  proxy.open(controllerPath().c_str(), status);
  EXPECT_EQ(status.code, 0);
  EXPECT_EQ(nFakeWindows::objects().open().size(), 2u);
}

TEST_F(DeviceInterfaceProxy, OpenOnAStatusInError_CallsNothing) {
  status.code = -1;
  proxy.open(controllerPath().c_str(), status);
  EXPECT_FALSE(proxy.isOpen());
  EXPECT_EQ(faultPlan().callCount(), 0u);
}

TEST_F(DeviceInterfaceProxy, MissingFile_IsLocatedAtLine43) {
  proxy.open("\\\\?\\nothing", status);
  expectFailure(-52006, 43);
  EXPECT_FALSE(proxy.isOpen());
}

TEST_F(DeviceInterfaceProxy, EventThatCannotBeCreated_IsLocatedAtLine51AndClosesTheFile) {
  faultPlan().failCall(tCall::createEvent, 1, ERROR_NO_SYSTEM_RESOURCES);
  proxy.open(controllerPath().c_str(), status);
  expectFailure(-52000, 51);
  EXPECT_FALSE(proxy.isOpen());
  EXPECT_EQ(nFakeWindows::objects().open().size(), 0u);
}

TEST_F(DeviceInterfaceProxy, ErrorsWithoutACodeOfTheirOwn_AreGenericFailures) {
  for (const DWORD error : {DWORD{ERROR_PATH_NOT_FOUND}, DWORD{ERROR_BAD_NETPATH}, DWORD{0}}) {
    tStatus own;
    faultPlan().reset();
    faultPlan().failCall(tCall::createFile, 1, error);
    proxy.open(controllerPath().c_str(), own);
    EXPECT_EQ(own.code, -52003);
  }
}

// ---- Requests ----

TEST_F(DeviceInterfaceProxy, Request_ReturnsTheBytesOfItsReply) {
  open();
  EXPECT_EQ(exchange(), 12u);
  EXPECT_EQ(status.code, 0);
  EXPECT_EQ(reply.driverStatus, -240563);
  EXPECT_EQ(faultPlan().callCount(tCall::getOverlappedResult), 0u);
}

TEST_F(DeviceInterfaceProxy, RequestThatIsPendingFirst_IsWaitedFor) {
  open();
  faultPlan().complete(tCompletion::later);
  EXPECT_EQ(exchange(), 12u);
  EXPECT_EQ(status.code, 0);
  EXPECT_EQ(reply.driverStatus, -240563);
  EXPECT_EQ(faultPlan().callCount(tCall::getOverlappedResult), 1u);
}

TEST_F(DeviceInterfaceProxy, RequestRefusedImmediately_IsLocatedAtLine115) {
  open();
  faultPlan().failCall(tCall::deviceIoControl, 1, ERROR_NOT_READY);
  EXPECT_EQ(exchange(), 0u);
  expectFailure(-52010, 115);
  EXPECT_EQ(reply.driverStatus, 7) << "the reply is left alone";
}

TEST_F(DeviceInterfaceProxy, RequestThatFailsWhilePending_IsLocatedAtLine110) {
  open();
  faultPlan().complete(tCompletion::later, ERROR_SEM_TIMEOUT);
  EXPECT_EQ(exchange(), 0u);
  expectFailure(-52007, 110);
}

TEST_F(DeviceInterfaceProxy, WaitThatFails_DoesNotLeaveTheRequestBehind) {
  open();
  for (const tCompletion completion : {tCompletion::uncancellable, tCompletion::never}) {
    tStatus own;
    faultPlan().reset();
    faultPlan().complete(completion);
    faultPlan().failCall(tCall::getOverlappedResult, 1, ERROR_INVALID_HANDLE);
    const tExchangeValuesRequest request{};
    EXPECT_EQ(proxy.deviceControl(REQUEST_EXCHANGE_VALUES, &request, sizeof request, &reply,
                                  sizeof reply, own),
              0u);
    EXPECT_EQ(own.code, -52003);
    EXPECT_EQ(own.line, 110u);
    EXPECT_EQ(faultPlan().callCount(tCall::cancelIoEx), 1u);
    nFakeWindows::objects().waitForThreads();
  }
}

TEST_F(DeviceInterfaceProxy, RequestUnknownToTheDriver_IsNotSupported) {
  open();
  proxy.deviceControl(0x807BFFF0, nullptr, 0, nullptr, 0, status);
  expectFailure(-52002, 115);
}

TEST_F(DeviceInterfaceProxy, RequestOnAStatusInError_IsNotSent) {
  open();
  status.code = -1;
  EXPECT_EQ(exchange(), 0u);
  EXPECT_EQ(faultPlan().callCount(), 0u);
}

TEST_F(DeviceInterfaceProxy, RequestOnAWarning_IsSent) {
  open();
  status.code = 5;
  EXPECT_EQ(exchange(), 12u);
  EXPECT_EQ(status.code, 5);
}

TEST_F(DeviceInterfaceProxy, RequestOnAClosedProxy_IsLocatedAtLine115WithoutACall) {
  EXPECT_EQ(exchange(), 0u);
  expectFailure(-52003, 115);
  EXPECT_EQ(faultPlan().callCount(), 0u);
}

// ---- Reading and writing ----

TEST_F(DeviceInterfaceProxy, FailedRead_IsLocatedAtLine153OrAfterWaitingAtLine148) {
  open();
  char buffer[8] = {};
  EXPECT_EQ(proxy.read(buffer, sizeof buffer, status), 0u);
  expectFailure(-52002, 153);
  status = {};
  faultPlan().complete(tCompletion::later);
  EXPECT_EQ(proxy.read(buffer, sizeof buffer, status), 0u);
  expectFailure(-52002, 148);
}

TEST_F(DeviceInterfaceProxy, FailedWrite_IsLocatedAtLine194OrAfterWaitingAtLine189) {
  open();
  const char buffer[8] = {};
  EXPECT_EQ(proxy.write(buffer, sizeof buffer, status), 0u);
  expectFailure(-52002, 194);
  status = {};
  faultPlan().complete(tCompletion::later);
  EXPECT_EQ(proxy.write(buffer, sizeof buffer, status), 0u);
  expectFailure(-52002, 189);
}

TEST_F(DeviceInterfaceProxy, ReadAndWriteOnAClosedProxy_AreLocatedAfterTheCall) {
  char buffer[8] = {};
  proxy.read(buffer, sizeof buffer, status);
  expectFailure(-52003, 153);
  status = {};
  proxy.write(buffer, sizeof buffer, status);
  expectFailure(-52003, 194);
}

// ---- Overlapping requests ----

TEST_F(DeviceInterfaceProxy, OverlappingRequests_EachGetTheirOwnReply) {
  open();
  faultPlan().complete(tCompletion::later);
  std::vector<std::thread> threads;
  for (int i = 0; i < 8; ++i) {
    threads.emplace_back([this] {
      for (int round = 0; round < 10; ++round) {
        tStatus own;
        tExchangeValuesReply ownReply{};
        const tExchangeValuesRequest request{};
        EXPECT_EQ(proxy.deviceControl(REQUEST_EXCHANGE_VALUES, &request, sizeof request, &ownReply,
                                      sizeof ownReply, own),
                  12u);
        EXPECT_EQ(ownReply.driverStatus, -240563);
      }
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
}

TEST_F(DeviceInterfaceProxy, OverlappingRequestWithoutAnEventOfItsOwn_IsLocatedAtLine115) {
  open();
  faultPlan().failEveryCall(tCall::createEvent, ERROR_NO_SYSTEM_RESOURCES);
  // While the first request is pending, the second needs an event of its own.
  tStatus second;
  faultPlan().beforeCall(tCall::deviceIoControl, 1, [this, &second] {
    tExchangeValuesReply ownReply{};
    const tExchangeValuesRequest request{};
    proxy.deviceControl(REQUEST_EXCHANGE_VALUES, &request, sizeof request, &ownReply,
                        sizeof ownReply, second);
  });
  EXPECT_EQ(exchange(), 12u);
  EXPECT_EQ(status.code, 0);
  EXPECT_EQ(second.code, -52000);
  EXPECT_EQ(second.line, 115u);
}

// ---- Deliveries ----

TEST_F(DeviceInterfaceProxy, DeliveryWithoutAPort_IsLocatedAtLine333) {
  open();
  proxy.armDelivery(status);
  expectFailure(-52003, 333);
  EXPECT_EQ(faultPlan().callCount(), 0u);
}

TEST_F(DeviceInterfaceProxy, DeliveryOnAStatusInError_CallsNothing) {
  open();
  status.code = -1;
  proxy.armDelivery(status);
  EXPECT_FALSE(proxy.associate(nullptr, nullptr, status));
  EXPECT_EQ(status.code, -1);
  EXPECT_EQ(faultPlan().callCount(), 0u);
}

}  // namespace
}  // namespace nTests
