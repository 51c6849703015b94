#include "zoapal/protons/driver/windowsu/tdeviceinterfaceproxy.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <thread>
#include <vector>

#include "protocol/controllerrequests.h"
#include "quenra_status.h"
#include "tests/fakewindows/fakewindowstest.h"

namespace nTests {
namespace {

using nFakeWindows::faultPlan;
using nFakeWindows::machine;
using nFakeWindows::tCall;
using nFakeWindows::tCompletion;
using nQUENRA1400::nZOAPAL000::tDeviceInterfaceProxy;
using nQUENRA1400::nZOAPAL000::tPortRegistry;
using nZOAPALS100::tStatus;
using tBytes = std::vector<uint8_t>;

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
    ASSERT_EQ(status.code, QUENRA_STATUS_SUCCESS);
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
  EXPECT_EQ(status.code, QUENRA_STATUS_SUCCESS);
  EXPECT_EQ(nFakeWindows::objects().open().size(), 2u);
}

TEST_F(DeviceInterfaceProxy, OpenOnAStatusInError_CallsNothing) {
  status.code = -1;
  proxy.open(controllerPath().c_str(), status);
  EXPECT_FALSE(proxy.isOpen());
  EXPECT_EQ(faultPlan().callCount(), 0u);
}

TEST_F(DeviceInterfaceProxy, MissingFile_ReportsItsLocation) {
  proxy.open("\\\\?\\nothing", status);
  expectFailure(QUENRA_STATUS_NOT_FOUND, 43);
  EXPECT_FALSE(proxy.isOpen());
}

TEST_F(DeviceInterfaceProxy, EventThatCannotBeCreated_ReportsItsLocationAndClosesTheFile) {
  faultPlan().failCall(tCall::createEvent, 1, ERROR_NO_SYSTEM_RESOURCES);
  proxy.open(controllerPath().c_str(), status);
  expectFailure(QUENRA_STATUS_MEMORY_FULL, 51);
  EXPECT_FALSE(proxy.isOpen());
  EXPECT_EQ(nFakeWindows::objects().open().size(), 0u);
}

TEST_F(DeviceInterfaceProxy, ErrorsWithoutACodeOfTheirOwn_AreGenericFailures) {
  for (const DWORD error : {DWORD{ERROR_PATH_NOT_FOUND}, DWORD{ERROR_BAD_NETPATH}, DWORD{0}}) {
    tStatus own;
    faultPlan().reset();
    faultPlan().failCall(tCall::createFile, 1, error);
    proxy.open(controllerPath().c_str(), own);
    EXPECT_EQ(own.code, QUENRA_STATUS_GENERIC_FAILURE);
  }
}

// ---- Requests ----

TEST_F(DeviceInterfaceProxy, Request_ReturnsTheBytesOfItsReply) {
  open();
  EXPECT_EQ(exchange(), 12u);
  EXPECT_EQ(status.code, QUENRA_STATUS_SUCCESS);
  EXPECT_EQ(reply.driverStatus, QUENRA_STATUS_DRIVER_BUFFER_TOO_SMALL);
  EXPECT_EQ(faultPlan().callCount(tCall::getOverlappedResult), 0u);
}

TEST_F(DeviceInterfaceProxy, RequestThatIsPendingFirst_IsWaitedFor) {
  open();
  faultPlan().complete(tCompletion::later);
  EXPECT_EQ(exchange(), 12u);
  EXPECT_EQ(status.code, QUENRA_STATUS_SUCCESS);
  EXPECT_EQ(reply.driverStatus, QUENRA_STATUS_DRIVER_BUFFER_TOO_SMALL);
  EXPECT_EQ(faultPlan().callCount(tCall::getOverlappedResult), 1u);
}

TEST_F(DeviceInterfaceProxy, RequestRefusedImmediately_ReportsItsLocation) {
  open();
  faultPlan().failCall(tCall::deviceIoControl, 1, ERROR_NOT_READY);
  EXPECT_EQ(exchange(), 0u);
  expectFailure(QUENRA_STATUS_NOT_READY, 115);
  EXPECT_EQ(reply.driverStatus, 7) << "the reply is left alone";
}

TEST_F(DeviceInterfaceProxy, RequestThatFailsWhilePending_ReportsItsLocation) {
  open();
  faultPlan().complete(tCompletion::later, ERROR_SEM_TIMEOUT);
  EXPECT_EQ(exchange(), 0u);
  expectFailure(QUENRA_STATUS_TIME_OUT, 110);
}

TEST_F(DeviceInterfaceProxy, WaitThatFails_CancelsTheRequest) {
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
    EXPECT_EQ(own.code, QUENRA_STATUS_GENERIC_FAILURE);
    EXPECT_EQ(own.line, 110u);
    EXPECT_EQ(faultPlan().callCount(tCall::cancelIoEx), 1u);
    nFakeWindows::objects().waitForThreads();
  }
}

TEST_F(DeviceInterfaceProxy, RequestUnknownToTheDriver_IsNotSupported) {
  open();
  proxy.deviceControl(0x807BFFF0, nullptr, 0, nullptr, 0, status);
  expectFailure(QUENRA_STATUS_REQUEST_NOT_SUPPORTED, 115);
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

TEST_F(DeviceInterfaceProxy, RequestOnAClosedProxy_ReportsItsLocationWithoutACall) {
  EXPECT_EQ(exchange(), 0u);
  expectFailure(QUENRA_STATUS_GENERIC_FAILURE, 115);
  EXPECT_EQ(faultPlan().callCount(), 0u);
}

// ---- Reading and writing ----

TEST_F(DeviceInterfaceProxy, FailedRead_ReportsTheLocationOfTheCallOrOfTheWait) {
  open();
  char buffer[8] = {};
  EXPECT_EQ(proxy.read(buffer, sizeof buffer, status), 0u);
  expectFailure(QUENRA_STATUS_REQUEST_NOT_SUPPORTED, 153);
  status = {};
  faultPlan().complete(tCompletion::later);
  EXPECT_EQ(proxy.read(buffer, sizeof buffer, status), 0u);
  expectFailure(QUENRA_STATUS_REQUEST_NOT_SUPPORTED, 148);
}

TEST_F(DeviceInterfaceProxy, FailedWrite_ReportsTheLocationOfTheCallOrOfTheWait) {
  open();
  const char buffer[8] = {};
  EXPECT_EQ(proxy.write(buffer, sizeof buffer, status), 0u);
  expectFailure(QUENRA_STATUS_REQUEST_NOT_SUPPORTED, 194);
  status = {};
  faultPlan().complete(tCompletion::later);
  EXPECT_EQ(proxy.write(buffer, sizeof buffer, status), 0u);
  expectFailure(QUENRA_STATUS_REQUEST_NOT_SUPPORTED, 189);
}

TEST_F(DeviceInterfaceProxy, ReadAndWriteOnAClosedProxy_ReportTheLocationOfTheCall) {
  char buffer[8] = {};
  proxy.read(buffer, sizeof buffer, status);
  expectFailure(QUENRA_STATUS_GENERIC_FAILURE, 153);
  status = {};
  proxy.write(buffer, sizeof buffer, status);
  expectFailure(QUENRA_STATUS_GENERIC_FAILURE, 194);
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
        EXPECT_EQ(ownReply.driverStatus, QUENRA_STATUS_DRIVER_BUFFER_TOO_SMALL);
      }
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
}

TEST_F(DeviceInterfaceProxy, OverlappingRequestWithoutAnEventOfItsOwn_ReportsItsLocation) {
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
  EXPECT_EQ(status.code, QUENRA_STATUS_SUCCESS);
  EXPECT_EQ(second.code, QUENRA_STATUS_MEMORY_FULL);
  EXPECT_EQ(second.line, 115u);
}

// ---- Deliveries ----

TEST_F(DeviceInterfaceProxy, DeliveryWithoutAPort_ReportsItsLocation) {
  open();
  proxy.armDelivery(status);
  expectFailure(QUENRA_STATUS_GENERIC_FAILURE, 333);
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

// A closed port's handle value may return as that of another port, with another registry.
TEST_F(DeviceInterfaceProxy, AnotherRegistryOfTheSamePort_IsAnotherAssociation) {
  open();
  const HANDLE port = CreateIoCompletionPort(INVALID_HANDLE_VALUE, nullptr, 0, 0);
  EXPECT_TRUE(proxy.associate(std::make_shared<tPortRegistry>(), port, status));
  EXPECT_EQ(status.code, QUENRA_STATUS_SUCCESS);
  EXPECT_FALSE(proxy.associate(std::make_shared<tPortRegistry>(), port, status));
  expectFailure(QUENRA_STATUS_INVALID_PARAMETER, 315);
  proxy.close();
  CloseHandle(port);
}

// ---- Byte counts and buffers, with a driver that serves reads and writes ----

constexpr uint32_t kCapacity = 8;
constexpr uint8_t kUntouched = 0xCC;
// More than any transfer here.
constexpr uint8_t kFirstByte = 0xA0;

uint8_t byteAt(size_t index) {
  return static_cast<uint8_t>(kFirstByte + index);
}

tBytes pattern(size_t size) {
  tBytes bytes(size);
  for (size_t i = 0; i < size; ++i) {
    bytes[i] = byteAt(i);
  }
  return bytes;
}

struct tCase {
  std::string name;
  tCompletion completion;
  uint32_t transferred;  // of kCapacity bytes
};

class DeviceTransfer : public nFakeWindows::FakeWindowsTest,
                       public testing::WithParamInterface<tCase> {
 protected:
  void SetUp() override {
    FakeWindowsTest::SetUp();
    proxy.open(machine().pathOf({kSimulatorInterfaceController, 0}).c_str(), status);
    ASSERT_EQ(status.code, QUENRA_STATUS_SUCCESS);
    faultPlan().reset();
  }
  void TearDown() override {
    proxy.close();
    FakeWindowsTest::TearDown();
  }

  // Makes the driver fill every read completely and count `size` bytes of it.
  void serveReads(uint32_t size, uint32_t windowsError = ERROR_SUCCESS) {
    machine().useTransferDriver({.read =
                                     [this, size, windowsError](std::span<uint8_t> buffer) {
                                       requestedSizes.push_back(buffer.size());
                                       const tBytes bytes = pattern(buffer.size());
                                       std::copy(bytes.begin(), bytes.end(), buffer.begin());
                                       return tModelReply{windowsError, size};
                                     },
                                 .write = nullptr});
  }
  // Makes the driver accept `size` bytes of every write.
  void serveWrites(uint32_t size) {
    machine().useTransferDriver(
        {.read = nullptr, .write = [this, size](std::span<const uint8_t> buffer) {
           written.emplace_back(buffer.begin(), buffer.end());
           return tModelReply{ERROR_SUCCESS, size};
         }});
  }
  void expectOneCall(tCall call) {
    const bool isPendingFirst = GetParam().completion == tCompletion::later;
    EXPECT_EQ(faultPlan().callCount(call), 1u);
    EXPECT_EQ(faultPlan().callCount(tCall::getOverlappedResult), isPendingFirst ? 1u : 0u);
    EXPECT_EQ(faultPlan().callCount(), isPendingFirst ? 2u : 1u);
  }

  tStatus status;
  tDeviceInterfaceProxy proxy;
  std::vector<size_t> requestedSizes;
  std::vector<tBytes> written;
};

TEST_P(DeviceTransfer, Read_ReturnsTheByteCountAndFillsThatManyBytes) {
  serveReads(GetParam().transferred);
  faultPlan().complete(GetParam().completion);
  tBytes buffer(kCapacity + 1, kUntouched);
  EXPECT_EQ(proxy.read(buffer.data(), kCapacity, status), GetParam().transferred);
  EXPECT_EQ(status.code, QUENRA_STATUS_SUCCESS);
  tBytes expected(kCapacity + 1, kUntouched);
  std::copy_n(pattern(kCapacity).begin(), GetParam().transferred, expected.begin());
  EXPECT_EQ(buffer, expected);
  EXPECT_EQ(requestedSizes, std::vector<size_t>{kCapacity});
  expectOneCall(tCall::readFile);
}

TEST_P(DeviceTransfer, Write_ReturnsTheByteCountAndPassesEveryByte) {
  serveWrites(GetParam().transferred);
  faultPlan().complete(GetParam().completion);
  const tBytes bytes = pattern(kCapacity);
  EXPECT_EQ(proxy.write(bytes.data(), kCapacity, status), GetParam().transferred);
  EXPECT_EQ(status.code, QUENRA_STATUS_SUCCESS);
  EXPECT_EQ(written, std::vector<tBytes>{bytes});
  expectOneCall(tCall::writeFile);
}

TEST_P(DeviceTransfer, OnAWarning_KeepsTheWarning) {
  serveReads(GetParam().transferred);
  faultPlan().complete(GetParam().completion);
  status.code = QUENRA_STATUS_IO_PENDING;
  tBytes buffer(kCapacity);
  EXPECT_EQ(proxy.read(buffer.data(), kCapacity, status), GetParam().transferred);
  serveWrites(GetParam().transferred);
  EXPECT_EQ(proxy.write(buffer.data(), kCapacity, status), GetParam().transferred);
  EXPECT_EQ(status.code, QUENRA_STATUS_IO_PENDING);
}

INSTANTIATE_TEST_SUITE_P(Of, DeviceTransfer,
                         testing::Values(tCase{"AllAtOnce", tCompletion::atOnce, kCapacity},
                                         tCase{"SomeAtOnce", tCompletion::atOnce, 3},
                                         tCase{"NoneAtOnce", tCompletion::atOnce, 0},
                                         tCase{"AllLater", tCompletion::later, kCapacity},
                                         tCase{"SomeLater", tCompletion::later, 3},
                                         tCase{"NoneLater", tCompletion::later, 0}),
                         [](const auto& transfer) { return transfer.param.name; });

class DeviceTransferOnce : public DeviceTransfer {};

TEST_F(DeviceTransferOnce, SizesOfEveryTransfer_ReachTheDriverUnchanged) {
  for (const uint32_t size : {0u, 1u, kCapacity, 4096u, 100'000u}) {
    tBytes buffer(size);
    serveReads(size);
    EXPECT_EQ(proxy.read(buffer.data(), size, status), size);
    EXPECT_EQ(buffer, pattern(size));
    EXPECT_EQ(requestedSizes.back(), size);
    serveWrites(size);
    EXPECT_EQ(proxy.write(buffer.data(), size, status), size);
    EXPECT_EQ(written.back(), buffer);
  }
  EXPECT_EQ(status.code, QUENRA_STATUS_SUCCESS);
}

TEST_F(DeviceTransferOnce, ReadThatFails_ReturnsNoBytesAndKeepsWhatTheDriverTransferred) {
  serveReads(3, ERROR_HANDLE_EOF);
  tBytes buffer(kCapacity, kUntouched);
  EXPECT_EQ(proxy.read(buffer.data(), kCapacity, status), 0u);
  EXPECT_EQ(status.code, QUENRA_STATUS_END_OF_FILE);
  EXPECT_EQ(status.line, 153u);
  EXPECT_EQ((tBytes{buffer.begin(), buffer.begin() + 4}),
            (tBytes{byteAt(0), byteAt(1), byteAt(2), kUntouched}));
}

TEST_F(DeviceTransferOnce, OnAStatusInError_CallsNothing) {
  serveReads(kCapacity);
  status.code = QUENRA_STATUS_GENERIC_FAILURE;
  tBytes buffer(kCapacity, kUntouched);
  EXPECT_EQ(proxy.read(buffer.data(), kCapacity, status), 0u);
  EXPECT_EQ(proxy.write(buffer.data(), kCapacity, status), 0u);
  EXPECT_EQ(status.code, QUENRA_STATUS_GENERIC_FAILURE);
  EXPECT_EQ(buffer, tBytes(kCapacity, kUntouched));
  EXPECT_EQ(faultPlan().callCount(), 0u);
}

}  // namespace
}  // namespace nTests
