#include "tools/quenra/capture/recordedinterfaces.h"

#include <algorithm>
#include <bit>
#include <chrono>
#include <cstring>
#include <span>

#include "protocol/controllerrequests.h"
#include "quenra_status.h"
#include "zoapal/protons/status/tstatus.h"

namespace nCommandLine {
namespace {

using nCapture::tAttributeAnswer;
using nCapture::tBytes;
using nCapture::tInterface;
using nCapture::tSizesAnswer;

constexpr nZOAPALS100::tSourceLocation kRecorded{"tools\\quenra\\capture\\tReplayedInterface", 1};

// The memory at an address of this process; requests carry addresses as numbers.
std::span<uint8_t> memoryAt(uint64_t address, size_t size) noexcept {
  auto* const bytes = std::bit_cast<uint8_t*>(static_cast<uintptr_t>(address));
  return bytes == nullptr ? std::span<uint8_t>() : std::span(bytes, size);
}

tBytes copied(std::span<const uint8_t> bytes, size_t size) {
  const auto part = bytes.first(std::min(bytes.size(), size));
  return {part.begin(), part.end()};
}

size_t copyTo(std::span<uint8_t> target, const tBytes& source) noexcept {
  const size_t size = std::min(target.size(), source.size());
  std::copy_n(source.begin(), size, target.begin());
  return size;
}

size_t sizeOf(int32_t tableSize) noexcept {
  return static_cast<size_t>(std::max(tableSize, 0));
}

// ---- Recording ----

using tClock = std::chrono::steady_clock;

// Calls the driver with a record of its own, whose code is the driver's: the caller's may hold a warning,
// which a second one does not replace.
template <class Call>
nCapture::tResult timed(tStatus& status, Call call) noexcept {
  tStatus answer;
  const tClock::time_point start = tClock::now();
  call(answer);
  const auto duration = std::chrono::duration_cast<nCapture::tDuration>(tClock::now() - start);
  mergeStatus(status, answer.code, answer.location());
  return {answer.code, duration};
}

template <class Driver>
void recordAttribute(Driver& driver, tInterface& record, uint32_t attribute, uint64_t buffer,
                     uint32_t& size, tStatus& status) {
  if (status.isError()) {
    return;
  }
  const std::span<const uint8_t> memory = memoryAt(buffer, size);
  tAttributeAnswer answer;
  answer.id = attribute;
  answer.result =
      timed(status, [&](tStatus& own) { driver.getAttribute(attribute, buffer, size, own); });
  answer.size = size;
  if (answer.result.code >= 0) {
    answer.value = copied(memory, size);
  }
  const auto earlier = std::ranges::find(record.attributes, attribute, &tAttributeAnswer::id);
  if (earlier == record.attributes.end()) {
    record.attributes.push_back(std::move(answer));
  } else {
    *earlier = std::move(answer);
  }
}

// ---- Replaying ----

void answerWith(int32_t code, tStatus& status) noexcept {
  mergeStatus(status, code, kRecorded);
}

// A buffer that is too small for a recorded value is refused, as a driver refuses it.
void replayAttribute(const tInterface& record, uint32_t attribute, uint64_t buffer, uint32_t& size,
                     tStatus& status) noexcept {
  if (status.isError()) {
    return;
  }
  const auto answer = std::ranges::find(record.attributes, attribute, &tAttributeAnswer::id);
  if (answer == record.attributes.end()) {
    answerWith(QUENRA_STATUS_NOT_SUPPORTED, status);
    return;
  }
  const std::span<uint8_t> memory = memoryAt(buffer, size);
  size = answer->size;
  if (answer->result.code >= 0 && memory.size() < answer->value.size()) {
    answerWith(QUENRA_STATUS_BUFFER_TOO_SMALL, status);
    return;
  }
  copyTo(memory, answer->value);
  answerWith(answer->result.code, status);
}

void replaySizes(const tSizesAnswer& answer, uint32_t& textSize, int32_t& tableSize,
                 tStatus& status) noexcept {
  textSize = answer.textSize;
  tableSize = answer.tableSize;
  answerWith(answer.result.code, status);
}

}  // namespace

// ---- Recording ----

void tRecordingController::exchangeValues(uint64_t textBuffer, uint32_t& textSize,
                                          uint64_t tableBuffer, int32_t& tableSize,
                                          tStatus& status) noexcept {
  if (status.isError()) {
    return;
  }
  const std::span<const uint8_t> text = memoryAt(textBuffer, textSize);
  const std::span<const uint8_t> table = memoryAt(tableBuffer, sizeOf(tableSize));
  tSizesAnswer answer;
  answer.result = timed(status, [&](tStatus& own) {
    driver().exchangeValues(textBuffer, textSize, tableBuffer, tableSize, own);
  });
  answer.textSize = textSize;
  answer.tableSize = tableSize;
  if (!handover_.query) {
    handover_.query = answer;
    return;
  }
  handover_.values = answer;
  if (answer.result.code >= 0) {
    handover_.versionText = copied(text, textSize);
    // The library takes a negative size, which no driver should report, for one beyond the buffer.
    handover_.table = copied(table, std::bit_cast<uint32_t>(tableSize));
  }
}

template <class Interface>
void tRecordingInterface<Interface>::getAttribute(uint32_t attribute, uint64_t buffer,
                                                  uint32_t& size, tStatus& status) noexcept {
  recordAttribute(driver_, record_, attribute, buffer, size, status);
}

template class tRecordingInterface<tControllerInterface>;
template class tRecordingInterface<tMartenInterface>;

// ---- Replaying ----

void tReplayedController::exchangeValues(uint64_t textBuffer, uint32_t& textSize,
                                         uint64_t tableBuffer, int32_t& tableSize,
                                         tStatus& status) noexcept {
  if (status.isError()) {
    return;
  }
  const auto& answer = sizesWereQueried_ ? handover_.values : handover_.query;
  sizesWereQueried_ = true;
  if (!answer) {
    answerWith(QUENRA_STATUS_NOT_SUPPORTED, status);
    return;
  }
  copyTo(memoryAt(textBuffer, textSize), handover_.versionText);
  copyTo(memoryAt(tableBuffer, sizeOf(tableSize)), handover_.table);
  replaySizes(*answer, textSize, tableSize, status);
}

template <class Interface>
void tReplayedInterface<Interface>::getAttribute(uint32_t attribute, uint64_t buffer,
                                                 uint32_t& size, tStatus& status) noexcept {
  replayAttribute(record_, attribute, buffer, size, status);
}

template class tReplayedInterface<tControllerInterface>;
template class tReplayedInterface<tMartenInterface>;

}  // namespace nCommandLine
