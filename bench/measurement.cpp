#include "bench/measurement.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <map>
#include <string_view>

namespace nBench {
namespace {

using tSpeeds = std::map<std::string, double>;

double secondsOf(const tLoop& run, size_t times) {
  const auto start = std::chrono::steady_clock::now();
  run(times);
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// The number of runs that take this long together.
size_t timesFor(const tLoop& run, double seconds) {
  run(1);
  size_t times = 1;
  for (;;) {
    const double taken = secondsOf(run, times);
    if (taken >= seconds) {
      return times;
    }
    const double estimate = seconds / std::max(taken, 1e-9) * static_cast<double>(times);
    times = std::clamp(static_cast<size_t>(estimate * 1.1), times + 1, times * 20);
  }
}

double quantile(std::vector<double> values, double position) {
  const auto at = values.begin() +
                  static_cast<std::ptrdiff_t>(position * static_cast<double>(values.size() - 1));
  std::nth_element(values.begin(), at, values.end());
  return *at;
}

double median(const std::vector<double>& values) {
  return quantile(values, 0.5);
}

// The time of one run in each round, for each loop.
std::vector<std::vector<double>> interleavedSeconds(const std::vector<tLoop>& loops, int rounds,
                                                    double secondsPerRound) {
  std::vector<size_t> times;
  times.reserve(loops.size());
  for (const tLoop& loop : loops) {
    times.push_back(timesFor(loop, secondsPerRound));
  }
  std::vector<std::vector<double>> seconds(loops.size());
  for (int round = 0; round < rounds; ++round) {
    for (size_t i = 0; i < loops.size(); ++i) {
      seconds[i].push_back(secondsOf(loops[i], times[i]) / static_cast<double>(times[i]));
    }
  }
  return seconds;
}

constexpr double kMinSeconds = 0.002;

std::vector<double> medianSeconds(const std::vector<tLoop>& loops, int rounds) {
  std::vector<double> medians;
  for (const std::vector<double>& ofLoop : interleavedSeconds(loops, rounds, kMinSeconds)) {
    medians.push_back(median(ofLoop));
  }
  return medians;
}

tSpeeds speedsOf(const tTable& table, int rounds) {
  std::vector<tLoop> loops;
  for (const tRow& row : table.rows) {
    loops.push_back(repeated(row.run));
  }
  const std::vector<double> seconds = medianSeconds(loops, rounds);
  tSpeeds speeds;
  for (size_t i = 0; i < table.rows.size(); ++i) {
    speeds[table.rows[i].name] = static_cast<double>(table.bytes) / seconds[i] / 1e9;
  }
  return speeds;
}

// The results of one comparison.
struct tRatio {
  double median;
  double lower;  // quartiles
  double upper;
};

double relation(tBound bound, double work, double reference) {
  switch (bound) {
    case tBound::timeAtMost:
      return work / reference;
    case tBound::speedAtLeast:
      return reference / work;
    case tBound::nanosecondsMoreAtMost:
      return (work - reference) * 1e9;
  }
  return 0;
}

tRatio ratioOf(const std::vector<double>& work, const std::vector<double>& reference,
               tBound bound) {
  std::vector<double> ratios;
  for (size_t i = 0; i < work.size(); ++i) {
    ratios.push_back(relation(bound, work[i], reference[i]));
  }
  return {median(ratios), quantile(ratios, 0.25), quantile(ratios, 0.75)};
}

const char* nameOf(tBound bound) {
  switch (bound) {
    case tBound::timeAtMost:
      return "time";
    case tBound::speedAtLeast:
      return "speed";
    case tBound::nanosecondsMoreAtMost:
      return "nanoseconds";
  }
  return "";
}

bool isReached(const tLimit& limit, double ratio) {
  return limit.bound == tBound::speedAtLeast ? ratio >= limit.factor : ratio <= limit.factor;
}

template <class... Values>
std::string formatted(const char* format, Values... values) {
  std::array<char, 512> text{};
  std::snprintf(text.data(), text.size(), format, values...);
  return text.data();
}

std::string goalMembers(const std::optional<tLimit>& limit, double ratio) {
  if (!limit) {
    return "";
  }
  return formatted(R"(,"bound":"%s","goal":%g,"reached":%s)", nameOf(limit->bound), limit->factor,
                   isReached(*limit, ratio) ? "true" : "false");
}

void printGoal(const tLimit& limit, double ratio) {
  std::printf("  %s (goal %s %g)", isReached(limit, ratio) ? "reached" : "MISSED ",
              limit.bound == tBound::speedAtLeast ? ">=" : "<=", limit.factor);
}

}  // namespace

void fail(const std::string& what) {
  std::fprintf(stderr, "bench: %s\n", what.c_str());
  std::exit(1);
}

size_t slowestOf(const std::vector<tLoop>& loops, int rounds) {
  const std::vector<double> seconds = medianSeconds(loops, rounds);
  return static_cast<size_t>(std::max_element(seconds.begin(), seconds.end()) - seconds.begin());
}

void require(bool isTrue, const std::string& what) {
  if (!isTrue) {
    fail(what);
  }
}

tReport::tReport(int& argc, char** argv) {
  if (argc >= 3 && argv[argc - 2] == std::string_view("--json")) {
    file_ = argv[argc - 1];
    argc -= 2;
  }
}

tReport::~tReport() {
  if (file_.empty()) {
    return;
  }
  std::ofstream file(file_, std::ios::binary);
  file << "[";
  for (size_t i = 0; i < results_.size(); ++i) {
    file << (i == 0 ? "\n" : ",\n") << results_[i];
  }
  file << "\n]\n";
  file.close();
  if (!file) {
    fail("cannot write '" + file_ + "'");
  }
}

void tReport::add(const std::string& kind, const std::string& members) {
  results_.push_back("{\"kind\":\"" + kind + "\",\"section\":\"" + section_ + "\"," + members +
                     "}");
}

void tReport::section(const std::string& title) {
  section_ = title;
  std::printf("\n%s\n", title.c_str());
  std::fflush(stdout);
}

void tReport::compare(const tComparison& comparison) {
  const auto seconds = interleavedSeconds({comparison.run, comparison.runReference},
                                          comparison.rounds, comparison.secondsPerRound);
  const tBound bound = comparison.limit ? comparison.limit->bound : tBound::timeAtMost;
  const tRatio ratio = ratioOf(seconds[0], seconds[1], bound);
  const double work = median(seconds[0]) * 1e9;
  const double reference = median(seconds[1]) * 1e9;
  std::printf("%-44s %12.1f ns, %s: %.1f ns; %.2f %s (%.2f to %.2f)", comparison.work.c_str(), work,
              comparison.reference.c_str(), reference, ratio.median,
              bound == tBound::nanosecondsMoreAtMost ? "ns more" : "x", ratio.lower, ratio.upper);
  if (comparison.limit) {
    printGoal(*comparison.limit, ratio.median);
  }
  std::printf("\n");
  std::fflush(stdout);
  add("comparison",
      formatted(R"("work":"%s","reference":"%s","ns":%.6g,"referenceNs":%.6g,"ratio":%.6g,)"
                R"("lower":%.6g,"upper":%.6g)",
                comparison.work.c_str(), comparison.reference.c_str(), work, reference,
                ratio.median, ratio.lower, ratio.upper) +
          goalMembers(comparison.limit, ratio.median));
}

void tReport::measure(const tTable& table, int rounds) {
  section(table.title);
  const tSpeeds speeds = speedsOf(table, rounds);
  std::printf("%-26s %8s", "", "GB/s");
  for (const std::string& reference : table.references) {
    if (speeds.contains(reference)) {
      std::printf("  x %s", reference.c_str());
    }
  }
  std::printf("\n");
  for (const tRow& row : table.rows) {
    const double speed = speeds.at(row.name);
    std::printf("%-26s %8.2f", row.name.c_str(), speed);
    std::string ratios;
    for (const std::string& reference : table.references) {
      if (speeds.contains(reference)) {
        const double ratio = speed / speeds.at(reference);
        std::printf("  %*.2f", static_cast<int>(reference.size() + 2), ratio);
        ratios += formatted(R"(%s"%s":%.6g)", ratios.empty() ? "" : ",", reference.c_str(), ratio);
      }
    }
    std::string goal;
    if (row.goal && speeds.contains(row.goal->reference)) {
      const tLimit limit{tBound::speedAtLeast, row.goal->factor};
      const double ratio = speed / speeds.at(row.goal->reference);
      std::printf("  %.2f x %s", ratio, row.goal->reference.c_str());
      printGoal(limit, ratio);
      goal = formatted(R"(,"goalReference":"%s")", row.goal->reference.c_str()) +
             goalMembers(limit, ratio);
    }
    std::printf("\n");
    add("speed", formatted(R"("bytes":%zu,"work":"%s","gigabytesPerSecond":%.6g,"ratios":{)",
                           table.bytes, row.name.c_str(), speed) +
                     ratios + "}" + goal);
  }
  std::fflush(stdout);
}

void tReport::curve(const tCurve& curve, const std::vector<size_t>& sizes, int rounds) {
  std::printf("%s, ns by %s:\n", curve.name.c_str(), curve.size.c_str());
  std::string points;
  for (const size_t size : sizes) {
    const double nanoseconds = medianSeconds({curve.prepare(size)}, rounds).front() * 1e9;
    std::printf("%14zu %14.1f\n", size, nanoseconds);
    points += formatted("%s[%zu,%.6g]", points.empty() ? "" : ",", size, nanoseconds);
  }
  std::fflush(stdout);
  add("curve",
      formatted(R"("work":"%s","size":"%s","points":[)", curve.name.c_str(), curve.size.c_str()) +
          points + "]");
}

void tReport::measureGrowth(const std::string& title, const std::vector<tGrowingWork>& works,
                            size_t size, double limit, int rounds) {
  section(title);
  std::printf("%-26s %8s %8s %8s  %s\n", "", "1x, ms", "2x, ms", "4x, ms", "4x / 1x");
  for (const tGrowingWork& work : works) {
    const std::vector<double> seconds =
        medianSeconds({repeated(work.prepare(size)), repeated(work.prepare(2 * size)),
                       repeated(work.prepare(4 * size))},
                      rounds);
    const double growth = seconds[2] / seconds[0];
    std::printf("%-26s %8.2f %8.2f %8.2f  %7.2f  %s (limit %.1f)\n", work.name.c_str(),
                seconds[0] * 1e3, seconds[1] * 1e3, seconds[2] * 1e3, growth,
                growth <= limit ? "kept   " : "EXCEEDED", limit);
    add("growth",
        formatted(R"("work":"%s","milliseconds":[%.6g,%.6g,%.6g],"ratio":%.6g)", work.name.c_str(),
                  seconds[0] * 1e3, seconds[1] * 1e3, seconds[2] * 1e3, growth) +
            goalMembers(tLimit{tBound::timeAtMost, limit}, growth));
  }
  std::fflush(stdout);
}

}  // namespace nBench
