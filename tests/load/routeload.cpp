#include "tests/load/routeload.h"

#include <atomic>
#include <chrono>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <thread>

#include "tests/load/balance.h"
#include "tests/load/sharedload.h"
#include "tests/load/watchdog.h"
#include "tests/load/workerprocess.h"

namespace nTests {
namespace {

using tClock = std::chrono::steady_clock;
using nSimulator::tSimulatedMachine;
using std::chrono::milliseconds;
using std::chrono::seconds;

constexpr auto kPatience = seconds(40);
constexpr auto kLook = milliseconds(50);
constexpr auto kProgress = seconds(5);
constexpr uint32_t kLongestPauseOfTheDemoter = 8;  // milliseconds

struct tStuck {};

// The sums of all threads' tallies.
struct tRouteTotals {
  uint64_t sessions = 0;
  uint64_t lives = 0;
  uint64_t conflicts = 0;
  uint64_t heard = 0;
  uint64_t awaited = 0;
  uint64_t leftBehind = 0;
};

// Demotes random routes of all sessions.
class tDemoter {
 public:
  explicit tDemoter(uint64_t seed)
      : random_(seed), thread_([this](const std::stop_token& stop) {
          while (!stop.stop_requested()) {
            demoteOne();
            std::this_thread::sleep_for(milliseconds(random_.below(kLongestPauseOfTheDemoter)));
          }
        }) {}

 private:
  void demoteOne() {
    const auto routes = machine_.routes();
    if (routes.empty()) {
      return;
    }
    try {
      machine_.demoteRoute(routes[random_.below(static_cast<uint32_t>(routes.size()))].ticket);
    } catch (const nSimulator::tControlError&) {
      // The route holds no line or no longer exists.
    }
  }

  tRandom random_;
  tSimulatedMachine machine_;
  std::jthread thread_;
};

class tRouteLoad {
 public:
  explicit tRouteLoad(const tRouteLoadPlan& plan)
      : plan_(plan),
        random_(plan.seed),
        name_("quenra-load-" + std::to_string(GetCurrentProcessId())),
        shared_(name_),
        load_(shared_.load()) {
    for (uint32_t worker = 0; worker < kWorkers; ++worker) {
      for (size_t i = 0; i < kThreadsOfAWorker; ++i) {
        watchdog_.watch("process " + std::to_string(worker) + " thread " + std::to_string(i),
                        load_.workers[worker][i].progress);
      }
    }
  }

  // Throws tStuck and tBrokenPromise.
  void run() {
    for (uint32_t worker = 0; worker < kWorkers; ++worker) {
      startWorker(worker);
    }
    const uint64_t demotedBefore = tSimulatedMachine().counters().reservationsDemoted;
    std::optional<tDemoter> demoter(random_.next());
    const auto start = tClock::now();
    auto nextKill = timeOfNextKill();
    auto nextProgress = start + kProgress;
    while (!isOver(start)) {
      look();
      if (plan_.killsPer != 0 && tClock::now() >= nextKill) {
        killOne();
        nextKill = timeOfNextKill();
      }
      if (tClock::now() >= nextProgress) {
        tellProgress(start);
        nextProgress += kProgress;
      }
    }
    finish();
    demoter.reset();
    duration_ = tClock::now() - start;
    demotions_ = tSimulatedMachine().counters().reservationsDemoted - demotedBefore;
    checkTheDriver();
  }

  void report() const {
    const tRouteTotals all = sum();
    std::printf("lives %llu\nsessions %llu\nconflicts %llu\ndemotions %llu\nheard %llu\n",
                number(all.lives), number(all.sessions), number(all.conflicts), number(demotions_),
                number(all.heard));
    std::printf("left-behind %llu\nkills %llu\nseconds %.1f\n", number(all.leftBehind),
                number(kills_), duration_.count());
  }
  [[nodiscard]] std::string whereTheThreadsStand() const { return watchdog_.report(); }

 private:
  static unsigned long long number(uint64_t value) { return value; }

  void startWorker(uint32_t worker) {
    workers_[worker] =
        std::make_unique<tWorkerProcess>("route-worker " + name_ + ' ' + std::to_string(worker) +
                                         ' ' + std::to_string(random_.next()));
  }
  [[nodiscard]] tClock::time_point timeOfNextKill() {
    return tClock::now() + milliseconds(200 + random_.below(2000 * plan_.killsPer + 1));
  }
  [[nodiscard]] bool isOver(tClock::time_point start) const {
    return load_.shallEnd != 0 || sum().lives >= plan_.lives ||
           (plan_.seconds != 0 && tClock::now() - start >= seconds(plan_.seconds));
  }
  void look() {
    std::this_thread::sleep_for(kLook);
    if (watchdog_.seesAStuckThread()) {
      throw tStuck{};
    }
    for (uint32_t worker = 0; worker < kWorkers; ++worker) {
      require(!workers_[worker]->hasEnded() || load_.shallEnd != 0,
              "process " + std::to_string(worker) + " has ended by itself with exit code " +
                  std::to_string(workers_[worker]->exitCode()));
    }
  }
  void killOne() {
    const uint32_t worker = random_.below(kWorkers);
    workers_[worker]->kill();
    ++kills_;
    startWorker(worker);
  }
  void finish() {
    load_.shallEnd = 1;
    for (auto& worker : workers_) {
      while (!worker->hasEnded()) {
        look();
      }
    }
    require(load_.hasFailed == 0, load_.failure.data());
  }
  void checkTheDriver() {
    tSimulatedMachine machine;
    const std::string imbalance = imbalanceOf(machine);
    require(imbalance.empty(), "the driver's account is not balanced:\n" + imbalance);
    tWorkerProcess last("take-every-line");
    while (!last.hasEnded()) {
      std::this_thread::sleep_for(kLook);
    }
    require(last.exitCode() == 0, "who comes last cannot have every line");
  }
  void tellProgress(tClock::time_point start) const {
    const tRouteTotals all = sum();
    const std::chrono::duration<double> passed = tClock::now() - start;
    std::fprintf(stderr,
                 "%4.0f s: %llu lives in %llu sessions, %llu conflicts, %llu demotions "
                 "heard, %llu kills\n",
                 passed.count(), number(all.lives), number(all.sessions), number(all.conflicts),
                 number(all.heard), number(kills_));
  }
  [[nodiscard]] tRouteTotals sum() const {
    tRouteTotals all;
    for (const auto& worker : load_.workers) {
      for (const tThreadLoad& thread : worker) {
        all.sessions += thread.tally.sessions;
        all.lives += thread.tally.lives;
        all.conflicts += thread.tally.conflicts;
        all.heard += thread.tally.heard;
        all.awaited += thread.tally.awaited;
        all.leftBehind += thread.tally.leftBehind;
      }
    }
    return all;
  }

  tRouteLoadPlan plan_;
  tRandom random_;
  std::string name_;
  tSharedLoad shared_;
  tLoad& load_;
  tWatchdog watchdog_{kPatience};
  std::array<std::unique_ptr<tWorkerProcess>, kWorkers> workers_;
  uint64_t kills_ = 0;
  uint64_t demotions_ = 0;
  std::chrono::duration<double> duration_{};
};

}  // namespace

int runRouteLoad(const tRouteLoadPlan& plan) {
  std::fprintf(stderr, "seed %llu\n", static_cast<unsigned long long>(plan.seed));
  tRouteLoad load(plan);
  try {
    load.run();
    load.report();
    return kEverythingHeld;
  } catch (const tStuck&) {
    std::fprintf(stderr, "a thread is stuck\n%s", load.whereTheThreadsStand().c_str());
    return kThreadStuck;
  } catch (const tBrokenPromise& broken) {
    std::fprintf(stderr, "broken: %s\n%s", broken.what(), load.whereTheThreadsStand().c_str());
    return kPromiseBroken;
  }
}

}  // namespace nTests
