// Each allocation of an update, and of its steps that call the system, fails in turn.
#include <new>

#include "source/user/preconditions/preconditions.h"
#include "source/user/update/driverpackage.h"
#include "source/user/update/environmentstep.h"
#include "source/user/update/updatefiles.h"
#include "tests/component/update/updatetest.h"
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

class UpdateMemory : public UpdateTest {
 protected:
  static int32_t updateWithout(unsigned nth, unsigned* count) {
    const std::string image = completeImage();
    uint64_t handle = 0;
    EXPECT_EQ(QUENRA_openController(&handle), 0);
    int32_t code = 0;
    {
      const tAllocationPlan plan(nth);
      code = QUENRA_updateFirmware(handle, image.data(), image.size());
      *count = plan.count();
    }
    QUENRA_closeController(handle);
    return code;
  }
};

TEST_F(UpdateMemory, EachAllocationThatFails_IsReportedAndLeavesNothingHalfDone) {
  unsigned allocations = 0;
  unsigned ignored = 0;
  ASSERT_EQ(updateWithout(0, &ignored), 0);
  ASSERT_EQ(updateWithout(0, &allocations), 0);
  ASSERT_GT(allocations, 10u);
  unsigned failures = 0;
  for (unsigned nth = 1; nth <= allocations; ++nth) {
    SCOPED_TRACE(nth);
    setMarker(kMarkerBefore);
    const int32_t code = updateWithout(nth, &ignored);
    EXPECT_THAT(nFakeWindows::objects().open(), testing::IsEmpty());
    if (code < 0) {
      ++failures;
      EXPECT_THAT(code, testing::AnyOf(QUENRA_STATUS_OUT_OF_MEMORY, QUENRA_STATUS_MEMORY_FULL,
                                       QUENRA_STATUS_UPDATE_ENVIRONMENT));
      EXPECT_EQ(marker(), kMarkerBefore);
    } else {
      EXPECT_EQ(marker(), kMarkerAfter);
    }
  }
  EXPECT_GT(failures, 5u);
  EXPECT_EQ(updateWithout(0, &ignored), 0);
  expectNoLeak();
}

TEST_F(UpdateMemory, ShortWhileTheFolderIsRemoved_LeavesTheFolder) {
  nQUENRA1400::tUpdateFolder folder(nQUENRA1400::randomFolderName());
  folder.create();
  const std::filesystem::path path = *std::filesystem::directory_iterator(temporary);
  {
    const tAllocationPlan plan(1);
    folder.remove();
  }
  EXPECT_TRUE(std::filesystem::exists(path));
  folder.remove();
  EXPECT_FALSE(std::filesystem::exists(path));
}

}  // namespace
}  // namespace nTests
