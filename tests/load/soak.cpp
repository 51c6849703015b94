#include <windows.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "tests/builders/firmwareimagebuilder.h"
#include "tests/builders/ttemporaryfolder.h"
#include "tests/load/drivercontrol.h"
#include "tests/load/loads.h"
#include "tests/load/mixedcaller.h"
#include "tests/load/soaktable.h"

namespace nTests {
namespace {

using nSimulator::tSimulatedMachine;
using std::chrono::milliseconds;
using std::chrono::seconds;
using tClock = std::chrono::steady_clock;

constexpr size_t kThreads = 8;
constexpr auto kStuckTimeout = seconds(60);
constexpr auto kPollInterval = milliseconds(20);
// A short run has at least this number of rounds; a long run has rounds of this duration.
constexpr uint32_t kMinRounds = 24;
constexpr auto kMaxRound = seconds(10);

struct tStuck {};

struct tThread {
  tProgress progress;
  tRouteTally routes{};
  tCallTally calls{};
};

class tSoak {
 public:
  explicit tSoak(const tSoakPlan& plan)
      : plan_(plan),
        round_(std::min<tClock::duration>(
            kMaxRound, tClock::duration(seconds(plan.seconds)) / int{kMinRounds})),
        random_(plan.seed) {
    for (size_t i = 0; i < kThreads; ++i) {
      watchdog_.watch("thread " + std::to_string(i), threads_[i].progress);
    }
    // Firmware updates write their files there.
    SetEnvironmentVariableW(L"TMP", temporary_.path().c_str());
    SetEnvironmentVariableW(L"TEMP", temporary_.path().c_str());
  }

  // Throws tStuck and tContractViolation.
  void run() {
    while (tClock::now() - start_ < seconds(plan_.seconds)) {
      {
        const tFaultInjector injector(random_.next());
        runThreads(tFaults::anywhere, round_ * 2 / 3);
      }
      machine_.reset();
      runThreads(tFaults::none, round_ / 3);
      const std::string leaks = driverLeaks(machine_);
      require(leaks.empty(), "the driver leaks:\n" + leaks);
      temporary_.empty();
      measure();
    }
  }

  // Prints the results and returns the exit code.
  [[nodiscard]] int report() const {
    std::printf("%s", soakTable(rows_).c_str());
    std::printf(
        "calls: %llu reads, %llu writes, %llu openings, %llu updates, %llu pending "
        "requests, %llu routes, %llu demotions delivered\n",
        sum(&tCallTally::reads), sum(&tCallTally::writes), sum(&tCallTally::opens),
        sum(&tCallTally::updates), sum(&tCallTally::pendings), sum(&tRouteTally::routes),
        sum(&tRouteTally::delivered));
    if (rows_.size() < kMinSoakRows) {
      std::printf("verdict: too short\n");
      return kContractViolated;
    }
    std::printf("handles before: %s\nhandles after:  %s\n",
                handleText(rows_.front().handles).c_str(),
                handleText(rows_.back().handles).c_str());
    const std::string findings = excessiveGrowth(growthOf(rows_));
    std::printf("verdict: %s", findings.empty() ? "flat\n" : "growing\n");
    std::printf("%s", findings.c_str());
    return findings.empty() ? kPassed : kContractViolated;
  }
  [[nodiscard]] std::string threadReport() const { return watchdog_.report(); }

 private:
  void runThreads(tFaults faults, tClock::duration duration) {
    isEndRequested_ = false;
    {
      std::vector<std::jthread> running;
      for (tThread& thread : threads_) {
        thread.progress.enter(tStep::betweenSteps);
        running.emplace_back(
            [this, faults, &thread, seed = random_.next()] { runThread(thread, seed, faults); });
      }
      const auto end = tClock::now() + duration;
      while (!haveThreadsEnded()) {
        std::this_thread::sleep_for(kPollInterval);
        isEndRequested_ = isEndRequested_ || tClock::now() >= end;
        if (watchdog_.hasStuckThread()) {
          throwStuck(running);
        }
      }
    }
    require(failure_.empty(), failure_);
  }
  // Detaches the threads: joining a stuck thread would block.
  [[noreturn]] static void throwStuck(std::vector<std::jthread>& running) {
    for (std::jthread& thread : running) {
      thread.detach();
    }
    throw tStuck{};
  }
  void runThread(tThread& own, uint64_t seed, tFaults faults) {
    try {
      tRandom random(seed);
      tSimulatedMachine machine;
      tMixedCaller caller({{devicePath_, &random, &own.progress, &own.routes, &machine, faults},
                           &own.calls,
                           &images_,
                           false});
      while (!isEndRequested_) {
        caller.performRandomOperation();
      }
    } catch (const std::exception& violation) {
      const std::lock_guard lock(mutex_);
      failure_ += std::string(nameOf(own.progress.step())) + ": " + violation.what() + '\n';
      isEndRequested_ = true;
    }
    own.progress.enter(tStep::ended);
  }
  [[nodiscard]] bool haveThreadsEnded() const {
    return std::all_of(threads_.begin(), threads_.end(), [](const tThread& thread) {
      return thread.progress.step() == tStep::ended;
    });
  }

  void measure() {
    const std::chrono::duration<double> passed = tClock::now() - start_;
    const uint64_t calls = sum(&tCallTally::reads) + sum(&tCallTally::writes) +
                           sum(&tCallTally::opens) + sum(&tCallTally::updates) +
                           sum(&tCallTally::pendings) + sum(&tCallTally::others) +
                           sum(&tRouteTally::routes);
    const uint64_t failures = sum(&tCallTally::failures) + sum(&tRouteTally::failures);
    rows_.push_back({passed.count(), calls, failures, sampleThisProcess(), sampleHeaps(),
                     countHandles(), sampleDriverProcesses()});
    const tSoakRow& row = rows_.back();
    std::fprintf(stderr, "%5.0f s of %u: %llu calls, %llu failures, %u handles, %llu heap blocks\n",
                 row.seconds, plan_.seconds, static_cast<unsigned long long>(calls),
                 static_cast<unsigned long long>(row.failures), row.own.handles,
                 static_cast<unsigned long long>(row.heap.blocks));
  }

  // The sum over all threads.
  [[nodiscard]] unsigned long long sum(std::atomic<uint64_t> tCallTally::*count) const {
    unsigned long long all = 0;
    for (const tThread& thread : threads_) {
      all += thread.calls.*count;
    }
    return all;
  }
  [[nodiscard]] unsigned long long sum(std::atomic<uint64_t> tRouteTally::*count) const {
    unsigned long long all = 0;
    for (const tThread& thread : threads_) {
      all += thread.routes.*count;
    }
    return all;
  }

  tSoakPlan plan_;
  tClock::duration round_;
  tRandom random_;
  tTemporaryFolder temporary_;
  tSimulatedMachine machine_;
  std::string devicePath_ = routingDevicePath();
  std::vector<std::string> images_{
      firmwareImage({tFirmwareSection("MARTEN").payload(firmwareBytes(300, 2)),
                     tFirmwareSection("BIOS").payload(firmwareBytes(100, 1))}),
      firmwareImage({tFirmwareSection("BIOS").payload(firmwareBytes(5000, 5))}),
      firmwareImage({tFirmwareSection("SAFEMODE").payload(firmwareBytes(30, 3)),
                     tFirmwareSection::capsule("driver.inf").payload(firmwareBytes(50, 4))})};
  std::array<tThread, kThreads> threads_;
  tWatchdog watchdog_{kStuckTimeout};
  std::atomic<bool> isEndRequested_ = false;
  std::mutex mutex_;
  std::string failure_;  // all failures, guarded by the mutex
  tClock::time_point start_ = tClock::now();
  std::vector<tSoakRow> rows_;
};

}  // namespace

int runSoak(const tSoakPlan& plan) {
  std::fprintf(stderr, "seed %llu\n", static_cast<unsigned long long>(plan.seed));
  tSoak soak(plan);
  try {
    soak.run();
    return soak.report();
  } catch (const tStuck&) {
    std::fprintf(stderr, "a thread is stuck\n%s", soak.threadReport().c_str());
    // No destructors: the stuck thread still uses the memory.
    std::fflush(stderr);
    std::_Exit(kThreadStuck);
  } catch (const tContractViolation& violation) {
    std::fprintf(stderr, "contract violated: %s\n", violation.what());
    static_cast<void>(soak.report());
    return kContractViolated;
  }
}

}  // namespace nTests
