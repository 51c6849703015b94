// The delivery of a payload by the driver, from this process's memory to the machine's sinks.
#include <gtest/gtest.h>

#include <bit>
#include <vector>

#include "codegen/apalcodegen/tinterfaceproxy_hostcontroller.h"
#include "codegen/apalcodegen/tinterfaceproxy_hostmarten.h"
#include "simulator/control/tsimulatedmachine.h"
#include "simulator/model/sha256.h"
#include "zoapal/protons/enumeration/windows/tdeviceinterfaceiterator.h"

namespace nTests {
namespace {

using namespace nQUENRA1400::nZOAPAL000;
using nZOAPALS100::tStatus;

class FirmwareDelivery : public testing::Test {
 protected:
  void SetUp() override { machine.reset(); }
  void TearDown() override { machine.reset(); }

  // Sends the payload to the only interface of a class; returns the driver's code.
  template <class Proxy>
  static int32_t send(const tInterfaceClass& interfaceClass, const void* payload, uint32_t size) {
    tStatus status;
    tDeviceInterfaceIterator interfaces(interfaceClass, status);
    tDeviceInterfaceProxy device;
    interfaces.openCurrent(device, status);
    EXPECT_EQ(status.code, 0);
    Proxy proxy(device);
    proxy.sendCommand(reinterpret_cast<uintptr_t>(payload), size, status);
    device.close();
    return status.code;
  }
  static std::vector<uint8_t> payloadOf(size_t size) {
    std::vector<uint8_t> payload(size);
    for (size_t i = 0; i < size; ++i) {
      payload[i] = static_cast<uint8_t>(i * 13 + i / 253);
    }
    return payload;
  }
  static std::vector<uint8_t> hashOf(const std::vector<uint8_t>& payload) {
    tSha256 hash;
    sha256Start(&hash);
    sha256Add(&hash, payload.data(), static_cast<uint32_t>(payload.size()));
    std::vector<uint8_t> result(SHA256_SIZE);
    sha256Finish(&hash, result.data());
    return result;
  }
  static std::vector<uint8_t> hashOf(const tSimulatorPayload& payload) {
    return {payload.sha256, payload.sha256 + SIMULATOR_HASH_SIZE};
  }

  nSimulator::tSimulatedMachine machine;
};

TEST_F(FirmwareDelivery, Payloads_ArriveWholeAtTheirInterfaces) {
  const std::vector<uint8_t> small = payloadOf(100);
  const std::vector<uint8_t> large = payloadOf(1'000'003);
  EXPECT_EQ(
      send<tInterfaceProxy_hostController>(kControllerInterfaceClass, large.data(), 1'000'003), 0);
  EXPECT_EQ(send<tInterfaceProxy_hostMarten>(kMartenInterfaceClass, small.data(), 100), 0);
  const auto payloads = machine.firmware();
  ASSERT_EQ(payloads.size(), 2u);
  EXPECT_EQ(payloads[0].interfaceKind, uint32_t{kSimulatorInterfaceController});
  EXPECT_EQ(payloads[0].size, 1'000'003u);
  EXPECT_EQ(hashOf(payloads[0]), hashOf(large));
  EXPECT_EQ(payloads[1].interfaceKind, uint32_t{kSimulatorInterfaceMarten});
  EXPECT_EQ(hashOf(payloads[1]), hashOf(small));
  machine.clearFirmware();
  EXPECT_TRUE(machine.firmware().empty());
}

TEST_F(FirmwareDelivery, PayloadThatCannotBeRead_IsRefused) {
  EXPECT_EQ(send<tInterfaceProxy_hostMarten>(kMartenInterfaceClass, std::bit_cast<void*>(8ull), 16),
            SIMULATOR_STATUS_BAD_ADDRESS);
  EXPECT_TRUE(machine.firmware().empty());
}

}  // namespace
}  // namespace nTests
