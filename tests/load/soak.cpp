#include "tests/load/soak.h"

#include <windows.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "tests/builders/firmwareimagebuilder.h"
#include "tests/load/balance.h"
#include "tests/load/devicepath.h"
#include "tests/load/mischief.h"
#include "tests/load/mixedcaller.h"
#include "tests/load/routeload.h"
#include "tests/load/soaktable.h"
#include "tests/load/watchdog.h"

namespace nTests {
namespace {

using nSimulator::tSimulatedMachine;
using std::chrono::milliseconds;
using std::chrono::seconds;
using tClock = std::chrono::steady_clock;

constexpr size_t kThreads = 8;
constexpr auto kPatience = seconds(60);
constexpr auto kLook = milliseconds(20);
// A short run has at least this number of rounds; a long run has rounds of this duration.
constexpr uint32_t kFewestRounds = 24;
constexpr auto kLongestRound = seconds(10);

struct tStuck {};

struct tThread {
  tProgress progress;
  tRouteTally routes{};
  tCallTally calls{};
};

// A temporary directory of this process for the files of firmware updates.
class tTemporaryFolder {
 public:
  tTemporaryFolder()
      : path_(std::filesystem::temp_directory_path() /
              ("quenra soak " + std::to_string(GetCurrentProcessId()))) {
    empty();
    SetEnvironmentVariableA("TMP", path_.string().c_str());
    SetEnvironmentVariableA("TEMP", path_.string().c_str());
  }
  tTemporaryFolder(const tTemporaryFolder&) = delete;
  tTemporaryFolder& operator=(const tTemporaryFolder&) = delete;
  ~tTemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }

  void empty() const {
    std::filesystem::remove_all(path_);
    std::filesystem::create_directories(path_);
  }

 private:
  std::filesystem::path path_;
};

class tSoak {
 public:
  explicit tSoak(const tSoakPlan& plan)
      : plan_(plan),
        round_(std::min<tClock::duration>(
            kLongestRound, tClock::duration(seconds(plan.seconds)) / int{kFewestRounds})),
        random_(plan.seed) {
    for (size_t i = 0; i < kThreads; ++i) {
      watchdog_.watch("thread " + std::to_string(i), threads_[i].progress);
    }
  }

  // Throws tStuck and tBrokenPromise.
  void run() {
    while (tClock::now() - start_ < seconds(plan_.seconds)) {
      {
        const tMischief mischief(random_.next());
        runThreads(tFaults::anywhere, round_ * 2 / 3);
      }
      machine_.reset();
      runThreads(tFaults::none, round_ / 3);
      const std::string imbalance = imbalanceOf(machine_);
      require(imbalance.empty(), "the driver's account is not balanced:\n" + imbalance);
      temporary_.empty();
      measure();
    }
  }

  // Prints the results and returns the exit code.
  [[nodiscard]] int report() const {
    std::printf("%s", soakTable(rows_).c_str());
    std::printf(
        "calls: %llu reads, %llu writes, %llu openings, %llu updates, %llu pending "
        "requests, %llu routes, %llu demotions heard\n",
        sum(&tCallTally::reads), sum(&tCallTally::writes), sum(&tCallTally::opens),
        sum(&tCallTally::updates), sum(&tCallTally::pendings), sum(&tRouteTally::lives),
        sum(&tRouteTally::heard));
    if (rows_.size() < kFewestSoakRows) {
      std::printf("verdict: too short to tell\n");
      return kPromiseBroken;
    }
    std::printf("handles at first: %s\nhandles at last:  %s\n",
                handleText(rows_.front().handles).c_str(),
                handleText(rows_.back().handles).c_str());
    const std::string complaints = growthComplaints(growthOf(rows_));
    std::printf("verdict: %s", complaints.empty() ? "flat\n" : "growing\n");
    std::printf("%s", complaints.c_str());
    return complaints.empty() ? kEverythingHeld : kPromiseBroken;
  }
  [[nodiscard]] std::string whereTheThreadsStand() const { return watchdog_.report(); }

 private:
  void runThreads(tFaults faults, tClock::duration duration) {
    shallEnd_ = false;
    {
      std::vector<std::jthread> running;
      for (tThread& thread : threads_) {
        thread.progress.enter(tStep::betweenSteps);
        running.emplace_back(
            [this, faults, &thread, seed = random_.next()] { runThread(thread, seed, faults); });
      }
      const auto end = tClock::now() + duration;
      while (!haveAllEnded()) {
        std::this_thread::sleep_for(kLook);
        shallEnd_ = shallEnd_ || tClock::now() >= end;
        if (watchdog_.seesAStuckThread()) {
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
      while (!shallEnd_) {
        caller.doSomething();
      }
    } catch (const std::exception& broken) {
      const std::lock_guard lock(mutex_);
      failure_ += std::string(nameOf(own.progress.step())) + ": " + broken.what() + '\n';
      shallEnd_ = true;
    }
    own.progress.enter(tStep::ended);
  }
  [[nodiscard]] bool haveAllEnded() const {
    return std::all_of(threads_.begin(), threads_.end(), [](const tThread& thread) {
      return thread.progress.step() == tStep::ended;
    });
  }

  void measure() {
    const std::chrono::duration<double> passed = tClock::now() - start_;
    const uint64_t calls = sum(&tCallTally::reads) + sum(&tCallTally::writes) +
                           sum(&tCallTally::opens) + sum(&tCallTally::updates) +
                           sum(&tCallTally::pendings) + sum(&tCallTally::others) +
                           sum(&tRouteTally::lives);
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
  tWatchdog watchdog_{kPatience};
  std::atomic<bool> shallEnd_ = false;
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
    std::fprintf(stderr, "a thread is stuck\n%s", soak.whereTheThreadsStand().c_str());
    // No destructors: the stuck thread still uses the memory.
    std::fflush(stderr);
    std::_Exit(kThreadStuck);
  } catch (const tBrokenPromise& broken) {
    std::fprintf(stderr, "broken: %s\n", broken.what());
    static_cast<void>(soak.report());
    return kPromiseBroken;
  }
}

}  // namespace nTests
