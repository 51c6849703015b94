// Byte counts and buffers of reads and writes, with a driver that serves them.
#include <algorithm>
#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "quenra_status.h"
#include "tests/fakewindows/fakewindowstest.h"
#include "zoapal/protons/driver/windowsu/tdeviceinterfaceproxy.h"

namespace nTests {
namespace {

using nFakeWindows::faultPlan;
using nFakeWindows::machine;
using nFakeWindows::tCall;
using nFakeWindows::tCompletion;
using nQUENRA1400::nZOAPAL000::tDeviceInterfaceProxy;
using nZOAPALS100::tStatus;
using tBytes = std::vector<uint8_t>;

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
