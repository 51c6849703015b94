// The client of the control interface: the text of the log, and changes of a table.
#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "protocol/controllerrequests.h"
#include "protocol/pendingrequests.h"
#include "simulator/control/tsimulatedmachine.h"

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

TEST(RequestLogText, OpeningAndClosing_ShowTheFile) {
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

TEST(RequestLogText, RequestAndReply_ShowTheirMembersByName) {
  tGetAttributeRequest request{};
  request.attribute = 0x20044C00;
  request.buffer = 0x7FFE1000;
  request.size = 4;
  request.callerStatus = 5;
  EXPECT_EQ(
      requestLogLine(entryOf(REQUEST_GET_ATTRIBUTE, request,
                             tGetAttributeReply{4, SIMULATOR_STATUS_NOT_SUPPORTED})),
      "12 process 88 controller#3 get-attribute attribute=0x20044C00 buffer=0x7FFE1000 size=4 "
      "caller=5 -> size=4 status=-26934");
  EXPECT_EQ(
      requestLogLine(entryOf(REQUEST_EXCHANGE_VALUES, tExchangeValuesRequest{1, 2, 0, 3, 4, 0},
                             tExchangeValuesReply{5, 6, 0})),
      "12 process 88 controller#3 exchange-values text=0x1 text-size=2 table=0x3 table-size=4 "
      "caller=0 -> text-size=5 table-size=6 status=0");
}

TEST(RequestLogText, PendingRequest_IsShownWithItsEvents) {
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

TEST(RequestLogText, NarrowRequestAndItsEnd_ShowTheirMembersByName) {
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

TEST(RequestLogText, FailedRequest_ShowsTheWindowsError) {
  tSimulatorLogEntry entry = entryOf(REQUEST_GET_ATTRIBUTE, tGetAttributeRequest{}, uint8_t{0});
  entry.windowsError = 121;
  EXPECT_EQ(requestLogLine(entry),
            "12 process 88 controller#3 get-attribute attribute=0x0 buffer=0x0 size=0 caller=0 -> "
            "Windows error 121");
}

TEST(RequestLogText, MembersThatWereNotSent_AreMissing) {
  tSimulatorLogEntry entry =
      entryOf(REQUEST_GET_ATTRIBUTE, tGetAttributeRequest{}, tGetAttributeReply{});
  entry.inputSize = 20;
  entry.outputSize = 4;
  EXPECT_EQ(requestLogLine(entry),
            "12 process 88 controller#3 get-attribute attribute=0x0 buffer=0x0 size=0 "
            "caller=(missing) -> size=0 status=(missing)");
}

TEST(RequestLogText, UnknownRequest_ShowsItsBytes) {
  const tSimulatorLogEntry entry = entryOf(0x12345678, uint16_t{0xAB01}, uint8_t{0xFF});
  EXPECT_EQ(requestLogLine(entry), "12 process 88 controller#3 0x12345678 01 AB -> FF");
}

// ---- Changes of a table ----

using nSimulator::changeStructureByte;
using nSimulator::changeStructureText;
using nSimulator::removeStructures;
using tBytes = std::vector<uint8_t>;

// Two structures of six bytes, the first with a string, and the end mark.
const tBytes kTable{0x9D, 6, 1, 0, 10, 11, 'a', 0, 0,  //
                    0x9E, 6, 2, 0, 20, 21, 0,   0,     //
                    0x9D, 6, 3, 0, 30, 31, 0,   0,     //
                    0x7F, 4, 4, 0, 0,  0};

TEST(TableEdit, ChangedByte_IsInTheFirstStructureOfTheType) {
  tBytes table = kTable;
  EXPECT_TRUE(changeStructureByte(table, 0x9D, 5, 99));
  tBytes expected = kTable;
  expected[5] = 99;
  EXPECT_EQ(table, expected);
  EXPECT_TRUE(changeStructureByte(table, 0x9E, 4, 98));
  expected[13] = 98;
  EXPECT_EQ(table, expected);
}

TEST(TableEdit, OffsetOutsideTheFormattedArea_ChangesNothing) {
  for (const uint8_t offset : {uint8_t{0}, uint8_t{3}, uint8_t{6}, uint8_t{255}}) {
    tBytes table = kTable;
    EXPECT_FALSE(changeStructureByte(table, 0x9D, offset, 99));
    EXPECT_EQ(table, kTable);
  }
}

// A structure with two texts, one of them used by no field, and one without texts.
const tBytes kTexts{1,    6, 1, 0, 2, 3, 'a', 'b', 0, 'c', 0, 0,  //
                    0x9D, 6, 2, 0, 1, 0, 0,   0};

TEST(TableEdit, ChangedText_MayBeLongerOrShorter) {
  tBytes table = kTexts;
  EXPECT_TRUE(changeStructureText(table, 1, 4, "xyz"));
  EXPECT_EQ(table, (tBytes{1,    6, 1, 0, 2, 3, 'a', 'b', 0, 'x', 'y', 'z', 0, 0,  //
                           0x9D, 6, 2, 0, 1, 0, 0,   0}));
  EXPECT_TRUE(changeStructureText(table, 1, 4, "q"));
  EXPECT_EQ(table, (tBytes{1,    6, 1, 0, 2, 3, 'a', 'b', 0, 'q', 0, 0,  //
                           0x9D, 6, 2, 0, 1, 0, 0,   0}));
}

TEST(TableEdit, FieldWithoutText_ChangesNothing) {
  tBytes table = kTexts;
  EXPECT_FALSE(changeStructureText(table, 1, 5, "x"));     // number 3 of two texts
  EXPECT_FALSE(changeStructureText(table, 0x9D, 4, "x"));  // number 1 of none
  EXPECT_FALSE(changeStructureText(table, 0x9D, 5, "x"));  // number 0: no text
  EXPECT_FALSE(changeStructureText(table, 1, 6, "x"));     // outside the formatted area
  EXPECT_FALSE(changeStructureText(table, 2, 4, "x"));
  EXPECT_EQ(table, kTexts);
}

TEST(TableEdit, TextThatWouldEndTheStrings_ChangesNothing) {
  tBytes table = kTexts;
  EXPECT_FALSE(changeStructureText(table, 1, 4, ""));
  EXPECT_FALSE(changeStructureText(table, 1, 4, std::string_view("a\0b", 3)));
  EXPECT_EQ(table, kTexts);
}

TEST(TableEdit, AbsentStructure_ChangesNothing) {
  tBytes table = kTable;
  EXPECT_FALSE(changeStructureByte(table, 0x9F, 4, 99));
  EXPECT_FALSE(removeStructures(table, 0x9F));
  EXPECT_EQ(table, kTable);
}

TEST(TableEdit, RemovedType_HasNoStructureLeft) {
  tBytes table = kTable;
  EXPECT_TRUE(removeStructures(table, 0x9D));
  EXPECT_EQ(table, (tBytes{0x9E, 6, 2, 0, 20, 21, 0, 0, 0x7F, 4, 4, 0, 0, 0}));
}

TEST(TableEdit, MalformedTable_ChangesNothing) {
  for (size_t size = 0; size < 9; ++size) {
    tBytes cut(kTable.begin(), kTable.begin() + static_cast<ptrdiff_t>(size));
    EXPECT_FALSE(changeStructureByte(cut, 0x9D, 4, 99)) << size;
    EXPECT_FALSE(removeStructures(cut, 0x9D)) << size;
  }
  tBytes shortHeader{0x9D, 3, 0, 0, 0, 0};
  EXPECT_FALSE(changeStructureByte(shortHeader, 0x9D, 4, 99));
}

}  // namespace
}  // namespace nTests
