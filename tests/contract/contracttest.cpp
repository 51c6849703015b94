#include "tests/contract/contracttest.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <ostream>

namespace nTests {

void ContractTest::SetUp() {
  tContractTestBase::SetUp();
  machine_ = std::make_unique<nSimulator::tSimulatedMachine>();
  machine_->reset();
  useTable(tReferenceTable());
}

void ContractTest::TearDown() {
  uint32_t ignored = 0;
  while (QUENRA_getAttributeU32(QUENRA_HANDLE, QUENRA_ATTRIBUTE_MEMORY_MODULE_COUNT, &ignored) !=
         QUENRA_STATUS_INVALID_HANDLE) {
    QUENRA_closeController(QUENRA_HANDLE);
  }
  machine_->reset();
  machine_.reset();
  tContractTestBase::TearDown();
}

void ContractTest::useTable(const tReferenceTable& table) {
  machine_->setTable(table.build());
}

void ContractTest::usePresence(uint32_t controllers, uint32_t martens, uint32_t devicePaths) {
  machine_->setPresence({controllers, martens, devicePaths});
}

void ContractTest::open() {
  uint64_t handle = 0;
  ASSERT_EQ(QUENRA_openController(&handle), QUENRA_STATUS_SUCCESS);
  ASSERT_EQ(handle, QUENRA_HANDLE);
}

std::vector<tSimulatorLogEntry> ContractTest::requests(uint32_t code) {
  std::vector<tSimulatorLogEntry> entries = machine_->log();
  std::erase_if(entries, [code](const tSimulatorLogEntry& entry) {
    return entry.event != kSimulatorEventRequest || entry.requestCode != code;
  });
  return entries;
}

size_t ContractTest::count(tSimulatorEvent event, tSimulatorInterface interfaceKind) {
  const std::vector<tSimulatorLogEntry> entries = machine_->log();
  return static_cast<size_t>(
      std::count_if(entries.begin(), entries.end(), [=](const tSimulatorLogEntry& entry) {
        return entry.event == static_cast<uint32_t>(event) &&
               entry.interfaceKind == static_cast<uint32_t>(interfaceKind);
      }));
}

void PrintTo(const tTextRead& read, std::ostream* out) {
  *out << "code " << read.code << ", text \"" << read.text << "\", size " << read.size;
}

void PrintTo(const tUnsignedRead& read, std::ostream* out) {
  *out << "code " << read.code << ", value " << read.value;
}

tTextRead readText(uint32_t attribute, uint64_t size) {
  // A sentinel after the buffer detects a write past its end.
  std::vector<char> buffer(size);
  buffer.push_back('#');
  const std::string_view before(kUntouchedText);
  std::copy_n(before.begin(), std::min<uint64_t>(size, before.size()), buffer.begin());

  tTextRead result{0, "", size};
  result.code = QUENRA_getAttributeUTF8(QUENRA_HANDLE, attribute, buffer.data(), &result.size);
  EXPECT_EQ(buffer.back(), '#') << "written past the buffer's end";
  buffer.pop_back();
  result.text.assign(buffer.begin(), std::find(buffer.begin(), buffer.end(), '\0'));
  return result;
}

tUnsignedRead readUnsigned(uint32_t attribute) {
  tUnsignedRead result{0, kUntouchedValue};
  result.code = QUENRA_getAttributeU32(QUENRA_HANDLE, attribute, &result.value);
  return result;
}

std::unique_ptr<char[]> unterminatedText(size_t length) {
  auto text = std::make_unique<char[]>(length);
  std::memset(text.get(), 'x', length);
  return text;
}

}  // namespace nTests
