// The heap memory that operations use, and their outcome when an allocation or a Windows call fails.
// Native only.
#include <array>
#include <functional>
#include <map>
#include <new>

#include "tests/component/zoarkra/routingdevicetest.h"
#include "tests/component/zoarkra/sessiontest.h"
#include "tests/fakewindows/allocationplan.h"

namespace nTests {
namespace {

using nFakeWindows::faultPlan;
using nFakeWindows::tAllocationPlan;
using nFakeWindows::tCall;

// ---- Memory of the operations ----

// A client with a static buffer.
char* supplyStaticBuffer(char*, size_t required, const char*, size_t) {
  static std::array<char, 1 << 16> buffer;
  return required <= buffer.size() ? buffer.data() : nullptr;
}

constexpr size_t kFourKilobytes = 4096;

std::string destinationsOfSize(size_t size) {
  std::string text = R"(["FLOAT")";
  const std::string next = R"(,"PXI_Trig0")";
  while (text.size() + next.size() < size) {
    text += next;
  }
  return text + "]";
}

// Names with an escape, each longer than the one before, so that each outgrows the reader's buffer.
std::string escapedNamesOfSize(size_t size) {
  std::string text = R"(["\n")";
  for (std::string name = R"("\n)"; text.size() + name.size() + 3 < size; name += "nnnn") {
    text += "," + name + "\"";
  }
  return text + "]";
}

std::string seedsOfSize(size_t size) {
  const std::string seed =
      R"({"terminal":"FLOAT","cost":1,"constraints":{"inversionNeeded":true}})";
  std::string text = "[" + seed;
  while (text.size() + seed.size() + 2 < size) {
    text += "," + seed;
  }
  return text + "]";
}

class Memory : public SessionTest {
 protected:
  Memory() {
    router().isQuiet = true;
    create({&supplyStaticBuffer, nullptr, nullptr});
  }

  // Runs the operation with each of its allocations failing in turn. It fails with std::bad_alloc or
  // with its own code, or succeeds without the memory.
  void failEveryAllocation(const std::function<void()>& operation,
                           int32_t ownCode = QUENRA_STATUS_MEMORY_FULL) {
    for (unsigned nth = 1;; ++nth) {
      tAllocationPlan plan(nth);
      try {
        operation();
      } catch (const std::bad_alloc&) {
      } catch (const zoerr::ExceptionBase& exception) {
        EXPECT_EQ(exception.status().code, ownCode);
      }
      if (plan.count() < nth) {
        break;
      }
    }
  }
  // The number of allocations of an operation.
  static unsigned allocationsOf(const std::function<void()>& operation) {
    tAllocationPlan plan(0);
    operation();
    return plan.count();
  }
  void calculate(const std::string& seeds, const std::string& destinations,
                 const char* modifiers = "{}") {
    session_->calculateRoute({seeds.c_str(), destinations.c_str(), modifiers}, &output_, status_);
  }

  char* output_ = nullptr;
};

TEST_F(Memory, RequestsOf4KiB_UseNoHeapMemory) {
  router().routes.assign(4, {7, 4, 1, 0, 1, {}});
  const std::string manySeeds = seedsOfSize(kFourKilobytes - 12);
  const std::string manyDestinations = destinationsOfSize(kFourKilobytes - 70);
  const std::string longName = R"([{"terminal":")" + std::string(kFourKilobytes - 50, 'n') +
                               R"(","cost":1,"constraints":{}}])";
  const std::string longEscape = R"([{"terminal":"\n)" + std::string(kFourKilobytes - 52, 'n') +
                                 R"(","cost":1,"constraints":{}}])";
  const std::string growingNames = escapedNamesOfSize(kFourKilobytes);
  EXPECT_EQ(allocationsOf([&] { calculate(manySeeds, "[]"); }), 0u);
  EXPECT_EQ(allocationsOf([&] { calculate("[]", manyDestinations); }), 0u);
  EXPECT_EQ(allocationsOf([&] { calculate(longName, R"(["FLOAT"])"); }), 0u);
  EXPECT_EQ(allocationsOf([&] { calculate(longEscape, R"(["FLOAT"])"); }), 0u);
  EXPECT_EQ(allocationsOf([&] { calculate("[]", growingNames); }), 0u);
}

TEST_F(Memory, ModifiersOfEveryKind_UseNoHeapMemory) {
  const char* const modifiers =
      R"({"required":{"calculateIgnoresReservations":true,"a name of more than one line":false},)"
      R"("optional":{"another name of the same length":"x","inversionNeeded":5}})";
  const std::string none = "[]";
  EXPECT_EQ(allocationsOf([&] { calculate(none, none, modifiers); }), 0u);
}

TEST_F(Memory, ShortageForAnUnrecognisedModifier_EndsTheRequest) {
  const char* const modifiers =
      R"({"required":{"inversionNeeded":5,"a name of more than one line":5,)"
      R"("inversionNeeded":true,"a name of more than one line":true}})";
  failEveryAllocation([&] { calculate("[]", "[]", modifiers); });
  EXPECT_GT(allocationsOf([&] { calculate("[]", "[]", modifiers); }), 1u);
}

TEST_F(Memory, OtherOperationsOfOrdinarySize_UseNoHeapMemory) {
  router().path.assign(32, 2);
  EXPECT_EQ(allocationsOf([&] {
              session_->getHandledConstraints(&output_, status_);
              session_->reserveRoute(7, &output_, status_);
              session_->programRoute(7, status_);
              session_->getRouteTerminalPath(7, &output_, status_);
              session_->unprogramRoute(7, 0, 0);
              session_->unreserveRoute(7, 0, 0);
              session_->destroyRoute(7, 0, 0);
            }),
            0u);
}

TEST_F(Memory, ShortageForALargeRequest_EndsTheRequest) {
  const std::string seeds = seedsOfSize(20 * kFourKilobytes);
  const std::string destinations = destinationsOfSize(20 * kFourKilobytes);
  router().routes.assign(100, {7, 4, 1, 0, 1, {}});
  failEveryAllocation([&] { calculate(seeds, destinations); });
  EXPECT_GT(allocationsOf([&] { calculate(seeds, destinations); }), 2u);
}

TEST_F(Memory, ShortageForALongName_EndsTheRequest) {
  const std::string seeds = R"([{"terminal":"\n)" + std::string(10 * kFourKilobytes, 'n') +
                            R"(","cost":1,"constraints":{}}])";
  failEveryAllocation([&] { calculate(seeds, R"(["FLOAT"])"); });
  EXPECT_GT(allocationsOf([&] { calculate(seeds, R"(["FLOAT"])"); }), 0u);
}

TEST_F(Memory, ShortageForTheDescriptionOfABadRequest_KeepsItsCode) {
  const std::string seeds = "[" + std::string(3 * kFourKilobytes, ' ') + "5]";
  failEveryAllocation([&] { calculate(seeds, "[]"); }, QUENRA_STATUS_INVALID_PARAMETER);
}

TEST_F(Memory, ShortageForAConflictReport_EndsTheReservation) {
  router().conflicts.assign(200, {1, 2, 0});
  for (unsigned nth = 1; nth <= 3; ++nth) {
    router().codes = {QUENRA_STATUS_ROUTE_CONFLICT};
    tAllocationPlan plan(nth);
    try {
      session_->reserveRoute(7, &output_, status_);
      ADD_FAILURE() << "a conflict is a failure";
    } catch (const std::bad_alloc&) {
    } catch (const zoerr::ExceptionBase& exception) {
      EXPECT_EQ(exception.status().code, QUENRA_STATUS_ROUTE_CONFLICT);
    }
  }
}

TEST_F(Memory, ShortageForAPath_EndsTheCall) {
  router().path.assign(1000, 4);
  failEveryAllocation([&] { session_->getRouteTerminalPath(7, &output_, status_); });
}

TEST_F(Memory, PathAfterTheLongest_UsesNoHeapMemory) {
  router().path.assign(1024, 4);
  session_->getRouteTerminalPath(7, &output_, status_);
  router().path.assign(32, 4);
  EXPECT_EQ(allocationsOf([&] { session_->getRouteTerminalPath(7, &output_, status_); }), 0u);
}

TEST_F(Memory, CountBeyondTheMaximum_IsRefusedWithoutAList) {
  router().reportedConflictCount = 1025;
  for (unsigned nth = 1; nth <= 4; ++nth) {
    router().codes = {QUENRA_STATUS_ROUTE_CONFLICT};
    const tAllocationPlan plan(nth);
    // A list would fail with std::bad_alloc; a description without memory is omitted.
    EXPECT_THROW(session_->reserveRoute(7, &output_, status_), zoerr::Exception) << nth;
  }
}

TEST_F(Memory, ShortageDuringTheCreationOfASession_LeavesNothing) {
  failEveryAllocation([&] { create({&supplyStaticBuffer, nullptr, nullptr}); });
  router().topographyName = "other";
  failEveryAllocation(
      [&] {
        create({&supplyStaticBuffer, nullptr, nullptr});
      },
      QUENRA_STATUS_BAD_SELECTOR);
  EXPECT_EQ(script_.listener, nullptr);
}

TEST_F(Memory, ShortageForAnIterator_EndsTheCall) {
  failEveryAllocation([&] { static_cast<void>(session_->getAllTerminals(status_, 0)); });
}

// ---- Opening and starting a device ----

constexpr uint32_t kAccessDenied = 5;

struct tReport {
  int32_t code;
  std::string file;
  uint32_t line;
  bool operator==(const tReport&) const = default;
};

std::ostream& operator<<(std::ostream& out, const tReport& report) {
  return out << report.code << " " << report.file << " " << report.line;
}

// The code and location that the device reports when the first or the second call of a function fails.
const std::map<tCall, std::array<tReport, 2>> kReports{
    {tCall::createFile,
     {tReport{QUENRA_STATUS_ACCESS_DENIED, "tdeviceinterfaceproxy", 43},
      tReport{QUENRA_STATUS_ACCESS_DENIED, "tdeviceinterfaceproxy", 43}}},
    {tCall::createEvent,
     {tReport{QUENRA_STATUS_ACCESS_DENIED, "tdeviceinterfaceproxy", 51},
      tReport{QUENRA_STATUS_ACCESS_DENIED, "tdeviceinterfaceproxy", 51}}},
    {tCall::createIoCompletionPort,
     {tReport{QUENRA_STATUS_ACCESS_DENIED, "tionotification", 31},
      tReport{QUENRA_STATUS_ACCESS_DENIED, "tdeviceinterfaceproxy", 315}}},
    {tCall::beginThread,
     {tReport{QUENRA_STATUS_INTERNAL_ERROR, "thread", 471},
      tReport{QUENRA_STATUS_INTERNAL_ERROR, "thread", 471}}},
    {tCall::deviceIoControl,
     {tReport{QUENRA_STATUS_ACCESS_DENIED, "tdeviceinterfaceproxy", 333},
      tReport{QUENRA_STATUS_ACCESS_DENIED, "tionotification", 134}}},
};

class DeviceFailures : public RoutingDeviceTest {
 protected:
  tReport start() {
    status = {};
    device = std::make_unique<zoark::tRoutingDevice>();
    openAndStart();
    return {status.code, status.file, status.line};
  }
};

TEST_F(DeviceFailures, FailureOfEachCall_HasItsLocationAndLeavesNothing) {
  for (const auto& [call, reports] : kReports) {
    for (unsigned nth = 1; nth <= 2; ++nth) {
      faultPlan().reset();
      start();
      if (faultPlan().callCount(call) < nth) {
        continue;
      }
      device.reset();
      faultPlan().reset();
      faultPlan().failCall(call, nth, kAccessDenied);
      SCOPED_TRACE(std::string(nFakeWindows::nameOf(call)) + ", call " + std::to_string(nth));
      EXPECT_EQ(start(), reports[nth - 1]);
      device.reset();
      faultPlan().reset();
      EXPECT_EQ(start(), (tReport{0, "", 0})) << "the next start succeeds";
      notify(machine());
      EXPECT_TRUE(becomesTrue([this] { return listener.count > 0; }));
      device.reset();
      listener.count = 0;
    }
  }
}

TEST_F(DeviceFailures, FailureOfEachAllocation_LeavesNothing) {
  for (unsigned nth = 1;; ++nth) {
    const tAllocationPlan plan(nth);
    try {
      start();
      EXPECT_TRUE(status.code == 0 || status.code == QUENRA_STATUS_MEMORY_FULL) << status.code;
    } catch (const std::bad_alloc&) {
    }
    device.reset();
    if (plan.count() < nth) {
      EXPECT_EQ(status.code, 0);
      break;
    }
  }
}

}  // namespace
}  // namespace nTests
