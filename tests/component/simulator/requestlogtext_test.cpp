#include "simulator/control/requestlogtext.h"

#include <gtest/gtest.h>

#include <cstring>

#include "protocol/controllerrequests.h"
#include "protocol/pendingrequests.h"

namespace nTests {
namespace {

using nSimulator::requestLogLine;

template <class Request, class Reply>
tSimulatorLogEntry entryOf(uint32_t code, const Request& request, const Reply& reply) {
  tSimulatorLogEntry entry{};
  entry.sequence = 12;
  entry.process = 88;
  entry.file = 3;
  entry.event = kSimulatorEventRequest;
  entry.interfaceKind = kSimulatorInterfaceController;
  entry.requestCode = code;
  entry.inputSize = sizeof request;
  entry.outputSize = sizeof reply;
  std::memcpy(entry.input, &request, sizeof request);
  std::memcpy(entry.output, &reply, sizeof reply);
  return entry;
}

TEST(RequestLogText, TellsOpeningAndClosing) {
  tSimulatorLogEntry entry{};
  entry.sequence = 1;
  entry.process = 88;
  entry.file = 3;
  entry.interfaceKind = kSimulatorInterfaceMarten;
  entry.event = kSimulatorEventOpen;
  EXPECT_EQ(requestLogLine(entry), "1 process 88 marten#3 open");
  entry.event = kSimulatorEventClose;
  EXPECT_EQ(requestLogLine(entry), "1 process 88 marten#3 close");
}

TEST(RequestLogText, NamesTheMembersOfARequestAndItsReply) {
  tGetAttributeRequest request{};
  request.attribute = 0x20044C00;
  request.buffer = 0x7FFE1000;
  request.size = 4;
  request.callerStatus = 5;
  EXPECT_EQ(
      requestLogLine(entryOf(REQUEST_GET_ATTRIBUTE, request, tGetAttributeReply{4, -26934})),
      "12 process 88 controller#3 get-attribute attribute=0x20044C00 buffer=0x7FFE1000 size=4 "
      "caller=5 -> size=4 status=-26934");
  EXPECT_EQ(
      requestLogLine(entryOf(REQUEST_EXCHANGE_VALUES, tExchangeValuesRequest{1, 2, 0, 3, 4, 0},
                             tExchangeValuesReply{5, 6, 0})),
      "12 process 88 controller#3 exchange-values text=0x1 text-size=2 table=0x3 table-size=4 "
      "caller=0 -> text-size=5 table-size=6 status=0");
}

TEST(RequestLogText, TellsTheLifeOfAPendingRequest) {
  tPendingWideRequest request{};
  request.handleAddress = 0x7FFE1000;
  request.event = 0x44;
  request.a = 1;
  request.b = 0x100000000;
  request.c = 3;
  const uint64_t handle = 9;
  tSimulatorLogEntry entry = entryOf(REQUEST_PENDING_WIDE, request, handle);
  entry.windowsError = 997;
  EXPECT_EQ(requestLogLine(entry),
            "12 process 88 controller#3 pending-request-wide handle=0x7FFE1000 event=0x44 a=1 "
            "b=4294967296 c=3 -> pending");
  entry.windowsError = 0;
  entry.event = kSimulatorEventAccepted;
  EXPECT_EQ(requestLogLine(entry),
            "12 process 88 controller#3 accepted pending-request-wide handle=9");
  entry.event = kSimulatorEventCompleted;
  EXPECT_EQ(requestLogLine(entry),
            "12 process 88 controller#3 completed pending-request-wide handle=9");
  entry.windowsError = 995;
  EXPECT_EQ(requestLogLine(entry),
            "12 process 88 controller#3 completed pending-request-wide handle=9 -> Windows error "
            "995");
}

TEST(RequestLogText, NamesTheMembersOfANarrowRequestAndOfItsEnd) {
  tPendingNarrowRequest request{};
  request.a = 65535;
  request.b = 0xFFFFFFFF;
  request.c = 255;
  tSimulatorLogEntry entry = entryOf(REQUEST_PENDING_NARROW, request, uint64_t{0});
  entry.windowsError = 21;
  EXPECT_EQ(requestLogLine(entry),
            "12 process 88 controller#3 pending-request handle=0x0 event=0x0 a=65535 b=4294967295 "
            "c=255 -> Windows error 21");
  entry = entryOf(REQUEST_END_PENDING, tEndPendingRequest{9}, uint64_t{0});
  entry.outputSize = 0;
  EXPECT_EQ(requestLogLine(entry), "12 process 88 controller#3 end-pending handle=9 ->");
}

TEST(RequestLogText, TellsAWindowsErrorInsteadOfAReply) {
  tSimulatorLogEntry entry = entryOf(REQUEST_GET_ATTRIBUTE, tGetAttributeRequest{}, uint8_t{0});
  entry.windowsError = 121;
  EXPECT_EQ(requestLogLine(entry),
            "12 process 88 controller#3 get-attribute attribute=0x0 buffer=0x0 size=0 caller=0 -> "
            "Windows error 121");
}

TEST(RequestLogText, MarksWhatWasNotSent) {
  tSimulatorLogEntry entry =
      entryOf(REQUEST_GET_ATTRIBUTE, tGetAttributeRequest{}, tGetAttributeReply{});
  entry.inputSize = 20;
  entry.outputSize = 4;
  EXPECT_EQ(requestLogLine(entry),
            "12 process 88 controller#3 get-attribute attribute=0x0 buffer=0x0 size=0 "
            "caller=(missing) -> size=0 status=(missing)");
}

TEST(RequestLogText, ShowsTheBytesOfAnUnknownRequest) {
  const tSimulatorLogEntry entry = entryOf(0x12345678, uint16_t{0xAB01}, uint8_t{0xFF});
  EXPECT_EQ(requestLogLine(entry), "12 process 88 controller#3 0x12345678 01 AB -> FF");
}

}  // namespace
}  // namespace nTests
