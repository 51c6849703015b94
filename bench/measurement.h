// Interleaved measurements, and the report that collects their results.
#ifndef BENCH_MEASUREMENT_H
#define BENCH_MEASUREMENT_H

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace nBench {

// Runs a call `times` times.
using tLoop = std::function<void(size_t times)>;

template <class Call>
[[nodiscard]] tLoop repeated(Call call) {
  return [call = std::move(call)](size_t times) mutable {
    for (size_t i = 0; i < times; ++i) {
      call();
    }
  };
}

// ---- Calls: one work against one reference ----

enum class tBound {
  timeAtMost,
  speedAtLeast,
  nanosecondsMoreAtMost
};

// The goal of a comparison: a multiple of the reference's time or speed, or a difference of the times.
struct tLimit {
  tBound bound;
  double factor;
};

struct tComparison {
  std::string work;
  std::string reference;
  tLoop run;
  tLoop runReference;
  std::optional<tLimit> limit = {};
  int rounds = 101;
  double secondsPerRound = 0.002;  // at least, of each of the two
};

// ---- Bulk: rows that do the same work on the same number of bytes ----

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

struct tTable {
  std::string title;
  size_t bytes;
  std::vector<std::string> references;  // rows whose speed is the divisor of the ratios
  std::vector<tRow> rows;
};

// ---- Curves: the cost of one work against its size ----

struct tCurve {
  std::string name;
  std::string size;  // the unit of the sizes
  // Prepares the work of a size and returns it.
  std::function<tLoop(size_t size)> prepare;
};

// A kind of work that must not grow more than linearly.
struct tGrowingWork {
  std::string name;
  // Prepares the work of a size and returns a function that runs it.
  std::function<std::function<void()>(size_t size)> prepare;
};

// Runs the loops interleaved. Returns the index of the one with the largest median time.
[[nodiscard]] size_t slowestOf(const std::vector<tLoop>& loops, int rounds);

// Measures, prints each result, and writes all of them as JSON for the document of results.
class tReport {
 public:
  // Removes the option `--json FILE` from the arguments.
  tReport(int& argc, char** argv);
  tReport(const tReport&) = delete;
  tReport& operator=(const tReport&) = delete;
  // Writes the file. Ends the program with a message when that fails.
  ~tReport();

  // Starts a section of the report.
  void section(const std::string& title);

  // Runs both loops interleaved; reports the median of the ratios of the rounds.
  void compare(const tComparison& comparison);
  // Runs the rows interleaved; reports the median speed of each.
  void measure(const tTable& table, int rounds);
  // Reports the median time of one run for each size.
  void curve(const tCurve& curve, const std::vector<size_t>& sizes, int rounds);
  // Reports the median time for 1, 2 and 4 times a size. The last must be at most `limit` times the
  // first.
  void measureGrowth(const std::string& title, const std::vector<tGrowingWork>& works, size_t size,
                     double limit, int rounds);

 private:
  // A result as JSON members; the texts of the measurements need no escapes.
  void add(const std::string& kind, const std::string& members);

  std::string file_;
  std::string section_;
  std::vector<std::string> results_;
};

// Ends the program with a message.
[[noreturn]] void fail(const std::string& what);
// Does so unless the condition holds.
void require(bool isTrue, const std::string& what);

}  // namespace nBench

#endif
