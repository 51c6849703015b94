#ifndef BENCH_MEASUREMENT_H
#define BENCH_MEASUREMENT_H

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace nBench {

// The speed that a row must reach, as a multiple of the speed of another row of its table.
struct tGoal {
  std::string reference;
  double factor;
};

struct tRow {
  std::string name;
  std::function<void()> run;
  std::optional<tGoal> goal;
};

// Rows that do the same work on the same number of bytes.
struct tTable {
  std::string title;
  size_t bytes;
  std::vector<std::string> references;  // rows whose speed is the divisor of the ratios
  std::vector<tRow> rows;
};

// Runs the rows interleaved and prints the median speed of each.
void measure(const tTable& table, int rounds);

// A kind of work with a variable size.
struct tGrowingWork {
  std::string name;
  // Prepares the work of a size and returns a function that runs it.
  std::function<std::function<void()>(size_t size)> prepare;
};

// Prints for each kind of work the median time for 1, 2 and 4 times a size. Checks that the last is
// at most `limit` times the first.
void measureGrowth(const std::string& title, const std::vector<tGrowingWork>& works, size_t size,
                   double limit, int rounds);

}  // namespace nBench

#endif
