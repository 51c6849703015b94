#include "bench/measurement.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <map>

namespace nBench {
namespace {

using tSpeeds = std::map<std::string, double>;

double secondsOf(const std::function<void()>& run) {
  const auto start = std::chrono::steady_clock::now();
  run();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// The minimum time of a run within a round: shorter work is repeated.
constexpr double kMinSeconds = 0.002;

size_t repetitions(const std::function<void()>& run) {
  run();
  return 1 + static_cast<size_t>(kMinSeconds / std::max(secondsOf(run), 1e-9));
}

// Returns the median time of each run. Interleaves the runs.
std::vector<double> medianSeconds(const std::vector<std::function<void()>>& runs, int rounds) {
  std::vector<size_t> repeated;
  repeated.reserve(runs.size());
  for (const auto& run : runs) {
    repeated.push_back(repetitions(run));
  }
  std::vector<std::vector<double>> seconds(runs.size());
  for (int round = 0; round < rounds; ++round) {
    for (size_t i = 0; i < runs.size(); ++i) {
      const auto all = [&] {
        for (size_t n = 0; n < repeated[i]; ++n) {
          runs[i]();
        }
      };
      seconds[i].push_back(secondsOf(all) / static_cast<double>(repeated[i]));
    }
  }
  std::vector<double> medians;
  for (std::vector<double>& ofRun : seconds) {
    const auto middle = ofRun.begin() + rounds / 2;
    std::nth_element(ofRun.begin(), middle, ofRun.end());
    medians.push_back(*middle);
  }
  return medians;
}

tSpeeds speedsOf(const tTable& table, int rounds) {
  std::vector<std::function<void()>> runs;
  for (const tRow& row : table.rows) {
    runs.push_back(row.run);
  }
  const std::vector<double> seconds = medianSeconds(runs, rounds);
  tSpeeds speeds;
  for (size_t i = 0; i < table.rows.size(); ++i) {
    speeds[table.rows[i].name] = static_cast<double>(table.bytes) / seconds[i] / 1e9;
  }
  return speeds;
}

void printGoal(const tGoal& goal, double speed, const tSpeeds& speeds) {
  const auto reference = speeds.find(goal.reference);
  if (reference == speeds.end()) {
    return;
  }
  const double reached = speed / reference->second;
  std::printf("  %s %.2f x %s (goal %.2f)", reached >= goal.factor ? "reached" : "MISSED ", reached,
              goal.reference.c_str(), goal.factor);
}

}  // namespace

void measure(const tTable& table, int rounds) {
  const tSpeeds speeds = speedsOf(table, rounds);
  std::printf("\n%s\n%-26s %8s", table.title.c_str(), "", "GB/s");
  for (const std::string& reference : table.references) {
    if (speeds.contains(reference)) {
      std::printf("  x %s", reference.c_str());
    }
  }
  std::printf("\n");
  for (const tRow& row : table.rows) {
    const double speed = speeds.at(row.name);
    std::printf("%-26s %8.2f", row.name.c_str(), speed);
    for (const std::string& reference : table.references) {
      if (speeds.contains(reference)) {
        std::printf("  %*.2f", static_cast<int>(reference.size() + 2),
                    speed / speeds.at(reference));
      }
    }
    if (row.goal) {
      printGoal(*row.goal, speed, speeds);
    }
    std::printf("\n");
  }
  std::fflush(stdout);
}

void measureGrowth(const std::string& title, const std::vector<tGrowingWork>& works, size_t size,
                   double limit, int rounds) {
  std::printf("\n%s\n%-26s %8s %8s %8s  %s\n", title.c_str(), "", "1x, ms", "2x, ms", "4x, ms",
              "4x / 1x");
  for (const tGrowingWork& work : works) {
    const std::vector<double> seconds =
        medianSeconds({work.prepare(size), work.prepare(2 * size), work.prepare(4 * size)}, rounds);
    const double growth = seconds[2] / seconds[0];
    std::printf("%-26s %8.2f %8.2f %8.2f  %7.2f  %s (limit %.1f)\n", work.name.c_str(),
                seconds[0] * 1e3, seconds[1] * 1e3, seconds[2] * 1e3, growth,
                growth <= limit ? "kept   " : "EXCEEDED", limit);
  }
  std::fflush(stdout);
}

}  // namespace nBench
