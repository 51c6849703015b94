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

// What the processes of a load share, so that what a killed one has done is not forgotten.
struct tLoad {
  std::atomic<uint32_t> shallEnd;
  std::atomic<uint32_t> hasFailed;
  std::array<char, 1024> failure;  // of who failed first
  std::array<std::array<tThreadLoad, kThreadsOfAWorker>, kWorkers> workers;
};

// Takes the first failure; later ones are its consequences.
void noteFailure(tLoad& load, const std::string& text) noexcept;

// The memory with a load in it, under a name by which other processes find it.
class tSharedLoad {
 public:
  // Makes it, or opens the one that is there; it lasts as long as anybody has it.
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
