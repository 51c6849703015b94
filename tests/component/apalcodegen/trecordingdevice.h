#ifndef TESTS_COMPONENT_APALCODEGEN_TRECORDINGDEVICE_H
#define TESTS_COMPONENT_APALCODEGEN_TRECORDINGDEVICE_H

#include <algorithm>
#include <cstdint>
#include <functional>
#include <utility>
#include <vector>

#include "zoapal/protons/driver/windowsu/tdeviceinterfaceproxy.h"

namespace nTests {

// A device that records the requests it receives and sends a scripted reply.
class tRecordingDevice final : public nQUENRA1400::nZOAPAL000::tDeviceInterfaceProxy {
 public:
  struct tRequest {
    uint32_t code;
    std::vector<uint8_t> in;
    uint32_t outSize;
    nZOAPALS100::tStatus transport;  // on entry
  };

  // The driver's reply; bytes beyond the caller's buffer are cut off.
  void answerWith(std::vector<uint8_t> reply) { reply_ = std::move(reply); }
  // A change to apply to the transport status of each request.
  void transportWill(std::function<void(nZOAPALS100::tStatus&)> change) {
    changeTransport_ = std::move(change);
  }

  [[nodiscard]] const std::vector<tRequest>& requests() const { return requests_; }
  // The calls that the typed interface forwarded unchanged, in order.
  [[nodiscard]] const std::vector<const char*>& passedThrough() const { return passedThrough_; }

  void close() noexcept override;
  uint32_t deviceControl(uint32_t code, const void* in, uint32_t inSize, void* out,
                         uint32_t outSize, nZOAPALS100::tStatus& status) noexcept override;
  uint32_t read(void* buffer, uint32_t size, nZOAPALS100::tStatus& status) noexcept override;
  uint32_t write(const void* buffer, uint32_t size, nZOAPALS100::tStatus& status) noexcept override;
  uint64_t beginPendingRequest(uint16_t a, uint64_t b, uint8_t c,
                               nQUENRA1400::nZOAPAL000::tPendingRequest& request,
                               nZOAPALS100::tStatus& status) noexcept override;
  void endPendingRequest(nQUENRA1400::nZOAPAL000::tPendingRequest& request) noexcept override;

 private:
  std::vector<uint8_t> reply_;
  std::function<void(nZOAPALS100::tStatus&)> changeTransport_;
  std::vector<tRequest> requests_;
  std::vector<const char*> passedThrough_;
};

inline void tRecordingDevice::close() noexcept {
  passedThrough_.push_back("close");
}

inline uint32_t tRecordingDevice::deviceControl(uint32_t code, const void* in, uint32_t inSize,
                                                void* out, uint32_t outSize,
                                                nZOAPALS100::tStatus& status) noexcept {
  const auto* const first = static_cast<const uint8_t*>(in);
  requests_.push_back({code, {first, first + inSize}, outSize, status});
  const auto bytes = std::min(outSize, static_cast<uint32_t>(reply_.size()));
  std::copy_n(reply_.begin(), bytes, static_cast<uint8_t*>(out));
  if (changeTransport_) {
    changeTransport_(status);
  }
  return status.isError() ? 0 : bytes;
}

inline uint32_t tRecordingDevice::read(void*, uint32_t size, nZOAPALS100::tStatus&) noexcept {
  passedThrough_.push_back("read");
  return size;
}

inline uint32_t tRecordingDevice::write(const void*, uint32_t size,
                                        nZOAPALS100::tStatus&) noexcept {
  passedThrough_.push_back("write");
  return size;
}

inline uint64_t tRecordingDevice::beginPendingRequest(uint16_t a, uint64_t b, uint8_t c,
                                                      nQUENRA1400::nZOAPAL000::tPendingRequest&,
                                                      nZOAPALS100::tStatus&) noexcept {
  passedThrough_.push_back("begin");
  return a + b + c;
}

inline void tRecordingDevice::endPendingRequest(
    nQUENRA1400::nZOAPAL000::tPendingRequest&) noexcept {
  passedThrough_.push_back("end");
}

}  // namespace nTests

#endif
