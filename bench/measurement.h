#ifndef BENCH_MEASUREMENT_H
#define BENCH_MEASUREMENT_H

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace nBench {

// A speed that a row has to reach: so many times that of another row of its table.
struct tGoal {
  std::string reference;
  double factor;
};

struct tRow {
  std::string name;
  std::function<void()> run;
  std::optional<tGoal> goal;
};

// Rows that do the same work, on the same number of bytes.
struct tTable {
  std::string title;
  size_t bytes;
  std::vector<std::string> references;  // rows that the others are shown as multiples of
  std::vector<tRow> rows;
};

// Lets the rows take turns, and prints the median speed of each.
void measure(const tTable& table, int rounds);

}  // namespace nBench

#endif
