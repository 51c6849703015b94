#include "tests/load/soaktable.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdio>
#include <iterator>
#include <string_view>

namespace nTests {
namespace {

// Handles must not grow, except for those that the system creates once on first use: for the names
// of its own objects, and a semaphore for each of its locks at the first contention.
struct tLateHandles {
  std::string_view kind;
  int64_t maxCount;
};
constexpr tLateHandles kLateHandles[] = {
    {"Directory", 1}, {"Event", 1}, {"Mutant", 1}, {"Semaphore", 4}};

constexpr int64_t maxLateHandles(std::string_view kind) noexcept {
  const auto* const found =
      std::find_if(std::begin(kLateHandles), std::end(kLateHandles),
                   [kind](const tLateHandles& each) { return each.kind == kind; });
  return found == std::end(kLateHandles) ? 0 : found->maxCount;
}

constexpr int64_t kMaxDriverHandleGrowth = 2;
// The number of the system's own blocks varies.
constexpr int64_t kMaxHeapBlockGrowth = 16;
constexpr int64_t kMaxGrowthKib = 1024;
constexpr uint64_t kBytesPerKib = 1024;
constexpr size_t kMaxTableRows = 24;
// Rows excluded while caches fill and the system loads its modules.
constexpr size_t kWarmUpRows = 2;

// The minimum of each third.
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
  tSoakGrowth all{{},
                  growth(rows, [](const tSoakRow& row) { return row.heap.blocks; }),
                  steadyGrowth(rows, [](const tSoakRow& row) { return row.own.privateKib; }),
                  growth(rows, [](const tSoakRow& row) { return row.driver.handles; }),
                  steadyGrowth(rows, [](const tSoakRow& row) { return row.driver.privateKib; })};
  for (size_t kind = 0; kind < all.handles.size(); ++kind) {
    all.handles[kind] = growth(rows, [kind](const tSoakRow& row) { return row.handles[kind]; });
  }
  return all;
}

std::string excessiveGrowth(const tSoakGrowth& all) {
  std::string findings;
  const auto check = [&findings](int64_t grown, int64_t limit, const std::string& resource) {
    if (grown > limit) {
      findings += std::to_string(grown) + " more " + resource + '\n';
    }
  };
  for (size_t kind = 0; kind < all.handles.size(); ++kind) {
    const std::string_view name = kHandleKinds[kind];
    check(all.handles[kind], maxLateHandles(name), "handles: " + std::string(name));
  }
  check(all.heapBlocks, kMaxHeapBlockGrowth, "blocks of the heaps");
  check(all.privateKib, kMaxGrowthKib, "KiB of private memory");
  check(all.driverHandles, kMaxDriverHandleGrowth, "handles of the driver");
  check(all.driverPrivateKib, kMaxGrowthKib, "KiB of the driver");
  return findings;
}

std::string soakTable(const std::vector<tSoakRow>& rows) {
  std::string text =
      "   time      calls   failures  handles  heap blocks  heap KiB  private KiB  driver: handles "
      " "
      "private KiB\n";
  const size_t step = (rows.size() + kMaxTableRows - 1) / kMaxTableRows;
  for (size_t i = 0; i < rows.size(); i += step) {
    const tSoakRow& row = rows[i];
    std::array<char, 160> line{};
    std::snprintf(line.data(), line.size(),
                  "%5.0f s %10llu %10llu %8u %12llu %9llu %12llu %16u %12llu\n", row.seconds,
                  static_cast<unsigned long long>(row.calls),
                  static_cast<unsigned long long>(row.failures), row.own.handles,
                  static_cast<unsigned long long>(row.heap.blocks),
                  static_cast<unsigned long long>(row.heap.bytes / kBytesPerKib),
                  static_cast<unsigned long long>(row.own.privateKib), row.driver.handles,
                  static_cast<unsigned long long>(row.driver.privateKib));
    text += line.data();
  }
  return text;
}

std::string handleText(const tHandleCounts& handles) {
  std::string text;
  for (size_t kind = 0; kind < handles.size(); ++kind) {
    if (handles[kind] != 0) {
      text += (text.empty() ? "" : ", ") + std::string(kHandleKinds[kind]) + ' ' +
              std::to_string(handles[kind]);
    }
  }
  return text;
}

}  // namespace nTests
