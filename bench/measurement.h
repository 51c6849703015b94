#ifndef BENCH_MEASUREMENT_H
#define BENCH_MEASUREMENT_H

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace nBench {

// The speed that a row has to reach, as a multiple of that of another row of its table.
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
  std::vector<std::string> references;  // the rows by whose speed the others are divided
  std::vector<tRow> rows;
};

// Runs the rows in turns, and prints the median speed of each.
void measure(const tTable& table, int rounds);

// A kind of work that can be made larger.
struct tGrowingWork {
  std::string name;
  // Prepares the work of a size, and returns what runs it.
  std::function<std::function<void()>(size_t size)> prepare;
};

// Prints for each kind of work the median time of 1, 2 and 4 times a size, and whether the last one is at
// most `limit` times the first.
void measureGrowth(const std::string& title, const std::vector<tGrowingWork>& works, size_t size,
                   double limit, int rounds);

}  // namespace nBench

#endif
