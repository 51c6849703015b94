// The core that all typed calls share, on replies of any size.
#include <gtest/gtest.h>

#include <array>
#include <cstddef>

#include "codegen/apalcodegen/marshalling.h"
#include "tests/component/apalcodegen/trecordingdevice.h"

namespace nTests {
namespace {

using nQUENRA1400::nZOAPAL000::sendRequest;
using nZOAPALS100::mergeStatus;
using nZOAPALS100::tStatus;

using tReply = std::array<std::byte, 4>;

constexpr std::byte kOld{0xEE};
constexpr std::array kRequest{std::byte{1}, std::byte{2}};

TEST(SendRequest, ShortReply_LeavesZerosBehindIt) {
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
  device.transportWill([](tStatus& transport) { mergeStatus(transport, -52009, {"device", 110}); });
  tReply reply{};
  tStatus status;
  EXPECT_FALSE(sendRequest(device, 0x1234, kRequest, reply, status));
  EXPECT_EQ(status.code, -52009);
  EXPECT_STREQ(status.file, "device");
}

}  // namespace
}  // namespace nTests
