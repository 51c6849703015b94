#ifndef TESTS_COMPONENT_LYINGDRIVER_TLIES_H
#define TESTS_COMPONENT_LYINGDRIVER_TLIES_H

#include <cstdint>
#include <memory>
#include <mutex>
#include <span>
#include <vector>

#include "tests/fakewindows/machine.h"

namespace nTests {

// Bytes that are used up, from the front; zeros behind them. Any thread.
class tByteSource {
 public:
  tByteSource() = default;
  explicit tByteSource(std::span<const uint8_t> bytes) : bytes_(bytes.begin(), bytes.end()) {}
  tByteSource(const tByteSource&) = delete;
  tByteSource& operator=(const tByteSource&) = delete;

  [[nodiscard]] uint8_t byte();
  [[nodiscard]] uint32_t word();
  void fill(std::span<uint8_t> room);
  [[nodiscard]] bool isEmpty();

 private:
  std::mutex mutex_;
  std::vector<uint8_t> bytes_;
  size_t at_ = 0;
};

// The parts of the caller's memory that a request offers to the driver.
[[nodiscard]] std::vector<std::span<uint8_t>> offeredTo(
    const nFakeWindows::tDriverRequest& request);

// A driver that answers as its bytes say: truly, with parts changed, with anything, too short, or
// with an error; in the caller's memory it writes what it likes as far as it was offered. It is true
// again when the bytes are used up. Deliveries have bytes of their own, since another thread asks
// for them.
class tLies {
 public:
  explicit tLies(std::span<const uint8_t> bytes);

  [[nodiscard]] tModelReply answer(const nFakeWindows::tDriverRequest& request);

 private:
  tByteSource deliveries_;
  tByteSource others_;
};

}  // namespace nTests

#endif
