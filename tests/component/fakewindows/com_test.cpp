// The rules of COM that the library relies on, as the fake implements them.
#include <windows.h>
// Both need windows.h first.
#include <objbase.h>
#include <wbemcli.h>

#include <gmock/gmock.h>

#include "simulator/managementservice/managementobjects.h"
#include "tests/fakewindows/fakewindowstest.h"

namespace nTests {
namespace {

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

}  // namespace
}  // namespace nTests
