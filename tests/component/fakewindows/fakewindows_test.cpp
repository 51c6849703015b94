// The rules of Windows that the library relies on, as the fake implements them.
#include <windows.h>
// setupapi.h needs windows.h first.
#include <setupapi.h>

#include <bit>
#include <cstring>
#include <thread>

#include "protocol/controllerrequests.h"
#include "tests/fakewindows/fakewindowstest.h"

namespace nTests {
namespace {

using nFakeWindows::faultPlan;
using nFakeWindows::machine;
using nFakeWindows::tCall;
using nFakeWindows::tCompletion;

const auto kControllerClass = std::bit_cast<GUID>(kControllerInterfaceClass);

// With its lowest bit set, which suppresses the completion packet.
HANDLE tagged(HANDLE event) {
  return static_cast<char*>(event) + 1;
}

class FakeWindows : public nFakeWindows::FakeWindowsTest {
 protected:
  static HDEVINFO list() {
    return SetupDiGetClassDevsA(&kControllerClass, nullptr, nullptr,
                                DIGCF_PRESENT | DIGCF_DEVICEINTERFACE);
  }
  static HANDLE open(DWORD flags = FILE_FLAG_OVERLAPPED) {
    const std::string path = machine().pathOf({kSimulatorInterfaceController, 0});
    return CreateFileA(path.c_str(), GENERIC_READ | GENERIC_WRITE,
                       FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, flags, nullptr);
  }
};
using FakeWindowsDeathTest = FakeWindows;

TEST_F(FakeWindows, Listing_EndsWithNoMoreItems) {
  const HDEVINFO set = list();
  SP_DEVICE_INTERFACE_DATA data{};
  data.cbSize = sizeof data;
  EXPECT_TRUE(SetupDiEnumDeviceInterfaces(set, nullptr, &kControllerClass, 0, &data));
  EXPECT_FALSE(SetupDiEnumDeviceInterfaces(set, nullptr, &kControllerClass, 1, &data));
  EXPECT_EQ(GetLastError(), DWORD{ERROR_NO_MORE_ITEMS});
  EXPECT_TRUE(SetupDiDestroyDeviceInfoList(set));
}

TEST_F(FakeWindows, Detail_ReportsTheSizeWhenItDoesNotFit) {
  const HDEVINFO set = list();
  SP_DEVICE_INTERFACE_DATA data{};
  data.cbSize = sizeof data;
  ASSERT_TRUE(SetupDiEnumDeviceInterfaces(set, nullptr, &kControllerClass, 0, &data));
  const std::string path = machine().pathOf({kSimulatorInterfaceController, 0});
  alignas(8) char area[256] = {};
  auto* const detail = static_cast<SP_DEVICE_INTERFACE_DETAIL_DATA_A*>(static_cast<void*>(area));
  detail->cbSize = sizeof *detail;
  DWORD required = 0;
  EXPECT_FALSE(SetupDiGetDeviceInterfaceDetailA(
      set, &data, detail, static_cast<DWORD>(4 + path.size()), &required, nullptr));
  EXPECT_EQ(GetLastError(), DWORD{ERROR_INSUFFICIENT_BUFFER});
  EXPECT_EQ(required, 4 + path.size() + 1);
  EXPECT_TRUE(SetupDiGetDeviceInterfaceDetailA(set, &data, detail, required, &required, nullptr));
  EXPECT_EQ(area + 4, path);
  SetupDiDestroyDeviceInfoList(set);
}

TEST_F(FakeWindows, MissingFile_IsNotFound) {
  EXPECT_EQ(CreateFileA("\\\\?\\nothing", GENERIC_READ | GENERIC_WRITE,
                        FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr),
            INVALID_HANDLE_VALUE);
  EXPECT_EQ(GetLastError(), DWORD{ERROR_FILE_NOT_FOUND});
}

// A pending request whose reply has twelve bytes.
class tExchange {
 public:
  explicit tExchange(HANDLE file) : file_(file) {
    overlapped.hEvent = tagged(event);
    const tExchangeValuesRequest request{};
    EXPECT_FALSE(DeviceIoControl(file, REQUEST_EXCHANGE_VALUES,
                                 const_cast<tExchangeValuesRequest*>(&request), sizeof request,
                                 &reply_, sizeof reply_, &bytes_, &overlapped));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_IO_PENDING});
  }
  tExchange(const tExchange&) = delete;
  tExchange& operator=(const tExchange&) = delete;
  ~tExchange() {
    CloseHandle(file_);
    CloseHandle(event);
  }

  void expectCompletion() {
    EXPECT_TRUE(GetOverlappedResult(file_, &overlapped, &bytes_, TRUE));
    EXPECT_EQ(bytes_, 12u);
    EXPECT_EQ(reply_.driverStatus, DRIVER_STATUS_BUFFER_TOO_SMALL);
  }

  HANDLE event = CreateEventA(nullptr, TRUE, TRUE, nullptr);
  OVERLAPPED overlapped{};

 private:
  HANDLE file_;
  tExchangeValuesReply reply_{};
  DWORD bytes_ = 0;
};

TEST_F(FakeWindows, RequestThatIsPending_SignalsItsEventWhenItCompletes) {
  faultPlan().complete(tCompletion::later);
  tExchange exchange(open());
  EXPECT_EQ(WaitForSingleObject(exchange.event, INFINITE), DWORD{WAIT_OBJECT_0});
  exchange.expectCompletion();
}

TEST_F(FakeWindows, UncancellableRequest_Completes) {
  faultPlan().complete(tCompletion::uncancellable);
  const HANDLE file = open();
  tExchange exchange(file);
  EXPECT_FALSE(CancelIoEx(file, &exchange.overlapped));
  EXPECT_EQ(GetLastError(), DWORD{ERROR_NOT_FOUND});
  exchange.expectCompletion();
}

TEST_F(FakeWindows, RequestThatIsCancelled_FailsAsAborted) {
  faultPlan().complete(tCompletion::never);
  const HANDLE file = open();
  const HANDLE event = CreateEventA(nullptr, TRUE, FALSE, nullptr);
  OVERLAPPED overlapped{};
  overlapped.hEvent = tagged(event);
  DWORD bytes = 0;
  EXPECT_FALSE(DeviceIoControl(file, 1, nullptr, 0, nullptr, 0, &bytes, &overlapped));
  EXPECT_EQ(GetLastError(), DWORD{ERROR_IO_PENDING});
  EXPECT_TRUE(CancelIoEx(file, &overlapped));
  EXPECT_FALSE(GetOverlappedResult(file, &overlapped, &bytes, TRUE));
  EXPECT_EQ(GetLastError(), DWORD{ERROR_OPERATION_ABORTED});
  EXPECT_FALSE(CancelIoEx(file, &overlapped));
  EXPECT_EQ(GetLastError(), DWORD{ERROR_NOT_FOUND});
  CloseHandle(file);
  CloseHandle(event);
}

TEST_F(FakeWindows, FailedRequest_LeavesTheOutputAlone) {
  const HANDLE file = open(0);
  char output[8] = "before!";
  DWORD bytes = 99;
  EXPECT_FALSE(
      DeviceIoControl(file, 1, output, sizeof output, output, sizeof output, &bytes, nullptr));
  EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_FUNCTION});
  EXPECT_STREQ(output, "before!");
  EXPECT_EQ(bytes, 0u);
  CloseHandle(file);
}

TEST_F(FakeWindows, SignalledEvent_StaysSignalled) {
  const HANDLE manual = CreateEventA(nullptr, TRUE, TRUE, nullptr);
  EXPECT_EQ(WaitForSingleObject(manual, INFINITE), DWORD{WAIT_OBJECT_0});
  EXPECT_EQ(WaitForSingleObject(manual, INFINITE), DWORD{WAIT_OBJECT_0}) << "stays signalled";
  CloseHandle(manual);
}

TEST_F(FakeWindows, LastError_IsPerThread) {
  SetLastError(5);
  std::thread([] {
    EXPECT_EQ(GetLastError(), 0u);
    SetLastError(6);
  }).join();
  EXPECT_EQ(GetLastError(), 5u);
}

TEST_F(FakeWindows, UnreachableMemory_IsRejectedByTheDriver) {
  const HANDLE file = open(0);
  char target[64] = {};
  machine().makeUnreachable(target, sizeof target);
  tExchangeValuesRequest request{};
  request.textBuffer = std::bit_cast<uintptr_t>(&target[0]);
  request.textSize = sizeof target;
  request.tableBuffer = std::bit_cast<uintptr_t>(&target[0]);
  request.tableSize = 65536;
  tExchangeValuesReply reply{};
  DWORD bytes = 0;
  EXPECT_TRUE(DeviceIoControl(file, REQUEST_EXCHANGE_VALUES, &request, sizeof request, &reply,
                              sizeof reply, &bytes, nullptr));
  EXPECT_EQ(reply.driverStatus, SIMULATOR_STATUS_BAD_ADDRESS);
  CloseHandle(file);
}

TEST_F(FakeWindows, FirmwareTable_ReportsItsSizeAndRequiresABuffer) {
  machine().useFirmwareTable({1, 2, 3});
  uint8_t buffer[3] = {};
  EXPECT_EQ(GetSystemFirmwareTable(0x52534D42, 0, nullptr, 0), 3u);
  EXPECT_EQ(GetSystemFirmwareTable(0x52534D42, 0, buffer, 2), 3u);
  EXPECT_EQ(buffer[0], 0) << "nothing is copied into a buffer that is too small";
  EXPECT_EQ(GetSystemFirmwareTable(0x52534D42, 0, buffer, 3), 3u);
  EXPECT_EQ(buffer[2], 3);
  machine().useFirmwareTable({}, ERROR_INVALID_FUNCTION);
  EXPECT_EQ(GetSystemFirmwareTable(0x52534D42, 0, nullptr, 0), 0u);
  EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_FUNCTION});
}

// ---- The fault plan ----

TEST_F(FakeWindows, PlannedFailure_HitsTheNthCallOfAFunction) {
  faultPlan().failCall(tCall::createEvent, 2, 8);
  const HANDLE first = CreateEventA(nullptr, TRUE, FALSE, nullptr);
  EXPECT_NE(first, nullptr);
  EXPECT_EQ(CreateEventA(nullptr, TRUE, FALSE, nullptr), nullptr);
  EXPECT_EQ(GetLastError(), 8u);
  const HANDLE third = CreateEventA(nullptr, TRUE, FALSE, nullptr);
  EXPECT_NE(third, nullptr);
  EXPECT_EQ(faultPlan().callCount(tCall::createEvent), 3u);
  CloseHandle(first);
  CloseHandle(third);
  EXPECT_EQ(faultPlan().callCount(), 5u);
}

TEST_F(FakeWindows, Record_ListsTheCallsInOrder) {
  const HANDLE file = open();
  CloseHandle(file);
  const auto calls = faultPlan().calls();
  ASSERT_EQ(calls.size(), 2u);
  EXPECT_EQ(calls[0].call, tCall::createFile);
  EXPECT_EQ(calls[0].argument, machine().pathOf({kSimulatorInterfaceController, 0}));
  EXPECT_EQ(calls[1].call, tCall::closeHandle);
}

TEST_F(FakeWindows, OpenObjects_AreListed) {
  const HANDLE file = open();
  const HDEVINFO set = list();
  EXPECT_EQ(nFakeWindows::objects().open().size(), 2u);
  CloseHandle(file);
  SetupDiDestroyDeviceInfoList(set);
  EXPECT_TRUE(nFakeWindows::objects().open().empty());
}

// ---- Programming errors ----

TEST_F(FakeWindowsDeathTest, ClosingTwice_Stops) {
  const HANDLE event = CreateEventA(nullptr, TRUE, FALSE, nullptr);
  CloseHandle(event);
  EXPECT_DEATH(CloseHandle(event), "CloseHandle: nothing that can be closed, or closed already");
}

TEST_F(FakeWindowsDeathTest, UnknownArguments_Stop) {
  EXPECT_DEATH(CreateEventA(nullptr, TRUE, FALSE, "name"), "CreateEventA: only a plain event");
  EXPECT_DEATH(SetupDiGetClassDevsA(&kControllerClass, nullptr, nullptr, DIGCF_DEVICEINTERFACE),
               "SetupDiGetClassDevsA: only present device interfaces");
}

TEST_F(FakeWindowsDeathTest, RequestOnAClosedFile_Stops) {
  const HANDLE file = open(0);
  CloseHandle(file);
  DWORD bytes = 0;
  EXPECT_DEATH(DeviceIoControl(file, 1, nullptr, 0, nullptr, 0, &bytes, nullptr),
               "DeviceIoControl: not a file, or one that was closed");
}

TEST_F(FakeWindowsDeathTest, CompletionThatWouldGoToAPort_Stops) {
  const HANDLE file = open();
  const HANDLE event = CreateEventA(nullptr, TRUE, FALSE, nullptr);
  OVERLAPPED overlapped{};
  overlapped.hEvent = event;
  DWORD bytes = 0;
  EXPECT_DEATH(DeviceIoControl(file, 1, nullptr, 0, nullptr, 0, &bytes, &overlapped),
               "an event without its lowest bit set");
  CloseHandle(file);
  CloseHandle(event);
}

}  // namespace
}  // namespace nTests
