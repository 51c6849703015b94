#include "tests/load/soaktable.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdio>

namespace nTests {
namespace {

// A leak in any call shows as more than this within minutes. Of some thirty handles two may come late,
// once: after seconds in most runs, after six minutes in one.
constexpr int64_t kMostHandles = 8;
constexpr int64_t kMostGrowthKib = 1024;
constexpr size_t kMostRows = 24;
// Caches fill, and the system loads what it needs once.
constexpr size_t kWarmUpRows = 2;

// The lowest of each third.
template <class Measure>
std::array<int64_t, 3> lowest(const std::vector<tSoakRow>& rows, Measure measure) {
  const auto less = [&](const tSoakRow& left, const tSoakRow& right) {
    return measure(left) < measure(right);
  };
  const auto third = static_cast<std::ptrdiff_t>(rows.size() - kWarmUpRows) / 3;
  std::array<int64_t, 3> lowest{};
  auto begin = rows.end() - 3 * third;
  for (int64_t& value : lowest) {
    value = static_cast<int64_t>(measure(*std::min_element(begin, begin + third, less)));
    begin += third;
  }
  return lowest;
}

template <class Measure>
int64_t growth(const std::vector<tSoakRow>& rows, Measure measure) {
  const std::array<int64_t, 3> thirds = lowest(rows, measure);
  return thirds[2] - thirds[0];
}

template <class Measure>
int64_t steadyGrowth(const std::vector<tSoakRow>& rows, Measure measure) {
  const std::array<int64_t, 3> thirds = lowest(rows, measure);
  return 2 * std::min(thirds[1] - thirds[0], thirds[2] - thirds[1]);
}

}  // namespace

tSoakGrowth growthOf(const std::vector<tSoakRow>& rows) {
  return {growth(rows, [](const tSoakRow& row) { return row.own.handles; }),
          steadyGrowth(rows, [](const tSoakRow& row) { return row.own.privateKib; }),
          growth(rows, [](const tSoakRow& row) { return row.driver.handles; }),
          steadyGrowth(rows, [](const tSoakRow& row) { return row.driver.privateKib; })};
}

std::string growthComplaints(const tSoakGrowth& growth) {
  struct tLimit {
    const char* what;
    int64_t growth;
    int64_t most;
  };
  const tLimit limits[] = {{"handles", growth.handles, kMostHandles},
                           {"KiB of private memory", growth.privateKib, kMostGrowthKib},
                           {"handles of the driver", growth.driverHandles, kMostHandles},
                           {"KiB of the driver", growth.driverPrivateKib, kMostGrowthKib}};
  std::string complaints;
  for (const tLimit& limit : limits) {
    if (limit.growth > limit.most) {
      complaints += std::to_string(limit.growth) + " more " + limit.what + '\n';
    }
  }
  return complaints;
}

std::string soakTable(const std::vector<tSoakRow>& rows) {
  std::string text =
      "   time      calls   failures  handles  private KiB  working set KiB  driver: handles  "
      "private KiB\n";
  const size_t step = (rows.size() + kMostRows - 1) / kMostRows;
  for (size_t i = 0; i < rows.size(); i += step) {
    const tSoakRow& row = rows[i];
    std::array<char, 160> line{};
    std::snprintf(line.data(), line.size(), "%5.0f s %10llu %10llu %8u %12llu %16llu %16u %12llu\n",
                  row.seconds, static_cast<unsigned long long>(row.calls),
                  static_cast<unsigned long long>(row.failures), row.own.handles,
                  static_cast<unsigned long long>(row.own.privateKib),
                  static_cast<unsigned long long>(row.own.workingSetKib), row.driver.handles,
                  static_cast<unsigned long long>(row.driver.privateKib));
    text += line.data();
  }
  return text;
}

}  // namespace nTests
