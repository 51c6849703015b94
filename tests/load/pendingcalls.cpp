#include "tests/load/pendingcalls.h"

#include <array>

#include "protocol/controllerrequests.h"
#include "protocol/interfaces.h"
#include "zoapal/protons/driver/windowsu/tdeviceinterfaceproxy.h"
#include "zoapal/protons/driver/windowsu/tpendingrequest.h"
#include "zoapal/protons/enumeration/windows/tdeviceinterfaceiterator.h"

namespace nTests {
namespace {

using nQUENRA1400::nZOAPAL000::tDeviceInterfaceIterator;
using nQUENRA1400::nZOAPAL000::tDeviceInterfaceProxy;
using nQUENRA1400::nZOAPAL000::tPendingRequest;
using nZOAPALS100::tStatus;

void check(const tStatus& status, tFaults faults, const char* what) {
  require(!status.isError() || faults == tFaults::anywhere,
          std::string(what) + " gives " + std::to_string(status.code));
}

void askBeside(tDeviceInterfaceProxy& proxy, tFaults faults) {
  tStatus status;
  const tExchangeValuesRequest asked{};
  tExchangeValuesReply reply{};
  proxy.deviceControl(REQUEST_EXCHANGE_VALUES, &asked, sizeof asked, &reply, sizeof reply, status);
  check(status, faults, "a call beside a pending request");
}

}  // namespace

uint32_t usePendingRequestsOnce(tRandom& random, tFaults faults) {
  constexpr uint64_t kWide = uint64_t{5} << 32;
  tStatus status;
  tDeviceInterfaceProxy proxy;
  tDeviceInterfaceIterator iterator(kControllerInterfaceClass, status);
  iterator.openCurrent(proxy, status);
  check(status, faults, "opening the channel");
  std::array<tPendingRequest, 3> requests;
  uint32_t begun = 0;
  for (tPendingRequest& request : requests) {
    tStatus own;
    const uint64_t b = random.oneIn(2) ? kWide : random.below(100);
    begun += proxy.beginPendingRequest(1, b, 3, request, own) != 0 ? 1 : 0;
    check(own, faults, "beginning a pending request");
    askBeside(proxy, faults);
  }
  for (tPendingRequest& request : requests) {
    if (!random.oneIn(4)) {
      proxy.endPendingRequest(request);
    }
  }
  return begun;
}

}  // namespace nTests
