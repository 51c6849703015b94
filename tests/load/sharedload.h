#ifndef TESTS_LOAD_SHAREDLOAD_H
#define TESTS_LOAD_SHAREDLOAD_H

#include <windows.h>

#include <array>
#include <atomic>
#include <cstdint>
#include <string>

#include "tests/load/routeclient.h"
#include "tests/load/tprogress.h"

namespace nTests {

inline constexpr size_t kWorkers = 2;
inline constexpr size_t kThreadsOfAWorker = 8;

struct tThreadLoad {
  tProgress progress;
  tRouteTally tally;
};

// State shared by the processes of a load. It survives the processes that are killed.
struct tLoad {
  std::atomic<uint32_t> shallEnd;
  std::atomic<uint32_t> hasFailed;
  std::array<char, 1024> failure;  // the first failure
  std::array<std::array<tThreadLoad, kThreadsOfAWorker>, kWorkers> workers;
};

// Records the first failure; later ones are its consequences.
void noteFailure(tLoad& load, const std::string& text) noexcept;

// Named shared memory that contains a load.
class tSharedLoad {
 public:
  // Creates the memory or opens it. It exists until its last user closes it.
  explicit tSharedLoad(const std::string& name);
  tSharedLoad(const tSharedLoad&) = delete;
  tSharedLoad& operator=(const tSharedLoad&) = delete;
  ~tSharedLoad();

  [[nodiscard]] tLoad& load() const noexcept { return *load_; }

 private:
  HANDLE mapping_;
  tLoad* load_;
};

}  // namespace nTests

#endif
