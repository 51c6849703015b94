// driver_bench: calls that the driver answers, against the same requests without the library; opening
// the controller, a route's complete life, and the delivery of a demotion.
//
// On Linux the driver is its model in the same process and Windows the fake of the tests, so that only
// the library's own part of a route is measured.
#include <windows.h>
// After windows.h.
#include <setupapi.h>

#include <array>
#include <atomic>
#include <bit>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <thread>
#include <type_traits>
#include <vector>

#include "bench/machine.h"
#include "bench/measurement.h"
#include "protocol/controllerrequests.h"
#include "protocol/routingrequests.h"
#include "quenra.h"
#include "quenra_routing.h"

namespace {

using nBench::repeated;
using nBench::require;
using nBench::tBound;
using nBench::tReport;

#ifdef _WIN32
constexpr bool kIsWindows = true;
#else
constexpr bool kIsWindows = false;
#endif

template <class Type>
uint64_t addressOf(Type* object) {
  return reinterpret_cast<uintptr_t>(object);
}

// ---- Requests without the library ----

// The first device of an interface class, opened and used with the library's system calls.
class tBareDevice {
 public:
  explicit tBareDevice(const tInterfaceClass& interfaceClass) {
    const GUID guid = std::bit_cast<GUID>(interfaceClass);
    const HDEVINFO set =
        SetupDiGetClassDevsA(&guid, nullptr, nullptr, DIGCF_PRESENT | DIGCF_DEVICEINTERFACE);
    SP_DEVICE_INTERFACE_DATA found{};
    found.cbSize = sizeof found;
    require(SetupDiEnumDeviceInterfaces(set, nullptr, &guid, 0, &found) != FALSE, "no interface");
    alignas(SP_DEVICE_INTERFACE_DETAIL_DATA_A) std::array<char, 512> bytes{};
    auto* const detail = reinterpret_cast<SP_DEVICE_INTERFACE_DETAIL_DATA_A*>(bytes.data());
    detail->cbSize = sizeof *detail;
    DWORD required = 0;
    require(SetupDiGetDeviceInterfaceDetailA(set, &found, detail, bytes.size(), &required,
                                             nullptr) != FALSE,
            "no path");
    file_ = CreateFileA(detail->DevicePath, GENERIC_READ | GENERIC_WRITE,
                        FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING,
                        FILE_FLAG_OVERLAPPED, nullptr);
    require(file_ != INVALID_HANDLE_VALUE, "the device cannot be opened");
    event_ = CreateEventA(nullptr, TRUE, FALSE, nullptr);
    // A second interface would be an error.
    SetupDiEnumDeviceInterfaces(set, nullptr, &guid, 1, &found);
    SetupDiDestroyDeviceInfoList(set);
  }
  tBareDevice(const tBareDevice&) = delete;
  tBareDevice& operator=(const tBareDevice&) = delete;
  ~tBareDevice() {
    CloseHandle(file_);
    CloseHandle(event_);
  }

  template <class Reply, class Request>
  Reply request(DWORD code, Request request) {
    Reply reply{};
    OVERLAPPED overlapped{};
    // The bit keeps a completion from going to a port, as in the library.
    overlapped.hEvent = static_cast<char*>(event_) + 1;
    DWORD bytes = 0;
    if (!DeviceIoControl(file_, code, &request, sizeof request, &reply, sizeof reply, &bytes,
                         &overlapped)) {
      require(GetLastError() == ERROR_IO_PENDING &&
                  GetOverlappedResult(file_, &overlapped, &bytes, TRUE) != FALSE,
              "the request fails");
    }
    return reply;
  }

 private:
  HANDLE file_ = INVALID_HANDLE_VALUE;
  HANDLE event_ = nullptr;
};

// ---- Attributes of the driver ----

constexpr uint32_t kDriverAttribute = QUENRA_ATTRIBUTE_DRIVER_SETTING_1;

void measureReads(tReport& report) {
  report.section("Attributes of the driver");
  auto device = std::make_shared<tBareDevice>(kControllerInterfaceClass);
  report.compare({"read",
                  "the bare request",
                  repeated([] {
                    uint32_t value = 0;
                    require(QUENRA_getAttributeU32(QUENRA_HANDLE, kDriverAttribute, &value) == 0,
                            "the attribute cannot be read");
                  }),
                  repeated([device] {
                    uint32_t value = 0;
                    const tGetAttributeRequest request{kDriverAttribute, 0, addressOf(&value),
                                                       sizeof value, 0};
                    const auto reply =
                        device->request<tGetAttributeReply>(REQUEST_GET_ATTRIBUTE, request);
                    require(reply.driverStatus == 0, "the driver refuses the request");
                  }),
                  {{tBound::timeAtMost, 1.02}},
                  301});
}

// ---- Opening ----

// The requests that opening a controller cannot do without: both devices, the sizes of the table, and the table.
void openBare() {
  tBareDevice controller(kControllerInterfaceClass);
  const tBareDevice marten(kMartenInterfaceClass);
  const auto sizes =
      controller.request<tExchangeValuesReply>(REQUEST_EXCHANGE_VALUES, tExchangeValuesRequest{});
  std::vector<uint8_t> text(sizes.textSize);
  std::vector<uint8_t> table(sizes.tableSize);
  const tExchangeValuesRequest request{addressOf(text.data()),
                                       sizes.textSize,
                                       0,
                                       addressOf(table.data()),
                                       static_cast<int32_t>(sizes.tableSize),
                                       0};
  require(
      controller.request<tExchangeValuesReply>(REQUEST_EXCHANGE_VALUES, request).driverStatus == 0,
      "the driver refuses the table");
}

void measureOpening(tReport& report, const std::vector<uint8_t>& table) {
  report.section("Opening");
  nSimulator::tSimulatedMachine machine;
  machine.setTable(table);
  report.compare({"open and close",
                  "the bare system calls",
                  repeated([] {
                    uint64_t handle = 0;
                    require(QUENRA_openController(&handle) == 0, "the controller cannot be opened");
                    QUENRA_closeController(handle);
                  }),
                  repeated(openBare),
                  {{tBound::timeAtMost, 1.05}}});
}

// ---- Routes ----

constexpr const char* kSeeds = R"([{"terminal":"TRIG_SMB","cost":1,"constraints":{}}])";
constexpr uint32_t kTrigSmb = 2;
constexpr const char* kDestinations = R"(["PXI_Trig0"])";
constexpr uint32_t kPxiTrig0 = 4;
constexpr uint32_t kRoutesPerDestination = 5;

std::string devicePath() {
  std::array<char, 256> path{};
  uint64_t size = path.size();
  require(QUENRA_getAttributeUTF8(0, QUENRA_ATTRIBUTE_DEVICE_PATH, path.data(), &size) == 0,
          "there is no routing device");
  return path.data();
}

class tLibraryRoutes {
 public:
  explicit tLibraryRoutes(zoroco_DemotionCallback callback = nullptr, void* context = nullptr) {
    session_ = zoroco_ra_quenra_createSessionWithDemotionFunc(
        devicePath().c_str(),
        [](char* current, size_t required, const char*, size_t) {
          return static_cast<char*>(std::realloc(current, required));
        },
        callback, context, &status_);
    check("create a session");
  }
  tLibraryRoutes(const tLibraryRoutes&) = delete;
  tLibraryRoutes& operator=(const tLibraryRoutes&) = delete;
  ~tLibraryRoutes() {
    zoroco_ra_quenra_destroySession(session_);
    std::free(output_);
  }

  uint32_t plan() {
    zoroco_ra_quenra_calculateRoute(session_, kSeeds, kDestinations, "{}", &output_, &status_);
    check("plan a route");
    constexpr size_t kTicket = std::char_traits<char>::length(R"([{"ticket":)");
    return static_cast<uint32_t>(std::strtoul(output_ + kTicket, nullptr, 10));
  }
  void discard(uint32_t ticket) { zoroco_ra_quenra_destroyRoute(session_, ticket, 0, 0); }
  void live() {
    const uint32_t ticket = plan();
    zoroco_ra_quenra_reserveRoute(session_, ticket, &output_, &status_);
    zoroco_ra_quenra_programRoute(session_, ticket, &status_);
    check("reserve and program a route");
    zoroco_ra_quenra_unprogramRoute(session_, ticket, 0, 0);
    zoroco_ra_quenra_unreserveRoute(session_, ticket, 0, 0);
    discard(ticket);
  }

 private:
  void check(const std::string& what) {
    require(status_.code == 0, "cannot " + what + ": " + std::to_string(status_.code));
  }

  zoerr_Status status_ = zoerr_Status_initial();
  zoroco_RoutingAdaptorSession* session_ = nullptr;
  char* output_ = nullptr;
};

class tBareRoutes {
 public:
  uint32_t plan() {
    const tRouteModifiers modifiers{};
    const tRouteSeed seed{kTrigSmb, 1, 0};
    const uint32_t destination = kPxiTrig0;
    std::array<tRouteRecord, kRoutesPerDestination> routes{};
    tCalculateRouteRequest request{};
    request.modifiers = addressOf(&modifiers);
    request.seeds = addressOf(&seed);
    request.seedCount = 1;
    request.destinations = addressOf(&destination);
    request.destinationCount = 1;
    request.routes = addressOf(routes.data());
    request.routeCapacity = routes.size();
    const auto reply = device_.request<tCalculateRouteReply>(REQUEST_CALCULATE_ROUTE, request);
    require(reply.driverStatus == 0 && reply.routeCount != 0, "the driver plans no route");
    return routes[0].ticket;
  }
  void discard(uint32_t ticket) { onTicket(REQUEST_DESTROY_ROUTE, ticket); }
  void live() {
    const uint32_t ticket = plan();
    std::array<tRouteConflict, 16> conflicts{};
    const tTicketListRequest request{ticket, 0, addressOf(conflicts.data()), conflicts.size(), 0};
    require(device_.request<tTicketListReply>(REQUEST_RESERVE_ROUTE, request).driverStatus == 0,
            "the driver refuses the reservation");
    onTicket(REQUEST_PROGRAM_ROUTE, ticket);
    onTicket(REQUEST_UNPROGRAM_ROUTE, ticket);
    onTicket(REQUEST_UNRESERVE_ROUTE, ticket);
    discard(ticket);
  }

 private:
  void onTicket(DWORD code, uint32_t ticket) {
    require(device_.request<tStatusReply>(code, tTicketRequest{ticket, 0}).driverStatus == 0,
            "the driver refuses a request");
  }

  tBareDevice device_{kDevicePathInterfaceClass};
};

// The codes and sizes of the requests of a work.
template <class Work>
std::vector<std::array<uint32_t, 3>> requestsOf(nSimulator::tSimulatedMachine& machine, Work work) {
  machine.clearLog();
  work();
  std::vector<std::array<uint32_t, 3>> requests;
  for (const tSimulatorLogEntry& entry : machine.log()) {
    requests.push_back({entry.requestCode, entry.inputSize, entry.outputSize});
  }
  return requests;
}

constexpr nBench::tLimit kRouteLimit = kIsWindows
                                           ? nBench::tLimit{tBound::timeAtMost, 1.05}
                                           : nBench::tLimit{tBound::nanosecondsMoreAtMost, 3000};

void measureRoutes(tReport& report, nSimulator::tSimulatedMachine& machine) {
  report.section("Trigger routes");
  auto library = std::make_shared<tLibraryRoutes>();
  auto bare = std::make_shared<tBareRoutes>();
  require(requestsOf(machine, [library] { library->live(); }) ==
              requestsOf(machine, [bare] { bare->live(); }),
          "the library sends other requests than the measurement");
  report.compare({"plan and discard", "the bare requests",
                  repeated([library] { library->discard(library->plan()); }),
                  repeated([bare] { bare->discard(bare->plan()); }), kRouteLimit});
  report.compare({"plan, reserve, program, and back", "the bare requests",
                  repeated([library] { library->live(); }), repeated([bare] { bare->live(); }),
                  kRouteLimit});
}

// ---- Demotions ----

// A thread that answers each event with a count.
class tEventThread {
 public:
  tEventThread() : thread_([this] { run(); }) {}
  tEventThread(const tEventThread&) = delete;
  tEventThread& operator=(const tEventThread&) = delete;
  ~tEventThread() {
    isEnding_ = true;
    SetEvent(event_);
    thread_.join();
    CloseHandle(event_);
  }

  void wake() {
    const uint32_t expected = answers_ + 1;
    SetEvent(event_);
    while (answers_ != expected) {
      std::this_thread::yield();
    }
  }

 private:
  void run() {
    while (!isEnding_) {
      WaitForSingleObject(event_, INFINITE);
      ++answers_;
    }
  }

  HANDLE event_ = CreateEventA(nullptr, FALSE, FALSE, nullptr);
  std::atomic<bool> isEnding_ = false;
  std::atomic<uint32_t> answers_ = 0;
  std::thread thread_;
};

// The driver completes a delivery inside the request of the machine's side, which therefore belongs to
// both times.
void measureDemotion(tReport& report, nSimulator::tSimulatedMachine& machine) {
  report.section("Demotions");
  std::atomic<uint32_t> entered = 0;
  const tLibraryRoutes routes([](void* context, int32_t, zoerr_Status*,
                                 void*) { ++*static_cast<std::atomic<uint32_t>*>(context); },
                              &entered);
  tSimulatorNotice notice{};
  notice.mask = ROUTING_NOTIFICATION_DEMOTED;
  tEventThread thread;
  report.compare({"machine's request until the callback",
                  "such a request, event across threads",
                  repeated([&machine, &notice, &entered] {
                    const uint32_t expected = entered + 1;
                    machine.notify(notice);
                    while (entered != expected) {
                      std::this_thread::yield();
                    }
                  }),
                  repeated([&machine, &thread] {
                    static_cast<void>(machine.presence());
                    thread.wake();
                  }),
                  {{tBound::timeAtMost, 1.5}}});
}

}  // namespace

int main(int argc, char** argv) {
  tReport report(argc, argv);
  const std::vector<uint8_t> table = nBench::machineTable(4096);
  {
    nBench::tOpenMachine machine(table);
    measureRoutes(report, machine.control());
    if constexpr (kIsWindows) {
      measureReads(report);
      measureDemotion(report, machine.control());
    }
  }
  if constexpr (kIsWindows) {
    measureOpening(report, table);
  }
  return 0;
}
