// The system calls of a firmware update when memory is short.
#include <new>

#include "source/user/preconditions/preconditions.h"
#include "source/user/update/driverpackage.h"
#include "tests/component/session/sessiontest.h"
#include "tests/fakewindows/allocationplan.h"

namespace nTests {
namespace {

using nFakeWindows::com;
using nFakeWindows::programs;
using nFakeWindows::tAllocationPlan;

class ShortMemory : public nFakeWindows::FakeWindowsTest {};

TEST_F(ShortMemory, DriverPackage_ThrowsBeforeAnythingIsStarted) {
  programs().install("C:\\Windows\\Sysnative\\pnputil.exe");
  const std::string path(300, 'x');
  unsigned allocations = 0;
  {
    const tAllocationPlan plan(0);
    zoerr::tOwnedStatus status;
    nQUENRA1400::installDriverPackage(path, status);
    allocations = plan.count();
  }
  ASSERT_GT(allocations, 0u);
  ASSERT_EQ(programs().started().size(), 1u);
  for (unsigned nth = 1; nth <= allocations; ++nth) {
    zoerr::tOwnedStatus status;
    const tAllocationPlan plan(nth);
    EXPECT_THROW(nQUENRA1400::installDriverPackage(path, status), std::bad_alloc) << nth;
    EXPECT_EQ(status.code, 0);
  }
  EXPECT_EQ(programs().started().size(), 1u);
}

TEST_F(ShortMemory, DriveEncryption_ReturnsFalseAndReleasesEverything) {
  com()->useVolumes({{VT_I4, 1}});
  unsigned allocations = 0;
  {
    const tAllocationPlan plan(0);
    zoerr::tOwnedStatus status;
    EXPECT_TRUE(nQUENRA1400::IsSystemDriveEncrypted(status));
    allocations = plan.count();
  }
  ASSERT_EQ(allocations, 3u) << "the objects that the service hands over; the library makes none";
  for (unsigned nth = 1; nth <= allocations; ++nth) {
    bool isEncrypted = true;
    {
      const tAllocationPlan plan(nth);
      zoerr::tOwnedStatus status;
      isEncrypted = nQUENRA1400::IsSystemDriveEncrypted(status);
    }
    EXPECT_FALSE(isEncrypted) << nth;
    EXPECT_EQ(com()->open(), std::vector<std::string>()) << nth;
  }
}

}  // namespace
}  // namespace nTests
