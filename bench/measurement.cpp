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

// What takes less than this is repeated within a round.
constexpr double kLeastSeconds = 0.002;

size_t repetitions(const tRow& row) {
  row.run();
  return 1 + static_cast<size_t>(kLeastSeconds / std::max(secondsOf(row.run), 1e-9));
}

tSpeeds speedsOf(const tTable& table, int rounds) {
  std::vector<size_t> repeated;
  for (const tRow& row : table.rows) {
    repeated.push_back(repetitions(row));
  }
  std::vector<std::vector<double>> seconds(table.rows.size());
  for (int round = 0; round < rounds; ++round) {
    for (size_t i = 0; i < table.rows.size(); ++i) {
      const auto all = [&] {
        for (size_t n = 0; n < repeated[i]; ++n) {
          table.rows[i].run();
        }
      };
      seconds[i].push_back(secondsOf(all) / static_cast<double>(repeated[i]));
    }
  }
  tSpeeds speeds;
  for (size_t i = 0; i < table.rows.size(); ++i) {
    const auto middle = seconds[i].begin() + rounds / 2;
    std::nth_element(seconds[i].begin(), middle, seconds[i].end());
    speeds[table.rows[i].name] = static_cast<double>(table.bytes) / *middle / 1e9;
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

}  // namespace nBench
