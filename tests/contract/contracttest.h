// Fixtures of the contract tests. The tests use only the exports of the library and the control
// interface of the machine. They are built for the simulated machine and for the fake Windows.
#ifndef TESTS_CONTRACT_CONTRACTTEST_H
#define TESTS_CONTRACT_CONTRACTTEST_H

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "quenra.h"
#include "simulator/control/tsimulatedmachine.h"
#include "tests/builders/smbiostablebuilder.h"

#ifndef _WIN32
#include "tests/fakewindows/fakewindowstest.h"
#endif

namespace nTests {

#ifdef _WIN32
using tContractTestBase = testing::Test;
#else
using tContractTestBase = nFakeWindows::FakeWindowsTest;
#endif

// Starts from the default machine with the reference table, and leaves no controller open.
class ContractTest : public tContractTestBase {
 protected:
  void SetUp() override;
  void TearDown() override;

  // The machine that the next open finds.
  void useTable(const tReferenceTable& table);
  void usePresence(uint32_t controllers, uint32_t martens, uint32_t devicePaths = 1);
  // Opens the controller; the test fails if that fails.
  void open();

  nSimulator::tSimulatedMachine& machine() { return *machine_; }
  // The requests with this code that the driver has received from this process, oldest first.
  std::vector<tSimulatorLogEntry> requests(uint32_t code);
  // The number of times that an interface was opened or closed.
  size_t count(tSimulatorEvent event, tSimulatorInterface interfaceKind);

 private:
  std::unique_ptr<nSimulator::tSimulatedMachine> machine_;
};

// Holds the controller open for a scope.
class tOpenController {
 public:
  tOpenController() : code_(QUENRA_openController(&handle_)) {}
  tOpenController(const tOpenController&) = delete;
  tOpenController& operator=(const tOpenController&) = delete;
  ~tOpenController() {
    if (code_ >= 0) {
      QUENRA_closeController(handle_);
    }
  }
  [[nodiscard]] int32_t code() const { return code_; }
  [[nodiscard]] uint64_t handle() const { return handle_; }

 private:
  uint64_t handle_ = 0;
  int32_t code_;
};

inline constexpr uint64_t kUntouchedSize = 200;
inline constexpr char kUntouchedText[] = "untouched";
inline constexpr uint32_t kUntouchedValue = 0xCAFEF00D;

// The outcome of one read, compared as a unit.
struct tTextRead {
  int32_t code;
  std::string text;  // the content of the buffer; kUntouchedText if nothing was written
  uint64_t size = kUntouchedSize;
  bool operator==(const tTextRead&) const = default;
};
struct tUnsignedRead {
  int32_t code;
  uint32_t value;
  bool operator==(const tUnsignedRead&) const = default;
};
void PrintTo(const tTextRead& read, std::ostream* out);
void PrintTo(const tUnsignedRead& read, std::ostream* out);

// Reads with the valid handle. The buffer has `size` bytes and holds kUntouchedText, cut to that
// size, before the read.
[[nodiscard]] tTextRead readText(uint32_t attribute, uint64_t size = kUntouchedSize);
[[nodiscard]] tUnsignedRead readUnsigned(uint32_t attribute);

[[nodiscard]] inline tTextRead text(std::string value) {
  return {QUENRA_STATUS_SUCCESS, std::move(value)};
}
[[nodiscard]] inline tTextRead noText(int32_t code) {
  return {code, kUntouchedText};
}
[[nodiscard]] inline tUnsignedRead value(uint32_t number) {
  return {QUENRA_STATUS_SUCCESS, number};
}
[[nodiscard]] inline tUnsignedRead noValue(int32_t code) {
  return {code, 0};
}

// One call of every export that accepts a handle, each with valid other arguments.
struct tCallOnHandle {
  const char* name;
  int32_t (*call)(uint64_t handle);
};

// QUENRA_closeController, which returns no code, is not among them.
inline constexpr tCallOnHandle kCallsOnHandle[] = {
    {"getAttributeUTF8",
     [](uint64_t handle) {
       char text[64] = "";
       uint64_t size = sizeof text;
       return QUENRA_getAttributeUTF8(handle, QUENRA_ATTRIBUTE_PRODUCT_NAME, text, &size);
     }},
    {"getAttributeU32",
     [](uint64_t handle) {
       uint32_t value = 0;
       return QUENRA_getAttributeU32(handle, QUENRA_ATTRIBUTE_MEMORY_SIZE, &value);
     }},
    {"getAttributeI32",
     [](uint64_t handle) {
       int32_t value = 0;
       return QUENRA_getAttributeI32(handle, QUENRA_ATTRIBUTE_MEMORY_SIZE, &value);
     }},
    {"getAttributeDBL",
     [](uint64_t handle) {
       double value = 0;
       return QUENRA_getAttributeDBL(handle, QUENRA_ATTRIBUTE_MEMORY_SIZE, &value);
     }},
    {"setAttributeUTF8",
     [](uint64_t handle) {
       return QUENRA_setAttributeUTF8(handle, QUENRA_TEXT_SETTING_OF_BOTH, "text");
     }},
    {"setAttributeU32",
     [](uint64_t handle) {
       return QUENRA_setAttributeU32(handle, QUENRA_ATTRIBUTE_DRIVER_SETTING_1, 5);
     }},
    {"updateFirmware", [](uint64_t handle) { return QUENRA_updateFirmware(handle, "", 0); }},
    {"updateFirmware2", [](uint64_t handle) { return QUENRA_updateFirmware2(handle, "", 0, 1); }},
    {"performSelfTest", [](uint64_t handle) { return QUENRA_performSelfTest(handle); }},
};

// Numbers that are not the handle.
inline constexpr uint64_t kWrongHandles[] = {0, 1, QUENRA_HANDLE - 1,
                                             QUENRA_HANDLE + (uint64_t{1} << 32), ~uint64_t{0}};

// Characters without a NUL, at the end of an allocation.
[[nodiscard]] std::unique_ptr<char[]> unterminatedText(size_t length);

}  // namespace nTests

#endif
