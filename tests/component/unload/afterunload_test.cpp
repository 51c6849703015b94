// Exports called by a static destructor that runs after the library's own. The process ends with an
// exit code of the destructor if one of them misbehaves.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>

#include "protocol/interfaces.h"
#include "tests/component/unload/exportsafterunload.h"
#include "tests/fakewindows/objects.h"
#include "zoapal/protons/enumeration/windows/tdeviceinterfaceiterator.h"

namespace nTests {
namespace {

constexpr tExports kExports = {&QUENRA_openController,           &QUENRA_closeController,
                               &QUENRA_getAttributeU32,          &QUENRA_setAttributeUTF8,
                               &zoroco_ra_quenra_createSession,  &zoroco_ra_quenra_programRoute,
                               &zoroco_ra_quenra_unprogramRoute, &zoroco_ra_quenra_destroySession};

// The session that a client leaves open.
struct tClient {
  bool isUsed = false;
  zoroco_RoutingAdaptorSession* session = nullptr;

  tClient() = default;
  tClient(const tClient&) = delete;
  tClient& operator=(const tClient&) = delete;
  ~tClient() {
    if (const int misbehaving = isUsed ? firstMisbehavingExport(kExports, session) : 0;
        misbehaving != 0) {
      std::fprintf(stderr, "after unloading, export %d misbehaves\n", misbehaving);
      _exit(misbehaving);
    }
    nFakeWindows::objects().waitForThreads();
  }
};

// Constructed before the library's own static objects and therefore destroyed after them.
[[gnu::init_priority(101)]] tClient client;

TEST(Unloaded, ExportFromALaterStaticDestructor_ReportsNotReady) {
  uint64_t handle = 0;
  ASSERT_EQ(QUENRA_openController(&handle), 0);
  nZOAPALS100::tStatus finding;
  nQUENRA1400::nZOAPAL000::tDeviceInterfaceIterator iterator(kDevicePathInterfaceClass, finding);
  zoerr_Status status = zoerr_Status_initial();
  client.session =
      zoroco_ra_quenra_createSession(iterator.getDevicePath(finding).text, nullptr, &status);
  ASSERT_EQ(status.code, 0);
  ASSERT_NE(client.session, nullptr);
  client.isUsed = true;
}

}  // namespace
}  // namespace nTests
