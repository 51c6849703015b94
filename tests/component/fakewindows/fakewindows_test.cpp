#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <windows.h>

#include <objbase.h>
#include <setupapi.h>
#include <wbemcli.h>
#include <array>
#include <bit>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>

#include "protocol/controllerrequests.h"
#include "simulator/managementservice/managementobjects.h"
#include "tests/builders/ttemporaryfolder.h"
#include "tests/fakewindows/disk.h"
#include "tests/fakewindows/fakewindowstest.h"
#include "zoapal/protons/handles/windowsu/tuniquehandle.h"
#include "zoapal/protons/text/windowsu/codepage.h"

namespace nTests {
namespace {

// The rules of Windows that the library relies on, as the fake implements them.
// setupapi.h needs windows.h first.
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

// The rules of COM that the library relies on, as the fake implements them.
// Both need windows.h first.
using nFakeWindows::com;
using nSimulator::kManagementLocatorClass;

constexpr IID kUnknown = {0, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
constexpr IID kLocator = {
    0xDC12A687, 0x737F, 0x11CF, {0x88, 0x4D, 0x00, 0xAA, 0x00, 0x4B, 0x2E, 0x24}};

class FakeCom : public nFakeWindows::FakeWindowsTest {
 protected:
  static HRESULT create(const IID& interfaceId, void** object) {
    return CoCreateInstance(kManagementLocatorClass, nullptr, CLSCTX_INPROC_SERVER, interfaceId,
                            object);
  }
};
using FakeComDeathTest = FakeCom;

TEST_F(FakeCom, Thread_KeepsItsModelUntilItsLastUseEnds) {
  EXPECT_EQ(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), S_OK);
  EXPECT_EQ(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), S_FALSE);
  EXPECT_EQ(CoInitializeEx(nullptr, COINIT_MULTITHREADED), RPC_E_CHANGED_MODE);
  CoUninitialize();
  EXPECT_EQ(CoInitializeEx(nullptr, COINIT_MULTITHREADED), RPC_E_CHANGED_MODE);
  CoUninitialize();
  EXPECT_EQ(CoInitializeEx(nullptr, COINIT_MULTITHREADED), S_OK);
  CoUninitialize();
}

TEST_F(FakeCom, WithoutCom_NothingIsCreated) {
  void* object = nullptr;
  EXPECT_EQ(create(kLocator, &object), CO_E_NOTINITIALIZED);
  EXPECT_EQ(object, nullptr);
}

TEST_F(FakeCom, Object_LivesAsLongAsItsReferences) {
  ASSERT_EQ(CoInitializeEx(nullptr, COINIT_MULTITHREADED), S_OK);
  void* object = nullptr;
  ASSERT_EQ(create(kLocator, &object), S_OK);
  auto* const locator = static_cast<IWbemLocator*>(object);
  void* same = nullptr;
  EXPECT_EQ(locator->QueryInterface(kUnknown, &same), S_OK);
  EXPECT_EQ(locator->Release(), 1u);
  EXPECT_THAT(com()->open(), testing::ElementsAre("IWbemLocator", "thread that uses COM"));
  EXPECT_EQ(static_cast<IUnknown*>(same)->Release(), 0u);
  CoUninitialize();
}

TEST_F(FakeCom, UnsupportedInterface_IsRejected) {
  ASSERT_EQ(CoInitializeEx(nullptr, COINIT_MULTITHREADED), S_OK);
  void* object = nullptr;
  EXPECT_EQ(create(kManagementLocatorClass, &object), E_NOINTERFACE);
  EXPECT_EQ(object, nullptr);
  CoUninitialize();
}

TEST_F(FakeComDeathTest, UnbalancedUse_Stops) {
  EXPECT_DEATH(CoUninitialize(), "the thread does not use COM");
  EXPECT_DEATH(
      {
        static_cast<void>(CoInitializeEx(nullptr, COINIT_MULTITHREADED));
        void* object = nullptr;
        static_cast<void>(create(kLocator, &object));
        CoUninitialize();
      },
      "COM ends while an object is alive");
}

TEST_F(FakeComDeathTest, InvalidTextOrValue_Stops) {
  EXPECT_DEATH(
      {
        const BSTR text = SysAllocString(L"x");
        SysFreeString(text);
        SysFreeString(text);
      },
      "SysFreeString");
  VARIANT value{};
  EXPECT_DEATH(static_cast<void>(VariantClear(&value)), "VariantClear");
}

TEST_F(FakeComDeathTest, UnsupportedCall_StopsTheProgram) {
  void* object = nullptr;
  EXPECT_DEATH(static_cast<void>(
                   CoCreateInstance(kUnknown, nullptr, CLSCTX_INPROC_SERVER, kUnknown, &object)),
               "only the locator");
  ASSERT_EQ(CoInitializeEx(nullptr, COINIT_MULTITHREADED), S_OK);
  ASSERT_EQ(create(kLocator, &object), S_OK);
  auto* const locator = static_cast<IWbemLocator*>(object);
  IWbemServices* services = nullptr;
  const BSTR elsewhere = SysAllocString(L"ROOT\\CIMV2");
  EXPECT_DEATH(static_cast<void>(locator->ConnectServer(elsewhere, nullptr, nullptr, nullptr, 0,
                                                        nullptr, nullptr, &services)),
               "another namespace");
  SysFreeString(elsewhere);
  locator->Release();
  CoUninitialize();
}

// The errors with which the calls on folders and files fail, as Windows documents them.
namespace fs = std::filesystem;
using nQUENRA1400::nZOAPAL000::tUniqueFile;
using nQUENRA1400::nZOAPAL000::wideText;

constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

class Disk : public nFakeWindows::FakeWindowsTest {
 protected:
  static tUniqueFile open(const fs::path& path, DWORD access,
                          DWORD flags = FILE_FLAG_BACKUP_SEMANTICS, DWORD sharing = kShareAll) {
    return tUniqueFile(CreateFileW(wideText(path.u16string().c_str()), access, sharing, nullptr,
                                   OPEN_EXISTING, flags, nullptr));
  }
  static DWORD errorOfOpening(const fs::path& path, DWORD flags = FILE_FLAG_BACKUP_SEMANTICS) {
    return open(path, GENERIC_READ, flags) ? 0 : GetLastError();
  }
  static DWORD errorOfRemoval(const tUniqueFile& entry) {
    FILE_DISPOSITION_INFO disposition{TRUE};
    const bool isDone = SetFileInformationByHandle(entry.get(), FileDispositionInfo, &disposition,
                                                   sizeof disposition) != FALSE;
    return isDone ? 0 : GetLastError();
  }

  const tTemporaryFolder folder_;
};

TEST_F(Disk, MissingEntryAndMissingFolder_AreDistinguished) {
  EXPECT_EQ(errorOfOpening(folder_.path() / "missing"), DWORD{ERROR_FILE_NOT_FOUND});
  EXPECT_EQ(errorOfOpening(folder_.path() / "missing" / "file"), DWORD{ERROR_PATH_NOT_FOUND});
}

TEST_F(Disk, FolderWithoutBackupSemantics_IsDenied) {
  EXPECT_EQ(errorOfOpening(folder_.path(), FILE_ATTRIBUTE_NORMAL), DWORD{ERROR_ACCESS_DENIED});
  EXPECT_EQ(errorOfOpening(folder_.path()), 0u);
}

TEST_F(Disk, Sharing_IsRequiredOfBothHandles) {
  const fs::path file = folder_.path() / "file";
  std::ofstream(file) << "content";
  const tUniqueFile reader = open(file, GENERIC_READ, FILE_ATTRIBUTE_NORMAL, FILE_SHARE_READ);
  ASSERT_TRUE(reader);
  EXPECT_FALSE(open(file, GENERIC_WRITE));
  EXPECT_EQ(GetLastError(), DWORD{ERROR_SHARING_VIOLATION});
  EXPECT_FALSE(open(file, GENERIC_READ, FILE_ATTRIBUTE_NORMAL, FILE_SHARE_WRITE));
  EXPECT_EQ(GetLastError(), DWORD{ERROR_SHARING_VIOLATION});
  EXPECT_TRUE(open(file, FILE_READ_ATTRIBUTES, FILE_ATTRIBUTE_NORMAL, 0)) << "shares no access";
}

TEST_F(Disk, Removal_NeedsItsAccessAnEmptyFolderAndAWritableEntry) {
  const fs::path nested = folder_.path() / "nested";
  const fs::path file = nested / "file";
  fs::create_directory(nested);
  std::ofstream(file) << "content";
  EXPECT_EQ(errorOfRemoval(open(file, GENERIC_READ)), DWORD{ERROR_ACCESS_DENIED});
  EXPECT_EQ(errorOfRemoval(open(nested, DELETE)), DWORD{ERROR_DIR_NOT_EMPTY});
  fs::permissions(file, fs::perms::owner_read);
  EXPECT_EQ(errorOfRemoval(open(file, DELETE)), DWORD{ERROR_ACCESS_DENIED});
  fs::permissions(file, fs::perms::owner_write, fs::perm_options::add);
  EXPECT_EQ(errorOfRemoval(open(file, DELETE)), 0u);
  EXPECT_EQ(errorOfRemoval(open(nested, DELETE)), 0u);
  EXPECT_FALSE(fs::exists(nested));
}

TEST_F(Disk, Listing_EndsWithNoMoreFiles) {
  for (const char* name : {"a", "b", "c"}) {
    std::ofstream(folder_.path() / name) << "content";
  }
  const tUniqueFile folder = open(folder_.path(), FILE_LIST_DIRECTORY);
  alignas(8) std::array<uint8_t, 1024> block{};
  unsigned blocks = 0;
  while (GetFileInformationByHandleEx(folder.get(), FileIdBothDirectoryInfo, block.data(),
                                      static_cast<DWORD>(block.size()))) {
    ++blocks;
  }
  EXPECT_EQ(blocks, 3u) << "five entries, two in a block";
  EXPECT_EQ(GetLastError(), DWORD{ERROR_NO_MORE_FILES});
}

TEST_F(Disk, NameThatExceedsItsBuffer_ReportsTheSizeWithItsNul) {
  const tUniqueFile folder = open(folder_.path(), FILE_READ_ATTRIBUTES);
  constexpr DWORD kName = FILE_NAME_OPENED | VOLUME_NAME_NT;
  std::u16string name(1, u'\0');
  const DWORD needed = GetFinalPathNameByHandleW(folder.get(), wideText(name.data()), 1, kName);
  name.resize(needed);
  EXPECT_EQ(GetFinalPathNameByHandleW(folder.get(), wideText(name.data()), needed, kName),
            needed - 1);
  EXPECT_TRUE(name.starts_with(u"\\Device\\"));
}

TEST_F(Disk, ProtectionThroughAHandle_NeedsItsAccess) {
  const tUniqueFile folder = open(folder_.path(), FILE_LIST_DIRECTORY);
  EXPECT_FALSE(SetKernelObjectSecurity(folder.get(), DACL_SECURITY_INFORMATION, nullptr));
  EXPECT_EQ(GetLastError(), DWORD{ERROR_ACCESS_DENIED});
}

}  // namespace
}  // namespace nTests
