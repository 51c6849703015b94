#ifndef TESTS_COMPONENT_MISBEHAVINGDRIVER_MISBEHAVINGDRIVER_H
#define TESTS_COMPONENT_MISBEHAVINGDRIVER_MISBEHAVINGDRIVER_H

#include <cstdint>
#include <memory>
#include <mutex>
#include <span>
#include <vector>

#include "tests/fakewindows/machine.h"

namespace nTests {

// Bytes consumed from the front; reads past the end return zeros. Any thread may read.
class tByteSource {
 public:
  tByteSource() = default;
  explicit tByteSource(std::span<const uint8_t> bytes) : bytes_(bytes.begin(), bytes.end()) {}
  tByteSource(const tByteSource&) = delete;
  tByteSource& operator=(const tByteSource&) = delete;

  [[nodiscard]] uint8_t byte();
  [[nodiscard]] uint32_t word();
  void fill(std::span<uint8_t> buffer);
  [[nodiscard]] bool isEmpty();

 private:
  std::mutex mutex_;
  std::vector<uint8_t> bytes_;
  size_t at_ = 0;
};

// The caller's buffers that a request offers to the driver.
[[nodiscard]] std::vector<std::span<uint8_t>> offeredTo(
    const nFakeWindows::tDriverRequest& request);

// A driver whose bytes select each answer: the model's reply, unchanged, altered or shortened;
// arbitrary bytes; or an error. It writes arbitrary bytes only into buffers of the request. After
// the last byte it answers as the model does. Requests that normally stay pending have bytes of
// their own, since another thread sends them.
class tMisbehavingDriver {
 public:
  explicit tMisbehavingDriver(std::span<const uint8_t> bytes);

  [[nodiscard]] tModelReply answer(const nFakeWindows::tDriverRequest& request);

 private:
  tByteSource deliveries_;
  tByteSource others_;
};

// Prepares the fake machine for the functions below. Call it once.
void prepareMachine();

// Runs a client that uses attributes, routes and demotions with this driver. Its buffers have the
// exact size that it passes; `notices` determines the notices that the machine sends. Ends the
// program if an object remains open.
void runClient(nFakeWindows::tDriver driver, tByteSource& notices);

// The same with a driver whose replies, completion times and repeated completions follow `bytes`.
void runClientWithFaults(std::span<const uint8_t> bytes);

}  // namespace nTests

#endif
