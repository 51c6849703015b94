// The bytes of each request that a typed interface sends, and the sending that all of them share.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstddef>

#include "codegen/apalcodegen/marshalling.h"
#include "quenra_status.h"
#include "tests/component/apalcodegen/requests.h"
#include "tests/component/apalcodegen/trecordingdevice.h"

namespace nTests {
namespace {

using nQUENRA1400::nZOAPAL000::sendRequest;
using nZOAPALS100::mergeStatus;
using nZOAPALS100::tStatus;

// ---- Requests of the typed interfaces ----

// The golden bytes with the caller's status code in its place.
std::string goldenRequest(const tRequestPromise& promise, std::string_view callerStatus) {
  std::vector<uint8_t> bytes = bytesOf(promise.goldenBytes);
  const std::vector<uint8_t> status = bytesOf(callerStatus);
  const std::vector<uint8_t> end = bytesOf(promise.goldenEnd);
  bytes.insert(bytes.end(), status.begin(), status.end());
  bytes.insert(bytes.end(), end.begin(), end.end());
  return hexadecimalOf(bytes);
}

TEST_P(EveryRequest, OnACleanStatus_IsTheGoldenBytes) {
  tStatus status;
  send(status);
  ASSERT_EQ(device_.requests().size(), 1u);
  const auto& request = device_.requests()[0];
  EXPECT_EQ(request.code, GetParam().code);
  EXPECT_EQ(hexadecimalOf(request.in), goldenRequest(GetParam(), "00 00 00 00"));
  EXPECT_EQ(request.outSize, GetParam().replySize);
}

TEST_P(EveryRequest, OnAWarning_ContainsItsCode) {
  tStatus status;
  mergeStatus(status, 5, {"caller", 1});
  send(status);
  ASSERT_EQ(device_.requests().size(), 1u);
  EXPECT_EQ(hexadecimalOf(device_.requests()[0].in), goldenRequest(GetParam(), "05 00 00 00"));
}

TEST_P(EveryRequest, OnALargeWarning_ContainsAllItsBytes) {
  tStatus status;
  mergeStatus(status, 0x7A7B7C7D, {"caller", 1});
  send(status);
  ASSERT_EQ(device_.requests().size(), 1u);
  EXPECT_EQ(hexadecimalOf(device_.requests()[0].in), goldenRequest(GetParam(), "7d 7c 7b 7a"));
}

TEST_P(EveryRequest, OnAnError_IsNotSent) {
  tStatus status;
  mergeStatus(status, QUENRA_STATUS_GENERIC_FAILURE, {"caller", 1});
  send(status);
  EXPECT_TRUE(device_.requests().empty());
  EXPECT_EQ(outs_, tOuts());
  EXPECT_EQ(status.code, QUENRA_STATUS_GENERIC_FAILURE);
  EXPECT_STREQ(status.file, "caller");
}

TEST_P(EveryRequest, TransportStatus_IsFreshButForTheCallersCode) {
  tStatus status;
  mergeStatus(status, 5, {"caller", 77, "component"});
  status.extension[0] = 9;
  send(status);
  ASSERT_EQ(device_.requests().size(), 1u);
  const tStatus& transport = device_.requests()[0].transport;
  EXPECT_EQ(transport.structSize, 208u);
  EXPECT_EQ(transport.code, 5);
  EXPECT_STREQ(transport.component, "");
  EXPECT_STREQ(transport.file, "");
  EXPECT_EQ(transport.line, 0u);
  EXPECT_EQ(transport.extension[0], 0u);
}

TEST_P(EveryRequest, SentTwice_IsTheSameTwice) {
  for (int i = 0; i < 2; ++i) {
    tStatus status;
    outs_ = {};
    send(status);
  }
  ASSERT_EQ(device_.requests().size(), 2u);
  EXPECT_EQ(device_.requests()[0].in, device_.requests()[1].in);
}

INSTANTIATE_TEST_SUITE_P(Sent, EveryRequest, testing::ValuesIn(kAllRequests), nameOf);

TEST(ExchangeValues, QueryOfTheSizes_SendsZeros) {
  tRecordingDevice device;
  nQUENRA1400::nZOAPAL000::tInterfaceProxy_hostController controller(device);
  tStatus status;
  uint32_t textSize = 0;
  int32_t tableSize = 0;
  controller.exchangeValues(0, textSize, 0, tableSize, status);
  ASSERT_EQ(device.requests().size(), 1u);
  EXPECT_EQ(device.requests()[0].in, std::vector<uint8_t>(32));
}

// A typed interface is itself a channel and forwards to its device.
template <class Interface>
class TypedInterface : public testing::Test {};
using tInterfaces = testing::Types<nQUENRA1400::nZOAPAL000::tInterfaceProxy_hostController,
                                   nQUENRA1400::nZOAPAL000::tInterfaceProxy_hostMarten,
                                   nQUENRA1400::nZOAPAL000::tInterfaceProxy_routing>;
TYPED_TEST_SUITE(TypedInterface, tInterfaces);

TYPED_TEST(TypedInterface, AsAChannel_PassesThroughToItsDevice) {
  tRecordingDevice device;
  TypeParam typed(device);
  nQUENRA1400::nZOAPAL000::iInterfaceProxy& channel = typed;
  tStatus status;
  EXPECT_EQ(channel.read(nullptr, 7, status), 7u);
  EXPECT_EQ(channel.write(nullptr, 8, status), 8u);
  nQUENRA1400::nZOAPAL000::tPendingRequest pending;
  EXPECT_EQ(channel.beginPendingRequest(1, 20, 3, pending, status), 24u);
  channel.endPendingRequest(pending);
  channel.close();
  EXPECT_THAT(
      device.passedThrough(),
      testing::ElementsAre(testing::StrEq("read"), testing::StrEq("write"), testing::StrEq("begin"),
                           testing::StrEq("end"), testing::StrEq("close")));
}

TYPED_TEST(TypedInterface, AsAChannel_SendsRequestsToItsDevice) {
  tRecordingDevice device;
  device.answerWith({9});
  TypeParam typed(device);
  nQUENRA1400::nZOAPAL000::iInterfaceProxy& channel = typed;
  tStatus status;
  const uint8_t request = 5;
  uint8_t reply = 0;
  EXPECT_EQ(channel.deviceControl(0x1234, &request, sizeof request, &reply, sizeof reply, status),
            1u);
  EXPECT_EQ(reply, 9);
  ASSERT_EQ(device.requests().size(), 1u);
  EXPECT_EQ(device.requests()[0].code, 0x1234u);
  EXPECT_EQ(device.requests()[0].in, std::vector<uint8_t>{5});
}

TYPED_TEST(TypedInterface, Destroyed_LeavesItsDeviceOpen) {
  tRecordingDevice device;
  { const TypeParam typed(device); }
  EXPECT_TRUE(device.passedThrough().empty());
}

// ---- Sending ----

using tReply = std::array<std::byte, 4>;

constexpr std::byte kOld{0xEE};
constexpr std::array kRequest{std::byte{1}, std::byte{2}};

TEST(SendRequest, ShortReply_IsFollowedByZeros) {
  tRecordingDevice device;
  device.answerWith({7, 8});
  tReply reply{kOld, kOld, kOld, kOld};
  tStatus status;
  EXPECT_TRUE(sendRequest(device, 0x1234, kRequest, reply, status));
  EXPECT_EQ(reply, (tReply{std::byte{7}, std::byte{8}, std::byte{0}, std::byte{0}}));
}

TEST(SendRequest, StatusWithAnError_SendsNothingAndLeavesTheReply) {
  tRecordingDevice device;
  tReply reply{kOld, kOld, kOld, kOld};
  tStatus status;
  mergeStatus(status, -3, {"caller", 1});
  EXPECT_FALSE(sendRequest(device, 0x1234, kRequest, reply, status));
  EXPECT_TRUE(device.requests().empty());
  EXPECT_EQ(reply, (tReply{kOld, kOld, kOld, kOld}));
}

TEST(SendRequest, TransportFailure_IsReportedAndMerged) {
  tRecordingDevice device;
  device.transportWill([](tStatus& transport) {
    mergeStatus(transport, QUENRA_STATUS_ACCESS_DENIED, {"device", 110});
  });
  tReply reply{};
  tStatus status;
  EXPECT_FALSE(sendRequest(device, 0x1234, kRequest, reply, status));
  EXPECT_EQ(status.code, QUENRA_STATUS_ACCESS_DENIED);
  EXPECT_STREQ(status.file, "device");
}

}  // namespace
}  // namespace nTests
