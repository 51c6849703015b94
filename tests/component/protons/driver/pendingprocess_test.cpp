// Requests of a process that dies.
#include <string>

#include "quenra_status.h"
#include "tests/component/protons/driver/drivertest.h"

namespace nTests {
namespace {

using testing::SizeIs;

std::string programBesideThisOne(const std::string& name) {
  char path[MAX_PATH] = {};
  GetModuleFileNameA(nullptr, path, sizeof path);
  const std::string own(path);
  return own.substr(0, own.find_last_of('\\') + 1) + name;
}

// A process that keeps a request pending: it waits for input that never arrives.
class tHolder {
 public:
  tHolder() {
    SECURITY_ATTRIBUTES inheritable{sizeof inheritable, nullptr, TRUE};
    HANDLE readEnd = nullptr;
    HANDLE writeEnd = nullptr;
    EXPECT_TRUE(CreatePipe(&readEnd, &writeEnd, &inheritable, 0));
    STARTUPINFOA startup{};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdInput = readEnd;
    startup.hStdOutput = GetStdHandle(STD_ERROR_HANDLE);
    startup.hStdError = GetStdHandle(STD_ERROR_HANDLE);
    std::string program = programBesideThisOne("pending_holder.exe");
    EXPECT_TRUE(CreateProcessA(nullptr, program.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr,
                               &startup, &process_))
        << GetLastError();
    CloseHandle(readEnd);
    input_ = writeEnd;
  }
  tHolder(const tHolder&) = delete;
  tHolder& operator=(const tHolder&) = delete;
  ~tHolder() {
    CloseHandle(input_);
    CloseHandle(process_.hThread);
    CloseHandle(process_.hProcess);
  }

  [[nodiscard]] DWORD id() const { return process_.dwProcessId; }
  void kill() { TerminateProcess(process_.hProcess, 9); }

 private:
  PROCESS_INFORMATION process_{};
  HANDLE input_ = nullptr;
};

TEST_F(PendingRequest, OfAProcessThatDies_IsCancelledAndTheMachineGoesOn) {
  for (int round = 0; round < 3; ++round) {
    machine().clearLog();
    tHolder holder;
    ASSERT_TRUE(becomesTrue([this] { return pendingCount() == 1; }));
    EXPECT_EQ(machine().pending().at(0).process, holder.id());
    holder.kill();
    EXPECT_TRUE(becomesTrue([this] { return pendingCount() == 0; }));
    EXPECT_TRUE(becomesTrue([this] { return logged(kSimulatorEventClose).size() == 1; }));
    const std::vector<tSimulatorLogEntry> completed = logged(kSimulatorEventCompleted);
    ASSERT_THAT(completed, SizeIs(1));
    EXPECT_EQ(completed[0].windowsError, 995u);
  }
  EXPECT_NE(proxy.beginPendingRequest(1, 2, 3, request, status), 0u);
  proxy.endPendingRequest(request);
  EXPECT_EQ(status.code, QUENRA_STATUS_SUCCESS);
}

TEST_F(PendingRequest, OfAProcessThatDiesBeforeItIsAccepted_IsCancelled) {
  machine().setAcceptance(kSimulatorAcceptLater);
  tHolder holder;
  ASSERT_TRUE(becomesTrue([this] { return pendingCount() == 1; }));
  holder.kill();
  EXPECT_TRUE(becomesTrue([this] { return pendingCount() == 0; }));
  machine().acceptPending();
  EXPECT_EQ(pendingCount(), 0u);
}

}  // namespace
}  // namespace nTests
