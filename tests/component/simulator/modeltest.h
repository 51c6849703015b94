// A model whose host is the test fixture.
#ifndef TESTS_COMPONENT_SIMULATOR_MODELTEST_H
#define TESTS_COMPONENT_SIMULATOR_MODELTEST_H

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <span>
#include <type_traits>
#include <vector>

#include "protocol/controllerrequests.h"
#include "simulator/model/model.h"

namespace nTests {

// Route requests: their interface, addresses of their lists in the caller's memory, and terminals.
inline constexpr auto kRouting = kSimulatorInterfaceDevicePath;
inline constexpr uint64_t kSeeds = 0x1000;
inline constexpr uint64_t kDestinations = 0x2000;
inline constexpr uint64_t kModifiers = 0x3000;
inline constexpr uint64_t kRoutes = 0x4000;
inline constexpr uint32_t kConnector = 2;
inline constexpr uint32_t kTrig0 = 4;

inline constexpr uint64_t kProcess = 77;

struct tCompletion {
  uint64_t token;
  uint32_t windowsError;
  std::vector<uint8_t> output{};
  bool operator==(const tCompletion&) const = default;
};

struct tAnswer {
  uint32_t windowsError = 0;
  std::vector<uint8_t> bytes;
};

class ModelTest : public testing::Test {
 protected:
  void SetUp() override {
    const tModelHost host = {this,         &readCaller,      &writeCaller,
                             &signalEvent, &completeRequest, &presenceChanged};
    modelInitialise(model_.get(), &host);
  }

  // Sends a request; the output buffer has `capacity` bytes. With a token it can be kept pending.
  tAnswer request(tSimulatorInterface kind, uint32_t code, std::span<const uint8_t> input,
                  uint32_t capacity, uint64_t token = 0, uint64_t file = 1) {
    // One buffer for input and output, as with METHOD_BUFFERED of Windows.
    std::vector<uint8_t> buffer(std::max<size_t>(input.size(), capacity));
    std::copy(input.begin(), input.end(), buffer.begin());
    const tModelRequest sent = {
        {file, kProcess, kind}, code,     buffer.data(), static_cast<uint32_t>(input.size()),
        buffer.data(),          capacity, token};
    const tModelReply reply = modelRequest(model_.get(), &sent);
    if (reply.windowsError == kWindowsErrorIoPending) {
      modelPended(model_.get(), token);
    }
    EXPECT_LE(reply.size, capacity) << "more than the buffer holds";
    if (reply.windowsError != 0) {
      EXPECT_EQ(reply.size, 0u) << "a request that fails has no reply";
    }
    buffer.resize(reply.size);
    return {reply.windowsError, buffer};
  }
  template <class Record>
  static std::vector<uint8_t> bytes(const Record& record) {
    std::vector<uint8_t> result(sizeof record);
    std::memcpy(result.data(), &record, sizeof record);
    return result;
  }
  // The same with a record as input.
  template <class Record>
  requires(!std::is_convertible_v<Record, std::span<const uint8_t>>) tAnswer
      request(tSimulatorInterface kind, uint32_t code, const Record& input, uint32_t capacity) {
    return request(kind, code, std::span<const uint8_t>(bytes(input)), capacity);
  }
  tAnswer control(uint32_t code, std::span<const uint8_t> input = {}, uint32_t capacity = 0) {
    return request(kSimulatorInterfaceControl, code, input, capacity);
  }
  template <class Record>
  requires(!std::is_convertible_v<Record, std::span<const uint8_t>>) tAnswer
      control(uint32_t code, const Record& input) {
    return request(kSimulatorInterfaceControl, code, input, 0);
  }
  template <class Record>
  static Record recordOf(const tAnswer& answer) {
    Record record{};
    EXPECT_EQ(answer.bytes.size(), sizeof record);
    std::memcpy(&record, answer.bytes.data(), std::min(answer.bytes.size(), sizeof record));
    return record;
  }
  // Reads at most `capacity` records with a control request.
  template <class Record>
  std::vector<Record> records(uint32_t code, uint32_t capacity,
                              std::span<const uint8_t> input = {}) {
    const tAnswer answer = control(code, input, capacity * uint32_t{sizeof(Record)});
    EXPECT_EQ(answer.windowsError, kWindowsErrorNone);
    std::vector<Record> result(answer.bytes.size() / sizeof(Record));
    if (!result.empty()) {
      std::memcpy(result.data(), answer.bytes.data(), answer.bytes.size());
    }
    return result;
  }
  std::vector<tSimulatorLogEntry> log(uint64_t from = 1) {
    return records<tSimulatorLogEntry>(SIMULATOR_READ_LOG, SIMULATOR_LOG_CAPACITY, bytes(from));
  }

  void open(uint64_t file, tSimulatorInterface kind) {
    const tModelFile opened = {file, kProcess, kind};
    modelOpen(model_.get(), &opened);
  }
  void close(uint64_t file, tSimulatorInterface kind) {
    const tModelFile closing = {file, kProcess, kind};
    modelClose(model_.get(), &closing);
  }
  void cleanUp(uint64_t file) {
    const tModelFile closing = {file, kProcess, kSimulatorInterfaceController};
    modelCleanUp(model_.get(), &closing);
  }
  // The delay of the reply to the latest request, in microseconds.
  [[nodiscard]] uint32_t delay() const { return modelReplyDelay(model_.get()); }
  bool cancel(uint64_t token) { return modelCancel(model_.get(), token); }

  // The memory of the calling process: addresses are offsets into it.
  std::vector<uint8_t> memory = std::vector<uint8_t>(0x20000, 0xEE);
  std::vector<tSimulatorPresence> presences;
  std::vector<uint64_t> signalled;  // events
  bool eventsAreValid = true;
  std::vector<tCompletion> completions;

 private:
  static ModelTest& self(void* context) { return *static_cast<ModelTest*>(context); }
  bool isInside(uint64_t process, uint64_t address, uint32_t size) const {
    return process == kProcess && address != 0 && address <= memory.size() &&
           size <= memory.size() - address;
  }
  static bool readCaller(void* context, uint64_t process, uint64_t address, void* destination,
                         uint32_t size) {
    if (!self(context).isInside(process, address, size)) {
      return false;
    }
    std::memcpy(destination, self(context).memory.data() + address, size);
    return true;
  }
  static bool writeCaller(void* context, uint64_t process, uint64_t address, const void* source,
                          uint32_t size) {
    if (!self(context).isInside(process, address, size)) {
      return false;
    }
    std::memcpy(self(context).memory.data() + address, source, size);
    return true;
  }
  static bool signalEvent(void* context, uint64_t process, uint64_t event) {
    EXPECT_EQ(process, kProcess);
    self(context).signalled.push_back(event);
    return self(context).eventsAreValid;
  }
  static void completeRequest(void* context, uint64_t token, uint32_t windowsError,
                              const void* output, uint32_t size) {
    const auto* const bytes = static_cast<const uint8_t*>(output);
    self(context).completions.push_back({token, windowsError, {bytes, bytes + size}});
  }
  static void presenceChanged(void* context, const tSimulatorPresence* presence) {
    self(context).presences.push_back(*presence);
  }

  std::unique_ptr<tModel> model_ = std::make_unique<tModel>();
};

}  // namespace nTests

#endif
