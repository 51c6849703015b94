#include "zoapal/protons/enumeration/windows/tdeviceinterfaceiterator.h"

#include <string>

#include "quenra_status.h"
#include "simulator/control/tsimulatedmachine.h"
#include "tests/fakewindows/fakewindowstest.h"

namespace nTests {
namespace {

using nFakeWindows::faultPlan;
using nFakeWindows::machine;
using nFakeWindows::tCall;
using nQUENRA1400::nZOAPAL000::tDeviceInterfaceIterator;
using nQUENRA1400::nZOAPAL000::tDeviceInterfaceProxy;
using nZOAPALS100::tStatus;

class DeviceInterfaceIterator : public nFakeWindows::FakeWindowsTest {
 protected:
  static void usePresence(uint32_t controllers) {
    {
      nSimulator::tSimulatedMachine control;
      control.setPresence({controllers, 0, 0});
    }
    faultPlan().reset();
  }
  static std::string pathOf(uint32_t index) {
    return machine().pathOf({kSimulatorInterfaceController, index});
  }

  tStatus status;
};

TEST_F(DeviceInterfaceIterator, WalksThePresentInterfacesInOrder) {
  usePresence(2);
  tDeviceInterfaceIterator i(kControllerInterfaceClass, status);
  ASSERT_FALSE(i.isEnd());
  EXPECT_EQ(i.getDevicePath(status).text, pathOf(0));
  i.next();
  ASSERT_FALSE(i.isEnd());
  EXPECT_EQ(i.getDevicePath(status).text, pathOf(1));
  i.next();
  EXPECT_TRUE(i.isEnd());
  EXPECT_EQ(status.code, QUENRA_STATUS_SUCCESS);
}

TEST_F(DeviceInterfaceIterator, WithoutInterfaces_IsAtItsEndWithoutAnError) {
  usePresence(0);
  const tDeviceInterfaceIterator i(kControllerInterfaceClass, status);
  EXPECT_TRUE(i.isEnd());
  EXPECT_EQ(status.code, QUENRA_STATUS_SUCCESS);
}

TEST_F(DeviceInterfaceIterator, OnAStatusInError_CallsNothing) {
  status.code = -1;
  {
    tDeviceInterfaceIterator i(kControllerInterfaceClass, status);
    EXPECT_TRUE(i.isEnd());
    i.next();
    EXPECT_TRUE(i.isEnd());
  }
  EXPECT_EQ(faultPlan().callCount(), 0u);
  EXPECT_EQ(status.code, -1);
}

TEST_F(DeviceInterfaceIterator, SetThatCannotBeCreated_ReportsItsLocation) {
  faultPlan().failCall(tCall::setupDiGetClassDevs, 1, ERROR_INVALID_PARAMETER);
  {
    tDeviceInterfaceIterator i(kControllerInterfaceClass, status);
    EXPECT_TRUE(i.isEnd());
    i.next();
  }
  EXPECT_EQ(status.code, QUENRA_STATUS_INVALID_PARAMETER);
  EXPECT_STREQ(status.file, "tdeviceinterfaceiterator");
  EXPECT_EQ(status.line, 45u);
  EXPECT_STREQ(status.component, "quenra");
  EXPECT_EQ(faultPlan().callCount(tCall::setupDiEnumDeviceInterfaces), 0u);
  EXPECT_EQ(faultPlan().callCount(tCall::setupDiDestroyDeviceInfoList), 0u);
}

TEST_F(DeviceInterfaceIterator, ListingThatBreaksOff_IsSilentlyTheEnd) {
  faultPlan().failCall(tCall::setupDiEnumDeviceInterfaces, 1, ERROR_ACCESS_DENIED);
  const tDeviceInterfaceIterator i(kControllerInterfaceClass, status);
  EXPECT_TRUE(i.isEnd());
  EXPECT_EQ(status.code, QUENRA_STATUS_SUCCESS);
}

TEST_F(DeviceInterfaceIterator, PathReadTwice_IsFetchedOnce) {
  tDeviceInterfaceIterator i(kControllerInterfaceClass, status);
  EXPECT_EQ(i.getDevicePath(status).length, pathOf(0).size() + 1);
  EXPECT_EQ(i.getDevicePath(status).text, pathOf(0));
  EXPECT_EQ(faultPlan().callCount(tCall::setupDiGetDeviceInterfaceDetail), 1u);
}

TEST_F(DeviceInterfaceIterator, PathThatJustFits_IsFetched) {
  machine().usePath({kSimulatorInterfaceController, 0}, std::string(251, 'p'));
  tDeviceInterfaceIterator i(kControllerInterfaceClass, status);
  EXPECT_EQ(i.getDevicePath(status).text, std::string(251, 'p'));
  EXPECT_EQ(status.code, QUENRA_STATUS_SUCCESS);
}

TEST_F(DeviceInterfaceIterator, PathOneCharacterTooLong_ReportsItsLocation) {
  machine().usePath({kSimulatorInterfaceController, 0}, std::string(252, 'p'));
  tDeviceInterfaceIterator i(kControllerInterfaceClass, status);
  EXPECT_TRUE(i.getDevicePath(status).isEmpty());
  EXPECT_EQ(status.code, QUENRA_STATUS_PATH_TOO_LONG);
  EXPECT_EQ(status.line, 224u);
}

TEST_F(DeviceInterfaceIterator, PathAtTheEnd_IsEmptyAndAnError) {
  tDeviceInterfaceIterator i(kControllerInterfaceClass, status);
  EXPECT_FALSE(i.getDevicePath(status).isEmpty());
  i.next();
  EXPECT_TRUE(i.isEnd());
  EXPECT_TRUE(i.getDevicePath(status).isEmpty());
  EXPECT_STREQ(i.getDevicePath(status).text, "");
  EXPECT_EQ(status.code, QUENRA_STATUS_INVALID_PARAMETER);
  EXPECT_EQ(status.line, 232u);
}

TEST_F(DeviceInterfaceIterator, DetailThatCannotBeRead_ReportsItsLocation) {
  faultPlan().failCall(tCall::setupDiGetDeviceInterfaceDetail, 1, ERROR_DEVICE_REMOVED);
  tDeviceInterfaceIterator i(kControllerInterfaceClass, status);
  EXPECT_TRUE(i.getDevicePath(status).isEmpty());
  EXPECT_EQ(status.code, QUENRA_STATUS_DEVICE_REMOVED);
  EXPECT_EQ(status.line, 232u);
}

TEST_F(DeviceInterfaceIterator, PathOnAStatusInError_IsEmptyWithoutACall) {
  tDeviceInterfaceIterator i(kControllerInterfaceClass, status);
  status.code = -1;
  EXPECT_TRUE(i.getDevicePath(status).isEmpty());
  EXPECT_EQ(faultPlan().callCount(tCall::setupDiGetDeviceInterfaceDetail), 0u);
}

TEST_F(DeviceInterfaceIterator, OpensTheCurrentInterface) {
  tDeviceInterfaceIterator i(kControllerInterfaceClass, status);
  tDeviceInterfaceProxy proxy;
  i.openCurrent(proxy, status);
  EXPECT_EQ(status.code, QUENRA_STATUS_SUCCESS);
  EXPECT_TRUE(proxy.isOpen());
}

TEST_F(DeviceInterfaceIterator, WithoutAPath_OpensNothing) {
  faultPlan().failCall(tCall::setupDiGetDeviceInterfaceDetail, 1, ERROR_DEVICE_REMOVED);
  tDeviceInterfaceIterator i(kControllerInterfaceClass, status);
  tDeviceInterfaceProxy proxy;
  i.openCurrent(proxy, status);
  EXPECT_FALSE(proxy.isOpen());
  EXPECT_EQ(faultPlan().callCount(tCall::createFile), 0u);
}

TEST_F(DeviceInterfaceIterator, DestroysItsSet) {
  { const tDeviceInterfaceIterator i(kControllerInterfaceClass, status); }
  EXPECT_EQ(faultPlan().callCount(tCall::setupDiDestroyDeviceInfoList), 1u);
}

}  // namespace
}  // namespace nTests
