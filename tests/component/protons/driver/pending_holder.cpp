// A program that keeps a request pending on the controller until its standard input ends.
#include <cstdio>

#include "protocol/interfaces.h"
#include "zoapal/protons/driver/windowsu/tdeviceinterfaceproxy.h"
#include "zoapal/protons/enumeration/windows/tdeviceinterfaceiterator.h"

int main() {
  nZOAPALS100::tStatus status;
  nQUENRA1400::nZOAPAL000::tDeviceInterfaceProxy proxy;
  nQUENRA1400::nZOAPAL000::tDeviceInterfaceIterator iterator(kControllerInterfaceClass, status);
  iterator.openCurrent(proxy, status);
  nQUENRA1400::nZOAPAL000::tPendingRequest request;
  proxy.beginPendingRequest(1, 2, 3, request, status);
  std::printf("%d\n", static_cast<int>(status.code));
  std::fflush(stdout);
  while (std::getchar() != EOF) {
  }
  proxy.endPendingRequest(request);
  return status.isError() ? 1 : 0;
}
