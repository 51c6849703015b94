#include "tests/component/apalcodegen/requests.h"

#include <array>
#include <cstdio>
#include <ostream>
#include <sstream>

namespace nTests {
namespace {

using nZOAPALS100::tStatus;

constexpr uint64_t kFirstAddress = 0x0102030405060708;
constexpr uint64_t kSecondAddress = 0x1112131415161718;
constexpr uint64_t kThirdAddress = 0x6162636465666768;
constexpr uint64_t kFourthAddress = 0x7172737475767778;
constexpr uint32_t kNumber = 0x21222324;
constexpr uint32_t kSecondNumber = 0x31323334;
constexpr uint32_t kThirdNumber = 0x41424344;
constexpr int32_t kSignedNumber = -2;
constexpr const char* kController = "tInterfaceProxy_hostController";
constexpr const char* kMarten = "tInterfaceProxy_hostMarten";
constexpr const char* kRouting = "tInterfaceProxy_routing";

void assign(tOuts& outs, tOut out, uint32_t value) {
  switch (out) {
    case tOut::size:
      outs.size = value;
      break;
    case tOut::tableSize:
      outs.tableSize = static_cast<int32_t>(value);
      break;
    case tOut::result:
      outs.result = value;
      break;
  }
}

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
     12,
     kController,
     73,
     {tOut::size, tOut::tableSize}},
    {"ControllerSendCommand",
     [](tTypedInterfaces& to, tOuts&, tStatus& status) {
       to.controller.sendCommand(kFirstAddress, kNumber, status);
     },
     0x807BE02C,
     "08 07 06 05 04 03 02 01  24 23 22 21",
     4,
     kController,
     100,
     {}},
    {"ControllerGetAttribute",
     [](tTypedInterfaces& to, tOuts& outs, tStatus& status) {
       to.controller.getAttribute(kNumber, kFirstAddress, outs.size, status);
     },
     0x807BE004,
     "24 23 22 21  00 00 00 00  08 07 06 05 04 03 02 01  54 53 52 51",
     8,
     kController,
     129,
     {tOut::size}},
    {"ControllerSetAttribute",
     [](tTypedInterfaces& to, tOuts&, tStatus& status) {
       to.controller.setAttribute(kNumber, kFirstAddress, kSignedNumber, status);
     },
     0x807BE008,
     "24 23 22 21  00 00 00 00  08 07 06 05 04 03 02 01  fe ff ff ff",
     4,
     kController,
     157,
     {}},
    {"MartenSendCommand",
     [](tTypedInterfaces& to, tOuts&, tStatus& status) {
       to.marten.sendCommand(kFirstAddress, kNumber, status);
     },
     0x807BE050,
     "08 07 06 05 04 03 02 01  24 23 22 21",
     4,
     kMarten,
     69,
     {}},
    {"MartenGetAttribute",
     [](tTypedInterfaces& to, tOuts& outs, tStatus& status) {
       to.marten.getAttribute(kNumber, kFirstAddress, outs.size, status);
     },
     0x807BE004,
     "24 23 22 21  00 00 00 00  08 07 06 05 04 03 02 01  54 53 52 51",
     8,
     kMarten,
     98,
     {tOut::size}},
    {"MartenSetAttribute",
     [](tTypedInterfaces& to, tOuts&, tStatus& status) {
       to.marten.setAttribute(kNumber, kFirstAddress, kSignedNumber, status);
     },
     0x807BE008,
     "24 23 22 21  00 00 00 00  08 07 06 05 04 03 02 01  fe ff ff ff",
     4,
     kMarten,
     126,
     {}},
    {"RoutingMethod0",
     [](tTypedInterfaces& to, tOuts& outs, tStatus& status) {
       to.routing.method0(outs.result, status);
     },
     0x80802000,
     "",
     8,
     kRouting,
     68,
     {tOut::result}},
    {"RoutingCalculateRoute",
     [](tTypedInterfaces& to, tOuts& outs, tStatus& status) {
       outs.result = to.routing.calculateRoute(kFirstAddress, kSecondAddress, kNumber,
                                               kThirdAddress, kSecondNumber, kThirdNumber,
                                               kFourthAddress, outs.size, status);
     },
     0x80802004,
     "08 07 06 05 04 03 02 01  18 17 16 15 14 13 12 11  24 23 22 21  00 00 00 00 "
     "68 67 66 65 64 63 62 61  34 33 32 31  44 43 42 41  78 77 76 75 74 73 72 71  54 53 52 51",
     12,
     kRouting,
     104,
     {tOut::result, tOut::size}},
    {"RoutingDestroyRoute",
     [](tTypedInterfaces& to, tOuts&, tStatus& status) {
       to.routing.destroyRoute(kNumber, status);
     },
     0x80802008,
     "24 23 22 21",
     4,
     kRouting,
     132,
     {}},
    {"RoutingReserveRoute",
     [](tTypedInterfaces& to, tOuts& outs, tStatus& status) {
       to.routing.reserveRoute(kNumber, kFirstAddress, outs.size, status);
     },
     0x8080200C,
     "24 23 22 21  00 00 00 00  08 07 06 05 04 03 02 01  54 53 52 51",
     8,
     kRouting,
     161,
     {tOut::size}},
    {"RoutingProgramRoute",
     [](tTypedInterfaces& to, tOuts&, tStatus& status) {
       to.routing.programRoute(kNumber, status);
     },
     0x80802010,
     "24 23 22 21",
     4,
     kRouting,
     187,
     {}},
    {"RoutingUnreserveRoute",
     [](tTypedInterfaces& to, tOuts&, tStatus& status) {
       to.routing.unreserveRoute(kNumber, status);
     },
     0x80802014,
     "24 23 22 21",
     4,
     kRouting,
     213,
     {}},
    {"RoutingUnprogramRoute",
     [](tTypedInterfaces& to, tOuts&, tStatus& status) {
       to.routing.unprogramRoute(kNumber, status);
     },
     0x80802018,
     "24 23 22 21",
     4,
     kRouting,
     239,
     {}},
    {"RoutingGetRouteTerminalPath",
     [](tTypedInterfaces& to, tOuts& outs, tStatus& status) {
       to.routing.getRouteTerminalPath(kNumber, kFirstAddress, outs.size, status);
     },
     0x8080201C,
     "24 23 22 21  00 00 00 00  08 07 06 05 04 03 02 01  54 53 52 51",
     8,
     kRouting,
     268,
     {tOut::size}},
    {"RoutingGetTopographyName",
     [](tTypedInterfaces& to, tOuts&, tStatus& status) {
       to.routing.getTopographyName(kFirstAddress, kNumber, status);
     },
     0x80802020,
     "08 07 06 05 04 03 02 01  24 23 22 21",
     4,
     kRouting,
     295,
     {}},
    {"RoutingResetTerminal",
     [](tTypedInterfaces& to, tOuts&, tStatus& status) {
       to.routing.resetTerminal(kNumber, kSecondNumber, status);
     },
     0x80802028,
     "24 23 22 21  34 33 32 31",
     4,
     kRouting,
     322,
     {}},
    {"RoutingCalculateResetTerminal",
     [](tTypedInterfaces& to, tOuts& outs, tStatus& status) {
       outs.result =
           to.routing.calculateResetTerminal(kFirstAddress, kNumber, kSignedNumber, status);
     },
     0x8080202C,
     "08 07 06 05 04 03 02 01  24 23 22 21  fe ff ff ff",
     8,
     kRouting,
     352,
     {tOut::result},
     "00 00 00 00"},
};

std::vector<uint8_t> EveryRequest::replyWith(int32_t driverCode) {
  std::vector<uint8_t> reply = bytesOf("a4 a3 a2 a1 b4 b3 b2 b1");
  reply.resize(4 * GetParam().outs.size());
  for (unsigned shift = 0; shift < 32; shift += 8) {
    reply.push_back(static_cast<uint8_t>(static_cast<uint32_t>(driverCode) >> shift));
  }
  return reply;
}

tOuts EveryRequest::outsOfReply() {
  tOuts outs;
  uint32_t value = 0xA1A2A3A4;
  for (const tOut out : GetParam().outs) {
    assign(outs, out, value);
    value += 0x10101010;
  }
  return outs;
}

tOuts EveryRequest::outsOfZeros() {
  tOuts outs;
  for (const tOut out : GetParam().outs) {
    assign(outs, out, 0);
  }
  return outs;
}

std::ostream& operator<<(std::ostream& out, const tOuts& outs) {
  return out << "size " << outs.size << ", table size " << outs.tableSize << ", result "
             << outs.result;
}

std::ostream& operator<<(std::ostream& out, const tRequestPromise& promise) {
  return out << promise.file << " line " << promise.line;
}

std::string nameOf(const testing::TestParamInfo<tRequestPromise>& info) {
  return info.param.name;
}

std::vector<uint8_t> bytesOf(std::string_view hexadecimal) {
  std::istringstream words{std::string(hexadecimal)};
  std::vector<uint8_t> bytes;
  for (std::string word; words >> word;) {
    bytes.push_back(static_cast<uint8_t>(std::stoul(word, nullptr, 16)));
  }
  return bytes;
}

std::string hexadecimalOf(std::span<const uint8_t> bytes) {
  std::string text;
  for (const uint8_t byte : bytes) {
    std::array<char, 4> word{};
    std::snprintf(word.data(), word.size(), "%s%02x", text.empty() ? "" : " ", byte);
    text += word.data();
  }
  return text;
}

}  // namespace nTests
