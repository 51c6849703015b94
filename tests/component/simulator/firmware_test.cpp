// Received firmware: its hash, its record in the model, and its delivery by the driver.
#include <algorithm>
#include <bit>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "codegen/apalcodegen/tinterfaceproxy_hostcontroller.h"
#include "codegen/apalcodegen/tinterfaceproxy_hostmarten.h"
#include "protocol/controllerrequests.h"
#include "sha256/sha256.h"
#include "simulator/control/tsimulatedmachine.h"
#include "tests/component/simulator/modeltest.h"
#include "zoapal/protons/enumeration/windows/tdeviceinterfaceiterator.h"

namespace nTests {
namespace {

using namespace nQUENRA1400::nZOAPAL000;
using nZOAPALS100::tStatus;

constexpr auto kController = kSimulatorInterfaceController;
constexpr auto kMarten = kSimulatorInterfaceMarten;

std::vector<uint8_t> hashOf(std::span<const uint8_t> payload) {
  tSha256 hash;
  sha256Start(&hash);
  sha256Add(&hash, payload.data(), static_cast<uint32_t>(payload.size()));
  std::vector<uint8_t> result(SHA256_SIZE);
  sha256Finish(&hash, result.data());
  return result;
}

std::vector<uint8_t> hashOf(const tSimulatorPayload& payload) {
  return {payload.sha256, payload.sha256 + SIMULATOR_HASH_SIZE};
}

// ---- The hash ----

std::string hexadecimal(const uint8_t* bytes, size_t size) {
  std::string text;
  for (size_t i = 0; i < size; ++i) {
    constexpr char kDigits[] = "0123456789abcdef";
    text += kDigits[bytes[i] >> 4];
    text += kDigits[bytes[i] & 15];
  }
  return text;
}

// The hash of bytes that are added in pieces of this size, in hexadecimal.
std::string hashInPieces(std::string_view bytes, size_t piece) {
  tSha256 hash;
  sha256Start(&hash);
  for (size_t done = 0; done < bytes.size(); done += piece) {
    const std::string_view part = bytes.substr(done, piece);
    sha256Add(&hash, part.data(), static_cast<uint32_t>(part.size()));
  }
  uint8_t result[SHA256_SIZE];
  sha256Finish(&hash, result);
  return hexadecimal(result, sizeof result);
}

struct tKnownHash {
  std::string bytes;
  const char* hash;
};
// From the examples of the standard and from sha256sum.
const tKnownHash kKnown[] = {
    {"", "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855"},
    {"abc", "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad"},
    {"abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq",
     "248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1"},
    {std::string(1000000, 'a'), "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0"},
};

TEST(Sha256, KnownTexts_HaveTheirKnownHashes) {
  for (const tKnownHash& known : kKnown) {
    EXPECT_EQ(hashInPieces(known.bytes, 4096), known.hash) << known.bytes.substr(0, 60);
  }
}

TEST(Sha256, AnyPieceSize_HasTheSameHash) {
  for (size_t size = 0; size < 200; ++size) {
    const std::string bytes(size, 'q');
    const std::string expected = hashInPieces(bytes, 1000);
    for (const size_t piece : {1u, 3u, 55u, 56u, 63u, 64u, 65u}) {
      ASSERT_EQ(hashInPieces(bytes, piece), expected) << size << " bytes in pieces of " << piece;
    }
  }
}

TEST(Sha256, EveryLength_HasAHashOfItsOwn) {
  std::vector<std::string> hashes;
  for (size_t size = 0; size < 200; ++size) {
    hashes.push_back(hashInPieces(std::string(size, '\0'), 64));
  }
  std::sort(hashes.begin(), hashes.end());
  EXPECT_EQ(std::adjacent_find(hashes.begin(), hashes.end()), hashes.end());
}

// ---- The record in the model ----

class ModelFirmware : public ModelTest {
 protected:
  int32_t send(tSimulatorInterface kind, uint64_t payload, uint32_t size, int32_t status = 0) {
    const uint32_t code =
        kind == kMarten ? REQUEST_MARTEN_SEND_COMMAND : REQUEST_CONTROLLER_SEND_COMMAND;
    const tSendCommandRequest sent = {payload, size, status};
    return recordOf<tStatusReply>(request(kind, code, sent, 4)).driverStatus;
  }
  std::vector<tSimulatorPayload> firmware() {
    return records<tSimulatorPayload>(SIMULATOR_READ_FIRMWARE, SIMULATOR_PAYLOAD_CAPACITY);
  }
  std::span<const uint8_t> callerBytes(uint64_t address, size_t size) const {
    return std::span(memory).subspan(address, size);
  }
  void fillMemory(size_t size) {
    memory.resize(size);
    for (size_t i = 0; i < size; ++i) {
      memory[i] = static_cast<uint8_t>(i * 7 + i / 251);
    }
  }
};

TEST_F(ModelFirmware, AtFirst_NoneWasReceived) {
  EXPECT_TRUE(firmware().empty());
}

TEST_F(ModelFirmware, Payload_IsRecordedWithSizeHashAndStart) {
  fillMemory(1000);
  EXPECT_EQ(send(kController, 0x10, 300, 5), 0);
  const auto payloads = firmware();
  ASSERT_EQ(payloads.size(), 1u);
  EXPECT_EQ(payloads[0].interfaceKind, uint32_t{kController});
  EXPECT_EQ(payloads[0].number, 1u);
  EXPECT_EQ(payloads[0].process, kProcess);
  EXPECT_EQ(payloads[0].size, 300u);
  EXPECT_EQ(payloads[0].callerStatus, 5);
  EXPECT_EQ(hashOf(payloads[0]), hashOf(callerBytes(0x10, 300)));
  EXPECT_EQ(std::memcmp(payloads[0].start, memory.data() + 0x10, SIMULATOR_PAYLOAD_START), 0);
}

TEST_F(ModelFirmware, ShortPayload_HasZerosAfterItsStart) {
  fillMemory(1000);
  EXPECT_EQ(send(kMarten, 0x10, 3), 0);
  const auto payloads = firmware();
  ASSERT_EQ(payloads.size(), 1u);
  EXPECT_EQ(std::memcmp(payloads[0].start, memory.data() + 0x10, 3), 0);
  EXPECT_EQ(payloads[0].start[3], 0);
}

TEST_F(ModelFirmware, PayloadLargerThanTheModelsMemory_IsReadCompletely) {
  for (const uint32_t size : {65535u, 65536u, 65537u, 200000u}) {
    fillMemory(size + 0x20);
    EXPECT_EQ(send(kMarten, 0x20, size), 0);
    const tSimulatorPayload latest = firmware().back();
    EXPECT_EQ(latest.size, size);
    EXPECT_EQ(hashOf(latest), hashOf(callerBytes(0x20, size)));
  }
}

TEST_F(ModelFirmware, EmptyPayload_IsRecorded) {
  EXPECT_EQ(send(kController, 0, 0), 0);
  const auto payloads = firmware();
  ASSERT_EQ(payloads.size(), 1u);
  EXPECT_EQ(payloads[0].size, 0u);
  EXPECT_EQ(hashOf(payloads[0]), hashOf(callerBytes(0, 0)));
}

TEST_F(ModelFirmware, PartlyUnreadablePayload_IsRejectedAndNotRecorded) {
  EXPECT_EQ(send(kController, 0, 1), SIMULATOR_STATUS_BAD_ADDRESS);
  EXPECT_EQ(send(kController, memory.size() - 9, 10), SIMULATOR_STATUS_BAD_ADDRESS);
  EXPECT_EQ(send(kController, 0x10, 0xFFFFFFFF), SIMULATOR_STATUS_BAD_ADDRESS)
      << "only the first piece is readable";
  EXPECT_TRUE(firmware().empty());
}

TEST_F(ModelFirmware, Interfaces_CountTheirOwn) {
  send(kController, 0x10, 1);
  send(kMarten, 0x10, 2);
  send(kController, 0x10, 3);
  const auto payloads = firmware();
  ASSERT_EQ(payloads.size(), 3u);
  EXPECT_EQ(payloads[1].number, 1u);
  EXPECT_EQ(payloads[1].interfaceKind, uint32_t{kMarten});
  EXPECT_EQ(payloads[2].number, 2u);
  EXPECT_EQ(payloads[2].interfaceKind, uint32_t{kController});
}

TEST_F(ModelFirmware, LatestPayloads_AreStored) {
  constexpr uint32_t kMore = 3;
  for (uint32_t i = 0; i < SIMULATOR_PAYLOAD_CAPACITY + kMore; ++i) {
    send(kMarten, 0x10, i);
  }
  const auto payloads = firmware();
  ASSERT_EQ(payloads.size(), size_t{SIMULATOR_PAYLOAD_CAPACITY});
  EXPECT_EQ(payloads.front().number, kMore + 1);
  EXPECT_EQ(payloads.front().size, kMore);
  EXPECT_EQ(payloads.back().number, SIMULATOR_PAYLOAD_CAPACITY + kMore);
}

TEST_F(ModelFirmware, ClearingOrReset_BeginsAgain) {
  for (const uint32_t code : {SIMULATOR_CLEAR_FIRMWARE, SIMULATOR_RESET}) {
    send(kMarten, 0x10, 1);
    send(kMarten, 0x10, 1);
    EXPECT_EQ(control(code).windowsError, kWindowsErrorNone);
    EXPECT_TRUE(firmware().empty());
    send(kMarten, 0x10, 1);
    EXPECT_EQ(firmware().at(0).number, 1u);
    control(SIMULATOR_CLEAR_FIRMWARE);
  }
}

TEST_F(ModelFirmware, ControlRequestsOfAWrongSize_AreRejected) {
  const std::vector<uint8_t> oneByte(1);
  EXPECT_EQ(control(SIMULATOR_READ_FIRMWARE, oneByte, 200).windowsError,
            kWindowsErrorInvalidParameter);
  EXPECT_EQ(control(SIMULATOR_CLEAR_FIRMWARE, oneByte).windowsError, kWindowsErrorInvalidParameter);
  send(kMarten, 0x10, 1);
  EXPECT_EQ(control(SIMULATOR_READ_FIRMWARE, {}, sizeof(tSimulatorPayload) - 1).windowsError,
            kWindowsErrorInsufficientBuffer);
}

TEST_F(ModelFirmware, ScriptedRejection_RecordsNothing) {
  tSimulatorScript script{};
  script.interfaceKind = kController;
  script.requestCode = REQUEST_CONTROLLER_SEND_COMMAND;
  script.times = 1;
  script.action = kSimulatorActionAnswerCode;
  script.driverStatus = -77;
  ASSERT_EQ(control(SIMULATOR_ADD_SCRIPT, script).windowsError, kWindowsErrorNone);
  EXPECT_EQ(send(kController, 0x10, 8), -77);
  EXPECT_TRUE(firmware().empty());
  EXPECT_EQ(send(kController, 0x10, 8), 0);
}

// ---- The delivery, from this process's memory to the record ----

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

  nSimulator::tSimulatedMachine machine;
};

TEST_F(FirmwareDelivery, Payloads_ArriveCompleteAtTheirInterfaces) {
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

TEST_F(FirmwareDelivery, UnreadablePayload_IsRejected) {
  EXPECT_EQ(send<tInterfaceProxy_hostMarten>(kMartenInterfaceClass, std::bit_cast<void*>(8ull), 16),
            SIMULATOR_STATUS_BAD_ADDRESS);
  EXPECT_TRUE(machine.firmware().empty());
}

}  // namespace
}  // namespace nTests
