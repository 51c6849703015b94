// The encryption test with the COM of Windows and the machine's management service.
#include <windows.h>
// Needs windows.h first.
#include <objbase.h>

#include <atomic>
#include <thread>

#include "simulator/scenario/servicescenarios.h"
#include "source/user/preconditions/preconditions.h"
#include "tests/component/user/readingtest.h"

namespace nTests {
namespace {

using nSimulator::setEncryption;

struct tAnswer {
  bool isEncrypted;
  int32_t code;
  uint32_t line;
  bool operator==(const tAnswer&) const = default;
};
void PrintTo(const tAnswer& answer, std::ostream* out) {
  *out << (answer.isEncrypted ? "encrypted" : "not encrypted") << ", code " << answer.code
       << " at line " << answer.line;
}

tAnswer ask() {
  zoerr::tOwnedStatus status;
  const bool isEncrypted = nQUENRA1400::IsSystemDriveEncrypted(status);
  return {isEncrypted, status.code, lineOf(status)};
}

// Runs the operation on a new thread, on which the test decides whether COM is initialised.
template <class Operation>
void onANewThread(Operation operation) {
  std::thread(operation).join();
}

constexpr tAnswer kEncrypted = {true, 0, 0};
constexpr tAnswer kNotEncrypted = {false, 0, 0};

class ManagementService : public testing::Test {
 protected:
  void SetUp() override { setEncryption({}); }
  void TearDown() override { setEncryption({}); }
};

TEST_F(ManagementService, Protection_IsWhatTheScenarioSays) {
  EXPECT_EQ(ask(), kNotEncrypted);
  setEncryption({"on", ""});
  EXPECT_EQ(ask(), kEncrypted);
  setEncryption({"unknown", ""});
  EXPECT_EQ(ask(), kNotEncrypted);
  setEncryption({"no-volume", ""});
  EXPECT_EQ(ask(), kNotEncrypted);
}

TEST_F(ManagementService, StepThatFails_IsReported) {
  setEncryption({"on", "locator"});
  EXPECT_EQ(ask(), (tAnswer{false, -26937, 2863}));
  setEncryption({"on", "connect"});
  EXPECT_EQ(ask(), (tAnswer{false, -26937, 2879}));
  setEncryption({"on", "query"});
  EXPECT_EQ(ask(), (tAnswer{false, -26937, 2912}));
  setEncryption({"on", "result"});
  EXPECT_EQ(ask(), kNotEncrypted);
  setEncryption({"on", "property"});
  EXPECT_EQ(ask(), kNotEncrypted);
}

TEST_F(ManagementService, ThreadInAnApartment_FailsAndKeepsIt) {
  onANewThread([] {
    ASSERT_EQ(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), S_OK);
    EXPECT_EQ(ask(), (tAnswer{false, -26937, 2831}));
    EXPECT_EQ(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), S_FALSE) << "still in it";
    CoUninitialize();
    CoUninitialize();
    EXPECT_EQ(CoInitializeEx(nullptr, COINIT_MULTITHREADED), S_OK) << "and out of it";
    CoUninitialize();
  });
}

TEST_F(ManagementService, ThreadInTheSameModel_KeepsIt) {
  setEncryption({"on", ""});
  onANewThread([] {
    ASSERT_EQ(CoInitializeEx(nullptr, COINIT_MULTITHREADED), S_OK);
    EXPECT_EQ(ask(), kEncrypted);
    EXPECT_EQ(CoInitializeEx(nullptr, COINIT_MULTITHREADED), S_FALSE) << "still in it";
    CoUninitialize();
    CoUninitialize();
  });
}

TEST_F(ManagementService, ThreadWithoutCom_HasNoneAfterwards) {
  setEncryption({"on", ""});
  onANewThread([] {
    EXPECT_EQ(ask(), kEncrypted);
    EXPECT_EQ(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), S_OK);
    CoUninitialize();
  });
}

TEST_F(ManagementService, AfterItsLastUse_StaysLoaded) {
  // Reloading the service for each use would consume memory each time.
  onANewThread([] { EXPECT_EQ(ask(), kNotEncrypted); });
  EXPECT_NE(GetModuleHandleA("quenrasimmanagement.dll"), nullptr);
}

TEST_F(ManagementService, ManyThreadsAtOnce_AreAllAnswered) {
  setEncryption({"on", ""});
  std::atomic<int> encrypted = 0;
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([&encrypted] {
      for (int time = 0; time < 10; ++time) {
        encrypted += ask() == kEncrypted ? 1 : 0;
      }
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  EXPECT_EQ(encrypted, 40);
}

}  // namespace
}  // namespace nTests
