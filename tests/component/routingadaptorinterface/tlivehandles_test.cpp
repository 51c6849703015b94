#include "routingadaptorinterface/tlivehandles.h"

#include <gtest/gtest.h>

#include "tests/fakewindows/synchronization.h"

namespace nTests {
namespace {

using nFakeWindows::slimLockCounts;
using nFakeWindows::tSlimLockCounts;
using zoroco::tHandleKind;
using zoroco::tLiveHandles;

TEST(LiveHandles, Lookups_DoNotExcludeEachOther) {
  tLiveHandles handles;
  const int session = 0;
  const int iterator = 0;
  handles.add(&session, tHandleKind::session);
  handles.add(&iterator, tHandleKind::iterator, &session);
  const tSlimLockCounts before = slimLockCounts();
  EXPECT_TRUE(handles.isLive(&session, tHandleKind::session));
  EXPECT_TRUE(handles.isOwnerLive(&iterator));
  const tSlimLockCounts after = slimLockCounts();
  EXPECT_EQ(after.shared - before.shared, 2u);
  EXPECT_EQ(after.exclusive, before.exclusive);
}

TEST(LiveHandles, Changes_ExcludeEverythingElse) {
  tLiveHandles handles;
  const int session = 0;
  const tSlimLockCounts before = slimLockCounts();
  handles.add(&session, tHandleKind::session);
  EXPECT_TRUE(handles.remove(&session, tHandleKind::session));
  const tSlimLockCounts after = slimLockCounts();
  EXPECT_EQ(after.exclusive - before.exclusive, 2u);
  EXPECT_EQ(after.shared, before.shared);
}

}  // namespace
}  // namespace nTests
