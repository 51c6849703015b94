#include <windows.h>

#include <array>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <memory>
#include <optional>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

#include "tests/load/drivercontrol.h"
#include "tests/load/loads.h"
#include "tests/load/routeclient.h"

namespace nTests {
namespace {

constexpr uint32_t kMaxRoutesPerSession = 20;

// Uses a session from its creation to its destruction.
void runSession(const tRouteWork& work, const tLoad& load) {
  tRouteClient client(work);
  if (work.random->oneIn(4)) {
    client.iterateTerminals();
  }
  for (uint32_t routes = 1 + work.random->below(kMaxRoutesPerSession);
       routes != 0 && load.isEndRequested == 0; --routes) {
    client.useRoute();
  }
  if (work.random->oneIn(4)) {
    client.abandonRoute();
  }
  client.end();
}

void runThread(tLoad& load, tThreadLoad& own, const std::string& name, uint64_t seed) {
  try {
    tRandom random(seed);
    nSimulator::tSimulatedMachine machine;
    const tRouteWork work{routingDevicePath(), &random, &own.progress, &own.tally, &machine};
    while (load.isEndRequested == 0) {
      runSession(work, load);
    }
  } catch (const std::exception& failure) {
    recordFailure(load, name + ", " + nameOf(own.progress.step()) + ": " + failure.what());
  }
  own.progress.enter(tStep::ended);
}

// ---- All lines simultaneously ----

struct tLine {
  const char* from;
  const char* to;
};
constexpr tLine kLines[] = {
    {"WD_Terminal", "TRIG_SMB"}, {"TRIG_SMB", "PXI_Trig0"},  {"PXI_Trig0", "PXI_Trig1"},
    {"PXI_Trig1", "PXI_Trig2"},  {"PXI_Trig2", "PXI_Trig3"}, {"PXI_Trig3", "PXI_Trig4"},
    {"PXI_Trig4", "PXI_Trig5"},  {"PXI_Trig5", "PXI_Trig6"}, {"PXI_Trig6", "PXI_Trig7"},
};

char* reallocate(char* current, size_t required, const char*, size_t) {
  return static_cast<char*>(std::realloc(current, required));
}

void reserve(zoroco_RoutingAdaptorSession* session, const tLine& line) {
  zoerr_Status status = zoerr_Status_initial();
  char* output = nullptr;
  const std::string seeds =
      R"([{"terminal":")" + std::string(line.from) + R"(","cost":1,"constraints":{}}])";
  const std::string destinations = R"([")" + std::string(line.to) + R"("])";
  zoroco_ra_quenra_calculateRoute(session, seeds.c_str(), destinations.c_str(), "{}", &output,
                                  &status);
  const auto ticket =
      output == nullptr ? 0 : static_cast<uint32_t>(std::strtoul(output + 11, nullptr, 10));
  zoroco_ra_quenra_reserveRoute(session, ticket, &output, &status);
  zoroco_ra_quenra_programRoute(session, ticket, &status);
  const int32_t code = status.code;
  const std::string answer = output == nullptr ? "" : output;
  zoerr_Status_release(&status);
  std::free(output);
  require(code == 0, std::string("reserving ") + line.to + " from " + line.from + " returns " +
                         std::to_string(code) + " " + answer);
}

using tClock = std::chrono::steady_clock;
using nSimulator::tSimulatedMachine;
using std::chrono::milliseconds;
using std::chrono::seconds;

constexpr auto kStuckTimeout = seconds(40);
constexpr auto kPollInterval = milliseconds(50);
constexpr auto kProgressInterval = seconds(5);
constexpr uint32_t kMaxDemoterPause = 8;  // milliseconds

struct tStuck {};

// The sums of all threads' tallies.
struct tRouteTotals {
  uint64_t sessions = 0;
  uint64_t routes = 0;
  uint64_t conflicts = 0;
  uint64_t delivered = 0;
  uint64_t awaited = 0;
  uint64_t abandoned = 0;
};

// Another process of this program.
class tWorkerProcess {
 public:
  // `arguments` follow the program's name; standard output and error are this process's own.
  explicit tWorkerProcess(const std::string& arguments) {
    std::array<char, MAX_PATH> program{};
    GetModuleFileNameA(nullptr, program.data(), program.size());
    std::string commandLine = '"' + std::string(program.data()) + "\" " + arguments;
    STARTUPINFOA startup{};
    startup.cb = sizeof startup;
    if (!CreateProcessA(program.data(), commandLine.data(), nullptr, nullptr, TRUE, 0, nullptr,
                        nullptr, &startup, &process_)) {
      throw std::system_error(static_cast<int>(GetLastError()), std::system_category(),
                              commandLine);
    }
  }
  tWorkerProcess(const tWorkerProcess&) = delete;
  tWorkerProcess& operator=(const tWorkerProcess&) = delete;
  // Kills the process if it still runs.
  ~tWorkerProcess() {
    if (!hasEnded()) {
      kill();
    }
    CloseHandle(process_.hThread);
    CloseHandle(process_.hProcess);
  }

  // Kills the process and waits for its end.
  void kill() {
    constexpr UINT kKilled = 9;
    TerminateProcess(process_.hProcess, kKilled);
    WaitForSingleObject(process_.hProcess, INFINITE);
  }
  [[nodiscard]] bool hasEnded() const {
    return WaitForSingleObject(process_.hProcess, 0) == WAIT_OBJECT_0;
  }
  // The process must have ended.
  [[nodiscard]] DWORD exitCode() const {
    DWORD code = 0;
    GetExitCodeProcess(process_.hProcess, &code);
    return code;
  }

 private:
  PROCESS_INFORMATION process_{};
};

// Demotes random routes of all sessions.
class tDemoter {
 public:
  explicit tDemoter(uint64_t seed)
      : random_(seed), thread_([this](const std::stop_token& stop) {
          while (!stop.stop_requested()) {
            demoteRandomRoute(machine_, random_);
            std::this_thread::sleep_for(milliseconds(random_.below(kMaxDemoterPause)));
          }
        }) {}

 private:
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
      for (size_t i = 0; i < kThreadsPerWorker; ++i) {
        watchdog_.watch("process " + std::to_string(worker) + " thread " + std::to_string(i),
                        load_.workers[worker][i].progress);
      }
    }
  }

  // Throws tStuck and tContractViolation.
  void run() {
    for (uint32_t worker = 0; worker < kWorkers; ++worker) {
      startWorker(worker);
    }
    const uint64_t demotedBefore = tSimulatedMachine().counters().reservationsDemoted;
    std::optional<tDemoter> demoter(random_.next());
    const auto start = tClock::now();
    auto nextKill = timeOfNextKill();
    auto nextProgress = start + kProgressInterval;
    while (!isOver(start)) {
      poll();
      if (plan_.killInterval != 0 && tClock::now() >= nextKill) {
        killOne();
        nextKill = timeOfNextKill();
      }
      if (tClock::now() >= nextProgress) {
        printProgress(start);
        nextProgress += kProgressInterval;
      }
    }
    finish();
    demoter.reset();
    duration_ = tClock::now() - start;
    demotions_ = tSimulatedMachine().counters().reservationsDemoted - demotedBefore;
    checkDriver();
  }

  void report() const {
    const tRouteTotals all = sum();
    std::printf("lives %llu\nsessions %llu\nconflicts %llu\ndemotions %llu\nheard %llu\n",
                number(all.routes), number(all.sessions), number(all.conflicts), number(demotions_),
                number(all.delivered));
    std::printf("left-behind %llu\nkills %llu\nseconds %.1f\n", number(all.abandoned),
                number(kills_), duration_.count());
  }
  [[nodiscard]] std::string threadReport() const { return watchdog_.report(); }

 private:
  static unsigned long long number(uint64_t value) { return value; }

  void startWorker(uint32_t worker) {
    workers_[worker] =
        std::make_unique<tWorkerProcess>("route-worker " + name_ + ' ' + std::to_string(worker) +
                                         ' ' + std::to_string(random_.next()));
  }
  [[nodiscard]] tClock::time_point timeOfNextKill() {
    return tClock::now() + milliseconds(200 + random_.below(2000 * plan_.killInterval + 1));
  }
  [[nodiscard]] bool isOver(tClock::time_point start) const {
    return load_.isEndRequested != 0 || sum().routes >= plan_.routes ||
           (plan_.seconds != 0 && tClock::now() - start >= seconds(plan_.seconds));
  }
  // Throws if a thread is stuck or a process has ended unexpectedly.
  void poll() {
    std::this_thread::sleep_for(kPollInterval);
    if (watchdog_.hasStuckThread()) {
      throw tStuck{};
    }
    for (uint32_t worker = 0; worker < kWorkers; ++worker) {
      require(!workers_[worker]->hasEnded() || load_.isEndRequested != 0,
              "process " + std::to_string(worker) + " has ended unexpectedly with exit code " +
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
    load_.isEndRequested = 1;
    for (auto& worker : workers_) {
      while (!worker->hasEnded()) {
        poll();
      }
    }
    require(load_.hasFailed == 0, load_.failure.data());
  }
  void checkDriver() {
    tSimulatedMachine machine;
    const std::string leaks = driverLeaks(machine);
    require(leaks.empty(), "the driver leaks:\n" + leaks);
    tWorkerProcess last("reserve-every-line");
    while (!last.hasEnded()) {
      std::this_thread::sleep_for(kPollInterval);
    }
    require(last.exitCode() == 0, "the last client cannot reserve every line");
  }
  void printProgress(tClock::time_point start) const {
    const tRouteTotals all = sum();
    const std::chrono::duration<double> passed = tClock::now() - start;
    std::fprintf(stderr,
                 "%4.0f s: %llu lives in %llu sessions, %llu conflicts, %llu demotions "
                 "delivered, %llu kills\n",
                 passed.count(), number(all.routes), number(all.sessions), number(all.conflicts),
                 number(all.delivered), number(kills_));
  }
  [[nodiscard]] tRouteTotals sum() const {
    tRouteTotals all;
    for (const auto& worker : load_.workers) {
      for (const tThreadLoad& thread : worker) {
        all.sessions += thread.tally.sessions;
        all.routes += thread.tally.routes;
        all.conflicts += thread.tally.conflicts;
        all.delivered += thread.tally.delivered;
        all.awaited += thread.tally.awaited;
        all.abandoned += thread.tally.abandoned;
      }
    }
    return all;
  }

  tRouteLoadPlan plan_;
  tRandom random_;
  std::string name_;
  tSharedLoad shared_;
  tLoad& load_;
  tWatchdog watchdog_{kStuckTimeout};
  std::array<std::unique_ptr<tWorkerProcess>, kWorkers> workers_;
  uint64_t kills_ = 0;
  uint64_t demotions_ = 0;
  std::chrono::duration<double> duration_{};
};

}  // namespace

int runRouteWorker(const std::string& loadName, uint32_t worker, uint64_t seed) {
  const tSharedLoad shared(loadName);
  tLoad& load = shared.load();
  std::vector<std::thread> threads;
  for (size_t i = 0; i < kThreadsPerWorker; ++i) {
    threads.emplace_back([&load, worker, seed, i] {
      runThread(load, load.workers[worker][i],
                "process " + std::to_string(worker) + " thread " + std::to_string(i),
                seed + i * UINT64_C(1000003));
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  return load.hasFailed == 0 ? 0 : 1;
}

int reserveEveryLine() {
  zoerr_Status status = zoerr_Status_initial();
  zoroco_RoutingAdaptorSession* const session =
      zoroco_ra_quenra_createSession(routingDevicePath().c_str(), &reallocate, &status);
  zoerr_Status_release(&status);
  require(session != nullptr, "the last client has a session");
  for (const tLine& line : kLines) {
    reserve(session, line);
  }
  // Closing the device releases the lines.
  zoroco_ra_quenra_destroySession(session);
  return 0;
}

int runRouteLoad(const tRouteLoadPlan& plan) {
  std::fprintf(stderr, "seed %llu\n", static_cast<unsigned long long>(plan.seed));
  tRouteLoad load(plan);
  try {
    load.run();
    load.report();
    return kPassed;
  } catch (const tStuck&) {
    std::fprintf(stderr, "a thread is stuck\n%s", load.threadReport().c_str());
    return kThreadStuck;
  } catch (const tContractViolation& violation) {
    std::fprintf(stderr, "contract violated: %s\n%s", violation.what(),
                 load.threadReport().c_str());
    return kContractViolated;
  }
}

}  // namespace nTests
