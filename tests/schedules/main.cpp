// Explores the schedules of scenarios. Each scenario runs in a process of its own, so that a run
// that ends its process still yields its schedule.
#include <getopt.h>
#include <sanitizer/allocator_interface.h>
#include <sanitizer/common_interface_defs.h>
#include <sanitizer/lsan_interface.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <new>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "source/user/exports/tprocessstate.h"
#include "tests/fakewindows/faultplan.h"
#include "tests/fakewindows/objects.h"
#include "tests/schedules/exploration.h"
#include "tests/schedules/scenarios.h"

namespace nTests {
namespace {

using nFakeWindows::scheduler;
using tClock = std::chrono::steady_clock;

struct tOptions {
  std::optional<unsigned> preemptions;
  std::optional<unsigned> faults;
  std::optional<uint64_t> seed;  // random schedules
  unsigned changes = 3;
  double seconds = 0;  // no limit
  std::optional<std::string> replay;
  bool mayLackPlaces = false;  // the replayed schedule may be one of an earlier library
  std::optional<uint64_t> freeRuns;
  std::optional<std::string> kept;  // a file
  std::vector<const tScheduleScenario*> scenarios;
};

// The results that an exploring process leaves to its parent.
struct tReport {
  uint64_t schedules;  // of the current bound
  uint64_t runs;       // of all
  uint64_t decisions;  // of the longest run
  bool isComplete;
  bool hasFailed;
  std::array<char, 1 << 16> schedule;
  std::array<char, 1 << 20> table;
};
tReport* report = nullptr;

void copyText(const std::string& text, std::span<char> into) {
  const size_t copied = text.copy(into.data(), into.size() - 1);
  into[copied] = '\0';
}

// Called while the process ends because of a failure, on the thread that failed.
void leaveReport() {
  const nFakeWindows::tInside inside;
  if (!report->hasFailed) {
    report->hasFailed = true;
    copyText(textOf(deviationsOfTheRun()), report->schedule);
    copyText(scheduler().table(), report->table);
  }
}

void leaveReportAtAbort(int) {
  leaveReport();
  std::_Exit(EXIT_FAILURE);
}

// Called for every block of memory that the program frees.
void checkFreedBlock(const volatile void* block) {
  const void* const memory = const_cast<const void*>(block);
  if (block == nullptr || !nFakeWindows::tScheduler::isActive() ||
      nFakeWindows::tInside::isActive()) {
    return;
  }
  const nFakeWindows::tInside inside;
  if (nFakeWindows::objects().mayBeWritten(memory, __sanitizer_get_allocated_size(memory))) {
    nFakeWindows::stop("free", "a request may still write to this memory");
  }
}

// ---- In the process that explores ----

// Loads and stores of the state of the process, which the instrumented exports report. Only words that
// are stored to while threads run are shared; the first run of a scenario finds them.
class tSharedWords {
 public:
  void observe(const void* address, bool isStore) {
    if (!nFakeWindows::tScheduler::isActive()) {
      return;
    }
    const auto offset = static_cast<size_t>(static_cast<const std::byte*>(address) -
                                            reinterpret_cast<const std::byte*>(&state()));
    if (offset >= sizeof(nQUENRA1400::tProcessState)) {
      return;
    }
    bool& isShared = isShared_[offset / sizeof(void*)];
    isShared |= isStore && !isFixed_;
    if (isShared) {
      scheduler().point(isStore ? "store" : "load",
                        {"shared word", reinterpret_cast<uintptr_t>(address)});
    }
  }
  void fix() noexcept { isFixed_ = true; }

 private:
  static const nQUENRA1400::tProcessState& state() { return nQUENRA1400::processState(); }

  std::array<bool, sizeof(nQUENRA1400::tProcessState) / sizeof(void*) + 1> isShared_{};
  bool isFixed_ = false;
};
constinit tSharedWords sharedWords;

void countRun() {
  ++report->schedules;
  ++report->runs;
}

void runOnce(const tScheduleScenario& scenario, nFakeWindows::iSchedule& schedule) {
  prepareScenario();
  scheduler().run(schedule, scenario.run);
  checkScenario();
  countRun();
  report->decisions = std::max<uint64_t>(report->decisions, scheduler().steps().size());
}

// Makes every later run equal: memory is allocated, and the shared words are known.
void runPlainly(const tScheduleScenario& scenario) {
  nFakeWindows::tPlainSchedule schedule;
  runOnce(scenario, schedule);
  sharedWords.fix();
  report->runs = 0;
}

constexpr unsigned kLongestFreeRunSeconds = 3;

// Runs a scenario with threads that run freely.
void runFreely(const tScheduleScenario& scenario, uint64_t runs) {
  for (uint64_t i = 0; i < runs; ++i) {
    // A run that does not end is a deadlock.
    alarm(kLongestFreeRunSeconds);
    prepareScenario();
    scenario.run();
    nFakeWindows::objects().waitForThreads();
    checkScenario();
    countRun();
  }
}

// Counts the time of an exploration.
class tTimeLimit {
 public:
  explicit tTimeLimit(double seconds) : seconds_(seconds) {}
  [[nodiscard]] bool isOver() const {
    return seconds_ > 0 && std::chrono::duration<double>(tClock::now() - start_).count() > seconds_;
  }

 private:
  const double seconds_;  // 0: no limit
  const tClock::time_point start_ = tClock::now();
};

// First those with fewer preemptions, so that the first failure is a simple one.
void exploreAll(const tScheduleScenario& scenario, const tOptions& options) {
  const tTimeLimit limit(options.seconds);
  const unsigned preemptions = options.preemptions.value_or(scenario.bound.preemptions);
  const unsigned faults = options.faults.value_or(scenario.bound.faults);
  runPlainly(scenario);
  for (unsigned bound = 0; bound <= preemptions; ++bound) {
    report->schedules = 0;
    tExhaustiveSchedules schedules({bound, faults});
    do {
      runOnce(scenario, schedules);
      if (limit.isOver()) {
        return;
      }
    } while (schedules.next());
  }
  report->isComplete = true;
}

void exploreRandomly(const tScheduleScenario& scenario, const tOptions& options) {
  const tTimeLimit limit(options.seconds);
  runPlainly(scenario);
  tRandomSchedules schedules(*options.seed, options.changes);
  while (!limit.isOver()) {
    runOnce(scenario, schedules);
    schedules.next();
  }
}

void replay(const tScheduleScenario& scenario, const tOptions& options) {
  runPlainly(scenario);
  tWrittenSchedule schedule(deviationsOf(*options.replay));
  runOnce(scenario, schedule);
  const tDeviations unused = schedule.unused();
  if (!unused.empty() && !options.mayLackPlaces) {
    std::fprintf(stderr, "the schedule is not one of this scenario, which has no place for: %s\n",
                 textOf(unused).c_str());
    report->hasFailed = true;
  }
  report->isComplete = true;
}

void work(const tScheduleScenario& scenario, const tOptions& options) {
  __sanitizer_set_death_callback(&leaveReport);
  __sanitizer_install_malloc_and_free_hooks([](const volatile void*, size_t) {}, &checkFreedBlock);
  std::signal(SIGABRT, &leaveReportAtAbort);
  if (options.freeRuns) {
    runFreely(scenario, *options.freeRuns);
  } else if (options.replay) {
    replay(scenario, options);
  } else if (options.seed) {
    exploreRandomly(scenario, options);
  } else {
    exploreAll(scenario, options);
  }
  if (__lsan_do_recoverable_leak_check() != 0) {
    report->hasFailed = true;
  }
}

// ---- In the parent ----

// Waits for a process that explores, and shows its progress on a terminal.
int waitFor(pid_t child, const tScheduleScenario& scenario) {
  constexpr useconds_t kMicroseconds = 100'000;
  const bool showsProgress = isatty(STDERR_FILENO) != 0;
  int status = 0;
  while (waitpid(child, &status, showsProgress ? WNOHANG : 0) == 0) {
    std::fprintf(stderr, "\r%-16s %9llu schedules", scenario.name,
                 static_cast<unsigned long long>(report->runs));
    usleep(kMicroseconds);
  }
  if (showsProgress) {
    std::fputs("\r\033[K", stderr);
  }
  return status;
}

// Runs a scenario in a process of its own. Its standard error goes to `errors`.
void runInProcess(const tScheduleScenario& scenario, const tOptions& options, std::FILE* errors) {
  new (report) tReport{};
  std::fflush(nullptr);
  const pid_t child = fork();
  if (child == 0) {
    dup2(fileno(errors), STDERR_FILENO);
    try {
      work(scenario, options);
    } catch (const std::exception& failure) {
      std::fprintf(stderr, "%s\n", failure.what());
      leaveReport();
    }
    std::fflush(nullptr);
    _exit(report->hasFailed ? EXIT_FAILURE : EXIT_SUCCESS);
  }
  const int status = waitFor(child, scenario);
  report->hasFailed |= !WIFEXITED(status) || WEXITSTATUS(status) != EXIT_SUCCESS;
}

std::string contentOf(std::FILE* file) {
  std::string text(static_cast<size_t>(std::max(0L, std::ftell(file))), '\0');
  std::rewind(file);
  text.resize(std::fread(text.data(), 1, text.size(), file));
  return text;
}

struct tFailure {
  std::string schedule;
  std::string table;
  std::string errors;
};

// Runs a scenario; nothing if no run fails.
std::optional<tFailure> failureOf(const tScheduleScenario& scenario, const tOptions& options) {
  std::FILE* const errors = std::tmpfile();
  runInProcess(scenario, options, errors);
  std::fseek(errors, 0, SEEK_END);
  const std::string text = contentOf(errors);
  std::fclose(errors);
  return report->hasFailed
             ? std::optional(tFailure{report->schedule.data(), report->table.data(), text})
             : std::nullopt;
}

// Removes deviations as long as the run still fails.
tFailure shrink(const tScheduleScenario& scenario, tOptions options, tFailure failure) {
  for (size_t i = 0; i < deviationsOf(failure.schedule).size();) {
    tDeviations fewer = deviationsOf(failure.schedule);
    fewer.erase(fewer.begin() + static_cast<std::ptrdiff_t>(i));
    options.replay = textOf(fewer);
    const std::optional<tFailure> shorter = failureOf(scenario, options);
    if (shorter && deviationsOf(shorter->schedule).size() == fewer.size()) {
      failure = *shorter;
    } else {
      ++i;
    }
  }
  return failure;
}

void printFailure(const tScheduleScenario& scenario, const tFailure& failure) {
  // Memory that leaks is found after the last run, which has nothing to do with it.
  const bool isOfARun = !failure.table.empty();
  // The fake Windows prints its own table.
  const size_t length = isOfARun ? failure.errors.find(failure.table) : std::string::npos;
  std::printf("%s%s", failure.errors.substr(0, length).c_str(), failure.table.c_str());
  if (isOfARun) {
    std::printf("\nRepeat it: ./dev schedules --replay '%s' %s\n", failure.schedule.c_str(),
                scenario.name);
  }
}

// Returns true if every run of the scenario kept its promises.
bool exploreInProcess(const tScheduleScenario& scenario, const tOptions& options) {
  const auto start = tClock::now();
  const std::optional<tFailure> failure = failureOf(scenario, options);
  const double seconds = std::chrono::duration<double>(tClock::now() - start).count();
  if (options.replay) {
    std::printf("%-16s the schedule %s\n", scenario.name,
                failure ? "fails" : "keeps every promise");
  } else {
    const char* const outcome = failure              ? "schedules until one fails"
                                : report->isComplete ? "schedules within the bound, all run"
                                                     : "schedules run, not all";
    std::printf("%-16s %9llu %s, at most %llu decisions, %.1f s\n", scenario.name,
                static_cast<unsigned long long>(failure ? report->runs + 1 : report->schedules),
                outcome, static_cast<unsigned long long>(report->decisions), seconds);
  }
  if (failure) {
    const tFailure shortest = options.replay || failure->schedule.empty()
                                  ? *failure
                                  : shrink(scenario, options, *failure);
    printFailure(scenario, shortest);
  }
  return !failure;
}

// ---- The command line ----

void printUsage() {
  std::puts(
      "Usage: schedules [OPTION...] [SCENARIO...]\n"
      "\n"
      "Explores the schedules of the scenarios, or of all, within the bound of each.\n"
      "\n"
      "  --preemptions N  at most N preemptions in a schedule\n"
      "  --faults N       at most N failing calls in a schedule\n"
      "  --random SEED    random schedules, without end\n"
      "  --changes N      N changes of priority in a random schedule; 3 by default\n"
      "  --seconds N      end a scenario after N seconds\n"
      "  --replay TEXT    the one schedule that an earlier failure printed\n"
      "  --free N         N runs with threads that the system schedules, for comparison\n"
      "  --kept FILE      the schedules of a file: in each line a scenario and a schedule\n"
      "  --list           list the scenarios\n");
}

template <class Number>
Number numberOf(const char* text) {
  char* end = nullptr;
  const double number = std::strtod(text, &end);
  if (*text == '\0' || *end != '\0' || !(number >= 0) || number > 1e15) {
    throw std::invalid_argument(std::string("'") + text + "' is not a number");
  }
  return static_cast<Number>(number);
}

const tScheduleScenario& scenarioOf(const std::string& name) {
  for (const tScheduleScenario& scenario : scheduleScenarios()) {
    if (name == scenario.name) {
      return scenario;
    }
  }
  throw std::invalid_argument("there is no scenario '" + name + "'; use --list");
}

tOptions optionsOf(int argc, char** argv) {
  static constexpr option kOptions[] = {{"preemptions", required_argument, nullptr, 'p'},
                                        {"faults", required_argument, nullptr, 'f'},
                                        {"random", required_argument, nullptr, 'r'},
                                        {"changes", required_argument, nullptr, 'c'},
                                        {"seconds", required_argument, nullptr, 's'},
                                        {"replay", required_argument, nullptr, 'y'},
                                        {"free", required_argument, nullptr, 'e'},
                                        {"kept", required_argument, nullptr, 'k'},
                                        {"list", no_argument, nullptr, 'l'},
                                        {"help", no_argument, nullptr, 'h'},
                                        {nullptr, 0, nullptr, 0}};
  tOptions options;
  for (int letter = 0; (letter = getopt_long(argc, argv, "h", kOptions, nullptr)) != -1;) {
    switch (letter) {
      case 'p':
        options.preemptions = numberOf<unsigned>(optarg);
        break;
      case 'f':
        options.faults = numberOf<unsigned>(optarg);
        break;
      case 'r':
        options.seed = numberOf<uint64_t>(optarg);
        break;
      case 'c':
        options.changes = numberOf<unsigned>(optarg);
        break;
      case 's':
        options.seconds = numberOf<double>(optarg);
        break;
      case 'e':
        options.freeRuns = numberOf<uint64_t>(optarg);
        break;
      case 'y':
        static_cast<void>(deviationsOf(optarg));  // throws if it is not a schedule
        options.replay = optarg;
        break;
      case 'k':
        options.kept = optarg;
        break;
      case 'l':
        for (const tScheduleScenario& scenario : scheduleScenarios()) {
          std::printf("%-16s %s\n", scenario.name, scenario.summary);
        }
        std::exit(EXIT_SUCCESS);
      case 'h':
        printUsage();
        std::exit(EXIT_SUCCESS);
      default:
        throw std::invalid_argument("use --help");
    }
  }
  for (int i = optind; i < argc; ++i) {
    options.scenarios.push_back(&scenarioOf(argv[i]));
  }
  if (options.scenarios.empty()) {
    for (const tScheduleScenario& scenario : scheduleScenarios()) {
      options.scenarios.push_back(&scenario);
    }
  }
  return options;
}

// A file of kept schedules: in each line a scenario, a space and a schedule. Lines that start with # are
// comments. After a change of the library a schedule may have no place for some of its deviations.
bool runKeptSchedules(const std::string& path, const tOptions& options) {
  std::ifstream file(path);
  if (!file) {
    throw std::invalid_argument("the file '" + path + "' cannot be read");
  }
  bool isEachKept = true;
  for (std::string line; std::getline(file, line);) {
    const size_t space = line.find(' ');
    if (line.empty() || line.front() == '#') {
      continue;
    }
    tOptions one = options;
    one.mayLackPlaces = true;
    one.replay = space == std::string::npos ? std::string() : line.substr(space + 1);
    isEachKept &= exploreInProcess(scenarioOf(line.substr(0, space)), one);
  }
  return isEachKept;
}

int runProgram(int argc, char** argv) {
  const tOptions options = optionsOf(argc, argv);
  report = static_cast<tReport*>(
      mmap(nullptr, sizeof(tReport), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0));
  if (options.kept) {
    return runKeptSchedules(*options.kept, options) ? EXIT_SUCCESS : EXIT_FAILURE;
  }
  bool isEachKept = true;
  for (const tScheduleScenario* scenario : options.scenarios) {
    isEachKept &= exploreInProcess(*scenario, options);
  }
  return isEachKept ? EXIT_SUCCESS : EXIT_FAILURE;
}

}  // namespace
}  // namespace nTests

// Called by code that is compiled with -fsanitize-coverage=trace-loads,trace-stores.
extern "C" {
// NOLINTBEGIN(bugprone-reserved-identifier)
void __sanitizer_cov_load1(uint8_t*) {}
void __sanitizer_cov_load2(uint16_t*) {}
void __sanitizer_cov_load4(uint32_t*) {}
void __sanitizer_cov_load8(uint64_t* address) {
  nTests::sharedWords.observe(address, false);
}
void __sanitizer_cov_load16(void*) {}
void __sanitizer_cov_store1(uint8_t*) {}
void __sanitizer_cov_store2(uint16_t*) {}
void __sanitizer_cov_store4(uint32_t*) {}
void __sanitizer_cov_store8(uint64_t* address) {
  nTests::sharedWords.observe(address, true);
}
void __sanitizer_cov_store16(void*) {}
// NOLINTEND(bugprone-reserved-identifier)
}

int main(int argc, char** argv) {
  try {
    return nTests::runProgram(argc, argv);
  } catch (const std::exception& failure) {
    std::fprintf(stderr, "schedules: %s\n", failure.what());
    return 2;
  }
}
