// Fails every allocation of QUENRA_openController in turn.
#include "source/user/exports/tprocessstate.h"
#include "tests/component/session/sessiontest.h"
#include "tests/fakewindows/allocationplan.h"

namespace nTests {
namespace {

using nFakeWindows::faultPlan;
using nFakeWindows::tAllocationPlan;

class AllocationFailures : public SessionTest {
 protected:
  // Opens through the export with the nth allocation failing; closes. 0: none fails.
  int32_t openWithout(unsigned nth, unsigned* count) {
    uint64_t handle = 0;
    int32_t code = 0;
    {
      const tAllocationPlan plan(nth);
      code = QUENRA_openController(&handle);
      *count = plan.count();
    }
    QUENRA_closeController(handle);
    return code;
  }
};

TEST_F(AllocationFailures, Each_ReturnsAMemoryCodeWithoutALeakAndTheNextOpenSucceeds) {
  unsigned allocations = 0;
  unsigned ignored = 0;
  ASSERT_EQ(openWithout(0, &ignored), 0);
  ASSERT_EQ(openWithout(0, &allocations), 0);
  ASSERT_GT(allocations, 5u);

  std::set<int32_t> codes;
  for (unsigned nth = 1; nth <= allocations; ++nth) {
    SCOPED_TRACE("allocation " + std::to_string(nth));
    const int32_t code = openWithout(nth, &ignored);
    codes.insert(code);
    EXPECT_THAT(code, testing::AnyOf(0, QUENRA_STATUS_OUT_OF_MEMORY, QUENRA_STATUS_MEMORY_FULL));
    EXPECT_THAT(nFakeWindows::objects().open(), testing::IsEmpty());
    EXPECT_EQ(openWithout(0, &ignored), 0);
  }
  // The session itself; its buffers and lists.
  EXPECT_THAT(codes,
              testing::IsSupersetOf({QUENRA_STATUS_OUT_OF_MEMORY, QUENRA_STATUS_MEMORY_FULL}));
  expectNoLeak();
}

TEST_F(AllocationFailures, TheFirst_IsOfTheSession) {
  unsigned ignored = 0;
  EXPECT_EQ(openWithout(1, &ignored), QUENRA_STATUS_OUT_OF_MEMORY);
  EXPECT_EQ(faultPlan().callCount(), 0u) << "nothing is opened without a session";
}

TEST_F(AllocationFailures, OfTheSession_AreReportedAsOutOfMemory) {
  nQUENRA1400::nZOAPAL000::tStartUp startUp;
  nQUENRA1400::tProcessState state(startUp);
  state.load();
  zoerr::tOwnedStatus status;
  {
    const tAllocationPlan plan(1);
    state.open(status);
  }
  EXPECT_EQ(outcomeOf(status), sessionFailure(QUENRA_STATUS_OUT_OF_MEMORY, 121));
  state.unload();
}

TEST_F(AllocationFailures, DuringReads_ChangeNoOutcome) {
  uint64_t handle = 0;
  ASSERT_EQ(QUENRA_openController(&handle), 0);
  for (unsigned nth = 0; nth < 3; ++nth) {
    const tAllocationPlan plan(nth);
    char buffer[64] = "";
    uint64_t size = sizeof buffer;
    EXPECT_EQ(QUENRA_getAttributeUTF8(handle, QUENRA_ATTRIBUTE_BUS_LOCATION, buffer, &size), 0);
    EXPECT_STREQ(buffer, "07:12");
    uint32_t value = 0;
    EXPECT_EQ(QUENRA_getAttributeU32(handle, QUENRA_ATTRIBUTE_CONTROLLER_KIND, &value), 0);
    EXPECT_EQ(plan.count(), 0u) << "a read allocates nothing";
    EXPECT_EQ(QUENRA_getAttributeU32(handle, 0x20000700, &value), QUENRA_STATUS_NOT_SUPPORTED)
        << "the code needs no memory for a description";
  }
  QUENRA_closeController(handle);
}

}  // namespace
}  // namespace nTests
