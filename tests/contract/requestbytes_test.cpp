// The requests that reach the driver, byte by byte. Numbers instead of symbols: the tests pin them.
#include <bit>
#include <cstdlib>
#include <cstring>

#include "quenra_routing.h"
#include "tests/contract/contracttest.h"

namespace nTests {
namespace {

// The number at an offset of a request.
uint64_t numberAt(const tSimulatorLogEntry& entry, size_t offset, size_t width) {
  uint64_t number = 0;
  std::memcpy(&number, entry.input + offset, width);
  return number;
}

class RequestBytes : public ContractTest {
 protected:
  static uint64_t addressOf(const void* memory) { return std::bit_cast<uintptr_t>(memory); }

  void expectGetAttribute(tSimulatorInterface interfaceKind, uint32_t attribute, const void* buffer,
                          uint32_t size) {
    const auto entries = requests(0x807BE004);
    ASSERT_EQ(entries.size(), 1u);
    const tSimulatorLogEntry& entry = entries[0];
    EXPECT_EQ(entry.interfaceKind, static_cast<uint32_t>(interfaceKind));
    EXPECT_EQ(entry.inputSize, 24u);
    EXPECT_EQ(numberAt(entry, 0, 4), attribute);
    EXPECT_EQ(numberAt(entry, 4, 4), 0u) << "padding";
    EXPECT_EQ(numberAt(entry, 8, 8), addressOf(buffer));
    EXPECT_EQ(numberAt(entry, 16, 4), size);
    EXPECT_EQ(numberAt(entry, 20, 4), 0u) << "the caller's status";
    EXPECT_EQ(entry.outputSize, 8u);
  }
};

TEST_F(RequestBytes, UnsignedReadFromTheController_SendsItsRequest) {
  machine().setAttributeU32(kSimulatorInterfaceController, 0x20144C00, 6);
  open();
  machine().clearLog();
  uint32_t value = 0;
  ASSERT_EQ(QUENRA_getAttributeU32(QUENRA_HANDLE, 0x20144C00, &value), 0);
  EXPECT_EQ(value, 6u);
  expectGetAttribute(kSimulatorInterfaceController, 0x20144C00, &value, 4);
}

TEST_F(RequestBytes, UnsignedReadFromMarten_SendsItsRequest) {
  machine().setAttributeU32(kSimulatorInterfaceMarten, 0x20213100, 6);
  open();
  machine().clearLog();
  uint32_t value = 0;
  ASSERT_EQ(QUENRA_getAttributeU32(QUENRA_HANDLE, 0x20213100, &value), 0);
  expectGetAttribute(kSimulatorInterfaceMarten, 0x20213100, &value, 4);
}

TEST_F(RequestBytes, TextReadFromMarten_SendsItsRequest) {
  machine().setAttributeText(kSimulatorInterfaceMarten, 0x10000400, "M-9.8");
  open();
  machine().clearLog();
  char buffer[40] = "";
  uint64_t size = sizeof buffer;
  ASSERT_EQ(QUENRA_getAttributeUTF8(QUENRA_HANDLE, 0x10000400, buffer, &size), 0);
  expectGetAttribute(kSimulatorInterfaceMarten, 0x10000400, buffer, 40);
}

TEST_F(RequestBytes, TruncatedReply_ReadsAsZeros) {
  open();
  tSimulatorScript script{};
  script.interfaceKind = kSimulatorInterfaceMarten;
  script.requestCode = 0x807BE004;
  script.action = kSimulatorActionTruncate;
  script.replySize = 0;
  machine().addScript(script);
  machine().setAttributeText(kSimulatorInterfaceMarten, 0x10000400, "M-9.8");
  EXPECT_EQ(readText(0x10000400), (tTextRead{0, "", 0})) << "a text of the 0 bytes reported";
}

// ---- The routing exports ----

char* reallocateAnswer(char* current, size_t required, const char*, size_t) {
  return static_cast<char*>(std::realloc(current, required));
}

constexpr const char* kTwoSeeds = R"([{"terminal":"TRIG_SMB","cost":1,"constraints":{}},)"
                                  R"({"terminal":"WD_Terminal","cost":2,"constraints":{}}])";
constexpr const char* kThreeDestinations = R"(["PXI_Trig0","PXI_Trig1","PXI_Trig2"])";
constexpr uint32_t kTicket = 0xA1B2C3D4;
constexpr int32_t kWarning = 7;

// A session under a warning, so that the caller's status in a request is not 0.
class RoutingRequestBytes : public ContractTest {
 protected:
  void SetUp() override {
    ContractTest::SetUp();
    zoerr_Status created = zoerr_Status_initial();
    created.code = kWarning;
    session_ = zoroco_ra_quenra_createSession(
        readText(QUENRA_ATTRIBUTE_DEVICE_PATH, 256).text.c_str(), &reallocateAnswer, &created);
    ASSERT_NE(session_, nullptr);
    zoerr_Status_release(&created);
  }
  void TearDown() override {
    zoroco_ra_quenra_destroySession(session_);
    zoerr_Status_release(&status_);
    std::free(output_);
    ContractTest::TearDown();
  }

  // The one request with this code; its size is that of its fields.
  tSimulatorLogEntry onlyRequest(uint32_t code, size_t size) {
    const auto entries = requests(code);
    EXPECT_EQ(entries.size(), 1u);
    if (entries.empty()) {
      return {};
    }
    EXPECT_EQ(entries[0].interfaceKind, static_cast<uint32_t>(kSimulatorInterfaceDevicePath));
    EXPECT_EQ(entries[0].inputSize, size);
    return entries[0];
  }
  void calculate(const char* seeds, const char* destinations, const char* modifiers) {
    zoroco_ra_quenra_calculateRoute(session_, seeds, destinations, modifiers, &output_, &status_);
  }
  zoerr_Status* underAWarning() {
    status_.code = kWarning;
    return &status_;
  }
  void expectTicketRequest(uint32_t code, int32_t callerStatus) {
    const tSimulatorLogEntry entry = onlyRequest(code, 8);
    EXPECT_EQ(numberAt(entry, 0, 4), kTicket);
    EXPECT_EQ(numberAt(entry, 4, 4), static_cast<uint32_t>(callerStatus));
    EXPECT_EQ(entry.outputSize, 4u);
  }
  void expectTicketListRequest(uint32_t code, uint32_t leastCount) {
    const tSimulatorLogEntry entry = onlyRequest(code, 24);
    EXPECT_EQ(numberAt(entry, 0, 4), kTicket);
    EXPECT_EQ(numberAt(entry, 4, 4), 0u) << "padding";
    EXPECT_NE(numberAt(entry, 8, 8), 0u);
    EXPECT_GE(numberAt(entry, 16, 4), leastCount);
    EXPECT_EQ(numberAt(entry, 20, 4), static_cast<uint32_t>(kWarning));
    EXPECT_EQ(entry.outputSize, 8u);
  }

  zoroco_RoutingAdaptorSession* session_ = nullptr;
  zoerr_Status status_ = zoerr_Status_initial();
  char* output_ = nullptr;
};

TEST_F(RoutingRequestBytes, CreateSession_SendsTheBufferOfTheTopographyName) {
  const tSimulatorLogEntry entry = onlyRequest(0x80802020, 16);
  EXPECT_NE(numberAt(entry, 0, 8), 0u);
  EXPECT_EQ(numberAt(entry, 8, 4), 128u);
  EXPECT_EQ(numberAt(entry, 12, 4), static_cast<uint32_t>(kWarning));
  EXPECT_EQ(entry.outputSize, 4u);
}

TEST_F(RoutingRequestBytes, CalculateRoute_SendsItsRecordsAndCounts) {
  underAWarning();
  calculate(kTwoSeeds, kThreeDestinations, R"({"required":{"calculateIgnoresReservations":true}})");
  const tSimulatorLogEntry entry = onlyRequest(0x80802004, 56);
  EXPECT_NE(numberAt(entry, 0, 8), 0u) << "modifiers";
  EXPECT_NE(numberAt(entry, 8, 8), 0u) << "seeds";
  EXPECT_EQ(numberAt(entry, 16, 4), 2u);
  EXPECT_EQ(numberAt(entry, 20, 4), 0u) << "padding";
  EXPECT_NE(numberAt(entry, 24, 8), 0u) << "destinations";
  EXPECT_EQ(numberAt(entry, 32, 4), 3u);
  EXPECT_EQ(numberAt(entry, 36, 4), 1u) << "options";
  EXPECT_NE(numberAt(entry, 40, 8), 0u) << "routes";
  EXPECT_EQ(numberAt(entry, 48, 4), 6u) << "two routes for each destination";
  EXPECT_EQ(numberAt(entry, 52, 4), static_cast<uint32_t>(kWarning));
  EXPECT_EQ(entry.outputSize, 12u);
}

TEST_F(RoutingRequestBytes, CalculateRouteOfEmptyLists_SendsNoAddresses) {
  calculate("[]", "[]", "{}");
  const tSimulatorLogEntry entry = onlyRequest(0x80802004, 56);
  EXPECT_NE(numberAt(entry, 0, 8), 0u) << "modifiers";
  for (size_t offset = 8; offset < 56; offset += 8) {
    EXPECT_EQ(numberAt(entry, offset, 8), 0u) << offset;
  }
}

TEST_F(RoutingRequestBytes, ReserveRoute_SendsABufferOf8Conflicts) {
  zoroco_ra_quenra_reserveRoute(session_, kTicket, &output_, underAWarning());
  expectTicketListRequest(0x8080200C, 8);
  EXPECT_EQ(numberAt(onlyRequest(0x8080200C, 24), 16, 4), 8u);
}

TEST_F(RoutingRequestBytes, GetRouteTerminalPath_SendsABufferOfAtLeast32Terminals) {
  zoroco_ra_quenra_getRouteTerminalPath(session_, kTicket, &output_, underAWarning());
  expectTicketListRequest(0x8080201C, 32);
}

TEST_F(RoutingRequestBytes, ProgramRoute_SendsTheTicketAndTheCallersStatus) {
  zoroco_ra_quenra_programRoute(session_, kTicket, underAWarning());
  expectTicketRequest(0x80802010, kWarning);
}

TEST_F(RoutingRequestBytes, TeardownSteps_SendTheTicketAndNoStatus) {
  zoroco_ra_quenra_unprogramRoute(session_, kTicket, 1, 2);
  zoroco_ra_quenra_unreserveRoute(session_, kTicket, 3, 4);
  zoroco_ra_quenra_destroyRoute(session_, kTicket, 5, 6);
  expectTicketRequest(0x80802018, 0);
  expectTicketRequest(0x80802014, 0);
  expectTicketRequest(0x80802008, 0);
}

TEST_F(RoutingRequestBytes, BeginExceptionalRouteDestruction_SendsNothing) {
  machine().clearLog();
  zoroco_ra_quenra_beginExceptionalRouteDestruction(session_, kTicket, 1, 2);
  EXPECT_EQ(machine().log().size(), 0u);
}

TEST_F(RoutingRequestBytes, ResetsOfATerminal_SendItsIdAndTheMode) {
  zoroco_TerminalIterator* const iterator =
      zoroco_ra_quenra_getAllTerminals(session_, underAWarning(), 0);
  zoroco_ra_quenra_TerminalIterator_next(iterator, &status_);
  zoroco_ra_quenra_TerminalIterator_resetTerminal(iterator, "floating", &status_);
  zoroco_ra_quenra_TerminalIterator_calculateResetTerminal(session_, iterator, "floating",
                                                           &status_);
  zoroco_ra_quenra_TerminalIterator_destroy(iterator);
  const tSimulatorLogEntry reset = onlyRequest(0x80802028, 12);
  EXPECT_EQ(numberAt(reset, 0, 4), 2u);
  EXPECT_EQ(numberAt(reset, 4, 4), 1u);
  EXPECT_EQ(numberAt(reset, 8, 4), static_cast<uint32_t>(kWarning));
  EXPECT_EQ(reset.outputSize, 4u);
  const tSimulatorLogEntry calculation = onlyRequest(0x8080202C, 24);
  EXPECT_EQ(numberAt(calculation, 0, 8), 0u) << "reserved";
  EXPECT_EQ(numberAt(calculation, 8, 4), 2u);
  EXPECT_EQ(numberAt(calculation, 12, 4), 1u);
  EXPECT_EQ(numberAt(calculation, 16, 4), static_cast<uint32_t>(kWarning));
  EXPECT_EQ(numberAt(calculation, 20, 4), 0u) << "padding";
  EXPECT_EQ(calculation.outputSize, 8u);
}

}  // namespace
}  // namespace nTests
