#include "tests/component/apalcodegen/trecordingdevice.h"

#include <algorithm>

namespace nTests {

using nQUENRA1400::nZOAPAL000::tPendingRequest;
using nZOAPALS100::tStatus;

void tRecordingDevice::close() noexcept {
  passedThrough_.push_back("close");
}

uint32_t tRecordingDevice::deviceControl(uint32_t code, const void* in, uint32_t inSize, void* out,
                                         uint32_t outSize, tStatus& status) noexcept {
  const auto* const first = static_cast<const uint8_t*>(in);
  requests_.push_back({code, {first, first + inSize}, outSize, status});
  const auto bytes = std::min(outSize, static_cast<uint32_t>(reply_.size()));
  std::copy_n(reply_.begin(), bytes, static_cast<uint8_t*>(out));
  if (changeTransport_) {
    changeTransport_(status);
  }
  return status.isError() ? 0 : bytes;
}

uint32_t tRecordingDevice::read(void*, uint32_t size, tStatus&) noexcept {
  passedThrough_.push_back("read");
  return size;
}

uint32_t tRecordingDevice::write(const void*, uint32_t size, tStatus&) noexcept {
  passedThrough_.push_back("write");
  return size;
}

uint64_t tRecordingDevice::beginPendingRequest(uint16_t a, uint64_t b, uint8_t c, tPendingRequest&,
                                               tStatus&) noexcept {
  passedThrough_.push_back("begin");
  return a + b + c;
}

void tRecordingDevice::endPendingRequest(tPendingRequest&) noexcept {
  passedThrough_.push_back("end");
}

}  // namespace nTests
