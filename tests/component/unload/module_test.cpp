// The library unloaded by its client while a routing session is open.
#include <windows.h>

#include <atomic>

#include "quenra_routing.h"
#include "tests/component/protons/driver/drivertest.h"

namespace nTests {
namespace {

constexpr uint32_t kDemoted = 0x80000000;

std::atomic<int> demotions = 0;

void countDemotion(void*, int32_t, zoerr_Status*, void*) {
  ++demotions;
}

// A copy of the library that the test loads and unloads; the programs of other tests link it.
class Module : public DriverTest {
 protected:
  void SetUp() override {
    DriverTest::SetUp();
    demotions = 0;
    tDeviceInterfaceIterator iterator(kDevicePathInterfaceClass, status);
    path = iterator.getDevicePath(status).text;
    load();
    lookUp("zoroco_ra_quenra_createSessionWithDemotionFunc", createSession);
    lookUp("zoroco_ra_quenra_destroySession", destroySession);
  }

  void load() {
    module = LoadLibraryA("quenra.dll");
    ASSERT_NE(module, nullptr);
  }
  static bool isLoaded() { return GetModuleHandleA("quenra.dll") != nullptr; }
  template <class Function>
  void lookUp(const char* name, Function& function) {
    const FARPROC found = GetProcAddress(module, name);
    ASSERT_NE(found, nullptr) << name;
    __builtin_memcpy(&function, &found, sizeof function);
  }

  std::string path;
  HMODULE module = nullptr;
  decltype(&zoroco_ra_quenra_createSessionWithDemotionFunc) createSession = nullptr;
  decltype(&zoroco_ra_quenra_destroySession) destroySession = nullptr;
};

TEST_F(Module, UnloadedWithoutSession_IsUnmapped) {
  FreeLibrary(module);
  EXPECT_FALSE(isLoaded());
}

TEST_F(Module, UnloadedWithOpenSession_StaysMappedAndReportsDemotions) {
  zoerr_Status record = zoerr_Status_initial();
  zoroco_RoutingAdaptorSession* const session =
      createSession(path.c_str(), nullptr, &countDemotion, nullptr, &record);
  ASSERT_NE(session, nullptr) << record.code;
  FreeLibrary(module);
  ASSERT_TRUE(isLoaded()) << "the session's thread runs code of the library";
  tSimulatorNotice notice{};
  notice.mask = kDemoted;
  machine().notify(notice);
  EXPECT_TRUE(becomesTrue([] { return demotions == 1; }));

  load();
  destroySession(session);
  FreeLibrary(module);
  EXPECT_TRUE(becomesTrue([] { return !isLoaded(); })) << "the thread has released its reference";
}

}  // namespace
}  // namespace nTests
