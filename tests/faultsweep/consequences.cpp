#include "tests/faultsweep/consequences.h"

#include <windows.h>

#include <algorithm>
#include <map>

#include "protocol/interfaces.h"
#include "protocol/pendingrequests.h"
#include "protocol/routingrequests.h"
#include "quenra_status.h"

namespace nTests {
namespace {

using nFakeWindows::tCall;

// clang-format off
constexpr tErrorRow kErrorRows[] = {
    {0,           QUENRA_STATUS_GENERIC_FAILURE},
    {997,         QUENRA_STATUS_IO_PENDING},
    {8,           QUENRA_STATUS_MEMORY_FULL},
    {1450,        QUENRA_STATUS_MEMORY_FULL},
    {50,          QUENRA_STATUS_REQUEST_NOT_SUPPORTED},
    {1,           QUENRA_STATUS_REQUEST_NOT_SUPPORTED},
    {31,          QUENRA_STATUS_GENERIC_FAILURE},
    {1117,        QUENRA_STATUS_GENERIC_FAILURE},
    {87,          QUENRA_STATUS_INVALID_PARAMETER},
    {2,           QUENRA_STATUS_NOT_FOUND},
    {121,         QUENRA_STATUS_TIME_OUT},
    {1359,        QUENRA_STATUS_INTERNAL_ERROR},
    {5,           QUENRA_STATUS_ACCESS_DENIED},
    {21,          QUENRA_STATUS_NOT_READY},
    {1617,        QUENRA_STATUS_DEVICE_REMOVED},
    {38,          QUENRA_STATUS_END_OF_FILE},
    {122,         QUENRA_STATUS_PATH_TOO_LONG},
    {639,         QUENRA_STATUS_SYSTEM_REFUSED},
    {183,         QUENRA_STATUS_ALREADY_EXISTS},
    {0xE0000204u, QUENRA_STATUS_NOT_FOUND},
    {258,         QUENRA_STATUS_TIME_OUT},
    {170,         QUENRA_STATUS_BUSY},
    {12345,       QUENRA_STATUS_GENERIC_FAILURE},
};
// clang-format on

constexpr tExpectation kNothing{tConsequence::none};
constexpr tExpectation kNotAFailure{tConsequence::notAFailure};

constexpr tExpectation reports(int32_t code) {
  return {tConsequence::code, code};
}

bool isOf(const tInterfaceClass& interfaceClass, const std::string& classText) {
  return classText == std::to_string(interfaceClass.data1);
}

bool is(uint32_t request, const std::string& requestText) {
  return requestText == std::to_string(request);
}

// Tearing down continues after a failed request.
bool isSilent(const std::string& request) {
  return is(REQUEST_UNPROGRAM_ROUTE, request) || is(REQUEST_UNRESERVE_ROUTE, request) ||
         is(REQUEST_DESTROY_ROUTE, request) || is(REQUEST_UNREGISTER_NOTIFICATION, request);
}

// A failed listing counts as no interfaces, but for the Marten the reason is reported.
tExpectation ofListing(const std::string& interfaceClass, int32_t code) {
  if (!isOf(kMartenInterfaceClass, interfaceClass)) {
    return reports(QUENRA_STATUS_NO_CONTROLLER);
  }
  return code < 0 ? reports(code) : tExpectation{tConsequence::withoutMarten, code};
}

tExpectation ofEntry(const tCallSite& site) {
  if (site.argument != "0") {
    return kNothing;
  }
  return isOf(kMartenInterfaceClass, site.belongsTo) ? tExpectation{tConsequence::withoutMarten}
                                                     : reports(QUENRA_STATUS_NO_CONTROLLER);
}

// ERROR_IO_PENDING is only a warning (a positive code). The next step then has no path to open, ...
tExpectation ofPath(const tCallSite& site, int32_t code) {
  const bool isOpenedNext = !isOf(kDevicePathInterfaceClass, site.belongsTo);
  return reports(code > 0 && isOpenedNext ? QUENRA_STATUS_NOT_FOUND : code);
}

// ... or no device for its requests.
tExpectation ofDevice(const tCallSite& site, int32_t code) {
  if (code < 0) {
    return reports(code);
  }
  if (site.belongsTo.find("marten") != std::string::npos) {
    return {tConsequence::withoutMarten, code};
  }
  const bool isRouter = site.belongsTo.find("devicepath") != std::string::npos;
  return reports(isRouter ? QUENRA_STATUS_INVALID_PARAMETER : QUENRA_STATUS_GENERIC_FAILURE);
}

// A failed call that prepares a firmware update.
tExpectation ofEnvironment(int32_t code) {
  return reports(code == QUENRA_STATUS_MEMORY_FULL ? QUENRA_STATUS_OUT_OF_MEMORY
                                                   : QUENRA_STATUS_UPDATE_ENVIRONMENT);
}

tExpectation ofRequest(const tCallSite& site, int32_t code) {
  if (code > 0) {
    // ERROR_IO_PENDING from the wait itself: the driver's reply is available by then.
    return site.isAwaited ? kNothing : kNotAFailure;
  }
  // Only the first arming of a delivery is reported to a caller; later ones run on a thread.
  const bool isRearmed = is(REQUEST_ARM_DELIVERY, site.argument) && site.belongsTo != "first";
  // The only code on which the library repeats the request.
  const bool isRepeated =
      is(REQUEST_GET_ROUTE_TERMINAL_PATH, site.argument) && code == DRIVER_STATUS_PATH_TOO_LONG;
  return isSilent(site.argument) || isRearmed || isRepeated ? kNothing : reports(code);
}

}  // namespace

std::span<const tErrorRow> errorRows() {
  return kErrorRows;
}

std::vector<tCallSite> callSitesOf(const std::vector<nFakeWindows::tCallRecord>& record) {
  std::vector<tCallSite> sites;
  std::map<tCall, unsigned> counts;
  std::string interfaceClass;
  std::string device;
  bool isArmed = false;
  for (const nFakeWindows::tCallRecord& made : record) {
    tCallSite site{made.call, ++counts[made.call], made.argument, ""};
    if (made.call == tCall::setupDiGetClassDevs) {
      interfaceClass = made.argument;
    } else if (made.call == tCall::setupDiEnumDeviceInterfaces ||
               made.call == tCall::setupDiGetDeviceInterfaceDetail) {
      site.belongsTo = interfaceClass;
    } else if (made.call == tCall::createFile || made.call == tCall::createEvent) {
      device = made.call == tCall::createFile ? made.argument : device;
      site.belongsTo = device;
    } else if (made.call == tCall::deviceIoControl) {
      site.belongsTo = isArmed ? "" : "first";
      isArmed = isArmed || is(REQUEST_ARM_DELIVERY, made.argument);
    }
    sites.push_back(site);
  }
  return sites;
}

std::vector<tCallSite> awaitedRequestsOf(const std::vector<nFakeWindows::tCallRecord>& record) {
  std::vector<tCallSite> sites = callSitesOf(record);
  std::erase_if(sites, [](const tCallSite& site) {
    return site.call != tCall::deviceIoControl || is(REQUEST_ARM_DELIVERY, site.argument) ||
           is(REQUEST_REGISTER_NOTIFICATION, site.argument);
  });
  for (tCallSite& site : sites) {
    site.isAwaited = true;
  }
  return sites;
}

tExpectation expectationOf(const tCallSite& site, const tErrorRow& reason) {
  switch (site.call) {
    case tCall::setupDiGetClassDevs:
      return ofListing(site.argument, reason.code);
    case tCall::setupDiEnumDeviceInterfaces:
      return ofEntry(site);
    case tCall::setupDiGetDeviceInterfaceDetail:
      return ofPath(site, reason.code);
    case tCall::createFile:
    case tCall::createEvent:
      return ofDevice(site, reason.code);
    case tCall::createIoCompletionPort:
      return reason.code < 0 ? reports(reason.code)
                             : tExpectation{tConsequence::withoutDemotions, reason.code};
    case tCall::deviceIoControl:
      return ofRequest(site, reason.code);
    case tCall::getModuleHandleEx:
    case tCall::beginThread:
      return reports(QUENRA_STATUS_INTERNAL_ERROR);
    case tCall::createDiskFile:
      // A failure to lock a file of the update is not reported.
      return site.argument == "file" ? kNothing : ofEnvironment(reason.code);
    case tCall::createNewFile:
      // Once a file is held, a further one is opened a second time.
      return site.nth == 1 ? reports(QUENRA_STATUS_UPDATE_ENVIRONMENT) : kNothing;
    case tCall::getDiskAttributes:
      // The first call checks the temporary directory; after another failure, creating it fails as existing.
      return site.nth == 1 ? ofEnvironment(reason.code) : kNothing;
    case tCall::getTempPath:
    case tCall::multiByteToWideChar:
    case tCall::wideCharToMultiByte:
    case tCall::getTokenInformation:
    case tCall::convertSecurityDescriptor:
    case tCall::createDirectory:
    case tCall::getFileInformation:
    case tCall::getRandom:
      return ofEnvironment(reason.code);
    case tCall::coInitializeEx:
    case tCall::coInitializeSecurity:
    case tCall::coCreateInstance:
    case tCall::sysAllocString:
    case tCall::connectServer:
    case tCall::execQuery:
      return reason.error == 0 ? kNotAFailure : reports(QUENRA_STATUS_UPDATE_ENVIRONMENT);
    case tCall::coSetProxyBlanket:
    case tCall::next:
    case tCall::get:
      return reason.error == 0 ? kNotAFailure : kNothing;
    case tCall::getFileAttributes:
      return reports(QUENRA_STATUS_UPDATE_ENVIRONMENT);
    case tCall::createProcess:
      return reports(QUENRA_STATUS_INVALID_IMAGE);
    default:
      // Waiting, waking and cleaning up: repeated, or without consequence.
      return kNothing;
  }
}

uint32_t errorReportedBy(tCall call, uint32_t error) {
  switch (call) {
    case tCall::coInitializeEx:
    case tCall::coInitializeSecurity:
    case tCall::coCreateInstance:
    case tCall::sysAllocString:
    case tCall::connectServer:
    case tCall::execQuery:
    case tCall::coSetProxyBlanket:
    case tCall::next:
    case tCall::get:
      return static_cast<uint32_t>(HRESULT_FROM_WIN32(error));
    default:
      return error;
  }
}

}  // namespace nTests
