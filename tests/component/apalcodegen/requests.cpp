#include "tests/component/apalcodegen/requests.h"

#include <ostream>

#include "tests/component/apalcodegen/hexbytes.h"

namespace nTests {
namespace {

using nZOAPALS100::tStatus;

constexpr uint64_t kFirstAddress = 0x0102030405060708;
constexpr uint64_t kSecondAddress = 0x1112131415161718;
constexpr uint32_t kNumber = 0x21222324;
constexpr int32_t kSignedNumber = -2;
constexpr const char* kController = "tInterfaceProxy_hostController";
constexpr const char* kMarten = "tInterfaceProxy_hostMarten";

}  // namespace

const std::vector<tRequestPromise> kAllRequests{
    {"ControllerExchangeValues",
     [](tTypedInterfaces& to, tOuts& outs, tStatus& status) {
       to.controller.exchangeValues(kFirstAddress, outs.size, kSecondAddress, outs.tableSize,
                                    status);
     },
     0x807BE028,
     "08 07 06 05 04 03 02 01  54 53 52 51  00 00 00 00 "
     "18 17 16 15 14 13 12 11  fc fc fd fe",
     12, kController, 73, 2},
    {"ControllerSendCommand",
     [](tTypedInterfaces& to, tOuts&, tStatus& status) {
       to.controller.sendCommand(kFirstAddress, kNumber, status);
     },
     0x807BE02C, "08 07 06 05 04 03 02 01  24 23 22 21", 4, kController, 100, 0},
    {"ControllerGetAttribute",
     [](tTypedInterfaces& to, tOuts& outs, tStatus& status) {
       to.controller.getAttribute(kNumber, kFirstAddress, outs.size, status);
     },
     0x807BE004, "24 23 22 21  00 00 00 00  08 07 06 05 04 03 02 01  54 53 52 51", 8, kController,
     129, 1},
    {"ControllerSetAttribute",
     [](tTypedInterfaces& to, tOuts&, tStatus& status) {
       to.controller.setAttribute(kNumber, kFirstAddress, kSignedNumber, status);
     },
     0x807BE008, "24 23 22 21  00 00 00 00  08 07 06 05 04 03 02 01  fe ff ff ff", 4, kController,
     157, 0},
    {"MartenSendCommand",
     [](tTypedInterfaces& to, tOuts&, tStatus& status) {
       to.marten.sendCommand(kFirstAddress, kNumber, status);
     },
     0x807BE050, "08 07 06 05 04 03 02 01  24 23 22 21", 4, kMarten, 69, 0},
    {"MartenGetAttribute",
     [](tTypedInterfaces& to, tOuts& outs, tStatus& status) {
       to.marten.getAttribute(kNumber, kFirstAddress, outs.size, status);
     },
     0x807BE004, "24 23 22 21  00 00 00 00  08 07 06 05 04 03 02 01  54 53 52 51", 8, kMarten, 98,
     1},
    {"MartenSetAttribute",
     [](tTypedInterfaces& to, tOuts&, tStatus& status) {
       to.marten.setAttribute(kNumber, kFirstAddress, kSignedNumber, status);
     },
     0x807BE008, "24 23 22 21  00 00 00 00  08 07 06 05 04 03 02 01  fe ff ff ff", 4, kMarten, 126,
     0},
};

std::vector<uint8_t> EveryRequest::replyWith(int32_t driverCode) {
  std::vector<uint8_t> reply = bytesOf("a4 a3 a2 a1 b4 b3 b2 b1");
  reply.resize(4 * GetParam().outs);
  for (unsigned shift = 0; shift < 32; shift += 8) {
    reply.push_back(static_cast<uint8_t>(static_cast<uint32_t>(driverCode) >> shift));
  }
  return reply;
}

tOuts EveryRequest::outsOfReply() {
  tOuts outs;
  if (GetParam().outs > 0) {
    outs.size = 0xA1A2A3A4;
  }
  if (GetParam().outs > 1) {
    outs.tableSize = static_cast<int32_t>(0xB1B2B3B4);
  }
  return outs;
}

std::ostream& operator<<(std::ostream& out, const tOuts& outs) {
  return out << "size " << outs.size << ", table size " << outs.tableSize;
}

std::ostream& operator<<(std::ostream& out, const tRequestPromise& promise) {
  return out << promise.file << " line " << promise.line;
}

std::string nameOf(const testing::TestParamInfo<tRequestPromise>& info) {
  return info.param.name;
}

}  // namespace nTests
